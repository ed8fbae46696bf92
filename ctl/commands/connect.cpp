// SPDX-License-Identifier: MIT
// norvixctl connect
#include "client/daemon_bus.h"
#include "client/link_facts.h"
#include "client/pppd_explain.h"
#include "client/say.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/failure_text.h"
#include "ctl/screen/remedy_text.h"
#include "ctl/screen/terminal.h"
#include "dbus/contract.h"

#include <QEventLoop>
#include <QTimer>

namespace {

constexpr int takeUpMs = 10000;
// The line may take 35 s, the bridge 20 s, pppd 90 s.
constexpr int usualTimeoutSeconds = 180;
constexpr int longestTimeoutSeconds = 86400;

/// One attempt, followed from the request to its outcome.
class Attempt
{
public:
    Attempt(DaemonBus &bus, const Terminal &terminal, bool isFollowed)
        : m_bus(bus)
        , m_terminal(terminal)
        , m_isFollowed(isFollowed)
    {
        QObject::connect(&bus, &DaemonBus::received, &m_loop,
            [this](const QString &signal, const QVariantList &arguments) {
                m_isTaken ? follow(signal, arguments) : awaitStart(signal);
            });
        QObject::connect(&bus, &DaemonBus::daemonLeft, &m_loop,
            [this] { end(NoDaemon, Say::tr("The daemon ended while connecting.")); });
        QObject::connect(&bus, &DaemonBus::busLost, &m_loop,
            [this] { end(NoDaemon, Say::tr("The system bus ended while connecting.")); });
    }

    /// Waits for the outcome; @p isTaken says that the attempt runs already.
    int run(bool isTaken, int timeoutMs)
    {
        m_isTaken = isTaken;
        if (!isTaken && !request()) {
            return m_code;
        }
        if (!m_isFollowed && isTaken) {
            m_terminal.line(Say::tr("A connection is already being made."));
            return Ok;
        }
        QTimer::singleShot(m_isFollowed ? timeoutMs : takeUpMs, &m_loop, [this] { giveUp(); });
        if (!m_hasEnded) {
            m_loop.exec();
        }
        return m_code;
    }

private:
    bool request()
    {
        const BusReply reply
            = m_bus.call(DaemonMethod::establishConnection, {}, DaemonBus::Start::IfNeeded);
        if (!reply.ok()) {
            end(exitCodeOf(reply.failure), failureText(reply.failure));
        }
        return reply.ok();
    }

    void end(ExitCode code, const QString &text)
    {
        if (m_hasEnded) {
            return;
        }
        m_hasEnded = true;
        m_code = code;
        if (code == Ok) {
            m_terminal.paragraph(text);
        } else {
            m_terminal.fail(code, text);
        }
        m_loop.quit();
    }

    void awaitStart(const QString &signal)
    {
        if (signal == QLatin1String(DaemonSignal::establishingConnection)) {
            m_isTaken = true;
            if (!m_isFollowed) {
                end(Ok, Say::tr("Connecting. “norvixctl watch” follows it."));
                return;
            }
            m_terminal.line(Say::tr("Connecting…"));
        } else if (signal == QLatin1String(DaemonSignal::connectionState)) {
            // The attempt before ours has only now ended, and ours was refused because of it.
            QTimer::singleShot(0, &m_loop, [this] { request(); });
        }
    }

    void follow(const QString &signal, const QVariantList &arguments)
    {
        if (signal == QLatin1String(DaemonSignal::synchronizing)) {
            m_terminal.line(Say::tr("Waiting for the line to synchronise…"));
        } else if (signal == QLatin1String(DaemonSignal::connectionEstablished)) {
            m_isUp = true;
        } else if (signal == QLatin1String(DaemonSignal::incorrectDNS)) {
            m_terminal.line(
                Say::tr("The resolver configuration is wrong; the daemon corrects it."));
        } else if (signal == QLatin1String(DaemonSignal::IP)) {
            m_address = arguments.value(0).toString();
        } else if (signal == QLatin1String(DaemonSignal::defaultRoute) && m_isUp) {
            end(Ok,
                Say::tr("Connected: address %1, default route through %2.")
                    .arg(m_address, arguments.value(0).toString()));
        } else if (signal == QLatin1String(DaemonSignal::synchronizationFailed)) {
            end(NoSynchronization,
                Say::tr("The line did not synchronise. Check the telephone cable and the filter; "
                        "“norvixctl doctor” tells more."));
        } else if (signal == QLatin1String(DaemonSignal::connectionTimeout)) {
            end(NoAnswer,
                Say::tr("Time-out: the provider does not answer. Check VPI, VCI and protocol with "
                        "“norvixctl line show”."));
        } else if (signal == QLatin1String(DaemonSignal::invalidAccountData)) {
            end(AccountRefused,
                Say::tr("The provider refused login or password. Set them again with “norvixctl "
                        "account set”."));
        } else if (signal == QLatin1String(DaemonSignal::connectionTerminated)) {
            end(NotConnected, Say::tr("The attempt was ended by another client."));
        } else if (signal == QLatin1String(DaemonSignal::connectionState)) {
            takeFinalState(arguments.value(0).toInt());
        }
    }

    void takeFinalState(int state)
    {
        if (state == ConnectionUp) {
            const QString address = m_bus.call(DaemonMethod::getIP).value.toString();
            const QString route = m_bus.call(DaemonMethod::getDefaultRoute).value.toString();
            end(Ok,
                Say::tr("Connected: address %1, default route through %2.").arg(address, route));
            return;
        }
        QString text = Say::tr("The connection did not come up.");
        const auto log = fileContent(QStringLiteral("/opt/norvix/daemon.log"), 16 << 20);
        const PppdVerdict verdict = explainPppd(pppdLinesOfLog(log.value_or("")));
        if (!verdict.line.isEmpty() && !verdict.isGood) {
            text += QLatin1Char(' ') + verdict.meaning + QLatin1Char(' ')
                + remedyText(verdict.remedy);
        } else {
            text += QLatin1Char(' ') + Say::tr("“norvixctl doctor” looks for the reason.");
        }
        end(NotConnected, text);
    }

    void giveUp()
    {
        if (m_isTaken) {
            end(WaitedTooLong,
                Say::tr("Still connecting. The daemon goes on; “norvixctl watch” follows it."));
        } else {
            end(NotConnected,
                Say::tr("The daemon did not begin: an earlier attempt may still be ending, which "
                        "takes up to 90 seconds."));
        }
    }

    DaemonBus &m_bus;
    const Terminal &m_terminal;
    const bool m_isFollowed;
    bool m_isTaken = false;
    bool m_isUp = false;
    bool m_hasEnded = false;
    QString m_address;
    int m_code = Ok;
    QEventLoop m_loop;
};

} // namespace

int runConnect(const Invocation &invocation, const Terminal &terminal)
{
    int seconds = usualTimeoutSeconds;
    if (invocation.has("timeout")) {
        const auto given = wholeNumber(invocation.value("timeout"), 1, longestTimeoutSeconds);
        if (!given) {
            return terminal.fail(BadUsage,
                Say::tr("--timeout takes a whole number of seconds from 1 to %1.")
                    .arg(longestTimeoutSeconds));
        }
        seconds = *given;
    }
    DaemonBus bus;
    const BusReply state
        = bus.call(DaemonMethod::getConnectionState, {}, DaemonBus::Start::IfNeeded);
    if (!state.ok()) {
        return terminal.fail(state.failure);
    }
    if (state.value.toInt() == ConnectionUp) {
        // The daemon would not refuse: it would start a second pppd.
        terminal.line(Say::tr("Already connected."));
        return Ok;
    }
    bus.listen();
    Attempt attempt(bus, terminal, invocation.has("wait") || invocation.has("timeout"));
    return attempt.run(state.value.toInt() == ConnectionConnecting, seconds * 1000);
}

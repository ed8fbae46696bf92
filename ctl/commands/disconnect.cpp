// SPDX-License-Identifier: MIT
// norvixctl disconnect
#include "client/daemon_bus.h"
#include "client/disconnect_step.h"
#include "client/link_facts.h"
#include "client/say.h"
#include "client/text_format.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/terminal.h"
#include "dbus/contract.h"

#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace {

/// Asks on the terminal; only the language's own "y" is a yes.
bool isAgreed(const Terminal &terminal)
{
    terminal.note(Say::tr("Disconnect all the same? [y/N]"));
    const int answer = getchar();
    const QString yes = Say::tr("y", "the letter that agrees to a question");
    return answer != EOF && yes.compare(QChar(QLatin1Char(char(answer))), Qt::CaseInsensitive) == 0;
}

constexpr int lookMs = 500;
// The line may take 35 s and the bridge 20 s before pppd starts and can be ended.
constexpr int longestMs = 120000;

/// The daemon's request ends what runs, but an attempt that waits for the line goes on and starts
/// pppd later: it is followed until it is over, and ended again when it has come that far.
class Ending
{
public:
    Ending(DaemonBus &bus, const Terminal &terminal)
        : m_bus(bus)
        , m_terminal(terminal)
    {
        // What comes while a call waits for its answer is looked at right after it.
        QObject::connect(&bus, &DaemonBus::received, &m_loop, [this](const QString &signal) {
            if (signal == QLatin1String(DaemonSignal::connectionState)) {
                QTimer::singleShot(0, &m_loop, [this] { look(); });
            }
        });
        QObject::connect(&bus, &DaemonBus::daemonLeft, &m_loop, [this] { m_loop.exit(Ok); });
    }

    int run()
    {
        m_bus.listen();
        const BusReply reply = endNow();
        if (!reply.ok()) {
            return m_terminal.fail(reply.failure);
        }
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &m_loop, [this] { look(); });
        timer.start(lookMs);
        QTimer::singleShot(longestMs, &m_loop, [this] { m_loop.exit(WaitedTooLong); });
        QTimer::singleShot(0, &m_loop, [this] { look(); });
        if (m_loop.exec() != Ok) {
            return m_terminal.fail(WaitedTooLong,
                Say::tr("The daemon still connects. Repeat the command, or look at “norvixctl "
                        "log”."));
        }
        m_terminal.line(Say::tr("Disconnected."));
        return Ok;
    }

private:
    BusReply endNow() const { return m_bus.call(DaemonMethod::terminateConnection); }

    void look()
    {
        const BusReply reply = m_bus.call(DaemonMethod::getConnectionState);
        if (!reply.ok()) {
            m_loop.exit(Ok); // nobody is there who could go on
            return;
        }
        const QList<Pppd> pppds = runningPppds();
        const bool isPppdOurs
            = std::any_of(pppds.begin(), pppds.end(), [](const Pppd &pppd) { return pppd.isOurs; });
        switch (nextDisconnectStep(reply.value.toInt(), isPppdOurs, m_waits > 0)) {
        case DisconnectStep::Done:
            m_loop.exit(Ok);
            break;
        case DisconnectStep::Wait:
            sayThatItWaits();
            break;
        case DisconnectStep::EndAgain:
            endNow();
            break;
        }
    }

    void sayThatItWaits()
    {
        // One that has just been ended needs a moment to notice it.
        if (++m_waits == 2) {
            m_terminal.note(Say::tr("A connection is still being made: it can be ended for good "
                                    "only when the line is up or has failed. Waiting for that…"));
        }
    }

    DaemonBus &m_bus;
    const Terminal &m_terminal;
    int m_waits = 0;
    QEventLoop m_loop;
};

} // namespace

int runDisconnect(const Invocation &invocation, const Terminal &terminal)
{
    bool hasOthers = false;
    for (const Pppd &pppd : runningPppds()) {
        if (!pppd.isOurs) {
            hasOthers = true;
            terminal.note(Say::tr("Warning: another pppd is running (process %1: %2).")
                              .arg(pppd.pid)
                              .arg(printable(pppd.commandLine)));
        }
    }
    if (hasOthers && !invocation.has("force")) {
        terminal.note(Say::tr("Disconnecting ends every pppd of this system."));
        if (isatty(STDIN_FILENO) != 1) {
            return terminal.fail(
                Failed, Say::tr("Nothing done. --force disconnects all the same."));
        }
        if (!isAgreed(terminal)) {
            return terminal.fail(Failed, Say::tr("Nothing done."));
        }
    }
    DaemonBus bus;
    return Ending(bus, terminal).run();
}

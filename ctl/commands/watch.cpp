// SPDX-License-Identifier: MIT
// norvixctl watch
#include "client/daemon_bus.h"
#include "client/say.h"
#include "client/stop_signals.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/charset.h"
#include "ctl/screen/report.h"
#include "ctl/screen/watch_view.h"
#include "dbus/contract.h"

#include <QEventLoop>
#include <QTimer>

namespace {

constexpr int redrawMs = 1000;
constexpr int shortTimeoutMs = 3000;

/// The signals of every second; the totals close them.
bool isFigure(const QString &signal)
{
    return signal.startsWith(QLatin1String("transmission"))
        || signal == QLatin1String(DaemonSignal::connectionTime);
}

class View
{
public:
    View(DaemonBus &bus, const Terminal &terminal, int mostTicks)
        : m_bus(bus)
        , m_terminal(terminal)
        , m_mostTicks(mostTicks)
        , m_isScreen(terminal.form == Form::Human && terminal.isTerminal)
    {
    }

    int run(StopSignals &stop)
    {
        QObject::connect(&m_bus, &DaemonBus::received, &m_loop,
            [this](
                const QString &signal, const QVariantList &arguments) { take(signal, arguments); });
        QObject::connect(&m_bus, &DaemonBus::daemonAppeared, &m_loop, [this] { lookAgain(); });
        QObject::connect(&m_bus, &DaemonBus::daemonLeft, &m_loop, [this] { lookAgain(); });
        QObject::connect(&m_bus, &DaemonBus::busLost, &m_loop, [this] { m_loop.exit(NoDaemon); });
        QObject::connect(&stop, &StopSignals::stopped, &m_loop, [this] { m_loop.exit(Ok); });
        m_bus.listen();
        if (m_isScreen) {
            printf("\x1b[?1049h\x1b[?25l"); // another screen, no cursor
        }
        QTimer redraw;
        QObject::connect(&redraw, &QTimer::timeout, &m_loop, [this] { draw(); });
        if (m_isScreen) {
            redraw.start(redrawMs);
        }
        lookAgain();
        const int code = m_loop.exec();
        if (m_isScreen) {
            printf("\x1b[?25h\x1b[?1049l");
            fflush(stdout);
        }
        return code;
    }

private:
    /// Asks for what signals will not tell before they change.
    void lookAgain()
    {
        m_state.isDaemonThere = m_bus.isDaemonRunning();
        const auto ask = [this](const char *method) {
            return m_bus.call(method, {}, DaemonBus::Start::Never, shortTimeoutMs).value;
        };
        const QVariant connection = ask(DaemonMethod::getConnectionState);
        m_state.connection = connection.isValid() ? connection.toInt() : connectionUnknown;
        forgetConnection(m_state);
        if (m_state.connection == ConnectionUp) {
            m_state.interface = ask(DaemonMethod::getInterface).toString();
            m_state.address = ask(DaemonMethod::getIP).toString();
            m_state.route = ask(DaemonMethod::getDefaultRoute).toString();
        }
        m_isScreen ? draw() : printChange();
    }

    void take(const QString &signal, const QVariantList &arguments)
    {
        const bool closesTick = takeSignal(m_state, signal, arguments);
        if (signal == QLatin1String(DaemonSignal::defaultRoute)) {
            m_state.interface = m_bus
                                    .call(DaemonMethod::getInterface, {}, DaemonBus::Start::Never,
                                        shortTimeoutMs)
                                    .value.toString();
        }
        if (m_isScreen) {
            draw();
        } else if (closesTick) {
            m_lastLine = currentLine();
            m_terminal.line(m_lastLine);
        } else if (!isFigure(signal)) {
            printChange();
        }
        if (closesTick && ++m_ticks == m_mostTicks) {
            m_loop.exit(Ok);
        }
    }

    void draw() const
    {
        QString screen = QStringLiteral("\x1b[H");
        for (const QString &line :
            watchScreen(m_state, m_terminal.width(), m_terminal.height(), m_terminal.hasGlyphs)) {
            screen += QLatin1String("\x1b[2K") + line + QLatin1Char('\n');
        }
        const QByteArray bytes = toLocale(screen + QLatin1String("\x1b[J"));
        fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
        fflush(stdout);
    }

    QString currentLine() const
    {
        switch (m_terminal.form) {
        case Form::Terse: {
            QStringList words;
            const QJsonObject object = watchObject(m_state);
            for (auto value = object.begin(); value != object.end(); ++value) {
                words.append(value.key() + QLatin1Char('=') + terseText(value.value()));
            }
            return words.join(QLatin1Char('\t'));
        }
        case Form::Json:
            return jsonText(watchObject(m_state), true);
        case Form::Human:
            break;
        }
        return watchLine(m_state);
    }

    /// Not every signal changes what a line shows.
    void printChange()
    {
        const QString line = currentLine();
        if (line != m_lastLine) {
            m_terminal.line(line);
            m_lastLine = line;
        }
    }

    DaemonBus &m_bus;
    const Terminal &m_terminal;
    const int m_mostTicks;
    const bool m_isScreen;
    int m_ticks = 0;
    WatchState m_state;
    QString m_lastLine;
    QEventLoop m_loop;
};

} // namespace

int runWatch(const Invocation &invocation, const Terminal &terminal)
{
    int mostTicks = 0;
    if (invocation.has("count")) {
        const auto given = wholeNumber(invocation.value("count"), 1, 1000000);
        if (!given) {
            return terminal.fail(
                BadUsage, Say::tr("--count takes a whole number from 1 to %1.").arg(1000000));
        }
        mostTicks = *given;
    }
    StopSignals stop;
    DaemonBus bus;
    if (!bus.isConnected()) {
        return terminal.fail(bus.call(DaemonMethod::reply).failure);
    }
    View view(bus, terminal, mostTicks);
    const int code = view.run(stop);
    return code == Ok ? Ok : terminal.fail(ExitCode(code), Say::tr("The system bus has ended."));
}

// SPDX-License-Identifier: MIT
// norvixctl monitor
#include "client/daemon_bus.h"
#include "client/say.h"
#include "client/signal_text.h"
#include "client/stop_signals.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/remedy_text.h"
#include "ctl/screen/report.h"
#include "dbus/contract.h"

#include <QDateTime>
#include <QEventLoop>

namespace {

/// One event in the form that was asked for. @p name is the signal's name, or that of an event of
/// the client's own such as "daemon-left".
void printEvent(const Terminal &terminal, const QString &name, const QJsonObject &arguments,
    const QString &text)
{
    const QDateTime now = QDateTime::currentDateTime();
    switch (terminal.form) {
    case Form::Human:
        terminal.line(terminal.toned(now.toString(QStringLiteral("hh:mm:ss")), Tone::Faint)
            + QLatin1String("  ") + text);
        break;
    case Form::Terse: {
        QStringList words = {now.toString(Qt::ISODateWithMs), name};
        for (auto value = arguments.begin(); value != arguments.end(); ++value) {
            words.append(value.key() + QLatin1Char('=') + terseText(value.value()));
        }
        terminal.line(words.join(QLatin1Char('\t')));
        break;
    }
    case Form::Json:
        printJson(terminal,
            {{QStringLiteral("time"), now.toString(Qt::ISODateWithMs)},
                {QStringLiteral("signal"), name}, {QStringLiteral("arguments"), arguments}},
            true);
        break;
    }
}

} // namespace

int runMonitor(const Invocation &, const Terminal &terminal)
{
    StopSignals stop;
    DaemonBus bus;
    if (!bus.isConnected()) {
        return terminal.fail(bus.call(DaemonMethod::reply).failure);
    }
    QEventLoop loop;
    const auto own = [&terminal](const char *name, const QString &text) {
        printEvent(terminal, QLatin1String(name), {}, text);
    };
    QObject::connect(&bus, &DaemonBus::received, &loop,
        [&](const QString &signal, const QVariantList &arguments) {
            printEvent(terminal, signal, signalArguments(signal, arguments),
                signalWithRemedy(signal, arguments));
        });
    QObject::connect(&bus, &DaemonBus::daemonAppeared, &loop,
        [&] { own("daemon-appeared", Say::tr("the daemon has started")); });
    QObject::connect(&bus, &DaemonBus::daemonLeft, &loop,
        [&] { own("daemon-left", Say::tr("the daemon has ended; waiting for it to come back")); });
    QObject::connect(&bus, &DaemonBus::busLost, &loop, [&] { loop.exit(NoDaemon); });
    QObject::connect(&stop, &StopSignals::stopped, &loop, [&] { loop.exit(Ok); });
    bus.listen();
    if (bus.isDaemonRunning()) {
        own("daemon-present", Say::tr("listening to the daemon"));
    } else {
        own("daemon-absent", Say::tr("the daemon is not running; waiting for it"));
    }
    const int code = loop.exec();
    return code == Ok ? Ok : terminal.fail(ExitCode(code), Say::tr("The system bus has ended."));
}

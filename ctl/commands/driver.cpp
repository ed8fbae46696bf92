// SPDX-License-Identifier: MIT
// norvixctl driver show, restart
#include "client/daemon_bus.h"
#include "client/doctor_facts.h"
#include "client/say.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/report.h"
#include "dbus/contract.h"

#include <QEventLoop>
#include <QTimer>

namespace {

// Unloading waits for the driver's own threads, loading for firmware: the daemon gives each 90 s.
constexpr int restartMs = 200000;

QString moduleWord(Module module)
{
    switch (module) {
    case Module::Loaded:
        return QStringLiteral("loaded");
    case Module::Available:
        return QStringLiteral("available");
    case Module::Missing:
        return QStringLiteral("missing");
    case Module::Unknown:
        break;
    }
    return QStringLiteral("unknown");
}

} // namespace

int runDriverShow(const Invocation &, const Terminal &terminal)
{
    const DaemonBus bus;
    const BusReply compiling = bus.call(DaemonMethod::getIsCompiling);
    const Facts facts = gatherDriverFacts();
    const bool isKnown = !facts.driver.isEmpty();
    const QJsonValue none(QJsonValue::Null);

    Report report;
    report.add(QStringLiteral("driver"), isKnown ? QJsonValue(facts.driver) : none,
        Say::tr("Driver"), isKnown ? facts.driver : Say::tr("not known without a modem"));
    report.add(QStringLiteral("kernel"), facts.kernel, Say::tr("Kernel"), facts.kernel);
    report.add(QStringLiteral("state"), isKnown ? QJsonValue(moduleWord(facts.driverModule)) : none,
        isKnown ? Say::tr("State") : QString(), moduleText(facts.driverModule));
    report.add(QStringLiteral("compiling"),
        compiling.ok() ? QJsonValue(compiling.value.toBool()) : none,
        compiling.ok() ? Say::tr("Being built") : QString(),
        compiling.value.toBool() ? Say::tr("yes") : Say::tr("no"));
    report.print(terminal);
    return compiling.ok() ? Ok : terminal.fail(compiling.failure);
}

int runDriverRestart(const Invocation &, const Terminal &terminal)
{
    DaemonBus bus;
    QEventLoop loop;
    bool hasStarted = false;
    QObject::connect(&bus, &DaemonBus::received, &loop, [&](const QString &signal) {
        hasStarted = hasStarted || signal == QLatin1String(DaemonSignal::restartModemStarted);
        if (signal == QLatin1String(DaemonSignal::restartModemFinished) && hasStarted) {
            loop.exit(Ok);
        }
    });
    QObject::connect(&bus, &DaemonBus::daemonLeft, &loop, [&] { loop.exit(NoDaemon); });
    bus.listen();
    const BusReply reply = bus.call(DaemonMethod::restartModem, {}, DaemonBus::Start::IfNeeded);
    if (!reply.ok()) {
        return terminal.fail(reply.failure);
    }
    QTimer::singleShot(restartMs, &loop, [&] { loop.exit(WaitedTooLong); });
    const int code = loop.exec();
    if (code == NoDaemon) {
        return terminal.fail(NoDaemon, Say::tr("The daemon ended during the restart."));
    }
    if (code != Ok) {
        return terminal.fail(WaitedTooLong,
            Say::tr("The daemon did not report the end of the restart; see “norvixctl log”."));
    }
    terminal.paragraph(
        Say::tr("The driver is reloaded. The line needs up to a minute to synchronise again."));
    return Ok;
}

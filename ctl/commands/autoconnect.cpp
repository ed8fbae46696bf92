// SPDX-License-Identifier: MIT
// norvixctl autoconnect
#include "client/daemon_bus.h"
#include "client/say.h"
#include "client/settings_file.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/report.h"
#include "dbus/contract.h"

namespace {

struct Which
{
    bool boot;
    bool plug;
};

/// Without a choice both are meant.
Which chosen(const Invocation &invocation)
{
    const bool boot = invocation.has("boot");
    const bool plug = invocation.has("plug");
    return boot == plug ? Which{true, true} : Which{boot, plug};
}

int show(const DaemonBus &bus, const Terminal &terminal)
{
    const BusReply boot = bus.call(DaemonMethod::getConnectAtBoot);
    const BusReply plug = bus.call(DaemonMethod::getConnectAtModemPlug);
    if (!boot.ok() || !plug.ok()) {
        return terminal.fail(boot.ok() ? plug.failure : boot.failure);
    }
    const auto onOff = [](bool on) { return on ? Say::tr("on") : Say::tr("off"); };
    Report report;
    report.add(QStringLiteral("boot"), boot.value.toBool(), Say::tr("When the daemon starts"),
        onOff(boot.value.toBool()));
    report.add(QStringLiteral("newModem"), plug.value.toBool(),
        Say::tr("When a modem is taken into use"), onOff(plug.value.toBool()));
    const bool isKnown = canReadSettings();
    const bool known = settingText("autoconnect") == QLatin1String("true");
    report.add(QStringLiteral("modem"), isKnown ? QJsonValue(known) : QJsonValue(QJsonValue::Null),
        Say::tr("When the modem in use is plugged in"),
        isKnown ? onOff(known) : Say::tr("unknown"));
    report.print(terminal);
    return Ok;
}

} // namespace

int runAutoconnect(const Invocation &invocation, const Terminal &terminal)
{
    const DaemonBus bus;
    if (invocation.arguments.isEmpty()) {
        return show(bus, terminal);
    }
    const QString word = invocation.arguments.constFirst();
    if (word != QLatin1String("on") && word != QLatin1String("off")) {
        return terminal.fail(BadUsage, Say::tr("Say “on” or “off”, not “%1”.").arg(word));
    }
    const bool on = word == QLatin1String("on");
    const Which which = chosen(invocation);
    QVariantMap settings;
    if (which.boot) {
        settings.insert(QStringLiteral("connect_at_boot"), on);
    }
    if (which.plug) {
        settings.insert(QStringLiteral("connect_at_modem_plug"), on);
        settings.insert(QStringLiteral("autoconnect"), on);
    }
    const BusReply reply
        = bus.callSetup(SetupMethod::SetSettings, {settings}, DaemonBus::Start::IfNeeded);
    if (!reply.ok()) {
        return terminal.fail(reply.failure);
    }
    terminal.line(on ? Say::tr("Connections now start by themselves.")
                     : Say::tr("Connections no longer start by themselves."));
    return Ok;
}

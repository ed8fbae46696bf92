// SPDX-License-Identifier: MIT
// norvixctl modem show, known, plugged, adopt
#include "client/daemon_bus.h"
#include "client/link_facts.h"
#include "client/say.h"
#include "client/settings_file.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/report.h"
#include "dbus/contract.h"

namespace {

UsbId configuredId()
{
    return {settingNumber("vendor_id"), settingNumber("product_id")};
}

bool isConfigured(const UsbModem &modem)
{
    const UsbId id = configuredId();
    return modem.id.vendor == id.vendor && modem.id.product == id.product;
}

} // namespace

int runModemShow(const Invocation &, const Terminal &terminal)
{
    const DaemonBus bus;
    const BusReply plugged = bus.call(DaemonMethod::getIsModemPlugged);
    const UsbId id = configuredId();
    const bool isSet = id.vendor != 0;
    const QJsonValue none(QJsonValue::Null);
    const QString name = settingText("modem");
    const QString driver = QString::fromLatin1(driverOfVendor(id.vendor));

    Report report;
    report.add(QStringLiteral("name"), isSet ? QJsonValue(name) : none, Say::tr("Modem"),
        isSet ? name : Say::tr("none taken into use"));
    report.add(QStringLiteral("id"), isSet ? QJsonValue(idText(id)) : none,
        isSet ? Say::tr("USB id") : QString(), idText(id));
    report.add(QStringLiteral("driver"), isSet ? QJsonValue(driver) : none,
        isSet ? Say::tr("Driver") : QString(), driver);
    report.add(QStringLiteral("plugged"), plugged.ok() ? QJsonValue(plugged.value.toBool()) : none,
        plugged.ok() ? Say::tr("Plugged in") : QString(),
        plugged.value.toBool() ? Say::tr("yes") : Say::tr("no"));
    if (!canReadSettings()) {
        report.note(Say::tr("%1 is not there or not readable for this user.").arg(settingsPath()));
    }
    report.print(terminal);
    return plugged.ok() ? Ok : terminal.fail(plugged.failure);
}

int runModemKnown(const Invocation &, const Terminal &terminal)
{
    Table table(QStringLiteral("modems"),
        {QStringLiteral("name"), QStringLiteral("driver"), QStringLiteral("ids")},
        {Say::tr("Modem"), Say::tr("Driver"), Say::tr("USB ids")});
    for (const ModemFamily &family : modemFamilies()) {
        QStringList ids;
        for (const UsbId &id : family.ids) {
            ids.append(idText(id));
        }
        const QString name = QString::fromLatin1(family.name);
        const QString driver = QString::fromLatin1(family.driver);
        table.add({name, driver, QJsonArray::fromStringList(ids)},
            {name, driver, ids.join(QLatin1Char(' '))});
    }
    table.print(terminal);
    return Ok;
}

int runModemPlugged(const Invocation &, const Terminal &terminal)
{
    Table table(QStringLiteral("modems"),
        {QStringLiteral("name"), QStringLiteral("id"), QStringLiteral("port"),
            QStringLiteral("inUse"), QStringLiteral("beforeFirmware")},
        {Say::tr("Modem"), Say::tr("USB id"), Say::tr("Port"), Say::tr("In use"),
            Say::tr("Has firmware")});
    const auto yesNo = [](bool yes) { return yes ? Say::tr("yes") : Say::tr("no"); };
    for (const UsbModem &modem : pluggedModems()) {
        const bool inUse = isConfigured(modem);
        const bool isBefore = isBeforeFirmware(modem.id);
        const QString name = QString::fromLatin1(modem.family->name);
        table.add({name, idText(modem.id), modem.port, inUse, isBefore},
            {name, idText(modem.id), modem.port, yesNo(inUse), yesNo(!isBefore)});
    }
    if (table.isEmpty() && terminal.form == Form::Human) {
        terminal.paragraph(Say::tr("No supported modem is plugged in."));
    } else {
        table.print(terminal);
    }
    return Ok;
}

int runModemAdopt(const Invocation &, const Terminal &terminal)
{
    const DaemonBus bus;
    const BusReply plugged = bus.call(DaemonMethod::getIsModemPlugged);
    if (!plugged.ok()) {
        return terminal.fail(plugged.failure);
    }
    if (plugged.value.toBool()) {
        terminal.paragraph(Say::tr("The modem that is plugged in is already in use."));
        return Ok;
    }
    if (pluggedModems().isEmpty()) {
        return terminal.fail(Failed, Say::tr("No supported modem is plugged in."));
    }
    // Adopting nothing would make the daemon forget the modem that it knows.
    const BusReply announced = bus.callSetup(SetupMethod::GetAnnouncedModem);
    if (!announced.ok()) {
        return terminal.fail(announced.failure);
    }
    const QString name = announced.value.toString();
    if (name.isEmpty()) {
        return terminal.fail(Failed,
            Say::tr("The daemon has not noticed a new modem: it only does when one is plugged in "
                    "while it runs. Unplug it, plug it in again, wait ten seconds, and repeat "
                    "the command."));
    }
    const BusReply reply = bus.call(DaemonMethod::useNewModem);
    if (!reply.ok()) {
        return terminal.fail(reply.failure);
    }
    terminal.paragraph(Say::tr("%1 is now in use.").arg(name));
    return Ok;
}

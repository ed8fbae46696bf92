// SPDX-License-Identifier: MIT
#include "client/doctor_checks.h"

#include "client/ppp_files.h"
#include "client/pppd_explain.h"
#include "client/say.h"

#include <optional>

namespace {

Finding good(const QString &text)
{
    return {QString(), QString(), Verdict::Good, text, QString()};
}

Finding doubtful(const QString &text, const QString &remedy)
{
    return {QString(), QString(), Verdict::Doubtful, text, remedy};
}

Finding fault(const QString &text, const QString &remedy)
{
    return {QString(), QString(), Verdict::Fault, text, remedy};
}

Finding notChecked(const QString &text, const QString &remedy = QString())
{
    return {QString(), QString(), Verdict::NotChecked, text, remedy};
}

QString asRoot()
{
    return Say::tr("Repeat the check with “sudo norvixctl doctor”.");
}

struct NeededModule
{
    QString name;
    Module state;
};

/// A fault that names those of the needed modules that the kernel does not have; nothing when it
/// has all of them.
std::optional<Finding> lackingModules(const Facts &facts, const QList<NeededModule> &needed)
{
    QStringList lacking;
    for (const NeededModule &module : needed) {
        if (module.state == Module::Missing) {
            lacking.append(module.name);
        }
    }
    if (lacking.isEmpty()) {
        return std::nullopt;
    }
    return fault(Say::tr("Kernel %1 lacks what this connection needs: %2.")
                     .arg(facts.kernel, lacking.join(QStringLiteral(", "))),
        Say::tr("Install the distribution's full kernel, not one for clouds or a minimal one, and "
                "boot it: “sudo apt install linux-image-amd64”, “sudo reboot”."));
}

Finding checkDaemon(const Facts &facts)
{
    if (!facts.isBusThere) {
        return fault(Say::tr("The system bus can not be reached."),
            Say::tr("Start it: “sudo systemctl start dbus”."));
    }
    if (!facts.isDaemonRunning) {
        return fault(Say::tr("The daemon is not running."),
            Say::tr("Start it: “sudo systemctl start norvix-daemon”."));
    }
    if (!facts.doesDaemonAnswer) {
        return fault(Say::tr("The daemon is on the bus but does not answer."),
            Say::tr("Look at “norvixctl log”, then restart it: “sudo systemctl restart "
                    "norvix-daemon”."));
    }
    return good(Say::tr("running and answering"));
}

Finding checkCompanion(const Facts &facts)
{
    switch (facts.isHalAnswering) {
    case Answer::Yes:
        return good(Say::tr("running"));
    case Answer::No:
        return fault(Say::tr("The companion that finds USB devices does not answer on the bus, so "
                             "no modem is ever noticed."),
            Say::tr("Start it: “sudo systemctl start norvix-hald”."));
    case Answer::Unknown:
        break;
    }
    return notChecked(Say::tr("not known without the system bus"));
}

Finding checkPolicy(const Facts &facts)
{
    if (!facts.hasPolicy) {
        return fault(Say::tr("/etc/dbus-1/system.d/norvix.conf is missing."),
            Say::tr("Install the bus policy again and reload the bus: “sudo systemctl reload "
                    "dbus”."));
    }
    return good(Say::tr("installed"));
}

Finding checkPermission(const Facts &facts)
{
    switch (facts.isUserAllowed) {
    case Answer::Yes:
        return good(Say::tr("this user may use the daemon"));
    case Answer::Unknown:
        return notChecked(Say::tr("not known without the daemon"));
    case Answer::No:
        break;
    }
    if (!facts.hasGroup) {
        return fault(Say::tr("The bus refuses this user, and there is no group “norvix”."),
            Say::tr("Create the group and join it: “sudo groupadd --system norvix”, “sudo usermod "
                    "-a -G norvix $USER”, then log in again."));
    }
    if (facts.isMember) {
        return fault(Say::tr("This user is in the group “norvix”, but this session began earlier."),
            Say::tr("Log out and in again."));
    }
    return fault(Say::tr("The bus refuses this user: only root and the group “norvix” may."),
        Say::tr("Join the group: “sudo usermod -a -G norvix $USER”, then log in again."));
}

Finding checkModem(const Facts &facts)
{
    if (facts.modems.isEmpty()) {
        return fault(Say::tr("No modem that the daemon knows is plugged in."),
            Say::tr("Plug it in, without a hub if you can. “norvixctl modem known” lists what is "
                    "supported."));
    }
    const UsbModem &modem = facts.modems.constFirst();
    const QString name
        = QStringLiteral("%1 (%2)").arg(QString::fromLatin1(modem.family->name), idText(modem.id));
    const bool isConfigured = facts.configured.vendor == modem.id.vendor
        && facts.configured.product == modem.id.product;
    if (facts.areSettingsReadable && !isConfigured) {
        return fault(Say::tr("%1 is plugged in but not taken into use.").arg(name),
            Say::tr("Unplug it, plug it in again, wait ten seconds, then: “norvixctl modem "
                    "adopt”."));
    }
    if (facts.doesDaemonSeeModem == Answer::No) {
        return doubtful(Say::tr("%1 is plugged in, but the daemon does not see it.").arg(name),
            Say::tr("Unplug it and plug it in again; see the check of the companion."));
    }
    return good(Say::tr("%1 is plugged in").arg(name));
}

Finding checkDriver(const Facts &facts)
{
    if (facts.driver.isEmpty()) {
        return notChecked(Say::tr("not known without a modem"));
    }
    if (facts.isCompiling) {
        return doubtful(
            Say::tr("The driver is being built now."), Say::tr("Wait until it has finished."));
    }
    // Without what it stands on no driver loads, and none can be built.
    if (facts.isDriverOverAtm()
        && (facts.atmModule == Module::Missing || facts.usbatmModule == Module::Missing)) {
        return *lackingModules(facts,
            {{QStringLiteral("atm"), facts.atmModule},
                {QStringLiteral("usbatm"), facts.usbatmModule},
                {facts.driver, facts.driverModule}});
    }
    switch (facts.driverModule) {
    case Module::Loaded:
        return good(Say::tr("%1 is loaded").arg(facts.driver));
    case Module::Available:
        return good(Say::tr("%1 is there for kernel %2").arg(facts.driver, facts.kernel));
    case Module::Unknown:
        return notChecked(Say::tr("the modules of kernel %1 can not be listed").arg(facts.kernel));
    case Module::Missing:
        break;
    }
    const QString text
        = Say::tr("There is no driver %1 for kernel %2.").arg(facts.driver, facts.kernel);
    if (facts.hasDriverSource && !facts.lackingPacker.isEmpty()) {
        return fault(text,
            Say::tr("Install the kernel's headers and %1, with which this kernel's modules are "
                    "compressed, and restart the daemon: it then builds the driver (“sudo apt "
                    "install linux-headers-%2 %1”).")
                .arg(facts.lackingPacker, facts.kernel));
    }
    return fault(text,
        facts.hasDriverSource
            ? Say::tr("Install the kernel's headers and restart the daemon: it then builds the "
                      "driver (“sudo apt install linux-headers-%1”).")
                  .arg(facts.kernel)
            : Say::tr("Install the distribution's full kernel, or put the driver's source into "
                      "/opt/norvix/drivers and restart the daemon."));
}

QString firmwareRemedy(const Facts &facts)
{
    if (!facts.firmwarePackage.isEmpty()) {
        return Say::tr("Install the firmware: “sudo apt install %1” (of the component "
                       "non-free-firmware), then unplug the modem and plug it in again.")
            .arg(facts.firmwarePackage);
    }
    return Say::tr("Put the modem's firmware files into /lib/firmware (%1), then unplug the modem "
                   "and plug it in again.")
        .arg(facts.firmware);
}

Finding checkFirmware(const Facts &facts)
{
    if (facts.driver.isEmpty()) {
        return notChecked(Say::tr("not known without a modem"));
    }
    const QString remedy = firmwareRemedy(facts);
    for (const UsbModem &modem : facts.modems) {
        if (isBeforeFirmware(modem.id)) {
            return fault(Say::tr("The modem still shows the id %1: it has not got its firmware.")
                             .arg(idText(modem.id)),
                remedy);
        }
    }
    if (facts.line && facts.line->line == Line::FirmwareFailed) {
        return fault(Say::tr("The driver could not load the modem's firmware."), remedy);
    }
    if (facts.firmware.isEmpty()) {
        return good(Say::tr("none needed"));
    }
    if (!facts.hasFirmware) {
        return doubtful(Say::tr("/lib/firmware/%1 is missing.").arg(facts.firmware), remedy);
    }
    return good(Say::tr("%1 is there").arg(facts.firmware));
}

Finding checkLine(const Facts &facts)
{
    if (facts.modems.isEmpty()) {
        return notChecked(Say::tr("not known without a modem"));
    }
    const QString wait = Say::tr("Wait a minute. If it stays so, check the telephone cable and the "
                                 "filter, then “norvixctl driver restart”.");
    if (facts.line) {
        if (facts.line->line == Line::Up) {
            return good(lineText(*facts.line));
        }
        const QString text = Say::tr("The line is not up: %1.").arg(lineText(*facts.line));
        return facts.line->line == Line::Down || facts.line->line == Line::FirmwareFailed
            ? fault(text, wait)
            : doubtful(text, wait);
    }
    if (facts.carrier) {
        return *facts.carrier ? good(Say::tr("synchronised"))
                              : doubtful(Say::tr("The ATM device reports no carrier."), wait);
    }
    return notChecked(Say::tr("the kernel log is not readable for this user"), asRoot());
}

Finding checkLineSettings(const Facts &facts)
{
    if (facts.isUnicorn()) {
        return good(Say::tr("this modem needs none"));
    }
    const QString remedy = Say::tr("Set them: “norvixctl line set --vpi 8 --vci 35 --protocol "
                                   "PPPoE”; “norvixctl line providers” lists common values.");
    if (facts.protocol.isEmpty() && facts.vpi.isEmpty() && facts.vci.isEmpty()) {
        return fault(Say::tr("VPI, VCI and protocol are not set."), remedy);
    }
    if (facts.isPppoe() && (facts.vpi.isEmpty() || facts.vci.isEmpty())) {
        return fault(Say::tr("PPPoE needs VPI and VCI, and one of them is not set."), remedy);
    }
    if (facts.isPppoe() && facts.vpi.toInt() == 0 && facts.vci.toInt() == 0) {
        return fault(Say::tr("VPI and VCI are both 0, which no bridge accepts."), remedy);
    }
    if (!facts.protocol.isEmpty() && facts.protocol != QLatin1String("PPPoE")
        && facts.protocol != QLatin1String("PPPoA")) {
        return doubtful(
            Say::tr("The protocol “%1” is not known and means PPPoA.").arg(facts.protocol), remedy);
    }
    return good(QStringLiteral("%1, VPI %2, VCI %3")
                    .arg(facts.protocol.isEmpty() ? QStringLiteral("PPPoA") : facts.protocol,
                        facts.vpi.isEmpty() ? QStringLiteral("-") : facts.vpi,
                        facts.vci.isEmpty() ? QStringLiteral("-") : facts.vci));
}

Finding checkPpp(const Facts &facts)
{
    if (!facts.hasPppd) {
        return fault(
            Say::tr("pppd is not installed."), Say::tr("Install it: “sudo apt install ppp”."));
    }
    if (const auto lacking = lackingModules(facts,
            {{QStringLiteral("ppp_generic"), facts.pppModule},
                {QLatin1String(facts.protocolModuleName()), facts.protocolModule}})) {
        return *lacking;
    }
    if (!facts.hasPppDevice && facts.pppModule != Module::Available) {
        return doubtful(Say::tr("/dev/ppp does not exist."),
            Say::tr("Load the module: “sudo modprobe ppp_generic”."));
    }
    return good(Say::tr("pppd and the kernel's support are there"));
}

Finding checkBridge(const Facts &facts)
{
    if (!facts.isPppoe()) {
        return good(Say::tr("not needed for this protocol"));
    }
    if (const auto lacking
        = lackingModules(facts, {{QStringLiteral("br2684"), facts.bridgeModule}})) {
        return *lacking;
    }
    if (!facts.hasBridgeTool) {
        return fault(Say::tr("%1 is missing or can not be run.").arg(facts.bridgeTool),
            Say::tr("“sudo apt install br2684ctl”, then “sudo ln -s /usr/sbin/br2684ctl %1”.")
                .arg(facts.bridgeTool));
    }
    return good(Say::tr("there"));
}

QString withoutShippedPeers()
{
    return Say::tr("The peer files that are shipped in /opt/norvix/share/peers are missing, too: "
                   "install norvix again, or write this one by hand (norvix-daemon(8) shows one "
                   "that works).");
}

Finding checkPeer(const Facts &facts)
{
    if (!facts.peer.exists) {
        return fault(Say::tr("%1 is missing.").arg(facts.peer.path),
            facts.hasShippedPeers
                ? Say::tr("Let the shipped one be put there: “sudo norvixctl doctor --fix”.")
                : withoutShippedPeers());
    }
    if (!facts.peer.content) {
        return notChecked(
            Say::tr("%1 is not readable for this user").arg(facts.peer.path), asRoot());
    }
    const QStringList faults = peerFaults(*facts.peer.content, facts.peerKind(), facts.circuit());
    if (!faults.isEmpty()) {
        return fault(Say::tr("%1: %2").arg(facts.peer.path, faults.join(QLatin1Char(' '))),
            facts.hasShippedPeers ? Say::tr(
                "“sudo norvixctl doctor --fix” puts the shipped one in place of one that "
                "nobody has edited; otherwise correct it (norvix-daemon(8) shows one that "
                "works).")
                                  : withoutShippedPeers());
    }
    return good(Say::tr("%1 is fine").arg(facts.peer.path));
}

Finding checkSecretsFile(const SeenFile &file)
{
    const QString mend = Say::tr("Let it be mended: “sudo norvixctl doctor --fix”.");
    if (!file.exists) {
        return fault(Say::tr("%1 is missing.").arg(file.path), mend);
    }
    if (file.owner != 0 || (file.mode & 077) != 0) {
        return fault(
            Say::tr("%1 holds passwords, and others than root may read it.").arg(file.path), mend);
    }
    if (!file.content) {
        return notChecked(Say::tr("%1 is readable for root only").arg(file.path), asRoot());
    }
    if (!hasEntryAtStart(*file.content)) {
        return fault(
            Say::tr("%1 does not begin with the account's entry: a changed password would never "
                    "take effect.")
                .arg(file.path),
            mend);
    }
    const QList<SecretsEntry> entries = secretsEntries(*file.content);
    if (entries.constFirst().login == placeholderLogin()) {
        return fault(Say::tr("No account is stored yet."),
            Say::tr("Set the account: “norvixctl account set”."));
    }
    return good(Say::tr("order and modes are right"));
}

Finding checkSecrets(const Facts &facts)
{
    Finding pap = checkSecretsFile(facts.papSecrets);
    if (pap.verdict != Verdict::Good) {
        return pap;
    }
    Finding chap = checkSecretsFile(facts.chapSecrets);
    if (chap.verdict != Verdict::Good) {
        return chap;
    }
    const QByteArray login = secretsEntries(*facts.papSecrets.content).constFirst().login;
    if (facts.peer.content && peerLogin(*facts.peer.content) != QString::fromLatin1(login)) {
        return fault(Say::tr("The login of the secrets is not the login of the peer file."),
            Say::tr("Set the account: “norvixctl account set”."));
    }
    return chap;
}

Finding checkResolver(const Facts &facts)
{
    if (!facts.resolver.isReadable) {
        return doubtful(Say::tr("%1 can not be read.").arg(facts.resolver.path),
            Say::tr("The daemon writes it at the next connection."));
    }
    if (facts.resolver.servers.isEmpty()) {
        return doubtful(Say::tr("%1 names no server.").arg(facts.resolver.path),
            Say::tr("The daemon writes it at the next connection."));
    }
    return good(facts.resolver.servers.join(QStringLiteral(", ")));
}

Finding checkOtherPppd(const Facts &facts)
{
    QStringList others;
    for (const Pppd &pppd : facts.pppds) {
        if (!pppd.isOurs) {
            others.append(QString::number(pppd.pid));
        }
    }
    if (!others.isEmpty()) {
        return doubtful(Say::tr("Another pppd is running (%1); disconnecting ends every pppd.")
                            .arg(others.join(QStringLiteral(", "))),
            Say::tr("End the other connection first, or do not disconnect while it is needed."));
    }
    return good(Say::tr("none"));
}

Finding checkLastAttempt(const Facts &facts)
{
    if (!facts.log.exists) {
        return notChecked(Say::tr("there is no log yet"));
    }
    if (!facts.log.content) {
        return notChecked(Say::tr("the daemon's log is not readable for this user"), asRoot());
    }
    const PppdVerdict verdict = explainPppd(pppdLinesOfLog(*facts.log.content));
    if (verdict.line.isEmpty()) {
        return good(Say::tr("nothing to report"));
    }
    const QString text = Say::tr("%1 (pppd: “%2”)").arg(verdict.meaning, verdict.line);
    return verdict.isGood ? good(text) : doubtful(text, verdict.remedy);
}

struct Check
{
    const char *id;
    const char *title;
    Finding (*run)(const Facts &);
};

const QList<Check> &checks()
{
    static const QList<Check> table = {
        {"daemon", QT_TRANSLATE_NOOP("Say", "Daemon"), checkDaemon},
        {"companion", QT_TRANSLATE_NOOP("Say", "Device companion"), checkCompanion},
        {"policy", QT_TRANSLATE_NOOP("Say", "Bus policy"), checkPolicy},
        {"permission", QT_TRANSLATE_NOOP("Say", "Bus permission"), checkPermission},
        {"modem", QT_TRANSLATE_NOOP("Say", "Modem"), checkModem},
        {"driver", QT_TRANSLATE_NOOP("Say", "Driver"), checkDriver},
        {"firmware", QT_TRANSLATE_NOOP("Say", "Firmware"), checkFirmware},
        {"line", QT_TRANSLATE_NOOP("Say", "Line"), checkLine},
        {"line-settings", QT_TRANSLATE_NOOP("Say", "Line settings"), checkLineSettings},
        {"ppp", QT_TRANSLATE_NOOP("Say", "PPP"), checkPpp},
        {"bridge", QT_TRANSLATE_NOOP("Say", "Bridge program"), checkBridge},
        {"peer", QT_TRANSLATE_NOOP("Say", "Peer file"), checkPeer},
        {"secrets", QT_TRANSLATE_NOOP("Say", "Account files"), checkSecrets},
        {"resolver", QT_TRANSLATE_NOOP("Say", "Resolver"), checkResolver},
        {"other-pppd", QT_TRANSLATE_NOOP("Say", "Other pppd"), checkOtherPppd},
        {"last-attempt", QT_TRANSLATE_NOOP("Say", "Last attempt"), checkLastAttempt},
    };
    return table;
}

} // namespace

QList<Finding> examine(const Facts &facts)
{
    QList<Finding> findings;
    for (const Check &check : checks()) {
        Finding finding = check.run(facts);
        finding.id = QLatin1String(check.id);
        finding.title = Say::tr(check.title);
        findings.append(finding);
    }
    return findings;
}

QString verdictWord(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Good:
        return QStringLiteral("ok");
    case Verdict::Doubtful:
        return QStringLiteral("warning");
    case Verdict::Fault:
        return QStringLiteral("fault");
    case Verdict::NotChecked:
        break;
    }
    return QStringLiteral("not-checked");
}

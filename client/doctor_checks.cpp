// SPDX-License-Identifier: MIT
#include "client/doctor_checks.h"

#include "client/ppp_files.h"
#include "client/pppd_explain.h"
#include "client/say.h"
#include "dbus/contract.h"

#include <optional>

namespace {

Finding good(const QString &text)
{
    return {QString(), Verdict::Good, {{text, {}}}, {}};
}

Finding doubtful(const QString &text, RemedyKind remedy, const QString &detail = QString())
{
    return {QString(), Verdict::Doubtful, {{text, {}}}, {remedy, detail}};
}

Finding fault(const QString &text, RemedyKind remedy, const QString &detail = QString())
{
    return {QString(), Verdict::Fault, {{text, {}}}, {remedy, detail}};
}

Finding notChecked(const QString &text, RemedyKind remedy = RemedyKind::None)
{
    return {QString(), Verdict::NotChecked, {{text, {}}}, {remedy, QString()}};
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
        RemedyKind::InstallKernel);
}

Finding checkDaemon(const Facts &facts)
{
    if (!facts.isBusThere) {
        return fault(Say::tr("The system bus can not be reached."), RemedyKind::StartBus);
    }
    if (!facts.isDaemonRunning) {
        return fault(Say::tr("The daemon is not running."), RemedyKind::StartDaemon);
    }
    if (!facts.doesDaemonAnswer) {
        return fault(
            Say::tr("The daemon is on the bus but does not answer."), RemedyKind::RestartDaemon);
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
            RemedyKind::StartCompanion);
    case Answer::Unknown:
        break;
    }
    return notChecked(Say::tr("not known without the system bus"));
}

Finding checkPolicy(const Facts &facts)
{
    if (!facts.hasPolicy) {
        return fault(
            Say::tr("/etc/dbus-1/system.d/norvix.conf is missing."), RemedyKind::InstallPolicy);
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
            RemedyKind::CreateGroup);
    }
    if (facts.isMember) {
        return fault(Say::tr("This user is in the group “norvix”, but this session began earlier."),
            RemedyKind::LogInAgain);
    }
    return fault(Say::tr("The bus refuses this user: only root and the group “norvix” may."),
        RemedyKind::JoinGroup);
}

Finding checkModem(const Facts &facts)
{
    if (facts.modems.isEmpty()) {
        return fault(
            Say::tr("No modem that the daemon knows is plugged in."), RemedyKind::PlugModem);
    }
    const UsbModem &modem = facts.modems.constFirst();
    const QString name
        = QStringLiteral("%1 (%2)").arg(QString::fromLatin1(modem.family->name), idText(modem.id));
    const bool isConfigured = facts.configured.vendor == modem.id.vendor
        && facts.configured.product == modem.id.product;
    if (facts.areSettingsReadable && !isConfigured) {
        return fault(Say::tr("%1 is plugged in but not taken into use.").arg(name),
            RemedyKind::ReplugAndAdoptModem);
    }
    if (facts.doesDaemonSeeModem == Answer::No) {
        return doubtful(Say::tr("%1 is plugged in, but the daemon does not see it.").arg(name),
            RemedyKind::ReplugModem);
    }
    return good(Say::tr("%1 is plugged in").arg(name));
}

Finding checkDriver(const Facts &facts)
{
    const NeededModule atm = {QStringLiteral("atm"), facts.atmModule};
    const NeededModule usbatm = {QStringLiteral("usbatm"), facts.usbatmModule};
    if (facts.driver.isEmpty()) {
        // All modems but one need them.
        std::optional<Finding> lacking = lackingModules(facts, {atm, usbatm});
        if (!lacking) {
            return notChecked(Say::tr("not known without a modem"));
        }
        lacking->verdict = Verdict::Doubtful;
        return *lacking;
    }
    if (facts.isCompiling) {
        return doubtful(Say::tr("The driver is being built now."), RemedyKind::WaitForDriver);
    }
    // Without what it stands on no driver loads, and none can be built.
    if (facts.isDriverOverAtm()
        && (facts.atmModule == Module::Missing || facts.usbatmModule == Module::Missing)) {
        return *lackingModules(facts, {atm, usbatm, {facts.driver, facts.driverModule}});
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
    if (!facts.hasDriverSource) {
        return fault(text, RemedyKind::InstallDriver);
    }
    return facts.lackingPacker.isEmpty() ? fault(text, RemedyKind::InstallHeaders, facts.kernel)
                                         : fault(text, RemedyKind::InstallHeadersAndPacker,
                                             facts.kernel + QLatin1Char(' ') + facts.lackingPacker);
}

Finding withoutFirmware(Verdict verdict, const QString &text, const Facts &facts)
{
    const Remedy remedy = facts.firmwarePackage.isEmpty()
        ? Remedy{RemedyKind::CopyFirmware, facts.firmware}
        : Remedy{RemedyKind::InstallFirmwarePackage, facts.firmwarePackage};
    return {QString(), verdict, {{text, {}}}, remedy};
}

Finding checkFirmware(const Facts &facts)
{
    if (facts.driver.isEmpty()) {
        return notChecked(Say::tr("not known without a modem"));
    }
    for (const UsbModem &modem : facts.modems) {
        if (isBeforeFirmware(modem.id)) {
            return withoutFirmware(Verdict::Fault,
                Say::tr("The modem still shows the id %1: it has not got its firmware.")
                    .arg(idText(modem.id)),
                facts);
        }
    }
    if (facts.line && facts.line->line == Line::FirmwareFailed) {
        return withoutFirmware(
            Verdict::Fault, Say::tr("The driver could not load the modem's firmware."), facts);
    }
    if (facts.firmware.isEmpty()) {
        return good(Say::tr("none needed"));
    }
    if (!facts.hasFirmware) {
        return withoutFirmware(
            Verdict::Doubtful, Say::tr("/lib/firmware/%1 is missing.").arg(facts.firmware), facts);
    }
    return good(Say::tr("%1 is there").arg(facts.firmware));
}

Finding checkLine(const Facts &facts)
{
    if (facts.modems.isEmpty()) {
        return notChecked(Say::tr("not known without a modem"));
    }
    const RemedyKind wait = RemedyKind::WaitForLine;
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
    return notChecked(
        Say::tr("the kernel log is not readable for this user"), RemedyKind::LookAsRoot);
}

Finding checkLineSettings(const Facts &facts)
{
    if (facts.isUnicorn()) {
        return good(Say::tr("this modem needs none"));
    }
    const RemedyKind remedy = RemedyKind::SetLine;
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
        return fault(Say::tr("pppd is not installed."), RemedyKind::InstallPppd);
    }
    if (const auto lacking = lackingModules(facts,
            {{QStringLiteral("ppp_generic"), facts.pppModule},
                {QLatin1String(facts.protocolModuleName()), facts.protocolModule}})) {
        return *lacking;
    }
    if (!facts.hasPppDevice && facts.pppModule != Module::Available) {
        return doubtful(Say::tr("/dev/ppp does not exist."), RemedyKind::LoadPppModule);
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
            RemedyKind::InstallBridge, facts.bridgeTool);
    }
    return good(Say::tr("there"));
}

Finding checkPeer(const Facts &facts)
{
    if (!facts.peer.exists) {
        return fault(Say::tr("%1 is missing.").arg(facts.peer.path),
            facts.hasShippedPeers ? RemedyKind::PlacePeer : RemedyKind::InstallPeers);
    }
    if (!facts.peer.content) {
        return notChecked(Say::tr("%1 is not readable for this user").arg(facts.peer.path),
            RemedyKind::LookAsRoot);
    }
    const QList<Fact> faults = peerFaults(*facts.peer.content, facts.peerKind(), facts.circuit());
    if (!faults.isEmpty()) {
        Finding found = fault(facts.peer.path + QLatin1Char(':'),
            facts.hasShippedPeers ? RemedyKind::ReplacePeer : RemedyKind::InstallPeers);
        found.facts += faults;
        return found;
    }
    return good(Say::tr("%1 is fine").arg(facts.peer.path));
}

Finding checkSecretsFile(const SeenFile &file)
{
    const RemedyKind mend = RemedyKind::MendSecrets;
    if (!file.exists) {
        return fault(Say::tr("%1 is missing.").arg(file.path), mend);
    }
    if (file.owner != 0 || (file.mode & 077) != 0) {
        return fault(
            Say::tr("%1 holds passwords, and others than root may read it.").arg(file.path), mend);
    }
    if (!file.content) {
        return notChecked(
            Say::tr("%1 is readable for root only").arg(file.path), RemedyKind::LookAsRoot);
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
        return fault(Say::tr("No account is stored yet."), RemedyKind::SetAccount);
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
            RemedyKind::SetAccount);
    }
    return chap;
}

Finding checkResolver(const Facts &facts)
{
    if (!facts.resolver.isReadable) {
        return doubtful(
            Say::tr("%1 can not be read.").arg(facts.resolver.path), RemedyKind::WaitForResolver);
    }
    if (facts.resolver.servers.isEmpty()) {
        return doubtful(
            Say::tr("%1 names no server.").arg(facts.resolver.path), RemedyKind::WaitForResolver);
    }
    const QList<StrayServer> stray = judgeRoutes(facts.routes).strayServers;
    if (!stray.isEmpty()) {
        Finding finding = doubtful(strayServerText(stray.constFirst()), RemedyKind::ChooseServers);
        for (const StrayServer &server : stray.mid(1)) {
            finding.facts.append({strayServerText(server), {}});
        }
        return finding;
    }
    return good(facts.resolver.servers.join(QStringLiteral(", ")));
}

Finding checkRoute(const Facts &facts)
{
    const RouteJudgement judgement = judgeRoutes(facts.routes);
    switch (judgement.use) {
    case RouteUse::Unknown:
        return notChecked(Say::tr("the table of routes can not be read"));
    case RouteUse::NoLink:
        return good(Say::tr("no connection is up"));
    case RouteUse::NoDefault:
    case RouteUse::Elsewhere:
        return {QString(), Verdict::Doubtful, {{routeText(judgement, facts.routes.link), {}}},
            routeRemedy(judgement, facts.routes.link)};
    case RouteUse::ThroughLink:
        break;
    }
    Finding finding = good(Say::tr("through %1").arg(facts.routes.link));
    if (!judgement.ipv6Interface.isEmpty()) {
        finding.facts.append({Say::tr("(IPv6: through %1)").arg(judgement.ipv6Interface), {}});
    }
    return finding;
}

/// What all programs that ours has to get along with are judged by.
Finding checkNeighbour(const Neighbour &neighbour, const QString &isFine, const QString &isNot,
    RemedyKind mend, const QString &whatFor)
{
    if (!neighbour.isPresent) {
        return good(Say::tr("not in use here"));
    }
    if (!neighbour.hasFile) {
        return {QString(), Verdict::Doubtful,
            {{Say::tr("%1 is missing: %2").arg(neighbour.file, whatFor), {}}},
            {neighbour.isFileOurs ? RemedyKind::InstallNeighbourFile
                                  : RemedyKind::InstallResolvconfHook,
                neighbour.file}};
    }
    if (!neighbour.hiddenBy.isEmpty()) {
        return doubtful(Say::tr("%1 takes the place of %2: %3")
                            .arg(neighbour.hiddenBy, neighbour.file, whatFor),
            RemedyKind::RemoveOverride, neighbour.hiddenBy);
    }
    return neighbour.isInForce == Answer::No ? doubtful(isNot, mend) : good(isFine);
}

Finding checkNetworkManager(const Facts &facts)
{
    return checkNeighbour(facts.neighbours.networkManager,
        Say::tr("leaves the modem's interfaces alone"),
        Say::tr("It manages the modem's interfaces."), RemedyKind::ReloadNetworkManager,
        Say::tr("it may take the modem's interfaces into its hands."));
}

Finding checkNetworkd(const Facts &facts)
{
    return checkNeighbour(facts.neighbours.networkd, Say::tr("leaves the modem's interfaces alone"),
        Say::tr("It manages the modem's interfaces."), RemedyKind::ReloadNetworkd,
        Say::tr("it may take the modem's interfaces into its hands."));
}

Finding checkResolved(const Facts &facts)
{
    return checkNeighbour(facts.neighbours.resolved, Say::tr("is told the provider's servers"),
        Say::tr("It has not been told the provider's servers."), RemedyKind::Connect,
        Say::tr("it is not told the provider's servers, and no name may resolve."));
}

Finding checkResolvconf(const Facts &facts)
{
    return checkNeighbour(facts.neighbours.resolvconf, Say::tr("is told the provider's servers"),
        QString(), RemedyKind::None,
        Say::tr("it is not told the provider's servers, and no name may resolve."));
}

Finding withoutKeeper(FailureKind kind)
{
    if (kind == FailureKind::NoBus) {
        return notChecked(Say::tr("not known without the system bus"));
    }
    if (kind == FailureKind::KeeperMissing) {
        return doubtful(
            Say::tr("The keeper is not installed: a connection that is lost stays lost."),
            RemedyKind::InstallKeeper);
    }
    if (kind == FailureKind::KeeperStopped) {
        return doubtful(Say::tr("The keeper is not running: a connection that is lost stays lost."),
            RemedyKind::StartKeeper);
    }
    if (kind == FailureKind::NotPermitted) {
        return doubtful(Say::tr("The bus does not let this user ask the keeper, which everybody "
                                "may."),
            RemedyKind::InstallKeeperPolicy);
    }
    return doubtful(kind == FailureKind::KeeperNoAnswer
            ? Say::tr("The keeper is on the bus but does not answer.")
            : Say::tr("What the keeper answers is not understood."),
        RemedyKind::RestartKeeper);
}

Finding checkKeeper(const Facts &facts)
{
    if (!facts.keeper.ok()) {
        return withoutKeeper(facts.keeper.failure.kind);
    }
    const KeeperState &state = facts.keeper.value;
    if (state.reason == QLatin1String(KeeperReason::requestRefused)) {
        return doubtful(
            Say::tr("The daemon does not listen to the keeper."), RemedyKind::AdmitKeeper);
    }
    if (const QString text = keeperHistoryText(state.history); !text.isEmpty()) {
        return doubtful(text, RemedyKind::None);
    }
    const bool isAfterFailure = state.isKeeping && state.isWanted && !state.reason.isEmpty()
        && state.phase != QLatin1String(KeeperPhase::connected);
    if (isAfterFailure) {
        const Fact reason = keeperReasonFact(state.reason);
        return doubtful(Say::tr("%1 Now: %2.").arg(reason.text, keeperPhaseText(state.phase)),
            reason.remedy.kind);
    }
    return good(keeperPhaseText(state.phase));
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
            RemedyKind::EndOtherConnection);
    }
    return good(Say::tr("none"));
}

Finding checkLastAttempt(const Facts &facts)
{
    if (!facts.log.exists) {
        return notChecked(Say::tr("there is no log yet"));
    }
    if (!facts.log.content) {
        return notChecked(
            Say::tr("the daemon's log is not readable for this user"), RemedyKind::LookAsRoot);
    }
    const PppdVerdict verdict = explainPppd(pppdLinesOfLog(*facts.log.content));
    if (verdict.line.isEmpty()) {
        return good(Say::tr("nothing to report"));
    }
    const QString text = Say::tr("%1 (pppd: “%2”)").arg(verdict.meaning, verdict.line);
    return verdict.isGood ? good(text) : doubtful(text, verdict.remedy.kind);
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
        {"route", QT_TRANSLATE_NOOP("Say", "Default route"), checkRoute},
        {"networkmanager", QT_TRANSLATE_NOOP("Say", "NetworkManager"), checkNetworkManager},
        {"networkd", QT_TRANSLATE_NOOP("Say", "systemd-networkd"), checkNetworkd},
        {"resolved", QT_TRANSLATE_NOOP("Say", "systemd-resolved"), checkResolved},
        {"resolvconf", QT_TRANSLATE_NOOP("Say", "resolvconf"), checkResolvconf},
        {"other-pppd", QT_TRANSLATE_NOOP("Say", "Other pppd"), checkOtherPppd},
        {"last-attempt", QT_TRANSLATE_NOOP("Say", "Last attempt"), checkLastAttempt},
        {"keeper", QT_TRANSLATE_NOOP("Say", "Keeper"), checkKeeper},
    };
    return table;
}

} // namespace

QList<Finding> examine(const Facts &facts)
{
    QList<Finding> findings;
    for (const Check &check : checks()) {
        Finding finding = check.run(facts);
        finding.check = QLatin1String(check.id);

        findings.append(finding);
    }
    return findings;
}

QString checkTitle(const QString &id)
{
    for (const Check &check : checks()) {
        if (id == QLatin1String(check.id)) {
            return Say::tr(check.title);
        }
    }
    return id;
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

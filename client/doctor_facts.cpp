// SPDX-License-Identifier: MIT
#include "client/doctor_facts.h"

#include "client/daemon_bus.h"
#include "client/say.h"
#include "client/settings_file.h"
#include "dbus/contract.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>
#include <cerrno>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace {

constexpr int shortTimeoutMs = 4000;

SeenFile seenFile(const QString &path)
{
    SeenFile facts;
    facts.path = path;
    struct stat info = {};
    if (stat(QFile::encodeName(path).constData(), &info) == 0) {
        facts.exists = true;
        facts.mode = info.st_mode & 07777;
        facts.owner = info.st_uid;
        facts.content = fileContent(path);
    } else if (errno == EACCES) { // Debian's folder of peer files is closed to ordinary users
        facts.exists = true;
    }
    return facts;
}

void lookAtBus(const DaemonBus &bus, Facts &facts)
{
    facts.isBusThere = bus.isConnected();
    facts.isSuperuser = geteuid() == 0;
    facts.hasPolicy = QFile::exists(QStringLiteral("/etc/dbus-1/system.d/norvix.conf"));
    if (const group *entry = getgrnam("norvix")) {
        facts.hasGroup = true;
        const passwd *user = getpwuid(getuid());
        for (char **member = entry->gr_mem; user != nullptr && *member != nullptr; ++member) {
            facts.isMember = facts.isMember || qstrcmp(*member, user->pw_name) == 0;
        }
        facts.isMember = facts.isMember || (user != nullptr && user->pw_gid == entry->gr_gid);
    }
    facts.isDaemonRunning = bus.isDaemonRunning();
    if (!facts.isDaemonRunning) {
        return;
    }
    facts.doesDaemonAnswer
        = bus.call(DaemonMethod::reply, {}, DaemonBus::Start::Never, shortTimeoutMs).value.toBool();
    // A method that changes nothing and is open to the same people as those that do.
    const BusReply permission
        = bus.call(DaemonMethod::getLoginAndPassword, {}, DaemonBus::Start::Never, shortTimeoutMs);
    facts.isUserAllowed = permission.ok()                      ? Answer::Yes
        : permission.failure.kind == FailureKind::NotPermitted ? Answer::No
                                                               : Answer::Unknown;
    const BusReply plugged
        = bus.call(DaemonMethod::getIsModemPlugged, {}, DaemonBus::Start::Never, shortTimeoutMs);
    if (plugged.ok()) {
        facts.doesDaemonSeeModem = plugged.value.toBool() ? Answer::Yes : Answer::No;
    }
    facts.isCompiling
        = bus.call(DaemonMethod::getIsCompiling, {}, DaemonBus::Start::Never, shortTimeoutMs)
              .value.toBool();
}

void lookAtHal(const DaemonBus &bus, Facts &facts)
{
    if (!facts.isBusThere) {
        return;
    }
    const QDBusMessage devices = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Hal"), QStringLiteral("/org/freedesktop/Hal/Manager"),
        QStringLiteral("org.freedesktop.Hal.Manager"), QStringLiteral("GetAllDevices"));
    const BusReply reply = bus.callOther(devices, shortTimeoutMs);
    // Whoever may not ask it knows at least that somebody is there.
    facts.isHalAnswering = reply.ok()
            || (reply.failure.kind == FailureKind::NotPermitted
                && bus.hasOwner(QStringLiteral("org.freedesktop.Hal")))
        ? Answer::Yes
        : Answer::No;
}

void lookAtSettings(const DaemonBus &bus, Facts &facts)
{
    facts.areSettingsReadable = canReadSettings();
    facts.configured = {settingNumber("vendor_id"), settingNumber("product_id")};
    facts.configuredName = settingText("modem");
    const auto lineValue = [&](const char *key, const char *getter) {
        if (facts.areSettingsReadable) {
            return settingText(key);
        }
        const QString value = bus.call(getter).value.toString();
        return value == QLatin1String(Bus::unset) ? QString() : value;
    };
    facts.protocol = lineValue("protocol", DaemonMethod::getProtocol);
    facts.vpi = lineValue("vpi", DaemonMethod::getVPI);
    facts.vci = lineValue("vci", DaemonMethod::getVCI);
}

std::optional<QByteArray> moduleList(const QString &kernel, const char *name)
{
    constexpr qint64 mostBytes = 16 << 20;
    return fileContent(
        QStringLiteral("/lib/modules/%1/%2").arg(kernel, QLatin1String(name)), mostBytes);
}

Module lookAtModule(const Facts &facts, const char *name)
{
    std::optional<QByteArray> installed = moduleList(facts.kernel, "modules.dep");
    if (installed) {
        *installed += moduleList(facts.kernel, "modules.builtin").value_or("");
    }
    QString loadedName = QLatin1String(name);
    loadedName.replace(QLatin1Char('-'), QLatin1Char('_'));
    return moduleState(
        name, QFileInfo::exists(QStringLiteral("/sys/module/") + loadedName), installed);
}

void lookAtDriver(Facts &facts)
{
    utsname system = {};
    uname(&system);
    facts.kernel = QString::fromLocal8Bit(system.release);
    const ModemFamily *family
        = facts.modems.isEmpty() ? familyOf(facts.configured) : facts.modems.constFirst().family;
    facts.driver = QString::fromLatin1(
        family != nullptr ? family->driver : driverOfVendor(facts.configured.vendor));
    if (!facts.driver.isEmpty()) {
        facts.driverModule = lookAtModule(facts, qPrintable(facts.driver));
    }
    facts.atmModule = lookAtModule(facts, "atm");
    facts.usbatmModule = lookAtModule(facts, "usbatm");
    const std::optional<QByteArray> modules = moduleList(facts.kernel, "modules.dep");
    if (const ModulePacker packer = modulePacker(modules.value_or("")); packer.program != nullptr) {
        const bool isThere = !QStandardPaths::findExecutable(QLatin1String(packer.program),
            {QStringLiteral("/usr/local/bin"), QStringLiteral("/usr/bin"), QStringLiteral("/bin")})
                                  .isEmpty();
        facts.lackingPacker = isThere ? QString() : QLatin1String(packer.package);
    }
    const QDir sources(QStringLiteral("/opt/norvix/drivers"));
    facts.hasDriverSource = (facts.driver == QLatin1String(unicornModule)
                                && sources.exists(QStringLiteral("unicorn-neo.tar")))
        || (facts.driver == QLatin1String(eagleModule)
            && sources.exists(QStringLiteral("ueagle-atm-1.4.tar")));
    const ModemFirmware firmware
        = family != nullptr ? firmwareOf(*family) : ModemFirmware{nullptr, nullptr};
    if (firmware.file != nullptr) {
        facts.firmware = QString::fromLatin1(firmware.file);
        facts.firmwarePackage = QString::fromLatin1(firmware.package);
        const QString installed = QStringLiteral("/lib/firmware/") + facts.firmware;
        facts.hasFirmware
            = QFile::exists(installed) || QFile::exists(installed + QLatin1String(".xz"));
    }
}

void lookAtPpp(Facts &facts)
{
    facts.hasPppd = !QStandardPaths::findExecutable(QStringLiteral("pppd"),
        {QStringLiteral("/usr/local/sbin"), QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")})
                         .isEmpty();
    facts.hasPppDevice = QFile::exists(QStringLiteral("/dev/ppp"));
    facts.pppModule = lookAtModule(facts, "ppp_generic");
    facts.protocolModule = lookAtModule(facts, facts.protocolModuleName());
    facts.bridgeModule = lookAtModule(facts, "br2684");
    facts.bridgeTool = QStringLiteral("/opt/norvix/bin/")
        + QLatin1String(sizeof(void *) == 4 ? "br2684ctl_i386" : "br2684ctl_amd64");
    facts.hasBridgeTool = QFileInfo(facts.bridgeTool).isExecutable();
    facts.hasShippedPeers = QFile::exists(QStringLiteral("/opt/norvix/share/peers/norvix"));
    facts.peer = seenFile(QLatin1String(
        facts.isUnicorn() ? "/etc/ppp/peers/norvix_unicorn" : "/etc/ppp/peers/norvix"));
    facts.papSecrets = seenFile(QStringLiteral("/etc/ppp/pap-secrets"));
    facts.chapSecrets = seenFile(QStringLiteral("/etc/ppp/chap-secrets"));
}

} // namespace

QString moduleText(Module module)
{
    switch (module) {
    case Module::Loaded:
        return Say::tr("loaded");
    case Module::Available:
        return Say::tr("there, not loaded");
    case Module::Missing:
        return Say::tr("missing for this kernel");
    case Module::Unknown:
        break;
    }
    return Say::tr("unknown");
}

Module moduleState(
    const QByteArray &name, bool isLoaded, const std::optional<QByteArray> &installed)
{
    if (isLoaded) {
        return Module::Loaded;
    }
    if (!installed) {
        return Module::Unknown;
    }
    // File names use either sign where module names do.
    QByteArray dashed = name;
    dashed.replace('_', '-');
    QByteArray underlined = name;
    underlined.replace('-', '_');
    for (const QByteArray &line : installed->split('\n')) {
        // What follows the colon is only what the module needs.
        const QByteArray file = line.left(line.indexOf(':'));
        if (file.contains('/' + dashed + ".ko") || file.contains('/' + underlined + ".ko")) {
            return Module::Available;
        }
    }
    return Module::Missing;
}

ModulePacker modulePacker(const QByteArray &modulesDep)
{
    for (const QByteArray &line : modulesDep.split('\n')) {
        // Only the kernel's own tell how it was made: others come as they like.
        const QByteArray file = line.left(line.indexOf(':'));
        if (!file.startsWith("kernel/")) {
            continue;
        }
        if (file.endsWith(".xz")) {
            return {"xz", "xz-utils"};
        }
        if (file.endsWith(".zst")) {
            return {"zstd", "zstd"};
        }
        if (file.endsWith(".ko")) {
            break;
        }
    }
    return {nullptr, nullptr};
}

bool Facts::isDriverOverAtm() const
{
    return !driver.isEmpty() && driver != QLatin1String(unicornModule);
}

const char *Facts::protocolModuleName() const
{
    return peerKind() == PeerKind::Atm ? "pppoatm" : "pppoe";
}

PeerKind Facts::peerKind() const
{
    if (isUnicorn()) {
        return PeerKind::OwnInterface;
    }
    return isPppoe() ? PeerKind::Bridge : PeerKind::Atm;
}

QString Facts::circuit() const
{
    return vpi.isEmpty() || vci.isEmpty() ? QString() : vpi + QLatin1Char('.') + vci;
}

Facts gatherDriverFacts()
{
    Facts facts;
    facts.modems = pluggedModems();
    facts.configured = {settingNumber("vendor_id"), settingNumber("product_id")};
    lookAtDriver(facts);
    return facts;
}

Facts gatherFacts(const DaemonBus &bus)
{
    Facts facts;
    lookAtBus(bus, facts);
    lookAtHal(bus, facts);
    facts.modems = pluggedModems();
    lookAtSettings(bus, facts);
    lookAtDriver(facts);
    facts.line = lineStatus();
    facts.carrier = atmCarrier();
    lookAtPpp(facts);
    facts.resolver = resolver();
    facts.pppds = runningPppds();
    facts.routes = gatherRouteFacts(linkInterface());
    facts.neighbours = gatherNeighbours(bus, facts.routes.link);
    facts.keeper = KeeperBus(bus).state();
    facts.log = seenFile(QStringLiteral("/opt/norvix/daemon.log"));
    facts.log.content = lastLinesOf(facts.log.path); // the last attempt stands there
    return facts;
}

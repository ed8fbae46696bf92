// SPDX-License-Identifier: MIT
#include "client/neighbours.h"

#include "client/daemon_bus.h"
#include "client/link_facts.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr int shortTimeoutMs = 2000;

BusReply ask(const DaemonBus &bus, const QString &service, const QString &path,
    const char *interface, const char *method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        service, path, QLatin1String(interface), QLatin1String(method));
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return bus.callOther(message, shortTimeoutMs);
}

QVariant property(const DaemonBus &bus, const QString &service, const QString &path,
    const char *interface, const char *name)
{
    const BusReply reply = ask(bus, service, path, "org.freedesktop.DBus.Properties", "Get",
        {QLatin1String(interface), QLatin1String(name)});
    return reply.value.value<QDBusVariant>().variant();
}

/// What stands for a neighbour in the folders that it reads, the first of which counts.
Neighbour withFile(bool isPresent, const QString &file, const QStringList &otherFolders)
{
    Neighbour neighbour;
    neighbour.isPresent = isPresent;
    neighbour.file = file;
    neighbour.hasFile = QFile::exists(file);
    for (const QString &folder : otherFolders) {
        const QFileInfo other(QDir(folder), QFileInfo(file).fileName());
        if (neighbour.hiddenBy.isEmpty() && (other.exists() || other.isSymLink())) {
            neighbour.hiddenBy = other.filePath();
        }
    }
    return neighbour;
}

Neighbour withHook(bool isPresent, const QString &file)
{
    Neighbour neighbour;
    neighbour.isPresent = isPresent;
    neighbour.file = file;
    neighbour.hasFile = QFileInfo(file).isExecutable();
    return neighbour;
}

QString interfaceNumber(const QString &interface)
{
    const auto text = fileContent(QStringLiteral("/sys/class/net/%1/ifindex").arg(interface), 16);
    return QString::fromLatin1(text.value_or("").trimmed());
}

/// One that is not left alone decides; nothing is known without any.
Answer together(Answer all, Answer one)
{
    return all == Answer::No || one == Answer::Unknown ? all : one;
}

Answer isLeftByNetworkManager(const DaemonBus &bus, const QStringList &interfaces)
{
    const QString service = QStringLiteral("org.freedesktop.NetworkManager");
    Answer all = Answer::Unknown;
    for (const QString &interface : interfaces) {
        const BusReply device = ask(bus, service, QStringLiteral("/org/freedesktop/NetworkManager"),
            "org.freedesktop.NetworkManager", "GetDeviceByIpIface", {interface});
        const QString path = device.value.value<QDBusObjectPath>().path();
        const QVariant managed = path.isEmpty()
            ? QVariant()
            : property(bus, service, path, "org.freedesktop.NetworkManager.Device", "Managed");
        if (managed.type() == QVariant::Bool) {
            all = together(all, managed.toBool() ? Answer::No : Answer::Yes);
        }
    }
    return all;
}

Answer areLeftByNetworkd(const QStringList &interfaces)
{
    Answer all = Answer::Unknown;
    for (const QString &interface : interfaces) {
        const QString number = interfaceNumber(interface);
        const auto file = number.isEmpty()
            ? std::nullopt
            : fileContent(QStringLiteral("/run/systemd/netif/links/") + number);
        all = together(all, isLeftByNetworkd(file.value_or("")));
    }
    return all;
}

/// Whether resolved has servers of the link; not known without a link or a server of its provider.
Answer hasServersOf(const DaemonBus &bus, const QString &link)
{
    const auto named = fileContent(QStringLiteral("/etc/ppp/resolv.conf"));
    if (link.isEmpty() || nameservers(named.value_or("")).isEmpty()) {
        return Answer::Unknown;
    }
    const QVariant value = property(bus, QStringLiteral("org.freedesktop.resolve1"),
        QStringLiteral("/org/freedesktop/resolve1"), "org.freedesktop.resolve1.Manager", "DNS");
    if (value.userType() != qMetaTypeId<QDBusArgument>()) {
        return Answer::Unknown;
    }
    const auto servers = value.value<QDBusArgument>();
    if (servers.currentSignature() != QLatin1String("a(iiay)")) {
        return Answer::Unknown;
    }
    const int number = interfaceNumber(link).toInt();
    bool isKnown = false;
    servers.beginArray();
    while (!servers.atEnd()) {
        int interface = 0;
        int family = 0;
        QByteArray address;
        servers.beginStructure();
        servers >> interface >> family >> address;
        servers.endStructure();
        isKnown = isKnown || interface == number;
    }
    servers.endArray();
    return isKnown ? Answer::Yes : Answer::No;
}

/// The program of resolvconf's own; systemd has one of the same name that only passes on.
bool hasResolvconf()
{
    for (const char *path : {"/sbin/resolvconf", "/usr/sbin/resolvconf"}) {
        const QFileInfo program(QString::fromLatin1(path));
        if (program.isExecutable()
            && !program.canonicalFilePath().endsWith(QLatin1String("resolvectl"))) {
            return true;
        }
    }
    return false;
}

} // namespace

QStringList ourInterfaces(const QStringList &interfaces, const QString &link)
{
    QStringList ours;
    for (const QString &interface : interfaces) {
        const bool isBridge = interface.startsWith(QLatin1String("nas"))
            || interface.startsWith(QLatin1String("dsl"));
        if (isBridge || interface == link) {
            ours.append(interface);
        }
    }
    return ours;
}

Answer isLeftByNetworkd(const QByteArray &linkFile)
{
    for (const QByteArray &line : linkFile.split('\n')) {
        if (!line.startsWith("ADMIN_STATE=")) {
            continue;
        }
        const QByteArray state = line.mid(line.indexOf('=') + 1).trimmed();
        if (state == "unmanaged") {
            return Answer::Yes;
        }
        // It has not looked yet, or the interface is on its way out.
        return state == "pending" || state == "initialized" || state == "linger" ? Answer::Unknown
                                                                                 : Answer::No;
    }
    return Answer::Unknown;
}

Neighbours gatherNeighbours(const DaemonBus &bus, const QString &link)
{
    const QStringList ours = ourInterfaces(
        QDir(QStringLiteral("/sys/class/net")).entryList(QDir::Dirs | QDir::NoDotAndDotDot), link);
    const auto isRunning = [&bus](const char *name) { return bus.hasOwner(QLatin1String(name)); };
    Neighbours all;
    all.networkManager = withFile(isRunning("org.freedesktop.NetworkManager"),
        QStringLiteral("/usr/lib/NetworkManager/conf.d/norvix.conf"),
        {QStringLiteral("/etc/NetworkManager/conf.d"),
            QStringLiteral("/run/NetworkManager/conf.d")});
    all.networkd = withFile(isRunning("org.freedesktop.network1"),
        QStringLiteral("/usr/lib/systemd/network/10-norvix.network"),
        {QStringLiteral("/etc/systemd/network"), QStringLiteral("/run/systemd/network")});
    all.resolved = withHook(
        isRunning("org.freedesktop.resolve1"), QStringLiteral("/etc/ppp/ip-up.d/norvix-resolved"));
    all.resolvconf = withHook(hasResolvconf(), QStringLiteral("/etc/ppp/ip-up.d/000resolvconf"));
    all.resolvconf.isFileOurs = false;
    if (all.networkManager.isPresent) {
        all.networkManager.isInForce = isLeftByNetworkManager(bus, ours);
    }
    if (all.networkd.isPresent) {
        all.networkd.isInForce = areLeftByNetworkd(ours);
    }
    if (all.resolved.isPresent) {
        all.resolved.isInForce = hasServersOf(bus, link);
    }
    return all;
}

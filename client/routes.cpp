// SPDX-License-Identifier: MIT
#include "client/routes.h"

#include "client/link_facts.h"
#include "client/say.h"
#include "client/text_format.h"

#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <net/if.h>

namespace {

constexpr uint isUp = 0x1; // as the kernel marks its routes
constexpr uint isRefusing = 0x200;

std::optional<quint32> hexNumber(const QByteArray &text)
{
    bool isNumber = false;
    const quint32 number = text.toUInt(&isNumber, 16);
    return isNumber ? std::optional<quint32>(number) : std::nullopt;
}

bool isTaken(quint32 flags)
{
    return (flags & isUp) != 0 && (flags & isRefusing) == 0;
}

/// How many bits of a mask are set from its beginning on; nothing for one with gaps.
std::optional<int> prefixOf(const QByteArray &mask)
{
    quint32 number = 0;
    for (const char byte : mask) {
        number = number << 8U | quint8(byte);
    }
    const quint32 rest = ~number;
    if ((rest & (rest + 1)) != 0) {
        return std::nullopt;
    }
    int bits = 32;
    for (quint32 left = rest; left != 0; left >>= 1U) {
        --bits;
    }
    return bits;
}

/// The kernel prints the bytes of an address as one number of this machine.
QByteArray bytesOfNumber(quint32 number)
{
    QByteArray bytes(sizeof number, '\0');
    memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

std::optional<Route> routeOfIpv4(const QByteArray &line)
{
    constexpr int flagsField = 3;
    constexpr int metricField = 6;
    constexpr int maskField = 7;
    const QList<QByteArray> fields = line.simplified().split(' ');
    if (fields.size() <= maskField) {
        return std::nullopt;
    }
    const auto destination = hexNumber(fields.at(1));
    const auto flags = hexNumber(fields.at(flagsField));
    const auto mask = hexNumber(fields.at(maskField));
    bool isMetric = false;
    const quint32 metric = fields.at(metricField).toUInt(&isMetric);
    const auto prefix = mask ? prefixOf(bytesOfNumber(*mask)) : std::nullopt;
    if (!destination || !flags || !isTaken(*flags) || !prefix || !isMetric) {
        return std::nullopt;
    }
    return Route{
        QString::fromUtf8(fields.constFirst()), bytesOfNumber(*destination), *prefix, metric};
}

std::optional<Route> routeOfIpv6(const QByteArray &line)
{
    constexpr int metricField = 5;
    constexpr int flagsField = 8;
    constexpr int nameField = 9;
    constexpr int addressBytes = 16;
    const QList<QByteArray> fields = line.simplified().split(' ');
    if (fields.size() <= nameField) {
        return std::nullopt;
    }
    const QByteArray destination = QByteArray::fromHex(fields.constFirst());
    const auto prefix = hexNumber(fields.at(1));
    const auto metric = hexNumber(fields.at(metricField));
    const auto flags = hexNumber(fields.at(flagsField));
    if (destination.size() != addressBytes || !prefix || *prefix > 8 * addressBytes || !metric
        || !flags || !isTaken(*flags)) {
        return std::nullopt;
    }
    return Route{QString::fromUtf8(fields.at(nameField)), destination, int(*prefix), *metric};
}

QList<Route> routesOf(const QByteArray &table, std::optional<Route> (*read)(const QByteArray &))
{
    QList<Route> routes;
    for (const QByteArray &line : table.split('\n')) {
        if (const std::optional<Route> route = read(line)) {
            routes.append(*route);
        }
    }
    return routes;
}

bool leadsTo(const Route &route, const QByteArray &address)
{
    if (route.destination.size() != address.size()) {
        return false;
    }
    const int whole = route.prefix / 8;
    const int rest = route.prefix % 8;
    if (memcmp(route.destination.constData(), address.constData(), size_t(whole)) != 0) {
        return false;
    }
    const uint differing
        = rest == 0 ? 0 : quint8(route.destination.at(whole)) ^ quint8(address.at(whole));
    return differing >> uint(8 - rest) == 0;
}

bool isLoopback(const QByteArray &address)
{
    return address.size() == 4 ? address.startsWith('\x7f')
                               : address == QByteArray(15, '\0') + '\x01';
}

/// Whether an interface exists and is up.
bool isInterfaceUp(const QString &interface)
{
    const auto flags = fileContent(QStringLiteral("/sys/class/net/%1/flags").arg(interface), 16);
    bool isNumber = false;
    const uint number = flags ? flags->trimmed().toUInt(&isNumber, 0) : 0;
    return isNumber && (number & IFF_UP) != 0;
}

std::optional<StrayServer> strayServer(const RouteFacts &facts, const QString &address)
{
    const QByteArray bytes = addressBytes(address);
    if (bytes.isEmpty() || isLoopback(bytes)) {
        return std::nullopt;
    }
    const bool isIpv6 = bytes.size() > 4;
    const int scope = address.indexOf(QLatin1Char('%'));
    const std::optional<Route> route = routeTowards(isIpv6 ? facts.ipv6 : facts.ipv4, bytes);
    const QString interface = scope >= 0 ? address.mid(scope + 1)
        : route                          ? route->interface
                                         : QString();
    const std::optional<Route> usual = defaultRoute(isIpv6 ? facts.ipv6 : facts.ipv4);
    const bool isProviders = facts.providersServers.contains(address) && !interface.isEmpty()
        && interface != facts.link;
    const bool isOther = usual && !interface.isEmpty() && interface != usual->interface;
    return isProviders || isOther ? std::optional<StrayServer>({address, interface, isProviders})
                                  : std::nullopt;
}

} // namespace

QList<Route> routesOfIpv4(const QByteArray &table)
{
    return routesOf(table, routeOfIpv4);
}

QList<Route> routesOfIpv6(const QByteArray &table)
{
    return routesOf(table, routeOfIpv6);
}

QByteArray addressBytes(const QString &text)
{
    const QByteArray address = text.section(QLatin1Char('%'), 0, 0).toLatin1();
    std::array<char, sizeof(in6_addr)> bytes = {};
    if (inet_pton(AF_INET, address.constData(), bytes.data()) == 1) {
        return QByteArray(bytes.data(), sizeof(in_addr));
    }
    return inet_pton(AF_INET6, address.constData(), bytes.data()) == 1
        ? QByteArray(bytes.data(), int(bytes.size()))
        : QByteArray();
}

std::optional<Route> routeTowards(const QList<Route> &routes, const QByteArray &address)
{
    std::optional<Route> taken;
    for (const Route &route : routes) {
        const bool isBetter = !taken || route.prefix > taken->prefix
            || (route.prefix == taken->prefix && route.metric < taken->metric);
        if (leadsTo(route, address) && isBetter) {
            taken = route;
        }
    }
    return taken;
}

std::optional<Route> defaultRoute(const QList<Route> &routes)
{
    std::optional<Route> taken;
    for (const Route &route : routes) {
        // Of several that are equal the kernel takes the first.
        if (route.prefix == 0 && (!taken || route.metric < taken->metric)) {
            taken = route;
        }
    }
    return taken;
}

std::optional<QString> defaultRouteInterface()
{
    const auto table = fileContent(QStringLiteral("/proc/net/route"));
    if (!table) {
        return std::nullopt;
    }
    const std::optional<Route> route = defaultRoute(routesOfIpv4(*table));
    return route ? route->interface : QString();
}

RouteFacts gatherRouteFacts(const QString &link)
{
    RouteFacts facts;
    facts.link = link;
    const auto ipv4 = fileContent(QStringLiteral("/proc/net/route"));
    facts.isReadable = ipv4.has_value();
    facts.ipv4 = routesOfIpv4(ipv4.value_or(""));
    facts.ipv6 = routesOfIpv6(fileContent(QStringLiteral("/proc/net/ipv6_route")).value_or(""));
    facts.servers = resolver().servers;
    // pppd writes there what the far end has told.
    facts.providersServers
        = nameservers(fileContent(QStringLiteral("/etc/ppp/resolv.conf")).value_or(""));
    return facts;
}

QString linkInterface()
{
    const QList<QByteArray> lines
        = fileContent(QStringLiteral("/var/run/ppp-norvix.pid"), 64).value_or("").split('\n');
    const int pid = lines.constFirst().trimmed().toInt();
    const QString interface = QString::fromLatin1(lines.value(1).trimmed());
    // A pppd that was killed leaves the file.
    const auto name = fileContent(QStringLiteral("/proc/%1/comm").arg(pid), 64);
    const bool isRunning = pid > 1 && name && name->trimmed() == "pppd";
    const bool isName = !interface.isEmpty() && !interface.contains(QLatin1Char('/'));
    return isRunning && isName && isInterfaceUp(interface) ? interface : QString();
}

RouteJudgement judgeRoutes(const RouteFacts &facts)
{
    RouteJudgement judgement;
    const std::optional<Route> route = defaultRoute(facts.ipv4);
    if (route) {
        judgement.interface = route->interface;
        judgement.metric = route->metric;
    }
    if (!facts.isReadable) {
        return judgement;
    }
    if (facts.link.isEmpty()) {
        judgement.use = RouteUse::NoLink;
        return judgement;
    }
    judgement.use = !route               ? RouteUse::NoDefault
        : route->interface == facts.link ? RouteUse::ThroughLink
                                         : RouteUse::Elsewhere;
    const std::optional<Route> ipv6 = defaultRoute(facts.ipv6);
    if (ipv6 && ipv6->interface != facts.link) {
        judgement.ipv6Interface = ipv6->interface;
    }
    for (const QString &address : facts.servers) {
        if (const auto stray = strayServer(facts, address)) {
            judgement.strayServers.append(*stray);
        }
    }
    return judgement;
}

QString routeText(const RouteJudgement &judgement, const QString &link)
{
    switch (judgement.use) {
    case RouteUse::NoDefault:
        return Say::tr("%1 is up, but there is no default route: nothing goes through it.")
            .arg(link);
    case RouteUse::Elsewhere:
        return Say::tr("%1 is up, but nothing goes through it: the default route leads through %2.")
            .arg(link, printable(judgement.interface));
    case RouteUse::Unknown:
    case RouteUse::NoLink:
    case RouteUse::ThroughLink:
        break;
    }
    return QString();
}

Remedy routeRemedy(const RouteJudgement &judgement, const QString &link)
{
    switch (judgement.use) {
    case RouteUse::NoDefault:
        return {RemedyKind::SetRoute, link};
    case RouteUse::Elsewhere:
        // Beside a route of the metric 0 there is no better one.
        return judgement.metric > 0
            ? Remedy{RemedyKind::ChooseRoute, judgement.interface + QLatin1Char(' ') + link}
            : Remedy{RemedyKind::EndOtherRoute, judgement.interface};
    case RouteUse::Unknown:
    case RouteUse::NoLink:
    case RouteUse::ThroughLink:
        break;
    }
    return {};
}

QString strayServerText(const StrayServer &server)
{
    return server.isProviders
        ? Say::tr("The name server %1 is the provider's, but is asked through %2.")
              .arg(printable(server.address), printable(server.interface))
        : Say::tr("The name server %1 is asked through %2, where the default route does not lead.")
              .arg(printable(server.address), printable(server.interface));
}

// SPDX-License-Identifier: MIT
// Where traffic goes, by the kernel's tables of routes: whether the link is used at all.
#pragma once

#include "client/remedy.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

/// A route that is up. Addresses are in network order, 4 or 16 bytes.
struct Route
{
    QString interface;
    QByteArray destination;
    int prefix = 0; ///< bits of the destination that count; 0 for a default route
    quint32 metric = 0; ///< the lowest is taken
};

/// The routes in the text of /proc/net/route. Lines that are none are left out, as are routes that
/// refuse.
QList<Route> routesOfIpv4(const QByteArray &table);
/// The same for /proc/net/ipv6_route.
QList<Route> routesOfIpv6(const QByteArray &table);

/// The bytes of an address, with or without a scope behind a percent sign; empty when it is none.
QByteArray addressBytes(const QString &text);

/// The route that the kernel takes towards @p address; nothing when there is none.
std::optional<Route> routeTowards(const QList<Route> &routes, const QByteArray &address);

/// The default route that the kernel takes; nothing without one.
std::optional<Route> defaultRoute(const QList<Route> &routes);

/// The interface over which the Internet is reached now; empty when there is no default route,
/// nothing when the table can not be read.
std::optional<QString> defaultRouteInterface();

/// What is looked at.
struct RouteFacts
{
    QString link; ///< the interface of our link; empty when it is not up
    bool isReadable = false; ///< the table of IPv4
    QList<Route> ipv4;
    QList<Route> ipv6;
    QStringList servers; ///< that names are asked from
    QStringList providersServers; ///< that the provider has named for the link
};

RouteFacts gatherRouteFacts(const QString &link);

/// The interface of the link that our pppd holds up; empty without one.
QString linkInterface();

enum class RouteUse
{
    Unknown, ///< the table can not be read
    NoLink,
    ThroughLink,
    NoDefault, ///< the link is up, and there is no default route
    Elsewhere, ///< the link is up, and the default route is another's
};

/// A name server that does not belong to where the default route leads.
struct StrayServer
{
    QString address;
    QString interface; ///< through which it is asked
    bool isProviders = false; ///< it is one of our link's, and asked through another
};

struct RouteJudgement
{
    RouteUse use = RouteUse::Unknown;
    QString interface; ///< of the default route; empty without one
    quint32 metric = 0; ///< of the default route
    QString ipv6Interface; ///< of the default route of IPv6, when that is not the link
    QList<StrayServer> strayServers; ///< only while the link is up
};

RouteJudgement judgeRoutes(const RouteFacts &facts);

/// Why the link is not used, as a sentence in the user's language; empty when it is, or there is
/// none.
QString routeText(const RouteJudgement &judgement, const QString &link);

/// What can be done about that.
Remedy routeRemedy(const RouteJudgement &judgement, const QString &link);

/// What is the matter with a name server, in the user's language.
QString strayServerText(const StrayServer &server);

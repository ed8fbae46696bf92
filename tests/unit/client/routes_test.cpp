// SPDX-License-Identifier: MIT
// Where traffic goes, by what kernels have written about their routes.
#include "client/routes.h"

#include "test_data.h"
#include "test_table.h"

#include <QTest>

namespace {

QByteArray recorded(const QString &name)
{
    return testData(QStringLiteral("routes/%1.txt").arg(name));
}

RouteFacts factsOf(const QString &ipv4, const QString &ipv6 = QString())
{
    RouteFacts facts;
    facts.link = QStringLiteral("ppp0");
    facts.isReadable = true;
    facts.ipv4 = routesOfIpv4(recorded(ipv4));
    facts.ipv6 = ipv6.isEmpty() ? QList<Route>() : routesOfIpv6(recorded(ipv6));
    return facts;
}

QByteArray ipv4Line(const char *interface, const char *destination, const char *flags,
    const char *metric, const char *mask)
{
    return QByteArray(interface) + '\t' + destination + "\t00000000\t" + flags + "\t0\t0\t" + metric
        + '\t' + mask + "\t0\t0\t0\n";
}

} // namespace

class ClientRoutesTest : public QObject
{
    Q_OBJECT

private slots:
    void whereTrafficGoesIsReadFromTheTable_data()
    {
        const auto row = table<QString, int, QString>("table", "use", "interface");
        row("only networks next door", "nothing-by-default-ipv4", int(RouteUse::NoDefault), "");
        row("the link without a default route", "link-without-default-ipv4",
            int(RouteUse::NoDefault), "");
        row("the link has it", "through-link-ipv4", int(RouteUse::ThroughLink), "ppp0");
        row("the Wi-Fi has it", "wifi-has-it-ipv4", int(RouteUse::Elsewhere), "wlan0");
        row("the Wi-Fi has it with the best metric", "wifi-has-it-metric-0-ipv4",
            int(RouteUse::Elsewhere), "wlan0");
        row("both, and somebody prefers the link", "preferred-by-hand-ipv4",
            int(RouteUse::ThroughLink), "ppp0");
        row("a route that refuses is none", "refusing-ipv4", int(RouteUse::Elsewhere), "wlan0");
    }
    void whereTrafficGoesIsReadFromTheTable()
    {
        QFETCH(QString, table);
        QFETCH(int, use);
        QFETCH(QString, interface);
        const RouteJudgement judgement = judgeRoutes(factsOf(table));
        QCOMPARE(int(judgement.use), use);
        QCOMPARE(judgement.interface, interface);
    }

    void withoutALinkTheDefaultRouteIsOnlyTold()
    {
        RouteFacts facts = factsOf(QStringLiteral("wifi-has-it-ipv4"));
        facts.link.clear();
        facts.servers = QStringList{"192.168.1.1"};
        const RouteJudgement judgement = judgeRoutes(facts);
        QCOMPARE(judgement.use, RouteUse::NoLink);
        QCOMPARE(judgement.interface, QStringLiteral("wlan0"));
        QVERIFY(judgement.strayServers.isEmpty());
        QVERIFY(routeText(judgement, QString()).isEmpty());
    }

    void whatCannotBeReadIsNotJudged()
    {
        RouteFacts facts;
        facts.link = QStringLiteral("ppp0");
        QCOMPARE(judgeRoutes(facts).use, RouteUse::Unknown);
        QVERIFY(routeText(judgeRoutes(facts), facts.link).isEmpty());
    }

    void ofSeveralDefaultRoutesTheLowestMetricAndThenTheFirstIsTaken()
    {
        const QByteArray table = ipv4Line("wlan0", "00000000", "0003", "600", "00000000")
            + ipv4Line("eth0", "00000000", "0003", "100", "00000000")
            + ipv4Line("eth1", "00000000", "0003", "100", "00000000");
        QCOMPARE(defaultRoute(routesOfIpv4(table))->interface, QStringLiteral("eth0"));
    }

    void linesThatAreNoRoutesAreLeftOut_data()
    {
        const auto row = table<QByteArray>("line");
        row("nothing", QByteArray());
        row("the head",
            "Iface\tDestination\tGateway "
            "\tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n");
        row("cut off", "wlan0\t00000000\t0101A8C0\t0003\t0\t0\t600");
        row("down", ipv4Line("wlan0", "00000000", "0002", "0", "00000000"));
        row("refusing", ipv4Line("*", "00000000", "0201", "10", "00000000"));
        row("no address", ipv4Line("wlan0", "xyz", "0003", "0", "00000000"));
        row("no flags", ipv4Line("wlan0", "00000000", "", "0", "00000000"));
        row("no metric", ipv4Line("wlan0", "00000000", "0003", "-", "00000000"));
        row("a mask with gaps", ipv4Line("wlan0", "00000000", "0003", "0", "00FF00FF"));
        row("bytes", QByteArray("\0\xff\t\t\n\t\t\t\t\t\t\t\t", 13));
    }
    void linesThatAreNoRoutesAreLeftOut()
    {
        QFETCH(QByteArray, line);
        QVERIFY(routesOfIpv4(line).isEmpty());
        QVERIFY(routesOfIpv6(line).isEmpty());
    }

    void theNarrowestRouteIsTakenTowardsAnAddress_data()
    {
        const auto row = table<QString, QString>("address", "interface");
        row("next door", "192.168.1.1", "wlan0");
        row("the bridge", "192.168.0.77", "nas0");
        row("the far end", "10.64.0.1", "ppp0");
        row("beside the far end", "10.64.0.2", "wlan0");
        row("anywhere", "198.51.100.5", "wlan0");
    }
    void theNarrowestRouteIsTakenTowardsAnAddress()
    {
        QFETCH(QString, address);
        QFETCH(QString, interface);
        const RouteFacts facts = factsOf(QStringLiteral("wifi-has-it-ipv4"));
        QCOMPARE(routeTowards(facts.ipv4, addressBytes(address))->interface, interface);
    }

    void prefixesNeedNotEndWithAByte()
    {
        // 10.64.0.0/13 and 10.64.0.0/10, as this machine writes them.
        const QByteArray table = ipv4Line("narrow", "0000400A", "0001", "0", "0000F8FF")
            + ipv4Line("wide", "0000400A", "0001", "0", "0000C0FF");
        const QList<Route> routes = routesOfIpv4(table);
        QCOMPARE(routes.at(0).prefix, 13);
        QCOMPARE(routes.at(1).prefix, 10);
        QCOMPARE(
            routeTowards(routes, addressBytes("10.71.255.1"))->interface, QStringLiteral("narrow"));
        QCOMPARE(
            routeTowards(routes, addressBytes("10.72.0.1"))->interface, QStringLiteral("wide"));
        QVERIFY(!routeTowards(routes, addressBytes("10.128.0.1")));
    }

    void withoutARouteThereIsNoneTowardsAnAddress()
    {
        QVERIFY(!routeTowards(
            factsOf(QStringLiteral("nothing-by-default-ipv4")).ipv4, addressBytes("198.51.100.5")));
        QVERIFY(!routeTowards({}, QByteArray()));
    }

    void addressesOfBothKindsAreRead()
    {
        QCOMPARE(addressBytes("192.0.2.1"), QByteArray("\xc0\x00\x02\x01", 4));
        QCOMPARE(addressBytes("::1"), QByteArray(15, '\0') + '\x01');
        QCOMPARE(addressBytes("fe80::1%wlan0").size(), 16);
        for (const char *wrong : {"", "x", "1.2.3", "1.2.3.4.5", "fe80::1::2", "192.0.2.1 "}) {
            QVERIFY2(addressBytes(QLatin1String(wrong)).isEmpty(), wrong);
        }
    }

    void theDefaultRouteOfIpv6IsToldWhenItIsNotTheLinks()
    {
        QCOMPARE(judgeRoutes(factsOf("through-link-ipv6-elsewhere-ipv4",
                                 "through-link-ipv6-elsewhere-ipv6"))
                     .ipv6Interface,
            QStringLiteral("wlan0"));
        QVERIFY(judgeRoutes(factsOf("through-link-ipv4")).ipv6Interface.isEmpty());
    }

    void aNameServerBelongsToTheDefaultRouteOrIsNamed_data()
    {
        // Through nothing: nothing is said.
        const auto row
            = table<QString, QString, QString, bool>("table", "server", "through", "isProviders");
        const QString link = QStringLiteral("through-link-ipv4");
        const QString wifi = QStringLiteral("wifi-has-it-ipv4");
        row("the provider's through the link", link, "203.0.113.1", "", false);
        row("the Wi-Fi's through the link's default route", link, "192.168.1.1", "wlan0", false);
        row("somebody's anywhere", link, "198.51.100.5", "", false);
        row("this computer's", link, "127.0.0.53", "", false);
        row("the provider's through the Wi-Fi", wifi, "203.0.113.1", "wlan0", true);
        row("the Wi-Fi's own", wifi, "192.168.1.1", "", false);
        row("the far end's while the Wi-Fi leads", wifi, "10.64.0.1", "ppp0", false);
        row("this computer's of IPv6", wifi, "::1", "", false);
        row("no address", wifi, "router", "", false);
        row("where no route leads", "nothing-by-default-ipv4", "203.0.113.1", "", false);
    }
    void aNameServerBelongsToTheDefaultRouteOrIsNamed()
    {
        QFETCH(QString, table);
        QFETCH(QString, server);
        QFETCH(QString, through);
        QFETCH(bool, isProviders);
        RouteFacts facts = factsOf(table);
        facts.servers = QStringList{server};
        facts.providersServers = QStringList{"203.0.113.1", "203.0.113.2"};
        const QList<StrayServer> stray = judgeRoutes(facts).strayServers;
        QCOMPARE(stray.value(0).interface, through);
        QCOMPARE(stray.value(0).isProviders, isProviders);
        QCOMPARE(stray.isEmpty(), through.isEmpty());
    }

    void aServerOfIpv6IsJudgedByItsOwnTable()
    {
        RouteFacts facts
            = factsOf("through-link-ipv6-elsewhere-ipv4", "through-link-ipv6-elsewhere-ipv6");
        facts.servers = QStringList{"2001:db8:1::1", "fe80::1%wlan0", "2001:db8:9::1"};
        QVERIFY(judgeRoutes(facts).strayServers.isEmpty());
        facts.servers = QStringList{"fe80::1%eth7"};
        QCOMPARE(judgeRoutes(facts).strayServers.value(0).interface, QStringLiteral("eth7"));
    }

    void whatIsToldNamesBothInterfaces()
    {
        const RouteJudgement judgement = judgeRoutes(factsOf("wifi-has-it-ipv4"));
        QCOMPARE(routeText(judgement, "ppp0"),
            QStringLiteral("ppp0 is up, but nothing goes through it: the default route leads "
                           "through wlan0."));
        QVERIFY(routeText(judgeRoutes(factsOf("link-without-default-ipv4")), "ppp0")
                    .contains("no default route"));
        QVERIFY(routeText(judgeRoutes(factsOf("through-link-ipv4")), "ppp0").isEmpty());
    }

    void oursCanOnlyBePreferredToARouteWithAMetric()
    {
        const Remedy choice = routeRemedy(judgeRoutes(factsOf("wifi-has-it-ipv4")), "ppp0");
        QCOMPARE(choice.kind, RemedyKind::ChooseRoute);
        QCOMPARE(choice.detail, QStringLiteral("wlan0 ppp0"));
        const Remedy end = routeRemedy(judgeRoutes(factsOf("wifi-has-it-metric-0-ipv4")), "ppp0");
        QCOMPARE(end.kind, RemedyKind::EndOtherRoute);
        QCOMPARE(end.detail, QStringLiteral("wlan0"));
        QCOMPARE(routeRemedy(judgeRoutes(factsOf("link-without-default-ipv4")), "ppp0").kind,
            RemedyKind::SetRoute);
        QCOMPARE(
            routeRemedy(judgeRoutes(factsOf("through-link-ipv4")), "ppp0").kind, RemedyKind::None);
    }
};

QTEST_GUILESS_MAIN(ClientRoutesTest)
#include "routes_test.moc"

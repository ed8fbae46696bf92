// SPDX-License-Identifier: MIT
// The interface of the last route, from real and made-up routing tables.
#include "network/route_table.h"
#include "plain_route_search.h"
#include "test_data.h"
#include "test_table.h"

#include <QRandomGenerator>
#include <QTest>

class RouteTableTest : public QObject
{
    Q_OBJECT

private slots:
    void aRealTableGivesItsLastInterface_data();
    void aRealTableGivesItsLastInterface();
    void theLastFittingPartWins_data();
    void theLastFittingPartWins();
    void everyTruncationEqualsThePlainSearch();
    void randomTextEqualsThePlainSearch();
    void aTableOfMegabytesIsSearched();
};

void RouteTableTest::aRealTableGivesItsLastInterface_data()
{
    const auto row = table<QString>("interface");
    row("only-loopback", QString());
    row("br-lan", QString());
    row("eth0-only", "eth0");
    row("enp0s3", "enp0s3");
    row("ppp0-default", "ppp0");
    row("eth0-then-ppp0", "ppp0"); // though the default route is eth0's
}

void RouteTableTest::aRealTableGivesItsLastInterface()
{
    QFETCH(QString, interface);
    const QByteArray table = testData(
        QStringLiteral("route-table/%1.txt").arg(QString::fromLatin1(QTest::currentDataTag())));
    QCOMPARE(interfaceOfLastRoute(QString::fromLatin1(table)), interface);
}

void RouteTableTest::theLastFittingPartWins_data()
{
    const auto row = tableOfTexts<QString, QString>("text", "interface");
    row("", "");
    row("lo\t0000007F\n", "");
    row("ppp0", "ppp0");
    row("eth0\t0\nppp0\t0\n", "ppp0");
    row("ppp0\t0\neth0\t0\n", "eth0");
    row("ppp0\t0\nlo\t0\n", "ppp0");
    row("wlan0\t0\n", "wlan0"); // four letters of five
    row("enp0s3\t0\n", "enp0s3");
    row("br0\t0\n", "");
    row("ppp\t0\n", "");
    row("PPP0\t0\n", "");
    row("eth0:1\t0\n", "eth0:1");
    row("x-ppp0-y z", "x-ppp0-y");
    row("ppp0\t00000000\tabc1\t0", "abc1"); // any column counts
    row("ppp0\tDEADBEEF1\t0001", "ppp0");
    row("ppp0            eth0", "eth0"); // a run of twelve blanks
    row("ppp0\t\t\t\t\t\t\t\t\t\t\t\t\t0", "ppp0");
    row(" ppp0 ", "ppp0");
    row("ppp0\r\n", "ppp0\r"); // no separator, so it belongs to the name
    row("eth0\vppp0", "eth0\vppp0");
}

void RouteTableTest::theLastFittingPartWins()
{
    QFETCH(QString, text);
    QFETCH(QString, interface);
    QCOMPARE(interfaceOfLastRoute(text), interface);
    QCOMPARE(plainRouteSearch(text), interface);
}

void RouteTableTest::everyTruncationEqualsThePlainSearch()
{
    const QStringList names = testDataNames(QStringLiteral("route-table"), QStringLiteral("*.txt"));
    for (const QString &name : names) {
        const QString table = QString::fromLatin1(testData(QStringLiteral("route-table/") + name));
        for (int size = 0; size <= table.size(); ++size) {
            QCOMPARE(interfaceOfLastRoute(table.left(size)), plainRouteSearch(table.left(size)));
        }
    }
}

void RouteTableTest::randomTextEqualsThePlainSearch()
{
    const QString alphabet = QString::fromLatin1("abzpp0019AZ  \t\t\n\r-\xe9") + QChar(0);
    QRandomGenerator random(3);
    for (int i = 0; i < 20000; ++i) {
        QString text;
        for (int length = random.bounded(60); length > 0; --length) {
            text += alphabet.at(random.bounded(alphabet.size()));
        }
        QCOMPARE(interfaceOfLastRoute(text), plainRouteSearch(text));
    }
}

void RouteTableTest::aTableOfMegabytesIsSearched()
{
    const int size = 1024 * 1024;
    const QString ppp0 = QStringLiteral("ppp0");
    for (const char filler : {' ', '\t', '\n', 'A', 'a'}) {
        const QString filling(size, QLatin1Char(filler));
        QCOMPARE(interfaceOfLastRoute(ppp0 + QLatin1Char('\n') + filling), ppp0);
    }
    const QString line = QStringLiteral("eth0\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\n");
    QCOMPARE(interfaceOfLastRoute(line.repeated(size / line.size())), QStringLiteral("eth0"));
}

QTEST_APPLESS_MAIN(RouteTableTest)
#include "route_table_test.moc"

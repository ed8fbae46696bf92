// SPDX-License-Identifier: MIT
// The address of an interface, for real interfaces in a network of the test's own.
#include "private_root.h"
#include "support/resolver/interface_address.h"
#include "test_table.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTest>

namespace {

bool ip(const char *arguments)
{
    return QProcess::execute(
               QStringLiteral("ip"), QString::fromLatin1(arguments).split(QLatin1Char(' ')))
        == 0;
}

QString addressOf(const char *name)
{
    return firstAddressOf(QString::fromLatin1(name)).value_or(QStringLiteral("no interface"));
}

} // namespace

class InterfaceAddressTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theLoopbackInterfaceHasItsUsualAddress();
    void anInterfaceWithoutAddressHasAnEmptyOne();
    void aPointToPointLinkHasItsOwnAddress();
    void theFirstOfSeveralCountsAndVersion4BeforeVersion6();
    void anAddressBelongsToItsInterfaceWhateverItsLabel();
    void ofAnIpv6PairTheOwnOneCountsAndALinksOwnAddressNamesTheLink();
    void whatIsNoInterfaceHasNoAnswer_data();
    void whatIsNoInterfaceHasNoAnswer();
};

void InterfaceAddressTest::initTestCase()
{
    QVERIFY(ip("link set lo up"));
    for (const char *name : {"ppp0", "ppp1"}) {
        QVERIFY(ip(QByteArray(QByteArray("tuntap add ") + name + " mode tun").constData()));
    }
}

void InterfaceAddressTest::theLoopbackInterfaceHasItsUsualAddress()
{
    QCOMPARE(addressOf("lo"), QStringLiteral("127.0.0.1"));
}

void InterfaceAddressTest::anInterfaceWithoutAddressHasAnEmptyOne()
{
    QCOMPARE(addressOf("ppp0"), QString());
}

void InterfaceAddressTest::aPointToPointLinkHasItsOwnAddress()
{
    QVERIFY(ip("addr add 10.64.0.100 peer 10.64.64.64 dev ppp0"));
    QCOMPARE(addressOf("ppp0"), QStringLiteral("10.64.0.100")); // set, though not up
    QVERIFY(ip("addr del 10.64.0.100 peer 10.64.64.64 dev ppp0"));
    QCOMPARE(addressOf("ppp0"), QString());
}

void InterfaceAddressTest::theFirstOfSeveralCountsAndVersion4BeforeVersion6()
{
    QVERIFY(ip("addr add 2001:db8::1/64 dev ppp1 nodad"));
    QCOMPARE(addressOf("ppp1"), QStringLiteral("2001:db8::1"));
    QVERIFY(ip("addr add 10.0.0.2/24 dev ppp1"));
    QVERIFY(ip("addr add 10.0.0.1/24 dev ppp1"));
    QCOMPARE(addressOf("ppp1"), QStringLiteral("10.0.0.2"));
    QCOMPARE(addressOf("ppp0"), QString()); // the neighbour's are not taken for its own
}

void InterfaceAddressTest::anAddressBelongsToItsInterfaceWhateverItsLabel()
{
    QVERIFY(ip("tuntap add nas3 mode tap"));
    QVERIFY(ip("tuntap add nas30 mode tap"));
    QVERIFY(ip("addr add 10.3.0.1/24 dev nas3 label nas3:1"));
    QVERIFY(ip("addr add 10.3.1.1/24 dev nas3"));
    QCOMPARE(addressOf("nas3"), QStringLiteral("10.3.0.1"));
    QCOMPARE(addressOf("nas3:1"), QStringLiteral("no interface"));

    QVERIFY(ip("addr flush dev nas3"));
    QVERIFY(ip("addr add 10.3.2.1/24 dev nas3 label nas30")); // the neighbour's name
    QCOMPARE(addressOf("nas3"), QStringLiteral("10.3.2.1"));
    QCOMPARE(addressOf("nas30"), QString());
}

void InterfaceAddressTest::ofAnIpv6PairTheOwnOneCountsAndALinksOwnAddressNamesTheLink()
{
    QVERIFY(ip("tuntap add ppp2 mode tun"));
    QVERIFY(ip("addr add fe80::7 peer fe80::8 dev ppp2 nodad"));
    QCOMPARE(addressOf("ppp2"), QStringLiteral("fe80::7%ppp2"));
}

void InterfaceAddressTest::whatIsNoInterfaceHasNoAnswer_data()
{
    const auto row = table<QString>("name");
    row("empty", QString());
    row("unknown", "none7");
    row("the beginning of one", "l");
    row("longer than one", "lo0");
    row("other case", "LO");
    row("number of one", "1");
    row("other letters", QString(QChar(0x20ac)));
}

void InterfaceAddressTest::whatIsNoInterfaceHasNoAnswer()
{
    QFETCH(QString, name);
    QVERIFY(!firstAddressOf(name).has_value());
}

int main(int argc, char **argv)
{
    enterPrivateRoot(argv);
    QCoreApplication application(argc, argv);
    InterfaceAddressTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "interface_address_test.moc"

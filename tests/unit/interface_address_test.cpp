// SPDX-License-Identifier: MIT
// The address of an interface, asked of an interface that every machine has.
#include "support/interface_address.h"

#include <QTest>

class InterfaceAddressTest : public QObject
{
    Q_OBJECT

private slots:
    void theLoopbackInterfaceHasItsUsualAddress();
    void whatIsNoInterfaceHasNoAnswer_data();
    void whatIsNoInterfaceHasNoAnswer();
};

void InterfaceAddressTest::theLoopbackInterfaceHasItsUsualAddress()
{
    QCOMPARE(firstAddressOf(QStringLiteral("lo")).value(), QStringLiteral("127.0.0.1"));
}

void InterfaceAddressTest::whatIsNoInterfaceHasNoAnswer_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("unknown") << QStringLiteral("none7");
    QTest::newRow("the beginning of one") << QStringLiteral("l");
    QTest::newRow("longer than one") << QStringLiteral("lo0");
    QTest::newRow("other case") << QStringLiteral("LO");
    QTest::newRow("number of one") << QStringLiteral("1");
    QTest::newRow("other letters") << QString(QChar(0x20ac));
}

void InterfaceAddressTest::whatIsNoInterfaceHasNoAnswer()
{
    QFETCH(QString, name);
    QVERIFY(!firstAddressOf(name).has_value());
}

QTEST_GUILESS_MAIN(InterfaceAddressTest)
#include "interface_address_test.moc"

// SPDX-License-Identifier: MIT
// Whether an interface is up, for real interfaces in a network of the test's own.
#include "connection/interface_flags.h"
#include "private_root.h"

#include <QProcess>
#include <QTest>

namespace {

bool ip(const char *arguments)
{
    return QProcess::execute(
               QStringLiteral("ip"), QString::fromLatin1(arguments).split(QLatin1Char(' ')))
        == 0;
}

} // namespace

class InterfaceFlagsTest : public QObject
{
    Q_OBJECT

private slots:
    void aMissingInterfaceIsNeitherUpNorDown();
    void anInterfaceIsDownUntilItIsSetUp();
    void anInterfaceWithoutCarrierIsUpWhenItIsSetUp();
    void theLongestNameIsFoundAndALongerOneIsNobodys();
};

void InterfaceFlagsTest::aMissingInterfaceIsNeitherUpNorDown()
{
    for (const char *name : {"nas0", "dsl0", "", "a-name-that-no-interface-can-have", "lo0"}) {
        QVERIFY(!isInterfaceUp(name).has_value());
    }
}

void InterfaceFlagsTest::anInterfaceIsDownUntilItIsSetUp()
{
    QVERIFY(isInterfaceUp("lo").has_value());
    QVERIFY(!*isInterfaceUp("lo"));
    QVERIFY(ip("link set lo up"));
    QVERIFY(isInterfaceUp("lo").value_or(false));
    QVERIFY(ip("link set lo down"));
    QVERIFY(!isInterfaceUp("lo").value_or(true));
}

void InterfaceFlagsTest::anInterfaceWithoutCarrierIsUpWhenItIsSetUp()
{
    QVERIFY(ip("tuntap add nas0 mode tap"));
    QVERIFY(!isInterfaceUp("nas0").value_or(true));
    QVERIFY(ip("link set nas0 up"));
    // Nobody holds its other end: the operational state, which is not asked for, stays down.
    QVERIFY(isInterfaceUp("nas0").value_or(false));
}

void InterfaceFlagsTest::theLongestNameIsFoundAndALongerOneIsNobodys()
{
    const QByteArray longest = "fifteen-letters";
    QVERIFY(ip("tuntap add " + longest + " mode tap"));
    QVERIFY(isInterfaceUp(longest.constData()).has_value());
    QVERIFY(!isInterfaceUp((longest + 's').constData()).has_value());
    QVERIFY(!isInterfaceUp(longest.chopped(1).constData()).has_value());
}

int main(int argc, char **argv)
{
    enterPrivateRoot(argv);
    QCoreApplication application(argc, argv);
    InterfaceFlagsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "interface_flags_test.moc"

// SPDX-License-Identifier: MIT
// Whether others leave the link alone, by what they say of it.
#include "client/neighbours.h"
#include "test_table.h"

#include <QTest>

Q_DECLARE_METATYPE(Answer)

class ClientNeighboursTest : public QObject
{
    Q_OBJECT

private slots:
    void networkdSaysOfEachInterfaceWhetherItIsItsOwn_data()
    {
        const auto row = table<QByteArray, Answer>("file", "answer");
        // As systemd-networkd 252 writes them, shortened.
        const QByteArray head = "# This is private data. Do not parse.\n";
        row("left alone", head + "ADMIN_STATE=unmanaged\nOPER_STATE=routable\n", Answer::Yes);
        row("its own",
            head
                + "ADMIN_STATE=configured\nOPER_STATE=routable\n"
                  "NETWORK_FILE=/etc/systemd/network/80-all.network\n",
            Answer::No);
        row("becoming its own", head + "ADMIN_STATE=configuring\n", Answer::No);
        row("failed", head + "ADMIN_STATE=failed\n", Answer::No);
        row("not looked at yet", head + "ADMIN_STATE=pending\n", Answer::Unknown);
        row("known of", head + "ADMIN_STATE=initialized\n", Answer::Unknown);
        row("on its way out", head + "ADMIN_STATE=linger\n", Answer::Unknown);
        row("nothing said", head, Answer::Unknown);
        row("no file", QByteArray(), Answer::Unknown);
    }
    void networkdSaysOfEachInterfaceWhetherItIsItsOwn()
    {
        QFETCH(QByteArray, file);
        QFETCH(Answer, answer);
        QCOMPARE(isLeftByNetworkd(file), answer);
    }

    void oursAreTheLinkAndTheBridges()
    {
        const QStringList all = {"dsl0", "eth0", "lo", "nas0", "ppp0", "ppp1", "wlan0"};
        QCOMPARE(ourInterfaces(all, "ppp1"), (QStringList{"dsl0", "nas0", "ppp1"}));
        QCOMPARE(ourInterfaces(all, QString()), (QStringList{"dsl0", "nas0"}));
        QVERIFY(ourInterfaces({}, "ppp0").isEmpty());
    }
};

QTEST_GUILESS_MAIN(ClientNeighboursTest)
#include "neighbours_test.moc"

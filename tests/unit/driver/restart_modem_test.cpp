// SPDX-License-Identifier: MIT
// Which module is reloaded for which modem.
#include "driver/restart_modem.h"
#include "script_folder.h"
#include "test_table.h"

#include <QElapsedTimer>
#include <QTest>
#include <csignal>

class RestartModemTest : public QObject
{
    Q_OBJECT

private slots:
    void theModuleIsChosenByTheVendor_data()
    {
        const auto row = table<int, QString>("vendorId", "module");
        row("no modem", 0, QString());
        row("0x1110", 4368, "ueagle-atm");
        row("0x06B9", 1721, "speedtch");
        row("0x0483", 1155, "unicorn_usb_eth");
        row("0x0572", 1394, "cxacru");
        row("unknown vendor", 1, "cxacru");
        row("no vendor at all", -1, "cxacru");
    }

    void theModuleIsChosenByTheVendor()
    {
        QFETCH(int, vendorId);
        QTEST(moduleToReload(vendorId), "module");
    }

    void programsThatHangAreEndedAtTheirLimit()
    {
        ScriptFolder scripts;
        for (const char *name : {"rmmod", "modprobe"}) {
            scripts.add(QLatin1String(name),
                "echo $$ $0 $1 >> \"${0%/*}/calls\"\nexec /usr/bin/sleep 1000");
        }
        qputenv("PATH", QFile::encodeName(scripts.path()));
        QElapsedTimer clock;
        clock.start();
        reloadModule(QStringLiteral("cxacru"), 500);
        QVERIFY(clock.elapsed() < 20000);

        QFile calls(scripts.path() + QStringLiteral("/calls"));
        QVERIFY(calls.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = calls.readAll().trimmed().split('\n');
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.at(0).endsWith("/rmmod cxacru"));
        QVERIFY(lines.at(1).endsWith("/modprobe cxacru"));
        for (const QByteArray &line : lines) {
            QCOMPARE(kill(line.split(' ').constFirst().toInt(), 0), -1);
        }
    }
};

QTEST_GUILESS_MAIN(RestartModemTest)
#include "restart_modem_test.moc"

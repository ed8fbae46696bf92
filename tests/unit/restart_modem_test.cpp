// SPDX-License-Identifier: MIT
// Which module is reloaded for which modem.
#include "driver/restart_modem.h"

#include <QTest>

class RestartModemTest : public QObject
{
    Q_OBJECT

private slots:
    void theModuleIsChosenByTheVendor_data()
    {
        QTest::addColumn<int>("vendorId");
        QTest::addColumn<QString>("module");
        QTest::newRow("no modem") << 0 << QString();
        QTest::newRow("0x1110") << 4368 << "ueagle-atm";
        QTest::newRow("0x06B9") << 1721 << "speedtch";
        QTest::newRow("0x0483") << 1155 << "unicorn_usb_eth";
        QTest::newRow("0x0572") << 1394 << "cxacru";
        QTest::newRow("unknown vendor") << 1 << "cxacru";
        QTest::newRow("no vendor at all") << -1 << "cxacru";
    }

    void theModuleIsChosenByTheVendor()
    {
        QFETCH(int, vendorId);
        QTEST(moduleToReload(vendorId), "module");
    }
};

QTEST_APPLESS_MAIN(RestartModemTest)
#include "restart_modem_test.moc"

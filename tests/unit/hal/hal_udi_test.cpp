// SPDX-License-Identifier: MIT
// Tests for hal/udi: the identifiers of devices and interfaces.
#include "hal/udi.h"

#include "hal_test.h"
#include "test_table.h"

#include <set>

class HalUdiTest : public QObject
{
    Q_OBJECT

private slots:
    void identifiers_are_those_that_hal_gave_data()
    {
        QTest::addColumn<int>("vendor");
        QTest::addColumn<int>("product");
        QTest::addColumn<QByteArray>("serial");
        QTest::addColumn<QString>("expected");
        const auto row = [](int vendor, int product, const char *serial, const char *expected) {
            QTest::newRow(expected)
                << vendor << product << QByteArray(serial) << QString::fromLatin1(expected);
        };
        row(0x1110, 0x9041, "", "usb_device_1110_9041_noserial");
        row(0x0483, 0x0138, "", "usb_device_483_138_noserial");
        row(0x0572, 0xcafe, "", "usb_device_572_cafe_noserial");
        row(0x046d, 0xc526, "", "usb_device_46d_c526_noserial");
        row(0x13b1, 0x000e, "1111", "usb_device_13b1_e_1111");
        row(0x06b9, 0x4061, "000E50126A00", "usb_device_6b9_4061_000E50126A00");
        row(0x1d6b, 0x0002, "0000:00:1d.7", "usb_device_1d6b_2_0000_00_1d_7");
        row(0, 0, "", "usb_device_0_0_noserial");
        row(0xffff, 0xffff, "\xc3\xa9 /..\n",
            "usb_device_ffff_ffff_"
            "_______");
    }
    void identifiers_are_those_that_hal_gave()
    {
        QFETCH(int, vendor);
        QFETCH(int, product);
        QFETCH(QByteArray, serial);
        QFETCH(QString, expected);
        const std::string part = hal::serialForUdi(serial.toStdString());
        const std::string udi = hal::deviceUdi(vendor, product, part);
        QCOMPARE(shortName(udi), expected);
        QVERIFY(hal::isDeviceUdi(udi));
    }

    void an_interface_has_the_name_of_its_device_and_its_number_in_decimal()
    {
        const std::string device = hal::deviceUdi(0x1110, 0x9041, "noserial");
        QCOMPARE(shortName(hal::interfaceUdi(device, 0)),
            QStringLiteral("usb_device_1110_9041_noserial_if0"));
        QCOMPARE(shortName(hal::interfaceUdi(device, 12)),
            QStringLiteral("usb_device_1110_9041_noserial_if12"));
    }

    void a_taken_name_gets_the_lowest_free_suffix()
    {
        std::set<std::string> taken;
        const auto isTaken = [&](const std::string &udi) { return taken.count(udi) != 0; };
        QCOMPARE(text(hal::firstFreeUdi("/x", isTaken)), QStringLiteral("/x"));
        taken = {"/x"};
        QCOMPARE(text(hal::firstFreeUdi("/x", isTaken)), QStringLiteral("/x_0"));
        taken = {"/x", "/x_0", "/x_1"};
        QCOMPARE(text(hal::firstFreeUdi("/x", isTaken)), QStringLiteral("/x_2"));
        taken = {"/x", "/x_1"};
        QCOMPARE(text(hal::firstFreeUdi("/x", isTaken)), QStringLiteral("/x_0"));
    }

    void what_is_no_identifier_is_recognised_data()
    {
        const auto row = table<QByteArray>("input");
        row("empty", QByteArray());
        row("prefix alone", "/org/freedesktop/Hal/devices/");
        row("elsewhere", "/org/freedesktop/Hal/Manager");
        row("deeper", "/org/freedesktop/Hal/devices/a/b");
        row("dash", "/org/freedesktop/Hal/devices/a-b");
        row("NUL", QByteArray("/org/freedesktop/Hal/devices/a\0b", 32));
        row("accent", "/org/freedesktop/Hal/devices/\xc3\xa9");
    }
    void what_is_no_identifier_is_recognised()
    {
        QFETCH(QByteArray, input);
        QVERIFY(!hal::isDeviceUdi(input.toStdString()));
    }
};

QTEST_APPLESS_MAIN(HalUdiTest)
#include "hal_udi_test.moc"

// SPDX-License-Identifier: MIT
// Tests for hal/usb_record: what the texts of a device mean.
#include "hal/usb_record.h"

#include "hal_test.h"
#include "test_table.h"

namespace {

template <typename Type> bool has(const hal::UsbRecord &record, const char *key, const Type &value)
{
    const hal::Value *const found = record.facts.find(key);
    return found && std::holds_alternative<Type>(*found) && std::get<Type>(*found) == value;
}

} // namespace

class HalUsbRecordTest : public QObject
{
    Q_OBJECT

private slots:
    void the_product_text_of_an_event_is_three_hexadecimal_numbers_data()
    {
        // A vendor of -1: not understood.
        const auto row = table<QByteArray, int, int>("input", "vendor", "product");
        row("as the kernel writes it", "1110/9041/1", 0x1110, 0x9041);
        row("not padded", "483/e/0", 0x483, 0xe);
        row("largest", "ffff/ffff/ffff", 0xffff, 0xffff);
        row("padded", "0483/0138/0001", 0x483, 0x138);
        for (const char *bad : {"", "/", "//", "1110/9041", "1110/9041/", "/9041/1", "1110//1",
                 "1110/9041/1/2", "11100/9041/1", "g/1/1", "1110/ 9041/1", "-1/1/1", "0x1/1/1",
                 "ffffffff/ffffffff/0"}) {
            row(bad, QByteArray(bad), -1, -1);
        }
    }
    void the_product_text_of_an_event_is_three_hexadecimal_numbers()
    {
        QFETCH(QByteArray, input);
        const auto ids = hal::parseProduct(input.toStdString());
        QTEST(ids ? ids->vendorId : -1, "vendor");
        QTEST(ids ? ids->productId : -1, "product");
    }

    void a_device_has_hals_properties_with_hals_types()
    {
        hal::UsbTexts texts = deviceTexts();
        texts.attributes["serial"] = "AB:12";
        texts.attributes["product"] = "Modem";
        texts.attributes["manufacturer"] = "caf\xe9";
        const auto record = hal::usbRecordFrom(texts);
        QVERIFY(record);
        QVERIFY(has(*record, "usb_device.vendor_id", std::int32_t(0x1110)));
        QVERIFY(has(*record, "usb_device.product_id", std::int32_t(0x9041)));
        QVERIFY(has(*record, "usb_device.bus_number", std::int32_t(8)));
        QVERIFY(has(*record, "usb_device.linux.device_number", std::int32_t(2)));
        QVERIFY(has(*record, "usb_device.num_configurations", std::int32_t(1)));
        QVERIFY(has(*record, "usb_device.num_interfaces", std::int32_t(3)));
        QVERIFY(has(*record, "usb_device.configuration_value", std::int32_t(1)));
        QVERIFY(has(*record, "usb_device.device_class", std::int32_t(255)));
        QVERIFY(has(*record, "usb_device.device_subclass", std::int32_t(0)));
        QVERIFY(has(*record, "usb_device.device_protocol", std::int32_t(1)));
        QVERIFY(has(*record, "usb_device.device_revision_bcd", std::int32_t(0x4000)));
        QVERIFY(has(*record, "usb_device.max_power", std::int32_t(500)));
        QVERIFY(has(*record, "usb_device.num_ports", std::int32_t(0)));
        QVERIFY(has(*record, "usb_device.speed", 1.5));
        QVERIFY(has(*record, "usb_device.version", 1.1));
        QVERIFY(has(*record, "usb_device.is_self_powered", false));
        QVERIFY(has(*record, "usb_device.can_wake_up", true));
        QVERIFY(has(*record, "usb_device.serial", std::string("AB:12")));
        QVERIFY(has(*record, "usb_device.product", std::string("Modem")));
        QVERIFY(has(*record, "usb_device.vendor", std::string("caf?")));
        QVERIFY(has(*record, "info.product", std::string("Modem")));
        QVERIFY(has(*record, "info.vendor", std::string("caf?")));
        QVERIFY(has(*record, "info.subsystem", std::string("usb_device")));
        QVERIFY(has(*record, "linux.subsystem", std::string("usb")));
        QVERIFY(has(*record, "linux.hotplug_type", std::int32_t(2)));
        QVERIFY(has(*record, "linux.sysfs_path", std::string("/sys/devices/usb1/1-1")));
        QVERIFY(has(*record, "usb_device.linux.sysfs_path", std::string("/sys/devices/usb1/1-1")));
        QVERIFY(has(*record, "linux.device_file", std::string("/dev/bus/usb/008/002")));
        QCOMPARE(text(record->serial), QStringLiteral("AB_12"));
    }

    void an_interface_has_no_key_of_a_device()
    {
        const auto record = hal::usbRecordFrom(interfaceTexts(2));
        QVERIFY(record);
        QVERIFY(has(*record, "usb.interface.number", std::int32_t(2)));
        QVERIFY(has(*record, "usb.interface.class", std::int32_t(255)));
        QVERIFY(has(*record, "usb.interface.subclass", std::int32_t(0)));
        QVERIFY(has(*record, "usb.interface.protocol", std::int32_t(254)));
        QVERIFY(has(*record, "info.subsystem", std::string("usb")));
        for (const auto &[key, value] : record->facts) {
            QVERIFY2(key.substr(0, 11) != "usb_device.", key.data());
        }
    }

    void an_interface_without_its_file_has_the_number_of_its_path_data()
    {
        const auto row = table<QByteArray, int>("syspath", "number");
        row("root port", "/sys/devices/usb1/1-1/1-1:1.2", 2);
        row("behind a hub", "/sys/devices/usb1/1-1/1-1.4/1-1.4:1.10", 10);
        row("no number", "/sys/devices/usb1/1-1/1-1:1.", -1);
        row("no colon", "/sys/devices/usb1/1-1/1-1.0", -1);
        row("letters", "/sys/devices/usb1/1-1/1-1:1.x", -1);
    }
    void an_interface_without_its_file_has_the_number_of_its_path()
    {
        QFETCH(QByteArray, syspath);
        hal::UsbTexts texts = interfaceTexts(0);
        texts.syspath = syspath.toStdString();
        texts.attributes.clear();
        const auto record = hal::usbRecordFrom(texts);
        QTEST(record ? record->interfaceNumber : -1, "number");
    }

    void the_event_identifies_a_device_whose_files_are_gone()
    {
        hal::UsbTexts texts = deviceTexts();
        texts.attributes.clear();
        const auto record = hal::usbRecordFrom(texts);
        QVERIFY(record);
        QCOMPARE(record->vendorId, 0x1110);
        QCOMPARE(record->productId, 0x9041);
        QCOMPARE(record->deviceNumber.value_or(-1), 2);
        QCOMPARE(text(record->serial), QStringLiteral("noserial"));
        QVERIFY(has(*record, "linux.device_file", std::string("/dev/bus/usb/008/002")));
    }

    void the_files_identify_a_device_whose_event_says_nothing()
    {
        hal::UsbTexts texts = deviceTexts();
        texts.properties.clear();
        const auto record = hal::usbRecordFrom(texts);
        QVERIFY(record);
        QCOMPARE(record->vendorId, 0x1110);
        QCOMPARE(record->deviceNumber.value_or(-1), 2);
    }

    void a_device_that_nothing_identifies_is_not_announced_data()
    {
        const auto row
            = table<QByteArray, QByteArray, QByteArray>("product", "idVendor", "idProduct");
        row("nothing at all", QByteArray(), QByteArray(), QByteArray());
        row("bad event", "ffffffff/1/1", QByteArray(), QByteArray());
        row("vendor alone", QByteArray(), "1110", QByteArray());
        row("product alone", QByteArray(), QByteArray(), "9041");
        row("bad file", QByteArray(), "11100", "9041");
    }
    void a_device_that_nothing_identifies_is_not_announced()
    {
        QFETCH(QByteArray, product);
        QFETCH(QByteArray, idVendor);
        QFETCH(QByteArray, idProduct);
        hal::UsbTexts texts = deviceTexts();
        texts.properties["PRODUCT"] = product.toStdString();
        texts.attributes["idVendor"] = idVendor.toStdString();
        texts.attributes["idProduct"] = idProduct.toStdString();
        QVERIFY(!hal::usbRecordFrom(texts));
    }

    void files_of_the_next_device_in_the_port_are_not_believed()
    {
        hal::UsbTexts texts = deviceTexts();
        texts.properties["PRODUCT"] = "1110/9042/1"; // came before the firmware, read after it
        texts.attributes["serial"] = "X";
        const auto record = hal::usbRecordFrom(texts);
        QVERIFY(record);
        QCOMPARE(record->productId, 0x9042);
        QCOMPARE(text(record->serial), QStringLiteral("noserial"));
        QVERIFY(!record->facts.find("usb_device.serial"));
        QVERIFY(!record->facts.find("usb_device.speed"));

        texts = deviceTexts();
        texts.properties["DEVNUM"] = "001"; // the same model again, already replugged
        texts.attributes["serial"] = "X";
        QCOMPARE(text(hal::usbRecordFrom(texts)->serial), QStringLiteral("noserial"));
        QCOMPARE(hal::usbRecordFrom(texts)->deviceNumber.value_or(-1), 1);

        texts.properties.erase("PRODUCT");
        QVERIFY(!hal::usbRecordFrom(texts));
    }

    void files_that_are_missing_or_make_no_sense_are_left_out()
    {
        hal::UsbTexts texts = deviceTexts();
        texts.attributes = {{"speed", "unknown"}, {"bConfigurationValue", ""}, {"bMaxPower", "mA"},
            {"bmAttributes", "zz"}, {"product", ""}};
        const auto record = hal::usbRecordFrom(texts);
        QVERIFY(record);
        for (const char *key : {"usb_device.speed", "usb_device.configuration_value",
                 "usb_device.max_power", "usb_device.can_wake_up", "usb_device.product",
                 "usb_device.version", "info.product"}) {
            QVERIFY2(!record->facts.find(key), key);
        }
    }

    void one_plugging_is_told_from_another()
    {
        const hal::UsbRecord first = device("1-1", 0x1110, 0x9041, "", 5);
        QVERIFY(hal::sameInstance(first, device("1-1", 0x1110, 0x9041, "", 5)));
        QVERIFY(!hal::sameInstance(first, device("1-1", 0x1110, 0x9041, "", 6)));
        QVERIFY(!hal::sameInstance(first, device("1-1", 0x1110, 0x9042, "", 5)));
        QVERIFY(!hal::sameInstance(first, device("1-2", 0x1110, 0x9041, "", 5)));
        QVERIFY(hal::sameInstance(first, device("1-1", 0x1110, 0x9041)));
        QVERIFY(!hal::sameInstance(first, device("1-1", 0x1110, 0x9041, "S")));
        QVERIFY(!hal::sameInstance(interface("1-1", 0), interface("1-1", 1)));
        QVERIFY(hal::sameInstance(interface("1-1", 1), interface("1-1", 1)));
    }
};

QTEST_APPLESS_MAIN(HalUsbRecordTest)
#include "hal_usb_record_test.moc"

// SPDX-License-Identifier: MIT
// Tests for hal/device_table: which objects there are, what they are called, what is announced.
#include "hal/device_table.h"

#include "hal_test.h"

#include <set>

namespace {

const QString modem = QStringLiteral("usb_device_1110_9041_noserial");

QStringList plug(hal::DeviceTable *table, const hal::UsbRecord &record)
{
    return told(table->plug(record, everythingIsPresent));
}

QString parentOf(const hal::DeviceTable &table, const QString &name)
{
    const std::string udi = std::string(hal::devicesPrefix) + name.toStdString();
    const hal::HalObject *const object = table.find(udi);
    const hal::Value *const parent = object ? object->properties.find("info.parent") : nullptr;
    return parent ? shortName(std::get<std::string>(*parent)) : QString();
}

const hal::Value *valueOf(const hal::DeviceTable &table, const QString &name, const char *key)
{
    return table.find(std::string(hal::devicesPrefix) + name.toStdString())->properties.find(key);
}

void plugModem(hal::DeviceTable *table, const std::string &port = "1-1")
{
    plug(table, device(port));
    for (int number = 0; number < 3; ++number) {
        plug(table, interface(port, number));
    }
}

} // namespace

class HalDeviceTableTest : public QObject
{
    Q_OBJECT

private slots:
    void the_computer_is_always_there()
    {
        hal::DeviceTable table;
        QCOMPARE(listed(table), QStringList("computer"));
        QVERIFY(table.find(hal::computerUdi));
        QVERIFY(!table.find("/org/freedesktop/Hal/devices/x"));
        for (const char *key : {"info.udi", "info.subsystem", "linux.subsystem",
                 "linux.hotplug_type", "info.product"}) {
            QVERIFY2(valueOf(table, "computer", key), key);
        }
        QVERIFY(!valueOf(table, "computer", "info.parent"));
    }

    void a_device_comes_before_its_interfaces_and_goes_after_them()
    {
        hal::DeviceTable table;
        QCOMPARE(plug(&table, device("1-1")), QStringList("+" + modem));
        QCOMPARE(plug(&table, interface("1-1", 0)), QStringList("+" + modem + "_if0"));
        QCOMPARE(plug(&table, interface("1-1", 1)), QStringList("+" + modem + "_if1"));
        QCOMPARE(listed(table), (QStringList{"computer", modem, modem + "_if0", modem + "_if1"}));
        QCOMPARE(told(table.unplug("/sys/devices/usb1/1-1")),
            (QStringList{"-" + modem + "_if0", "-" + modem + "_if1", "-" + modem}));
        QCOMPARE(listed(table), QStringList("computer"));
        QCOMPARE(told(table.unplug("/sys/devices/usb1/1-1/1-1:1.0")), QStringList());
        QCOMPARE(told(table.unplug("/sys/devices/usb1/1-1")), QStringList());
    }

    void a_device_that_arrives_both_ways_is_announced_once()
    {
        hal::DeviceTable table;
        plugModem(&table);
        QCOMPARE(plug(&table, device("1-1")), QStringList());
        QCOMPARE(plug(&table, interface("1-1", 2)), QStringList());
        QCOMPARE(listed(table).size(), 5);
    }

    void an_interface_waits_for_its_device()
    {
        hal::DeviceTable table;
        QCOMPARE(plug(&table, interface("1-1", 1)), QStringList());
        QCOMPARE(plug(&table, interface("1-1", 0)), QStringList());
        QCOMPARE(listed(table), QStringList("computer"));
        QCOMPARE(plug(&table, device("1-1")),
            (QStringList{"+" + modem, "+" + modem + "_if0", "+" + modem + "_if1"}));
    }

    void an_interface_that_left_while_waiting_does_not_come()
    {
        hal::DeviceTable table;
        plug(&table, interface("1-1", 0));
        QCOMPARE(told(table.unplug("/sys/devices/usb1/1-1/1-1:1.0")), QStringList());
        QCOMPARE(plug(&table, device("1-1")), QStringList("+" + modem));
    }

    void an_interface_that_left_unheard_while_waiting_does_not_come()
    {
        hal::DeviceTable table;
        plug(&table, interface("1-1", 0));
        QCOMPARE(told(table.reconcile({})), QStringList());
        QCOMPARE(plug(&table, device("1-1")), QStringList("+" + modem));
    }

    void an_interface_knows_its_device_and_its_ids()
    {
        hal::DeviceTable table;
        plugModem(&table);
        QCOMPARE(parentOf(table, modem + "_if0"), modem);
        QCOMPARE(std::get<std::int32_t>(*valueOf(table, modem + "_if0", "usb.vendor_id")), 0x1110);
        QCOMPARE(std::get<std::int32_t>(*valueOf(table, modem + "_if0", "usb.product_id")), 0x9041);
        QVERIFY(!valueOf(table, modem + "_if0", "usb_device.vendor_id"));
        QVERIFY(!valueOf(table, modem, "usb.vendor_id"));
    }

    void a_device_hangs_on_the_nearest_known_device_above_it_or_on_the_computer()
    {
        hal::DeviceTable table;
        plug(&table, device("1-1", 0x0409, 0x005a));
        plug(&table, device("1-1/1-1.2"));
        plug(&table, device("1-3/1-3.1", 0x572, 0xcafe));
        QCOMPARE(parentOf(table, "usb_device_409_5a_noserial"), QStringLiteral("computer"));
        QCOMPARE(parentOf(table, modem), QStringLiteral("usb_device_409_5a_noserial"));
        QCOMPARE(parentOf(table, "usb_device_572_cafe_noserial"), QStringLiteral("computer"));
    }

    void a_hub_takes_all_that_is_plugged_into_it_along_innermost_first()
    {
        hal::DeviceTable table;
        plug(&table, device("1-1", 0x0409, 0x005a));
        plug(&table, interface("1-1", 0));
        plugModem(&table, "1-1/1-1.2");
        plug(&table, device("1-10")); // begins with the same letters, hangs elsewhere
        QCOMPARE(told(table.unplug("/sys/devices/usb1/1-1")),
            (QStringList{"-" + modem + "_if0", "-" + modem + "_if1", "-" + modem + "_if2",
                "-" + modem, "-usb_device_409_5a_noserial_if0", "-usb_device_409_5a_noserial"}));
        QCOMPARE(listed(table), (QStringList{"computer", modem + "_0"}));
    }

    void the_same_modem_has_the_same_name_after_each_plugging_in_whatever_port()
    {
        hal::DeviceTable table;
        for (const char *port : {"1-1", "1-1", "1-2", "1-4"}) {
            QCOMPARE(plug(&table, device(port)), QStringList("+" + modem));
            QCOMPARE(told(table.unplug(device(port).syspath)), QStringList("-" + modem));
        }
    }

    void two_alike_without_serial_number_share_names_the_lowest_free_first()
    {
        hal::DeviceTable table;
        plug(&table, device("1-1"));
        QCOMPARE(plug(&table, device("1-2")), QStringList("+" + modem + "_0"));
        QCOMPARE(plug(&table, device("1-3")), QStringList("+" + modem + "_1"));
        QCOMPARE(plug(&table, interface("1-2", 0)), QStringList("+" + modem + "_0_if0"));
        QCOMPARE(told(table.unplug(device("1-2").syspath)),
            (QStringList{"-" + modem + "_0_if0", "-" + modem + "_0"}));
        QCOMPARE(plug(&table, device("1-4")), QStringList("+" + modem + "_0"));
        QCOMPARE(told(table.unplug(device("1-1").syspath)), QStringList("-" + modem));
        QCOMPARE(plug(&table, device("1-2")), QStringList("+" + modem));
    }

    void a_serial_number_that_looks_like_an_interface_or_suffix_takes_nobodys_name()
    {
        hal::DeviceTable table;
        plugModem(&table);
        QCOMPARE(plug(&table, device("1-2", 0x1110, 0x9041, "noserial_if0")),
            QStringList("+" + modem + "_if0_0"));
        QCOMPARE(plug(&table, device("1-3", 0x1110, 0x9041, "noserial_0")),
            QStringList("+" + modem + "_0"));
        QCOMPARE(plug(&table, device("1-4")), QStringList("+" + modem + "_1"));
    }

    void a_modem_that_changed_its_port_keeps_its_name_although_its_removal_is_late()
    {
        hal::DeviceTable table;
        plugModem(&table);
        const std::string before = device("1-1").syspath;
        const QStringList news = told(table.plug(
            device("1-2"), [&](const std::string &syspath) { return syspath != before; }));
        QCOMPARE(news,
            (QStringList{"-" + modem + "_if0", "-" + modem + "_if1", "-" + modem + "_if2",
                "-" + modem, "+" + modem}));
        QCOMPARE(told(table.unplug(before)), QStringList());
        QCOMPARE(listed(table), (QStringList{"computer", modem}));
    }

    void another_device_in_the_same_port_means_that_a_removal_was_missed()
    {
        hal::DeviceTable table;
        plug(&table, device("1-1", 0x1110, 0x9042, "", 5));
        QCOMPARE(plug(&table, device("1-1", 0x1110, 0x9041, "", 6)),
            (QStringList{"-usb_device_1110_9042_noserial", "+" + modem}));
        QCOMPARE(plug(&table, device("1-1", 0x1110, 0x9041, "", 7)),
            (QStringList{"-" + modem, "+" + modem}));
    }

    void an_old_removal_does_not_touch_the_next_plugging()
    {
        hal::DeviceTable table;
        plug(&table, device("1-1", 0x1110, 0x9041, "", 6));
        QCOMPARE(told(table.unplug(device("1-1").syspath, 5)), QStringList());
        QCOMPARE(told(table.unplug(device("1-1").syspath, 6)), QStringList("-" + modem));
    }

    void a_driver_comes_changes_and_goes_with_news_each_time()
    {
        hal::DeviceTable table;
        plugModem(&table);
        const std::string path = interface("1-1", 0).syspath;
        const auto kindOf = [](const hal::Announcements &news) {
            return news.size() == 1 ? int(news[0].kind) : -1;
        };
        using Kind = hal::Announcement::Kind;
        QCOMPARE(kindOf(table.setDriver(path, "usbfs")), int(Kind::DriverAppeared));
        QCOMPARE(kindOf(table.setDriver(path, "usbfs")), -1);
        QCOMPARE(kindOf(table.setDriver(path, "ueagle-atm")), int(Kind::DriverChanged));
        QCOMPARE(text(std::get<std::string>(*valueOf(table, modem + "_if0", "info.linux.driver"))),
            QStringLiteral("ueagle-atm"));
        QCOMPARE(kindOf(table.setDriver(path, {})), int(Kind::DriverVanished));
        QCOMPARE(kindOf(table.setDriver(path, {})), -1);
        QVERIFY(!valueOf(table, modem + "_if0", "info.linux.driver"));
        QCOMPARE(kindOf(table.setDriver("/sys/devices/usb1/1-9", "usb")), -1);
    }

    void the_driver_that_a_device_has_from_the_start_is_no_news()
    {
        hal::DeviceTable table;
        hal::UsbRecord record = device("1-1");
        record.driver = "usb";
        QCOMPARE(plug(&table, record), QStringList("+" + modem));
        QVERIFY(valueOf(table, modem, "info.linux.driver"));
    }

    void after_lost_events_exactly_the_difference_is_announced()
    {
        hal::DeviceTable table;
        plugModem(&table);
        plug(&table, device("1-2", 0x572, 0xcafe, "", 3));
        plug(&table, device("1-3", 0x483, 0x138));
        const QStringList news
            = told(table.reconcile({interface("1-4", 1), device("1-3", 0x483, 0x138), device("1-4"),
                device("1-2", 0x572, 0xcafe, "", 4), interface("1-4", 0)}));
        QCOMPARE(news,
            (QStringList{"-" + modem + "_if0", "-" + modem + "_if1", "-" + modem + "_if2",
                "-" + modem, "-usb_device_572_cafe_noserial", "+usb_device_572_cafe_noserial",
                "+" + modem, "+" + modem + "_if0", "+" + modem + "_if1"}));
        QCOMPARE(told(table.reconcile({})).size(), 5);
    }

    void a_restart_keeps_every_name_and_announces_only_what_changed()
    {
        hal::DeviceTable before;
        plug(&before, device("1-1"));
        plug(&before, device("1-2"));
        plug(&before, interface("1-2", 0));
        plug(&before, device("1-3", 0x572, 0xcafe));
        before.unplug(device("1-1").syspath);

        hal::DeviceTable after;
        after.restore(before.known());
        hal::UsbRecord stayed = device("1-2");
        stayed.driver = "usb";
        const QStringList news
            = told(after.reconcile({stayed, interface("1-2", 0), device("1-5", 0x483, 0x138)}));
        QCOMPARE(
            news, (QStringList{"-usb_device_572_cafe_noserial", "+usb_device_483_138_noserial"}));
        QCOMPARE(listed(after),
            (QStringList{
                "computer", modem + "_0", modem + "_0_if0", "usb_device_483_138_noserial"}));
        QVERIFY(valueOf(after, modem + "_0", "usb_device.vendor_id"));
        QVERIFY(valueOf(after, modem + "_0", "info.linux.driver"));
        QVERIFY(valueOf(after, modem + "_0_if0", "usb.vendor_id"));
        QCOMPARE(parentOf(after, modem + "_0_if0"), modem + "_0");
    }

    void a_replug_during_a_restart_is_noticed_by_the_device_number()
    {
        hal::DeviceTable before;
        plug(&before, device("1-1", 0x1110, 0x9041, "", 5));
        hal::DeviceTable after;
        after.restore(before.known());
        QCOMPARE(told(after.reconcile({device("1-1", 0x1110, 0x9041, "", 6)})),
            (QStringList{"-" + modem, "+" + modem}));
    }

    void restored_objects_that_contradict_each_other_are_left_out()
    {
        hal::DeviceTable table;
        const std::string udi = std::string(hal::devicesPrefix) + "usb_device_1_2_x";
        table.restore({{udi + "_if0", interface("1-9", 0)}, {udi, device("1-1", 1, 2, "x")},
            {udi, device("1-2", 1, 2, "x")}, {udi + "_0", device("1-1", 1, 2, "x")}});
        QCOMPARE(table.known().size(), size_t(1));
        QCOMPARE(told(table.reconcile({device("1-1", 1, 2, "x")})), QStringList());
    }
};

QTEST_APPLESS_MAIN(HalDeviceTableTest)
#include "hal_device_table_test.moc"

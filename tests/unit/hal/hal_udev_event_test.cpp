// SPDX-License-Identifier: MIT
// Tests for hal/udev_event: actions and the order of events.
#include "hal/udev_event.h"

#include "hal_test.h"

using hal::UdevAction;
using hal::UdevEvent;

namespace {

UdevEvent added(std::uint64_t sequence, const hal::UsbTexts &texts)
{
    return {UdevAction::Add, sequence, texts};
}

UdevEvent removed(std::uint64_t sequence, const hal::UsbTexts &texts)
{
    return {UdevAction::Remove, sequence, texts};
}

QStringList apply(const UdevEvent &event, hal::DeviceTable *table, std::uint64_t countedUpTo = 0)
{
    return told(hal::apply(event, countedUpTo, everythingIsPresent, table));
}

QStringList order(std::vector<UdevEvent> events)
{
    QStringList lines;
    for (const UdevEvent &event : hal::inOrder(std::move(events))) {
        const QString path = text(event.texts.syspath);
        lines << QString(QLatin1Char(event.action == UdevAction::Add ? '+' : '-'))
                + path.mid(path.lastIndexOf('/') + 1);
    }
    return lines;
}

} // namespace

class HalUdevEventTest : public QObject
{
    Q_OBJECT

private slots:
    void only_remove_removes_and_unknown_actions_do_nothing_data()
    {
        QTest::addColumn<QByteArray>("action");
        QTest::addColumn<int>("expected");
        const auto row = [](const char *action, UdevAction expected) {
            QTest::newRow(action) << QByteArray(action) << int(expected);
        };
        row("add", UdevAction::Add);
        row("remove", UdevAction::Remove);
        row("bind", UdevAction::Update);
        row("unbind", UdevAction::Update);
        row("change", UdevAction::Update);
        row("move", UdevAction::Update);
        row("online", UdevAction::Other);
        row("offline", UdevAction::Other);
        row("removed", UdevAction::Other);
        row("REMOVE", UdevAction::Other);
        row("", UdevAction::Other);
    }
    void only_remove_removes_and_unknown_actions_do_nothing()
    {
        QFETCH(QByteArray, action);
        QFETCH(int, expected);
        QCOMPARE(int(hal::actionFrom(action.toStdString())), expected);
    }

    void events_are_handled_in_the_kernels_order()
    {
        const hal::UsbTexts one = deviceTexts("/sys/devices/usb1/1-1");
        const hal::UsbTexts two = deviceTexts("/sys/devices/usb1/1-2");
        QCOMPARE(order({added(12, two), removed(10, one), removed(14, two)}),
            (QStringList{"-1-1", "+1-2", "-1-2"}));
    }

    void events_without_numbers_keep_the_order_of_arrival()
    {
        const hal::UsbTexts one = deviceTexts("/sys/devices/usb1/1-1");
        const hal::UsbTexts two = deviceTexts("/sys/devices/usb1/1-2");
        QCOMPARE(order({added(0, two), removed(10, one), removed(3, two)}),
            (QStringList{"+1-2", "-1-1", "-1-2"}));
    }

    void interfaces_that_come_together_are_ordered_by_number()
    {
        QCOMPARE(order({added(1, deviceTexts()), added(2, interfaceTexts(2)),
                     added(3, interfaceTexts(0)), added(4, interfaceTexts(1))}),
            (QStringList{"+1-1", "+1-1:1.0", "+1-1:1.1", "+1-1:1.2"}));
    }

    void interfaces_do_not_overtake_anything_else()
    {
        QCOMPARE(
            order({added(1, interfaceTexts(2)), removed(2, interfaceTexts(2)),
                added(3, interfaceTexts(1)), added(4, interfaceTexts(0, "/sys/devices/usb1/1-2"))}),
            (QStringList{"+1-1:1.2", "-1-1:1.2", "+1-1:1.1", "+1-2:1.0"}));
    }

    void an_added_device_is_listed_and_a_removed_one_withdrawn()
    {
        hal::DeviceTable table;
        const QString name = QStringLiteral("usb_device_1110_9041_noserial");
        QCOMPARE(apply(added(1, deviceTexts()), &table), QStringList("+" + name));
        QCOMPARE(apply(added(2, interfaceTexts(0)), &table), QStringList("+" + name + "_if0"));
        QCOMPARE(apply(removed(3, interfaceTexts(0)), &table), QStringList("-" + name + "_if0"));
        QCOMPARE(apply(removed(4, deviceTexts()), &table), QStringList("-" + name));
    }

    void what_was_counted_already_is_not_handled_again()
    {
        hal::DeviceTable table;
        QCOMPARE(apply(added(7, deviceTexts()), &table, 7), QStringList());
        QCOMPARE(apply(added(8, deviceTexts()), &table, 7).size(), 1);
        QCOMPARE(apply(removed(7, deviceTexts()), &table, 7), QStringList());
        QCOMPARE(apply(added(0, deviceTexts("/sys/devices/usb1/1-2")), &table, 7).size(), 1);
    }

    void the_removal_of_an_earlier_plugging_is_ignored()
    {
        hal::DeviceTable table;
        apply(added(1, deviceTexts()), &table);
        hal::UsbTexts earlier = deviceTexts();
        earlier.properties["DEVNUM"] = "001";
        QCOMPARE(apply(removed(2, earlier), &table), QStringList());
        earlier.properties.erase("DEVNUM");
        QCOMPARE(apply(removed(3, earlier), &table).size(), 1);
    }

    void an_update_changes_the_driver_and_nothing_else()
    {
        hal::DeviceTable table;
        UdevEvent bind{UdevAction::Update, 2, interfaceTexts(0)};
        bind.texts.driver = "ueagle-atm";
        QCOMPARE(apply(bind, &table), QStringList());
        apply(added(1, deviceTexts()), &table);
        apply(added(2, interfaceTexts(0)), &table);
        QCOMPARE(apply(bind, &table), QStringList("~usb_device_1110_9041_noserial_if0"));
        QCOMPARE(apply(bind, &table), QStringList());
        bind.texts.driver.reset();
        QCOMPARE(apply(bind, &table), QStringList("~usb_device_1110_9041_noserial_if0"));
    }

    void an_unknown_action_neither_adds_nor_removes()
    {
        hal::DeviceTable table;
        QCOMPARE(apply({UdevAction::Other, 1, deviceTexts()}, &table), QStringList());
        apply(added(2, deviceTexts()), &table);
        QCOMPARE(apply({UdevAction::Other, 3, deviceTexts()}, &table), QStringList());
        QCOMPARE(listed(table).size(), 2);
    }

    void an_event_that_identifies_nothing_is_ignored()
    {
        hal::DeviceTable table;
        hal::UsbTexts texts = deviceTexts();
        texts.properties.clear();
        texts.attributes.clear();
        QCOMPARE(apply(added(1, texts), &table), QStringList());
        QCOMPARE(listed(table), QStringList("computer"));
    }
};

QTEST_APPLESS_MAIN(HalUdevEventTest)
#include "hal_udev_event_test.moc"

// SPDX-License-Identifier: MIT
// Tests for hal/answers: what calls are answered.
#include "hal/answers.h"

#include "hal_test.h"
#include "test_table.h"

#include <set>

using hal::Answer;
using hal::Call;
using hal::Failure;
using hal::Value;

namespace {

constexpr std::string_view manager = "/org/freedesktop/Hal/Manager";
constexpr std::string_view modem = "/org/freedesktop/Hal/devices/usb_device_1110_9041_S";
constexpr std::string_view gone = "/org/freedesktop/Hal/devices/usb_device_1_2_x";

/// A table with one modem with one interface.
const hal::DeviceTable &table()
{
    static const hal::DeviceTable filled = [] {
        hal::UsbTexts texts = deviceTexts();
        texts.attributes["serial"] = "S";
        hal::DeviceTable table;
        table.plug(*hal::usbRecordFrom(texts), everythingIsPresent);
        table.plug(*hal::usbRecordFrom(interfaceTexts(0)), everythingIsPresent);
        return table;
    }();
    return filled;
}

Answer ask(std::string_view path, std::string_view member, std::vector<std::string_view> texts = {},
    std::string_view interface = {})
{
    if (interface.empty()) {
        interface = path == manager ? hal::managerInterface : hal::deviceInterface;
    }
    return hal::answer(table(), Call{path, interface, member, std::move(texts)});
}

QString errorOf(const Answer &answer)
{
    const Failure *const failure = std::get_if<Failure>(&answer);
    return failure ? text(failure->name) : QString();
}

QString errorTextOf(const Answer &answer)
{
    const Failure *const failure = std::get_if<Failure>(&answer);
    return failure ? text(failure->text) : QString();
}

/// Whether the answer is the value of a property.
template <typename Type> bool isProperty(const Answer &answer, const Type &expected)
{
    const Value *const *const value = std::get_if<const Value *>(&answer);
    return value && std::holds_alternative<Type>(**value) && std::get<Type>(**value) == expected;
}

/// Whether the answer is a truth or number that stands nowhere.
template <typename Type> bool is(const Answer &answer, const Type &expected)
{
    const Type *const value = std::get_if<Type>(&answer);
    return value && *value == expected;
}

QStringList names(const Answer &answer)
{
    QStringList list;
    for (const hal::HalObject *object : std::get<hal::ObjectList>(answer)) {
        list << shortName(object->udi);
    }
    return list;
}

const QString noSuchDevice = QStringLiteral("org.freedesktop.Hal.NoSuchDevice");
const QString noSuchProperty = QStringLiteral("org.freedesktop.Hal.NoSuchProperty");
const QString typeMismatch = QStringLiteral("org.freedesktop.Hal.TypeMismatch");
const QString unknownMethod = QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod");
const QString invalidArgs = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs");

} // namespace

class HalAnswersTest : public QObject
{
    Q_OBJECT

private slots:
    void all_devices_are_listed_whatever_arguments_come_along()
    {
        const QStringList all{"computer", "usb_device_1110_9041_S", "usb_device_1110_9041_S_if0"};
        QCOMPARE(names(ask(manager, "GetAllDevices")), all);
        QCOMPARE(names(ask(manager, "GetAllDevices", {"udi"})), all);
        QCOMPARE(names(ask(manager, "GetAllDevices", {"udi", "more"})), all);
    }

    void devices_are_found_by_identifier_text_and_capability()
    {
        QVERIFY(is(ask(manager, "DeviceExists", {modem}), true));
        QVERIFY(is(ask(manager, "DeviceExists", {hal::computerUdi}), true));
        QVERIFY(is(ask(manager, "DeviceExists", {gone}), false));
        QVERIFY(is(ask(manager, "DeviceExists", {""}), false));
        QCOMPARE(names(ask(manager, "FindDeviceStringMatch", {"info.subsystem", "usb_device"})),
            QStringList("usb_device_1110_9041_S"));
        QCOMPARE(names(ask(manager, "FindDeviceStringMatch", {"usb_device.vendor_id", "4368"})),
            QStringList());
        QCOMPARE(names(ask(manager, "FindDeviceStringMatch", {"no.such", ""})), QStringList());
        QCOMPARE(names(ask(manager, "FindDeviceByCapability", {"usb_device"})),
            QStringList("usb_device_1110_9041_S"));
        QCOMPARE(names(ask(manager, "FindDeviceByCapability", {"usb"})),
            QStringList("usb_device_1110_9041_S_if0"));
        QCOMPARE(names(ask(manager, "FindDeviceByCapability", {"camera"})), QStringList());
    }

    void a_property_is_the_bare_value_of_its_own_type()
    {
        QVERIFY(
            isProperty(ask(modem, "GetProperty", {"usb_device.vendor_id"}), std::int32_t(0x1110)));
        QVERIFY(
            isProperty(ask(modem, "GetProperty", {"info.subsystem"}), std::string("usb_device")));
        QVERIFY(isProperty(ask(modem, "GetProperty", {"usb_device.speed"}), 1.5));
        QVERIFY(isProperty(ask(modem, "GetProperty", {"usb_device.can_wake_up"}), true));
        QVERIFY(isProperty(ask(modem, "GetProperty", {"info.capabilities"}),
            std::vector<std::string>{"usb_device"}));
        QVERIFY(isProperty(ask(modem, "GetProperty", {"info.udi", "more"}), std::string(modem)));
    }

    void typed_getters_insist_on_the_type_data()
    {
        // No good key: no property has this type.
        const auto row = tableOfTexts<QByteArray, QByteArray>("getter", "goodKey");
        row("GetPropertyString", "info.subsystem");
        row("GetPropertyStringList", "info.capabilities");
        row("GetPropertyInteger", "usb_device.vendor_id");
        row("GetPropertyUInt64", "");
        row("GetPropertyBoolean", "usb_device.can_wake_up");
        row("GetPropertyDouble", "usb_device.speed");
    }
    void typed_getters_insist_on_the_type()
    {
        QFETCH(QByteArray, getter);
        QFETCH(QByteArray, goodKey);
        for (const char *key : {"info.subsystem", "info.capabilities", "usb_device.vendor_id",
                 "usb_device.can_wake_up", "usb_device.speed"}) {
            const Answer answer = ask(modem, getter.constData(), {key});
            QCOMPARE(errorOf(answer), goodKey == key ? QString() : typeMismatch);
        }
        QCOMPARE(errorOf(ask(modem, getter.constData(), {"no.such"})), noSuchProperty);
        QCOMPARE(errorOf(ask(modem, getter.constData())), invalidArgs);
    }

    void types_are_named_by_their_codes()
    {
        QVERIFY(is(ask(modem, "GetPropertyType", {"usb_device.vendor_id"}), std::int32_t('i')));
        QVERIFY(is(ask(modem, "GetPropertyType", {"info.udi"}), std::int32_t('s')));
        QVERIFY(is(ask(modem, "GetPropertyType", {"usb_device.speed"}), std::int32_t('d')));
        QVERIFY(is(ask(modem, "GetPropertyType", {"usb_device.can_wake_up"}), std::int32_t('b')));
        QVERIFY(is(ask(modem, "GetPropertyType", {"info.capabilities"}), std::int32_t(29548)));
        QCOMPARE(hal::typeCode(Value(std::uint64_t(1))), int('t'));
        QCOMPARE(errorOf(ask(modem, "GetPropertyType", {"no.such"})), noSuchProperty);
    }

    void existence_is_answered_without_an_error()
    {
        QVERIFY(is(ask(modem, "PropertyExists", {"info.udi"}), true));
        QVERIFY(is(ask(modem, "PropertyExists", {"no.such"}), false));
        QVERIFY(is(ask(modem, "QueryCapability", {"usb_device"}), true));
        QVERIFY(is(ask(modem, "QueryCapability", {"usb"}), false));
        QVERIFY(is(ask(hal::computerUdi, "QueryCapability", {"usb"}), false));
    }

    void all_properties_come_at_once()
    {
        const Answer answer = ask(modem, "GetAllProperties");
        QVERIFY(std::holds_alternative<const hal::Properties *>(answer));
        const hal::Properties *const properties = std::get<const hal::Properties *>(answer);
        QVERIFY(properties->find("usb_device.product_id"));
        QStringList keys;
        for (const auto &[key, value] : *properties) {
            keys << text(key);
        }
        QStringList sorted = keys;
        sorted.sort();
        QCOMPARE(keys, sorted);
        QCOMPARE(keys.removeDuplicates(), 0);
    }

    void errors_have_hals_names_and_texts()
    {
        const Answer property = ask(modem, "GetProperty", {"no.such"});
        QCOMPARE(errorOf(property), noSuchProperty);
        QCOMPARE(errorTextOf(property), "No property no.such on device with id " + text(modem));
        const Answer device = ask(gone, "GetProperty", {"info.udi"});
        QCOMPARE(errorOf(device), noSuchDevice);
        QCOMPARE(errorTextOf(device), "No device with id " + text(gone));
    }

    void a_device_that_is_not_there_is_no_such_device_for_any_method()
    {
        for (const char *member :
            {"GetProperty", "GetPropertyString", "GetAllProperties", "PropertyExists",
                "GetPropertyType", "QueryCapability", "SetProperty", "Lock", "Anything"}) {
            for (const std::string_view path : {gone, std::string_view("/"), manager,
                     std::string_view("/org/freedesktop/Hal/devices")}) {
                QCOMPARE(
                    errorOf(ask(path, member, {"info.udi"}, hal::deviceInterface)), noSuchDevice);
            }
        }
        QCOMPARE(errorOf(hal::answer(table(), Call{gone, {}, "GetProperty", {}})), noSuchDevice);
    }

    void what_is_not_offered_is_an_unknown_method_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("interface");
        QTest::addColumn<QByteArray>("member");
        const auto row = [](std::string_view path, std::string_view interface, const char *member) {
            QTest::newRow(member) << QByteArray(path.data(), int(path.size()))
                                  << QByteArray(interface.data(), int(interface.size()))
                                  << QByteArray(member);
        };
        for (const char *member :
            {"NewDevice", "Remove", "CommitToGdl", "AcquireGlobalInterfaceLock",
                "ReleaseGlobalInterfaceLock", "SingletonAddonIsReady", "getAllDevices"}) {
            row(manager, hal::managerInterface, member);
        }
        for (const char *member : {"SetProperty", "SetPropertyString", "SetPropertyInteger",
                 "RemoveProperty", "AddCapability", "Lock", "Unlock", "AcquireInterfaceLock",
                 "Rescan", "StringListAppend", ""}) {
            row(modem, hal::deviceInterface, member);
        }
        row(modem, hal::managerInterface, "GetAllDevices");
        row(modem, "org.freedesktop.DBus.Properties", "GetAll");
        row(manager, "org.freedesktop.DBus.Properties", "Get");
        row("/org/freedesktop/Hal", hal::managerInterface, "GetAllDevices ");
    }
    void what_is_not_offered_is_an_unknown_method()
    {
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, interface);
        QFETCH(QByteArray, member);
        QCOMPARE(
            errorOf(ask(path.constData(), member.constData(), {"a", "b"}, interface.constData())),
            unknownMethod);
    }

    void missing_text_arguments_are_named_as_invalid()
    {
        QCOMPARE(errorOf(ask(manager, "DeviceExists")), invalidArgs);
        QCOMPARE(errorOf(ask(manager, "FindDeviceStringMatch", {"info.udi"})), invalidArgs);
        QCOMPARE(errorOf(ask(modem, "GetProperty")), invalidArgs);
        QCOMPARE(errorOf(ask(modem, "PropertyExists")), invalidArgs);
    }

    void the_interface_may_be_left_out()
    {
        QVERIFY(!names(hal::answer(table(), Call{manager, {}, "GetAllDevices", {}})).isEmpty());
        QVERIFY(isProperty(hal::answer(table(), Call{modem, {}, "GetProperty", {"info.udi"}}),
            std::string(modem)));
        QVERIFY(std::holds_alternative<std::string>(
            hal::answer(table(), Call{modem, {}, "Introspect", {}})));
    }

    void the_bus_librarys_own_interfaces_are_left_to_it()
    {
        QVERIFY(std::holds_alternative<hal::NotOurs>(
            ask(modem, "Ping", {}, "org.freedesktop.DBus.Peer")));
        QVERIFY(std::holds_alternative<hal::NotOurs>(
            ask("/elsewhere", "Introspect", {}, "org.freedesktop.DBus.Introspectable")));
        QVERIFY(std::holds_alternative<hal::NotOurs>(ask("/elsewhere", "Get", {}, "org.x")));
    }
};

QTEST_APPLESS_MAIN(HalAnswersTest)
#include "hal_answers_test.moc"

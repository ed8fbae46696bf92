// SPDX-License-Identifier: MIT
// Tests for hal/introspection: the description of the objects, against what is really answered.
#include "hal/introspection.h"

#include "hal/answers.h"
#include "hal_test.h"

#include <QXmlStreamReader>

namespace {

struct Description
{
    QStringList interfaces;
    QStringList nodes;
    QMap<QString, QStringList> members; ///< by interface: methods and signals with their signature
    bool isWellFormed = false;
};

Description parsed(const std::string &xml)
{
    Description description;
    QXmlStreamReader reader(text(xml));
    QString interface;
    int depth = 0;
    while (!reader.atEnd()) {
        reader.readNext();
        const QString name = reader.attributes().value("name").toString();
        if (reader.isStartElement()) {
            ++depth;
            if (reader.name() == "interface") {
                interface = name;
                description.interfaces << name;
            } else if (reader.name() == "node" && depth > 1) {
                description.nodes << name;
            } else if (reader.name() == "method" || reader.name() == "signal") {
                description.members[interface] << name + "(";
            } else if (reader.name() == "arg") {
                const bool isOut = reader.attributes().value("direction") == "out";
                description.members[interface].last() += (isOut ? QStringLiteral("->") : QString())
                    + reader.attributes().value("type").toString();
            }
        } else if (reader.isEndElement()) {
            --depth;
        }
    }
    description.isWellFormed = !reader.hasError();
    return description;
}

} // namespace

class HalIntrospectionTest : public QObject
{
    Q_OBJECT

    hal::DeviceTable m_table;

private slots:
    void initTestCase()
    {
        m_table.plug(device("1-1"), everythingIsPresent);
        m_table.plug(interface("1-1", 0), everythingIsPresent);
    }

    void the_manager_is_described_as_its_clients_know_it()
    {
        const Description manager = parsed(*hal::describe(m_table, hal::managerPath));
        QVERIFY(manager.isWellFormed);
        QCOMPARE(manager.members["org.freedesktop.Hal.Manager"],
            (QStringList{"GetAllDevices(->as", "DeviceExists(s->b", "FindDeviceStringMatch(ss->as",
                "FindDeviceByCapability(s->as", "DeviceAdded(s", "DeviceRemoved(s"}));
        QVERIFY(manager.interfaces.contains("org.freedesktop.DBus.Introspectable"));
        QVERIFY(manager.interfaces.contains("org.freedesktop.DBus.Peer"));
        QVERIFY(manager.nodes.isEmpty());
    }

    void a_device_is_described_as_its_clients_know_it()
    {
        const Description device = parsed(*hal::describe(m_table, hal::computerUdi));
        QVERIFY(device.isWellFormed);
        QCOMPARE(device.members["org.freedesktop.Hal.Device"],
            (QStringList{"GetProperty(s->v", "GetPropertyString(s->s",
                "GetPropertyStringList(s->as", "GetPropertyInteger(s->i", "GetPropertyUInt64(s->t",
                "GetPropertyBoolean(s->b", "GetPropertyDouble(s->d", "GetAllProperties(->a{sv}",
                "PropertyExists(s->b", "GetPropertyType(s->i", "QueryCapability(s->b",
                "PropertyModified(ia(sbb)"}));
    }

    void every_described_method_is_answered()
    {
        for (const std::string_view path : {hal::managerPath, hal::computerUdi}) {
            const Description description = parsed(*hal::describe(m_table, path));
            const QString interface = path == hal::managerPath
                ? QStringLiteral("org.freedesktop.Hal.Manager")
                : QStringLiteral("org.freedesktop.Hal.Device");
            for (const QString &member : description.members[interface]) {
                const std::string name = member.section('(', 0, 0).toStdString();
                const hal::Answer answer = hal::answer(
                    m_table, {path, interface.toStdString(), name, {"info.udi", "x"}});
                const auto *const failure = std::get_if<hal::Failure>(&answer);
                const bool isSignal = name.substr(0, 6) == "Device" ? name != "DeviceExists"
                                                                    : name == "PropertyModified";
                QCOMPARE(failure && failure->name == "org.freedesktop.DBus.Error.UnknownMethod",
                    isSignal);
            }
        }
    }

    void the_tree_can_be_walked_from_the_root()
    {
        QCOMPARE(parsed(*hal::describe(m_table, "/")).nodes, QStringList("org"));
        QCOMPARE(parsed(*hal::describe(m_table, "/org")).nodes, QStringList("freedesktop"));
        QCOMPARE(parsed(*hal::describe(m_table, "/org/freedesktop")).nodes, QStringList("Hal"));
        QCOMPARE(parsed(*hal::describe(m_table, "/org/freedesktop/Hal")).nodes,
            (QStringList{"Manager", "devices"}));
        QCOMPARE(
            parsed(*hal::describe(m_table, "/org/freedesktop/Hal/devices")).nodes, listed(m_table));
    }

    void a_device_that_is_not_there_is_described_like_any_other()
    {
        QCOMPARE(text(*hal::describe(m_table, "/org/freedesktop/Hal/devices/usb_device_1_2_x")),
            text(*hal::describe(m_table, hal::computerUdi)));
    }

    void nothing_is_described_where_nothing_can_be()
    {
        for (const char *path : {"/com", "/org/freedesktop/Hal/Managers", "/org/freedesktop/Hal/",
                 "/org/freedesktop/DBus", ""}) {
            QVERIFY2(!hal::describe(m_table, path), path);
        }
    }
};

QTEST_APPLESS_MAIN(HalIntrospectionTest)
#include "hal_introspection_test.moc"

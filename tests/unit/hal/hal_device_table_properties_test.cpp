// SPDX-License-Identifier: MIT
// Tests for hal/device_table against a simple model: random plugging, with events that come twice,
// late, in odd orders or not at all. The list is exactly what is present, each object is announced
// once, identifiers are unique and stable.
#include "hal/device_table.h"
#include "hal/known_devices.h"
#include "hal/udev_event.h"

#include "hal_test.h"

#include <deque>
#include <map>
#include <random>
#include <set>

namespace {

using hal::UdevAction;
using hal::UdevEvent;

/// What is plugged, as sysfs would show it, and the events on their way.
class World
{
public:
    World(unsigned seed, bool tellsSequence)
        : m_random(seed)
        , m_tellsSequence(tellsSequence)
    {
    }

    int roll(int sides) { return int(m_random() % unsigned(sides)); }

    /// A device comes or goes somewhere; its events queue up.
    void change()
    {
        static const char *const ports[]
            = {"1-1", "1-2", "1-3", "1-4", "1-1/1-1.1", "1-1/1-1.2", "1-1/1-1.2/1-1.2.1"};
        const std::string port = ports[roll(int(std::size(ports)))];
        const std::string syspath = "/sys/devices/usb1/" + port;
        if (m_present.count(syspath) != 0) {
            unplug(syspath);
        } else if (port.find('/') == std::string::npos
            || m_present.count(hal::parentPath(syspath)) != 0) {
            plug(syspath);
        }
    }

    /// The next event to arrive. Each root port has its own queue: between them udev keeps no
    /// order.
    std::optional<UdevEvent> deliver()
    {
        std::vector<std::deque<UdevEvent> *> waiting;
        for (auto &[port, queue] : m_queues) {
            if (!queue.empty()) {
                waiting.push_back(&queue);
            }
        }
        if (waiting.empty()) {
            return std::nullopt;
        }
        std::deque<UdevEvent> &queue = *waiting[size_t(roll(int(waiting.size())))];
        UdevEvent event = std::move(queue.front());
        queue.pop_front();
        if (roll(8) == 0) {
            m_repeated = event;
        }
        return event;
    }

    /// An earlier event once more.
    std::optional<UdevEvent> repeat()
    {
        const bool isStillTrue = m_repeated && m_repeated->action == UdevAction::Add
            && m_present.count(m_repeated->texts.syspath) != 0
            && m_present[m_repeated->texts.syspath].properties == m_repeated->texts.properties;
        return isStillTrue ? m_repeated : std::nullopt;
    }

    /// Some of the waiting events never arrive. Whether any was lost.
    bool loseEvents()
    {
        bool lost = false;
        for (auto &[port, queue] : m_queues) {
            while (!queue.empty() && roll(3) != 0) {
                queue.pop_front();
                lost = true;
            }
        }
        return lost;
    }

    std::vector<hal::UsbRecord> list()
    {
        std::vector<hal::UsbRecord> records;
        for (const auto &[syspath, texts] : m_present) {
            records.push_back(*hal::usbRecordFrom(texts));
        }
        std::shuffle(records.begin(), records.end(), m_random);
        return records;
    }

    std::uint64_t latestSequence() const { return m_tellsSequence ? m_sequence : 0; }
    bool isPresent(const std::string &syspath) const { return m_present.count(syspath) != 0; }
    const std::map<std::string, hal::UsbTexts> &present() const { return m_present; }

private:
    void plug(const std::string &syspath)
    {
        struct Model
        {
            int vendor;
            int product;
            const char *serial;
        };
        static const Model models[] = {{0x1110, 0x9042, ""}, {0x1110, 0x9041, ""},
            {0x572, 0xcafe, "A:1"}, {0x572, 0xcafe, "noserial_0"}, {0x572, 0xcafe, ""},
            {0x1110, 0x9041, "noserial_if1"}};
        const Model &model = models[roll(int(std::size(models)))];
        char product[32];
        std::snprintf(
            product, sizeof product, "%x/%x/1", unsigned(model.vendor), unsigned(model.product));
        hal::UsbTexts texts = deviceTexts(syspath);
        texts.attributes = {{"serial", model.serial}};
        texts.properties = {{"PRODUCT", product}, {"DEVNUM", std::to_string(++m_deviceNumber)}};
        m_present[syspath] = texts;
        std::vector<hal::UsbTexts> coming{texts};
        const int interfaces = roll(4);
        for (int number = 0; number < interfaces; ++number) {
            coming.push_back(interfaceTexts(number, syspath));
            m_present[coming.back().syspath] = coming.back();
        }
        if (roll(6) == 0) {
            std::shuffle(coming.begin(), coming.end(), m_random);
        }
        for (const hal::UsbTexts &one : coming) {
            tell(UdevAction::Add, one);
            if (roll(3) == 0) {
                hal::UsbTexts bound = one;
                bound.driver = roll(2) == 0 ? "usb" : "ueagle-atm";
                tell(UdevAction::Update, bound);
            }
        }
    }

    void unplug(const std::string &syspath)
    {
        std::vector<hal::UsbTexts> going;
        for (auto one = m_present.lower_bound(syspath); one != m_present.end();) {
            const bool isInside = one->first == syspath
                || one->first.compare(0, syspath.size() + 1, syspath + '/') == 0;
            if (isInside) {
                going.push_back(one->second);
            }
            one = isInside ? m_present.erase(one) : std::next(one);
        }
        if (roll(4) != 0) {
            std::reverse(going.begin(), going.end()); // as it should be: what is inside goes first
        }
        for (const hal::UsbTexts &one : going) {
            tell(UdevAction::Remove, one);
        }
        if (roll(5) == 0) {
            tell(UdevAction::Other, going.front());
        }
    }

    void tell(UdevAction action, const hal::UsbTexts &texts)
    {
        constexpr size_t rootPortLength = std::string_view("/sys/devices/usb1/1-1").size();
        m_queues[texts.syspath.substr(0, rootPortLength)].push_back({action, ++m_sequence, texts});
    }

    std::mt19937 m_random;
    const bool m_tellsSequence;
    std::map<std::string, hal::UsbTexts> m_present;
    std::map<std::string, std::deque<UdevEvent>> m_queues;
    std::optional<UdevEvent> m_repeated;
    std::uint64_t m_sequence = 0;
    int m_deviceNumber = 0;
};

/// A client that believes what it is told.
class Client
{
public:
    /// Takes announcements; what is wrong with them, empty when all is well.
    QString hear(const hal::Announcements &news)
    {
        for (const hal::Announcement &one : news) {
            const QString name = shortName(one.udi);
            switch (one.kind) {
            case hal::Announcement::Kind::Added:
                if (!m_known.insert(one.udi).second) {
                    return "announced twice: " + name;
                }
                break;
            case hal::Announcement::Kind::Removed:
                if (m_known.erase(one.udi) == 0) {
                    return "removed without having come: " + name;
                }
                break;
            case hal::Announcement::Kind::DriverAppeared:
            case hal::Announcement::Kind::DriverChanged:
            case hal::Announcement::Kind::DriverVanished:
                if (m_known.count(one.udi) == 0) {
                    return "changed without having come: " + name;
                }
                break;
            }
        }
        return {};
    }

    const std::set<std::string> &known() const { return m_known; }

private:
    std::set<std::string> m_known;
};

std::string textOf(const hal::HalObject &object, const char *key)
{
    const hal::Value *const value = object.properties.find(key);
    return value ? std::get<std::string>(*value) : std::string();
}

/// What must hold at every moment.
QString alwaysTrue(const hal::DeviceTable &table, const Client &client)
{
    std::set<std::string> seen;
    for (const hal::HalObject *object : table.objects()) {
        const std::string parent = textOf(*object, "info.parent");
        if (!seen.insert(object->udi).second) {
            return "listed twice: " + shortName(object->udi);
        }
        if (!hal::isDeviceUdi(object->udi) || table.find(object->udi) != object) {
            return "not to be found: " + shortName(object->udi);
        }
        if (textOf(*object, "info.subsystem") == "usb" && seen.count(parent) == 0) {
            return "listed before its device: " + shortName(object->udi);
        }
    }
    seen.erase(std::string(hal::computerUdi));
    return seen == client.known() ? QString()
                                  : QStringLiteral("the list is not what was announced");
}

/// What must hold once every event has arrived.
QString trueAtRest(const hal::DeviceTable &table, const World &world)
{
    size_t count = 0;
    for (const hal::HalObject *object : table.objects()) {
        if (object->udi == hal::computerUdi) {
            continue;
        }
        ++count;
        const auto place = world.present().find(textOf(*object, "linux.sysfs_path"));
        if (place == world.present().end()) {
            return "listed, but not present: " + shortName(object->udi);
        }
        const hal::UsbRecord record = *hal::usbRecordFrom(place->second);
        const std::string parent = textOf(*object, "info.parent");
        const std::string wanted = record.kind == hal::UsbKind::Device
            ? hal::deviceUdi(record.vendorId, record.productId, record.serial)
            : hal::interfaceUdi(parent, record.interfaceNumber);
        if (object->udi.compare(0, wanted.size(), wanted) != 0) {
            return shortName(object->udi) + " should be called " + shortName(wanted);
        }
    }
    return count == world.present().size() ? QString() : QStringLiteral("something is not listed");
}

} // namespace

class HalDeviceTablePropertiesTest : public QObject
{
    Q_OBJECT

private slots:
    void the_list_is_what_is_present_and_each_is_announced_once_under_a_stable_unique_name_data()
    {
        QTest::addColumn<unsigned>("firstSeed");
        QTest::addColumn<bool>("tellsSequence");
        for (unsigned seed = 0; seed < 200; seed += 25) {
            QTest::addRow("seeds from %u, numbered by the kernel", seed) << seed << true;
            QTest::addRow("seeds from %u, not numbered", seed) << seed << false;
        }
    }
    void the_list_is_what_is_present_and_each_is_announced_once_under_a_stable_unique_name()
    {
        QFETCH(unsigned, firstSeed);
        QFETCH(bool, tellsSequence);
        for (unsigned seed = firstSeed; seed < firstSeed + 25; ++seed) {
            const QString problem = play(seed, tellsSequence);
            QVERIFY2(
                problem.isEmpty(), qPrintable(problem + " (seed " + QString::number(seed) + ")"));
        }
    }

    void a_modem_that_is_the_only_one_of_its_kind_always_has_the_plain_name()
    {
        std::mt19937 random(1);
        hal::DeviceTable table;
        const std::string plain = hal::deviceUdi(0x1110, 0x9041, "noserial");
        std::string port;
        for (int round = 0; round < 2000; ++round) {
            const std::string next = "1-" + std::to_string(random() % 5 + 1);
            const bool removalIsLate = !port.empty() && random() % 2 == 0;
            if (!port.empty() && !removalIsLate) {
                table.unplug(device(port).syspath, round);
            }
            const hal::UsbRecord record = device(next, 0x1110, 0x9041, "", round + 1);
            table.plug(
                record, [&](const std::string &syspath) { return syspath == record.syspath; });
            if (removalIsLate) {
                table.unplug(device(port).syspath, round);
            }
            port = next;
            QCOMPARE(table.objects().size(), size_t(2));
            QVERIFY(table.find(plain));
        }
    }

private:
    /// One history; what went wrong in it, empty when nothing did.
    static QString play(unsigned seed, bool tellsSequence)
    {
        World world(seed, tellsSequence);
        Client client;
        hal::DeviceTable table;
        std::uint64_t countedUpTo = 0;
        const auto stillPresent
            = [&](const std::string &syspath) { return world.isPresent(syspath); };
        QString problem;
        const auto hear = [&](const hal::Announcements &news) {
            const QString heard = client.hear(news);
            const QString found = heard.isEmpty() ? alwaysTrue(table, client) : heard;
            problem = problem.isEmpty() ? found : problem;
        };
        const auto count = [&] {
            countedUpTo = world.latestSequence();
            hear(table.reconcile(world.list()));
        };
        for (int step = 0; step < 300 && problem.isEmpty(); ++step) {
            const int what = world.roll(40);
            if (what < 12) {
                world.change();
            } else if (what < 37) {
                if (const auto event = world.deliver()) {
                    hear(hal::apply(*event, countedUpTo, stillPresent, &table));
                }
            } else if (what == 37) {
                if (const auto event = world.repeat()) {
                    hear(hal::apply(*event, countedUpTo, stillPresent, &table));
                }
            } else if (what == 38) {
                if (world.loseEvents()) {
                    count();
                }
            } else {
                const auto known = hal::knownDevicesFrom(hal::knownDevicesText(table.known()));
                table = hal::DeviceTable();
                table.restore(*known);
                count();
            }
        }
        while (const auto event = world.deliver()) {
            hear(hal::apply(*event, countedUpTo, stillPresent, &table));
        }
        return problem.isEmpty() ? trueAtRest(table, world) : problem;
    }
};

QTEST_APPLESS_MAIN(HalDeviceTablePropertiesTest)
#include "hal_device_table_properties_test.moc"

// SPDX-License-Identifier: MIT
#include "hal/device_table.h"

#include "hal/udi.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace hal {

namespace {

constexpr std::string_view driverKey = "info.linux.driver";

void append(Announcements *news, Announcements more)
{
    news->insert(
        news->end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

/// Devices before what is plugged into them, interfaces behind their device and by number.
bool comesBefore(const UsbRecord &left, const UsbRecord &right)
{
    const auto rank = [](const UsbRecord &record) {
        const bool isInterface = record.kind == UsbKind::Interface;
        return std::make_tuple(isInterface ? parentPath(record.syspath) : record.syspath,
            isInterface, record.interfaceNumber);
    };
    return rank(left) < rank(right);
}

/// What hangs on a device goes before it; its interfaces by number.
bool leavesBefore(const UsbRecord &left, const UsbRecord &right)
{
    const auto owner = [](const UsbRecord &record) {
        return record.kind == UsbKind::Interface ? parentPath(record.syspath) : record.syspath;
    };
    const auto rank = [](const UsbRecord &record) {
        return std::make_pair(record.kind == UsbKind::Device, record.interfaceNumber);
    };
    const int order = owner(left).compare(owner(right));
    return order != 0 ? order > 0 : rank(left) < rank(right);
}

bool isBelow(const std::string &syspath, const std::string &top)
{
    return syspath.size() > top.size() && syspath.compare(0, top.size(), top) == 0
        && syspath[top.size()] == '/';
}

} // namespace

DeviceTable::DeviceTable()
    : m_computer{std::string(computerUdi), computerProperties()}
{
}

Announcements DeviceTable::plug(UsbRecord record, const Presence &stillPresent)
{
    Announcements news;
    const auto place = m_entries.find(record.syspath);
    if (place != m_entries.end() && sameInstance(place->second.record, record)) {
        if (!place->second.isRestored) {
            return setDriver(record.syspath, record.driver);
        }
        complete(&place->second, std::move(record.facts));
        setDriver(record.syspath, record.driver);
        return news;
    }
    if (place != m_entries.end()) {
        withdraw(record.syspath, &news);
    }
    insert(std::move(record), stillPresent, &news);
    return news;
}

void DeviceTable::insert(UsbRecord record, const Presence &stillPresent, Announcements *news)
{
    const std::string syspath = record.syspath;
    const bool isInterface = record.kind == UsbKind::Interface;
    const std::optional<std::string> wanted = wantedUdi(record);
    const std::string udi = wanted ? freeUdi(*wanted, stillPresent, news) : std::string();
    if (!wantedUdi(record)) { // asked again: freeing the identifier may have cost the device
        m_waiting.insert_or_assign(syspath, std::move(record));
        return;
    }
    Entry entry;
    entry.object.udi = udi;
    Properties facts = std::exchange(record.facts, Properties());
    const std::optional<std::string> driver = std::exchange(record.driver, std::nullopt);
    entry.record = std::move(record);
    complete(&entry, std::move(facts));
    if (driver) {
        entry.object.properties.setText(driverKey, *driver);
    }
    const Entry &stored = m_entries.insert_or_assign(syspath, std::move(entry)).first->second;
    m_byUdi.emplace(stored.object.udi, &stored);
    news->push_back({Announcement::Kind::Added, stored.object.udi});
    if (!isInterface) {
        plugWaitingInterfaces(syspath, stillPresent, news);
    }
}

/// The identifier of @p record unless it is taken; empty for an interface without its device.
std::optional<std::string> DeviceTable::wantedUdi(const UsbRecord &record) const
{
    if (record.kind == UsbKind::Device) {
        return deviceUdi(record.vendorId, record.productId, record.serial);
    }
    const auto device = m_entries.find(parentPath(record.syspath));
    if (device == m_entries.end()) {
        return std::nullopt;
    }
    return interfaceUdi(device->second.object.udi, record.interfaceNumber);
}

void DeviceTable::plugWaitingInterfaces(
    const std::string &deviceSyspath, const Presence &stillPresent, Announcements *news)
{
    std::vector<UsbRecord> interfaces;
    for (auto waiting = m_waiting.begin(); waiting != m_waiting.end();) {
        if (parentPath(waiting->first) == deviceSyspath) {
            interfaces.push_back(std::move(waiting->second));
            waiting = m_waiting.erase(waiting);
        } else {
            ++waiting;
        }
    }
    std::sort(interfaces.begin(), interfaces.end(), comesBefore);
    for (UsbRecord &record : interfaces) {
        insert(std::move(record), stillPresent, news);
    }
}

Announcements DeviceTable::unplug(const std::string &syspath, std::optional<int> deviceNumber)
{
    Announcements news;
    const auto place = m_entries.find(syspath);
    if (place != m_entries.end() && deviceNumber && place->second.record.deviceNumber
        && *deviceNumber != *place->second.record.deviceNumber) {
        return news;
    }
    withdraw(syspath, &news);
    return news;
}

void DeviceTable::withdraw(const std::string &syspath, Announcements *news)
{
    std::vector<const UsbRecord *> leaving;
    const auto top = m_entries.find(syspath);
    if (top != m_entries.end()) {
        leaving.push_back(&top->second.record);
    }
    for (auto below = m_entries.lower_bound(syspath + '/');
         below != m_entries.end() && isBelow(below->first, syspath); ++below) {
        leaving.push_back(&below->second.record);
    }
    std::sort(leaving.begin(), leaving.end(),
        [](const UsbRecord *left, const UsbRecord *right) { return leavesBefore(*left, *right); });
    for (const UsbRecord *record : leaving) {
        erase(std::string(record->syspath), news);
    }
    for (auto waiting = m_waiting.begin(); waiting != m_waiting.end();) {
        const bool isGone = waiting->first == syspath || isBelow(waiting->first, syspath);
        waiting = isGone ? m_waiting.erase(waiting) : std::next(waiting);
    }
}

void DeviceTable::erase(const std::string &syspath, Announcements *news)
{
    const auto place = m_entries.find(syspath);
    m_byUdi.erase(place->second.object.udi);
    news->push_back({Announcement::Kind::Removed, std::move(place->second.object.udi)});
    m_entries.erase(place);
}

std::string DeviceTable::freeUdi(
    const std::string &wanted, const Presence &stillPresent, Announcements *news)
{
    return firstFreeUdi(wanted, [&](const std::string &udi) {
        if (udi == computerUdi) {
            return true;
        }
        const auto holder = m_byUdi.find(udi);
        if (holder == m_byUdi.end()) {
            return false;
        }
        const std::string syspath = holder->second->record.syspath;
        if (stillPresent(syspath)) {
            return true;
        }
        withdraw(syspath, news);
        return false;
    });
}

std::string DeviceTable::parentUdi(const std::string &syspath) const
{
    for (std::string path = parentPath(syspath); !path.empty(); path = parentPath(path)) {
        const auto parent = m_entries.find(path);
        if (parent != m_entries.end()) {
            return parent->second.object.udi;
        }
    }
    return std::string(computerUdi);
}

/// Gives the object its properties. Interfaces have no ids of their own in sysfs, and must not have
/// the keys of a device: clients tell the two apart by them.
void DeviceTable::complete(Entry *entry, Properties facts) const
{
    Properties &properties = entry->object.properties;
    properties = std::move(facts);
    properties.setText("info.udi", entry->object.udi);
    properties.setText("info.parent", parentUdi(entry->record.syspath));
    if (entry->record.kind == UsbKind::Interface) {
        const auto device = m_entries.find(parentPath(entry->record.syspath));
        if (device != m_entries.end()) {
            properties.set("usb.vendor_id", device->second.record.vendorId);
            properties.set("usb.product_id", device->second.record.productId);
        }
    }
    entry->isRestored = false;
}

Announcements DeviceTable::setDriver(
    const std::string &syspath, const std::optional<std::string> &driver)
{
    const auto place = m_entries.find(syspath);
    if (place == m_entries.end()) {
        const auto waiting = m_waiting.find(syspath);
        if (waiting != m_waiting.end()) {
            waiting->second.driver = driver;
        }
        return {};
    }
    HalObject &object = place->second.object;
    const bool hadDriver = object.properties.find(driverKey);
    if (!driver) {
        object.properties.remove(driverKey);
        return hadDriver ? Announcements{{Announcement::Kind::DriverVanished, object.udi}}
                         : Announcements();
    }
    if (hasText(object.properties, driverKey, *driver)) {
        return {};
    }
    object.properties.setText(driverKey, *driver);
    return {{hadDriver ? Announcement::Kind::DriverChanged : Announcement::Kind::DriverAppeared,
        object.udi}};
}

Announcements DeviceTable::reconcile(std::vector<UsbRecord> records)
{
    std::sort(records.begin(), records.end(), comesBefore);
    std::unordered_map<std::string_view, const UsbRecord *> present;
    for (const UsbRecord &record : records) {
        present.emplace(record.syspath, &record);
    }
    std::vector<std::string> gone;
    for (const auto &[syspath, entry] : m_entries) {
        const auto now = present.find(syspath);
        if (now == present.end() || !sameInstance(entry.record, *now->second)) {
            gone.push_back(syspath);
        }
    }
    Announcements news;
    m_waiting.clear();
    for (const std::string &syspath : gone) {
        withdraw(syspath, &news);
    }
    for (UsbRecord &record : records) {
        append(&news, plug(std::move(record), [](const std::string &) { return true; }));
    }
    return news;
}

void DeviceTable::restore(const std::vector<KnownObject> &known)
{
    for (const KnownObject &object : known) {
        if (m_byUdi.count(object.udi) != 0 || m_entries.count(object.record.syspath) != 0) {
            continue;
        }
        const bool needsDevice = object.record.kind == UsbKind::Interface;
        if (needsDevice && m_entries.count(parentPath(object.record.syspath)) == 0) {
            continue;
        }
        Entry entry;
        entry.object.udi = object.udi;
        entry.record = object.record;
        entry.isRestored = true;
        const Entry &stored
            = m_entries.emplace(object.record.syspath, std::move(entry)).first->second;
        m_byUdi.emplace(stored.object.udi, &stored);
    }
}

std::vector<KnownObject> DeviceTable::known() const
{
    std::vector<KnownObject> all;
    all.reserve(m_entries.size());
    for (const auto &[syspath, entry] : m_entries) {
        all.push_back({entry.object.udi, entry.record});
    }
    return all;
}

const HalObject *DeviceTable::find(std::string_view udi) const
{
    if (udi == computerUdi) {
        return &m_computer;
    }
    const auto place = m_byUdi.find(udi);
    return place == m_byUdi.end() ? nullptr : &place->second->object;
}

std::vector<const HalObject *> DeviceTable::objects() const
{
    std::vector<const HalObject *> all{&m_computer};
    all.reserve(m_entries.size() + 1);
    for (const auto &[syspath, entry] : m_entries) {
        all.push_back(&entry.object);
    }
    return all;
}

} // namespace hal

// SPDX-License-Identifier: MIT
#include "hal/udev_event.h"

#include "hal/text.h"

#include <algorithm>

namespace hal {

namespace {

bool addsInterface(const UdevEvent &event)
{
    return event.action == UdevAction::Add && event.texts.kind == UsbKind::Interface;
}

int interfaceNumberOf(const UdevEvent &event)
{
    const std::optional<UsbRecord> record = usbRecordFrom(event.texts);
    return record ? record->interfaceNumber : 0;
}

/// The device number that an event itself carries.
std::optional<int> deviceNumberOf(const UdevEvent &event)
{
    const auto number = event.texts.properties.find(std::string_view("DEVNUM"));
    return number == event.texts.properties.end() ? std::nullopt : parseDecimal(number->second);
}

/// Whether @p right continues a series of additions to the device that @p left belongs to.
bool areNeighbours(const UdevEvent &left, const UdevEvent &right)
{
    return addsInterface(left) && addsInterface(right)
        && parentPath(left.texts.syspath) == parentPath(right.texts.syspath);
}

} // namespace

UdevAction actionFrom(std::string_view action)
{
    if (action == "add") {
        return UdevAction::Add;
    }
    if (action == "remove") {
        return UdevAction::Remove;
    }
    if (action == "bind" || action == "unbind" || action == "change" || action == "move") {
        return UdevAction::Update;
    }
    return UdevAction::Other;
}

std::vector<UdevEvent> inOrder(std::vector<UdevEvent> events)
{
    const bool allNumbered = std::all_of(
        events.begin(), events.end(), [](const UdevEvent &event) { return event.sequence != 0; });
    if (allNumbered) {
        std::stable_sort(
            events.begin(), events.end(), [](const UdevEvent &left, const UdevEvent &right) {
                return left.sequence < right.sequence;
            });
    }
    for (auto first = events.begin(); first != events.end();) {
        auto last = first + 1;
        while (last != events.end() && areNeighbours(*first, *last)) {
            ++last;
        }
        std::stable_sort(first, last, [](const UdevEvent &left, const UdevEvent &right) {
            return interfaceNumberOf(left) < interfaceNumberOf(right);
        });
        first = last;
    }
    return events;
}

Announcements apply(const UdevEvent &event, std::uint64_t countedUpTo,
    const DeviceTable::Presence &stillPresent, DeviceTable *devices)
{
    const bool isCounted = event.sequence != 0 && event.sequence <= countedUpTo;
    switch (event.action) {
    case UdevAction::Add:
        if (std::optional<UsbRecord> record
            = isCounted ? std::nullopt : usbRecordFrom(event.texts)) {
            return devices->plug(std::move(*record), stillPresent);
        }
        return {};
    case UdevAction::Remove:
        return isCounted ? Announcements()
                         : devices->unplug(event.texts.syspath, deviceNumberOf(event));
    case UdevAction::Update:
        return devices->setDriver(event.texts.syspath, event.texts.driver);
    case UdevAction::Other:
        return {};
    }
    return {};
}

} // namespace hal

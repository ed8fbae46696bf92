// SPDX-License-Identifier: MIT
// One event of udev, as far as it concerns USB.
#pragma once

#include "hal/device_table.h"
#include "hal/usb_record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hal {

enum class UdevAction
{
    Add,
    Remove,
    Update,
    Other
};

/// What the event text @p action asks for. Only "remove" removes: an action that the future brings
/// must not take a device away.
UdevAction actionFrom(std::string_view action);

struct UdevEvent
{
    UdevAction action = UdevAction::Other;
    std::uint64_t sequence = 0; ///< the kernel's number of the event; 0 when there is none
    UsbTexts texts;
};

/// @p events as they are to be handled: in the kernel's order, which udev may have mixed up where
/// it works on several devices at once, and interfaces of one device that came together by number.
std::vector<UdevEvent> inOrder(std::vector<UdevEvent> events);

/// Brings @p devices up to date with @p event and returns what to announce. What came or went in
/// events up to the number @p countedUpTo stands in the table already, from a list that was made
/// after them: sysfs shows a device before its event comes, and hides it before its event goes.
Announcements apply(const UdevEvent &event, std::uint64_t countedUpTo,
    const DeviceTable::Presence &stillPresent, DeviceTable *devices);

} // namespace hal

// SPDX-License-Identifier: MIT
// Describes the objects on the bus.
#pragma once

#include "hal/device_table.h"

#include <optional>
#include <string>
#include <string_view>

namespace hal {

inline constexpr std::string_view managerPath = "/org/freedesktop/Hal/Manager";

/// The description of the object at @p path: its interfaces and child nodes. Every path below
/// /org/freedesktop/Hal/devices is described as a device, one that is not (yet) there too: client
/// libraries ask when they make a proxy, keep the answer for all devices, and learn from their
/// first call whether the device exists. Empty for paths where nothing is and never can be.
std::optional<std::string> describe(const DeviceTable &devices, std::string_view path);

} // namespace hal

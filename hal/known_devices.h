// SPDX-License-Identifier: MIT
// The list of devices as text, kept over a restart so that nothing plugged or unplugged meanwhile
// is missed and no identifier changes.
#pragma once

#include "hal/device_table.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hal {

/// @p objects as text, one a line.
std::string knownDevicesText(const std::vector<KnownObject> &objects);

/// The reverse. Empty when @p text is not such a list; a list that has lost its end counts as none,
/// for its missing devices would all be announced as new.
std::optional<std::vector<KnownObject>> knownDevicesFrom(std::string_view text);

/// The list in the file @p path; empty when there is none that can be read.
std::optional<std::vector<KnownObject>> readKnownDevices(const std::string &path);

/// Replaces the file @p path, in one step for whoever reads it. Returns false, with errno set, when
/// it cannot be written.
bool writeKnownDevices(const std::string &path, const std::vector<KnownObject> &objects);

} // namespace hal

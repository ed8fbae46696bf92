// SPDX-License-Identifier: MIT
// The identifiers (UDI) that HAL gives to the computer, USB devices and their interfaces. They are
// object paths on the bus.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace hal {

/// Under this path stand all devices, the slash included.
inline constexpr std::string_view devicesPrefix = "/org/freedesktop/Hal/devices/";

/// The one object that is no USB device.
inline constexpr std::string_view computerUdi = "/org/freedesktop/Hal/devices/computer";

/// A serial number as it stands in an identifier: every byte but letters, digits and '_' becomes
/// '_'; "noserial" for a device without one.
std::string serialForUdi(std::string_view serial);

/// The identifier a USB device has unless another device holds it already: lower-case hexadecimal
/// ids without leading zeros. @p serialPart comes from serialForUdi.
std::string deviceUdi(int vendorId, int productId, std::string_view serialPart);

/// The identifier of interface @p number (decimal) of the device @p deviceUdi.
std::string interfaceUdi(std::string_view deviceUdi, int number);

/// @p wanted when it is free, else the first free of wanted_0, wanted_1 …; @p isTaken is asked for
/// one after the other until it answers false.
std::string firstFreeUdi(
    const std::string &wanted, const std::function<bool(const std::string &)> &isTaken);

/// Whether @p text is an identifier that this service could have given: the prefix and at least one
/// letter, digit or '_', nothing else.
bool isDeviceUdi(std::string_view text);

} // namespace hal

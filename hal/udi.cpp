// SPDX-License-Identifier: MIT
#include "hal/udi.h"

#include <algorithm>
#include <cstdio>

namespace hal {

namespace {

/// Not isalnum: an identifier must not depend on the locale.
bool isPathCharacter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

} // namespace

std::string serialForUdi(std::string_view serial)
{
    if (serial.empty()) {
        return "noserial";
    }
    std::string part(serial);
    std::replace_if(
        part.begin(), part.end(), [](char c) { return !isPathCharacter(c); }, '_');
    return part;
}

std::string deviceUdi(int vendorId, int productId, std::string_view serialPart)
{
    char ids[32];
    std::snprintf(ids, sizeof ids, "usb_device_%x_%x_", unsigned(vendorId), unsigned(productId));
    return std::string(devicesPrefix).append(ids).append(serialPart);
}

std::string interfaceUdi(std::string_view deviceUdi, int number)
{
    return std::string(deviceUdi).append("_if").append(std::to_string(number));
}

std::string firstFreeUdi(
    const std::string &wanted, const std::function<bool(const std::string &)> &isTaken)
{
    std::string udi = wanted;
    for (int suffix = 0; isTaken(udi); ++suffix) {
        udi = wanted + '_' + std::to_string(suffix);
    }
    return udi;
}

bool isDeviceUdi(std::string_view text)
{
    if (text.substr(0, devicesPrefix.size()) != devicesPrefix) {
        return false;
    }
    const std::string_view name = text.substr(devicesPrefix.size());
    return !name.empty() && std::all_of(name.begin(), name.end(), isPathCharacter);
}

} // namespace hal

// SPDX-License-Identifier: MIT
// What the kernel and udev tell of a USB device or interface, as text, and what it means.
#pragma once

#include "hal/properties.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hal {

enum class UsbKind
{
    Device,
    Interface
};

/// The texts of one device: what came with its event, and what stands in sysfs when it is read.
struct UsbTexts
{
    using Map = std::map<std::string, std::string, std::less<>>;

    UsbKind kind = UsbKind::Device;
    std::string syspath;
    Map properties; ///< of the event itself (PRODUCT, DEVNUM …)
    Map attributes; ///< sysfs files; may already be those of a successor in the same port
    std::optional<std::string> driver;
};

/// The sysfs files that usbRecordFrom looks at.
const std::vector<const char *> &attributeNames(UsbKind kind);

/// The event properties that usbRecordFrom looks at.
const std::vector<const char *> &propertyNames();

/// One USB device or interface, understood. Everything is read once, when it appears: at its
/// removal sysfs has nothing left to read.
struct UsbRecord
{
    UsbKind kind = UsbKind::Device;
    std::string syspath;
    int vendorId = 0; ///< devices only, as the following three
    int productId = 0;
    std::string serial; ///< in the form it has in identifiers
    std::optional<int> deviceNumber; ///< differs from plug to plug
    int interfaceNumber = 0; ///< interfaces only
    std::optional<std::string> driver;
    Properties facts; ///< properties that depend on nothing but the device itself
};

/// Vendor and product of a text like "1110/9041/1" (hexadecimal, not padded).
struct ProductIds
{
    int vendorId;
    int productId;
    int revision;
};
std::optional<ProductIds> parseProduct(std::string_view text);

/// Understands @p texts. Empty when the device cannot be identified: it vanished while it was read,
/// and a made-up identifier would be worse than none.
std::optional<UsbRecord> usbRecordFrom(const UsbTexts &texts);

/// The folder above @p syspath; for an interface its device.
std::string parentPath(const std::string &syspath);

/// Whether both describe one and the same plugging of the same thing.
bool sameInstance(const UsbRecord &left, const UsbRecord &right);

} // namespace hal

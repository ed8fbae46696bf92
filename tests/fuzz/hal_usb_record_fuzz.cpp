// SPDX-License-Identifier: MIT
// What sysfs and events say of a device may be anything: ids, serial numbers, names.
#include "hal/text.h"
#include "hal/udi.h"
#include "hal/usb_record.h"

#include <algorithm>
#include <cstdlib>

namespace {

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

std::string_view cutLine(std::string_view *text)
{
    const size_t end = text->find('\n');
    const std::string_view line = text->substr(0, end);
    text->remove_prefix(end == std::string_view::npos ? text->size() : end + 1);
    return line;
}

/// The first line says what it is, the second where; then "NAME=text" of the event and ":name=text"
/// of sysfs.
hal::UsbTexts textsFrom(std::string_view input)
{
    hal::UsbTexts texts;
    texts.kind = cutLine(&input) == "interface" ? hal::UsbKind::Interface : hal::UsbKind::Device;
    texts.syspath = cutLine(&input);
    while (!input.empty()) {
        std::string_view line = cutLine(&input);
        const bool isAttribute = !line.empty() && line.front() == ':';
        line.remove_prefix(isAttribute ? 1 : 0);
        const size_t equals = std::min(line.find('='), line.size());
        (isAttribute ? texts.attributes : texts.properties)[std::string(line.substr(0, equals))]
            = line.substr(std::min(equals + 1, line.size()));
    }
    return texts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    hal::parseProduct(input);
    const std::string clean = hal::validUtf8(input);
    require(hal::validUtf8(clean) == clean && clean.find('\0') == std::string::npos);
    require(hal::isDeviceUdi(hal::deviceUdi(1, 2, hal::serialForUdi(input))));

    const auto record = hal::usbRecordFrom(textsFrom(input));
    if (!record) {
        return 0;
    }
    require(record->vendorId >= 0 && record->vendorId <= 0xffff);
    require(record->productId >= 0 && record->productId <= 0xffff);
    for (const auto &[key, value] : record->facts) {
        if (const auto *const text = std::get_if<std::string>(&value)) {
            require(hal::validUtf8(*text) == *text);
        }
        require(record->kind == hal::UsbKind::Device || key.substr(0, 11) != "usb_device.");
    }
    if (record->kind == hal::UsbKind::Device) {
        require(
            hal::isDeviceUdi(hal::deviceUdi(record->vendorId, record->productId, record->serial)));
    }
    return 0;
}

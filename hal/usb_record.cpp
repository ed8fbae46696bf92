// SPDX-License-Identifier: MIT
#include "hal/usb_record.h"

#include "hal/text.h"
#include "hal/udi.h"

#include <cstdio>

namespace hal {

namespace {

enum class Reading
{
    Hex,
    Decimal,
    Double,
    Text,
    MilliAmpere,
    SelfPoweredBit,
    WakeUpBit
};

struct Row
{
    std::string_view key;
    const char *attribute;
    Reading reading;
};

constexpr Row deviceRows[] = {
    {"usb_device.bus_number", "busnum", Reading::Decimal},
    {"usb_device.linux.device_number", "devnum", Reading::Decimal},
    {"usb_device.num_configurations", "bNumConfigurations", Reading::Decimal},
    {"usb_device.num_interfaces", "bNumInterfaces", Reading::Decimal},
    {"usb_device.configuration_value", "bConfigurationValue", Reading::Decimal},
    {"usb_device.device_class", "bDeviceClass", Reading::Hex},
    {"usb_device.device_subclass", "bDeviceSubClass", Reading::Hex},
    {"usb_device.device_protocol", "bDeviceProtocol", Reading::Hex},
    {"usb_device.device_revision_bcd", "bcdDevice", Reading::Hex},
    {"usb_device.max_power", "bMaxPower", Reading::MilliAmpere},
    {"usb_device.num_ports", "maxchild", Reading::Decimal},
    {"usb_device.speed", "speed", Reading::Double},
    {"usb_device.version", "version", Reading::Double},
    {"usb_device.is_self_powered", "bmAttributes", Reading::SelfPoweredBit},
    {"usb_device.can_wake_up", "bmAttributes", Reading::WakeUpBit},
    {"usb_device.serial", "serial", Reading::Text},
    {"usb_device.product", "product", Reading::Text},
    {"usb_device.vendor", "manufacturer", Reading::Text},
    {"info.product", "product", Reading::Text},
    {"info.vendor", "manufacturer", Reading::Text},
};

constexpr Row interfaceRows[] = {
    {"usb.interface.class", "bInterfaceClass", Reading::Hex},
    {"usb.interface.subclass", "bInterfaceSubClass", Reading::Hex},
    {"usb.interface.protocol", "bInterfaceProtocol", Reading::Hex},
};

template <typename Number> std::optional<Value> asValue(const std::optional<Number> &number)
{
    return number ? std::optional<Value>(*number) : std::nullopt;
}

std::optional<Value> bitOf(std::string_view text, int bit)
{
    const std::optional<int> number = parseHex(trimmed(text));
    return number ? std::optional<Value>((*number & bit) != 0) : std::nullopt;
}

std::optional<Value> read(Reading reading, std::string_view text)
{
    switch (reading) {
    case Reading::Hex:
        return asValue(parseHex(trimmed(text)));
    case Reading::Decimal:
        return asValue(parseDecimal(text));
    case Reading::Double:
        return asValue(parseDouble(text));
    case Reading::Text:
        return text.empty() ? std::nullopt : std::optional<Value>(validUtf8(text));
    case Reading::MilliAmpere:
        return asValue(parseDecimal(text.substr(0, text.find("mA"))));
    case Reading::SelfPoweredBit:
        return bitOf(text, 0x40);
    case Reading::WakeUpBit:
        return bitOf(text, 0x20);
    }
    return std::nullopt;
}

std::string_view textOf(const UsbTexts::Map &texts, std::string_view name)
{
    const auto place = texts.find(name);
    return place == texts.end() ? std::string_view() : std::string_view(place->second);
}

template <size_t size>
void readRows(const Row (&rows)[size], const UsbTexts::Map &attributes, Properties *facts)
{
    for (const Row &row : rows) {
        const auto attribute = attributes.find(std::string_view(row.attribute));
        if (attribute == attributes.end()) {
            continue;
        }
        if (std::optional<Value> value = read(row.reading, attribute->second)) {
            facts->set(row.key, std::move(*value));
        }
    }
}

bool contradict(const std::optional<int> &left, const std::optional<int> &right)
{
    return left && right && *left != *right;
}

/// Vendor, product and number of a device. The event speaks for its own device; sysfs may already
/// speak for the next one in the same port, and then nothing in it is believed.
struct DeviceIdentity
{
    int vendorId;
    int productId;
    std::optional<int> busNumber;
    std::optional<int> deviceNumber;
    bool attributesFit;
};

std::optional<DeviceIdentity> identityOf(const UsbTexts &texts)
{
    const std::optional<ProductIds> told = parseProduct(textOf(texts.properties, "PRODUCT"));
    const std::optional<int> vendor = parseHex(trimmed(textOf(texts.attributes, "idVendor")));
    const std::optional<int> product = parseHex(trimmed(textOf(texts.attributes, "idProduct")));
    const std::optional<int> number = parseDecimal(textOf(texts.attributes, "devnum"));
    const std::optional<int> toldNumber = parseDecimal(textOf(texts.properties, "DEVNUM"));
    const std::optional<int> bus = parseDecimal(textOf(texts.attributes, "busnum"));
    const std::optional<int> toldBus = parseDecimal(textOf(texts.properties, "BUSNUM"));
    if (!told) {
        if (!vendor || !product || contradict(toldNumber, number)) {
            return std::nullopt;
        }
        return DeviceIdentity{
            *vendor, *product, toldBus ? toldBus : bus, toldNumber ? toldNumber : number, true};
    }
    const bool attributesFit = !contradict(told->vendorId, vendor)
        && !contradict(told->productId, product) && !contradict(toldNumber, number);
    return DeviceIdentity{told->vendorId, told->productId, toldBus ? toldBus : bus,
        toldNumber || !attributesFit ? toldNumber : number, attributesFit};
}

void setCommonFacts(const UsbTexts &texts, UsbRecord *record)
{
    record->facts.setText("linux.subsystem", "usb");
    record->facts.set("linux.hotplug_type", 2);
    record->facts.setText("linux.sysfs_path", validUtf8(texts.syspath));
}

std::string deviceFile(const DeviceIdentity &identity)
{
    char path[64];
    std::snprintf(
        path, sizeof path, "/dev/bus/usb/%03d/%03d", *identity.busNumber, *identity.deviceNumber);
    return path;
}

std::optional<UsbRecord> deviceFrom(const UsbTexts &texts)
{
    const std::optional<DeviceIdentity> identity = identityOf(texts);
    if (!identity) {
        return std::nullopt;
    }
    UsbRecord record;
    record.kind = UsbKind::Device;
    record.syspath = texts.syspath;
    record.vendorId = identity->vendorId;
    record.productId = identity->productId;
    record.deviceNumber = identity->deviceNumber;
    record.driver = texts.driver;
    record.serial = serialForUdi(
        identity->attributesFit ? textOf(texts.attributes, "serial") : std::string_view());
    if (identity->attributesFit) {
        readRows(deviceRows, texts.attributes, &record.facts);
    }
    setCommonFacts(texts, &record);
    record.facts.setText("info.subsystem", "usb_device");
    record.facts.set("info.capabilities", std::vector<std::string>{"usb_device"});
    record.facts.set("usb_device.vendor_id", identity->vendorId);
    record.facts.set("usb_device.product_id", identity->productId);
    record.facts.setText("usb_device.linux.sysfs_path", validUtf8(texts.syspath));
    if (identity->busNumber) {
        record.facts.set("usb_device.bus_number", *identity->busNumber);
    }
    if (identity->deviceNumber) {
        record.facts.set("usb_device.linux.device_number", *identity->deviceNumber);
    }
    if (identity->busNumber && identity->deviceNumber) {
        record.facts.setText("linux.device_file", deviceFile(*identity));
    }
    return record;
}

/// The number at the end of a folder name like "1-1:1.0", which the kernel makes from it.
std::optional<int> numberInPath(std::string_view syspath)
{
    const size_t colon = syspath.rfind(':');
    const size_t dot = syspath.rfind('.');
    if (colon == std::string_view::npos || dot == std::string_view::npos || dot < colon) {
        return std::nullopt;
    }
    return parseDecimal(syspath.substr(dot + 1));
}

std::optional<UsbRecord> interfaceFrom(const UsbTexts &texts)
{
    std::optional<int> number = parseHex(trimmed(textOf(texts.attributes, "bInterfaceNumber")));
    if (!number) {
        number = numberInPath(texts.syspath);
    }
    if (!number) {
        return std::nullopt;
    }
    UsbRecord record;
    record.kind = UsbKind::Interface;
    record.syspath = texts.syspath;
    record.interfaceNumber = *number;
    record.driver = texts.driver;
    readRows(interfaceRows, texts.attributes, &record.facts);
    setCommonFacts(texts, &record);
    record.facts.setText("info.subsystem", "usb");
    record.facts.set("info.capabilities", std::vector<std::string>{"usb"});
    record.facts.set("usb.interface.number", *number);
    record.facts.setText("usb.linux.sysfs_path", validUtf8(texts.syspath));
    return record;
}

template <size_t size> std::vector<const char *> attributesOf(const Row (&rows)[size])
{
    std::vector<const char *> names;
    for (const Row &row : rows) {
        names.push_back(row.attribute);
    }
    return names;
}

std::vector<const char *> with(
    std::vector<const char *> names, std::initializer_list<const char *> more)
{
    names.insert(names.end(), more);
    return names;
}

} // namespace

const std::vector<const char *> &attributeNames(UsbKind kind)
{
    static const std::vector<const char *> ofDevice
        = with(attributesOf(deviceRows), {"idVendor", "idProduct"});
    static const std::vector<const char *> ofInterface
        = with(attributesOf(interfaceRows), {"bInterfaceNumber"});
    return kind == UsbKind::Device ? ofDevice : ofInterface;
}

const std::vector<const char *> &propertyNames()
{
    static const std::vector<const char *> names = {"PRODUCT", "BUSNUM", "DEVNUM"};
    return names;
}

std::optional<ProductIds> parseProduct(std::string_view text)
{
    const size_t first = text.find('/');
    const size_t second = first == std::string_view::npos ? first : text.find('/', first + 1);
    if (second == std::string_view::npos) {
        return std::nullopt;
    }
    const std::optional<int> vendor = parseHex(text.substr(0, first));
    const std::optional<int> product = parseHex(text.substr(first + 1, second - first - 1));
    const std::optional<int> revision = parseHex(text.substr(second + 1));
    if (!vendor || !product || !revision) {
        return std::nullopt;
    }
    return ProductIds{*vendor, *product, *revision};
}

std::optional<UsbRecord> usbRecordFrom(const UsbTexts &texts)
{
    return texts.kind == UsbKind::Device ? deviceFrom(texts) : interfaceFrom(texts);
}

std::string parentPath(const std::string &syspath)
{
    const size_t slash = syspath.rfind('/');
    return slash == std::string::npos ? std::string() : syspath.substr(0, slash);
}

bool sameInstance(const UsbRecord &left, const UsbRecord &right)
{
    if (left.kind != right.kind || left.syspath != right.syspath) {
        return false;
    }
    if (left.kind == UsbKind::Interface) {
        return left.interfaceNumber == right.interfaceNumber;
    }
    if (left.vendorId != right.vendorId || left.productId != right.productId) {
        return false;
    }
    if (left.deviceNumber && right.deviceNumber) {
        return *left.deviceNumber == *right.deviceNumber;
    }
    return left.serial == right.serial;
}

} // namespace hal

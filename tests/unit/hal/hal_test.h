// SPDX-License-Identifier: MIT
// What the tests of hal/ share: comparing its texts, making devices.
#pragma once

#include "hal/device_table.h"
#include "hal/udi.h"
#include "hal/usb_record.h"

#include <QString>
#include <QStringList>
#include <QtTest>

inline QString text(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), int(bytes.size()));
}

/// An identifier without the prefix that all have in common.
inline QString shortName(std::string_view udi)
{
    return text(udi.substr(hal::devicesPrefix.size()));
}

/// The texts that sysfs and the event give of a device, as a modem has them.
inline hal::UsbTexts deviceTexts(const std::string &syspath = "/sys/devices/usb1/1-1")
{
    hal::UsbTexts texts;
    texts.kind = hal::UsbKind::Device;
    texts.syspath = syspath;
    texts.properties = {{"PRODUCT", "1110/9041/1"}, {"BUSNUM", "008"}, {"DEVNUM", "002"}};
    texts.attributes = {{"idVendor", "1110"}, {"idProduct", "9041"}, {"busnum", "8"},
        {"devnum", "2"}, {"bcdDevice", "4000"}, {"bDeviceClass", "ff"}, {"bDeviceSubClass", "00"},
        {"bDeviceProtocol", "01"}, {"bNumConfigurations", "1"}, {"bNumInterfaces", " 3"},
        {"bConfigurationValue", "1"}, {"bmAttributes", "a0"}, {"bMaxPower", "500mA"},
        {"maxchild", "0"}, {"speed", "1.5"}, {"version", " 1.10"}};
    return texts;
}

inline hal::UsbTexts interfaceTexts(int number, const std::string &device = "/sys/devices/usb1/1-1")
{
    hal::UsbTexts texts;
    texts.kind = hal::UsbKind::Interface;
    const size_t slash = device.rfind('/');
    texts.syspath = device + device.substr(slash) + ":1." + std::to_string(number);
    texts.attributes = {{"bInterfaceNumber", "0" + std::to_string(number)},
        {"bInterfaceClass", "ff"}, {"bInterfaceSubClass", "00"}, {"bInterfaceProtocol", "fe"}};
    return texts;
}

/// A device as the table takes it.
inline hal::UsbRecord device(const std::string &port, int vendor = 0x1110, int product = 0x9041,
    const std::string &serial = {}, int number = -1)
{
    hal::UsbRecord record;
    record.kind = hal::UsbKind::Device;
    record.syspath = "/sys/devices/usb1/" + port;
    record.vendorId = vendor;
    record.productId = product;
    record.serial = hal::serialForUdi(serial);
    if (number >= 0) {
        record.deviceNumber = number;
    }
    record.facts.set("usb_device.vendor_id", vendor);
    record.facts.set("usb_device.product_id", product);
    return record;
}

inline hal::UsbRecord interface(const std::string &port, int number)
{
    const size_t slash = port.rfind('/');
    const std::string name = slash == std::string::npos ? port : port.substr(slash + 1);
    hal::UsbRecord record;
    record.kind = hal::UsbKind::Interface;
    record.syspath = "/sys/devices/usb1/" + port + "/" + name + ":1." + std::to_string(number);
    record.interfaceNumber = number;
    record.facts.set("usb.interface.number", number);
    return record;
}

/// Announcements as text: "+name" for one that came, "-name" for one that went, "~name" for another
/// driver.
inline QStringList told(const hal::Announcements &news)
{
    QStringList lines;
    for (const hal::Announcement &announcement : news) {
        const bool came = announcement.kind == hal::Announcement::Kind::Added;
        const bool went = announcement.kind == hal::Announcement::Kind::Removed;
        lines << QString(QLatin1Char(came ? '+' : went ? '-' : '~')) + shortName(announcement.udi);
    }
    return lines;
}

inline QStringList listed(const hal::DeviceTable &table)
{
    QStringList names;
    for (const hal::HalObject *object : table.objects()) {
        names << shortName(object->udi);
    }
    return names;
}

inline bool everythingIsPresent(const std::string &)
{
    return true;
}

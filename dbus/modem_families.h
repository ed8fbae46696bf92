// SPDX-License-Identifier: MIT
// What the modem families are called by USB, by the kernel and on the bus, once for every room and
// program.
#pragma once

#include <vector>

constexpr int eagleVendorId = 0x1110;
constexpr int speedtouchVendorId = 0x06B9;
constexpr int unicornVendorId = 0x0483;

constexpr char eagleModule[] = "ueagle-atm";
constexpr char speedtouchModule[] = "speedtch";
constexpr char unicornModule[] = "unicorn_usb_eth";
/// The module of the family that has many vendors.
constexpr char cxacruModule[] = "cxacru";

struct UsbId
{
    int vendor;
    int product;
};

struct ModemFamily
{
    const char *name;
    const char *driver; ///< the kernel module
    std::vector<UsbId> ids;
};

/// All families. The order counts: the first one that has an id is taken.
inline const std::vector<ModemFamily> &modemFamilies()
{
    // clang-format off
    static const std::vector<ModemFamily> table = {
        {"Sagem F@st 800 E4", eagleModule, {
            {eagleVendorId, 0x9041},
            {eagleVendorId, 0x9042},
        }},
        {"Sagem F@st 800", eagleModule, {
            {eagleVendorId, 0x9010},
            {eagleVendorId, 0x900F},
            {eagleVendorId, 0x9021},
            {eagleVendorId, 0x9022},
            {eagleVendorId, 0x9023},
            {eagleVendorId, 0x9024},
            {eagleVendorId, 0x9031},
            {eagleVendorId, 0x9032},
        }},
        {"Thomson Speedtouch 330", speedtouchModule, {
            {speedtouchVendorId, 0x4061},
        }},
        {"ZTE ZXDSL 852", unicornModule, {
            {unicornVendorId, 0x0138},
        }},
        {"CXACRU modem", cxacruModule, {
            {0x0572, 0xCAFE},
            {0x0572, 0xCB00},
            {0x0572, 0xCB01},
            {0x0572, 0xCB02},
            {0x0572, 0xCB06},
            {0x0572, 0xCB07},
            {0x08E3, 0x0100},
            {0x08E3, 0x0102},
            {0x0EB0, 0x3457},
            {0x1803, 0x5510},
            {0x0675, 0x0200},
            {0x0586, 0x330A},
            {0x0586, 0x330B},
            {0x0659, 0x0020},
            {0x0509, 0x0812},
            {0x100D, 0xCB01},
            {0x100D, 0x3342},
        }},
    };
    // clang-format on
    return table;
}

/// The driver that serves a configured vendor's modem; nullptr when @p vendor is 0, for none.
constexpr const char *driverOfVendor(int vendor)
{
    switch (vendor) {
    case 0:
        return nullptr;
    case eagleVendorId:
        return eagleModule;
    case speedtouchVendorId:
        return speedtouchModule;
    case unicornVendorId:
        return unicornModule;
    default:
        // One family of the catalogue has many vendors; they end here, and so do unknown ones.
        return cxacruModule;
    }
}

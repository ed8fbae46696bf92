// SPDX-License-Identifier: MIT
#include "client/modem_table.h"

const std::vector<ModemFamily> &modemFamilies()
{
    static const std::vector<ModemFamily> table = {
        {"Sagem F@st 800 E4", "ueagle-atm", "ueagle-atm/eagleIV.fw", "firmware-misc-nonfree",
            {{0x1110, 0x9041}, {0x1110, 0x9042}}},
        {"Sagem F@st 800", "ueagle-atm", "ueagle-atm/eagleIII.fw", nullptr,
            {{0x1110, 0x9010}, {0x1110, 0x900F}, {0x1110, 0x9021}, {0x1110, 0x9022},
                {0x1110, 0x9023}, {0x1110, 0x9024}, {0x1110, 0x9031}, {0x1110, 0x9032}}},
        {"Thomson Speedtouch 330", "speedtch", "speedtch-2.bin", nullptr, {{0x06B9, 0x4061}}},
        {"ZTE ZXDSL 852", "unicorn_usb_eth", nullptr, nullptr, {{0x0483, 0x0138}}},
        {"CXACRU modem", "cxacru", nullptr, nullptr,
            {{0x0572, 0xCAFE}, {0x0572, 0xCB00}, {0x0572, 0xCB01}, {0x0572, 0xCB02},
                {0x0572, 0xCB06}, {0x0572, 0xCB07}, {0x08E3, 0x0100}, {0x08E3, 0x0102},
                {0x0EB0, 0x3457}, {0x1803, 0x5510}, {0x0675, 0x0200}, {0x0586, 0x330A},
                {0x0586, 0x330B}, {0x0659, 0x0020}, {0x0509, 0x0812}, {0x100D, 0xCB01},
                {0x100D, 0x3342}}},
    };
    return table;
}

const ModemFamily *familyOf(UsbId id)
{
    for (const ModemFamily &family : modemFamilies()) {
        for (const UsbId &known : family.ids) {
            if (known.vendor == id.vendor && known.product == id.product) {
                return &family;
            }
        }
    }
    return nullptr;
}

bool isBeforeFirmware(UsbId id)
{
    if (id.vendor != 0x1110) {
        return false;
    }
    switch (id.product) {
    case 0x9042:
    case 0x9010: // the family's ids come in pairs: without firmware, with firmware
    case 0x9022:
    case 0x9024:
    case 0x9032:
        return true;
    default:
        return false;
    }
}

QString idText(UsbId id)
{
    return QStringLiteral("%1:%2")
        .arg(id.vendor, 4, 16, QLatin1Char('0'))
        .arg(id.product, 4, 16, QLatin1Char('0'));
}

QString driverOfVendor(int vendor)
{
    switch (vendor) {
    case 0:
        return QString();
    case 0x1110:
        return QStringLiteral("ueagle-atm");
    case 0x06B9:
        return QStringLiteral("speedtch");
    case 0x0483:
        return QStringLiteral("unicorn_usb_eth");
    default:
        return QStringLiteral("cxacru");
    }
}

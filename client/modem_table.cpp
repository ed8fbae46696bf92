// SPDX-License-Identifier: MIT
#include "client/modem_table.h"

#include <cstring>

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

ModemFirmware firmwareOf(const ModemFamily &family)
{
    if (std::strcmp(family.name, "Sagem F@st 800 E4") == 0) {
        return {"ueagle-atm/eagleIV.fw", "firmware-misc-nonfree"};
    }
    if (std::strcmp(family.driver, eagleModule) == 0) {
        return {"ueagle-atm/eagleIII.fw", nullptr};
    }
    if (std::strcmp(family.driver, speedtouchModule) == 0) {
        return {"speedtch-2.bin", nullptr};
    }
    return {nullptr, nullptr};
}

bool isBeforeFirmware(UsbId id)
{
    if (id.vendor != eagleVendorId) {
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

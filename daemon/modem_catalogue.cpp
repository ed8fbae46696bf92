// SPDX-License-Identifier: MIT
#include "daemon/modem_catalogue.h"

#include "support/modem_families.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace {

ModemInfo record(
    const char *name, const char *driver, std::initializer_list<std::pair<int, int>> ids)
{
    ModemInfo modem;
    modem.name = QString::fromLatin1(name);
    modem.driver = QString::fromLatin1(driver);
    for (const auto &[vendorId, productId] : ids) {
        modem.ids.insert(vendorId, productId);
    }
    return modem;
}

} // namespace

QList<ModemInfo> modemCatalogue()
{
    // clang-format off
    return {
        record("Sagem F@st 800 E4", eagleModule, {
            {eagleVendorId, 0x9041},
            {eagleVendorId, 0x9042},
        }),
        record("Sagem F@st 800", eagleModule, {
            {eagleVendorId, 0x9010},
            {eagleVendorId, 0x900F},
            {eagleVendorId, 0x9021},
            {eagleVendorId, 0x9022},
            {eagleVendorId, 0x9023},
            {eagleVendorId, 0x9024},
            {eagleVendorId, 0x9031},
            {eagleVendorId, 0x9032},
        }),
        record("Thomson Speedtouch 330", speedtouchModule, {
            {speedtouchVendorId, 0x4061},
        }),
        record("ZTE ZXDSL 852", unicornModule, {
            {unicornVendorId, 0x0138},
        }),
        record("CXACRU modem", cxacruModule, {
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
        }),
    };
    // clang-format on
}

const ModemInfo *findModem(const QList<ModemInfo> &modems, qint32 vendorId, qint32 productId)
{
    const auto hit = std::find_if(modems.cbegin(), modems.cend(),
        [=](const ModemInfo &modem) { return modem.ids.contains(vendorId, productId); });
    return hit == modems.cend() ? nullptr : &*hit;
}

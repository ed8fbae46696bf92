// SPDX-License-Identifier: MIT
#include "daemon/modem_catalogue.h"

#include "dbus/modem_families.h"

#include <algorithm>

QList<ModemInfo> modemCatalogue()
{
    QList<ModemInfo> modems;
    for (const ModemFamily &family : modemFamilies()) {
        ModemInfo modem;
        modem.name = QString::fromLatin1(family.name);
        modem.driver = QString::fromLatin1(family.driver);
        for (const UsbId &id : family.ids) {
            modem.ids.insert(id.vendor, id.product);
        }
        modems.append(modem);
    }
    return modems;
}

const ModemInfo *findModem(const QList<ModemInfo> &modems, qint32 vendorId, qint32 productId)
{
    const auto hit = std::find_if(modems.cbegin(), modems.cend(),
        [=](const ModemInfo &modem) { return modem.ids.contains(vendorId, productId); });
    return hit == modems.cend() ? nullptr : &*hit;
}

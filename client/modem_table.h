// SPDX-License-Identifier: MIT
// The USB modems that the daemon serves, by their ids, with driver and firmware.
#pragma once

#include <QList>
#include <QString>
#include <vector>

struct UsbId
{
    int vendor;
    int product;
};

struct ModemFamily
{
    const char *name;
    const char *driver;
    const char *firmware; ///< a file that must be there below the firmware folder; nullptr for none
    const char *firmwarePackage; ///< the distribution's package that has it; nullptr for none
    std::vector<UsbId> ids;
};

const std::vector<ModemFamily> &modemFamilies();

/// The family of a device, nullptr when the daemon does not know it.
const ModemFamily *familyOf(UsbId id);

/// Whether this is what a modem calls itself before it has got its firmware.
bool isBeforeFirmware(UsbId id);

/// "1110:9041"
QString idText(UsbId id);

/// The driver that the daemon reloads for a configured vendor; empty when none is configured.
QString driverOfVendor(int vendor);

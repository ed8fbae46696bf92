// SPDX-License-Identifier: MIT
// What the client knows of the modems beyond their names and ids: their firmware.
#pragma once

#include "dbus/modem_families.h"

#include <QString>

/// What a family needs below the firmware folder.
struct ModemFirmware
{
    const char *file; ///< one that must be there; nullptr for none
    const char *package; ///< the distribution's package that has it; nullptr for none
};

/// The family of a device, nullptr when the daemon does not know it.
const ModemFamily *familyOf(UsbId id);

ModemFirmware firmwareOf(const ModemFamily &family);

/// Whether this is what a modem calls itself before it has got its firmware.
bool isBeforeFirmware(UsbId id);

/// "1110:9041"
QString idText(UsbId id);

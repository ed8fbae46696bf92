// SPDX-License-Identifier: MIT
// What the assistant says about the modem.
#pragma once

#include "client/doctor_facts.h"
#include "desktop/model/connection_model.h"

namespace desktop {

enum class ModemStanding
{
    Looking, ///< not known yet
    NoModem,
    NoDriver,
    DriverIsBuilt, ///< now
    BeforeFirmware,
    Settling, ///< just plugged in; the daemon looks at it for some seconds
    Announced, ///< it can be taken into use
    PlugAnew, ///< it was there before the daemon began
    NotSeen, ///< in use, but the daemon does not find it
    DaemonAway,
    DaemonSilent,
    Ready,
};

struct ModemFacts
{
    /// Of gatherDriverFacts(), with what the daemon has in use as what is configured.
    Facts system;
    DaemonPresence daemon = DaemonPresence::Unknown;
    QString announced; ///< the name of a modem that can be taken into use
    std::optional<bool> isSeen; ///< whether the daemon finds the modem in use
    std::optional<qint64> pluggedForMs; ///< since it was seen to come; nothing when it was there
};

struct ModemAdvice
{
    ModemStanding standing = ModemStanding::Looking;
    QString modem; ///< its name; empty when none is there
    QString text; ///< sentences in the user's language
    Remedy remedy; ///< what helps beyond the text
};

ModemAdvice modemAdviceOf(const ModemFacts &facts);

/// The modem that counts among those that are plugged in: the one in use, else one that has got its
/// firmware, else the first; nothing without any.
std::optional<UsbModem> modemThatCounts(const QList<UsbModem> &modems, UsbId inUse);

} // namespace desktop

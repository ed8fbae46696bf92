// SPDX-License-Identifier: MIT
// Why a link was lost or an attempt failed.
#pragma once

#include <QString>

namespace keeper {

enum class Cause
{
    None,
    Unknown,
    // why a link is gone
    User,
    Sleep,
    HungUp,
    Silent,
    BridgeGone,
    LineLost,
    Unplugged,
    ModemRestart,
    // why an attempt failed
    NoConcentrator,
    NoNegotiation,
    PeerTerminated,
    AccountRefused,
    LineNotSynchronised,
    BridgeMissing,
    DeviceMissing,
    // the same, and nothing but other settings helps
    PeerFileMissing,
    BadOption,
    PasswordMissing,
    PeerMustAuthenticate,
    CircuitMissing,
    // why there is no attempt
    ForeignLink,
    RequestDropped,
    RequestRefused,
};

/// What a failed attempt means for the next one.
enum class Failure
{
    Unanswered, ///< may be over at any moment: soon again
    Refused, ///< the provider does not want the account: seldom again
    Settings, ///< cannot succeed before somebody changes something
};

/// The cause as the word that the bus and the history use; empty for None. Clients translate it.
QString codeOf(Cause cause);

/// What a failed attempt with this cause means. A hang-up by the far end counts as unanswered here:
/// only several in a row tell more.
Failure failureOf(Cause cause);

/// Whether somebody wanted the link to go, so that nobody has to be told.
bool isIntended(Cause cause);

/// Whether the far end or the line ended the link, of itself.
bool isProvidersDoing(Cause cause);

} // namespace keeper

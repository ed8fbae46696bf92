// SPDX-License-Identifier: MIT
// How long to wait before the next attempt.
#pragma once

#include <QtGlobal>

namespace keeper {

/// All in milliseconds.
struct Pauses
{
    qint64 unanswered = 5'000; ///< after an attempt that nobody answered
    qint64 unansweredMost = 60'000; ///< up to which it doubles once an outage is ten minutes old
    qint64 afterADay = 300'000; ///< when an outage has lasted that long
    qint64 hungUp = 5'000; ///< after a link that was hung up within a minute; doubles
    qint64 hungUpMost = 900'000;
    qint64 refusedOnce = 60'000; ///< after the first refusal of an account that has worked lately
    qint64 refusedTwice = 900'000;
    qint64 refusedThrice = 3'600'000;
    qint64 refusedMost = 21'600'000;
};

constexpr qint64 fastOutageMs = 600'000; ///< so long attempts come in quick succession
constexpr qint64 slowOutageMs = 86'400'000; ///< after that they are rare
constexpr qint64 shortLinkMs = 60'000; ///< a link that went within it had not really come up
constexpr qint64 steadyLinkMs = 600'000; ///< one that lasted so long makes all forgotten

/// The pause after an unanswered attempt. @p outageMs: how long the link has been away.
/// @p slowFailures: how many attempts have failed since the outage is ten minutes old.
qint64 pauseUnanswered(const Pauses &pauses, qint64 outageMs, int slowFailures);

/// The pause after the @p count-th short link in a row, from 1.
qint64 pauseHungUp(const Pauses &pauses, int count);

/// The pause after the @p count-th refusal in a row, from 1. @p hasWorkedLately: a link came up
/// with the account within the last week, so that the refusal is perhaps the provider's mistake.
qint64 pauseRefused(const Pauses &pauses, int count, bool hasWorkedLately);

/// @p pause up to a tenth shorter or longer, so that after a large failure not everybody comes back
/// at the same moment. @p dice: 0 to 1.
qint64 spread(qint64 pause, double dice);

} // namespace keeper

// SPDX-License-Identifier: MIT
// How long the decision waits for things other than the next attempt, in milliseconds.
#pragma once

#include <QtGlobal>

namespace keeper {

// The daemon tells of an unplugged modem, and of a modem restart, after the disconnect that they
// cause: 0.14 s later, and up to half a second more when a killall hangs.
constexpr qint64 excuseMs = 2'000;

// A pppd that gives up takes its address away and lives for 3 to 6 s more; one that negotiates anew
// has an address again after 0.1 s.
constexpr qint64 bareLinkMs = 10'000;

// An answer of a daemon that waits for a hanging neighbour takes 25 s.
constexpr qint64 answerMs = 60'000;

// Between the answer to a request and the signal that the attempt has begun lies one queued event.
constexpr qint64 beginMs = 5'000;

// Line 35 s, bridge and interface 40 s at worst, pppd 90 s.
constexpr qint64 attemptMs = 240'000;

// A pppd that goes on after the daemon's patience, before its next try is ours.
constexpr qint64 lingeringMs = 60'000;

// Between the end of an attempt that succeeded and the look at its interface.
constexpr qint64 arrivalMs = 5'000;

constexpr qint64 endingMs = 10'000;

// Reloading a driver: two programs with a time-out of 30 s each, doubled.
constexpr qint64 restartMs = 120'000;
constexpr qint64 restartBeginMs = 5'000;
constexpr qint64 restartEveryMs = 3'600'000;
constexpr int syncFailuresMost = 3;

// logind waits 5 s for all who hold up sleep.
constexpr qint64 sleepHeldMs = 900;
// Sleep that was announced and never ended: its end has been missed.
constexpr qint64 asleepMs = 300'000;

// So long a link of somebody else, which the daemon takes for ours, holds up an attempt.
constexpr qint64 foreignMs = 10'000;

// A machine that worked with an account so lately has the right one.
constexpr qint64 latelySeconds = qint64(7) * 24 * 3600;

// Two hang-ups before an address was there are a refusal that was told in no other way.
constexpr int peerTerminationsMost = 2;

} // namespace keeper

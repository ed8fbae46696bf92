// SPDX-License-Identifier: MIT
#include "keeper/decision/pauses.h"

#include <algorithm>

namespace keeper {

namespace {

/// @p pause doubled @p times, @p most at most.
qint64 doubled(qint64 pause, int times, qint64 most)
{
    for (int i = 0; i < times && pause < most; ++i) {
        pause *= 2;
        if (pause == 0) {
            break;
        }
    }
    return std::min(pause, most);
}

} // namespace

qint64 pauseUnanswered(const Pauses &pauses, qint64 outageMs, int slowFailures)
{
    if (outageMs >= slowOutageMs) {
        return pauses.afterADay;
    }
    if (outageMs < fastOutageMs) {
        return pauses.unanswered;
    }
    return doubled(pauses.unanswered, slowFailures, pauses.unansweredMost);
}

qint64 pauseHungUp(const Pauses &pauses, int count)
{
    return doubled(pauses.hungUp, count - 1, pauses.hungUpMost);
}

qint64 pauseRefused(const Pauses &pauses, int count, bool hasWorkedLately)
{
    switch (hasWorkedLately ? count : count + 1) {
    case 1:
        return pauses.refusedOnce;
    case 2:
        return pauses.refusedTwice;
    case 3:
        return pauses.refusedThrice;
    default: // any later one
        return pauses.refusedMost;
    }
}

qint64 spread(qint64 pause, double dice)
{
    return qint64(double(pause) * (0.9 + 0.2 * dice));
}

} // namespace keeper

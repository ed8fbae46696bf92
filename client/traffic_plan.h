// SPDX-License-Identifier: MIT
// How much of a billing month's limit is used.
#pragma once

#include "client/keeper_state.h"

struct PlanUse
{
    quint64 used = 0; ///< bytes
    quint64 left = 0; ///< 0 when the limit is reached
    int daysLeft = 1; ///< today included
    quint64 leftPerDay = 0;
    bool isReached = false;
};

/// How the billing month @p month stands on @p today; nothing without a limit, and when the day is
/// none of the month.
std::optional<PlanUse> planUse(
    const KeeperPlan &plan, const KeeperTraffic &month, const QDate &today);

/// The same as a sentence in the user's language; without a limit only what was used.
QString planUseText(const KeeperPlan &plan, const KeeperTraffic &month, const QDate &today);

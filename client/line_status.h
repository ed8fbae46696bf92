// SPDX-License-Identifier: MIT
// The ADSL line by everything that tells of it: each source may be closed to a user, or lack a
// part.
#pragma once

#include "client/keeper_state.h"
#include "client/line_log.h"

/// Who tells of the line; what is missing did not, or not to this user.
struct LineSources
{
    std::optional<LineStatus> log; ///< the kernel log
    std::optional<bool> carrier; ///< of the ATM device, now
    std::optional<LineSample> sample; ///< the keeper's newest, of the last freshLineSeconds
};

/// A sample that is older tells nothing of the line as it is. The keeper takes one a minute.
constexpr qint64 freshLineSeconds = 180;

/// The kernel log goes before the carrier, and the carrier before the sample. The rates are the
/// sample's where the log has none.
LineStatus lineStatusOf(const LineSources &sources);

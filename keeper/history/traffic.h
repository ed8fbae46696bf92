// SPDX-License-Identifier: MIT
// What has gone through an interface, by counters that begin anew whenever they like.
#pragma once

#include <QtGlobal>
#include <optional>

namespace keeper {

struct Traffic
{
    quint64 received = 0; ///< bytes
    quint64 sent = 0;
};

/// What is new in counters that stand at @p now. @p last: how the same interface of the same boot
/// stood before; without it, and for a counter that has gone back, all of it is new. A wrap is
/// never guessed: the kernel's counters have 64 bits.
Traffic newTraffic(const std::optional<Traffic> &last, const Traffic &now);

} // namespace keeper

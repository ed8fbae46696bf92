// SPDX-License-Identifier: MIT
// Beginning anew as a member of the group norvix, without a new login, where the person was.
#pragma once

#include "desktop/assistant/draft.h"

#include <functional>

class QObject;

namespace desktop {

/// Replaces this program by itself, started through sg, which goes on where @p handOver says. When
/// that cannot be, calls @p failed instead, later and unless @p receiver has gone.
void beginAnewInGroup(
    const HandOver &handOver, QObject *receiver, const std::function<void()> &failed);

/// What the program before this one has handed over; nothing in an ordinary beginning. Only the
/// first call answers.
std::optional<HandOver> handedOver();

} // namespace desktop

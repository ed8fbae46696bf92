// SPDX-License-Identifier: MIT
// The state as clients see it.
#pragma once

#include "keeper/decision/state.h"

namespace keeper {

/// What the keeper is about now, as the word of the property State.
QString phaseOf(const State &state);

/// When the next attempt comes by itself, in ms since boot; nothing while none does, or while it
/// waits for nothing but its turn.
std::optional<qint64> plannedAttempt(const State &state, qint64 now);

} // namespace keeper

// SPDX-License-Identifier: MIT
// The state as clients see it.
#pragma once

#include "keeper/decision/state.h"

namespace keeper {

/// What the keeper is about now, as the word of the property State.
QString phaseOf(const State &state);

} // namespace keeper

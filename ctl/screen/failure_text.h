// SPDX-License-Identifier: MIT
// A failure of the library as this program tells it: its exit status and a sentence with the
// command that helps.
#pragma once

#include "client/failure.h"
#include "ctl/screen/exit_code.h"

/// The class of a failure; Ok for none.
ExitCode exitCodeOf(const Failure &failure);

/// The failure in the user's language.
QString failureText(const Failure &failure);

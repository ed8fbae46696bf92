// SPDX-License-Identifier: MIT
// Ending the process on a signal.
#pragma once

/// Makes interrupt, hang-up and terminate print one line and end the process with status 255, at
/// whatever moment and on whatever thread they come. Children, pppd among them, live on. Call it on
/// the main thread, after the last fork.
void endOnSignals();

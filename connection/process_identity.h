// SPDX-License-Identifier: MIT
// Telling a process from another one that has got its id since.
#pragma once

#include <QByteArray>
#include <optional>
#include <sys/types.h>

/// A process: its id, and when it started, which no other process with that id has.
struct ProcessIdentity
{
    pid_t pid;
    quint64 startTicks; ///< clock ticks after the system's start; no clock can be set back under it
};

/// The start in @p stat, the content of a process's stat file below /proc. Empty when it has none.
std::optional<quint64> startTicksIn(const QByteArray &stat);

/// The process that has the id @p pid now; empty when there is none. Any thread.
std::optional<ProcessIdentity> identityOf(pid_t pid);

/// Whether the id @p pid is @p known's, but belongs to another process now. Any thread.
bool isTakenOver(pid_t pid, const std::optional<ProcessIdentity> &known);

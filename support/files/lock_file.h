// SPDX-License-Identifier: MIT
// The single-instance lock.
#pragma once

#include <QString>

/// Takes the single-instance lock on @p path for the rest of the process's life. Call it once,
/// after the last fork, and never open that file again: closing any descriptor of it would drop the
/// lock.
///
/// Returns a negative value when another process holds the lock, and only then. Otherwise the lock
/// is this process's, and the result is the descriptor that holds it. A folder that everybody may
/// write to is expected: what others left under that name (a file, link, folder, pipe) is moved out
/// of the way, neither opened nor followed. Where no lock can be made at all (a read-only file
/// system, one without locks), a warning is printed and 0 returned: whether another instance runs
/// must then be found out in another way.
int lockFile(const QString &path);

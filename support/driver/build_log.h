// SPDX-License-Identifier: MIT
// The file that tells a user why a driver build failed.
#pragma once

#include "support/files/file_descriptor.h"

#include <QString>

/// Tools write to it directly, so that it is complete even when the daemon ends before they do, and
/// nobody waits for a reader. A log that cannot be opened is the null device.
class BuildLog
{
public:
    /// Until begin() nothing is written.
    BuildLog() = default;

    /// Opens the log at @p path and empties it.
    void begin(const QString &path);

    /// Appends one line of our own, marked with "## ".
    void line(const QString &text);

    /// To be handed to a tool as its output.
    int descriptor() const { return m_file.get(); }

private:
    FileDescriptor m_file;
};

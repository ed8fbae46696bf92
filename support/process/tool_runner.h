// SPDX-License-Identifier: MIT
// Runs the tools of a driver build, one after the other.
#pragma once

#include "support/files/file_descriptor.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// One run of a tool.
struct ToolCall
{
    QString program; ///< a bare name, looked for along PATH, then in the system's folders
    QStringList arguments;
    QStringList environment; ///< "NAME=value", complete
    QString folder; ///< working folder; empty: the root folder
    int timeoutMs = 60000;
    int input = -1; ///< descriptor for standard input; -1: the null device
    int maxOutput = 0; ///< above 0: standard output is kept, not logged, up to so many bytes
};

/// How it ended.
struct ToolResult
{
    enum End
    {
        Exited,
        NotFound, ///< no such program, or it could not be started
        Crashed,
        TimedOut, ///< it and its children were killed, or left behind where nothing kills them
    };

    End end = NotFound;
    int exitCode = -1;
    QByteArray output;

    bool ok() const { return end == Exited && exitCode == 0; }
};

/// Runs @p call and waits for its end. Standard error, and standard output unless kept, go to the
/// descriptor @p log as they come. The tool heads a process group of its own, has umask 022 and
/// inherits nothing else but @p lock (when not -1), as descriptor 3: a lock on that file stays held
/// until the last of the tool's descendants has ended. Any thread.
ToolResult runTool(const ToolCall &call, int log, int lock);

/// The path that runTool() would run for a bare @p program, empty when there is none.
QString findTool(const QString &program, const QStringList &environment);

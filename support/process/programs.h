// SPDX-License-Identifier: MIT
// Finding and running the external programs.
#pragma once

#include "support/files/file_descriptor.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

/// The path of the executable file that the bare @p name stands for along PATH of @p environment
/// ("NAME=value" entries). @p name itself when it holds a slash or when there is no PATH. Where no
/// folder of PATH has it, a path at which it is not: starting that fails the ordinary way.
QString findProgram(const QString &name, const QStringList &environment);

/// How a program run by runProgram() ended.
struct ProgramResult
{
    std::optional<int> exitCode; ///< empty: not started, crashed, or ended at its limit
    qint64 processId = 0; ///< 0 when it could not be started
    QByteArray output; ///< the beginning of its standard output, when that was asked for
    /// Open while it still runs, in its grace or because not even SIGKILL ended it: poll() finds it
    /// readable once it is gone.
    FileDescriptor leftBehind;
};

/// Runs @p program and waits at most @p timeoutMs for it to end. Its standard streams are the null
/// device, but @p maxOutput > 0 keeps that many bytes of standard output. An empty @p environment
/// inherits the daemon's. One that exceeds its time is killed. One that SIGKILL does not end within
/// a quarter of a second, because it waits in the kernel, is left behind, is reaped when it ends,
/// and never keeps another run from starting. Call it from any thread.
ProgramResult runProgram(const QString &program, const QStringList &arguments, int timeoutMs,
    const QStringList &environment = QStringList(), int maxOutput = 0);

/// The same for a program whose work must be done, late or not: at @p timeoutMs it is left behind
/// and goes on; @p graceMs later it is killed. Main thread.
ProgramResult runProgramWithGrace(
    const QString &program, const QStringList &arguments, int timeoutMs, int graceMs);

/// The same as runProgram() for a program that may signal its own process group: it gets one that
/// is not ours.
ProgramResult runProgramInOwnGroup(
    const QString &program, const QStringList &arguments, int timeoutMs);

// SPDX-License-Identifier: MIT
// A child process whose output arrives line by line.
#pragma once

#include "support/process/line_cutter.h"

#include <QAtomicInt>
#include <QProcess>

/// Child starts under way in any thread. A process that ends while one is under way would leave the
/// half-made child behind as a copy of itself, still holding the bus name; see the signal handler.
extern QAtomicInt childStarts;

/// Runs a program and emits each line of its standard output and standard error as soon as it is
/// complete. Lives in one thread at a time; lineAvailable() is emitted there.
class MyProcess : public QProcess
{
    Q_OBJECT

public:
    explicit MyProcess(QObject *parent);

    /// Starts @p program with @p arguments. A bare name is looked up along PATH of the environment
    /// set with setEnvironment(). Refused with a warning while a previous child still runs.
    void start(const QString &program, const QStringList &arguments);

signals:
    /// One complete output line without its line feed; also the last one, when the child ended
    /// without a line feed. A line over LineCutter::maxLineLength is shortened to that.
    void lineAvailable(QByteArray line);

protected:
    /// In the child, before the program: its files, such as pppd's pid file, get the usual mode
    /// whatever the daemon's own umask is.
    void setupChildProcess() override;

private:
    void readLines();
    void finishLines();

    LineCutter m_lines;
};

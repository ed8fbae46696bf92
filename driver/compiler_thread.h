// SPDX-License-Identifier: MIT
// The thread that builds the modem's driver.
#pragma once

#include "support/driver/compiler.h"

#include <QList>
#include <QString>
#include <QThread>
#include <functional>
#include <optional>

class Norvix_Daemon;

/// The drivers that can be built.
QList<Compiler::ModemDriver> modemDrivers();

/// The record of @p drivers that builds the module @p driverName (without ".ko", case matters).
std::optional<Compiler::ModemDriver> driverRecord(
    const QList<Compiler::ModemDriver> &drivers, const QString &driverName);

/// Takes @p compiler through its steps; after a success calls @p testDriver. Gives the thread's
/// result, a CompilerThread::Result.
int buildDriver(Compiler &compiler, const std::function<void()> &testDriver);

/// Tests whether the modem's driver loads, and builds it from its tarball when it does not.
class CompilerThread : public QThread
{
    Q_OBJECT

public:
    /// @p daemon is not kept.
    CompilerThread(Norvix_Daemon *daemon, const QString &driverName, QObject *parent);

    /// The kernel module to test and build, without ".ko". Main thread, while the thread is idle.
    void setDriverName(const QString &name) { m_driverName = name; }

    /// What came of a build.
    enum Result
    {
        Built = 0,
        CompilationFailed = 1,
        InstallationFailed = 2,
    };

    /// The last build's outcome, a Result. Main thread, while the thread is idle.
    int result() const { return m_result; }

    /// Loads the module; waits for modprobe, which is ended at moduleTimeoutMs. Its exit code, -2
    /// when it cannot be started, -1 when it crashes, is ended or no module is set.
    int testDriver();

protected:
    /// One build. A module without a record leaves the result as it was.
    void run() override;

private:
    QList<Compiler::ModemDriver> m_drivers;
    QString m_driverName;
    int m_result = Built;
};

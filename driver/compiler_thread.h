// SPDX-License-Identifier: MIT
// The thread that builds the modem's driver.
#pragma once

#include <QString>
#include <QThread>

class Norvix_Daemon;

/// Tests whether the modem's driver loads, and builds it from its tarball when it does not.
class CompilerThread : public QThread
{
    Q_OBJECT

public:
    CompilerThread(Norvix_Daemon *daemon, const QString &driverName, QObject *parent);

    /// The kernel module to test and build, without ".ko". Main thread, while the thread is idle.
    void setDriverName(const QString &name) { m_driverName = name; }

    /// The last build's outcome: 0 success, 1 compilation failed, 2 installation failed.
    int result() const { return m_result; }

    /// Loads the module; waits for modprobe without a time-out. Its exit code, -2 when it cannot be
    /// started, -1 when it crashes or no module is set.
    int testDriver();

protected:
    void run() override;

private:
    QString m_driverName;
    int m_result = 0;
};

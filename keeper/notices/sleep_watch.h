// SPDX-License-Identifier: MIT
// Sleep, as the system's log-in service announces it.
#pragma once

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>

namespace keeper {

/// Main thread only. Where the service is missing or refuses, sleep is not held up.
class SleepWatch : public QObject
{
    Q_OBJECT

public:
    explicit SleepWatch(const QDBusConnection &bus, QObject *parent = nullptr);

    void start();

    /// Asks that the next sleep wait for letSleep(). Asked twice is asked once.
    void hold();
    void letSleep() { m_inhibitor = QDBusUnixFileDescriptor(); }

signals:
    /// About to sleep (true) or awake again (false). Some services tell both twice.
    void sleeping(bool isComing);

private:
    QDBusConnection m_bus;
    QDBusUnixFileDescriptor m_inhibitor; ///< sleep waits for as long as it is open
    bool m_isAsking = false;
};

} // namespace keeper

// SPDX-License-Identifier: MIT
// Measures the emission of a relayed signal; the same steps for the daemon's object and the
// floor's.
#pragma once

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <ctime>

inline long long processTimeNs()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return time.tv_sec * 1000000000LL + time.tv_nsec;
}

/// Has @p object, which must be registered on the system bus, emit @p count statistics signals and
/// returns the processor time per signal in nanoseconds, all threads together.
template <typename Object> long long emissionTimeNs(Object &object, int count)
{
    constexpr int burst = 100; // what the bus takes without making the sender wait
    QDBusConnectionInterface *bus = QDBusConnection::systemBus().interface();
    bus->serviceUid(QStringLiteral("org.freedesktop.DBus"));

    const long long before = processTimeNs();
    for (int sent = 0; sent < count; sent += burst) {
        for (int i = 0; i < burst; ++i) {
            emit object.transmissionSpeed(uint(sent), uint(i));
        }
        // The answer comes after everything sent before has been taken.
        bus->serviceUid(QStringLiteral("org.freedesktop.DBus"));
    }
    return (processTimeNs() - before) / count;
}

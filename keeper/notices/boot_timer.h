// SPDX-License-Identifier: MIT
// Clocks that know of sleep, and of somebody who sets them.
#pragma once

#include "keeper/decision/state.h"
#include "support/files/file_descriptor.h"

#include <QObject>
#include <QSocketNotifier>
#include <memory>
#include <optional>

namespace keeper {

/// The time now, with fresh dice.
Moment momentNow();

/// Fires at a time since boot, time asleep included; Qt's own timers stand still meanwhile.
class BootTimer : public QObject
{
    Q_OBJECT

public:
    explicit BootTimer(QObject *parent = nullptr);

    /// Fires once when the machine has been up for @p ms; with nothing, not at all.
    void setDeadline(std::optional<qint64> ms);

signals:
    void timeout();

private:
    FileDescriptor m_timer;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::optional<qint64> m_deadline;
};

/// Tells when somebody has set the clock.
class ClockWatch : public QObject
{
    Q_OBJECT

public:
    explicit ClockWatch(QObject *parent = nullptr);

signals:
    void clockSet();

private:
    void arm();

    FileDescriptor m_timer;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace keeper

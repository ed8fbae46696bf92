// SPDX-License-Identifier: MIT
#include "keeper/notices/boot_timer.h"

#include <QRandomGenerator>
#include <ctime>
#include <limits>
#include <sys/timerfd.h>
#include <unistd.h>

namespace keeper {

namespace {

timespec clockNow(clockid_t clock)
{
    timespec now = {};
    clock_gettime(clock, &now);
    return now;
}

std::unique_ptr<QSocketNotifier> notifierOf(const FileDescriptor &timer)
{
    return timer.isOpen() ? std::make_unique<QSocketNotifier>(timer.get(), QSocketNotifier::Read)
                          : nullptr;
}

/// Takes the expirations, so that the descriptor is quiet again; false when the clock was set.
bool drain(const FileDescriptor &timer)
{
    quint64 count = 0;
    return read(timer.get(), &count, sizeof count) == sizeof count;
}

} // namespace

Moment momentNow()
{
    const timespec boot = clockNow(CLOCK_BOOTTIME);
    return {boot.tv_sec * 1000 + boot.tv_nsec / 1'000'000, clockNow(CLOCK_REALTIME).tv_sec,
        QRandomGenerator::global()->generateDouble()};
}

BootTimer::BootTimer(QObject *parent)
    : QObject(parent)
    , m_timer(timerfd_create(CLOCK_BOOTTIME, TFD_CLOEXEC | TFD_NONBLOCK))
    , m_notifier(notifierOf(m_timer))
{
    if (m_notifier) {
        connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
            if (drain(m_timer)) {
                m_deadline.reset();
                emit timeout();
            }
        });
    }
}

void BootTimer::setDeadline(std::optional<qint64> ms)
{
    if (ms == m_deadline) {
        return;
    }
    m_deadline = ms;
    itimerspec when = {};
    if (ms) {
        when.it_value.tv_sec = *ms / 1000;
        // A part of a millisecond later than asked for, never before it. All zero would mean never.
        when.it_value.tv_nsec = *ms % 1000 * 1'000'000 + 1;
    }
    timerfd_settime(m_timer.get(), TFD_TIMER_ABSTIME, &when, nullptr);
}

ClockWatch::ClockWatch(QObject *parent)
    : QObject(parent)
    , m_timer(timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK))
    , m_notifier(notifierOf(m_timer))
{
    if (m_notifier) {
        connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
            drain(m_timer);
            arm();
            emit clockSet();
        });
        arm();
    }
}

/// A timer that never fires by itself and is cancelled when the clock is set.
void ClockWatch::arm()
{
    itimerspec never = {};
    never.it_value.tv_sec = std::numeric_limits<qint32>::max();
    never.it_value.tv_sec += clockNow(CLOCK_REALTIME).tv_sec;
    timerfd_settime(m_timer.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &never, nullptr);
}

} // namespace keeper

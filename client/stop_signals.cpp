// SPDX-License-Identifier: MIT
#include "client/stop_signals.h"

#include <QSocketNotifier>
#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

sigset_t stopSet()
{
    sigset_t stops;
    sigemptyset(&stops);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&stops, number);
    }
    return stops;
}

} // namespace

void StopSignals::hold()
{
    const sigset_t stops = stopSet();
    sigprocmask(SIG_BLOCK, &stops, nullptr);
}

void StopSignals::release()
{
    const sigset_t stops = stopSet();
    sigprocmask(SIG_UNBLOCK, &stops, nullptr);
}

StopSignals::StopSignals(QObject *parent)
    : QObject(parent)
{
    hold();
    const sigset_t stops = stopSet();
    m_fd = signalfd(-1, &stops, SFD_CLOEXEC | SFD_NONBLOCK);
    auto *notifier = new QSocketNotifier(m_fd, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info = {};
        if (read(m_fd, &info, sizeof info) > 0) {
            emit stopped();
        }
    });
}

StopSignals::~StopSignals()
{
    close(m_fd);
}

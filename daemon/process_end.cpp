// SPDX-License-Identifier: MIT
#include "daemon/process_end.h"

#include "support/process/my_process.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <pthread.h>
#include <unistd.h>

namespace {

constexpr int endedBySignal = 255; // the exit status, which the unit takes for a good one

volatile sig_atomic_t leaving = 0;
pthread_t mainThread;

/// Ends the process before any static object is destroyed: exit() destroys the calling thread's
/// thread-local objects first. Static objects include the bus connection, whose destructor waits
/// for the bus thread, which may be waiting for a lock that the interrupted main thread holds.
struct LeaveGuard
{
    int touched = 0;

    ~LeaveGuard()
    {
        if (leaving != 0) {
            _exit(endedBySignal);
        }
    }
};

thread_local LeaveGuard leaveGuard;

/// Lets a child that a worker is just starting get as far as exec, at most a tenth of a second.
/// Without that the half-made child would stay behind as a copy of the daemon, holding its bus
/// name.
void waitForChildStarts()
{
    const timespec pause = {0, 2000000};
    for (int i = 0; i < 50 && childStarts.loadRelaxed() != 0; ++i) {
        nanosleep(&pause, nullptr);
    }
}

/// Past the stream: the signal may have come while the main thread was writing to it, and what it
/// holds would be printed twice. Whole lines are not held back in it.
void printLine(int sig)
{
    std::array<char, 64> line = {};
    const int size = snprintf(line.data(), line.size(), "Norvix Daemon: Signal %d handled\n", sig);
    if (write(STDOUT_FILENO, line.data(), size_t(size)) < size) {
        return; // nobody reads it any more
    }
}

void onSignal(int sig)
{
    if (pthread_equal(pthread_self(), mainThread) == 0) {
        pthread_kill(mainThread, sig);
        return;
    }
    if (leaving != 0) {
        return; // a second signal must not enter exit() again
    }
    leaving = 1;
    waitForChildStarts();
    printLine(sig);
    exit(-1);
}

} // namespace

void endOnSignals()
{
    mainThread = pthread_self();
    leaveGuard.touched = 1; // thread-local objects are made on first use

    // No masks: children would inherit them.
    signal(SIGINT, onSignal);
    signal(SIGHUP, onSignal);
    signal(SIGTERM, onSignal);
}

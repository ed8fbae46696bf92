// SPDX-License-Identifier: MIT
// Cuts a piece of work off at each of its system calls, as a kill or a power failure would.
#pragma once

#include <csignal>
#include <functional>
#include <sched.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

/// Runs @p work in a child process, killed when it enters its system call number @p call (counted
/// from 1). False once @p call is beyond the last: then the work was done completely.
inline bool cutOffAt(int call, const std::function<void()> &work)
{
    // Only one of the two ever runs: on one processor they hand over without waking another.
    cpu_set_t here;
    CPU_ZERO(&here);
    CPU_SET(sched_getcpu(), &here);
    sched_setaffinity(0, sizeof here, &here);
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        work();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    // Each call stops the child twice: when it enters and when it leaves.
    for (int stops = 0; WIFSTOPPED(status); ++stops) {
        if (stops == 2 * call + 1) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return true;
        }
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        waitpid(child, &status, 0);
    }
    return false;
}

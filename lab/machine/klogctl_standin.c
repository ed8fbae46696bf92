/* SPDX-License-Identifier: MIT */
/* Preloaded into the daemon under test: a kernel log a test writes, and a fork that can fail. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/klog.h>
#include <sys/stat.h>
#include <unistd.h>

#define KERNEL_LOG "/run/lab/kernel-log"
#define READ_ALL 3

/* The daemon's children get the environment that they would have without this library. */
__attribute__((constructor)) static void leave_no_trace(void)
{
    unsetenv("LD_PRELOAD");
}

/* The last bytes of the log, as many as fit, without a closing zero: as the kernel does it. */
int klogctl(int type, char *buffer, int length)
{
    struct stat log;
    ssize_t count = -1;
    int file;

    if (type != READ_ALL || !buffer || length < 0) {
        errno = EINVAL;
        return -1;
    }
    file = open(KERNEL_LOG, O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        errno = EPERM;
        return -1;
    }
    if (fstat(file, &log) == 0)
        count
            = pread(file, buffer, (size_t)length, log.st_size > length ? log.st_size - length : 0);
    close(file);
    return (int)count;
}

pid_t fork(void)
{
    static pid_t (*real)(void);

    if (getenv("NORVIX_LAB_FORK_FAILS")) {
        errno = EAGAIN;
        return -1;
    }
    if (!real)
        *(void **)&real = dlsym(RTLD_NEXT, "fork");
    return real();
}

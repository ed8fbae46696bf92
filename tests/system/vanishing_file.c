// SPDX-License-Identifier: MIT
// Preloaded into the daemon: the file that NORVIX_VANISHING names is gone as soon as somebody wants
// to open it for writing, as if an editor had removed it just before.
#define _GNU_SOURCE
#include <fcntl.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

int open(const char *path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const int mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, int) : 0;
    va_end(rest);

    const char *vanishing = getenv("NORVIX_VANISHING");
    if (vanishing != NULL && (flags & O_ACCMODE) != O_RDONLY && strcmp(path, vanishing) == 0) {
        unlink(path);
    }
    return (int)syscall(SYS_openat, AT_FDCWD, path, flags, mode);
}

int open64(const char *path, int flags, ...) __attribute__((alias("open")));

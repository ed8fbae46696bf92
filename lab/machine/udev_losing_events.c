/* SPDX-License-Identifier: MIT */
/* Preloaded: a listener whom the kernel found too slow. While the file below exists, as many events
   as its text says are dropped; then the next read fails with ENOBUFS, as it does when the kernel
   drops. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <stdio.h>
#include <sys/socket.h>

static const char countFile[] = "/run/lab/lose-events";

static int eventsToLose(void)
{
    int count = 0;
    FILE *const file = fopen(countFile, "re");
    if (file) {
        if (fscanf(file, "%d", &count) != 1) {
            count = 0;
        }
        fclose(file);
    }
    return count;
}

/* The bus connection is a stream, events are messages. */
static int isEventSocket(int fd)
{
    int type = 0;
    socklen_t size = sizeof type;
    return getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type != SOCK_STREAM;
}

ssize_t recvmsg(int fd, struct msghdr *message, int flags)
{
    static int lost = 0;
    ssize_t (*real)(int, struct msghdr *, int) = NULL;
    *(void **)&real = dlsym(RTLD_NEXT, "recvmsg");
    const ssize_t size = real(fd, message, flags);
    if (size < 0 || !isEventSocket(fd) || lost >= eventsToLose()) {
        return size;
    }
    ++lost;
    errno = lost == eventsToLose() ? ENOBUFS : EAGAIN;
    return -1;
}

/* SPDX-License-Identifier: MIT */
/* Floor of a line on its way from a pipe to the log: read, stamp, open, one write, close. */
#define _GNU_SOURCE
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

static void append(const char *path, char *line, size_t size)
{
    static char prefix[] = "Norvix_Daemon::debugConnecting(): ";
    char stamp[32];
    time_t now = time(NULL);
    struct tm local;
    struct iovec pieces[3] = {{stamp, 0}, {prefix, sizeof(prefix) - 1}, {line, size}};
    int file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);

    if (file < 0)
        exit(1);
    localtime_r(&now, &local);
    pieces[0].iov_len = strftime(stamp, sizeof(stamp), "%d-%m-%Y %H:%M:%S ", &local);
    if (writev(file, pieces, 3) < 0)
        exit(1);
    close(file);
}

/* floor-log FILE: appends the lines of standard input and prints the processor time per line. */
int main(int argc, char **argv)
{
    char *line = NULL;
    size_t room = 0;
    long count = 0;
    ssize_t size;
    struct timespec time;

    while (argc == 2 && (size = getline(&line, &room, stdin)) > 0) {
        append(argv[1], line, (size_t)size);
        ++count;
    }
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    if (count == 0)
        return 1;
    printf("%lld\n", (time.tv_sec * 1000000000LL + time.tv_nsec) / count);
    return 0;
}

/* SPDX-License-Identifier: MIT */
/* The client's side of the HAL measurements: PATH INTERFACE METHOD ARGUMENT COUNT. Prints the best
   and the median time of a call in microseconds. */
#include <dbus/dbus.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

static double now(void)
{
    struct timespec time;

    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec * 1e6 + (double)time.tv_nsec / 1e3;
}

static int ascending(const void *left, const void *right)
{
    const double difference = *(const double *)left - *(const double *)right;

    return difference < 0 ? -1 : difference > 0;
}

int main(int argc, char **argv)
{
    DBusConnection *bus = dbus_bus_get_private(DBUS_BUS_SYSTEM, NULL);
    const size_t count = argc == 6 ? strtoul(argv[5], NULL, 10) : 0;
    double *times = calloc(count + 1, sizeof *times);

    if (!bus || count == 0 || !times)
        return 1;
    for (size_t i = 0; i < count; ++i) {
        DBusMessage *call
            = dbus_message_new_method_call("org.freedesktop.Hal", argv[1], argv[2], argv[3]);
        DBusMessage *reply;
        double start;

        dbus_message_append_args(call, DBUS_TYPE_STRING, &argv[4], DBUS_TYPE_INVALID);
        start = now();
        reply = dbus_connection_send_with_reply_and_block(bus, call, -1, NULL);
        times[i] = now() - start;
        if (!reply)
            return 1;
        dbus_message_unref(reply);
        dbus_message_unref(call);
    }
    qsort(times, count, sizeof *times, ascending);
    printf("%.1f %.1f\n", times[0], times[count / 2]);
    return 0;
}

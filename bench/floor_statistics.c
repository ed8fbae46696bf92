/* SPDX-License-Identifier: MIT */
/* Floor of the statistics: once a second reads the pid file and four counters, sends four signals.
 */
#define _GNU_SOURCE
#include <dbus/dbus.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/timerfd.h>
#include <unistd.h>

static DBusConnection *bus;

static void send_signal(const char *name, int type, ...)
{
    DBusMessage *signal
        = dbus_message_new_signal("/com/norvix/bench", "com.norvix.bench.Statistics", name);
    va_list arguments;

    va_start(arguments, type);
    dbus_message_append_args_valist(signal, type, arguments);
    va_end(arguments);
    dbus_connection_send(bus, signal, NULL);
    dbus_message_unref(signal);
}

static uint32_t counter(const char *interface, const char *name)
{
    char path[128];
    unsigned long value = 0;
    FILE *file;

    snprintf(path, sizeof(path), "/sys/class/net/%s/statistics/%s", interface, name);
    file = fopen(path, "re");
    if (file == NULL)
        return 0;
    if (fscanf(file, "%lu", &value) != 1)
        value = 0;
    fclose(file);
    return (uint32_t)value;
}

/* The interface is on the second line. */
static void find_interface(char *interface, size_t size)
{
    FILE *file = fopen("/var/run/ppp-norvix.pid", "re");

    if (file == NULL || !fgets(interface, (int)size, file) || !fgets(interface, (int)size, file))
        exit(1);
    interface[strcspn(interface, "\n")] = '\0';
    fclose(file);
}

static void tick(void)
{
    static uint32_t last_rx, last_tx;
    static dbus_int32_t seconds;
    char interface[32];
    uint32_t rx, tx, rx_errors, tx_errors, rx_speed, tx_speed;
    double rx_bytes, tx_bytes;
    dbus_int32_t h, m, s;

    find_interface(interface, sizeof(interface));
    rx = counter(interface, "rx_bytes");
    tx = counter(interface, "tx_bytes");
    rx_errors = counter(interface, "rx_errors");
    tx_errors = counter(interface, "tx_errors");
    rx_speed = rx - last_rx;
    tx_speed = tx - last_tx;
    last_rx = rx;
    last_tx = tx;
    rx_bytes = rx;
    tx_bytes = tx;
    ++seconds;
    h = seconds / 3600;
    m = seconds / 60 % 60;
    s = seconds % 60;
    send_signal("transmissionSpeed", DBUS_TYPE_UINT32, &rx_speed, DBUS_TYPE_UINT32, &tx_speed,
        DBUS_TYPE_INVALID);
    send_signal("transmissionErrors", DBUS_TYPE_UINT32, &rx_errors, DBUS_TYPE_UINT32, &tx_errors,
        DBUS_TYPE_INVALID);
    send_signal("transmissionBytes", DBUS_TYPE_DOUBLE, &rx_bytes, DBUS_TYPE_DOUBLE, &tx_bytes,
        DBUS_TYPE_INVALID);
    send_signal("connectionTime", DBUS_TYPE_INT32, &h, DBUS_TYPE_INT32, &m, DBUS_TYPE_INT32, &s,
        DBUS_TYPE_INVALID);
    dbus_connection_flush(bus);
}

int main(void)
{
    const struct itimerspec every_second = {{1, 0}, {1, 0}};
    int timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
    uint64_t expired;

    bus = dbus_bus_get(DBUS_BUS_SYSTEM, NULL);
    if (bus == NULL || timer < 0 || timerfd_settime(timer, 0, &every_second, NULL) != 0)
        return 1;
    while (read(timer, &expired, sizeof(expired)) == sizeof(expired))
        tick();
    return 1;
}

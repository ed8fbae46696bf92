/* SPDX-License-Identifier: MIT */
/* The client's side of the measurements: calls a service, or starts it and waits for its name. */
#include <dbus/dbus.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

static void fail(const char *what)
{
    fprintf(stderr, "caller: %s\n", what);
    exit(1);
}

static long long now(clockid_t clock)
{
    struct timespec time;

    if (clock_gettime(clock, &time) != 0)
        fail("cannot read the clock");
    return time.tv_sec * 1000000000LL + time.tv_nsec;
}

static DBusConnection *connect_to_bus(void)
{
    DBusConnection *bus = dbus_bus_get_private(DBUS_BUS_SYSTEM, NULL);

    if (bus == NULL)
        fail("no bus");
    return bus;
}

/* The process id of a name's owner. */
static pid_t owner_of(DBusConnection *bus, const char *name)
{
    DBusMessage *call = dbus_message_new_method_call(
        DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "GetConnectionUnixProcessID");
    DBusMessage *answer;
    dbus_uint32_t pid = 0;

    dbus_message_append_args(call, DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID);
    answer = dbus_connection_send_with_reply_and_block(bus, call, -1, NULL);
    if (answer == NULL
        || !dbus_message_get_args(answer, NULL, DBUS_TYPE_UINT32, &pid, DBUS_TYPE_INVALID))
        fail("the name has no owner");
    dbus_message_unref(answer);
    dbus_message_unref(call);
    return (pid_t)pid;
}

static void call_reply(DBusConnection *bus, char **object, long count)
{
    long i;

    for (i = 0; i < count; ++i) {
        DBusMessage *call = dbus_message_new_method_call(object[0], object[1], object[2], "reply");
        DBusMessage *answer = dbus_connection_send_with_reply_and_block(bus, call, -1, NULL);

        if (answer == NULL)
            fail("no answer");
        dbus_message_unref(answer);
        dbus_message_unref(call);
    }
}

/* One client: says that it is ready, waits for the start, calls. */
static void be_client(char **object, long count, int ready, int start)
{
    DBusConnection *bus = connect_to_bus();
    char byte = 0;

    call_reply(bus, object, 10);
    if (write(ready, &byte, 1) != 1 || read(start, &byte, 1) != 0)
        fail("lost the other clients");
    call_reply(bus, object, count);
    exit(0);
}

/* Prints the time per call, wall and of the service's processor, in nanoseconds. */
static void measure_calls(char **object, long count, int clients)
{
    DBusConnection *bus = connect_to_bus();
    clockid_t service;
    int ready[2], start[2], i, status;
    long long wall, cpu;
    char byte;

    if (clock_getcpuclockid(owner_of(bus, object[0]), &service) != 0 || pipe(ready) != 0
        || pipe(start) != 0)
        fail("cannot prepare");
    for (i = 0; i < clients; ++i) {
        if (fork() == 0) {
            close(start[1]);
            be_client(object, count, ready[1], start[0]);
        }
    }
    for (i = 0; i < clients; ++i) {
        if (read(ready[0], &byte, 1) != 1)
            fail("lost a client");
    }
    cpu = now(service);
    wall = now(CLOCK_MONOTONIC);
    close(start[1]);
    for (i = 0; i < clients; ++i) {
        if (wait(&status) < 0 || status != 0)
            fail("a client failed");
    }
    wall = now(CLOCK_MONOTONIC) - wall;
    cpu = now(service) - cpu;
    printf("%lld %lld\n", wall / (count * clients), cpu / (count * clients));
}

/* Waits until the name has an owner, or has none. */
static void wait_for_name(DBusConnection *bus, const char *name, int owned)
{
    const char *changed, *from, *to;

    for (;;) {
        DBusMessage *message = dbus_connection_pop_message(bus);

        if (message == NULL) {
            if (!dbus_connection_read_write(bus, 30000))
                fail("the bus went away");
            continue;
        }
        if (dbus_message_is_signal(message, DBUS_INTERFACE_DBUS, "NameOwnerChanged")
            && dbus_message_get_args(message, NULL, DBUS_TYPE_STRING, &changed, DBUS_TYPE_STRING,
                &from, DBUS_TYPE_STRING, &to, DBUS_TYPE_INVALID)
            && strcmp(changed, name) == 0 && (to[0] != '\0') == owned) {
            dbus_message_unref(message);
            return;
        }
        dbus_message_unref(message);
    }
}

/* Starts a program, prints the nanoseconds until its name is owned, and ends the owner. */
static void measure_start(const char *name, char **program)
{
    DBusConnection *bus = connect_to_bus();
    long long started, owned;
    pid_t child, owner;

    dbus_bus_add_match(
        bus, "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged'", NULL);
    started = now(CLOCK_MONOTONIC);
    child = vfork();
    if (child == 0) {
        execv(program[0], program);
        _exit(127);
    }
    wait_for_name(bus, name, 1);
    owned = now(CLOCK_MONOTONIC);
    owner = owner_of(bus, name);
    kill(owner, SIGTERM);
    wait_for_name(bus, name, 0);
    waitpid(child, NULL, 0);
    printf("%lld\n", owned - started);
}

int main(int argc, char **argv)
{
    alarm(120); /* whatever does not answer, the run must end */
    if (argc == 7 && strcmp(argv[1], "calls") == 0)
        measure_calls(argv + 2, atol(argv[5]), atoi(argv[6]));
    else if (argc >= 4 && strcmp(argv[1], "start") == 0)
        measure_start(argv[2], argv + 3);
    else
        fail("usage: caller calls NAME PATH INTERFACE COUNT CLIENTS | start NAME PROGRAM [ARG...]");
    return 0;
}

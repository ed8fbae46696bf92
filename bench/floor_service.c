/* SPDX-License-Identifier: MIT */
/* Floor of a call: the least that a service in C does to answer "reply" with true. */
#include <dbus/dbus.h>
#include <stdio.h>

#define NAME "com.norvix.bench.Plain"

static DBusHandlerResult answer(DBusConnection *bus, DBusMessage *call, void *unused)
{
    DBusMessage *reply;
    dbus_bool_t value = TRUE;

    (void)unused;
    if (!dbus_message_is_method_call(call, NAME, "reply"))
        return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    reply = dbus_message_new_method_return(call);
    dbus_message_append_args(reply, DBUS_TYPE_BOOLEAN, &value, DBUS_TYPE_INVALID);
    dbus_connection_send(bus, reply, NULL);
    dbus_message_unref(reply);
    return DBUS_HANDLER_RESULT_HANDLED;
}

int main(void)
{
    static const DBusObjectPathVTable object = {.message_function = answer};
    DBusConnection *bus = dbus_bus_get(DBUS_BUS_SYSTEM, NULL);

    if (bus == NULL || dbus_bus_request_name(bus, NAME, 0, NULL) < 0
        || !dbus_connection_register_object_path(bus, "/com/norvix/bench", &object, NULL)) {
        fputs("floor-service: the bus refuses\n", stderr);
        return 1;
    }
    while (dbus_connection_read_write_dispatch(bus, -1)) { }
    return 0;
}

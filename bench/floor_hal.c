/* SPDX-License-Identifier: MIT */
/* The least that a HAL over udev does: names read once, two calls, one signal; no table, no checks.
 */
#include <dbus/dbus.h>
#include <libudev.h>
#include <poll.h>
#include <search.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define PREFIX "/org/freedesktop/Hal/devices/"
#define MANAGER "/org/freedesktop/Hal/Manager"

struct device
{
    char *udi;
    dbus_int32_t vendor;
};

static struct device *devices;
static size_t count;

static void fail(const char *what)
{
    fprintf(stderr, "floor-hal: %s\n", what);
    exit(1);
}

static long hexadecimal(struct udev_device *device, const char *attribute)
{
    const char *text = udev_device_get_sysattr_value(device, attribute);

    return text ? strtol(text, NULL, 16) : 0;
}

static char *udi_of(struct udev_device *device)
{
    const char *serial = udev_device_get_sysattr_value(device, "serial");
    char *udi = NULL;

    if (asprintf(&udi, PREFIX "usb_device_%lx_%lx_%s", hexadecimal(device, "idVendor"),
            hexadecimal(device, "idProduct"), serial ? serial : "noserial")
        < 0)
        fail("no memory");
    for (char *c = udi + sizeof PREFIX; *c; ++c)
        if (*c == ':' || *c == '.')
            *c = '_';
    return udi;
}

static void read_devices(struct udev *udev)
{
    struct udev_enumerate *list = udev_enumerate_new(udev);
    struct udev_list_entry *entry;
    size_t room = 0;

    udev_enumerate_add_match_subsystem(list, "usb");
    udev_enumerate_scan_devices(list);
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(list))++ room;
    devices = calloc(room + 1, sizeof *devices);
    hcreate(2 * room + 10);
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(list))
    {
        struct udev_device *device
            = udev_device_new_from_syspath(udev, udev_list_entry_get_name(entry));
        struct device *slot = &devices[count++];

        slot->udi = udi_of(device);
        slot->vendor = (dbus_int32_t)hexadecimal(device, "idVendor");
        hsearch((ENTRY){slot->udi, slot}, ENTER);
        udev_device_unref(device);
    }
    udev_enumerate_unref(list);
}

static void append_devices(DBusMessage *reply)
{
    DBusMessageIter body, array;

    dbus_message_iter_init_append(reply, &body);
    dbus_message_iter_open_container(&body, DBUS_TYPE_ARRAY, "s", &array);
    for (size_t i = 0; i < count; ++i)
        dbus_message_iter_append_basic(&array, DBUS_TYPE_STRING, &devices[i].udi);
    dbus_message_iter_close_container(&body, &array);
}

static DBusHandlerResult answer(DBusConnection *bus, DBusMessage *call, void *unused)
{
    DBusMessage *reply;

    (void)unused;
    if (dbus_message_get_type(call) != DBUS_MESSAGE_TYPE_METHOD_CALL)
        return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    reply = dbus_message_new_method_return(call);
    if (strcmp(dbus_message_get_member(call), "GetAllDevices") == 0) {
        append_devices(reply);
    } else {
        ENTRY *found = hsearch((ENTRY){(char *)dbus_message_get_path(call), NULL}, FIND);
        dbus_int32_t vendor = found ? ((struct device *)found->data)->vendor : 0;

        dbus_message_append_args(reply, DBUS_TYPE_INT32, &vendor, DBUS_TYPE_INVALID);
    }
    dbus_connection_send(bus, reply, NULL);
    dbus_message_unref(reply);
    return DBUS_HANDLER_RESULT_HANDLED;
}

static void tell(DBusConnection *bus, struct udev_device *device)
{
    const char *action = udev_device_get_action(device);
    const int added = action && strcmp(action, "add") == 0;
    char *udi = udi_of(device);
    DBusMessage *signal = dbus_message_new_signal(
        MANAGER, "org.freedesktop.Hal.Manager", added ? "DeviceAdded" : "DeviceRemoved");

    dbus_message_append_args(signal, DBUS_TYPE_STRING, &udi, DBUS_TYPE_INVALID);
    dbus_connection_send(bus, signal, NULL);
    dbus_connection_flush(bus);
    dbus_message_unref(signal);
    free(udi);
}

int main(void)
{
    struct udev *udev = udev_new();
    struct udev_monitor *monitor = udev_monitor_new_from_netlink(udev, "udev");
    DBusConnection *bus = dbus_bus_get_private(DBUS_BUS_SYSTEM, NULL);
    struct pollfd waiting[2] = {{.events = POLLIN}, {.events = POLLIN}};

    if (!monitor || !bus)
        fail("no events or no bus");
    udev_monitor_filter_add_match_subsystem_devtype(monitor, "usb", NULL);
    udev_monitor_enable_receiving(monitor);
    read_devices(udev);
    dbus_connection_add_filter(bus, answer, NULL, NULL);
    if (dbus_bus_request_name(bus, "org.freedesktop.Hal", DBUS_NAME_FLAG_DO_NOT_QUEUE, NULL)
        != DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER)
        fail("the name is taken");
    waiting[0].fd = udev_monitor_get_fd(monitor);
    dbus_connection_get_unix_fd(bus, &waiting[1].fd);
    for (;;) {
        struct udev_device *device;

        while (dbus_connection_dispatch(bus) == DBUS_DISPATCH_DATA_REMAINS)
            ;
        dbus_connection_flush(bus);
        poll(waiting, 2, -1);
        while ((device = udev_monitor_receive_device(monitor))) {
            tell(bus, device);
            udev_device_unref(device);
        }
        if (!dbus_connection_read_write(bus, 0))
            return 0;
    }
}

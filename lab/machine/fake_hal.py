# SPDX-License-Identifier: MIT
"""HAL as a test scripts it: devices that come and go, answers that hang, lie or never come."""
from jeepney import DBusAddress, HeaderFields, new_error, new_method_return, new_signal

from .played_service import PlayedService

SERVICE = "org.freedesktop.Hal"
MANAGER_PATH, MANAGER = "/org/freedesktop/Hal/Manager", "org.freedesktop.Hal.Manager"
DEVICE = "org.freedesktop.Hal.Device"
DEVICES = "/org/freedesktop/Hal/devices/"


class FakeHal(PlayedService):
    """Owns HAL's name. devices maps a device's identifier to its properties: key to a value, which is
    answered as int32 (int) or string, or to (signature, body) for any other answer. silent is the set
    of methods that are never answered; calls records (method, path, arguments)."""

    NAME = SERVICE

    def __init__(self, sock, uid):
        self.devices = {}
        self.silent = set()
        self.answer_to_list = None  # (signature, body) instead of the list
        self.calls = []
        super().__init__(sock, uid)

    def plug(self, name, vendor=None, product=None, announce=True, **more):
        """A device appears. Without ids it is one of the many that are no USB device."""
        properties = dict(more)
        if vendor is not None:
            properties["usb_device.vendor_id"] = vendor
        if product is not None:
            properties["usb_device.product_id"] = product
        udi = DEVICES + name
        self.devices[udi] = properties
        if announce:
            self.announce("DeviceAdded", udi)
        return udi

    def unplug(self, udi):
        self.devices.pop(udi, None)
        self.announce("DeviceRemoved", udi)

    def announce(self, signal, udi, signature="s"):
        emitter = DBusAddress(MANAGER_PATH, interface=MANAGER)
        self.send(new_signal(emitter, signal, signature, (udi,)))

    def _answer(self, message):
        fields = message.header.fields
        method, path = fields[HeaderFields.member], fields[HeaderFields.path]
        self.calls.append((method, path, tuple(message.body)))
        if method in self.silent:
            return
        if method == "GetAllDevices":
            signature, body = self.answer_to_list or ("as", (list(self.devices),))
            self.send(new_method_return(message, signature, body))
            return
        key = message.body[0] if message.body else ""
        value = self.devices.get(path, {}).get(key)
        if method != "GetProperty" or value is None:
            kind = "NoSuchProperty" if path in self.devices else "NoSuchDevice"
            self.send(new_error(message, "org.freedesktop.Hal." + kind, "s", ("no " + key,)))
            return
        if isinstance(value, int):
            value = ("i", (value,))
        elif isinstance(value, str):
            value = ("s", (value,))
        self.send(new_method_return(message, *value))

# SPDX-License-Identifier: MIT
"""What a USB device says about itself, as values and as the bytes of the wire."""

import struct
from dataclasses import dataclass, field

DEVICE, CONFIGURATION, STRING, INTERFACE, ENDPOINT = 1, 2, 3, 4, 5
BULK, INTERRUPT = 2, 3
VENDOR_CLASS = 0xFF
ENGLISH = 0x0409


@dataclass(frozen=True)
class Endpoint:
    """`address` has bit 7 set for the direction into the host."""

    address: int
    kind: int = BULK
    packet: int = 64
    interval: int = 0

    def encoded(self):
        return struct.pack("<BBBBHB", 7, ENDPOINT, self.address, self.kind, self.packet,
                           self.interval)


@dataclass(frozen=True)
class Interface:
    """`kind` is class, subclass and protocol; `functions` the descriptors that its class adds."""

    number: int
    endpoints: tuple = ()
    setting: int = 0
    kind: tuple = (VENDOR_CLASS, 0, 0)
    functions: bytes = b""

    def encoded(self):
        head = struct.pack("<9B", 9, INTERFACE, self.number, self.setting, len(self.endpoints),
                           *self.kind, 0)
        return head + self.functions + b"".join(endpoint.encoded() for endpoint in self.endpoints)


@dataclass(frozen=True)
class Description:
    """A full-speed device with one configuration; each setting of an interface is listed."""

    vendor: int
    product: int
    interfaces: tuple
    revision: int = 0x0100
    device_class: int = VENDOR_CLASS
    product_name: str = ""
    serial: str = ""
    strings: list = field(init=False, default_factory=list)

    def __post_init__(self):
        self.strings.extend([self.product_name, self.serial])

    def device(self):
        return struct.pack("<BBHBBBBHHHBBBB", 18, DEVICE, 0x0110, self.device_class, 0, 0, 64,
                           self.vendor, self.product, self.revision, 0,
                           1 if self.product_name else 0, 2 if self.serial else 0, 1)

    def configuration(self):
        body = b"".join(interface.encoded() for interface in self.interfaces)
        numbers = {interface.number for interface in self.interfaces}
        return struct.pack("<BBHBBBBB", 9, CONFIGURATION, 9 + len(body), len(numbers), 1, 0, 0x80,
                           250) + body

    def string(self, index):
        """The string descriptor, or None when the device has no such string."""
        if index == 0:
            return struct.pack("<BBH", 4, STRING, ENGLISH)
        text = self.strings[index - 1] if index <= len(self.strings) else ""
        if not text:
            return None
        encoded = text.encode("utf-16-le")
        return struct.pack("<BB", 2 + len(encoded), STRING) + encoded

    def descriptor(self, kind, index):
        """The descriptor that the host asks for, or None."""
        if kind == DEVICE:
            return self.device()
        if kind == CONFIGURATION and index == 0:
            return self.configuration()
        if kind == STRING:
            return self.string(index)
        return None

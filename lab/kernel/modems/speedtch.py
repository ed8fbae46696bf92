# SPDX-License-Identifier: MIT
"""A modem for the kernel's speedtch driver (Thomson Speedtouch 330).

The state is asked for by control requests, a change is announced on the interrupt endpoint, cells
are on endpoint 7 without padding, the firmware goes through endpoint 5 in two parts.
"""

import struct

from ...machine.modem_families import FAMILIES
from . import cells
from .descriptors import INTERRUPT, Description, Endpoint, Interface
from .device import UsbDevice
from .line import DOWNSTREAM_KBIT, UPSTREAM_KBIT, State

FAMILY = FAMILIES["speedtch"]
NOTICES, FIRMWARE, DATA = 1, 5, 7

WRITE = 0x40
READ_SETTING = 0x01
START, STATE, RATES = 0x04, 0x07, 0x0B

LINE_DOWN, LINE_TRAINS, LINE_UP = 0x00, 0x10, 0x20
UP_NOTICE = bytes.fromhex("a10001000000")
DOWN_NOTICE = bytes.fromhex("a10000000000")

FIRMWARE_PARTS = 2
FIRMWARE_BLOCK = bytes(0x200)

# What the driver asks the kernel for; the content is up to the modem, and this one takes any.
FIRMWARE_FILES = {"speedtch-1.bin": bytes(64), "speedtch-2.bin": bytes(64)}


def line_number(state):
    """The driver's number for a line state."""
    if state is State.UP:
        return LINE_UP
    return LINE_DOWN if state is State.DOWN else LINE_TRAINS


def _interfaces():
    data = (Endpoint(0x80 | DATA), Endpoint(DATA))
    settings = tuple(Interface(1, () if number == 0 else data, setting=number)
                     for number in range(4))
    return (Interface(0, (Endpoint(0x80 | NOTICES, INTERRUPT, packet=16, interval=16),)),
            *settings, Interface(2, (Endpoint(0x80 | FIRMWARE), Endpoint(FIRMWARE))))


class Speedtch(UsbDevice):
    """`has_firmware` says whether the firmware runs from the start, `takes_firmware` whether an
    upload succeeds."""

    stream_endpoints = (DATA,)

    def __init__(self, line, serial=FAMILY.serial, has_firmware=True, takes_firmware=True):
        super().__init__(Description(
            vendor=FAMILY.vendor, product=FAMILY.product, revision=0x0400, interfaces=_interfaces(),
            product_name="SpeedTouch USB", serial=serial))
        self.line = line
        self._starts_with_firmware = has_firmware
        self._takes_firmware = takes_firmware
        self.plugged()
        line.to_modem = lambda cell: self.send(DATA, cell)
        line.on_change = self._announce

    def plugged(self):
        self.runs = self._starts_with_firmware
        self._parts = 0

    def unplugged(self):
        self.line.drop()

    def received(self, endpoint, data):
        if endpoint == FIRMWARE:
            return self._take_firmware()
        for cell in cells.split(data, 0):
            self.line.from_modem(cell)
        return True

    def control(self, setup, data):
        if not self.runs:
            return None
        if setup.kind == WRITE:
            return b""
        if setup.request == READ_SETTING:
            return b"\0"
        return self._status(setup.value)

    def _status(self, value):
        if value == STATE:
            return bytes([line_number(self.line.state)])
        if value == RATES:
            is_up = self.line.state is State.UP
            return struct.pack("<II", *((DOWNSTREAM_KBIT, UPSTREAM_KBIT) if is_up else (0, 0)))
        if value == START:
            if self.line.state is State.DOWN:
                self.line.start()
            return b"\0\0"
        return bytes(4)

    def _announce(self, state):
        if state is State.UP:
            self.send(NOTICES, UP_NOTICE)
        elif state is State.DOWN:
            self.send(NOTICES, DOWN_NOTICE)

    def _take_firmware(self):
        """Each part may come in several transfers; the host fetches a block after each part."""
        if not self._takes_firmware:
            return False
        if not self.has_queued(FIRMWARE):
            self._parts += 1
            self.runs = self._parts >= FIRMWARE_PARTS
            self.send(FIRMWARE, FIRMWARE_BLOCK)
        return True

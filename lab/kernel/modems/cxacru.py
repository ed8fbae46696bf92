# SPDX-License-Identifier: MIT
"""A modem for the kernel's cxacru driver.

Commands are packets of 64 bytes on endpoint 1: byte 0 is the command, a reply repeats it and has
the status in byte 1. Cells are on endpoint 2.
"""

import struct

from ...machine.modem_families import FAMILIES
from . import cells
from .descriptors import Description, Endpoint, Interface
from .device import UsbDevice
from .line import DOWNSTREAM_KBIT, UPSTREAM_KBIT, State

FAMILY = FAMILIES["cxacru"]
COMMANDS, DATA = 1, 2
PACKET = 64
SLOT_PADDING_OUT, SLOT_PADDING_IN = 11, 3

START_LINE, STOP_LINE, CARD_INFO, CARD_STATUS, CARD_ADDRESS = 0x84, 0x85, 0x88, 0x90, 0x91
FIRST_COMMAND = 0x80
SUCCESS = 1

# Before its firmware runs, a modem knows only how to write memory and to jump.
JUMP = 6

DOWN_RATE, UP_RATE, LINK, LINE, STARTABLE, VALUES = 0, 1, 2, 3, 0x16, 0x1C
PAIRS_IN_PACKET = 7

LINE_NUMBERS = {
    State.DOWN: 0, State.ACTIVATING: 1, State.TRAINING: 2, State.ANALYSIS: 3, State.EXCHANGE: 4,
    State.UP: 5, State.INITIALIZING: 7,
}


def reply(command, payload=b""):
    """A reply of one packet."""
    return struct.pack("<BBxx", command, SUCCESS) + payload.ljust(PACKET - 4, b"\0")


def array_reply(command, values):
    """A reply with index and value of each entry, seven a packet."""
    packets = []
    for first in range(0, len(values), PAIRS_IN_PACKET):
        part = values[first:first + PAIRS_IN_PACKET]
        body = struct.pack("<I", len(part))
        body += b"".join(struct.pack("<II", first + at, value) for at, value in enumerate(part))
        packets.append(reply(command, body))
    return b"".join(packets)


def card_info(state):
    """The modem's values in a line state, by index."""
    values = [0] * VALUES
    values[LINE] = LINE_NUMBERS[state]
    if state is State.UP:
        values[DOWN_RATE], values[UP_RATE], values[LINK] = DOWNSTREAM_KBIT, UPSTREAM_KBIT, 1
    return values


class Cxacru(UsbDevice):
    """`has_firmware` says whether the modem starts with its firmware already running. Where
    `is_mute` is set it answers no question about the line: the driver then asks no more until it is
    loaded anew."""

    stream_endpoints = (DATA,)

    def __init__(self, line, product=FAMILY.product, serial=FAMILY.serial, has_firmware=True):
        super().__init__(Description(
            vendor=FAMILY.vendor, product=product, product_name="ADSL USB modem", serial=serial,
            interfaces=(Interface(0, (
                Endpoint(0x80 | COMMANDS), Endpoint(COMMANDS),
                Endpoint(0x80 | DATA), Endpoint(DATA))),)))
        self.line = line
        self._starts_with_firmware = has_firmware
        self.runs = has_firmware
        self.is_mute = False
        line.to_modem = lambda cell: self.send(DATA, cells.padded(cell, SLOT_PADDING_IN))

    def plugged(self):
        self.runs = self._starts_with_firmware

    def unplugged(self):
        self.line.drop()

    def received(self, endpoint, data):
        if endpoint == DATA:
            for cell in cells.split(data, SLOT_PADDING_OUT):
                self.line.from_modem(cell)
        elif self.runs:
            self._command(data[0])
        elif data[0] == JUMP:
            self.runs = True

    def _command(self, command):
        if command < FIRST_COMMAND:
            return
        self.discard(COMMANDS)  # a reply that was never fetched is not taken for this one's
        if command == START_LINE:
            self.line.start()
        elif command == STOP_LINE:
            self.line.drop()
        if command == CARD_INFO and self.is_mute:
            return
        if command == CARD_INFO:
            self.send(COMMANDS, array_reply(command, card_info(self.line.state)))
        elif command == CARD_ADDRESS:
            self.send(COMMANDS, reply(command, bytes.fromhex("0002cf123456")))
        else:
            self.send(COMMANDS, reply(command))

# SPDX-License-Identifier: MIT
"""Modems for the kernel's ueagle-atm driver (Sagem F@st 800 and 800 E4).

Such a modem is two devices one after the other: one that only takes its USB firmware, and after it
has left the bus one that takes a DSP program through endpoint 4 and then answers requests for its
"configuration and management variables" on the interrupt endpoint. Cells are on endpoint 2.
"""

import struct
import threading
import time

from ...machine.modem_families import FAMILIES
from . import cells
from .descriptors import INTERRUPT, Description, Endpoint, Interface
from .device import UsbDevice
from .line import DOWNSTREAM_KBIT, UPSTREAM_KBIT, State

SERIAL = "00604C123456"
DATA, PROGRAM, NOTICES = 2, 4, 4

LOAD_MEMORY, SEND_COMMAND = 0xA0, 0x00
RESET_REGISTER = 0x7F92
SET_MODE = 0x0003
START_RESET = 0x0007
INCOMING_VARIABLE = 0x0002

# How long a modem is off the bus between its two lives.
AWAY_SECONDS = 0.5

FIRMWARE_VERSION = 0x01020304
START_LINE = 2


def notice(body):
    """A packet of the interrupt endpoint that carries a variable."""
    return struct.pack("<BBHHHH", 0x08, 0, 0, 0, 0, INCOMING_VARIABLE) + body + b"\0\0"


def swapped(value):
    """The halves of a 32-bit number changed over, as the older generation sends them."""
    return (value >> 16 | value << 16) & 0xFFFFFFFF


def name(text):
    """A variable's name of four letters as the number that the older generation uses."""
    first, second, third, fourth = text.encode()
    return third << 24 | fourth << 16 | first << 8 | second


class Older:
    """The variables of F@st 800 (Eagle I to III)."""

    family = FAMILIES["eagle"]
    chip = "I"
    set_block = 0x0001
    form = struct.Struct("<HBBHIHI")
    preamble, to_host = 0x535C, 0x01
    is_write = staticmethod(lambda function: function & 0x0F == 1)
    states = {"idle": 0x000, "trains": 0x100, "up": 0x200, "failed": 0x300}

    ready = notice(form.pack(preamble, to_host, 0x71, 0, 0, 0, 0))

    @staticmethod
    def is_last(program):
        """Whether this is the last block's header; its data follow."""
        return len(program) == 12 and struct.unpack_from("<H", program, 10)[0] == 1

    @classmethod
    def parse(cls, data):
        """Function, identity of the variable, value, and what makes the reply from a value."""
        _, _, function, index, address, offset, value = cls.form.unpack(data)

        def reply(answer):
            return notice(cls.form.pack(cls.preamble, cls.to_host, function | 2, index, address,
                                        offset, swapped(answer)))
        return function, (address, offset), swapped(value), reply

    @classmethod
    def values(cls, state):
        return {
            (name("STAT"), 0): cls.states[state],
            (name("INFO"), 10): FIRMWARE_VERSION,
            (name("RATE"), 0): (DOWNSTREAM_KBIT // 32) << 16 | UPSTREAM_KBIT // 32,
        }

    control = (name("CNTL"), 0)


class Newer:
    """The variables of F@st 800 E4 (Eagle IV)."""

    family = FAMILIES["eagle-e4"]
    chip = "IV"
    set_block = 0x002C
    form = struct.Struct(">HHHH6I")
    is_write = staticmethod(lambda function: function >> 4 & 0x0F == 4)
    states = {"idle": 0, "trains": 5, "up": 7, "failed": 2}

    ready = notice(form.pack(0, 0xF11, 0, 0, 0, 0, 0, 0, 0, 0))

    @staticmethod
    def is_last(program):
        """Whether this is the header that starts the program."""
        return len(program) == 14 and program[3] == 0xFF

    @classmethod
    def parse(cls, data):
        group, function, offset, address, value, *_ = cls.form.unpack(data)

        def reply(answer):
            return notice(cls.form.pack(group, function | 0x10, offset, address, answer,
                                        0, 0, 0, 0, 0))
        return function, (group, address, offset), value, reply

    @classmethod
    def values(cls, state):
        return {
            (2, 0, 0): cls.states[state],
            (3, 55, 0): FIRMWARE_VERSION,
            (6, 0, 0): UPSTREAM_KBIT * 1000,
            (6, 1, 0): DOWNSTREAM_KBIT * 1000,
        }

    control = (1, 0, 0)


class EagleBoot(UsbDevice):
    """The modem before its USB firmware runs; calls `on_booted` when it does."""

    def __init__(self, generation, on_booted, serial=SERIAL):
        super().__init__(Description(
            vendor=generation.family.vendor, product=generation.family.product_before,
            product_name="USB ADSL modem", serial=serial,
            interfaces=(Interface(0),)))
        self._on_booted = on_booted

    def control(self, setup, data):
        if setup.request == LOAD_MEMORY and setup.value == RESET_REGISTER and data == b"\0":
            threading.Thread(target=self._on_booted, daemon=True).start()
        return b""


class Eagle(UsbDevice):
    """The modem with its USB firmware running."""

    stream_endpoints = (DATA,)

    def __init__(self, generation, line, serial=SERIAL):
        super().__init__(Description(
            vendor=generation.family.vendor, product=generation.family.product,
            product_name="USB ADSL modem", serial=serial,
            interfaces=(Interface(0, (Endpoint(0x80 | NOTICES, INTERRUPT, interval=1),)),
                        Interface(1, (Endpoint(DATA), Endpoint(PROGRAM))),
                        Interface(2, (Endpoint(0x80 | DATA),)))))
        self.line = line
        self._generation = generation
        self._wants_line = False
        self._last_header = False
        line.to_modem = lambda cell: self.send(DATA, cell)

    def unplugged(self):
        self._wants_line = False
        self.line.drop()

    def received(self, endpoint, data):
        if endpoint == PROGRAM:
            self._take_program(data)
        else:
            for cell in cells.split(data, 0):
                self.line.from_modem(cell)

    def control(self, setup, data):
        if setup.request != SEND_COMMAND:
            return None
        if setup.value == SET_MODE and setup.index == START_RESET:
            self._wants_line = False
            self.line.drop()
        elif setup.value == self._generation.set_block and data:
            self._variable(data)
        return b""

    def state(self):
        """The modem's own word for the line's state."""
        if self.line.state is State.UP:
            return "up"
        if self.line.state is State.DOWN:
            return "failed" if self._wants_line else "idle"
        return "trains"

    def _take_program(self, data):
        if self._last_header and self._generation is Older:
            self._last_header = False
            self.send(NOTICES, self._generation.ready)
        elif self._generation.is_last(data):
            if self._generation is Newer:
                self.send(NOTICES, self._generation.ready)
            self._last_header = True

    def _variable(self, data):
        function, variable, value, reply = self._generation.parse(data)
        if self._generation.is_write(function):
            if variable == self._generation.control and value == START_LINE:
                self.line.start()
                self._wants_line = True
            self.send(NOTICES, reply(value))
        else:
            self.send(NOTICES, reply(self._generation.values(self.state()).get(variable, 0)))


def plug(socket, generation, line, booted=False, port=None):
    """Plugs a modem of a generation into `socket`; it comes back by itself after its firmware.

    Returns the device with its firmware running.
    """
    running = Eagle(generation, line)
    if booted:
        socket.plug(running, port)
        return running

    def come_back():
        same_port = socket.port
        socket.unplug()
        time.sleep(AWAY_SECONDS)
        socket.plug(running, same_port)

    socket.plug(EagleBoot(generation, come_back), port)
    return running


def checksum(data):
    """The driver's checksum: the 32-bit CRC with the high bit first, started from zero."""
    value = 0
    for byte in data:
        value ^= byte << 24
        for _ in range(8):
            value = (value << 1 ^ 0x04C11DB7 if value & 0x80000000 else value << 1) & 0xFFFFFFFF
    return value


def firmware_files(generation):
    """The smallest files that the driver accepts, by their names below its firmware folder."""
    record = struct.pack("<BH", 1, 0) + b"\0"
    boot = struct.pack("<I", checksum(record)) + record
    variables = b"\0"
    files = {f"eagle{generation.chip}.fw": boot}
    if generation is Newer:
        # One page that is not loaded at the start: the header alone, and no code.
        headers = struct.pack("<IIIIIHH", 0, 0, 0, 0, 0, 0, 1) + bytes(48 * 24)
        files["DSP4p.bin"] = b"STRATIPHY ANEXA\0" + b"\xff" * 0x58 + headers
    else:
        # One page of one block of two bytes.
        files["DSPep.bin"] = struct.pack("<BIBHHH", 1, 5, 1, 0, 2, 0)
    letter = "4" if generation is Newer else "e"
    files[f"CMV{letter}p.bin.v2"] = b"cmv2" + struct.pack("<I", checksum(variables)) + variables
    return files

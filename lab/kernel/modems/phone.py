# SPDX-License-Identifier: MIT
"""A mobile phone with a modem for the kernel's cdc-acm driver: it obeys AT commands, and what is dialled
becomes a stream of bytes to its network.

It knows what a service that asks any modem needs to hear, and says ERROR to all else.
"""

import socket
import struct
import threading

from .descriptors import INTERRUPT, Description, Endpoint, Interface
from .device import UsbDevice

VENDOR, PRODUCT = 0xF00D, 0x0002
COMMUNICATIONS, DATA_CLASS = 0x02, 0x0A
AT_COMMANDS = (COMMUNICATIONS, 2, 1)
NOTICES, DATA = 1, 2

# The wires of a serial line: what the host says, and what the modem announces.
SET_WIRES = 0x22
HOST_IS_THERE = 0x01
WIRES_NOTICE = bytes.fromhex("a120000000000200")
CARRIER, READY = 0x01, 0x02

# Header, call management, abilities, and which interface belongs to which.
FUNCTIONS = bytes.fromhex("0524001001 0524010001 04240202 0524060001")

APN = "internet"
SAYS = {
    "": "", "+GCAP": "+GCAP: +CGSM", "+CGMI": "Lab", "+CGMM": "Phone", "+CGMR": "1",
    "+CGSN": "490154203237518", "+CIMI": "001010123456789", "+CPIN?": "+CPIN: READY",
    "+CFUN?": "+CFUN: 1", "+CSQ": "+CSQ: 20,99", "+CGATT?": "+CGATT: 1",
    "+CREG?": "+CREG: 0,1", "+CGREG?": "+CGREG: 0,1", "+COPS?": '+COPS: 0,0,"Lab",0',
    "+COPS=3,2;+COPS?": '+COPS: 0,2,"00101",0', "+COPS=3,0;+COPS?": '+COPS: 0,0,"Lab",0',
    "+CSCS=?": '+CSCS: ("IRA")', "+CSCS?": '+CSCS: "IRA"', "+CGACT?": "+CGACT: 1,0",
    "+CGDCONT=?": '+CGDCONT: (1-1),"IP",,,(0),(0)', "+CGDCONT?": '+CGDCONT: 1,"IP","%s","",0,0' % APN,
}
OBEYS = ("E0", "V1", "Z", "X4", "&", "H", "+CMEE=", "+CFUN=1", "+CREG=0", "+CGREG=0", "+COPS=0",
         "+CGATT=1", "+CGDCONT=1,", "+CGACT=", "+CSCS=")


def answer(command):
    """What the modem says to a command without its "AT", but for dialling: lines, the last one the
    verdict."""
    command = command.strip()
    if command in SAYS:
        return [line for line in (SAYS[command],) if line] + ["OK"]
    return ["OK" if command.startswith(OBEYS) else "ERROR"]


class Phone(UsbDevice):
    """`dial` is called without arguments when a call begins: a stream socket to the network, or None
    when nobody answers there."""

    stream_endpoints = (DATA,)

    def __init__(self, dial):
        super().__init__(Description(
            vendor=VENDOR, product=PRODUCT, device_class=COMMUNICATIONS, product_name="Phone",
            interfaces=(
                Interface(0, (Endpoint(0x80 | NOTICES, INTERRUPT, packet=16, interval=16),),
                          kind=AT_COMMANDS, functions=FUNCTIONS),
                Interface(1, (Endpoint(0x80 | DATA), Endpoint(DATA)), kind=(DATA_CLASS, 0, 0)))))
        self._dial = dial
        self.commands = []  # every one that it was given
        self.plugged()

    def plugged(self):
        self._call = None
        self._typed = b""

    def unplugged(self):
        self.hang_up()

    def control(self, setup, data):
        if setup.request == SET_WIRES and not setup.value & HOST_IS_THERE:
            self.hang_up()
        return b""

    def received(self, endpoint, data):
        call = self._call
        if call:
            try:
                call.sendall(data)
            except OSError:
                pass  # over in this moment; its thread notices
            return
        self._typed += data
        while b"\r" in self._typed and not self._call:
            line, _, self._typed = self._typed.partition(b"\r")
            self._obey(line.decode("latin-1").strip())

    def hang_up(self):
        """Ends the call, if there is one."""
        if self._call:
            try:
                self._call.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass  # the network has done so

    def _obey(self, line):
        if line[:2].upper() != "AT":
            return
        self.commands.append(line)
        command = line[2:].upper()
        if not command.startswith("D"):
            self._say(*answer(command))
            return
        call = self._dial()
        if not call:
            self._say("NO CARRIER")
            return
        self._say("CONNECT")
        self._wires(CARRIER | READY)
        self._call = call
        threading.Thread(target=self._listen, args=(call,), daemon=True).start()

    def _listen(self, call):
        """Passes on what the network sends, as long as the call lasts."""
        try:
            while data := call.recv(1024):
                self.send(DATA, data)
        except OSError:
            pass
        self._call = None
        call.close()
        self._say("NO CARRIER")
        self._wires(READY)

    def _say(self, *lines):
        self.send(DATA, "".join(f"\r\n{line}\r\n" for line in lines).encode("latin-1"))

    def _wires(self, state):
        self.send(NOTICES, WIRES_NOTICE + struct.pack("<H", state))

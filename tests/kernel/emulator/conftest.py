# SPDX-License-Identifier: MIT
"""Shared by the emulator's own tests, which need no guest."""

import socket
import struct

import pytest

from lab.kernel.modems import usbip


class Host:
    """The kernel's end of a plugged device, as far as these tests need one."""

    def __init__(self, device):
        self._socket = device.connect()
        self._socket.settimeout(10)
        self._number = 0

    def submit(self, endpoint, data=b"", length=None, setup=bytes(8)):
        """Sends a request: for `length` bytes in, or for `data` out. Returns its number."""
        self._number += 1
        is_in = length is not None
        header = usbip.SUBMIT_FORM.pack(
            usbip.SUBMIT, self._number, 0, int(is_in), endpoint, 0,
            length if is_in else len(data), 0, 0, 0, setup)
        self._socket.sendall(header + (b"" if is_in else data))
        self._is_in = is_in
        return self._number

    def unlink(self, target):
        self._number += 1
        self._socket.sendall(usbip.UNLINK_FORM.pack(usbip.UNLINK, self._number, 0, 0, 0, target))
        return self._number

    def reply(self, is_in=False):
        """Command, number, status and bytes of the next reply."""
        header = self._receive(usbip.HEADER_SIZE)
        command, number, *_, status = struct.unpack_from(">5Ii", header)
        length = struct.unpack_from(">i", header, 24)[0]
        return command, number, status, self._receive(length) if is_in else b""

    def control(self, kind, request, value=0, index=0, length=0, data=b""):
        """A control request; the bytes that came, or None when it was refused."""
        setup = struct.pack("<BBHHH", kind, request, value, index, length or len(data))
        is_in = bool(kind & 0x80)
        self.submit(0, data, length if is_in else None, setup)
        _, _, status, answer = self.reply(is_in)
        return None if status else answer

    def write(self, endpoint, data):
        self.submit(endpoint, data)
        return self.reply()[2]

    def read(self, endpoint, length=4096):
        self.submit(endpoint, length=length)
        return self.reply(is_in=True)[3]

    def close(self):
        self._socket.close()

    def is_silent(self):
        """Whether nothing more comes for a moment."""
        self._socket.settimeout(0.1)
        try:
            return not self._socket.recv(1, socket.MSG_PEEK)
        except TimeoutError:
            return True
        finally:
            self._socket.settimeout(10)

    def _receive(self, count):
        data = b""
        while len(data) < count:
            data += self._socket.recv(count - len(data))
        return data


@pytest.fixture
def host():
    """Plugs devices in: host(device) is the kernel's end."""
    made = []

    def plug(device):
        made.append(Host(device))
        return made[-1]

    yield plug
    for one in made:
        one.close()

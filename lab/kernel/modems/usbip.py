# SPDX-License-Identifier: MIT
"""The framing of USB requests between the kernel's virtual host controller and a device.

Every message is a header of 48 bytes, big-endian, and the bytes that go out or come in.
"""

import struct
from dataclasses import dataclass

HEADER_SIZE = 48

SUBMIT, UNLINK, SUBMITTED, UNLINKED = 1, 2, 3, 4
DIRECTION_IN = 1

STALLED = -32  # EPIPE
CANCELLED = -104  # ECONNRESET

# command, number, device, direction, endpoint; flags, length, frame, packets, interval, setup
SUBMIT_FORM = struct.Struct(">5I Iiiii 8s")
UNLINK_FORM = struct.Struct(">5I I 24x")
# ...; status, length, frame, packets, errors
SUBMITTED_FORM = struct.Struct(">5I 5i 8x")
UNLINKED_FORM = struct.Struct(">5I i 24x")

# Far more than any driver asks for at once; whatever is longer is no framing of ours.
LONGEST_TRANSFER = 1 << 20


class FramingError(Exception):
    """Bytes that are no message of this protocol."""


@dataclass(frozen=True)
class Submit:
    """One USB request: `data` goes out, or up to `length` bytes are to come in."""

    number: int
    endpoint: int
    is_in: bool
    length: int
    setup: bytes
    data: bytes = b""


@dataclass(frozen=True)
class Unlink:
    """Takes back the request with the number `target`."""

    number: int
    target: int


class Reader:
    """Cuts a byte stream into requests, however the stream is split."""

    def __init__(self):
        self._waiting = b""

    def feed(self, data):
        """Returns the requests that are complete now, in order."""
        self._waiting += data
        requests = []
        while (size := self._size_of_first()) is not None and len(self._waiting) >= size:
            requests.append(parse(self._waiting[:size]))
            self._waiting = self._waiting[size:]
        return requests

    def _size_of_first(self):
        if len(self._waiting) < HEADER_SIZE:
            return None
        command, _, _, direction = struct.unpack_from(">4I", self._waiting)
        if command == UNLINK:
            return HEADER_SIZE
        if command != SUBMIT:
            raise FramingError(f"unknown command {command}")
        length = struct.unpack_from(">i", self._waiting, 24)[0]
        if not 0 <= length <= LONGEST_TRANSFER:
            raise FramingError(f"impossible length {length}")
        return HEADER_SIZE + (0 if direction == DIRECTION_IN else length)


def parse(message):
    """The request in one whole message."""
    if struct.unpack_from(">I", message)[0] == UNLINK:
        fields = UNLINK_FORM.unpack(message[:HEADER_SIZE])
        return Unlink(number=fields[1], target=fields[5])
    fields = SUBMIT_FORM.unpack(message[:HEADER_SIZE])
    return Submit(number=fields[1], endpoint=fields[4], is_in=fields[3] == DIRECTION_IN,
                  length=fields[6], setup=fields[10], data=message[HEADER_SIZE:])


def answer(request, data=b"", status=0):
    """The reply to a Submit: the bytes that came in, or that all bytes went out."""
    went = len(data) if request.is_in else (0 if status else request.length)
    header = SUBMITTED_FORM.pack(SUBMITTED, request.number, 0, 0, 0, status, went, 0, 0, 0)
    return header + (data if request.is_in else b"")


def unlinked(request, was_pending):
    """The reply to an Unlink; a request that is already answered is not taken back."""
    return UNLINKED_FORM.pack(UNLINKED, request.number, 0, 0, 0, CANCELLED if was_pending else 0)

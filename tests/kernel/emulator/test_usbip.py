# SPDX-License-Identifier: MIT
"""The framing between the kernel's virtual host controller and a device."""

import struct

import pytest

from lab.kernel.modems import usbip

# Written down from the kernel's side of a socket: a request for the device descriptor.
GET_DESCRIPTOR = bytes.fromhex(
    "00000001 00000007 00010001 00000001 00000000"
    "00000200 00000040 00000000 00000000 00000000 8006000100004000")
COMMAND_OUT = bytes.fromhex(
    "00000001 00000008 00010001 00000000 00000001"
    "00000000 00000004 00000000 00000000 00000000 0000000000000000") + b"\x90abc"
TAKE_BACK = bytes.fromhex(
    "00000002 00000009 00010001 00000000 00000000 00000007") + bytes(24)


def test_a_request_for_bytes_is_understood():
    request, = usbip.Reader().feed(GET_DESCRIPTOR)
    assert request == usbip.Submit(number=7, endpoint=0, is_in=True, length=64,
                                   setup=bytes.fromhex("8006000100004000"))


def test_a_request_with_bytes_is_understood():
    request, = usbip.Reader().feed(COMMAND_OUT)
    assert (request.endpoint, request.is_in, request.data) == (1, False, b"\x90abc")


def test_taking_a_request_back_is_understood():
    assert usbip.Reader().feed(TAKE_BACK) == [usbip.Unlink(number=9, target=7)]


def test_the_stream_may_be_split_at_every_byte():
    stream = GET_DESCRIPTOR + COMMAND_OUT + TAKE_BACK + COMMAND_OUT
    whole = usbip.Reader().feed(stream)
    assert len(whole) == 4
    reader = usbip.Reader()
    assert [request for at in range(len(stream))
            for request in reader.feed(stream[at:at + 1])] == whole
    for at in range(len(stream)):
        reader = usbip.Reader()
        assert reader.feed(stream[:at]) + reader.feed(stream[at:]) == whole


@pytest.mark.parametrize("position, value", [(0, 99), (24, 1 << 30), (24, 0xFFFFFFFF)])
def test_what_is_no_request_is_refused(position, value):
    message = bytearray(COMMAND_OUT)
    struct.pack_into(">I", message, position, value)
    with pytest.raises(usbip.FramingError):
        usbip.Reader().feed(bytes(message))


def test_an_answer_with_bytes_tells_their_number():
    request, = usbip.Reader().feed(GET_DESCRIPTOR)
    message = usbip.answer(request, b"hello")
    assert message[:28] == bytes.fromhex(
        "00000003 00000007 00000000 00000000 00000000 00000000 00000005")
    assert message[48:] == b"hello"


def test_an_answer_to_bytes_tells_that_all_went():
    request, = usbip.Reader().feed(COMMAND_OUT)
    assert usbip.answer(request)[20:28] == bytes.fromhex("00000000 00000004")
    assert len(usbip.answer(request)) == usbip.HEADER_SIZE


def test_a_refusal_tells_that_nothing_went():
    request, = usbip.Reader().feed(COMMAND_OUT)
    assert usbip.answer(request, status=usbip.STALLED)[20:28] == struct.pack(">ii", -32, 0)


@pytest.mark.parametrize("was_pending, status", [(True, -104), (False, 0)])
def test_only_a_pending_request_counts_as_taken_back(was_pending, status):
    request, = usbip.Reader().feed(TAKE_BACK)
    message = usbip.unlinked(request, was_pending)
    assert len(message) == usbip.HEADER_SIZE
    assert struct.unpack_from(">5Ii", message) == (4, 9, 0, 0, 0, status)

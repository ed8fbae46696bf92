# SPDX-License-Identifier: MIT
"""Each modem's commands, as its driver sends them."""

import struct

import pytest

from lab.kernel.modems import cells, cxacru, eagle, speedtch
from lab.kernel.modems.line import Line, State
from lab.waiting import wait_until

SHORT = ((State.INITIALIZING, 0.01),)
CELL = bytes.fromhex("0080023000") + bytes(48)


def until_up(line):
    wait_until(lambda: line.state is State.UP, what="the line is up")


# cxacru

def command(plugged, number):
    plugged.write(cxacru.COMMANDS, bytes([number]).ljust(64, b"\0"))
    return plugged.read(cxacru.COMMANDS)


def test_cxacru_repeats_each_command_and_tells_success(host):
    plugged = host(cxacru.Cxacru(Line(SHORT)))
    for number in (cxacru.CARD_STATUS, cxacru.CARD_ADDRESS, cxacru.START_LINE):
        answer = command(plugged, number)
        assert (len(answer), answer[0], answer[1]) == (64, number, 1)


def test_cxacru_tells_line_state_and_rates_in_packets_of_seven(host):
    line = Line(SHORT)
    plugged = host(cxacru.Cxacru(line))
    command(plugged, cxacru.START_LINE)
    until_up(line)
    answer = command(plugged, cxacru.CARD_INFO)
    assert len(answer) == 4 * 64
    values = {}
    for at in range(0, len(answer), 64):
        count = struct.unpack_from("<I", answer, at + 4)[0]
        assert count == 7
        for pair in range(count):
            index, value = struct.unpack_from("<II", answer, at + 8 + 8 * pair)
            values[index] = value
    assert sorted(values) == list(range(0x1C))
    assert (values[0], values[1], values[3]) == (8128, 832, 5)


def test_cxacru_without_firmware_answers_nothing_until_it_has_jumped_into_it(host):
    plugged = host(cxacru.Cxacru(Line(SHORT), has_firmware=False))
    plugged.write(cxacru.COMMANDS, bytes([cxacru.CARD_STATUS]).ljust(64, b"\0"))
    number = plugged.submit(cxacru.COMMANDS, length=64)
    assert plugged.is_silent()
    plugged.unlink(number)
    plugged.reply()
    plugged.write(cxacru.COMMANDS, bytes([cxacru.JUMP]).ljust(64, b"\0"))
    assert command(plugged, cxacru.CARD_STATUS)[1] == 1


def test_cxacru_carries_cells_in_slots_of_64_and_56_bytes(host):
    line = Line(SHORT)
    line.state = State.UP
    there = []
    line.to_exchange = there.append
    plugged = host(cxacru.Cxacru(line))
    plugged.write(cxacru.DATA, cells.padded(CELL, 11) * 2)
    assert there == [CELL, CELL]
    line.from_exchange(CELL)
    assert plugged.read(cxacru.DATA) == CELL + bytes(3)


# speedtch

def speedtch_status(plugged, value, length):
    return plugged.control(0xC0, 0x12, value, 0, length)


def test_speedtch_tells_its_state_and_announces_the_change(host):
    line = Line(((State.INITIALIZING, 0.2),))
    plugged = host(speedtch.Speedtch(line))
    assert speedtch_status(plugged, speedtch.STATE, 1) == b"\x00"
    assert speedtch_status(plugged, speedtch.START, 2) == b"\0\0"
    assert speedtch_status(plugged, speedtch.STATE, 1) == b"\x10"
    until_up(line)
    assert plugged.read(speedtch.NOTICES, 16) == speedtch.UP_NOTICE
    assert speedtch_status(plugged, speedtch.STATE, 1) == b"\x20"
    assert speedtch_status(plugged, speedtch.RATES, 8) == struct.pack("<II", 8128, 832)
    line.drop()
    assert plugged.read(speedtch.NOTICES, 16) == speedtch.DOWN_NOTICE


def test_speedtch_is_not_started_twice(host):
    line = Line(((State.INITIALIZING, 30),))
    plugged = host(speedtch.Speedtch(line))
    speedtch_status(plugged, speedtch.START, 2)
    run = line._run
    speedtch_status(plugged, speedtch.START, 2)
    assert line._run == run


def test_speedtch_without_firmware_refuses_until_both_parts_are_there(host):
    plugged = host(speedtch.Speedtch(Line(SHORT), has_firmware=False))
    for part in (1, 2):
        assert speedtch_status(plugged, speedtch.STATE, 1) is None
        for _ in range(2):  # a part may come in pieces
            assert plugged.write(speedtch.FIRMWARE, bytes(4096)) == 0
        if part == 1:
            assert speedtch_status(plugged, speedtch.STATE, 1) is None
        assert len(plugged.read(speedtch.FIRMWARE, 0x200)) == 0x200
    assert speedtch_status(plugged, speedtch.STATE, 1) == b"\x00"


def test_speedtch_may_refuse_its_firmware(host):
    plugged = host(speedtch.Speedtch(Line(SHORT), has_firmware=False, takes_firmware=False))
    assert plugged.write(speedtch.FIRMWARE, bytes(64)) == -32


# eagle

def older_request(plugged, function, variable, offset, value=0, index=7):
    body = struct.pack("<HBBHIHI", 0x535C, 0x10, function, index, eagle.name(variable), offset,
                       eagle.swapped(value))
    plugged.control(0x40, 0, eagle.Older.set_block, 0, data=body)
    notice = plugged.read(eagle.NOTICES, 28)
    assert len(notice) == 28
    assert notice[0] == 0x08 and struct.unpack_from("<H", notice, 8)[0] == 2
    preamble, direction, answered, at, name, where, data = struct.unpack_from(
        "<HBBHIHI", notice, 10)
    assert (preamble, direction, answered) == (0x535C, 0x01, function | 2)
    assert (at, name, where) == (index, eagle.name(variable), offset)
    return eagle.swapped(data)


def newer_request(plugged, function, group, address, offset, value=0):
    body = struct.pack(">HHHH6I", group, function, offset, address, value, 0, 0, 0, 0, 0)
    plugged.control(0x40, 0, eagle.Newer.set_block, 0, data=body)
    notice = plugged.read(eagle.NOTICES, 64)
    assert struct.unpack_from(">HHHH", notice, 10) == (group, function | 0x10, offset, address)
    return struct.unpack_from(">I", notice, 18)[0]


def test_the_older_eagle_answers_variables_and_trains_when_told(host):
    line = Line(SHORT)
    plugged = host(eagle.Eagle(eagle.Older, line))
    assert older_request(plugged, 0x10, "STAT", 0) >> 8 == 0
    older_request(plugged, 0x11, "CNTL", 0, 2)
    until_up(line)
    assert older_request(plugged, 0x10, "STAT", 0) >> 8 & 0xF == 2
    assert older_request(plugged, 0x10, "RATE", 0) >> 16 == 8128 // 32
    line.drop()
    assert older_request(plugged, 0x10, "STAT", 0) >> 8 & 0xF == 3


def test_the_newer_eagle_answers_variables_and_trains_when_told(host):
    line = Line(SHORT)
    plugged = host(eagle.Eagle(eagle.Newer, line))
    assert newer_request(plugged, 0x001, 2, 0, 0) == 0
    newer_request(plugged, 0x041, 1, 0, 0, 2)
    until_up(line)
    assert newer_request(plugged, 0x001, 2, 0, 0) == 7
    assert newer_request(plugged, 0x004, 6, 1, 0) == 8_128_000
    plugged.control(0x40, 0, eagle.SET_MODE, eagle.START_RESET)
    assert newer_request(plugged, 0x001, 2, 0, 0) == 0


def test_the_older_eagle_is_ready_after_the_last_blocks_bytes(host):
    plugged = host(eagle.Eagle(eagle.Older, Line(SHORT)))
    plugged.write(eagle.PROGRAM, struct.pack("<6H", 0xABCD, 0, 2, 0x8000, 0, 1))
    number = plugged.submit(eagle.NOTICES, length=28)
    assert plugged.is_silent()
    plugged.unlink(number)
    plugged.reply()
    plugged.write(eagle.PROGRAM, b"\0\0")
    assert plugged.read(eagle.NOTICES, 28)[13] == 0x71


def test_the_newer_eagle_is_ready_after_the_starting_header(host):
    plugged = host(eagle.Eagle(eagle.Newer, Line(SHORT)))
    plugged.write(eagle.PROGRAM, struct.pack(">HBBIIH", 0xABCD, 0, 0xFF, 0, 0, 0xFFFF))
    assert struct.unpack_from(">H", plugged.read(eagle.NOTICES, 64), 12)[0] == 0xF11


def test_the_eagle_before_its_firmware_comes_back_when_its_reset_is_released(host):
    booted = []
    plugged = host(eagle.EagleBoot(eagle.Newer, lambda: booted.append(True)))
    plugged.control(0x40, eagle.LOAD_MEMORY, eagle.RESET_REGISTER, data=b"\x01")
    plugged.control(0x40, eagle.LOAD_MEMORY, 0x0000, data=b"\x00")
    assert not booted
    plugged.control(0x40, eagle.LOAD_MEMORY, eagle.RESET_REGISTER, data=b"\x00")
    wait_until(lambda: booted)


def test_the_checksum_is_the_one_of_the_driver():
    assert eagle.checksum(b"123456789") == 0x89A1897F
    assert eagle.checksum(b"\0") == 0


@pytest.mark.parametrize("generation", [eagle.Older, eagle.Newer])
def test_the_firmware_files_have_the_form_that_the_driver_checks(generation):
    files = eagle.firmware_files(generation)
    boot = files[f"eagle{generation.chip}.fw"]
    assert struct.unpack_from("<I", boot)[0] == eagle.checksum(boot[4:])
    if generation is eagle.Newer:
        assert len(files["DSP4p.bin"]) == 1280
    for name, content in files.items():
        if name.startswith("CMV"):
            assert content[:4] == b"cmv2" and len(content) == 9

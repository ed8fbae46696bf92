# SPDX-License-Identifier: MIT
"""Descriptors, the common part of all devices, cells and the controller's ports."""

import struct

import pytest

from lab.kernel.modems import cells, cxacru, eagle, exchange, speedtch, vhci
from lab.kernel.modems.descriptors import Description, Endpoint, Interface
from lab.kernel.modems.device import UsbDevice
from lab.kernel.modems.line import Line, State
from lab.waiting import wait_until


def simple_description():
    return Description(vendor=0x1234, product=0x5678, product_name="Ä modem", serial="42",
                       interfaces=(Interface(0, (Endpoint(0x81), Endpoint(0x02))),
                                   Interface(1), Interface(1, (Endpoint(0x83),), setting=1)))


class Recorder(UsbDevice):
    def __init__(self):
        super().__init__(simple_description())
        self.got = []

    def received(self, endpoint, data):
        self.got.append((endpoint, data))


class Stream(Recorder):
    stream_endpoints = (1,)


def test_the_device_descriptor_names_the_device():
    device = simple_description().device()
    assert len(device) == device[0] == 18
    assert struct.unpack_from("<HH", device, 8) == (0x1234, 0x5678)


def test_the_configuration_counts_its_length_and_its_interfaces_but_not_their_settings():
    configuration = simple_description().configuration()
    assert struct.unpack_from("<H", configuration, 2)[0] == len(configuration)
    assert configuration[4] == 2
    assert len(configuration) == 9 + 3 * 9 + 3 * 7


@pytest.mark.parametrize("description", [
    cxacru.Cxacru(Line()).description, speedtch.Speedtch(Line()).description,
    eagle.Eagle(eagle.Newer, Line()).description, eagle.Eagle(eagle.Older, Line()).description,
    eagle.EagleBoot(eagle.Newer, print).description, exchange.Exchange(Line()).description])
def test_every_modems_configuration_can_be_walked_to_its_end(description):
    configuration = description.configuration()
    at = 0
    while at < len(configuration):
        assert configuration[at] >= 2
        at += configuration[at]
    assert at == len(configuration)


def test_strings_are_told_in_utf16_and_missing_ones_refused(host):
    plugged = host(Recorder())
    name = plugged.control(0x80, 6, 0x0301, 0x0409, 255)
    assert name == b"\x10\x03" + "Ä modem".encode("utf-16-le")
    assert plugged.control(0x80, 6, 0x0304, 0x0409, 255) is None


def test_a_descriptor_is_cut_to_what_was_asked_for(host):
    assert len(host(Recorder()).control(0x80, 6, 0x0100, 0, 8)) == 8


def test_a_setting_that_does_not_exist_is_refused(host):
    plugged = host(Recorder())
    assert plugged.control(0x01, 11, 1, 1) == b""
    assert plugged.control(0x81, 10, 0, 1, 1) == b"\x01"
    assert plugged.control(0x01, 11, 7, 1) is None


def test_bytes_out_reach_the_device(host):
    device = Recorder()
    assert host(device).write(2, b"cells") == 0
    assert device.got == [(2, b"cells")]


def test_bytes_wait_for_the_hosts_request_and_the_request_for_bytes(host):
    device = Recorder()
    plugged = host(device)
    device.send(1, b"early")
    assert plugged.read(1) == b"early"
    plugged.submit(1, length=64)
    assert plugged.is_silent()
    device.send(1, b"late")
    assert plugged.reply(is_in=True)[3] == b"late"


def test_messages_are_not_joined_and_too_long_ones_are_split(host):
    device = Recorder()
    plugged = host(device)
    device.send(1, b"one")
    device.send(1, b"second")
    device.send(1, b"third")
    assert [plugged.read(1), plugged.read(1, 4), plugged.read(1)] == [b"one", b"seco", b"nd"]
    assert plugged.read(1) == b"third"


def test_a_stream_fills_each_request(host):
    device = Stream()
    plugged = host(device)
    for _ in range(5):
        device.send(1, bytes(53))
    assert [len(plugged.read(1, 128)) for _ in range(3)] == [106, 106, 53]


def test_a_pending_request_can_be_taken_back_and_an_answered_one_cannot(host):
    device = Recorder()
    plugged = host(device)
    number = plugged.submit(1, length=64)
    taken = plugged.unlink(number)
    assert plugged.reply()[:3] == (4, taken, -104)
    device.send(1, b"for the next one")
    assert plugged.read(1) == b"for the next one"
    taken = plugged.unlink(number)
    assert plugged.reply()[:3] == (4, taken, 0)


def test_an_unplugged_device_forgets_what_it_had_queued(host):
    device = Recorder()
    host(device).close()
    wait_until(lambda: device._socket is None, what="the device has noticed")
    device.send(1, b"lost")
    plugged = host(device)
    plugged.submit(1, length=64)
    assert plugged.is_silent()


@pytest.mark.parametrize("padding", [0, 3, 11])
def test_cells_survive_their_slots(padding):
    some = [bytes([number]) * cells.CELL for number in range(3)]
    assert cells.split(b"".join(cells.padded(cell, padding) for cell in some), padding) == some


def test_a_cell_names_its_circuit():
    assert cells.circuit(bytes.fromhex("0080023000") + bytes(48)) == (8, 35)


def test_free_ports_are_read_from_the_controllers_status():
    status = ("hub port sta spd dev      sockfd local_busid\n"
              "hs  0000 006 002 00010001 000003 1-1\n"
              "hs  0001 004 000 00000000 000000 0-0\n"
              "ss  0008 004 000 00000000 000000 0-0\n")
    assert vhci.free_ports(status) == [1]


def test_plugging_and_unplugging_tell_the_controller(tmp_path):
    (tmp_path / "status").write_text("hub\nhs  0003 004 000 00000000 000000 0-0\n")
    (tmp_path / "attach").touch()
    (tmp_path / "detach").touch()
    there = vhci.Socket(tmp_path)
    there.plug(Recorder())
    assert (tmp_path / "attach").read_text().split()[::2] == ["3", str(0x10004)]
    there.unplug()
    there.unplug()
    assert (tmp_path / "detach").read_text() == "3"


def test_a_line_goes_through_its_training_and_comes_up():
    line = Line(((State.INITIALIZING, 0.01), (State.TRAINING, 0.01)))
    seen = []
    line.on_change = seen.append
    line.start()
    wait_until(lambda: line.state is State.UP)
    assert seen == [State.INITIALIZING, State.INITIALIZING, State.TRAINING, State.UP]


def test_a_line_that_does_not_come_up_stays_activating_until_it_may():
    line = Line(((State.INITIALIZING, 0.01), (State.ACTIVATING, 0.01), (State.TRAINING, 0.01)))
    line.comes_up = False
    line.start()
    wait_until(lambda: line.state is State.ACTIVATING)
    line.come_up()
    wait_until(lambda: line.state is State.UP)


def test_a_line_that_does_not_come_up_ends_with_the_last_state_of_its_training():
    line = Line(((State.INITIALIZING, 0.01),))
    line.comes_up = False
    line.start()
    line._train(1)
    assert line.state is State.INITIALIZING


def test_a_dropped_line_does_not_come_up_by_an_old_training():
    line = Line(((State.INITIALIZING, 0.05),))
    seen = []
    line.on_change = seen.append
    line.start()
    line.drop()
    line.start()
    wait_until(lambda: line.state is State.UP)
    line.drop()
    assert seen.count(State.UP) == 1
    line._train(1)  # one that was late to notice
    assert line.state is State.DOWN


def test_cells_pass_only_while_the_line_is_up_and_not_cut():
    line = Line(())
    there, back = [], []
    line.to_exchange, line.to_modem = there.append, back.append
    line.from_modem(b"before")
    line.state = State.UP
    line.from_modem(b"up")
    line.from_exchange(b"down")
    line.cut = True
    line.from_modem(b"cut")
    assert (there, back) == ([b"up"], [b"down"])

# SPDX-License-Identifier: MIT
"""The mobile phone's modem, without a kernel."""

import socket

import pytest

from lab.kernel.modems import phone

WIRES = 0x21, 0x22


@pytest.fixture(name="network")
def network_fixture():
    """Both ends of the one call that is answered."""
    near, far = socket.socketpair()
    far.settimeout(10)
    yield near, far
    near.close()
    far.close()


def asked(plugged, command):
    assert plugged.write(phone.DATA, command.encode() + b"\r") == 0
    return plugged.read(phone.DATA).decode().split()


def notice(plugged):
    return plugged.read(phone.NOTICES)[8]


def test_its_configuration_tells_of_a_modem_and_can_be_walked_to_its_end():
    configuration = phone.Phone(print).description.configuration()
    at, kinds = 0, []
    while at < len(configuration):
        assert configuration[at] >= 2
        if configuration[at + 1] == 4:  # an interface
            kinds.append(tuple(configuration[at + 5:at + 8]))
        at += configuration[at]
    assert at == len(configuration) and kinds == [phone.AT_COMMANDS, (phone.DATA_CLASS, 0, 0)]


@pytest.mark.parametrize("command, answer", [
    ("AT", ["OK"]), ("ATE0", ["OK"]), ("at+cpin?", ["+CPIN:", "READY", "OK"]), ("AT+NONSENSE", ["ERROR"]),
    ('AT+CGDCONT=1,"IP","internet"', ["OK"])])
def test_commands_are_answered(host, command, answer):
    assert asked(host(phone.Phone(print)), command) == answer


def test_a_command_may_come_in_pieces(host):
    plugged = host(phone.Phone(print))
    plugged.write(phone.DATA, b"A")
    plugged.write(phone.DATA, b"T\r")
    assert plugged.read(phone.DATA) == b"\r\nOK\r\n"


def test_a_call_carries_bytes_until_the_network_ends_it(host, network):
    near, far = network
    modem = phone.Phone(lambda: near)
    plugged = host(modem)
    assert asked(plugged, "ATD*99***1#") == ["CONNECT"]
    assert notice(plugged) & phone.CARRIER
    plugged.write(phone.DATA, b"AT\r")  # no command now
    assert far.recv(100) == b"AT\r"
    far.sendall(b"there")
    assert plugged.read(phone.DATA) == b"there"
    far.close()
    assert plugged.read(phone.DATA).split() == [b"NO", b"CARRIER"]
    assert not notice(plugged) & phone.CARRIER
    assert asked(plugged, "AT") == ["OK"] and modem.commands == ["ATD*99***1#", "AT"]


def test_a_host_that_lets_its_wire_go_hangs_up(host, network):
    near, far = network
    plugged = host(phone.Phone(lambda: near))
    asked(plugged, "ATD*99#")
    assert plugged.control(*WIRES, phone.HOST_IS_THERE) == b""
    far.sendall(b"x")
    assert plugged.read(phone.DATA) == b"x"
    assert plugged.control(*WIRES, 0) == b""
    assert far.recv(100) == b""


def test_a_call_that_nobody_answers_is_none(host):
    assert asked(host(phone.Phone(lambda: None)), "ATD*99#") == ["NO", "CARRIER"]

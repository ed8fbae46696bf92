# SPDX-License-Identifier: MIT
"""The settings file, read and written over the bus."""
import os
import time

import pytest
from machine_fixtures import ROOT_ONLY

from lab.waiting import wait_for_line, wait_until

INI = "/opt/norvix/.daemon_ng.ini"


def test_without_a_file_every_default_is_answered(bus_machine):
    bus_machine.start_daemon()
    client = bus_machine.client()
    for method in ("getVPI", "getVCI", "getProtocol", "getService"):
        assert client.call(method) == "error", method
    assert client.call("getConnectAtBoot") is False
    assert client.call("getConnectAtModemPlug") is False
    assert client.call("getIdlenessTime") == 0
    assert not bus_machine.path(INI).exists()


def test_line_parameters_are_read(bus_machine):
    bus_machine.settings(vpi=8, vci=35, protocol="PPPoE", service="Tele Two")
    bus_machine.start_daemon()
    client = bus_machine.client()
    assert [client.call(method) for method in ("getVPI", "getVCI", "getProtocol", "getService")] == [
        "8", "35", "PPPoE", "Tele Two"]


def test_a_comma_typed_by_hand_loses_nothing(bus_machine):
    bus_machine.settings(service="Tele, Two")
    bus_machine.start_daemon()
    assert bus_machine.client().call("getService") == "Tele, Two"


@pytest.mark.parametrize("setter,getter,values,key", [
    ("setConnectAtBoot", "getConnectAtBoot", (True, False), "connect_at_boot"),
    ("setConnectAtModemPlug", "getConnectAtModemPlug", (True, False), "connect_at_modem_plug"),
    ("setIdlenessTime", "getIdlenessTime", (7, 0, -1, 2147483647, -2147483648), "idleness"),
])
def test_what_is_set_is_read_and_reaches_the_disk(bus_machine, setter, getter, values, key):
    bus_machine.start_daemon()
    client = bus_machine.client()
    for value in values:
        assert client.call(setter, value) is None
        assert client.call(getter) == value
        wait_for_line(bus_machine.path(INI), "^%s=%s$" % (key, str(value).lower()))


def test_settings_survive_a_restart(bus_machine):
    daemon = bus_machine.start_daemon()
    client = bus_machine.client()
    client.call("setConnectAtBoot", True)
    client.call("setIdlenessTime", 42)
    wait_for_line(bus_machine.path(INI), "^idleness=42$")
    daemon.stop()
    bus_machine.start_daemon()
    assert client.call("getConnectAtBoot") is True
    assert client.call("getIdlenessTime") == 42


def test_what_others_wrote_is_kept_when_the_daemon_writes(bus_machine):
    bus_machine.settings(vpi=8, protocol="PPPoE", of_somebody_else="kept")
    bus_machine.start_daemon()
    bus_machine.client().call("setIdlenessTime", 3)
    wait_for_line(bus_machine.path(INI), "^idleness=3$")
    text = bus_machine.path(INI).read_text(encoding="ascii")
    assert "vpi=8\n" in text and "protocol=PPPoE\n" in text and "of_somebody_else=kept\n" in text


@ROOT_ONLY
def test_the_file_keeps_its_owner_and_mode(bus_machine):
    bus_machine.settings(vpi=8)
    os.chown(bus_machine.path(INI), 1000, 1001)
    bus_machine.path(INI).chmod(0o640)
    bus_machine.start_daemon()
    bus_machine.client().call("setIdlenessTime", 3)
    wait_for_line(bus_machine.path(INI), "^idleness=3$")
    wait_until(lambda: bus_machine.path(INI).stat().st_uid == 1000, what="the owner is back")
    status = bus_machine.path(INI).stat()
    assert (status.st_uid, status.st_gid, status.st_mode & 0o777) == (1000, 1001, 0o640)


@pytest.mark.parametrize("content", [b"", b"123\nhost\nprog\n"])
def test_a_lock_that_a_killed_daemon_left_does_not_delay_writing(bus_machine, content):
    for suffix in (".lock", ".lock.rmlock"):
        bus_machine.path(INI + suffix).write_bytes(content)
    bus_machine.start_daemon()
    client = bus_machine.client()
    begun = time.monotonic()
    client.call("setIdlenessTime", 3)
    wait_for_line(bus_machine.path(INI), "^idleness=3$")
    client.call("reply")
    assert time.monotonic() - begun < 20  # the library would wait 32 s for it


def test_start_logs_each_key_with_its_value(bus_machine):
    bus_machine.settings(vpi=8, protocol="PPPoE", modem="50%2 off")
    bus_machine.start_daemon()
    log = bus_machine.daemon_log()
    for text in ("modem = 50%2 off", "protocol = PPPoE", "vpi = 8"):
        assert "NorvixDaemon::NorvixDaemon(): daemon.ini: %s\n" % text in log


def test_a_list_is_logged_as_the_getter_answers_it(bus_machine):
    bus_machine.settings(service="a,b", pppd_arguments="mtu, 1400")
    bus_machine.start_daemon()
    assert bus_machine.client().call("getService") == "a, b"
    log = bus_machine.daemon_log()
    assert "NorvixDaemon::NorvixDaemon(): daemon.ini: service = a, b\n" in log
    assert "NorvixDaemon::NorvixDaemon(): daemon.ini: pppd_arguments = mtu, 1400\n" in log


def test_a_change_by_hand_is_seen_when_a_connection_starts(bus_machine):
    bus_machine.kernel_log.line_up()
    bus_machine.settings(pppd_arguments="before")
    bus_machine.start_daemon()
    bus_machine.settings(pppd_arguments="after, twice")
    bus_machine.client().call("establishConnection")
    assert bus_machine.wait_call("pppd").argv == [
        "debug", "linkname", "norvix", "call", "norvix", "after", "twice"]


@pytest.mark.parametrize("content", [b"\x00\xff\xfe garbage", b"[General\nvpi=1", b"=\n=\n[]\n",
                                     b"vpi=" + b"9" * 1000000],
                         ids=["garbage", "no end", "no keys", "one long line"])
def test_a_damaged_file_stops_nobody(bus_machine, content):
    bus_machine.path(INI).write_bytes(content)
    bus_machine.start_daemon()
    client = bus_machine.client()
    client.call("getVPI")
    client.call("setIdlenessTime", 1)
    assert client.call("getIdlenessTime") == 1


HUGE_LIST = b"@Variant(\\0\\0\\0\\t\\x7f\\xff\\xff\\xff)"
NESTED_LISTS = b"@Variant(" + b"\\0\\0\\0\\t\\0\\0\\0\\x1" * 300000 + b")"


def test_a_value_that_is_no_plain_one_is_not_decoded_and_not_lost(bus_machine):
    line = b"modem=" + HUGE_LIST + b"\n"
    bus_machine.path(INI).write_bytes(b"[General]\n" + line + b"vpi=8\n")
    bus_machine.start_daemon()
    client = bus_machine.client()
    assert client.call("getVPI") == "8"
    client.call("setIdlenessTime", 3)
    wait_for_line(bus_machine.path(INI), "^idleness=3$")
    assert line in bus_machine.path(INI).read_bytes()


@pytest.mark.parametrize("value", [NESTED_LISTS, b"8\n" + b"".join(
    b"k%d=\n" % number for number in range(2000000))], ids=["nested lists", "many keys"])
def test_a_file_too_large_for_settings_is_set_aside_and_that_is_said(bus_machine, value):
    content = b"[General]\nvpi=" + value + b"\n"
    bus_machine.path(INI).write_bytes(content)
    begun = time.monotonic()
    bus_machine.start_daemon()
    client = bus_machine.client()
    assert client.call("getVPI") == "error"
    assert time.monotonic() - begun < 20
    client.call("setIdlenessTime", 3)
    wait_for_line(bus_machine.path(INI), "^idleness=3$")
    assert bus_machine.path(INI + ".set-aside").read_bytes() == content
    assert "Settings: %s is no settings file, and has been set aside as %s.set-aside\n" % (
        INI, INI) in bus_machine.daemon_log()

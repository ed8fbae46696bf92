# SPDX-License-Identifier: MIT
"""The whole interface on the bus: names, types, policy."""
import contextlib
import xml.etree.ElementTree

import pytest
from bus_contract import DAEMON, description, members

from lab.machine.bus_client import INTERFACE, PATH, SERVICE, BusError
from lab.machine.pppd_script import stay
from lab.machine.furnishing import NORVIX_GROUP
from lab.machine.private_machine import ADDRESS_SANITIZER
from lab.waiting import wait_until

DESCRIPTION = description(DAEMON)

ANSWERS = {"s": str, "b": bool, "i": int}
SECRET = "getLoginAndPassword"
METHODS = {method.name: method for method in members(DAEMON, "method")}
# Name and type of the answer; name and arguments of what answers nothing.
READING = {name: ANSWERS[method.back[0][0]] for name, method in METHODS.items()
           if method.back and name != SECRET}
CHANGING = {name: tuple({"b": True, "i": 1, "s": what}[kind] for kind, what in method.given)
            for name, method in METHODS.items() if not method.back}
NOBODY = 65534


def test_the_description_is_served_as_it_stands_in_the_file(bus_machine):
    bus_machine.start_daemon()
    served = bus_machine.client().call_raw(
        "Introspect", interface="org.freedesktop.DBus.Introspectable")
    text = DESCRIPTION.read_text(encoding="ascii")
    begin, end = text.index("  <interface"), text.index("</node>")
    assert text[begin:end] in served


def test_it_lists_26_signals_and_then_24_methods(bus_machine):
    bus_machine.start_daemon()
    node = bus_machine.client().introspect()
    ours = next(child for child in node if child.get("name") == INTERFACE)
    assert [child.tag for child in ours] == ["signal"] * 26 + ["method"] * 24
    names = [child.get("name") for child in ours]
    assert names[:3] == ["transmissionSpeed", "transmissionErrors", "transmissionBytes"]
    assert names[26:29] == ["getIP", "getIP", "getDefaultRoute"]
    assert names[49] == "getLoginAndPassword"


def test_every_reading_method_answers_with_its_type(bus_machine):
    bus_machine.start_daemon()
    client = bus_machine.client()
    for method, kind in READING.items():
        assert type(client.call(method)) is kind, method
    assert client.call("getIP", "lo") == "127.0.0.1"
    assert isinstance(client.call(SECRET), list)


def test_every_changing_method_answers_with_nothing(bus_machine):
    bus_machine.start_daemon()
    client = bus_machine.client()
    for method, arguments in CHANGING.items():
        assert client.call(method, *arguments) is None, method
    assert client.call("reply") is True


def test_no_address_and_an_empty_name_are_the_same_question(bus_machine):
    bus_machine.start_daemon()
    client = bus_machine.client()
    assert client.call("getIP") == client.call("getIP", "") == "..."


@pytest.mark.parametrize("method,signature,arguments", [
    ("setIdlenessTime", "s", ("7",)), ("setIdlenessTime", "u", (7,)), ("setIdlenessTime", "", ()),
    ("setConnectAtBoot", "i", (1,)), ("getIP", "i", (1,)), ("getIP", "ss", ("a", "b")),
    ("setAccountData", "s", ("login",)), ("reply", "s", ("x",)), ("noSuchMethod", "", ()),
    ("writeLog", "s", ("x",)), ("verifyDevice", "", ()), ("deviceAdded", "s", ("x",)),
    ("debugConnecting", "ay", (b"local  IP address 1.2.3.4",)),
])
def test_wrong_arguments_get_the_buss_error_and_change_nothing(bus_machine, method, signature,
                                                               arguments):
    bus_machine.settings(idleness=3)
    bus_machine.start_daemon()
    client = bus_machine.client()
    with pytest.raises(BusError) as error:
        client.call_raw(method, signature, *arguments)
    assert error.value.name in ("org.freedesktop.DBus.Error.UnknownMethod",
                                "org.freedesktop.DBus.Error.InvalidArgs")
    assert client.call("getIdlenessTime") == 3
    assert client.call("getConnectAtBoot") is False
    # What the driver's test at the start sends may still be coming in.
    assert [name for name in client.names() if not name.startswith("compil")] == []


def test_signals_come_from_the_object_with_their_types(bus_machine):
    bus_machine.start_daemon()
    client = bus_machine.client()
    client.call("terminateConnection")
    signal = client.wait_signal("connectionTerminated")
    assert (signal.path, signal.interface, signal.signature) == (PATH, INTERFACE, "")
    assert signal.sender == client.owner_of(SERVICE)
    client.mark()
    assert client.names().count("connectionTerminated") == 1


def test_reply_answers_while_a_connection_is_being_made(bus_machine):
    bus_machine.kernel_log.line_up()
    bus_machine.pppd.script([stay()])
    bus_machine.start_daemon()
    client = bus_machine.client()
    client.call("establishConnection")
    bus_machine.wait_call("pppd")
    for _ in range(100):
        assert client.call("reply") is True
    assert client.call("getConnectionState") == 1


def test_forty_calls_at_once_are_all_answered_in_order(bus_machine):
    bus_machine.start_daemon()
    clients = [bus_machine.client() for _ in range(8)]
    serials = [(client, client.start_call("getIP", "s", "lo")) for _ in range(5)
               for client in clients]
    for client, serial in serials:
        assert client.finish_call(serial).body == ("127.0.0.1",)


def test_a_bus_that_goes_away_does_not_end_the_daemon(bus_machine):
    daemon = bus_machine.start_daemon("-d")
    bus_machine.stop_bus()
    bus_machine.run(["sh", "-c", "cat /proc/%d/stat" % daemon.pid])
    assert daemon.running()
    assert daemon.stop() == 255


# ---- who may call what, by the policy that is shipped

def refused(client, method, arguments=()):
    try:
        client.call(method, *arguments)
        return False
    except BusError as error:
        assert error.name == "org.freedesktop.DBus.Error.AccessDenied", error
        return True


@pytest.fixture(name="guarded")
def guarded_fixture(bus_machine):
    if not bus_machine.rooted:
        pytest.skip("other users need root")
    bus_machine.start_daemon()
    return bus_machine


def test_anybody_may_ask_for_status_and_introspect(guarded):
    client = guarded.client(uid=NOBODY)
    assert [method for method in READING if refused(client, method)] == []
    assert client.introspect() is not None


def test_nobody_may_change_anything_or_read_the_account_without_the_group(guarded):
    client = guarded.client(uid=NOBODY)
    assert [method for method, arguments in CHANGING.items()
            if not refused(client, method, arguments)] == []
    assert refused(client, SECRET)


def test_members_of_the_group_may_do_everything_but_write_the_account_unchecked(guarded):
    client = guarded.client(uid=NOBODY, groups=[NORVIX_GROUP])
    assert [method for method, arguments in CHANGING.items()
            if refused(client, method, arguments)] == ["setAccountData"]
    assert not refused(client, SECRET)


def test_anybody_hears_the_signals(guarded):
    listener = guarded.client(uid=NOBODY)
    guarded.client().call("terminateConnection")
    listener.wait_signal("connectionTerminated")


def test_nobody_but_root_may_own_the_name(guarded):
    with pytest.raises(BusError) as error:
        guarded.client(uid=NOBODY).call_bus("RequestName", "su", SERVICE, 4)
    assert error.value.name == "org.freedesktop.DBus.Error.AccessDenied"


def test_the_installed_description_is_well_formed():
    node = xml.etree.ElementTree.parse(DESCRIPTION).getroot()
    assert [child.get("name") for child in node] == [INTERFACE]


@pytest.mark.skipif(ADDRESS_SANITIZER, reason="the memory checker keeps freed memory on purpose")
def test_the_memory_that_large_calls_took_is_given_back(bus_machine):
    daemon = bus_machine.start_daemon()
    client = bus_machine.client()
    client.call("reply")
    before = bus_machine.memory_kb(daemon.pid)
    others = [bus_machine.client() for _ in range(4)]
    calls = [other.start_call("getIP", "s", "y" * 20_000_000) for other in others]
    for other, call in zip(others, calls):
        with contextlib.suppress(BusError):  # the bus may find that so much is too much
            other.finish_call(call)
    client.call("reply")
    wait_until(lambda: bus_machine.memory_kb(daemon.pid) < before + 4096, what="the memory is given back",
               detail=lambda: "%d kB, %d kB before" % (bus_machine.memory_kb(daemon.pid), before))

# SPDX-License-Identifier: MIT
"""Restarting the modem: which programs run, what is told, what happens to a connection."""
import time

import pytest

from lab.waiting import wait_until

REFUSED = "Norvix_Daemon::restartModem(): Can not restart modem, thread is still running!\n"
# Tells that it has been called and then waits for the test's leave.
HALTING = """#!/bin/sh
touch /run/lab/rmmod-was-called
while [ ! -e /run/lab/go ]; do sleep 0.02; done
"""


def start(machine, **settings):
    """A daemon whose start-up is over, and a client that listens."""
    machine.settings(**settings)
    client = machine.client()
    machine.start_daemon()
    if "product_id" not in settings:
        # No modem is chosen, so there is none whose driver loads: the build thread runs.
        client.wait_signal("compilationFinished")
    client.mark()
    return client


def restart(client):
    """One restart to its end; its signals in order."""
    mark = client.mark()
    client.call("restartModem")
    client.wait_signal("restartModemFinished", after=mark)
    return client.names(mark)


def programs(machine):
    """What ran since the driver test of the start-up."""
    commands = [call.command for call in machine.calls()
                if call.program in ("rmmod", "modprobe", "killall")]
    first_restart = next((number for number, command in enumerate(commands)
                          if command[0] != "modprobe"), len(commands))
    return commands[first_restart:]


def halt_in_rmmod(machine):
    path = machine.path("/usr/local/sbin/rmmod")
    path.unlink()
    path.write_text(HALTING, encoding="ascii")
    path.chmod(0o755)


def wait_for_rmmod(machine):
    wait_until(lambda: machine.path("/run/lab/rmmod-was-called").exists(), what="rmmod runs")


def go_on(machine):
    machine.path("/run/lab/go").touch()


def connect(machine, client):
    mark = client.mark()
    client.call("establishConnection")
    client.wait_signal("connectionEstablished", after=mark)


@pytest.fixture
def connectable(bus_machine):
    """A machine in which connections come up at once."""
    bus_machine.kernel_log.line_up(1394)
    bus_machine.pppd.play("h1-pppoe-over-real-nas0", speed=100)
    return bus_machine


CONNECTION = {"vendor_id": 1394, "product_id": 0xCAFE, "protocol": "PPPoE", "vpi": 8, "vci": 35}


@pytest.mark.parametrize("settings", [{}, {"vendor_id": 0}, {"vendor_id": "none"}],
                         ids=["missing", "zero", "no number"])
def test_without_a_vendor_it_starts_and_finishes_without_running_any_program(bus_machine, settings):
    client = start(bus_machine, **settings)
    assert restart(client) == ["restartModemStarted", "restartModemFinished"]
    assert programs(bus_machine) == []


@pytest.mark.parametrize("vendor_id, module", [
    (4368, "ueagle-atm"), (1721, "speedtch"), (1155, "unicorn_usb_eth"), (1394, "cxacru"),
    (0x100D, "cxacru"), (77, "cxacru"), (-5, "cxacru")])
def test_the_module_of_the_vendor_is_unloaded_and_loaded(bus_machine, vendor_id, module):
    client = start(bus_machine, vendor_id=vendor_id)
    assert restart(client) == ["restartModemStarted", "restartModemFinished"]
    assert programs(bus_machine) == [["rmmod", module], ["modprobe", module]]


@pytest.mark.parametrize("rmmod, modprobe", [
    ({"exit": 1, "stderr": "rmmod: ERROR: Module cxacru is not currently loaded\n"}, {"exit": 1}),
    ({"missing": True}, {}), ({"not_executable": True}, {"missing": True})])
def test_failing_programs_change_nothing_in_what_is_told(bus_machine, rmmod, modprobe):
    client = start(bus_machine, vendor_id=1394)
    bus_machine.standin("rmmod").set(**rmmod)
    bus_machine.standin("modprobe").set(**modprobe)
    before = len(bus_machine.daemon_log())
    loads = len(bus_machine.calls("modprobe"))
    assert restart(client) == ["restartModemStarted", "restartModemFinished"]
    if not modprobe.get("missing"):
        assert len(bus_machine.calls("modprobe")) == loads + 1
    assert bus_machine.daemon_log()[before:] == ""


def test_a_vendor_that_another_program_stored_meanwhile_is_used(bus_machine):
    client = start(bus_machine, vendor_id=4368)
    bus_machine.settings(vendor_id=1721)
    restart(client)
    assert programs(bus_machine) == [["rmmod", "speedtch"], ["modprobe", "speedtch"]]


def test_it_can_be_done_again_and_again(bus_machine):
    client = start(bus_machine, vendor_id=1721)
    for _ in range(3):
        assert restart(client) == ["restartModemStarted", "restartModemFinished"]
    assert programs(bus_machine) == [["rmmod", "speedtch"], ["modprobe", "speedtch"]] * 3


def test_bus_calls_are_answered_while_rmmod_hangs(bus_machine):
    client = start(bus_machine, vendor_id=1394)
    halt_in_rmmod(bus_machine)
    mark = client.mark()
    client.call("restartModem")
    wait_for_rmmod(bus_machine)
    times = []
    for _ in range(100):
        begin = time.monotonic()
        assert client.call("reply") is True
        times.append(time.monotonic() - begin)
    assert max(times) < 5  # if each waited for rmmod, none would come before the leave is given
    assert client.names(mark) == ["restartModemStarted"]
    go_on(bus_machine)
    client.wait_signal("restartModemFinished", after=mark)


def test_a_connection_is_terminated_before_the_module_is_reloaded(connectable):
    client = start(connectable, **CONNECTION)
    connect(connectable, client)
    names = restart(client)
    told = [name for name in names
            if name in ("connectionTerminated", "restartModemStarted", "restartModemFinished")]
    assert told == ["connectionTerminated", "restartModemStarted", "restartModemFinished"]
    assert [command[0] for command in programs(connectable)] == ["killall", "rmmod", "modprobe"]
    wait_until(lambda: client.call("getConnectionState") == 2, what="the interface is gone with pppd")


def test_a_second_restart_is_refused_and_leaves_the_connection_alone(connectable):
    client = start(connectable, **CONNECTION)
    halt_in_rmmod(connectable)
    mark = client.mark()
    client.call("restartModem")
    wait_for_rmmod(connectable)
    connect(connectable, client)
    client.call("restartModem")
    assert connectable.daemon_log().count(REFUSED) == 1
    client.expect_no_signal("connectionTerminated", after=mark)
    assert client.call("getConnectionState") == 0
    go_on(connectable)
    client.wait_signal("restartModemFinished", after=mark)
    client.mark()
    assert len(client.named("restartModemStarted", after=mark)) == 1
    assert len(client.named("restartModemFinished", after=mark)) == 1

# SPDX-License-Identifier: MIT
"""Waiting for the line, and programs that hang: what takes long, and what must not."""
import time

import pytest

from lab.machine.daemon_process import Daemon
from lab.machine.private_machine import USUAL_PATH
from lab.machine.pppd_script import link_up, out, stay, wait_for
from lab.waiting import wait_until
from machine_fixtures import ROOT_ONLY

SPEEDTCH = 0x06B9
PPPOE = {"protocol": "PPPoE", "vpi": 8, "vci": 35}


def answers_until(client, condition, longest=3.0):
    """Calls reply until the condition holds; no answer may take longer than that many seconds."""
    while not condition():
        begun = time.monotonic()
        assert client.call("reply") is True
        assert time.monotonic() - begun < longest
        time.sleep(0.05)


def test_a_line_that_never_synchronises_is_given_up_after_35_seconds(bus_machine):
    bus_machine.settings(vendor_id=SPEEDTCH)
    bus_machine.kernel_log.append("ATM dev 0: ADSL line is synchronising")
    client = bus_machine.client()
    daemon = bus_machine.start_daemon("-d")
    begun = time.monotonic()
    client.call("establishConnection")
    client.wait_signal("synchronizing")
    assert client.call("getConnectionState") == 1
    client.wait_signal("synchronizationFailed", timeout=90)
    assert 34.9 < time.monotonic() - begun < 60
    assert client.wait_signal("connectionState").args == (2,)
    seen = [name for name in client.names() if not name.startswith("compil")]
    assert sorted(seen[:3]) == ["establishingConnection", "setEnabledConnect", "synchronizing"]
    assert seen[3:] == ["setEnabledConnect", "synchronizationFailed", "connectionState"]
    daemon.wait_for_log("ConnectThread::run(): modem synchronization failed, returning!\n")
    assert [line for line in daemon.output().splitlines() if line.startswith("wFS")] == [
        "wFS(): counter == %d" % number for number in range(8)]
    verbose = bus_machine.path("/opt/norvix/daemon_verbose.log").read_text(encoding="ascii")
    assert verbose == (
        "ConnectThread::waitForSynchronization(): counter == 0, emitting the synchronizing signal.\n"
        "ConnectThread::waitForSynchronization(): counter > 6, resetting and returning.\n")
    assert bus_machine.calls("pppd") == []

    # The counter begins anew: the next attempt waits and tells as the first did.
    client.call("establishConnection")
    client.wait_signal("synchronizing", count=2)


def test_a_line_that_trains_connects_when_it_is_up(bus_machine):
    bus_machine.settings(vendor_id=SPEEDTCH)
    bus_machine.kernel_log.append("ATM dev 0: ADSL line is synchronising")
    bus_machine.pppd.script(link_up() + [stay()])
    client = bus_machine.client()
    bus_machine.start_daemon()
    client.call("establishConnection")
    client.wait_signal("synchronizing")
    bus_machine.kernel_log.line_up(SPEEDTCH)
    client.wait_signal("connectionEstablished")
    assert client.names().count("synchronizing") == 1
    synchronizing = client.named("synchronizing")[0]
    established = client.named("connectionEstablished")[0]
    assert established.time - synchronizing.time > 4.5


def test_a_line_that_is_up_is_not_waited_for(bus_machine):
    bus_machine.kernel_log.line_up()
    client = bus_machine.client()
    bus_machine.start_daemon().wait_started()
    client.call("establishConnection")
    client.wait_signal("connectionEstablished")
    assert "synchronizing" not in client.names()


@pytest.mark.parametrize("program,seconds,told", [
    ("modprobe", 5, None),
    ("br2684ctl_amd64", 5, "ConnectThread::prepareBridging(): br2684ctl: failed!"),
    ("ip", 10, "ConnectThread::prepareBridging(): ip: failed!"),
    ("ifconfig", 30, "ConnectThread::prepareNAS0(): ifconfig nas0 up: failed!"),
])
def test_a_program_that_hangs_costs_its_time_out_and_no_more(bus_machine, program, seconds, told):
    bus_machine.kernel_log.line_up()
    bus_machine.settings(**PPPOE)
    client = bus_machine.client()
    daemon = bus_machine.start_daemon()
    daemon.wait_started()  # before the program hangs: the start tests a driver with modprobe
    bus_machine.standin(program).set(sleep=1000)
    begun = time.monotonic()
    client.call("establishConnection")
    answers_until(client, lambda: bus_machine.calls("pppd"), longest=4.0)
    taken = time.monotonic() - begun
    assert seconds - 0.5 < taken < seconds + 20
    if told:
        daemon.wait_for_log(told + "\n")  # the thread that starts pppd leaves its lines to another
    # One that is slow is ended; each later program runs all the same.
    assert bus_machine.processes(program) == []
    order = [call.program for call in bus_machine.calls() if call.program != "ps"]
    assert order[:4] == ["modprobe", "br2684ctl_amd64", "ip", "ip"] and order[-1] == "pppd"


@pytest.mark.parametrize("program,longest", [("killall", 2.5), ("kill", 2.5)])
def test_ending_a_connection_waits_half_a_second_for_a_program_that_hangs(bus_machine, program,
                                                                          longest):
    bus_machine.path("/run/nas0.pid").write_text("955\n", encoding="ascii")
    bus_machine.start_daemon()
    bus_machine.standin(program).set(sleep=1000)
    client = bus_machine.client()
    begun = time.monotonic()
    client.call("terminateConnection")
    assert 0.45 < time.monotonic() - begun < longest
    wait_until(lambda: not bus_machine.processes(program), what="%s is ended" % program)
    client.wait_signal("connectionTerminated")
    client.call("terminateConnection")
    assert client.call("reply") is True


def test_a_late_killall_still_ends_what_has_no_pid_file(bus_machine):
    bus_machine.kernel_log.line_up()
    bus_machine.pppd.script([stay()])
    daemon = bus_machine.start_daemon()
    daemon.wait_started()
    client = bus_machine.client()
    client.call("establishConnection")
    pppd = bus_machine.wait_call("pppd")
    bus_machine.standin("killall").set(sleep=1, exec_real=True)
    client.call("terminateConnection")
    client.wait_signal("connectionState")
    assert pppd.pid not in [facts["pid"] for facts in bus_machine.processes()]


def test_a_slow_killall_does_not_end_the_next_connection(bus_machine):
    bus_machine.kernel_log.line_up()
    bus_machine.start_daemon()
    bus_machine.standin("killall").set(sleep=3, exec_real=True)
    client = bus_machine.client()
    client.call("terminateConnection")
    bus_machine.pppd.script(link_up() + [wait_for("killall is through"), out("still here\n"), stay()])
    client.call("establishConnection")
    client.wait_signal("connectionEstablished")
    wait_until(lambda: not bus_machine.processes("killall"), what="killall is gone")
    bus_machine.pppd.trigger("killall is through")
    wait_until(lambda: "still here" in bus_machine.daemon_log(), what="pppd goes on")


@ROOT_ONLY
def test_connecting_waits_for_a_killall_that_cannot_be_ended(bus_machine):
    """Without the right to kill other users' processes the daemon cannot end this one, as nobody can
    end one that waits in the kernel."""
    bus_machine.kernel_log.line_up()
    bus_machine.path("/usr/local/sbin/killall").write_text(
        "#!/bin/sh\nexec setpriv --reuid 12345 --clear-groups sleep 8\n", encoding="ascii")
    daemon = Daemon(bus_machine.spawn(
        ["/usr/bin/setpriv", "--bounding-set=-kill", "/opt/norvix/bin/norvix-daemon"],
        env={"PATH": USUAL_PATH, "LD_PRELOAD": "/mnt/lab/lib/libklogctl-standin.so"}))
    daemon.wait_ready()
    client = bus_machine.client()
    client.call("terminateConnection")
    wait_until(lambda: bus_machine.processes("sleep"), what="it sleeps")
    client.call("establishConnection")
    bus_machine.wait_call("pppd")
    assert [facts for facts in bus_machine.processes("sleep") if facts["state"] != "Z"] == []

# SPDX-License-Identifier: MIT
"""Bringing the link up and down, as a client sees it."""
import os
import re

import pytest

from lab.machine.pppd_script import end, link_up, out, stay, wait_for
from lab.waiting import wait_until
from machine_fixtures import ROOT_ONLY

PPPOE = {"protocol": "PPPoE", "vpi": 8, "vci": 35}
USUAL_ARGUMENTS = ["debug", "linkname", "norvix", "call"]
PREPARE = "ConnectThread::prepareBridging(): "
LINK_PID, INTERFACE_PID = "/run/ppp-norvix.pid", "/run/ppp0.pid"


@pytest.fixture(name="line_up")
def line_up_fixture(bus_machine):
    bus_machine.kernel_log.line_up()
    return bus_machine


def establish(machine, *arguments, **settings):
    """Starts the daemon with these settings and asks for a connection."""
    machine.settings(**settings)
    client = machine.client()
    daemon = machine.start_daemon(*arguments)
    daemon.wait_started()
    client.call("establishConnection")
    return daemon, client


def established(machine, *arguments, **settings):
    """The same, up to a running connection."""
    machine.pppd.script(link_up() + [stay()])
    daemon, client = establish(machine, *arguments, **settings)
    client.wait_signal("transmissionSpeed")
    return daemon, client


def connecting(client):
    """The signals so far without those of the driver's test at the start."""
    return [name for name in client.names() if not name.startswith("compil")]


# ---- the three kinds of link

def test_pppoe_prepares_the_bridge_and_runs_pppd(line_up):
    daemon, client = establish(line_up, **PPPOE)
    client.wait_signal("connectionEstablished")
    bridge = ["-b", "-c", "0", "-e", "0", "-a", "8.35"]
    address = ["addr", "add", "192.168.0.1/32", "dev", "nas0"]
    assert [call.command for call in line_up.calls() if call.program != "ps"] == [
        ["modprobe", "br2684"], ["br2684ctl_amd64", *bridge], ["ip", *address], ["ip", *address],
        ["ifconfig", "nas0", "up"], ["pppd", *USUAL_ARGUMENTS, "norvix"]]
    log = line_up.daemon_log()
    for text in (PREPARE + "VPI.VCI: 8.35", PREPARE + "br2684ctl: success.",
                 PREPARE + "ip: failed!", "ConnectThread::prepareNAS0(): interface nas0 is down.",
                 "ConnectThread::prepareNAS0(): ifconfig nas0 up: success."):
        assert text + "\n" in log
    assert connecting(client)[:2] == ["setEnabledConnect", "establishingConnection"]
    assert daemon.output().count("ConnectThread::run()\n") == 1


def test_the_bridge_has_two_seconds_to_settle(line_up):
    establish(line_up, **PPPOE)
    second = line_up.wait_call("ip", count=2)
    assert second.time - line_up.calls("ip")[0].time >= 2


def test_the_bridge_daemons_id_is_traced_and_found_in_the_daemons_own_folder(line_up):
    establish(line_up, **PPPOE)
    bridge = line_up.wait_call("br2684ctl_amd64")
    line_up.wait_call("pppd")
    assert "Norvix_Daemon::debugHandler: %d \n" % bridge.pid in line_up.daemon_log()


def test_pppoa_needs_no_bridge(line_up):
    line_up.pppd.play("i1-pppoa-success")
    _, client = establish(line_up, protocol="PPPoA")
    client.wait_signal("connectionEstablished")
    assert [call.command for call in line_up.calls() if call.program != "ps"] == [
        ["pppd", *USUAL_ARGUMENTS, "norvix"]]


@pytest.mark.parametrize("protocol", [None, "pppoe", "PPPoE ", "", "anything"])
def test_any_protocol_but_pppoe_is_pppoa(line_up, protocol):
    establish(line_up, **({} if protocol is None else {"protocol": '"%s"' % protocol}))
    line_up.wait_call("pppd")
    assert line_up.calls("br2684ctl_amd64") == []


def test_the_unicorn_modem_has_its_own_peer_and_no_bridge(bus_machine):
    bus_machine.kernel_log.line_up(1155)
    establish(bus_machine, vendor_id=1155, **PPPOE)
    assert bus_machine.wait_call("pppd").argv == USUAL_ARGUMENTS + ["norvix_unicorn"]
    assert bus_machine.calls("br2684ctl_amd64") == []
    assert "prepareDSL0" not in bus_machine.daemon_log()  # there is no dsl0


@pytest.mark.parametrize("status,told", [(0, "success."), (1, "failed!")])
def test_a_unicorn_interface_that_is_down_is_brought_up(bus_machine, status, told):
    bus_machine.kernel_log.line_up(1155)
    bus_machine.run(["/usr/sbin/ip", "link", "add", "dsl0", "type", "veth", "peer", "name", "far0"])
    if status:
        bus_machine.standin("ifconfig").set(exit=status)
    daemon, _ = establish(bus_machine, vendor_id=1155)
    daemon.wait_for_log("ConnectThread::prepareDSL0(): interface dsl0 is down.\n")
    daemon.wait_for_log("ConnectThread::prepareDSL0(): ifconfig dsl0 up: %s\n" % told)
    bus_machine.wait_call("pppd")
    assert bus_machine.calls("ifconfig")[0].argv == ["dsl0", "up"]


def test_a_unicorn_interface_that_is_up_is_left_alone(bus_machine):
    bus_machine.kernel_log.line_up(1155)
    bus_machine.run(["/usr/sbin/ip", "link", "add", "dsl0", "type", "veth", "peer", "name", "far0"])
    bus_machine.run(["/usr/sbin/ip", "link", "set", "dsl0", "up"])
    daemon, _ = establish(bus_machine, vendor_id=1155)
    bus_machine.wait_call("pppd")
    daemon.wait_for_log("ConnectThread::prepareDSL0(): interface dsl0 is up.\n")
    assert bus_machine.calls("ifconfig") == []


def test_without_vpi_and_vci_the_bridge_is_asked_for_circuit_0_0(line_up):
    daemon, _ = establish(line_up, protocol="PPPoE")
    assert line_up.wait_call("br2684ctl_amd64").argv[-1] == "0.0"
    line_up.wait_call("pppd")
    daemon.wait_for_log(PREPARE + "br2684ctl: failed!\n")
    assert "prepareNAS0" not in line_up.daemon_log()


def test_a_missing_bridge_daemon_is_reported_and_pppd_runs_all_the_same(line_up):
    line_up.standin("br2684ctl_amd64").set(missing=True)
    daemon, _ = establish(line_up, **PPPOE)
    line_up.wait_call("pppd")
    daemon.wait_for_log(PREPARE + "br2684ctl: failed!\n")


# ---- arguments and environment

@pytest.mark.parametrize("value,added", [
    ("", []), ("nodetach", ["nodetach"]), ("mtu 1400, lcp-echo-interval", ["mtu 1400", "lcp-echo-interval"]),
    ("a,,b", ["a", "", "b"]), (",a", ["", "a"]), ("a,", ["a", ""]), (",", ["", ""]), ('""', []),
])
def test_extra_arguments_are_appended_in_order(line_up, value, added):
    establish(line_up, pppd_arguments=value)
    assert line_up.wait_call("pppd").argv == USUAL_ARGUMENTS + ["norvix"] + added


def test_children_find_programs_in_the_daemons_folder_too(line_up):
    line_up.settings()
    client = line_up.client()
    line_up.start_daemon(env={"LD_LIBRARY_PATH": "/usr/lib"})
    client.call("establishConnection")
    environment = line_up.wait_call("pppd").env
    assert environment["PATH"].endswith(":/sbin:/bin:/opt/norvix/bin")
    assert environment["LD_LIBRARY_PATH"] == "/usr/lib:/opt/norvix/lib64"


def test_without_a_library_path_none_is_made(line_up):
    establish(line_up)
    environment = line_up.wait_call("pppd").env
    assert "LD_LIBRARY_PATH" not in environment
    assert not [name for name in environment if name.startswith("/opt")]
    assert "QT_NO_GLIB" not in environment


def test_children_see_the_event_loop_that_was_chosen_for_the_daemon(line_up):
    client = line_up.client()
    line_up.start_daemon(env={"QT_NO_GLIB": "chosen"})
    client.call("establishConnection")
    assert line_up.wait_call("pppd").env["QT_NO_GLIB"] == "chosen"


# ---- what pppd tells

def test_an_established_connection_is_announced_in_order(line_up):
    _, client = established(line_up)
    names = client.names()
    up = names.index("connectionEstablished")
    assert [name for name in names[up:] if "DNS" not in name][:3] == [
        "connectionEstablished", "IP", "defaultRoute"]
    assert client.named("IP")[0].args == ("10.64.0.100",)
    assert client.named("defaultRoute")[0].args == ("ppp0",)
    assert client.call("getConnectionState") == 0


@pytest.mark.parametrize("recording", ["b1-success-then-sigterm", "c6-pap-success-then-sigterm",
                                       "h1-pppoe-over-real-nas0", "i1-pppoa-success"])
def test_every_recorded_success_is_one_established_connection(line_up, recording):
    line_up.pppd.play(recording)
    daemon, client = establish(line_up)
    client.wait_signal("connectionEstablished")
    client.wait_signal("transmissionSpeed")
    assert client.names().count("connectionEstablished") == 1
    assert "invalidAccountData" not in client.names()
    assert daemon.output().count("Debug: connectingRegExp\n") == (0 if "pppoa" in recording else 1)


def test_updetach_ends_the_thread_when_the_link_is_up(line_up):
    line_up.pppd.play("h1-pppoe-over-real-nas0", mode="updetach")
    _, client = establish(line_up)
    assert client.wait_signal("connectionState").args == (0,)
    assert connecting(client)[:2] == ["setEnabledConnect", "establishingConnection"]
    assert [s.args for s in client.named("setEnabledConnect")] == [(False,), (True,)]
    assert client.call("getConnectionState") == 0


@pytest.mark.parametrize("recording", ["c1-chap-wrong-password", "c3-pap-wrong-password",
                                       "c4-mschapv2-wrong-password", "c5-chap-unknown-user",
                                       "i2-pppoa-wrong-password", "d1-no-concentrator"])
def test_a_refused_account_or_a_missing_concentrator_is_told_once_and_pppd_is_killed(line_up, recording):
    told = "invalidAccountData" if "wrong" in recording or "unknown" in recording else "connectionTimeout"
    line_up.pppd.play(recording)
    _, client = establish(line_up)
    client.wait_signal(told)
    assert client.wait_signal("connectionState").args == (2,)
    assert client.names().count(told) == 1
    assert line_up.processes("pppd") == []


def test_a_provider_that_says_permission_denied_is_understood(line_up):
    line_up.pppd.script([out('rcvd [CHAP Failure id=0x2a "permission denied"]\n'), stay()])
    _, client = establish(line_up)
    client.wait_signal("invalidAccountData")
    assert client.wait_signal("connectionState").args == (2,)
    assert line_up.processes("pppd") == []


def test_a_discovery_time_out_kills_a_pppd_that_goes_on(line_up):
    line_up.pppd.script([out("Timeout waiting for PADO packets\n"), stay()])
    _, client = establish(line_up)
    client.wait_signal("connectionTimeout")
    client.wait_signal("setEnabledConnect", where=lambda enable: enable)
    assert line_up.processes("pppd") == []


def test_every_line_is_logged_as_it_is(line_up):
    line_up.pppd.script([out("first\nsecond  with  blanks \n\nlast without end"), end(3)])
    daemon, client = establish(line_up)
    client.wait_signal("connectionState")
    for text in ("first", "second  with  blanks ", "", "last without end"):
        assert "Norvix_Daemon::debugConnecting(): %s\n" % text in line_up.daemon_log()
    assert daemon.running()


def test_what_pppd_says_on_standard_error_is_logged_too(line_up):
    line_up.pppd.play("f3-bad-option")
    daemon, client = establish(line_up)
    client.wait_signal("connectionState")
    daemon.wait_for_log("unrecognized option")


def test_the_state_is_connecting_from_the_link_line_to_the_address_line(line_up):
    lines = link_up()
    line_up.pppd.script(lines[:2] + [wait_for("address")] + lines[2:] + [stay()])
    daemon, client = establish(line_up)
    daemon.wait_for_output("Debug: connectingRegExp\n")
    assert client.call("getConnectionState") == 1
    line_up.pppd.trigger("address")
    client.wait_signal("connectionEstablished")
    client.mark()
    assert client.call("getConnectionState") == 0


def test_a_redial_stops_and_starts_the_statistics(line_up):
    lines = link_up()
    line_up.pppd.script(lines + [wait_for("redial"), out("Connect: ppp0 <--> nas0\n"),
                                 wait_for("again"), *lines, stay()])
    daemon, client = establish(line_up)
    client.wait_signal("transmissionSpeed")
    line_up.pppd.trigger("redial")
    daemon.wait_for_output("Debug: connectingRegExp\n", count=2)
    assert client.call("getConnectionState") == 1
    stopped = client.mark()
    client.call("getIP", "lo")
    client.expect_no_signal("transmissionSpeed", after=stopped)
    line_up.pppd.trigger("again")
    client.wait_signal("connectionEstablished", count=2)
    here = client.mark()
    client.wait_signal("transmissionSpeed", after=here)


# ---- refusals, notes, the end

def test_a_second_request_while_one_runs_is_only_logged(line_up):
    line_up.pppd.script([stay()])
    daemon, client = establish(line_up)
    line_up.wait_call("pppd")
    here = client.mark()
    client.call("establishConnection")
    daemon.wait_for_log("Can not establish connection, thread is still running!\n")
    client.mark()
    assert client.names(after=here) == []
    assert len(line_up.calls("pppd")) == 1


def test_two_clients_at_once_start_one_connection(line_up):
    line_up.pppd.script([stay()])
    line_up.start_daemon()
    clients = [line_up.client() for _ in range(8)]
    serials = [(client, client.start_call("establishConnection")) for client in clients]
    for client, serial in serials:
        client.finish_call(serial)
    line_up.wait_call("pppd")
    clients[0].mark()
    assert line_up.daemon_log().count("thread is still running!") == len(clients) - 1
    assert len(line_up.calls("pppd")) == 1


def test_a_request_under_a_running_link_is_noted_and_not_refused(line_up):
    line_up.pppd.play("h1-pppoe-over-real-nas0", mode="updetach")
    daemon, client = establish(line_up, "-d")
    client.wait_signal("connectionState")
    note = "Norvix_Daemon::establishConnection(): already connected...\n"
    assert note not in daemon.output()
    client.call("establishConnection")
    assert note in daemon.output()
    line_up.wait_call("pppd", count=2)


def test_terminating_ends_pppd_and_bridge_and_removes_the_pid_files(line_up):
    line_up.pppd.play("h1-pppoe-over-real-nas0")
    daemon, client = establish(line_up, **PPPOE)
    client.wait_signal("transmissionSpeed")
    pppd = line_up.calls("pppd")[0]
    client.call("terminateConnection")
    client.wait_signal("connectionTerminated")
    assert client.wait_signal("connectionState").args == (2,)
    wait_until(lambda: not line_up.processes("br2684ctl_amd64"), what="the bridge daemon is gone")
    assert line_up.processes("pppd") == []
    assert not line_up.path(LINK_PID).exists() and not line_up.path(INTERFACE_PID).exists()
    assert line_up.calls("killall")[-1].argv == ["-9", "pppd", "br2684ctl_amd64", "br2684ctl_i386"]
    assert "Debug: pid: %d \n" % pppd.pid in daemon.output()
    assert daemon.output().count("Norvix_Daemon::terminateConnection()\n") == 1
    here = client.mark()
    client.wait_signal("connectionTerminated", count=1)
    client.call("getIP", "lo")
    assert "transmissionSpeed" not in client.names(after=here)


def test_terminating_without_a_connection_is_announced_all_the_same(bus_machine):
    bus_machine.start_daemon()
    client = bus_machine.client()
    client.call("terminateConnection")
    client.wait_signal("connectionTerminated")
    assert len(bus_machine.calls("killall")) == 1


def test_an_ending_leaves_its_numbered_steps_in_the_log(bus_machine):
    bus_machine.start_daemon().wait_started()
    before = len(bus_machine.daemon_log())
    bus_machine.client().call("terminateConnection")
    steps = re.findall(r"debugHandler: (\d+) $", bus_machine.daemon_log()[before:], re.M)
    assert len(steps) > 1 and steps == [str(number + 1) for number in range(len(steps))]


@pytest.mark.parametrize("bridge", [955, 65536 + ord("6"), 0x10FFFF])
def test_a_bridge_pid_file_leads_to_a_kill_with_one_odd_character(bus_machine, bridge):
    bus_machine.standin("kill").set(exit=0)
    bus_machine.path("/run/nas0.pid").write_text("%d\n" % bridge, encoding="ascii")
    bus_machine.start_daemon()
    bus_machine.client().call("terminateConnection")
    assert bus_machine.wait_call("kill").argv == ["-9", chr(bridge)]


@pytest.mark.parametrize("bridge", [0xD800, 0xDFFF, 0x110000, 4194304])
def test_a_bridge_id_that_is_no_characters_code_starts_no_kill(bus_machine, bridge):
    bus_machine.path("/run/nas0.pid").write_text("%d\n" % bridge, encoding="ascii")
    daemon = bus_machine.start_daemon()
    bus_machine.client().call("terminateConnection")
    bus_machine.wait_call("killall")
    assert bus_machine.calls("kill") == [] and daemon.running()


def test_a_bridge_id_that_makes_kill_signal_its_own_group_does_not_reach_the_daemon(bus_machine):
    bus_machine.path("/run/nas0.pid").write_text("%d\n" % ord("0"), encoding="ascii")
    daemon = bus_machine.start_daemon()
    client = bus_machine.client()
    client.call("terminateConnection")
    assert bus_machine.wait_call("kill").argv == ["-9", "0"]
    client.wait_signal("connectionTerminated")
    assert daemon.running()


@pytest.mark.parametrize("content", ["-1\n", "0\n", "1\n", "99999999999\n", "text\n", "", "\n5\n",
                                     "12abc\n", "+7\n", "x" * 1000000],
                         ids=["minus one", "zero", "init", "too large", "text", "nothing",
                              "second line", "not only digits", "plus", "long"])
def test_a_pid_file_that_holds_no_process_kills_nobody(bus_machine, content):
    daemon = bus_machine.start_daemon()
    for path in (LINK_PID, "/run/nas0.pid"):
        bus_machine.path(path).write_text(content, encoding="ascii")
    client = bus_machine.client()
    client.call("terminateConnection")
    client.wait_signal("connectionTerminated")
    assert daemon.running() and "pid: " not in daemon.output()
    assert bus_machine.calls("kill") == []
    assert not bus_machine.path(LINK_PID).exists()


def test_a_pid_file_that_is_a_pipe_keeps_nobody_waiting(bus_machine):
    bus_machine.start_daemon()
    for path in (LINK_PID, INTERFACE_PID, "/run/nas0.pid"):
        os.mkfifo(bus_machine.path(path))
    client = bus_machine.client()
    assert client.call("getInterface") == "ppp0"
    assert client.call("getConnectionState") == 2
    client.call("terminateConnection")
    client.wait_signal("connectionTerminated")
    assert bus_machine.calls("kill") == []


@pytest.mark.parametrize("switches", [(), ("-d",)])
def test_that_the_interface_is_a_default_is_told_only_while_debugging(bus_machine, switches):
    daemon = bus_machine.start_daemon(*switches)
    assert bus_machine.client().call("getInterface") == "ppp0"
    daemon.stop()
    assert ("returning default (ppp0)" in daemon.output()) == bool(switches)


@ROOT_ONLY
def test_a_process_that_took_over_the_id_of_a_crashed_pppd_is_not_killed(line_up):
    daemon, client = established(line_up)
    pppd = line_up.calls("pppd")[0]
    line_up.kill(pppd.pid, 9)
    client.wait_signal("connectionState")
    assert line_up.path(LINK_PID).read_text(encoding="ascii").startswith("%d\n" % pppd.pid)
    innocent = start_with_id(line_up, pppd.pid)
    client.call("terminateConnection")
    client.wait_signal("connectionTerminated")
    assert innocent.ended() is None
    assert "pid: " not in daemon.output()

    # Nothing is known any more of an id in a file that has been written since.
    line_up.path(LINK_PID).write_text("%d\nppp0\n" % innocent.pid, encoding="ascii")
    client.call("terminateConnection")
    assert innocent.wait() == -9


def start_with_id(machine, pid):
    """A process with just that id."""
    def start():
        machine.write("/proc/sys/kernel/ns_last_pid", b"%d" % (pid - 1))
        process = machine.spawn(["/usr/bin/sleep", "1000"], label="innocent")
        return process if process.pid == pid else process.signal()

    return wait_until(start, what="a process with the id %d" % pid)


def test_the_interface_pid_file_ends_a_pppd_of_another_name(bus_machine):
    other = bus_machine.spawn(["/usr/bin/sleep", "1000"], label="other")
    bus_machine.path(LINK_PID).write_text("%d\nppp3\n" % other.pid, encoding="ascii")
    bus_machine.path("/run/ppp3.pid").write_text("%d\n" % other.pid, encoding="ascii")
    bus_machine.start_daemon()
    client = bus_machine.client()
    assert client.call("getInterface") == "ppp3"
    client.call("terminateConnection")
    assert other.wait() == -9
    assert not bus_machine.path("/run/ppp3.pid").exists()


def test_last_of_all_the_process_of_the_interface_that_is_then_found_is_killed(bus_machine):
    """Once the connection's own pid files are gone, the pid file of the next interface counts."""
    bus_machine.path(LINK_PID).write_text("ppp3\n", encoding="ascii")
    next_one = bus_machine.spawn(["/usr/bin/sleep", "1000"], label="other")
    bus_machine.path("/run/ppp3.pid").write_text("none\n", encoding="ascii")
    bus_machine.path("/run/ppp5.pid").write_text("%d\n" % next_one.pid, encoding="ascii")
    bus_machine.start_daemon()
    bus_machine.client().call("terminateConnection")
    assert next_one.wait() == -9
    assert not bus_machine.path("/run/ppp3.pid").exists()


def test_a_pppd_that_writes_its_pid_file_while_killall_runs_is_killed_in_the_end(bus_machine):
    late = bus_machine.spawn(["/usr/bin/sleep", "1000"], label="other")
    killall = bus_machine.path("/usr/local/sbin/killall")
    killall.write_text("#!/bin/sh\necho %d > %s\n" % (late.pid, INTERFACE_PID), encoding="ascii")
    bus_machine.start_daemon()
    bus_machine.client().call("terminateConnection")
    assert late.wait() == -9


def test_after_the_end_a_new_connection_starts_at_the_first_try(line_up):
    _, client = established(line_up)
    for round_ in range(2, 5):
        client.call("terminateConnection")
        client.wait_signal("connectionState", count=round_ - 1)
        client.call("establishConnection")
        client.wait_signal("connectionEstablished", count=round_)
    assert len(line_up.calls("pppd")) == 4
    wait_until(lambda: not [facts for facts in line_up.processes() if facts["state"] == "Z"],
               what="no zombie", detail=line_up.processes)


# ---- a daemon that ends under a connection

@pytest.mark.parametrize("signal_number", [15, 9])
def test_a_new_daemon_finds_the_running_connection(line_up, signal_number):
    daemon, client = established(line_up, "-d")
    pppd = line_up.calls("pppd")[0]
    daemon.stop(signal_number)
    here = client.signals and len(client.signals)
    again = line_up.start_daemon()
    client.wait_signal("transmissionSpeed", after=here)
    assert client.wait_signal("connectionTime", after=here).args[0] == 0
    wait_until(lambda: [file for file in line_up.path("/var/log/norvix").glob("*.log")
                        if "Registered IP: 10.64.0.100\n" in file.read_text(encoding="ascii")],
               what="the address in the daily log")
    assert client.call("getConnectionState") == 0
    assert [facts["pid"] for facts in line_up.processes("pppd")] == [pppd.pid]
    client.call("terminateConnection")
    assert wait_until(lambda: line_up.exit_of(pppd.pid), what="pppd ends")["status"] == -9
    assert again.running()


def test_without_a_running_connection_a_new_daemon_counts_and_notes_nothing(bus_machine):
    client = bus_machine.client()
    bus_machine.start_daemon("-d").wait_for_output("Norvix Daemon: started.")
    client.expect_no_signal("connectionTime")
    assert not any("Registered IP" in file.read_text(encoding="ascii")
                   for file in bus_machine.path("/var/log/norvix").glob("*.log"))
    assert bus_machine.calls("ps") == []


def test_connect_at_boot_needs_a_plugged_modem(line_up):
    daemon = establish_nothing(line_up, connect_at_boot=True)
    daemon.wait_for_output("Norvix Daemon: started.")
    assert "connect at boot" not in line_up.daemon_log()
    assert line_up.calls("pppd") == []


def establish_nothing(machine, **settings):
    machine.settings(**settings)
    return machine.start_daemon("-d")

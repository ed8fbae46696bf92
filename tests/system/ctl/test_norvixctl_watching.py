# SPDX-License-Identifier: MIT
"""norvixctl monitor, watch and log -f: what runs on, also when the daemon does not."""
import json
import signal

import jsonschema
import pyte
import pytest
from norvixctl import NO_DAEMON, OK, SCHEMA, Ctl

from lab.machine.pppd_script import link_up, stay
from lab.waiting import wait_until

FORMS = pytest.mark.parametrize("command", ["monitor", "watch"])


@pytest.fixture(name="ready")
def ready_fixture(bus_machine):
    bus_machine.settings(protocol="PPPoA", vpi=8, vci=35)
    bus_machine.kernel_log.line_up()
    bus_machine.pppd.script(link_up(device="8.35") + [stay()])
    return bus_machine


@pytest.fixture(name="running")
def running_fixture(ready):
    ready.start_daemon().wait_for_log("debugHandler: i: 0")
    return ready


def said(process, text, count=1):
    wait_until(lambda: process.output().count(text) >= count, what="%r is printed" % text,
               detail=lambda: process.output() + process.errors())


def send_and_receive(machine):
    """For a minute; some has gone both ways."""
    machine.traffic(50_000, seconds=60)
    wait_until(lambda: int(machine.read("/sys/class/net/ppp0/statistics/rx_bytes")), what="traffic")


def validate(name, line):
    schema = json.loads(SCHEMA.read_text(encoding="utf-8"))
    jsonschema.validate(json.loads(line), schema["definitions"][name])
    return json.loads(line)


# ---- monitor

def test_each_signal_is_one_readable_line(running):
    process = Ctl(running).start("monitor")
    said(process, "listening to the daemon")
    Ctl(running)("connect", "--wait")
    for text in ("connecting", "connection established", "address: 10.64.0.100",
                 "default route: through ppp0", "speed: ", "totals: ", "connected for 00:00:"):
        said(process, text)
    Ctl(running)("disconnect")
    said(process, "connection terminated")
    process.signal(signal.SIGINT)
    assert process.wait() == OK


def test_signals_come_as_objects_and_as_lines(running):
    objects = Ctl(running).start("monitor", "--json")
    lines = Ctl(running).start("monitor", "--terse")
    said(objects, "daemon-present")
    said(lines, "daemon-present")
    running.client().call("setAccountData", "a", "b")
    said(objects, "accountDataChanged")
    said(lines, "\taccountDataChanged\tsuccess=")
    found = [validate("monitor", line) for line in objects.output().splitlines()]
    assert found[-1]["signal"] == "accountDataChanged" and "success" in found[-1]["arguments"]


def test_monitor_survives_the_daemons_restart(ready):
    process = Ctl(ready).start("monitor")
    said(process, "the daemon is not running; waiting for it")
    daemon = ready.start_daemon()
    said(process, "the daemon has started")
    daemon.stop()
    said(process, "the daemon has ended")
    ready.start_daemon().wait_started()
    said(process, "the daemon has started", count=2)
    Ctl(ready)("connect", "--wait")
    said(process, "connection established")


def test_signals_that_others_forge_are_not_shown(running):
    process = Ctl(running).start("monitor")
    said(process, "listening to the daemon")
    forged = running.run(["/usr/bin/dbus-send", "--system", "--type=signal", "/com/norvix/Daemon",
                          "com.norvix.Daemon.modemPlugged", "string:forged"], uid=1000)
    assert forged.status == 0, forged
    Ctl(running)("connect", "--wait")
    said(process, "connection established")
    assert "forged" not in process.output()


@FORMS
def test_the_end_of_the_bus_ends_it(running, command):
    process = Ctl(running).start(command)
    wait_until(process.output, what="it has begun")
    running.stop_bus()
    assert process.wait() == NO_DAEMON
    assert "system bus has ended" in process.errors()


@FORMS
def test_without_a_bus_it_does_not_begin(machine, command):
    result = Ctl(machine)(command)
    assert (result.status, "system bus can not be reached" in " ".join(result.stderr.split())) == (
        NO_DAEMON, True)


@FORMS
@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM, signal.SIGHUP])
def test_a_signal_ends_it_well(running, command, number):
    process = Ctl(running).start(command)
    wait_until(process.output, what="it has begun")
    process.signal(number)
    assert process.wait() == OK


# ---- watch

def test_in_a_pipe_each_second_is_a_line(running):
    Ctl(running)("connect", "--wait")
    send_and_receive(running)
    result = Ctl(running)("watch", "--count", "3")
    assert result.status == OK
    lines = result.stdout.splitlines()
    assert all(line.startswith("connected  ppp0  10.64.0.100") for line in lines)
    assert "\x1b" not in result.stdout
    assert " down " in lines[-1] and " received " in lines[-1]


def test_each_second_is_an_object_or_key_value_words(running):
    Ctl(running)("connect", "--wait")
    send_and_receive(running)
    found = [validate("watch", line)
             for line in Ctl(running)("watch", "-n", "3", "--json").stdout.splitlines()]
    assert found[-1]["state"] == "connected" and found[-1]["receivedBytes"] > 0
    assert found[-1]["sendRate"] > 0
    words = Ctl(running)("watch", "-n", "1", "--terse").stdout.splitlines()[-1].split("\t")
    assert "state=connected" in words and "interface=ppp0" in words


def test_watch_survives_the_daemons_restart(ready):
    process = Ctl(ready).start("watch")
    said(process, "the daemon is not running")
    daemon = ready.start_daemon()
    daemon.wait_started()
    said(process, "not connected")
    Ctl(ready)("connect", "--wait")
    said(process, "received")
    daemon.stop()
    said(process, "the daemon is not running", count=2)
    ready.start_daemon()
    said(process, "connected  ppp0  10.64.0.100", count=2)


def test_on_a_terminal_rates_are_a_running_graph(running):
    Ctl(running)("connect", "--wait")
    send_and_receive(running)
    result = Ctl(running).on_terminal("watch", "-n", "4", rows=20, columns=60)
    assert result.status == OK
    assert result.stdout.rstrip().endswith("\x1b[?25h\x1b[?1049l")  # cursor and screen come back
    screen = pyte.Screen(60, 20)
    pyte.Stream(screen).feed(result.stdout.split("\x1b[?1049l")[0].replace("\n", "\r\n"))
    shown = [line.rstrip() for line in screen.display]
    assert shown[0].startswith("connected  ppp0  10.64.0.100")
    assert shown[1].startswith("down ") and "total" in shown[1] and "peak" in shown[1]
    graph = [line for line in shown if set(line.strip()) and set(line.strip()) <= set("▁▂▃▄▅▆▇█ ")]
    assert any("█" in line for line in graph)
    assert any(len(line) == 60 for line in graph)  # the newest second stands at the right edge
    assert "Ctrl-C ends the view, not the connection." in shown


def test_ctrl_c_on_a_terminal_ends_the_view_and_not_the_connection(running):
    Ctl(running)("connect", "--wait")
    result = Ctl(running).on_terminal("watch", dialogue=[("Ctrl-C", "\x03")])
    assert result.status == OK
    assert running.client().call("getConnectionState") == 0


# ---- log -f

def test_the_log_is_followed_across_a_restart_of_the_daemon(running):
    process = Ctl(running).start("log", "--follow", "-n", "1")
    wait_until(process.output, what="the last line")
    running.client().call("getIP", "nosuch")
    said(process, "interface nosuch is invalid")
    running.daemons[0].stop()
    running.start_daemon()
    said(process, "ctor invoked")
    process.signal(signal.SIGINT)
    assert process.wait() == OK


def test_a_log_that_comes_later_is_waited_for(machine):
    process = Ctl(machine).start("log", "-f")
    log = machine.path("/opt/norvix/daemon.log")
    log.write_text("01-01-2026 00:00:00 first\n01-01-2026 00:00:01 half", encoding="ascii")
    said(process, "first\n")
    assert "half" not in process.output()
    with log.open("a", encoding="ascii") as file:
        file.write(" and whole\n")
    said(process, "half and whole\n")


def test_a_log_whose_middle_was_taken_out_is_not_shown_again(machine):
    """As the daemon does with a long attempt: another file, which ends as the old one did."""
    log, new = machine.path("/opt/norvix/daemon.log"), machine.path("/opt/norvix/new.log")
    lines = ["01-01-2026 00:00:%02d line %d\n" % (number % 60, number) for number in range(3000)]
    log.write_text("".join(lines), encoding="ascii")
    process = Ctl(machine).start("log", "--follow", "-n", "2")
    said(process, "line 2999\n")
    with log.open("a", encoding="ascii") as file:
        file.write("01-01-2026 00:00:59 just before\n01-01-2026 00:00:59 half")
    text = log.read_text(encoding="ascii")
    new.write_text(text[:10000].rpartition("\n")[0] + "\n... is missing\n" + "".join(lines[-1000:])
                   + "".join(text.partition("line 2999\n")[2]) + " and whole\n", encoding="ascii")
    new.rename(log)
    said(process, "half and whole\n")
    assert process.output().splitlines() == [line.rstrip() for line in lines[-2:]] + [
        "01-01-2026 00:00:59 just before", "01-01-2026 00:00:59 half and whole"]


def test_a_line_that_came_just_before_the_log_was_rotated_is_shown(machine):
    log = machine.path("/opt/norvix/daemon.log")
    log.write_text("01-01-2026 00:00:00 first\n", encoding="ascii")
    process = Ctl(machine).start("log", "--follow")
    said(process, "first\n")
    with log.open("a", encoding="ascii") as file:
        file.write("01-01-2026 00:00:01 last\n")
    log.rename(machine.path("/opt/norvix/daemon.log.1"))
    log.write_text("01-01-2026 00:00:02 of the next\n", encoding="ascii")
    said(process, "of the next\n")
    assert [line[20:] for line in process.output().splitlines()] == ["first", "last", "of the next"]

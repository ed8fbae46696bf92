# SPDX-License-Identifier: MIT
"""A pppd that is missing, dies, or prints what no program should."""
import re
import time

import pytest

from lab.machine.pppd_script import end, err, link_up, out, stay

MEGABYTE = 1 << 20


def missing(log):
    """How many bytes the log has left out."""
    found = re.search(r"writeLog\(\): (\d+) bytes of this attempt are left out here", log)
    return int(found[1]) if found else 0


def establish(machine, steps=None):
    machine.kernel_log.line_up()
    if steps is not None:
        machine.pppd.script(steps)
    client = machine.client()
    daemon = machine.start_daemon()
    daemon.wait_started()  # before, no line of pppd means anything
    client.call("establishConnection")
    return daemon, client


@pytest.mark.parametrize("how", ["missing", "not_executable"])
def test_a_pppd_that_cannot_be_started_is_logged(bus_machine, how):
    bus_machine.standin("pppd").set(**{how: True})
    daemon, client = establish(bus_machine)
    assert client.wait_signal("connectionState").args == (2,)
    assert [s.args for s in client.named("setEnabledConnect")] == [(False,), (True,)]
    daemon.wait_for_log("ConnectThread::run(): pppd: ")
    bus_machine.standin("pppd").set()
    client.call("establishConnection")
    client.wait_signal("connectionEstablished")


def test_a_pppd_that_ends_at_once_ends_the_attempt(bus_machine):
    daemon, client = establish(bus_machine, [err("/usr/sbin/pppd: must be root\n"), end(3)])
    assert client.wait_signal("connectionState").args == (2,)
    daemon.wait_for_log("debugConnecting(): /usr/sbin/pppd: must be root\n")
    client.call("establishConnection")
    bus_machine.wait_call("pppd", count=2)


def test_a_line_of_a_megabyte_without_an_end_is_cut(bus_machine):
    daemon, client = establish(bus_machine, [out("x" * 1024, repeat=1024), out("\nnext line\n"),
                                             *link_up(), stay()])
    client.wait_signal("connectionEstablished")
    daemon.wait_for_log("debugConnecting(): next line\n")
    longest = max(len(line) for line in bus_machine.daemon_log().splitlines())
    assert 60000 < longest < 70000


@pytest.mark.parametrize("text", [b"\0\0\0\n", b"a\0b\n", b"\xff\xfe\x80 \xc3\n", b"\x1b[31m\x07\n",
                                  b"\r\n\r\n", b"%s%n%1%2\n"],
                         ids=["zero bytes", "a zero byte", "no UTF-8", "control characters",
                              "carriage returns", "formats"])
def test_bytes_that_are_no_text_do_no_harm(bus_machine, text):
    _, client = establish(bus_machine, [out(text), *link_up(), stay()])
    client.wait_signal("connectionEstablished")
    assert client.call("reply") is True
    log = bus_machine.path("/opt/norvix/daemon.log").read_bytes()
    assert b"Norvix_Daemon::debugConnecting(): " + text.split(b"\n")[0] + b"\n" in log


def test_a_zero_byte_does_not_hide_what_pppd_says(bus_machine):
    _, client = establish(
        bus_machine, [out(b"\xff\0CHAP authentication failed: permission denied\n"), stay()])
    client.wait_signal("invalidAccountData")


def test_100000_lines_at_once_are_logged_in_order_while_calls_are_answered(bus_machine):
    lines = 100000
    text = "".join("line %06d\n" % number for number in range(1000))
    steps = [out(text) for _ in range(lines // 1000)] + [out("the end\n"), *link_up(), stay()]
    daemon, client = establish(bus_machine, steps)
    longest = 0.0
    while not client.named("connectionEstablished"):
        begun = time.monotonic()
        assert client.call("reply") is True
        longest = max(longest, time.monotonic() - begun)
    assert longest < 10
    # Of so many the log keeps both ends.
    head, tail = bus_machine.daemon_log().split("left out here", 1)
    for part, first in ((head, 0), (tail, None)):
        logged = [int(line[-6:]) for line in part.splitlines() if ": line " in line]
        assert len(logged) > 10000
        first = logged[0] if first is None else first
        assert logged == [(first + number) % 1000 for number in range(len(logged))]
    assert logged[-1] == 999
    assert daemon.running()


def test_a_flood_that_never_ends_does_not_fill_the_memory(bus_machine):
    daemon, client = establish(bus_machine, [out("y" * 1000 + "\n", repeat=1000)] * 100 + [stay()])
    bus_machine.wait_call("pppd")
    before = bus_machine.memory_kb(daemon.pid)
    deadline = time.monotonic() + 60
    while missing(bus_machine.daemon_log()) < 60 * MEGABYTE and time.monotonic() < deadline:
        assert client.call("reply") is True
        assert bus_machine.memory_kb(daemon.pid) - before < 40 * 1024


def test_a_pppd_that_says_nothing_can_be_ended(bus_machine):
    _, client = establish(bus_machine, [stay()])
    bus_machine.wait_call("pppd")
    assert client.call("getConnectionState") == 1
    client.call("terminateConnection")
    assert client.wait_signal("connectionState").args == (2,)


def test_a_pppd_that_closes_its_output_and_stays_can_be_ended(bus_machine):
    bus_machine.path("/usr/local/sbin/pppd").write_text(
        "#!/bin/sh\nexec >&- 2>&-\nexec /usr/bin/sleep 1000\n", encoding="ascii")
    bus_machine.kernel_log.line_up()
    client = bus_machine.client()
    bus_machine.start_daemon()
    client.call("establishConnection")
    client.wait_signal("establishingConnection")
    assert client.call("getConnectionState") == 1
    assert client.call("reply") is True

# SPDX-License-Identifier: MIT
"""A pppd that stays in the foreground outlives its thread of 90 seconds; nothing may depend on it."""
from lab.machine.pppd_script import end, link_up, out, stay, wait_for
from lab.waiting import wait_until

THREAD_SECONDS = 90


def zombies(machine):
    return [facts for facts in machine.processes() if facts["state"] == "Z"]


def test_a_pppd_that_outlives_its_thread_is_read_on_and_ended_cleanly(bus_machine):
    bus_machine.kernel_log.line_up()
    line = "x" * 1023 + "\n"
    bus_machine.pppd.script(link_up() + [
        wait_for("flood"), out(line, repeat=1024), out("after the flood\n"), wait_for("end"),
        out("the last line\n"), stay()])
    client = bus_machine.client()
    daemon = bus_machine.start_daemon()
    daemon.wait_started()
    client.call("establishConnection")
    client.wait_signal("connectionEstablished")
    state = client.wait_signal("connectionState", timeout=THREAD_SECONDS + 60)
    started = client.named("establishingConnection")[0]
    assert THREAD_SECONDS - 1 < state.time - started.time < THREAD_SECONDS + 30
    assert state.args == (0,)
    first = bus_machine.calls("pppd")[0]
    assert bus_machine.processes("pppd") != []

    bus_machine.pppd.trigger("flood")  # sixteen times what a pipe holds
    daemon.wait_for_log("debugConnecting(): after the flood\n")
    assert bus_machine.daemon_log().count("x" * 1023) == 1024
    bus_machine.pppd.trigger("end")
    daemon.wait_for_log("debugConnecting(): the last line\n")
    client.wait_signal("transmissionSpeed", after=client.mark())

    client.call("terminateConnection")
    bus_machine.pppd.script(link_up() + [out("the second one\n"), stay()])
    client.call("establishConnection")
    client.wait_signal("connectionEstablished", count=2)
    daemon.wait_for_log("debugConnecting(): the second one\n")
    assert len(bus_machine.calls("pppd")) == 2
    wait_until(lambda: not zombies(bus_machine), what="no zombie", detail=lambda: zombies(bus_machine))
    assert first.pid not in [facts["pid"] for facts in bus_machine.processes("pppd")]

    # Ending it once more while its thread still runs.
    client.call("terminateConnection")
    client.wait_signal("connectionState", count=2)
    client.call("establishConnection")
    client.wait_signal("connectionEstablished", count=3)
    assert len(bus_machine.calls("pppd")) == 3
    wait_until(lambda: not zombies(bus_machine), what="no zombie", detail=lambda: zombies(bus_machine))


def test_a_killed_pppd_whose_thread_is_over_leaves_no_zombie(bus_machine):
    bus_machine.kernel_log.line_up()
    bus_machine.pppd.script(link_up() + [stay()])
    client = bus_machine.client()
    bus_machine.start_daemon().wait_started()
    client.call("establishConnection")
    client.wait_signal("connectionState", timeout=THREAD_SECONDS + 60)
    bus_machine.kill(bus_machine.calls("pppd")[0].pid, 9)
    wait_until(lambda: not bus_machine.processes("pppd"), what="pppd is reaped",
               detail=bus_machine.processes)
    client.call("establishConnection")
    client.wait_signal("connectionEstablished", count=2)


def test_a_pppd_that_outlived_its_thread_and_ends_while_it_redials_leaves_no_connecting(bus_machine):
    bus_machine.kernel_log.line_up()
    bus_machine.pppd.script(link_up() + [
        wait_for("redial"), out("Connect: ppp0 <--> nas0\n"), wait_for("end"), end(16)])
    client = bus_machine.client()
    daemon = bus_machine.start_daemon()
    daemon.wait_started()
    client.call("establishConnection")
    client.wait_signal("connectionState", timeout=THREAD_SECONDS + 60)
    bus_machine.pppd.trigger("redial")
    daemon.wait_for_output("Debug: connectingRegExp\n", count=2)
    assert client.call("getConnectionState") == 1
    here = client.mark()
    bus_machine.pppd.trigger("end")
    wait_until(lambda: client.call("getConnectionState") == 2, what="not connecting any more")
    assert client.names(after=here) == []

# SPDX-License-Identifier: MIT
"""norvixctl connect and disconnect: every outcome of an attempt, and what stands in the way."""
import pytest
from norvixctl import (ACCOUNT_REFUSED, FAILED, NO_ANSWER, NO_DAEMON, NO_SYNC, NOT_CONNECTED,
                       NORVIX_GROUP, NOT_PERMITTED, OK, TOO_LONG, Ctl, words)

from lab.machine.pppd_script import end, link_up, out, stay, wait_for
from lab.waiting import wait_until


@pytest.fixture(name="machine_up")
def machine_up_fixture(bus_machine):
    """The line is up and the daemon runs; PPPoA, which needs no bridge."""
    bus_machine.settings(protocol="PPPoA", vpi=8, vci=35)
    bus_machine.kernel_log.line_up()
    bus_machine.start_daemon().wait_started()
    return bus_machine


def one_attempt(machine, steps, *options):
    machine.pppd.script(steps)
    return Ctl(machine)("connect", "--wait", *options)


# ---- connect

def test_waiting_ends_with_address_and_route(machine_up):
    result = one_attempt(machine_up, link_up(device="8.35") + [stay()])
    assert (result.status, result.stderr) == (OK, "")
    assert result.stdout == ("Connecting…\nConnected: address 10.64.0.100, default route through "
                             "ppp0.\n")


def test_without_waiting_it_returns_when_the_attempt_has_begun(machine_up):
    machine_up.pppd.script([wait_for("go"), *link_up(device="8.35"), stay()])
    result = Ctl(machine_up)("connect")
    assert (result.status, "norvixctl watch" in result.stdout) == (OK, True)
    again = Ctl(machine_up)("connect")
    assert (again.status, again.stdout) == (OK, "A connection is already being made.\n")
    follower = Ctl(machine_up).start("connect", "--wait")
    client = machine_up.client()
    wait_until(lambda: client.call("getConnectionState") == 1, what="still connecting")
    machine_up.pppd.trigger("go")
    assert follower.wait() == OK
    assert len(machine_up.calls("pppd")) == 1


def test_a_second_connection_is_not_begun_beside_a_running_one(machine_up):
    one_attempt(machine_up, link_up(device="8.35") + [stay()])
    result = Ctl(machine_up)("connect", "--wait")
    assert (result.status, result.stdout) == (OK, "Already connected.\n")
    assert len(machine_up.calls("pppd")) == 1


def test_a_line_that_trains_first_is_waited_for(machine_up):
    machine_up.kernel_log.append("ATM dev 0: ADSL line: training")
    machine_up.pppd.script(link_up(device="8.35") + [stay()])
    process = Ctl(machine_up).start("connect", "--wait")
    wait_until(lambda: "Waiting for the line" in process.output(), what="it waits for the line")
    machine_up.kernel_log.line_up()
    assert process.wait() == OK


def test_a_line_that_never_comes_up_is_a_failed_synchronisation(machine_up):
    machine_up.kernel_log.clear()
    process = Ctl(machine_up).start("connect", "--wait")
    assert process.wait(90) == NO_SYNC
    assert "telephone cable" in words(process.errors())


def test_a_refused_account_is_named(machine_up):
    machine_up.pppd.play("c1-chap-wrong-password")
    result = Ctl(machine_up)("connect", "--wait")
    assert result.status == ACCOUNT_REFUSED
    assert "norvixctl account set" in words(result.stderr)


@pytest.mark.parametrize("steps, options, status, told", [
    ([out("Plugin pppoe.so loaded.\n"), out("Timeout waiting for PADO packets\n"), stay()], [],
     NO_ANSWER, "the provider does not answer"),
    ([out("Plugin pppoatm.so loaded.\n"), out("connect(8.35): No such device\n"), end(1)], [],
     NOT_CONNECTED, "There is no ATM device"),
    ([end(1)], [], NOT_CONNECTED, "norvixctl doctor"),
    ([wait_for("never")], ["--timeout", "3"], TOO_LONG, "Still connecting")],
    ids=["silent provider", "explained by pppd's lines", "without a word", "out of time"])
def test_an_attempt_that_comes_to_nothing_says_why(machine_up, steps, options, status, told):
    result = one_attempt(machine_up, steps, *options)
    assert result.status == status
    assert told in words(result.stderr)


def test_an_attempt_that_another_client_ends_is_reported(machine_up):
    machine_up.pppd.script([wait_for("never")])
    process = Ctl(machine_up).start("connect", "--wait")
    machine_up.wait_call("pppd")
    assert Ctl(machine_up)("disconnect").status == OK
    assert process.wait() == NOT_CONNECTED


def test_a_daemon_that_ends_while_connecting_is_reported(machine_up):
    machine_up.pppd.script([wait_for("never")])
    process = Ctl(machine_up).start("connect", "--wait")
    machine_up.wait_call("pppd")
    machine_up.daemons[0].stop()
    assert process.wait() == NO_DAEMON
    assert "daemon ended" in words(process.errors())


def test_connecting_needs_a_daemon(bus_machine):
    result = Ctl(bus_machine)("connect")
    assert (result.status, "systemctl start" in words(result.stderr)) == (NO_DAEMON, True)


def test_connecting_is_for_the_group_only(machine_up):
    machine_up.pppd.script(link_up(device="8.35") + [stay()])
    refused = Ctl(machine_up, uid=1000)("connect")
    assert (refused.status, "usermod -a -G" in words(refused.stderr)) == (NOT_PERMITTED, True)
    assert Ctl(machine_up, uid=1000, groups=[NORVIX_GROUP])("connect", "--wait").status == OK


# ---- disconnect

def test_disconnecting_ends_the_connection(machine_up):
    one_attempt(machine_up, link_up(device="8.35") + [stay()])
    result = Ctl(machine_up)("disconnect")
    assert (result.status, result.stdout) == (OK, "Disconnected.\n")
    # On a busy machine pppd may take so long to end that it is said.
    assert result.stderr == "" or words(result.stderr).startswith("A connection is still being made: ")
    wait_until(lambda: not machine_up.processes("pppd"), what="pppd is gone")


def test_an_attempt_that_waits_for_the_line_is_ended_for_good(machine_up):
    """The daemon goes on with it until the line is there, and starts pppd only then."""
    machine_up.kernel_log.append("ATM dev 0: ADSL line: training")
    machine_up.pppd.script(link_up(device="8.35") + [stay()])
    assert Ctl(machine_up)("connect").status == OK
    client = machine_up.client()
    ending = Ctl(machine_up).start("disconnect")
    wait_until(lambda: "is still being made" in words(ending.errors()), what="it says that it waits")
    assert "Disconnected." not in ending.output()
    machine_up.kernel_log.line_up()
    assert ending.wait() == OK
    assert ending.output() == "Disconnected.\n"
    assert client.call("getConnectionState") == 2
    assert len(machine_up.calls("pppd")) == 1 and not machine_up.processes("pppd")


def test_an_attempt_that_gives_up_by_itself_is_disconnected_too(machine_up):
    machine_up.pppd.script([wait_for("never")])
    assert Ctl(machine_up)("connect").status == OK
    machine_up.wait_call("pppd")
    assert Ctl(machine_up)("disconnect").stdout == "Disconnected.\n"
    assert machine_up.client().call("getConnectionState") == 2


def test_a_daemon_that_ends_while_the_attempt_is_being_ended_is_reported(machine_up):
    machine_up.kernel_log.append("ATM dev 0: ADSL line: training")
    assert Ctl(machine_up)("connect").status == OK
    ending = Ctl(machine_up).start("disconnect")
    wait_until(lambda: "is still being made" in words(ending.errors()), what="it says that it waits")
    machine_up.daemons[0].stop()
    assert ending.wait() == OK
    assert ending.output() == "Disconnected.\n"


def test_another_pppd_is_warned_of_and_spared_unless_forced(machine_up):
    machine_up.pppd.script([wait_for("never")])
    other = machine_up.spawn(["/usr/local/sbin/pppd", "call", "office"])
    wait_until(lambda: machine_up.processes("pppd"), what="the other pppd runs")
    result = Ctl(machine_up)("disconnect", stdin="")
    assert result.status == FAILED
    assert "another pppd is running (process %d" % other.pid in words(result.stderr)
    assert "--force" in result.stderr and other.ended() is None
    forced = Ctl(machine_up)("disconnect", "--force")
    assert (forced.status, "Warning" in forced.stderr) == (OK, True)
    assert other.wait() == -9


@pytest.mark.parametrize("answer, status", [("y", OK), ("n", FAILED), ("\r", FAILED)])
def test_on_a_terminal_it_asks_before_it_ends_another_pppd(machine_up, answer, status):
    machine_up.pppd.script([wait_for("never")])
    other = machine_up.spawn(["/usr/local/sbin/pppd", "call", "office"])
    wait_until(lambda: machine_up.processes("pppd"), what="the other pppd runs")
    result = Ctl(machine_up).on_terminal("disconnect", dialogue=[("[y/N]", answer + "\r")])
    assert result.status == status
    if status == OK:
        assert other.wait() == -9
    else:
        assert other.ended() is None


def test_disconnecting_needs_a_daemon(bus_machine):
    assert Ctl(bus_machine)("disconnect").status == NO_DAEMON

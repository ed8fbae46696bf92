# SPDX-License-Identifier: MIT
"""Restarting the modem, and ending and starting the daemon under a connection."""

import pathlib
import signal

import pytest

from lab.kernel import chain as world
from lab.kernel import system
from lab.kernel.provider import CLIENT_ADDRESS
from lab.waiting import wait_until

DAILY_LOGS = pathlib.Path("/var/log/norvix")


def connected(chain, kind="cxacru"):
    client = chain.make_ready(kind)
    chain.connect()
    chain.wait_state(0)
    return client


@pytest.mark.parametrize("kind", [
    "cxacru", pytest.param("speedtch", marks=pytest.mark.quick), "eagle-e4"])
def test_restarting_the_modem_ends_the_connection_and_reloads_the_driver(chain, kind):
    client = connected(chain, kind)
    driver = world.DRIVERS[kind]
    system.clear_kernel_log()
    mark = client.mark()
    client.call("restartModem")
    client.wait_signal("restartModemFinished", timeout=90, after=mark)
    wanted = ("connectionTerminated", "restartModemStarted", "restartModemFinished")
    assert [name for name in client.names(after=mark) if name in wanted] == list(wanted)
    log = system.kernel_log()
    assert f"usbcore: deregistering interface driver {driver}" in log
    chain.wait_kernel_log(f"usbcore: registered new interface driver {driver}")
    chain.wait_line_up()
    assert client.call("getIsModemPlugged") is True
    chain.connect()


@pytest.mark.parametrize("number", [signal.SIGKILL, signal.SIGTERM])
def test_a_connection_outlives_the_daemon_and_is_found_by_the_next_one(chain, number):
    client = connected(chain)
    pppd = system.processes("pppd")
    chain.daemon.end(number)
    assert world.exchange_traffic() == 20_000
    assert system.processes("pppd") == pppd

    mark = len(client.signals)
    chain.start_daemon()
    assert client.call("getConnectionState") == 0
    client.wait_signal("transmissionBytes", after=mark)
    hours, minutes, seconds = client.wait_signal("connectionTime", after=mark).args
    assert hours * 3600 + minutes * 60 + seconds > 0
    daily = "".join(path.read_text() for path in DAILY_LOGS.iterdir())
    assert f"Registered IP: {CLIENT_ADDRESS}" in daily

    chain.disconnect()
    chain.wait_ended("pppd")


def test_a_second_daemon_gives_up_and_the_first_one_stays(chain):
    chain.configure("cxacru")
    client = chain.start_daemon()
    first = chain.daemon.pid
    second = system.run(system.BUILD / "bin/norvix-daemon")
    assert second.returncode == 0  # the parent's; the child finds the lock taken
    assert "It seems that the daemon is already running." in second.stderr
    wait_until(lambda: system.processes("norvix-daemon") == [first], what="one daemon is left")
    assert client.call("reply") is True

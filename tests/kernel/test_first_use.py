# SPDX-License-Identifier: MIT
"""From nothing configured to a second connection, for each driver and both protocols."""

import pathlib
import time

import pytest

from lab.kernel import chain as world
from lab.kernel import system
from lab.kernel.provider import CLIENT_ADDRESS

COUNTERS = pathlib.Path("/sys/class/net/ppp0/statistics")


def interface_bytes():
    return tuple(int((COUNTERS / name).read_text()) for name in ("rx_bytes", "tx_bytes"))


@pytest.mark.parametrize("kind", [
    *(pytest.param(kind, marks=pytest.mark.quick) for kind in ("cxacru", "speedtch", "eagle-e4")),
    "eagle"])
@pytest.mark.parametrize("protocol", ["PPPoE", "PPPoA"])
def test_a_new_modem_is_adopted_connects_disconnects_and_connects_again(chain, kind, protocol):
    chain.configure_line(protocol)
    chain.write_account(protocol)
    chain.start_provider(protocol)
    client = chain.start_daemon()
    assert client.call("getIsModemPlugged") is False

    chain.plug(kind)
    client.wait_signal("newModemPlugged", timeout=world.VERIFICATION_SECONDS,
                       where=lambda name: name == world.NAMES[kind])
    client.call("useNewModem")
    client.wait_signal("modemPlugged", where=lambda name: name == world.NAMES[kind])
    assert client.call("getIsModemPlugged") is True
    chain.wait_line_up()

    mark = chain.connect()
    assert client.wait_signal("IP", after=mark).args == (CLIENT_ADDRESS,)
    assert client.wait_signal("defaultRoute", after=mark).args == ("ppp0",)
    assert client.call("getIP") == CLIENT_ADDRESS
    assert client.call("getInterface") == "ppp0"
    # The shipped peer files let pppd go to the background: the thread ends as the link is up.
    client.wait_signal("connectionState", after=mark, where=lambda state: state == 0)
    expected = ["establishingConnection", "connectionEstablished", "IP", "defaultRoute"]
    assert [name for name in client.names(after=mark) if name in expected][:4] == expected

    check_counters_and_time(client)
    check_end(chain, client, protocol)

    chain.connect()
    chain.wait_state(0)
    assert world.exchange_traffic() == 20_000
    chain.disconnect()


def check_counters_and_time(client):
    """What the daemon counts is what went through."""
    before = interface_bytes()
    assert world.exchange_traffic() == 20_000
    mark = client.mark()
    counted = client.wait_signal("transmissionBytes", after=mark, count=2).args
    now = interface_bytes()
    for told, was, is_now in zip(counted, before, now):
        assert was + 20_000 <= told <= is_now
    hours, minutes, seconds = client.wait_signal("connectionTime", after=mark, count=3).args
    pid = int(system.LINK_PID_FILE.read_text().split()[0])
    elapsed = int(system.run("ps", "-p", str(pid), "-o", "etimes=").stdout)
    assert abs(hours * 3600 + minutes * 60 + seconds - elapsed) <= 3
    time_signals = client.named("connectionTime", after=mark)
    assert time_signals[-1].args > time_signals[0].args


def check_end(chain, client, protocol):
    """After the end nothing is left of the connection."""
    bridge = system.processes("br2684ctl_amd64")
    assert bool(bridge) == (protocol == "PPPoE")
    chain.disconnect()
    ended = client.mark()
    chain.wait_state(2)
    chain.wait_ended("pppd")
    chain.wait_ended("br2684ctl_amd64")
    assert not system.LINK_PID_FILE.exists()
    time.sleep(2)  # twice the time between two statistics
    client.expect_no_signal("transmissionBytes", after=ended)

# SPDX-License-Identifier: MIT
"""Peer files that users have written themselves."""

from lab.kernel import system

# The connection thread follows pppd for 90 s at most.
THREAD_SECONDS = 150


def test_with_nodetach_the_thread_follows_for_a_while_and_the_connection_stays(chain):
    client = chain.make_ready(replace=[("updetach\n", "nodetach\n")])
    mark = chain.connect()
    client.wait_signal("transmissionBytes", after=mark)
    client.wait_signal("connectionState", after=mark, timeout=THREAD_SECONDS)
    assert client.call("getConnectionState") == 0
    assert len(system.processes("pppd")) == 1
    chain.disconnect()
    chain.wait_state(2)
    chain.wait_ended("pppd")
    chain.connect()


def test_arguments_from_the_settings_reach_pppd(chain):
    client = chain.make_ready()
    chain.configure("cxacru", pppd_arguments="mtu, 1400")
    chain.connect()
    assert client.call("getConnectionState") in (0, 1)
    assert "mtu 1400" in system.run("ip", "link", "show", "ppp0").stdout


def test_a_peer_file_that_needs_what_is_not_there_leaves_everything_as_it_was(chain):
    client = chain.make_ready(replace=[("nic-nas0\n", "nic-nas9\n")])
    client.call("establishConnection")
    client.wait_signal("connectionState", where=lambda state: state == 2, timeout=60)
    assert "connectionEstablished" not in client.names()
    assert "unrecognized option 'nic-nas9'" in chain.daemon_log()

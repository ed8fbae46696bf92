# SPDX-License-Identifier: MIT
"""Login and password: refused, corrected over the bus, accepted; providers that do not answer."""

import pytest

from lab.kernel import chain as world
from lab.kernel import system
from lab.kernel.provider import LOGIN, PASSWORD, make_denying_plugin
from lab.waiting import wait_until

# pppd asks for a concentrator at 0, 5 and 15 s and gives up after 35.
DISCOVERY_SECONDS = 90


@pytest.mark.parametrize("protocol, authentication", [
    pytest.param("PPPoE", "chap", marks=pytest.mark.quick), ("PPPoE", "pap"), ("PPPoE", "mschap-v2"), ("PPPoA", "chap"),
    ("PPPoA", "pap")])
def test_a_refused_password_is_reported_and_the_corrected_one_connects(
        chain, protocol, authentication):
    client = chain.make_ready(protocol=protocol, provider={"authentication": authentication},
                              password="wrong")
    client.call("establishConnection")
    client.wait_signal("invalidAccountData", timeout=60)
    client.wait_signal("connectionState", where=lambda state: state == 2, timeout=60)
    assert "connectionEstablished" not in client.names()
    chain.wait_ended("pppd")

    client.call("setAccountData", LOGIN, PASSWORD)
    assert client.wait_signal("accountDataChanged").args == (True,)
    assert client.call("getLoginAndPassword") == [LOGIN, PASSWORD]
    chain.connect()


def test_an_account_set_over_the_bus_takes_the_place_of_an_unknown_login(chain):
    client = chain.make_ready(login="nobody", password="nothing")
    client.call("establishConnection")
    client.wait_signal("invalidAccountData", timeout=60)
    client.wait_signal("connectionState", timeout=60)
    client.call("setAccountData", LOGIN, PASSWORD)
    client.wait_signal("accountDataChanged", where=lambda done: done)
    chain.connect()
    assert f'user "{LOGIN}"' in system.PEER.read_text()


def test_a_provider_that_says_permission_denied_is_believed(chain):
    client = chain.make_ready(provider={"extra": [make_denying_plugin("/var/lib")]})
    mark = client.mark()
    client.call("establishConnection")
    client.wait_signal("invalidAccountData", timeout=60, after=mark)
    client.wait_signal("connectionState", where=lambda state: state == 2, timeout=60)
    assert 'rcvd [CHAP Failure id=' in chain.daemon_log()
    assert '"permission denied"' in chain.daemon_log()
    chain.wait_ended("pppd")


def test_no_concentrator_is_a_timeout_and_pppd_is_ended(chain):
    client = chain.make_ready()
    chain.provider.fall_silent()
    mark = client.mark()
    client.call("establishConnection")
    client.wait_signal("connectionTimeout", timeout=DISCOVERY_SECONDS, after=mark)
    client.wait_signal("connectionState", after=mark, where=lambda state: state == 2)
    assert client.names(after=mark).count("connectionTimeout") == 1
    chain.wait_ended("pppd")

    chain.provider.serve()
    chain.connect()


def check_that_the_end_is_told(chain, client):
    """No signal says it; whoever asks is told."""
    chain.wait_state(2, 120)
    chain.wait_ended("pppd")
    assert client.call("getIsModemPlugged") is True
    assert "connectionTerminated" not in client.names()


def test_after_the_provider_has_hung_up_the_client_is_told_when_it_asks(chain):
    client = chain.make_ready()
    chain.connect()
    chain.wait_state(0)
    chain.provider.hang_up()
    check_that_the_end_is_told(chain, client)
    chain.connect()


def test_over_atm_unanswered_echoes_tell_that_the_provider_is_gone(chain):
    client = chain.make_ready(protocol="PPPoA")
    chain.connect()
    chain.wait_state(0)
    chain.provider.fall_silent()
    check_that_the_end_is_told(chain, client)
    chain.provider.serve()
    chain.connect()


def test_over_atm_a_provider_that_starts_anew_finds_the_same_connection(chain):
    client = chain.make_ready(protocol="PPPoA")
    chain.connect()
    chain.wait_state(0)
    pppd = system.processes("pppd")
    chain.provider.hang_up()
    wait_until(lambda: chain.provider.said().count("remote IP address") == 2, 60,
               "the provider's next pppd has negotiated", chain.provider.said)
    # Our end takes the address down and up again a moment later than the provider's.
    wait_until(world.carries_traffic, 60, "traffic passes again")
    assert client.call("getConnectionState") == 0
    assert system.processes("pppd") == pppd

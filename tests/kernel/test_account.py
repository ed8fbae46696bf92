# SPDX-License-Identifier: MIT
"""Login and password: refused, corrected over the bus, accepted; providers that do not answer."""

import pytest

from lab.kernel import system
from lab.kernel.provider import LOGIN, PASSWORD, make_denying_plugin

# pppd asks for a concentrator at 0, 5 and 15 s and gives up after 35.
DISCOVERY_SECONDS = 90


def ready(chain, protocol="PPPoE", authentication="chap", extra=(), **account):
    """A modem with its line up, a provider, and a daemon that has not connected yet."""
    chain.configure("cxacru", protocol)
    chain.write_account(protocol, **account)
    chain.start_provider(protocol, authentication=authentication, extra=extra)
    chain.plug("cxacru")
    chain.wait_line_up()
    return chain.start_daemon()


@pytest.mark.parametrize("protocol, authentication", [
    ("PPPoE", "chap"), ("PPPoE", "pap"), ("PPPoE", "mschap-v2"), ("PPPoA", "chap"),
    ("PPPoA", "pap")])
def test_a_refused_password_is_reported_and_the_corrected_one_connects(
        chain, protocol, authentication):
    client = ready(chain, protocol, authentication, password="wrong")
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
    client = ready(chain, login="nobody", password="nothing")
    client.call("establishConnection")
    client.wait_signal("invalidAccountData", timeout=60)
    client.wait_signal("connectionState", timeout=60)
    client.call("setAccountData", LOGIN, PASSWORD)
    client.wait_signal("accountDataChanged", where=lambda done: done)
    chain.connect()
    assert f'user "{LOGIN}"' in system.PEER.read_text()


def test_a_provider_that_says_permission_denied_is_believed(chain):
    client = ready(chain, extra=[make_denying_plugin("/var/lib")])
    mark = client.mark()
    client.call("establishConnection")
    client.wait_signal("invalidAccountData", timeout=60, after=mark)
    client.wait_signal("connectionState", where=lambda state: state == 2, timeout=60)
    assert 'rcvd [CHAP Failure id=' in chain.daemon_log()
    assert '"permission denied"' in chain.daemon_log()
    chain.wait_ended("pppd")


def test_no_concentrator_is_a_timeout_and_pppd_is_ended(chain):
    client = ready(chain)
    chain.provider.fall_silent()
    mark = client.mark()
    client.call("establishConnection")
    client.wait_signal("connectionTimeout", timeout=DISCOVERY_SECONDS, after=mark)
    client.wait_signal("connectionState", after=mark, where=lambda state: state == 2)
    assert client.names(after=mark).count("connectionTimeout") == 1
    chain.wait_ended("pppd")

    chain.provider.serve()
    chain.connect()


@pytest.mark.parametrize("protocol", ["PPPoE", "PPPoA"])
def test_after_the_provider_has_hung_up_the_client_is_told_when_it_asks(chain, protocol):
    client = ready(chain, protocol)
    chain.connect()
    chain.wait_state(0)
    chain.provider.hang_up()
    # Over ATM nobody says that the far end is gone; the echoes find out.
    chain.wait_state(2, 90)
    chain.wait_ended("pppd")
    assert client.call("getIsModemPlugged") is True

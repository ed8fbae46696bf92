# SPDX-License-Identifier: MIT
"""The resolver configuration after a real pppd has brought the link up."""

import pytest

from lab.kernel import system
from lab.kernel.provider import NAMESERVERS
from lab.waiting import wait_until

PEER_DNS = "usepeerdns\n"


def test_a_usable_configuration_is_left_alone(chain):
    client = chain.make_ready(replace=[(PEER_DNS, "")])
    mark = chain.connect()
    client.wait_signal("connectionState", after=mark)
    client.expect_no_signal("incorrectDNS")
    assert system.RESOLVER.read_text() == system.GOOD_RESOLVER


@pytest.mark.quick
def test_a_configuration_without_servers_is_reported_and_repaired(chain):
    system.RESOLVER.write_text("search lab\n")
    client = chain.make_ready(replace=[(PEER_DNS, "")])
    mark = chain.connect()
    client.wait_signal("incorrectDNS", after=mark)
    assert client.wait_signal("settingOpenDNS", after=mark).args == (True,)
    text = system.RESOLVER.read_text()
    assert "nameserver 208.67.222.222\nnameserver 208.67.220.220\n" in text
    assert "search lab\n" in text

    chain.disconnect()
    mark = chain.connect()
    client.wait_signal("connectionState", after=mark)
    assert "incorrectDNS" not in client.names(after=mark)


def test_the_servers_that_the_provider_names_arrive(chain):
    client = chain.make_ready()
    chain.connect()
    wait_until(lambda: all(server in system.RESOLVER.read_text() for server in NAMESERVERS),
               what="the provider's servers are configured",
               detail=system.RESOLVER.read_text)
    assert client.call("getConnectionState") in (0, 1)

# SPDX-License-Identifier: MIT
"""A unicorn modem as far as the kernel can show one: its driver is none of the kernel's own, so its
lines are written to the kernel log, and its interface is one end of a cable to the provider."""

import pathlib

from lab.kernel import chain as world
from lab.kernel import system
from lab.kernel.provider import CLIENT_ADDRESS, LOGIN, PASSWORD

KERNEL_LOG = pathlib.Path("/dev/kmsg")
MODEM = {"vendor_id": 0x0483, "product_id": 0x0138, "modem": "ZTE ZXDSL 852"}


def test_a_unicorn_modem_connects_over_its_own_interface_when_its_line_is_up(chain):
    # The protocol does not matter: such a modem has its own peer file and no bridge.
    system.write_settings(**MODEM, protocol="PPPoE", vpi=8, vci=35)
    system.write_peer("norvix_unicorn", target=system.UNICORN_PEER)
    system.write_account(LOGIN, PASSWORD)
    chain.start_provider("dsl0")
    KERNEL_LOG.write_text("unicorn_msw: Current Modem State (2): INITIALIZING\n")
    client = chain.start_daemon()
    # The driver is missing and cannot be built. Until that is known the daemon does not understand
    # what pppd says.
    client.wait_signal("compilationFinished", timeout=120, where=lambda done: not done)
    client.call("setAccountData", LOGIN, PASSWORD)
    client.wait_signal("accountDataChanged", where=lambda done: done)

    client.call("establishConnection")
    client.wait_signal("synchronizing")
    KERNEL_LOG.write_text("unicorn_msw: Current Modem State (5): SHOWTIME_L0\n")
    client.wait_signal("connectionEstablished", timeout=90)
    assert client.wait_signal("IP").args == (CLIENT_ADDRESS,)
    assert "ConnectThread::prepareDSL0(): ifconfig dsl0 up: success." in chain.daemon_log()
    assert "prepareBridging" not in chain.daemon_log()
    assert world.exchange_traffic() == 20_000
    chain.disconnect()
    chain.wait_state(2)

# SPDX-License-Identifier: MIT
"""Unplugged and plugged again, with and without firmware, at boot and while the daemon runs."""

import time

import pytest

from lab.kernel import chain as world
from lab.kernel import system


@pytest.mark.parametrize("kind", [
    pytest.param("cxacru", marks=pytest.mark.quick), "speedtch", "eagle-e4"])
def test_an_unplugged_modem_ends_the_connection_and_plugged_again_connects_by_itself(chain, kind):
    chain.configure(kind, autoconnect=True)
    chain.write_account()
    chain.start_provider()
    client = chain.start_daemon()
    chain.plug(kind)
    client.wait_signal("modemPlugged", timeout=world.VERIFICATION_SECONDS,
                       where=lambda name: name == world.NAMES[kind])
    client.wait_signal("connectionEstablished", timeout=120)
    chain.wait_state(0)

    mark = client.mark()
    chain.unplug()
    client.wait_signal("modemUnplugged", after=mark)
    assert client.names(after=mark).index("connectionTerminated") < client.names(
        after=mark).index("modemUnplugged")
    assert client.call("getIsModemPlugged") is False
    chain.wait_state(2)
    chain.wait_ended("pppd")

    mark = client.mark()
    chain.plug(kind)
    client.wait_signal("modemPlugged", timeout=world.VERIFICATION_SECONDS, after=mark)
    client.wait_signal("connectionEstablished", timeout=120, after=mark)
    assert system.read_settings()["udi"] == world.UDIS[kind]


@pytest.mark.parametrize("kind", ["eagle-e4", "eagle"])
def test_a_modem_that_comes_back_with_its_firmware_is_announced_once(chain, kind):
    chain.configure_line()
    client = chain.start_daemon()
    chain.plug(kind)
    client.wait_signal("newModemPlugged", timeout=world.VERIFICATION_SECONDS)
    chain.wait_line_up()
    assert client.names().count("newModemPlugged") == 1
    assert "newModemUnplugged" not in client.names()
    client.call("useNewModem")
    assert int(client_setting("product_id")) == world.PRODUCTS[kind]


def client_setting(name):
    system.wait_until(lambda: name in system.read_settings(), what=f"{name} is stored")
    return system.read_settings()[name]


def test_without_firmware_the_modem_is_known_and_its_line_never_comes(chain):
    system.remove_firmware()
    try:
        chain.configure_line()
        client = chain.start_daemon()
        chain.plug("eagle-e4")
        client.wait_signal("newModemPlugged", timeout=world.VERIFICATION_SECONDS,
                           where=lambda name: name == "Sagem F@st 800 E4")
        client.call("useNewModem")
        client.call("establishConnection")
        client.wait_signal("synchronizationFailed", timeout=90)
    finally:
        system.write_firmware()


def test_a_firmware_upload_that_fails_is_an_error_of_the_line(chain):
    chain.configure("speedtch")
    client = chain.start_daemon()
    chain.plug("speedtch", has_firmware=False, takes_firmware=False)
    chain.wait_kernel_log("firmware upload failed")
    client.call("establishConnection")
    client.wait_signal("synchronizing")
    assert "getModemState(): error" in chain.daemon.output()
    client.wait_signal("synchronizationFailed", timeout=90)


def test_a_firmware_upload_that_succeeds_brings_the_line_up(chain):
    chain.configure("speedtch")
    chain.write_account()
    chain.start_provider()
    chain.start_daemon()
    chain.plug("speedtch", has_firmware=False)
    chain.wait_line_up()
    chain.connect()


def test_an_adopted_modem_connects_at_once_when_that_is_wished(chain):
    chain.configure_line()
    chain.write_account()
    chain.start_provider()
    client = chain.start_daemon()
    client.call("setConnectAtModemPlug", True)
    chain.plug("cxacru")
    client.wait_signal("newModemPlugged", timeout=world.VERIFICATION_SECONDS)
    client.call("useNewModem")
    client.wait_signal("connectionEstablished", timeout=90)


def test_a_modem_that_was_never_adopted_is_reported_gone(chain):
    chain.configure_line()
    client = chain.start_daemon()
    chain.plug("cxacru")
    client.wait_signal("newModemPlugged", timeout=world.VERIFICATION_SECONDS)
    chain.unplug()
    client.wait_signal("newModemUnplugged")
    time.sleep(1)
    client.expect_no_signal("modemUnplugged")


def test_a_plugged_modem_connects_at_boot(chain):
    chain.make_ready(settings={"connect_at_boot": True})
    chain.wait_state(0, 90)
    assert "modem is plugged in, connect at boot." in chain.daemon_log()

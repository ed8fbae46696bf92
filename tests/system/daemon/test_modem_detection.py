# SPDX-License-Identifier: MIT
"""Modems that are plugged and unplugged, with a HAL that tells the truth, lies, hangs or is gone."""
import time
from signal import SIGCONT, SIGSTOP

import pytest
from machine_fixtures import ROOT_ONLY

from lab.machine.fake_hal import DEVICES, SERVICE, FakeHal
from lab.machine.pppd_script import link_up, stay
from lab.waiting import wait_for_line, wait_until

SPEEDTOUCH = (0x06B9, 0x4061)
EAGLE, EAGLE_BEFORE_FIRMWARE = (0x1110, 0x9041), (0x1110, 0x9042)
VERIFY_DELAY = 5.0


def configured(machine, udi, ids=SPEEDTOUCH, **more):
    machine.settings(modem="Thomson Speedtouch 330", vendor_id=ids[0], product_id=ids[1], udi=udi, **more)


def started(machine, *arguments):
    """A daemon whose start-up is over, and a client."""
    client = machine.client()
    daemon = machine.start_daemon(*arguments)
    daemon.wait_for_log("getModemState(): klogctl()")
    return daemon, client


def modem_signals(client, after=0):
    return [(s.name, s.args) for s in client.signals[after:] if "odemPlugged" in s.name or "odemUnplugged" in s.name]


# ---- is it plugged

def test_the_configured_modem_is_plugged_when_hal_lists_it(hal_machine, hal):
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    configured(hal_machine, udi)
    _, client = started(hal_machine)
    assert client.call("getIsModemPlugged") is True
    assert ("GetAllDevices", "/org/freedesktop/Hal/Manager", ("udi",)) in hal.calls
    hal.unplug(udi)
    assert client.call("getIsModemPlugged") is False


@pytest.mark.parametrize("listed", ["usb_device_6b9_4061_10", "USB_DEVICE_6b9_4061_1", "usb_device_6b9_4061"])
def test_only_the_exact_identifier_counts(hal_machine, hal, listed):
    hal.plug(listed, *SPEEDTOUCH)
    configured(hal_machine, DEVICES + "usb_device_6b9_4061_1")
    _, client = started(hal_machine)
    assert client.call("getIsModemPlugged") is False


def test_with_nothing_configured_no_modem_is_plugged(hal_machine, hal):
    hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    _, client = started(hal_machine)
    assert client.call("getIsModemPlugged") is False
    hal.devices["#"] = {}
    assert client.call("getIsModemPlugged") is True


def test_without_hal_the_answer_is_false_and_a_log_line(bus_machine):
    daemon, client = started(bus_machine)
    told = "Norvix_Daemon::getIsModemPlugged(): invalid dbus reply, returning false!\n"
    before = bus_machine.daemon_log().count(told)
    assert client.call("getIsModemPlugged") is False
    assert bus_machine.daemon_log().count(told) == before + 1
    assert daemon.running()


@pytest.mark.parametrize("answer", [("s", ("text",)), ("i", (7,)), ("", ()), ("ao", (["/a"],)),
                                    ("a{sv}", ({},)), ("asas", (["#"], ["#"]))])
def test_a_list_of_another_type_is_no_list(hal_machine, hal, answer):
    hal.answer_to_list = answer
    _, client = started(hal_machine)
    assert client.call("getIsModemPlugged") is False
    assert "invalid dbus reply" in hal_machine.daemon_log()


def test_100000_devices_are_searched(hal_machine, hal):
    hal.devices = {DEVICES + "d%06d" % number: {} for number in range(100000)}
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH, announce=False)
    configured(hal_machine, udi)
    _, client = started(hal_machine)
    # A busy machine may need longer for the list than HAL is given.
    wait_until(lambda: client.call("getIsModemPlugged"), what="the modem is found in the list")


# ---- plugging and unplugging

def test_a_new_modem_is_announced_once_five_seconds_after_the_last_addition(hal_machine, hal):
    daemon, client = started(hal_machine, "-d")
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    daemon.wait_for_log('debugHandler: device added: "%s" \n' % udi)
    for number in range(3):
        hal.plug("usb_device_6b9_4061_1_if%d" % number)  # no ids: ignored
    time.sleep(1)  # the second addition restarts the five seconds
    last = time.monotonic()
    hal.announce("DeviceAdded", udi)
    signal = client.wait_signal("newModemPlugged")
    assert signal.args == ("Thomson Speedtouch 330",)
    assert signal.time - last > VERIFY_DELAY - 0.1
    time.sleep(VERIFY_DELAY + 1)  # nor is it examined every five seconds
    client.mark()
    assert modem_signals(client) == [("newModemPlugged", ("Thomson Speedtouch 330",))]
    assert "Norvix_Daemon::verifyDevice: %s\n" % udi in daemon.output()
    assert "Norvix_Daemon::verifyDevice: new modem plugged.\n" in daemon.output()
    assert hal_machine.daemon_log().count("device added: ") == 2


def test_the_configured_modem_is_announced_once_by_its_configured_name(hal_machine, hal):
    configured(hal_machine, DEVICES + "usb_device_6b9_4061_1")
    daemon, client = started(hal_machine, "-d")
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    hal.plug("usb_device_6b9_4061_1_if0")
    hal.announce("DeviceAdded", udi)
    client.wait_signal("modemPlugged")
    client.mark()
    assert modem_signals(client) == [("modemPlugged", ("Thomson Speedtouch 330",))]
    assert "Norvix_Daemon::verifyDevice: modem plugged\n" in daemon.output()
    assert client.call("getConnectionState") == 2
    assert hal_machine.calls("pppd") == []


@pytest.mark.parametrize("keys,connects", [
    ({"autoconnect": True}, True), ({"autoconnect": False}, False),
    ({"connect_at_modem_plug": True}, False),
])
def test_autoconnect_alone_decides_for_the_configured_modem(hal_machine, hal, keys, connects):
    configured(hal_machine, DEVICES + "usb_device_6b9_4061_1", **keys)
    daemon, client = started(hal_machine, "-d")
    hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("modemPlugged")
    if connects:
        client.wait_signal("establishingConnection")
        assert "Norvix_Daemon::verifyDevice: emit establishConnection()\n" in daemon.output()
    else:
        client.expect_no_signal("establishingConnection")


def test_a_device_outside_the_catalogue_is_not_announced(hal_machine, hal):
    daemon, client = started(hal_machine, "-d")
    udi = hal.plug("usb_device_46d_c526_noserial", 0x046D, 0xC526)
    daemon.wait_for_output("Norvix_Daemon::verifyDevice: %s\n" % udi)
    client.mark()
    assert modem_signals(client) == []


def test_while_the_configured_modem_is_there_no_new_one_is_announced(hal_machine, hal):
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    configured(hal_machine, udi)
    daemon, client = started(hal_machine, "-d")
    other = hal.plug("usb_device_1110_9041_1", *EAGLE)
    daemon.wait_for_output("Norvix_Daemon::verifyDevice: %s\n" % other)
    client.mark()
    assert modem_signals(client) == []


def test_firmware_re_enumeration_is_one_announcement_of_the_right_modem(hal_machine, hal):
    daemon, client = started(hal_machine, "-d")
    before = hal.plug("usb_device_1110_9042_noserial", *EAGLE_BEFORE_FIRMWARE)
    daemon.wait_for_log("device added: ")
    hal.unplug(before)
    after = hal.plug("usb_device_1110_9041_noserial", *EAGLE)
    client.wait_signal("newModemPlugged")
    client.mark()
    assert modem_signals(client) == [("newModemPlugged", ("Sagem F@st 800 E4",))]
    client.call("useNewModem")
    ini = hal_machine.path("/opt/norvix/.daemon_ng.ini")
    wait_for_line(ini, "^udi=%s$" % after)
    wait_for_line(ini, "^product_id=%d$" % EAGLE[1])


def test_removing_the_new_modem_is_announced_once(hal_machine, hal):
    daemon, client = started(hal_machine, "-d")
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("newModemPlugged")
    hal.unplug(udi)
    client.wait_signal("newModemUnplugged")
    hal.announce("DeviceRemoved", udi)
    hal.announce("DeviceRemoved", DEVICES + "another")
    hal.call_bus("GetId")
    client.mark()
    assert modem_signals(client)[1:] == [("newModemUnplugged", ())]
    assert daemon.output().count("Norvix_Daemon::deviceRemoved: new modem removed\n") == 1


@pytest.mark.parametrize("is_connected", [False, True])
def test_removing_the_configured_modem_ends_the_connection(hal_machine, hal, is_connected):
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    configured(hal_machine, udi)
    hal_machine.kernel_log.line_up(SPEEDTOUCH[0])
    hal_machine.pppd.script(link_up() + [stay()])
    client = hal_machine.client()
    daemon = hal_machine.start_daemon("-d")
    daemon.wait_for_output("Norvix Daemon: started.\n")
    if is_connected:
        client.call("establishConnection")
        client.wait_signal("connectionEstablished")
    hal.unplug(udi)
    client.wait_signal("modemUnplugged")
    assert modem_signals(client) == [("modemUnplugged", ())]
    assert client.names().count("connectionTerminated") == 1
    assert "Norvix_Daemon::deviceRemoved: modem removed\n" in daemon.output()
    wait_until(lambda: not hal_machine.processes("pppd"), what="pppd is gone")


def test_the_configured_modem_plugged_and_removed_is_told_once_each(hal_machine, hal):
    configured(hal_machine, DEVICES + "usb_device_6b9_4061_1")
    _, client = started(hal_machine)
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("modemPlugged")
    hal.unplug(udi)
    client.wait_signal("modemUnplugged")
    client.mark()
    assert [name for name, _ in modem_signals(client)] == ["modemPlugged", "modemUnplugged"]


# ---- settings that another program has written meanwhile

def test_a_device_is_examined_by_the_settings_as_they_are_then(hal_machine, hal):
    daemon, client = started(hal_machine)
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    daemon.wait_for_log("device added: ")
    configured(hal_machine, udi)
    wait_until(lambda: modem_signals(client), what="the device is examined")
    assert modem_signals(client) == [("modemPlugged", ("Thomson Speedtouch 330",))]


def test_a_removal_is_judged_by_the_settings_as_they_are_then(hal_machine, hal):
    _, client = started(hal_machine)
    configured(hal_machine, DEVICES + "usb_device_6b9_4061_1")
    hal.unplug(DEVICES + "usb_device_6b9_4061_1")
    client.wait_signal("modemUnplugged")


def test_with_nothing_configured_an_empty_identifier_is_that_of_the_modem(hal_machine, hal):
    """And the sign of no modem is that of no new modem, which goes with it."""
    _, client = started(hal_machine)
    hal.announce("DeviceRemoved", "#")
    hal.announce("DeviceRemoved", "")
    client.wait_signal("modemUnplugged")
    assert modem_signals(client) == [("newModemUnplugged", ()), ("modemUnplugged", ())]


# ---- adopting

def test_an_adopted_modem_does_not_count_as_plugged_until_it_is_seen_again(hal_machine, hal):
    _, client = started(hal_machine)
    hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("newModemPlugged")
    client.call("useNewModem")
    hal.plug("usb_device_1110_9041_1", *EAGLE)
    assert client.wait_signal("newModemPlugged", count=2).args == ("Sagem F@st 800 E4",)


def test_an_adopted_modem_is_the_configured_one_from_then_on(hal_machine, hal):
    daemon, client = started(hal_machine, "-d")
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("newModemPlugged")
    client.call("useNewModem")
    assert client.wait_signal("modemPlugged").args == ("Thomson Speedtouch 330",)
    assert client.call("getIsModemPlugged") is True
    hal.unplug(udi)
    client.wait_signal("modemUnplugged")
    hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("modemPlugged", count=2)
    assert [name for name, _ in modem_signals(client)] == [
        "newModemPlugged", "modemPlugged", "modemUnplugged", "modemPlugged"]
    assert daemon.running()


@pytest.mark.parametrize("keys,connects", [
    ({"connect_at_modem_plug": True}, True), ({"autoconnect": True}, False), ({}, False)])
def test_connect_at_modem_plug_alone_decides_for_an_adopted_modem(hal_machine, hal, keys, connects):
    hal_machine.settings(**keys)
    _, client = started(hal_machine)
    hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("newModemPlugged")
    client.call("useNewModem")
    if connects:
        client.wait_signal("establishingConnection")
    else:
        client.expect_no_signal("establishingConnection")


def test_adopting_when_nothing_was_announced_writes_nothing_useful(bus_machine):
    daemon, client = started(bus_machine)
    client.call("useNewModem")
    assert client.wait_signal("modemPlugged").args == ("",)
    ini = bus_machine.path("/opt/norvix/.daemon_ng.ini")
    wait_until(ini.exists, what="the settings are written")
    text = ini.read_text(encoding="ascii")
    assert "modem=\n" in text and "vendor_id=0\n" in text and "product_id=0\n" in text
    assert "udi=#\n" in text
    client.call("useNewModem")
    wait_until(lambda: "udi=\n" in ini.read_text(encoding="ascii"), what="the identifier is empty now")
    assert daemon.running()


def test_connecting_at_boot_needs_the_setting_and_the_modem(hal_machine, hal):
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    configured(hal_machine, udi, connect_at_boot=True)
    hal_machine.kernel_log.line_up(SPEEDTOUCH[0])
    client = hal_machine.client()
    hal_machine.start_daemon()
    client.wait_signal("connectionEstablished")
    assert "Norvix_Daemon(): modem is plugged in, connect at boot.\n" in hal_machine.daemon_log()


@pytest.mark.parametrize("connect_at_boot,plugged", [(True, False), (False, True)])
def test_otherwise_nothing_connects_at_boot(hal_machine, hal, connect_at_boot, plugged):
    if plugged:
        hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    configured(hal_machine, DEVICES + "usb_device_6b9_4061_1", connect_at_boot=connect_at_boot)
    _, client = started(hal_machine)
    client.expect_no_signal("establishingConnection")
    assert "connect at boot" not in hal_machine.daemon_log()


# ---- a HAL that fails

BAD_PATHS = ["", "bad path", "/", "//", "/a//b", "/a/", "a/b", "/ünïcode", "/a b", "/a-b", "/a.b", "/%s%n",
             "/\n", "\n", "#", "...", "/org/freedesktop/Hal/devices/", "/a\x7f", "x" * 10000, "/" + "x" * 100000]


@pytest.mark.parametrize("udi", BAD_PATHS, ids=["bad%d" % number for number in range(len(BAD_PATHS))])
def test_an_identifier_that_is_no_object_path_is_ignored(hal_machine, hal, udi):
    daemon, client = started(hal_machine)
    hal.announce("DeviceAdded", udi)
    hal.announce("DeviceRemoved", udi)
    hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    daemon.wait_for_log("device added: ")
    assert hal_machine.daemon_log().count("device added: ") == 1
    assert client.call("reply") is True
    assert daemon.running()


def test_announcements_of_another_type_are_ignored(hal_machine, hal):
    daemon, client = started(hal_machine)
    hal.announce("DeviceAdded", 7, "i")
    hal.announce("DeviceAdded", DEVICES + "x", "o")
    hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    daemon.wait_for_log("device added: ")
    assert hal_machine.daemon_log().count("device added: ") == 1
    assert client.call("reply") is True


@pytest.mark.parametrize("answer,counts", [
    (("v", (("i", 0x06B9),)), True), (("u", (0x06B9,)), False), (("s", ("1721",)), False),
    (("", ()), False), (("as", (["1721"],)), False), (("v", (("s", "1721"),)), False),
    (("v", (("u", 0x06B9),)), False), (("x", (0x06B9,)), False), (("q", (0x06B9,)), False),
])
def test_only_ids_that_are_signed_32_bit_numbers_count(hal_machine, hal, answer, counts):
    daemon, _ = started(hal_machine)
    hal.plug("odd", answer, SPEEDTOUCH[1])
    sure = hal.plug("usb_device_1110_9041_1", *EAGLE)
    daemon.wait_for_log('device added: "%s"' % sure)
    assert hal_machine.daemon_log().count("device added: ") == (2 if counts else 1)


def test_one_id_that_cannot_be_read_counts_as_0(hal_machine, hal):
    """The device is examined five seconds after it was announced; by then one id is gone."""
    configured(hal_machine, DEVICES + "x", ids=(SPEEDTOUCH[0], 0))
    daemon, client = started(hal_machine)
    udi = hal.plug("x", *SPEEDTOUCH)
    daemon.wait_for_log("device added: ")
    del hal.devices[udi]["usb_device.product_id"]
    assert client.wait_signal("modemPlugged").args == ("Thomson Speedtouch 330",)


def test_a_device_that_is_gone_when_it_is_examined_is_not_announced(hal_machine, hal):
    daemon, client = started(hal_machine, "-d")
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    daemon.wait_for_log("device added: ")
    del hal.devices[udi]
    daemon.wait_for_output("Norvix_Daemon::verifyDevice: %s\n" % udi)
    client.mark()
    assert modem_signals(client) == []


def test_a_hal_that_comes_after_the_daemon_is_heard(hal_machine):
    daemon, client = started(hal_machine)
    assert client.call("getIsModemPlugged") is False
    hal = FakeHal.start(hal_machine)
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("newModemPlugged")
    client.call("useNewModem")
    assert client.call("getIsModemPlugged") is True
    hal.leave_name()
    assert client.call("getIsModemPlugged") is False
    again = FakeHal.start(hal_machine)
    again.devices = {udi: {}}
    assert client.call("getIsModemPlugged") is True
    again.unplug(udi)
    client.wait_signal("modemUnplugged")
    assert daemon.running()


def test_a_hal_that_dies_between_two_questions_is_no_harm(hal_machine, hal):
    daemon, client = started(hal_machine)
    hal.silent = {"GetProperty"}
    hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    wait_until(lambda: [call for call in hal.calls if call[0] == "GetProperty"], what="the question")
    hal.close()
    assert client.call("reply") is True
    assert "device added" not in hal_machine.daemon_log()
    assert daemon.running()


HAL_LIMIT = 5  # seconds that HAL may think about a question


def duration(call):
    begun = time.monotonic()
    call()
    return time.monotonic() - begun


def test_a_hal_that_hangs_over_the_list_costs_its_limit_once(hal_machine, hal):
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    configured(hal_machine, udi)
    daemon, client = started(hal_machine)
    hal.silent = {"GetAllDevices"}
    begun = time.monotonic()
    assert client.call("getIsModemPlugged", timeout=60) is False
    assert HAL_LIMIT - 1 < time.monotonic() - begun < 2 * HAL_LIMIT
    assert duration(lambda: client.call("getIsModemPlugged")) < HAL_LIMIT / 2
    assert hal_machine.daemon_log().count("invalid dbus reply, returning false!\n") == 2
    hal.silent = set()
    wait_until(lambda: client.call("getIsModemPlugged"), what="the answer is true again")
    assert daemon.running()


def silenced(hal, client, *announced):
    """A HAL that has just been found to answer no more when those devices were announced."""
    hal.silent = {"GetProperty"}
    asked = len(hal.calls)
    for udi in announced:
        hal.announce("DeviceAdded", udi)
    wait_until(lambda: len(hal.calls) > asked, what="the question")
    assert duration(lambda: client.call("reply", timeout=60)) < 2 * HAL_LIMIT


def test_while_hal_is_silent_nobody_waits_and_no_modem_is_lost(hal_machine, hal):
    daemon, client = started(hal_machine, "-d")
    stick = hal.plug("usb_device_46d_c526_noserial", 0x046D, 0xC526, announce=False)
    other = hal.plug("usb_device_46d_c52b_noserial", 0x046D, 0xC52B, announce=False)
    modem = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH, announce=False)
    silenced(hal, client, stick)
    for udi in (stick, stick, other, stick, modem):
        hal.announce("DeviceAdded", udi)
    hal.announce("DeviceRemoved", DEVICES + "something")
    for _ in range(3):
        hal.announce("DeviceAdded", modem)
    for _ in range(20):
        assert duration(lambda: client.call("reply")) < HAL_LIMIT / 2
    assert "device added: " not in hal_machine.daemon_log()

    hal.silent = set()
    assert client.wait_signal("newModemPlugged").args == ("Thomson Speedtouch 330",)
    accepted = [line.split('"')[1] for line in hal_machine.daemon_log().splitlines() if "device added: " in line]
    assert accepted == [stick, other, stick, modem, modem]
    assert daemon.running()


def test_a_removal_counts_at_once_though_hal_is_silent(hal_machine, hal):
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    configured(hal_machine, udi)
    _, client = started(hal_machine)
    silenced(hal, client, udi)
    hal.announce("DeviceRemoved", udi)
    client.wait_signal("modemUnplugged", timeout=HAL_LIMIT)


def test_a_modem_is_examined_late_where_hal_was_silent_when_it_was_due(hal_machine, hal):
    daemon, client = started(hal_machine)
    hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    daemon.wait_for_log("device added: ")
    stick = hal.plug("usb_device_46d_c526_noserial", 0x046D, 0xC526, announce=False)
    hal.silent = {"GetProperty"}
    asked = len(hal.calls)
    wait_until(lambda: len(hal.calls) > asked, what="the examination")
    assert duration(lambda: client.call("reply", timeout=60)) < 2 * HAL_LIMIT
    hal.announce("DeviceAdded", stick)
    client.call("reply")
    hal.silent = set()
    assert client.wait_signal("newModemPlugged").args == ("Thomson Speedtouch 330",)


def test_of_a_silent_hal_that_dies_the_next_one_answers(hal_machine, hal):
    _, client = started(hal_machine)
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH, announce=False)
    silenced(hal, client, udi)
    devices = hal.devices
    hal.close()
    again = hal_machine.client(kind=FakeHal)
    again.devices = devices
    again.take_name()
    assert client.wait_signal("newModemPlugged").args == ("Thomson Speedtouch 330",)


def test_a_call_waits_for_few_of_very_many_announcements(hal_machine, hal):
    daemon, client = started(hal_machine)
    asked = len(hal.calls)
    many = 3000
    daemon.signal(SIGSTOP)  # so that all of them wait when the call comes
    for number in range(many):
        hal.announce("DeviceAdded", DEVICES + "d%d" % number)
    hal.call_bus("GetId")
    call = client.start_call("reply")
    client.call_bus("GetId")
    daemon.signal(SIGCONT)
    assert client.finish_call(call).body == (True,)
    assert len(hal.calls) - asked < many
    modem = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    asked = len(hal.calls)
    while modem not in [path for _, path, _ in hal.calls]:  # all of them may take long; each does not
        wait_until(lambda before=asked: len(hal.calls) > before, what="the next one is looked at")
        asked = len(hal.calls)
    daemon.wait_for_log('device added: "%s"' % modem)


@ROOT_ONLY
def test_a_hal_under_a_user_of_its_own_is_heard(machine):
    user = 65534
    machine.start_bus(names=[SERVICE], owner=user)
    hal = machine.client(uid=user, kind=FakeHal)
    hal.take_name()
    _, client = started(machine)
    hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    client.wait_signal("newModemPlugged")


@ROOT_ONLY
def test_broadcasts_of_others_than_hal_do_not_reach_the_daemon(hal_machine, hal):
    udi = hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
    configured(hal_machine, udi)
    daemon, client = started(hal_machine)
    forger = hal_machine.client(uid=65534, kind=FakeHal)
    forger.announce("DeviceRemoved", udi)
    forger.announce("DeviceAdded", udi)
    forger.call_bus("GetId")
    hal.announce("DeviceAdded", udi)
    daemon.wait_for_log("device added: ")
    client.mark()
    assert hal_machine.daemon_log().count("device added: ") == 1
    assert modem_signals(client) == []

# SPDX-License-Identifier: MIT
"""norvix-hald between simulated devices and a client of the system bus."""
import shutil
import signal

import pytest
from hald_fixtures import client, hald, place, usb  # noqa: F401
from hald_fixtures import EVERY_EVENT, HUB, MODEM, came, error_of, settled, went

from lab.machine.companion import DEVICES, MANAGER, NAME, HalCompanion, device, devices, manager, news, wait_news
from lab.machine.private_machine import BUILD
from lab.waiting import wait_until

KERNEL_LOSES = BUILD / "lab/libudev-losing-events.so"


# ---- what is present

def test_a_modem_present_at_the_start_is_listed_and_not_announced(place, usb, client):
    usb.plug("1-1", 0x1110, 0x9041, interfaces=(0, 1, 2))
    hald = HalCompanion(place, usb, EVERY_EVENT)
    assert devices(client) == ["computer", HUB, MODEM, MODEM + "_if0", MODEM + "_if1", MODEM + "_if2"]
    assert settled(client) == []


def test_a_plugged_modem_is_announced_device_first_and_then_listed(usb, client, hald):
    usb.plug("1-1", 0x1110, 0x9041, interfaces=(0, 1, 2))
    assert wait_news(client, 4) == came(MODEM, 0, 1, 2)
    assert devices(client) == ["computer", HUB, MODEM, MODEM + "_if0", MODEM + "_if1", MODEM + "_if2"]


def test_signals_carry_one_string_and_come_from_the_manager(usb, client, hald):
    usb.plug("1-1", 0x1110, 0x9041, interfaces=())
    wait_news(client, 1)
    [signal_] = [one for one in client.signals if one.name == "DeviceAdded"]
    assert (signal_.path, signal_.interface, signal_.signature) == (MANAGER, NAME + ".Manager", "s")
    assert signal_.args == (DEVICES + MODEM,)


def test_the_device_can_be_asked_as_soon_as_it_is_announced(usb, client, hald):
    usb.plug("1-1", 0x1110, 0x9041)
    wait_news(client, 1)
    assert device(client, MODEM, "GetProperty", "s", "usb_device.vendor_id") == 0x1110
    assert MODEM in devices(client)


def test_an_unplugged_modem_goes_interfaces_first_and_is_not_listed_any_more(usb, client, hald):
    path = usb.plug("1-1", 0x1110, 0x9041, interfaces=(0, 1))
    usb.unplug(path)
    assert wait_news(client, 6) == came(MODEM, 0, 1) + went(MODEM, 0, 1)
    assert devices(client) == ["computer", HUB]
    assert error_of(device, client, MODEM, "GetProperty", "s", "info.udi").name == NAME + ".NoSuchDevice"


def test_interfaces_go_before_their_device_also_when_its_removal_comes_first(usb, client, hald):
    path = usb.plug("1-1", 0x1110, 0x9041, interfaces=(0, 1))
    usb.unplug(path, parent_first=True)
    assert wait_news(client, 6)[3:] == went(MODEM, 0, 1)


def test_a_bind_after_the_add_changes_the_driver_and_announces_nothing_else(usb, client, hald):
    path = usb.plug("1-1", 0x1110, 0x9041)
    wait_news(client, 2)
    usb.bind(path, "usb")
    usb.bind(path + "/1-1:1.0", "ueagle-atm")
    told = wait_news(client, 4)
    assert told[:2] == came(MODEM, 0)
    assert told[2:] == [("~" + MODEM, 1, [("info.linux.driver", False, True)]),
                        ("~" + MODEM + "_if0", 1, [("info.linux.driver", False, True)])]
    assert device(client, MODEM + "_if0", "GetProperty", "s", "info.linux.driver") == "ueagle-atm"
    [modified] = [one for one in client.signals if one.path == DEVICES + MODEM]
    assert (modified.name, modified.signature) == ("PropertyModified", "ia(sbb)")


def test_an_unbound_driver_is_gone(usb, client, hald):
    path = usb.plug("1-1", 0x1110, 0x9041, interfaces=(), driver="usb")
    wait_news(client, 1)
    assert device(client, MODEM, "GetPropertyString", "s", "info.linux.driver") == "usb"
    usb.request("driver", path=path, driver=None)
    usb.event(path, "unbind")
    assert wait_news(client, 2)[1:] == [("~" + MODEM, 1, [("info.linux.driver", True, False)])]
    assert device(client, MODEM, "PropertyExists", "s", "info.linux.driver") is False


@pytest.mark.parametrize("action", ["add", "change", "move", "online", "offline", "bind", "unbind"])
def test_no_further_event_but_its_removal_adds_or_removes(usb, client, hald, action):
    path = usb.plug("1-1", 0x1110, 0x9041, interfaces=())
    usb.event(path, action)
    usb.plug("1-2", 0x0572, 0xcafe, interfaces=())
    assert wait_news(client, 2) == came(MODEM) + came("usb_device_572_cafe_noserial")


def test_what_is_no_usb_device_is_not_seen(usb, client, hald):
    usb.request("add", name="sda", parent=None, attributes={}, subsystem="block",
                properties={"DEVTYPE": "disk", "PRODUCT": "1110/9041/1"})
    usb.request("add", name="lp0", parent=usb.hub, attributes={}, subsystem="usbmisc", properties={})
    usb.request("add", name="ep_00", parent=usb.hub, attributes={}, properties={"DEVTYPE": "usb_endpoint"})
    usb.plug("1-2", 0x0572, 0xcafe, interfaces=())
    assert wait_news(client, 1) == came("usb_device_572_cafe_noserial")
    assert devices(client) == ["computer", HUB, "usb_device_572_cafe_noserial"]


# ---- names

def test_the_same_modem_has_the_same_name_after_each_plugging_in_any_port(usb, client, hald):
    for port in ("1-1", "1-1", "1-3"):
        usb.unplug(usb.plug(port, 0x1110, 0x9041))
    assert wait_news(client, 12) == (came(MODEM, 0) + went(MODEM, 0)) * 3


def test_unplugged_and_plugged_in_one_breath_keeps_the_name(usb, client, hald):
    first = usb.plug("1-1", 0x1110, 0x9041)
    wait_news(client, 2)
    usb.many(usb.remove_requests(first), usb.add_requests("1-1", 0x1110, 0x9041))
    assert wait_news(client, 6)[2:] == went(MODEM, 0) + came(MODEM, 0)
    usb.many(usb.remove_requests(usb.hub + "/1-1"), usb.add_requests("1-2", 0x1110, 0x9041))
    assert wait_news(client, 10)[6:] == went(MODEM, 0) + came(MODEM, 0)


def test_many_times_unplugged_and_plugged_in_one_breath(usb, client, hald):
    steps = []
    for _ in range(50):
        steps += [usb.add_requests("1-1", 0x1110, 0x9041)]
        steps += [usb.remove_requests(usb.hub + "/1-1")]
    usb.many(*steps)
    told = wait_news(client, 200)
    assert told[0] == "+" + MODEM and told[-1] == "-" + MODEM
    assert set(told) == set(came(MODEM, 0) + went(MODEM, 0))
    assert [one for one in told if not one.endswith("if0")] == ["+" + MODEM, "-" + MODEM] * 50
    assert devices(client) == ["computer", HUB]


def test_a_modem_that_gets_its_firmware_goes_and_comes_under_its_other_name(usb, client, hald):
    before = usb.plug("1-1", 0x1110, 0x9042, interfaces=(0,))
    usb.many(usb.remove_requests(before), usb.add_requests("1-1", 0x1110, 0x9041, interfaces=(0, 1)))
    cold = "usb_device_1110_9042_noserial"
    assert wait_news(client, 7) == came(cold, 0) + went(cold, 0) + came(MODEM, 0, 1)
    assert device(client, MODEM, "GetProperty", "s", "usb_device.product_id") == 0x9041


def test_two_alike_are_told_apart_by_a_suffix_the_lowest_free_one(usb, client, hald):
    usb.plug("1-1", 0x1110, 0x9041)
    second = usb.plug("1-2", 0x1110, 0x9041)
    assert wait_news(client, 4)[2:] == came(MODEM + "_0", 0)
    assert device(client, MODEM + "_0", "GetProperty", "s", "linux.sysfs_path") == second
    usb.unplug(second)
    usb.plug("1-3", 0x1110, 0x9041)
    assert wait_news(client, 8)[6:] == came(MODEM + "_0", 0)


@pytest.mark.parametrize("serial,expected", [
    ("000E50126A00", "000E50126A00"), ("0000:00:1d.7", "0000_00_1d_7"), ("", "noserial"),
    ("a b/c-d.é", "a_b_c_d___"), ("../../..", "________"), ("x" * 300, "x" * 300)])
def test_every_serial_number_makes_a_valid_name(usb, client, hald, serial, expected):
    usb.plug("1-1", 0x06b9, 0x4061, serial=serial, interfaces=(0,))
    name = "usb_device_6b9_4061_" + expected
    assert wait_news(client, 2) == came(name, 0)
    assert device(client, name, "GetProperty", "s", "info.udi") == DEVICES + name
    if serial:
        assert device(client, name, "GetProperty", "s", "usb_device.serial") == serial
    else:
        assert device(client, name, "PropertyExists", "s", "usb_device.serial") is False


def test_leading_zeros_of_ids_are_not_in_names(usb, client, hald):
    usb.plug("1-1", 0x0483, 0x0138, interfaces=())
    usb.plug("1-2", 0x0572, 0xcafe, interfaces=())
    assert wait_news(client, 2) == came("usb_device_483_138_noserial") + came("usb_device_572_cafe_noserial")


# ---- races and floods

def test_a_device_that_no_event_and_no_file_identifies_is_not_announced(usb, client, hald):
    usb.plug("1-1", 0x1110, 0x9041, told=False, missing=("idVendor",))
    usb.plug("1-2", 0x1110, 0x9041, told=False, missing=("idProduct",))
    usb.plug("1-3", 0x0572, 0xcafe, interfaces=())
    assert wait_news(client, 1) == came("usb_device_572_cafe_noserial")
    assert devices(client) == ["computer", HUB, "usb_device_572_cafe_noserial"]


def test_an_event_identifies_a_device_whose_files_are_gone(usb, client, hald):
    usb.plug("1-1", 0x1110, 0x9041, missing=("idVendor", "idProduct", "serial"))
    assert wait_news(client, 2) == came(MODEM, 0)
    assert device(client, MODEM, "GetProperty", "s", "usb_device.product_id") == 0x9041


def test_files_alone_identify_a_device(usb, client, hald):
    usb.plug("1-1", 0x1110, 0x9041, told=False)
    assert wait_news(client, 2) == came(MODEM, 0)


def test_a_device_that_vanishes_while_it_is_read_leaves_no_trace(usb, client, hald):
    for _ in range(20):
        usb.many(usb.add_requests("1-1", 0x1110, 0x9041), usb.remove_requests(usb.hub + "/1-1"))
    last = came("usb_device_572_cafe_noserial")[0]
    usb.plug("1-2", 0x0572, 0xcafe, interfaces=())
    wait_until(lambda: last in news(client), what="all is told", detail=lambda: news(client))
    assert devices(client) == ["computer", HUB, last[1:]]
    told = [one for one in news(client) if one != last]
    assert set(told) == set(came(MODEM, 0) + went(MODEM, 0))
    for name in (MODEM, MODEM + "_if0"):
        mine = [one[0] for one in told if one[1:] == name]
        assert mine == ["+", "-"] * (len(mine) // 2)


def test_a_thousand_events_in_one_burst_lose_nobody(usb, client, hald):
    """125 modems with seven interfaces each; none is looked at before all events wait."""
    ports = range(125)
    hald.process.signal(signal.SIGSTOP)
    usb.many(*[usb.add_requests("1-%d" % port, 0x1110, 0x9041, serial="S%d" % port, interfaces=range(7))
               for port in ports])
    hald.process.signal(signal.SIGCONT)
    wait_news(client, 1000)
    assert len(devices(client)) == 1002
    usb.many(*[usb.remove_requests(usb.hub + "/1-%d" % port) for port in ports])
    told = wait_news(client, 2000)
    assert devices(client) == ["computer", HUB]
    assert len(told) == 2000
    of_each = {}
    for one in told:
        of_each.setdefault(one[1:].split("_if")[0], []).append(one)
    assert of_each == {name: came(name, *range(7)) + went(name, *range(7))
                       for name in ("usb_device_1110_9041_S%d" % port for port in ports)}


def test_the_bus_is_answered_during_a_flood(usb, client, hald):
    for port in range(40):
        usb.many(usb.add_requests("1-%d" % port, 0x1110, 0x9041, serial="S%d" % port, interfaces=range(7)))
        assert manager(client, "DeviceExists", "s", DEVICES + "computer") is True
    wait_news(client, 320)


def test_lost_events_are_made_up_for(place, usb, client):
    """The kernel drops events when a listener is slow, and says so with the next read."""
    shutil.copy(KERNEL_LOSES, place.state / "lib")
    trigger = place.path("/run/lab/lose-events")
    hald = HalCompanion(place, usb, EVERY_EVENT, env={
        "LD_PRELOAD": "/mnt/lab/lib/%s:%s" % (KERNEL_LOSES.name, usb.environment["LD_PRELOAD"])})
    staying = usb.plug("1-1", 0x1110, 0x9041)
    going = usb.plug("1-2", 0x0572, 0xcafe)
    wait_news(client, 4)
    trigger.write_text("4", encoding="ascii")
    usb.many(usb.remove_requests(going), usb.add_requests("1-3", 0x0483, 0x0138))
    told = wait_news(client, 8)
    assert told[4:] == went("usb_device_572_cafe_noserial", 0) + came("usb_device_483_138_noserial", 0)
    assert "events were lost" in hald.process.errors()
    assert device(client, MODEM, "GetProperty", "s", "linux.sysfs_path") == staying
    usb.unplug(staying)
    assert wait_news(client, 10)[8:] == went(MODEM, 0)

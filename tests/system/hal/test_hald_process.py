# SPDX-License-Identifier: MIT
"""norvix-hald as a process: restarts, monitors, the name, the command line."""
import signal

import pytest
from hald_fixtures import client, hald, place, usb  # noqa: F401
from hald_fixtures import EVERY_EVENT, HUB, MODEM, came, settled, went
from machine_fixtures import ROOT_ONLY

from lab.machine import companion
from lab.machine.bus_client import BusError
from lab.machine.companion import DEVICES, NAME, HalCompanion, device, devices, news, wait_news
from lab.machine.simulated_usb import SimulatedUsb
from lab.waiting import wait_until


# ---- restarts

@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGKILL])
def test_what_came_and_went_while_it_was_down_is_announced_at_the_next_start(place, usb, client, number):
    hald = HalCompanion(place, usb, EVERY_EVENT)
    usb.plug("1-1", 0x1110, 0x9041)
    going = usb.plug("1-2", 0x0572, 0xcafe)
    wait_news(client, 4)
    wait_until(lambda: "cafe_noserial_if0" in place.path("/run/norvix-hal/devices").read_text("ascii"),
               what="the list is kept")
    hald.stop(number)
    usb.unplug(going)
    usb.plug("1-3", 0x0483, 0x0138)
    again = HalCompanion(place, usb, EVERY_EVENT)
    assert wait_news(client, 8)[4:] == went("usb_device_572_cafe_noserial", 0) + came(
        "usb_device_483_138_noserial", 0)
    assert settled(client) == news(client)[:8]


def test_names_survive_a_restart(place, usb, client):
    hald = HalCompanion(place, usb, EVERY_EVENT)
    first = usb.plug("1-1", 0x1110, 0x9041)
    second = usb.plug("1-2", 0x1110, 0x9041)
    wait_news(client, 4)
    usb.unplug(first)
    wait_news(client, 6)
    assert hald.stop() == 0
    again = HalCompanion(place, usb, EVERY_EVENT)
    assert device(client, MODEM + "_0", "GetProperty", "s", "linux.sysfs_path") == second
    assert settled(client) == news(client)[:6]


def test_a_replug_during_a_restart_is_two_announcements(place, usb, client):
    hald = HalCompanion(place, usb, EVERY_EVENT)
    path = usb.plug("1-1", 0x1110, 0x9041)
    wait_news(client, 2)
    assert hald.stop() == 0
    usb.unplug(path)
    usb.plug("1-1", 0x1110, 0x9041)
    HalCompanion(place, usb, EVERY_EVENT)
    assert wait_news(client, 6)[2:] == went(MODEM, 0) + came(MODEM, 0)


@pytest.mark.parametrize("content", [b"", b"norvix-hald devices 1\ndevice\t/org", b"\xff" * 100])
def test_a_spoilt_list_counts_as_a_first_start(place, usb, client, content):
    place.path("/run/norvix-hal/devices").write_bytes(content)
    usb.plug("1-1", 0x1110, 0x9041)
    hald = HalCompanion(place, usb, EVERY_EVENT)
    assert MODEM in devices(client)
    assert settled(client) == []


def test_without_its_folder_it_serves_and_says_what_is_lost(place, usb, client):
    place.path("/run/norvix-hal").rmdir()
    hald = HalCompanion(place, usb, EVERY_EVENT)
    usb.plug("1-1", 0x1110, 0x9041)
    wait_news(client, 2)
    usb.plug("1-2", 0x1110, 0x9041)
    wait_news(client, 4)
    assert hald.stop() == 0
    assert hald.process.errors().count("cannot keep the list of devices") == 1


def test_systemd_may_name_the_folder(place, usb):
    place.path("/run/elsewhere").mkdir(mode=0o777)
    place.path("/run/elsewhere").chmod(0o777)
    hald = HalCompanion(place, usb, EVERY_EVENT, env={"RUNTIME_DIRECTORY": "/run/elsewhere:/run/other"})
    assert hald.stop() == 0
    assert place.path("/run/elsewhere/devices").exists()


# ---- the process

def test_nothing_is_answered_before_everything_is_known(place, usb, client):
    for port in range(200):
        usb.plug("1-%d" % port, 0x1110, 0x9041, serial=str(port), interfaces=())
    hald = HalCompanion(place, usb, wait=False)

    def count():
        try:
            return len(devices(client))
        except BusError as error:
            assert error.name == "org.freedesktop.DBus.Error.ServiceUnknown"
            assert hald.process.ended() is None
            return None

    assert wait_until(count, what="it answers") == 202


@pytest.mark.parametrize("group,line", [("udev", "udev"), ("kernel", "the kernel"), ("auto", "the kernel")])
def test_each_monitor_works_and_is_named(place, usb, client, group, line):
    hald = HalCompanion(place, usb, "--monitor=" + group)
    hald.wait_for_line("listening to the events of %s, 2 objects" % line)
    path = usb.plug("1-1", 0x1110, 0x9041)
    assert wait_news(client, 2) == came(MODEM, 0)
    usb.unplug(path)
    assert wait_news(client, 4)[2:] == went(MODEM, 0)


def test_where_udev_runs_its_events_are_chosen(place, usb):
    place.path("/run/udev").mkdir()
    place.path("/run/udev/control").touch()
    HalCompanion(place, usb).wait_for_line("listening to the events of udev")


@pytest.mark.parametrize("group,sees", [("kernel", True), ("udev", False)])
def test_the_kernels_first_event_makes_it_look_at_everything_again(place, usb, client, group, sees):
    """Without udev there is no telling since when events have been reaching it."""
    path = usb.plug("1-1", 0x1110, 0x9041, interfaces=())
    usb.request("unlist", path=path)
    HalCompanion(place, usb, "--monitor=" + group)
    assert devices(client) == ["computer", HUB]
    usb.request("list", path=path)
    usb.plug("1-2", 0x0572, 0xcafe, interfaces=())
    expected = came("usb_device_572_cafe_noserial") + (came(MODEM) if sees else [])
    wait_news(client, len(expected))
    assert settled(client) == expected


def test_events_that_the_first_list_holds_already_are_not_handled_again(place, usb, client):
    """A removal that was on its way when the list was made does not touch what came after it."""
    path = usb.plug("1-1", 0x1110, 0x9041)
    usb.request("write", path="/sys/kernel/uevent_seqnum", content="1000000\n")
    HalCompanion(place, usb, "--monitor=udev")
    usb.event(path + "/1-1:1.0", "remove")
    usb.bind(path, "usb")
    assert wait_news(client, 1) == [("~" + MODEM, 1, [("info.linux.driver", False, True)])]
    assert devices(client) == ["computer", HUB, MODEM, MODEM + "_if0"]


def test_a_real_hal_keeps_its_name(place, usb, client):
    real = place.client()
    assert real.call_bus("RequestName", "su", NAME, 0) == 1
    second = HalCompanion(place, usb, wait=False)
    assert second.process.wait() == 0
    assert second.process.errors() == ("norvix-hald: another service offers org.freedesktop.Hal on this "
                                       "bus, stepping aside.\n")
    assert client.owner_of(NAME) == real.unique_name
    assert not place.path("/run/norvix-hal/devices").exists()


def test_without_a_bus_it_fails_with_a_line(machine):
    companion.prepare(machine)
    hald = HalCompanion(machine, wait=False)
    assert hald.process.wait() == 1
    assert "cannot reach the system bus" in hald.process.errors()


def test_it_ends_with_the_bus_so_that_it_is_started_again(place, usb):
    hald = HalCompanion(place, usb)
    place.stop_bus()
    assert hald.process.wait() == 1
    assert "the system bus has gone" in hald.process.errors()


@ROOT_ONLY
def test_only_its_user_and_root_may_own_the_name(place, usb):
    stranger = HalCompanion(place, usb, uid=65534, wait=False)
    assert stranger.process.wait() == 1
    assert "the bus refuses the name" in stranger.process.errors()
    root = HalCompanion(place, usb, uid=0)
    assert root.stop() == 0


@ROOT_ONLY
def test_everybody_may_ask(place, usb, hald):
    anybody = place.client(uid=65534)
    assert HUB in devices(anybody)
    usb.plug("1-1", 0x1110, 0x9041)
    wait_news(anybody, 2)


@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT])
def test_it_ends_well_when_asked_to(place, usb, number):
    hald = HalCompanion(place, usb)
    assert hald.stop(number) == 0
    assert place.client().owner_of(NAME) is None


def test_help_explains_and_ends(place):
    result = place.run([companion.PROGRAM, "--help"])
    assert result.status == 0 and result.stderr == ""
    assert result.stdout.startswith("Usage: norvix-hald")
    assert "--monitor=kernel" in result.stdout and "--list" in result.stdout


@pytest.mark.parametrize("argument", ["--monitor=hal", "--unknown", "file"])
def test_an_argument_it_does_not_know_is_named(place, argument):
    result = place.run([companion.PROGRAM, argument])
    assert result.status == 2 and result.stdout == ""
    assert '"%s"' % argument in result.stderr


def test_what_is_shown_steers_no_terminal(machine):
    usb = SimulatedUsb(machine)
    usb.plug("1-1", 0x1110, 0x9041, attributes={"product": "a\x1b[2J\u009b\u202ez"})
    result = machine.run([companion.PROGRAM, "--list"], env=usb.environment)
    assert "\ta?[2J??z\n" in result.stdout
    result = machine.run([companion.PROGRAM, "--a\x1b[2J\u202ez"])
    assert '"--a?[2J?z"' in result.stderr


def test_list_prints_what_it_sees_and_ends_without_a_bus(machine):
    usb = SimulatedUsb(machine)
    path = usb.plug("1-1", 0x1110, 0x9041)
    result = machine.run([companion.PROGRAM, "--list"], env=usb.environment)
    assert result.status == 0 and result.stderr == ""
    assert [line.split("\t")[0][len(DEVICES):] for line in result.stdout.splitlines()] == [
        "computer", HUB, MODEM, MODEM + "_if0"]
    assert (DEVICES + MODEM + "\t" + path + "\tADSL modem") in result.stdout.splitlines()


def test_list_gives_a_running_companions_names(place, usb, client, hald):
    first = usb.plug("1-1", 0x1110, 0x9041)
    usb.plug("1-2", 0x1110, 0x9041)
    wait_news(client, 4)
    usb.unplug(first)
    wait_news(client, 6)
    wait_until(lambda: MODEM + "_0" in place.path("/run/norvix-hal/devices").read_text("ascii")
               and "\t%s\n" % first not in place.path("/run/norvix-hal/devices").read_text("ascii"),
               what="the list is kept")
    result = place.run([companion.PROGRAM, "--list"], env=usb.environment)
    assert DEVICES + MODEM + "_0\t" in result.stdout

# SPDX-License-Identifier: MIT
"""The page of modem and driver while the daemon builds a driver: what is told of it, and its end."""
import os
import re
import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "system"))

from driver_world import HALT, UEAGLE_MODEM, DriverWorld, quick  # noqa: E402
from window_world import WindowWorld  # noqa: E402

pytestmark = pytest.mark.skipif(os.geteuid() != 0, reason="tarballs are trusted only if / is root's")
BUILDING = re.compile("The driver is being built")
UDI = "/org/freedesktop/Hal/devices/usb_device_1110_9041_noserial"
SLOW = 1  # seconds; the machine may be busy


@pytest.fixture
def machine(new_machine):
    return new_machine(private_folders=["/lib/modules"])


@pytest.fixture
def world(computer):
    """A modem in use whose driver is missing, with sources of it that a test gives."""
    made = DriverWorld(computer.machine)
    made.bus_runs = True
    computer.start_companion()
    computer.plug("eagle-e4")
    return made


def build(world, compile):
    """The daemon begins to build a driver with this step in its makefile."""
    world.quick_tarball(b"no module", quick(compile=compile))
    world.start(modem={**UEAGLE_MODEM, "modem": "Sagem F@st 800 E4", "udi": UDI}, wait=False)
    world.reached("compile")


def test_a_driver_is_built_anew_by_a_daemon_that_an_administrator_restarts(computer, desktop):
    world = WindowWorld(computer, desktop)
    computer.start_daemon()
    world.open("Modem and driver")
    world.window.press_button("Build the driver anew…")
    assert desktop.pkexec.wait_call()[1:] == ["/opt/norvix/libexec/norvix-desktop-mend",
                                              "restart-daemon"]
    world.window.wait_text(re.compile("^It did not succeed"))  # nobody manages services here


def test_the_modem_is_restarted_from_here(computer, desktop):
    world = WindowWorld(computer, desktop)
    computer.start_daemon()
    world.client.call("establishConnection")
    world.open()
    world.window.find("label", "Connected")
    world.turn_to("Modem and driver")
    world.window.press_button("Restart the modem…")
    world.window.wait_text(re.compile("^This ends the connection"))
    world.window.press_button("Restart")
    world.turn_to("Connection")
    world.window.find("label", "Not connected")


def test_a_restart_of_the_modem_that_is_refused_is_told_here(computer, new_desktop):
    world = WindowWorld(computer, new_desktop(user="other", member=False))
    computer.start_daemon()
    world.open("Modem and driver")
    world.window.press_button("Restart the modem…")
    world.window.wait_text("The modem is not restarted. You are not allowed to use the modem yet.")
    world.window.find("push button", "Set up…")


def test_without_a_daemon_the_page_says_why_nothing_can_be_restarted(computer, desktop):
    world = WindowWorld(computer, desktop)
    world.open("Modem and driver")
    world.window.wait_text("The daemon is not running.")
    assert not world.window.has("push button", "Restart the modem…", {"sensitive"})
    assert world.window.nameless() == []
    world.window.press_button("Check-up…")
    world.window.find("push button", "Check again")


def halting(before="true", after="true"):
    return "@%s; %s; %s" % (before, HALT.format("compile"), after)


def wait_output(window, text):
    output = window.find("text", "Output of the build")
    window.wait(lambda: text in output.text, what="the output has %r" % text)
    return output.text


def test_a_build_that_runs_is_followed_to_its_end(world, desktop):
    build(world, halting("echo first piece", "echo last piece"))
    desktop.start()
    desktop.window.find("label", "Driver is built")
    desktop.window.wait_text(re.compile("may take some minutes"))
    desktop.window.select("Pages", "Modem and driver")
    desktop.window.wait_text(BUILDING)
    desktop.window.find("progress bar", "The driver is being built")
    assert "last piece" not in wait_output(desktop.window, "first piece")
    assert not desktop.window.has("push button", "Build the driver anew…", {"sensitive"})
    desktop.window.wait_text(re.compile("for (?![01] s).+ already"))
    world.go("compile")
    wait_output(desktop.window, "last piece")
    desktop.window.wait_gone(None, BUILDING)
    assert not desktop.window.has("progress bar")


def test_who_wants_no_movement_is_told_of_a_build_in_words(world, desktop):
    desktop.appearance.move(False)
    build(world, halting())
    desktop.start()
    desktop.window.select("Pages", "Modem and driver")
    desktop.window.wait_text(re.compile("for [2-9] s already"))
    assert not desktop.window.has("progress bar")
    desktop.appearance.move(True)
    desktop.window.find("progress bar", "The driver is being built")
    world.go("compile")


def test_a_build_that_succeeds_is_told(world, desktop):
    world.machine.standin("modprobe").set(if_installed=True)
    build(world, halting())
    desktop.start()
    desktop.window.select("Pages", "Modem and driver")
    desktop.window.wait_text(BUILDING)
    world.go("compile")
    desktop.window.wait_text("The build has ended without an error.")
    desktop.window.find("push button", "Build the driver anew…", {"sensitive"})
    assert not desktop.window.has("push button", "Check-up…")


def test_a_build_that_fails_says_so_on_both_pages_and_leads_on(world, desktop):
    build(world, halting(after="echo this piece is broken; false"))
    desktop.start()
    desktop.window.find("label", "Driver is built")
    world.go("compile")
    desktop.window.wait_text("The modem's driver could not be built.")
    desktop.window.press_button("Show…")
    desktop.window.wait_text(re.compile("^The driver could not be built. The end of the output"))
    wait_output(desktop.window, "this piece is broken")
    desktop.window.find("push button", "Build the driver anew…", {"sensitive"})
    desktop.window.press_button("Check-up…")
    desktop.window.find("push button", "Check again")


def test_the_window_stays_quick_while_a_build_says_much(world, desktop):
    build(world, halting("seq 100000"))
    desktop.start()
    desktop.window.select("Pages", "Modem and driver")
    wait_output(desktop.window, "100000")
    slowest = 0
    for page in ("Log", "Modem and driver", "Connection", "Modem and driver"):
        desktop.window.select("Pages", page)
        slowest = max([slowest] + [desktop.window.answer_time() for _ in range(20)])
    world.go("compile")
    assert slowest < SLOW

# SPDX-License-Identifier: MIT
"""The page of modem and driver while the daemon builds a driver: what is told of it, and its end."""
import os
import re
import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "system"))

from driver_world import HALT, UEAGLE_MODEM, DriverWorld, quick  # noqa: E402

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

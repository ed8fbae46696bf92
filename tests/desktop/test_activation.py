# SPDX-License-Identifier: MIT
"""One program a session, started by the launcher, by the bus or by hand."""
import os

import pytest

from lab.machine.private_machine import REPOSITORY
from lab.waiting import wait_until
from test_tray import hidden, is_shown, wait_shown  # noqa: F401

ROOT_ONLY = pytest.mark.skipif(os.geteuid() != 0, reason="other users exist inside only as root")
NAME, PATH = "com.norvix.Desktop", "/com/norvix/Desktop"
PROGRAM = "/opt/norvix/bin/norvix-desktop"


def activate(desktop):
    desktop.bus.call_raw("Activate", "a{sv}", {}, interface="org.freedesktop.Application",
                         service=NAME, path=PATH)


def test_a_second_start_shows_the_window_of_the_first(desktop, hidden):  # noqa: F811
    second = desktop.start("norvix-desktop")
    assert second.wait() == 0
    wait_shown(desktop)
    assert len(desktop.window.seen()) > 0 and not desktop.started[0].ended()


def test_a_second_start_in_the_background_shows_nothing(desktop, hidden):  # noqa: F811
    assert desktop.start("norvix-desktop", "--background").wait() == 0
    assert not is_shown(desktop)


def test_the_launcher_shows_the_window_of_a_program_that_runs(desktop, hidden):  # noqa: F811
    activate(desktop)
    wait_shown(desktop)


def test_the_launchers_permission_to_take_the_focus_is_handed_to_no_other_program(desktop):
    desktop.start()
    wait_shown(desktop)
    desktop.bus.call_raw("Activate", "a{sv}", {"activation-token": ("s", "a-token")},
                         interface="org.freedesktop.Application", service=NAME, path=PATH)
    told = desktop.machine.path(desktop.home) / "told"
    asking = desktop.machine.path(desktop.programs) / "pkexec"
    asking.write_text("#!/bin/sh\nenv >%s/part\nmv %s/part %s/told\nexit 126\n" % ((desktop.home,) * 3))
    asking.chmod(0o755)
    desktop.window.select("Pages", "Check-up")
    desktop.window.press_button("Look as administrator…", timeout=60)
    wait_until(told.exists, what="something was started")
    assert "a-token" not in told.read_text()


def test_the_bus_starts_it_for_the_launcher(desktop):
    desktop.window
    desktop.install_service(REPOSITORY / "packaging/desktop/com.norvix.Desktop.service")
    activate(desktop)
    wait_shown(desktop)
    desktop.tray.start()
    desktop.tray.item().press("Quit")


@ROOT_ONLY
def test_two_users_have_a_program_each(new_desktop):
    first, second = new_desktop(), new_desktop(user="other", member=False)
    for session in (first, second):
        session.start("norvix-desktop")
        wait_shown(session)
    assert not first.started[0].ended() and not second.started[0].ended()


def test_it_ends_tidily_when_it_is_told_to(desktop):
    program = desktop.start("norvix-desktop")
    wait_shown(desktop)
    program.signal()
    assert program.wait() == 0 and program.errors() == ""


def test_without_a_session_bus_there_is_a_window_all_the_same(desktop):
    desktop.window
    desktop.start("norvix-desktop", "--background",
                  env={"DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere"})
    wait_until(lambda: desktop.run(["/usr/bin/xdotool", "search", "--onlyvisible", "--name",
                                    "ADSL modem"])[0] == 0, what="there is a window")


def test_words_that_it_does_not_know_are_named(desktop):
    desktop.window
    status, told, errors = desktop.run([PROGRAM, "--frobnicate"])
    assert (status, told) == (2, "") and "“--frobnicate”" in errors and "--help" in errors


@pytest.mark.parametrize("word, text", [("--help", "usage: norvix-desktop"),
                                        ("--version", "norvix-desktop ")])
def test_what_needs_no_screen_is_told_without_one(desktop, word, text):
    status, told, errors = desktop.run([PROGRAM, word])
    assert (status, errors) == (0, "") and told.startswith(text)

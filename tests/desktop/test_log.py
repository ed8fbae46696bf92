# SPDX-License-Identifier: MIT
"""The log: what is filtered, and what is copied for others to read."""
import pytest

from window_world import WindowWorld

LOG = ("20-05-2026 18:00:55 ConnectThread::prepareBridging(): br2684ctl: success.\n"
       "20-05-2026 18:00:58 debugConnecting(): sent [PAP AuthReq id=0x1 user=\"login\" password=<hidden>]\n"
       "20-05-2026 18:00:59 debugConnecting(): Remote message: welcome login\n")


@pytest.fixture
def world(computer, desktop):
    return WindowWorld(computer, desktop)


def open_log(world):
    world.machine.path("/opt/norvix/daemon.log").write_text(LOG, encoding="ascii")
    world.open("Log")
    world.window.wait(lambda: LOG in world.window.texts(), what="the log is shown")


def copied(world):
    """What is copied, as it arrives where it is pasted: in one line."""
    field = world.window.find("text", "Filter")
    field.focus()
    world.desktop.keys("ctrl+a")
    world.desktop.keys("ctrl+v")
    world.window.wait(lambda: "br2684ctl" in field.text, what="it is pasted")
    return field.text


def test_only_lines_with_the_words_of_the_filter_are_shown(world):
    open_log(world)
    world.window.fill("Filter", "remote WELCOME")
    world.window.wait(lambda: LOG.splitlines()[2] in world.window.texts(), what="one line is left")
    assert world.window.nameless() == []


def test_the_login_is_left_out_of_what_is_copied(world):
    world.computer.start_daemon()
    open_log(world)
    world.window.press_button("Copy report")
    world.window.wait_text("Copied, without login and password.")
    text = copied(world)
    assert "welcome …" in text and "login" not in text and "hidden" not in text


def test_it_is_said_when_nobody_knows_what_to_leave_out(world):
    open_log(world)
    world.window.press_button("Copy report")
    world.window.wait_text("Copied. The daemon did not say what the login is: look whether it stands in "
                           "the copy before you give it away.")
    assert "user=…" in copied(world)

# SPDX-License-Identifier: MIT
"""The pictures of the documents are made anew, and are still what the window looks like."""
import os
import platform
import subprocess
import time
from pathlib import Path

import pytest
from picture_scenes import PRIVATE, Scenes

from lab.desktop.picture import Picture
from lab.machine.private_machine import ADDRESS_SANITIZER, BUILD, REPOSITORY
from lab.waiting import PATIENCE

KEPT = REPOSITORY / "docs/pictures"
MADE = Path(os.environ.get("NORVIX_PICTURES") or BUILD / "pictures")
MOST_BYTES = 60_000
# What draws letters and widgets. Another version may set a pixel elsewhere, and nobody has changed anything.
DRAWN_BY = {"fonts-dejavu-core": "2.37-", "libfreetype6": "2.12.1+", "libfontconfig1": "2.14.1-",
            "libqt5gui5": "5.15.8+", "libqt5widgets5": "5.15.8+"}

pytestmark = [
    pytest.mark.skipif(os.geteuid() != 0, reason="other users exist inside only as root"),
    pytest.mark.skipif(ADDRESS_SANITIZER, reason="nothing else can be preloaded beside the checker")]


def why_not_compared():
    """Empty where the pictures have to be the same to the pixel."""
    if platform.freedesktop_os_release().get("VERSION_ID") != "12":
        return "they are compared on Debian 12"
    for package, wanted in DRAWN_BY.items():
        found = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], text=True, check=False,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
        if not found.startswith(wanted):
            return "%s is %s here, not %s…" % (package, found or "missing", wanted)
    return ""


@pytest.fixture
def machine(new_machine):
    return new_machine(private_folders=PRIVATE)


@pytest.fixture
def scenes(computer, desktop):
    desktop.speak("en_GB")
    return Scenes(computer, desktop)


class Album:
    """Pictures that are being made, and what is wrong with them."""

    def __init__(self, desktop):
        self._desktop, self._complaints = desktop, []
        self._obstacle = why_not_compared()
        MADE.mkdir(parents=True, exist_ok=True)
        assert not (self._obstacle and MADE == KEPT), "they cannot be made here: " + self._obstacle

    def take(self, name, role="frame"):
        file, kept = MADE / (name + ".png"), KEPT / (name + ".png")
        wanted = Picture.load(kept) if not self._obstacle and MADE != KEPT and kept.exists() else None
        element = self._desktop.window.find(role)
        deadline = time.monotonic() + PATIENCE  # a busy machine draws later than it answers
        while True:
            seen = self._desktop.look(element)
            if wanted in (None, seen) or time.monotonic() > deadline:
                break
        seen.save(file)
        if file.stat().st_size > MOST_BYTES:
            self._complaints.append("%s has more than %d bytes" % (file, MOST_BYTES))
        if wanted and wanted != seen:
            self._complaints.append("%s differs from %s, by what is at %d, %d and %d x %d pixels large"
                                    % (file, kept, *wanted.difference(seen)))
        if not wanted and not self._obstacle and MADE != KEPT:
            self._complaints.append("there is no %s" % kept)

    def close(self):
        assert not self._complaints, "\n".join(
            [*self._complaints, "When the window is meant to look so: sudo tools/pictures"])
        if self._obstacle:
            pytest.skip("made and not blank, but not compared: " + self._obstacle)


@pytest.fixture
def album(desktop):
    return Album(desktop)


def test_the_pictures_of_a_connection_are_what_the_window_looks_like(scenes, album):
    scenes.connect()
    album.take("connection")
    scenes.show_history()
    album.take("history")
    scenes.show_log()
    album.take("log")
    scenes.turn_to("Preferences")
    album.take("preferences")
    album.close()


def test_the_pictures_of_what_is_set_up_are_what_the_window_looks_like(scenes, album):
    scenes.start()
    scenes.show_account()
    album.take("account-and-line")
    scenes.show_driver()
    album.take("modem-and-driver")
    scenes.show_check_up()
    album.take("check-up")
    album.close()


def test_the_pictures_of_the_assistant_are_what_it_looks_like(scenes, album):
    scenes.start()
    scenes.guide_to_provider()
    album.take("assistant-provider", "dialog")
    scenes.guide_to_connection()
    album.take("assistant-connect", "dialog")
    album.close()

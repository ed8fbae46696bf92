# SPDX-License-Identifier: MIT
"""Light and dark as the desktop wants it, and the language of the person."""
from lab.waiting import wait_until
from test_tray import wait_shown


def brightness(desktop):
    """Of the window's ground, beside its lower edge; 0 where it is not drawn yet."""
    x, y, width, height = wait_shown(desktop).extents
    return sum(desktop.look().colour(x + width - 3, y + height - 3)) / 3


def wait_dark(desktop, wanted):
    wait_until(lambda: 0 < (seen := brightness(desktop)) and (seen < 128) == wanted, what="dark: %s" % wanted)


def test_it_is_as_light_or_dark_as_the_desktop_and_changes_with_it(desktop):
    desktop.appearance.set("dark")
    desktop.start("norvix-desktop")
    wait_dark(desktop, True)
    desktop.appearance.set("light")
    wait_dark(desktop, False)
    desktop.appearance.set("dark")
    wait_dark(desktop, True)
    desktop.appearance.set("no preference")
    wait_dark(desktop, False)


def test_without_a_portal_it_stays_as_the_platform_has_it(desktop):
    desktop.start("norvix-desktop")
    wait_dark(desktop, False)


def test_it_speaks_german(desktop):
    desktop.speak("de_DE")
    desktop.start("norvix-desktop")
    desktop.window.wait_text("Nicht verbunden")
    desktop.window.select("Seiten", "Einstellungen")
    desktop.window.find("check box", "ein neues Modem gefunden wurde")
    assert desktop.window.nameless() == []

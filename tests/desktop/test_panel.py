# SPDX-License-Identifier: MIT
"""The item in the tray of a real panel. What it draws is its own: it is seen by where pixels change."""
import os
import signal
from pathlib import Path

import pytest
from window_world import WindowWorld

from lab.desktop.picture import Picture
from lab.waiting import wait_until

PROGRAM = "/usr/bin/xfce4-panel"
pytestmark = pytest.mark.skipif(not Path(PROGRAM).exists(), reason="xfce4-panel is not installed")

WATCHER = "org.kde.StatusNotifierWatcher"
MEMORY_SERVICE = "/usr/share/dbus-1/services/org.xfce.Xfconf.service"
HEIGHT = 32
SETTINGS = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="%d"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty"><property name="plugin-1" type="string" value="systray"/></property>
</channel>
""" % HEIGHT
ELSEWHERE = (900, 20)  # on the panel, where nothing is


class Panel:
    """A panel at the upper edge, with nothing in it but its tray."""

    def __init__(self, desktop):
        self._desktop = desktop
        desktop.window  # the screen and the session bus
        folder = desktop.machine.path(desktop.home + "/.config/xfce4/xfconf/xfce-perchannel-xml")
        folder.mkdir(parents=True)
        (folder / "xfce4-panel.xml").write_text(SETTINGS, encoding="ascii")
        for made in (folder, *list(folder.parents)[:3]):
            os.chown(made, desktop.uid, desktop.uid)
        desktop.install_service(MEMORY_SERVICE)

    def start(self):
        self._process = self._desktop.spawn([PROGRAM, "--disable-wm-check"], label="panel")
        wait_until(lambda: self._desktop.bus.owner_of(WATCHER), what="the panel has a tray",
                   detail=self._process.errors)
        wait_until(lambda: self.look().colour(*ELSEWHERE) != (0, 0, 0), what="the panel is drawn")

    def stop(self):
        self._process.signal(signal.SIGTERM)
        self._process.wait()
        wait_until(lambda: not self._desktop.bus.owner_of(WATCHER), what="the tray has gone")

    def look(self):
        return Picture(self._desktop.look().rows[:HEIGHT])

    def wait_change(self, before):
        """Waits until the panel looks different; where."""
        return wait_until(lambda: before.difference(self.look()), what="the panel changes")

    def click(self, place, button):
        """Into the middle of a place."""
        x, y, width, height = place
        self.use("mousemove", x + width // 2, y + height // 2, "click", button)

    def use(self, *words):
        """Keyboard and mouse, whatever has the focus."""
        assert self._desktop.run(["/usr/bin/xdotool", *words]) == (0, "", "")


@pytest.fixture
def panel(desktop):
    return Panel(desktop)


def test_the_item_tells_the_state_and_opens_a_menu_and_the_window(computer, desktop, panel):
    world = WindowWorld(computer, desktop)
    computer.start_daemon()
    panel.start()
    empty = panel.look()
    world.open()
    world.window.find("push button", "Connect", {"sensitive"})
    item = panel.wait_change(empty)
    offline = panel.look()
    world.window.press_button("Connect")
    world.window.find("label", "Connected")
    assert panel.wait_change(offline)

    world.turn_to("Preferences")  # nothing changes by itself there
    world.window.find("check box", "an attempt to connect has failed")
    before = desktop.look()
    panel.click(item, 3)
    wait_until(lambda: any(old != new for old, new in zip(before.rows[HEIGHT:], desktop.look().rows[HEIGHT:])),
               what="the menu is open")
    panel.use("key", "Down", "Down", "Return")  # the second entry
    world.turn_to("Connection")
    world.window.find("label", "Not connected")
    panel.use("mousemove", *ELSEWHERE)  # so that nothing is marked
    wait_until(lambda: panel.look() == offline, what="the item tells it")

    desktop.keys("alt+F4")
    world.window.wait(lambda: not world.window.has("frame", "ADSL modem"), what="the window is hidden")
    panel.click(item, 1)
    world.window.find("frame", "ADSL modem")


def test_a_panel_that_comes_late_and_is_started_anew_gets_the_item(desktop, panel):
    panel.start()
    empty = panel.look()
    panel.stop()
    desktop.start("norvix-desktop")
    desktop.window.find("frame", "ADSL modem")
    for _ in range(2):
        panel.start()
        panel.wait_change(empty)
        panel.stop()

# SPDX-License-Identifier: MIT
"""What the window tells unasked: a day's script over the real daemon and keeper, counted."""
from test_tray import wait_hidden, wait_shown
from window_world import WindowWorld


def test_a_day_is_told_in_few_words(computer, desktop):
    world = WindowWorld(computer, desktop)
    computer.start_daemon()
    computer.start_keeper()
    desktop.tray.start()
    desktop.start("norvix-desktop", "--background")
    item = desktop.tray.item()

    # An attempt from the menu is refused: told. A click on it opens the window.
    world.refuse()
    item.press("Connect")
    refused = desktop.notifications.wait()
    assert refused.summary == "No connection"
    assert refused.body == "The provider refused login or password."
    desktop.notifications.press(refused)
    wait_shown(desktop)

    # What is done and seen in the window is not told.
    world.answer()
    world.turn_to("Connection")
    world.window.press_button("Try now")
    world.window.find("label", "Connected")
    desktop.keys("alt+F4")
    wait_hidden(desktop)
    assert desktop.notifications.wait(2).summary == "The window is in the tray"

    # A loss is told, in place of what was told before; its coming back is not.
    before = world.client.mark()
    world.hang_up()
    lost = desktop.notifications.wait(3)
    assert lost.summary == "Connection lost"
    world.client.wait_signal("connectionEstablished", 60, after=before)
    desktop.wait_on_bus(lambda: item.tooltip.startswith("Connected"), what="it is back")

    # Ended from the menu: not told.
    item.press("Disconnect")
    desktop.wait_on_bus(lambda: item.tooltip.startswith("Not connected"), what="it has ended")
    assert [shown.summary for shown in desktop.notifications.shown] == [
        "No connection", "The window is in the tray", "Connection lost"]
    assert len(desktop.notifications.open) == 1


def test_what_was_switched_off_is_not_told(computer, desktop):
    world = WindowWorld(computer, desktop)
    computer.start_daemon()
    desktop.tray.start()
    world.open("Preferences")
    world.window.check("an attempt to connect has failed", False)
    item = desktop.tray.item()  # without it closing the window would end the program
    desktop.keys("alt+F4")
    wait_hidden(desktop)
    desktop.notifications.wait()
    world.refuse()
    item.press("Connect")
    desktop.wait_on_bus(lambda: "refused" in item.tooltip, what="the item tells the refusal",
                        detail=lambda: item.tooltip)
    assert len(desktop.notifications.shown) == 1

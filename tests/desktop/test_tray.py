# SPDX-License-Identifier: MIT
"""The item in the tray, and a window that is never out of sight without one."""
import pytest

from window_world import WindowWorld

AWAY = "Not connected\nThe daemon is not running; “Connect” starts it."


@pytest.fixture
def hidden(desktop):
    """The item of a program that has begun in the tray."""
    desktop.tray.start()
    desktop.start("norvix-desktop", "--background")
    return desktop.tray.item()


def is_shown(desktop):
    return desktop.window.has("frame", states={"showing"})


def wait_shown(desktop):
    return desktop.window.find("frame", states={"showing"})


def wait_hidden(desktop):
    desktop.window.wait(lambda: not is_shown(desktop), what="the window is hidden")


def test_in_the_background_it_begins_in_the_tray_and_a_click_opens_it(desktop, computer, hidden):
    hidden.wait(tooltip=AWAY)
    assert not is_shown(desktop)
    hidden.activate()
    wait_shown(desktop)


def test_closing_the_window_leaves_it_in_the_tray_and_says_so_once(desktop, hidden):
    for _ in range(2):
        hidden.activate()
        wait_shown(desktop)
        desktop.keys("alt+F4")
        wait_hidden(desktop)
        assert desktop.notifications.wait().summary == "The window is in the tray"
    assert len(desktop.notifications.shown) == 1


def test_the_menu_opens_acts_and_quits(desktop, hidden):
    hidden.wait(tooltip=AWAY)
    hidden.wait(labels=["Open the window", "Connect", "", "Quit"])
    hidden.press("Open the window")
    wait_shown(desktop)
    hidden.press("Quit")
    assert desktop.started[0].wait() == 0


def test_without_a_tray_the_window_is_shown_though_it_begins_in_the_background(desktop):
    desktop.start("norvix-desktop", "--background")
    wait_shown(desktop)


def test_without_a_tray_closing_the_window_ends_the_program(desktop):
    program = desktop.start("norvix-desktop")
    wait_shown(desktop)
    desktop.keys("alt+F4")
    assert program.wait() == 0


def test_without_a_tray_who_closes_the_window_is_told_that_the_connection_stays(computer, desktop):
    world = WindowWorld(computer, desktop)
    computer.start_daemon()
    world.open()
    world.window.press_button("Connect")
    world.window.find("label", "Connected")
    desktop.keys("alt+F4")
    assert desktop.started[0].wait() == 0
    assert [shown.summary for shown in desktop.notifications.shown] == ["The connection stays"]
    assert world.client.call("getConnectionState") == 0


def test_a_tray_that_comes_later_gets_the_item(desktop):
    desktop.start("norvix-desktop")
    wait_shown(desktop)
    desktop.tray.start()
    assert desktop.tray.item().status == "Active"


def test_a_panel_that_gets_a_place_for_items_later_gets_the_item(desktop):
    desktop.tray.start(host=False)
    desktop.start("norvix-desktop")
    wait_shown(desktop)
    assert desktop.tray.items() == []
    desktop.tray.add_host()
    desktop.tray.item()


def test_a_frozen_tray_holds_nothing_up(desktop):
    desktop.tray.start()
    desktop.tray.freeze()
    desktop.start("norvix-desktop")
    wait_shown(desktop)
    assert desktop.window.answer_time() < 2  # on a busy machine; what is frozen never answers
    desktop.tray.thaw()
    desktop.tray.item()


def test_a_tray_that_is_started_anew_gets_the_item_again(desktop, hidden):
    desktop.tray.restart()
    desktop.tray.item().wait(status="Active")
    assert not is_shown(desktop)


def test_a_window_is_shown_when_its_tray_has_gone(desktop, hidden):
    desktop.tray.stop()
    wait_shown(desktop)


def test_the_item_tells_the_connection_and_quitting_leaves_it(computer, desktop):
    world = WindowWorld(computer, desktop)
    daemon = computer.start_daemon()
    desktop.tray.start()
    program = desktop.start("norvix-desktop", "--background")
    item = desktop.tray.item()
    item.wait(tooltip="Not connected")
    item.press("Connect")
    desktop.wait_on_bus(  # the address is told a moment later
        lambda: item.tooltip.startswith("Connected") and "Address: 10.64.0.100" in item.tooltip,
        what="the item says so", detail=lambda: item.tooltip)
    item.wait(labels=["Open the window", "Disconnect", "", "Quit (the connection stays)"])
    item.press("Quit (the connection stays)")
    assert program.wait() == 0
    assert world.machine.client().call("getConnectionState") == 0 and daemon.running()

# SPDX-License-Identifier: MIT
"""The history: sessions with their reasons, traffic and its limit, and a keeper that does not answer."""
import re
import signal

import pytest

from window_world import WindowWorld


@pytest.fixture
def world(computer, desktop):
    made = WindowWorld(computer, desktop)
    computer.start_daemon()
    computer.start_keeper()
    return made


def connect(world):
    world.machine.client().call("establishConnection")
    world.computer.keeper.wait_for(State="connected")


def disconnect(world):
    world.machine.client().call("terminateConnection")
    world.computer.keeper.wait_for(State="idle")


def plan(world):
    told = world.computer.keeper.call("GetPlan")
    return {key: value[1] for key, value in told.items()}


def is_waited_for(world):
    """Only some seconds long: then the page has given up until one comes back to it."""
    if world.window.has("label", "The keeper does not answer."):
        world.turn_to("Connection")
        world.turn_to("History")
    waiting = re.compile("The keeper has been asked and does not answer yet: .* so far")
    return any(waiting.search(said) for said in world.window.texts())


def test_an_empty_history_says_so(world):
    world.open("History")
    world.window.wait_text("No session yet. The first one appears here when you connect.")
    assert world.window.nameless() == []


def test_sessions_are_listed_with_why_they_ended(world):
    connect(world)
    disconnect(world)
    world.open("History")
    world.window.find("cell", "Somebody ended the connection.")
    connect(world)
    world.window.find("cell", "Still connected.")


def test_failed_attempts_are_listed_with_their_reason(world):
    world.refuse()
    world.open("History")
    world.machine.client().call("establishConnection")
    world.window.find("cell",
                      re.compile("attempt.* failed.*The provider refused login or password"))


def test_limit_and_billing_day_are_stored_at_the_keeper(world):
    world.open("History")
    world.window.find("spin box", "Limit in a billing month", {"sensitive"}).set_value(60)
    world.window.find("spin box", "Billing month begins on day").set_value(15)
    world.window.press_button("Store")
    world.window.wait_text("Stored.")
    assert plan(world) == {"limit": 60 * 10 ** 9, "billing_day": 15}
    world.window.wait_text(re.compile("^This billing month: .* of 60.0 GB$"))


def test_what_the_plot_shows_can_be_chosen(world):
    world.open("History")
    world.window.find("chart", "Traffic, per day")
    world.window.choose("Show", "Line rate, last day")
    world.window.find("chart", "Line rate, last day")


def test_without_a_keeper_the_way_to_one_is_shown(world):
    world.computer.keeper.stop()
    world.open("History")
    world.window.wait_text(re.compile("^The keeper is not running."))
    world.window.press_button("Check-up…")
    world.window.find("push button", "Check again")


def test_a_keeper_that_hangs_is_waited_for_in_the_open(world):
    world.open("History")
    world.window.find("spin box", "Limit in a billing month", {"sensitive"}).set_value(60)
    world.computer.keeper.process.signal(signal.SIGSTOP)
    world.window.press_button("Store")
    world.window.select("Pages", "Connection")
    world.window.select("Pages", "History")
    world.window.wait(lambda: is_waited_for(world), what="the page says that it waits for the keeper")
    world.computer.keeper.process.signal(signal.SIGCONT)
    # On a busy machine the window may have given up by then.
    world.window.wait_text(re.compile("^Stored.$|nothing was stored.$"))
    world.window.wait_gone("label", re.compile("does not answer yet"))
    assert plan(world)["limit"] == 60 * 10 ** 9

# SPDX-License-Identifier: MIT
"""Account, line and automatic connection: what is typed is judged, stored by the daemon, never lost."""
import re
import signal

import pytest

from lab.waiting import wait_until
from window_world import WindowWorld

PAGE = "Account and line"


@pytest.fixture
def world(computer, desktop):
    made = WindowWorld(computer, desktop)
    computer.start_daemon()
    return made


def settings(world):
    told = world.client.call_raw("GetSettings", service="com.norvix.Daemon",
                                 path="/com/norvix/Setup", interface="com.norvix.Setup1")
    return {key: value[1] for key, value in told.items()}


def secrets(world):
    return world.machine.path("/etc/ppp/pap-secrets").read_text(encoding="utf-8")


def field(world, name, role="text"):
    return world.window.find(role, name, {"sensitive"})


def test_the_stored_login_is_shown_and_the_password_is_not(world):
    world.open(PAGE)
    world.window.wait(lambda: field(world, "Login").text == "login", what="the login is shown")
    assert field(world, "Password").text == ""
    assert "secret" not in " ".join(world.window.texts())
    assert world.window.nameless() == []


def test_an_account_is_stored_for_pppd(world):
    world.open(PAGE)
    world.window.wait(lambda: field(world, "Login").text == "login", what="the login is shown")
    world.window.fill("Login", "me@isp")
    field(world, "Password").focus()
    world.desktop.type('pass"word')
    world.window.press_button("Show the password", role="check box")
    world.window.wait(lambda: field(world, "Password").text == 'pass"word',
                      what="the password can be read")
    world.desktop.keys("Return")
    world.window.wait_text("The account is stored. It counts from the next connection on.")
    assert "me@isp" in secrets(world)


def test_what_a_screen_reader_writes_counts_as_typed(world):
    world.open(PAGE)
    world.window.wait(lambda: field(world, "Login").text == "login", what="the login is shown")
    world.window.fill("Password", "@/etc")
    world.window.wait_text(re.compile("which pppd takes for the name of a file"))
    world.window.fill("Login", "me@isp")
    world.window.fill("Password", "secret2")
    world.turn_to("Log")
    world.turn_to(PAGE)  # what is stored is asked for anew
    world.window.press_button("Store account")
    world.window.wait_text("The account is stored. It counts from the next connection on.")
    assert "me@isp" in secrets(world)


def test_what_is_not_allowed_is_said_while_typing(world):
    world.open(PAGE)
    world.window.wait(lambda: field(world, "Login").text == "login", what="the login is shown")
    field(world, "Login").focus()
    world.desktop.keys("ctrl+a")
    world.desktop.type("x" * 51)
    world.window.wait_text(re.compile("The login has 51 characters"))
    assert field(world, "Login").description.startswith("The login has 51 characters")
    world.desktop.keys("BackSpace")
    world.window.wait_gone("label", re.compile("The login has"))
    field(world, "Password").focus()
    world.desktop.type("@/etc")
    world.window.wait_text(re.compile("which pppd takes for the name of a file"))
    assert not world.window.has("push button", "Store account", {"sensitive"})


def test_nothing_typed_is_lost_to_a_daemon_that_goes(world):
    world.open(PAGE)
    world.window.wait(lambda: field(world, "Login").text == "login", what="the login is shown")
    field(world, "Login").focus()
    world.desktop.keys("End")
    world.desktop.type("2")
    field(world, "Password").focus()
    world.desktop.type("secret2")
    world.computer.daemon.stop(signal.SIGKILL)
    world.window.press_button("Store account")
    world.window.wait_text(re.compile(r"^[^.]*daemon[^.]*\.$"))  # of the button; the page's says more
    world.computer.start_daemon()
    assert field(world, "Login").text == "login2"
    world.window.press_button("Store account")
    world.window.wait_text("The account is stored. It counts from the next connection on.")
    assert '"login2" * "secret2" *' in secrets(world)


def test_a_provider_fills_in_the_line_and_the_daemon_stores_it(world):
    world.open(PAGE)
    world.window.choose("Provider", "United Kingdom: BT and resellers")
    world.window.wait(lambda: field(world, "VCI", "spin box").value == 38, what="the VCI is there")
    world.window.press_button("Store line")
    world.window.wait_text("The line is stored. It counts from the next connection on.")
    stored = settings(world)
    assert (stored["vpi"], stored["vci"], stored["protocol"]) == (0, 38, "PPPoA")


def test_the_providers_stand_by_the_names_of_their_countries_as_the_users_language_sorts_them(world):
    world.desktop.speak("de_DE")
    world.desktop.start()
    world.window.select("Seiten", "Konto und Leitung")
    combo = world.window.find("combo box", "Anbieter")
    shown = [row.name for row in combo.children()[0].children()][1:]
    assert len(shown) == 20
    countries = [row.partition(": ")[0] for row in shown]
    assert countries[:3] == ["Australien", "Belgien", "Brasilien"]
    place = shown.index("Österreich: A1 Telekom Austria")
    assert (countries[place - 1], countries[place + 1]) == ("Niederlande", "Polen")
    assert shown.index("Frankreich: Free") < shown.index("Frankreich: Orange")


def test_what_somebody_else_stores_is_shown_unless_one_is_editing(world):
    world.open(PAGE)
    world.window.wait(lambda: field(world, "VCI", "spin box").value == 35, what="it is shown")

    def store(**numbers):
        world.client.call_raw(
            "SetSettings", "a{sv}", {name: ("i", number) for name, number in numbers.items()},
            service="com.norvix.Daemon", path="/com/norvix/Setup", interface="com.norvix.Setup1")

    store(vci=48)
    world.window.wait(lambda: field(world, "VCI", "spin box").value == 48, what="it is shown anew")
    field(world, "VPI", "spin box").set_value(1)
    store(vci=49, idleness=7)
    world.window.wait_text(re.compile("An idle time of 7 is stored"))  # shown together with the line
    assert field(world, "VCI", "spin box").value == 48
    assert field(world, "VPI", "spin box").value == 1


def test_what_is_edited_while_the_line_is_stored_stays(world):
    world.open(PAGE)
    world.window.wait(lambda: field(world, "VCI", "spin box").value == 35, what="it is shown")
    world.computer.daemon.signal(signal.SIGSTOP)
    field(world, "VCI", "spin box").set_value(48)
    world.window.press_button("Store line")
    world.window.wait_text("The line is being stored.")
    field(world, "VCI", "spin box").set_value(49)
    world.computer.daemon.signal(signal.SIGCONT)
    world.window.wait_text("The line is stored. It counts from the next connection on.")
    world.window.press_button("Connect when the computer starts", role="check box")
    wait_until(lambda: settings(world).get("connect_at_boot"), what="the next thing has happened")
    assert settings(world)["vci"] == 48
    assert field(world, "VCI", "spin box").value == 49


def test_without_an_answer_it_is_said_that_something_else_may_be_stored(computer, desktop):
    world = WindowWorld(computer, desktop)
    doubt = "What is shown here may not be what is stored."
    world.open(PAGE)
    world.window.wait_text("The daemon is not running. " + doubt)
    world.window.press_button("Store line")  # which nobody has told it, and 0 is a value that there is
    world.window.wait_text(re.compile("^VPI and VCI are missing"))
    daemon = computer.start_daemon()
    world.window.wait_gone("label", re.compile(re.escape(doubt)))
    assert field(world, "Login").text == "login"
    daemon.signal(signal.SIGSTOP)
    world.window.wait_text("The daemon does not answer. " + doubt)
    daemon.signal(signal.SIGCONT)
    world.window.wait_gone("label", re.compile(re.escape(doubt)))
    daemon.stop(signal.SIGKILL)
    world.window.wait_text("The daemon is not running. " + doubt)
    world.window.press_button("Check-up…")
    world.window.find("push button", "Check again")


def test_somebody_who_may_not_see_what_is_stored_is_told_so(computer, new_desktop):
    world = WindowWorld(computer, new_desktop(user="other", member=False))
    if not world.machine.rooted:
        pytest.skip("other users exist inside only as root")
    computer.start_daemon()
    world.open(PAGE)
    world.window.wait_text(re.compile("not allowed to use the modem yet. What is shown here may not"))
    world.window.press_button("Set up…")
    world.window.wait_text("1 of 5")


def test_automatic_connection_is_switched_at_the_daemon_and_the_keeper(world):
    world.computer.start_keeper()
    world.open(PAGE)
    world.window.press_button("Connect when the modem is plugged in", role="check box")
    wait_until(lambda: settings(world).get("autoconnect") and settings(world)["connect_at_modem_plug"],
               what="both are stored")
    world.window.find("check box", "Connect again after a loss", {"checked"}).press()
    world.computer.keeper.wait_for(Keep=False)


def test_a_switch_that_is_refused_goes_back_and_says_why(computer, new_desktop):
    world = WindowWorld(computer, new_desktop(user="other", member=False))
    if not world.machine.rooted:
        pytest.skip("other users exist inside only as root")
    computer.start_daemon()
    world.open(PAGE)
    world.window.press_button("Connect when the computer starts", role="check box")
    world.window.wait_text("You are not allowed to use the modem yet.")
    assert not world.window.has("check box", "Connect when the computer starts", {"checked"})

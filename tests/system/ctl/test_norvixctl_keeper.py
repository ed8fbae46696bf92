# SPDX-License-Identifier: MIT
"""What norvixctl shows and changes of the keeper: of the real one, and of one that answers anything."""
import json
import time

import pytest
from fake_keeper import CONNECTED, start_keeper
from keeper_world import World
from machine_fixtures import ROOT_ONLY
from norvixctl import (FAILED, NO_DAEMON, NORVIX_GROUP, NOT_PERMITTED, OK, REFUSED, USAGE, Ctl, golden, words)
from test_norvixctl_reading import FORMS, check_schema

from lab.machine import keeper_service
from lab.waiting import wait_until

DAY = 86400
BEGAN = 1763700000
KEEPERS = ["keep", "history", "usage", "line quality"]


def session(began, seconds, reason=None, **more):
    row = {"began": ("x", began), "seconds": ("x", seconds), "interface": ("s", "ppp0"),
           "address": ("s", "192.0.2.7"), "received": ("x", 1_500_000_000), "sent": ("x", 70_000)}
    if reason:
        row.update(ended=("x", began + seconds), reason=("s", reason))
    return {**row, **more}


SESSIONS = [session(BEGAN + 2 * DAY, 600), session(BEGAN + DAY + 60, DAY - 70, "hung-up"),
            session(BEGAN, DAY, "hung-up"), session(BEGAN - 7200, 3600, "account-lost-in-the-post"),
            session(BEGAN - 9000, 1500, "user")]
ATTEMPTS = [{"first": ("x", BEGAN - 3000), "last": ("x", BEGAN - 60), "count": ("x", 17),
             "reason": ("s", "no-concentrator")},
            {"first": ("x", BEGAN - 9100), "last": ("x", BEGAN - 9100), "count": ("x", 1),
             "reason": ("s", "line-not-synchronised")}]


def traffic(received, sent, **days):
    return {"received": ("x", received), "sent": ("x", sent),
            **{name: ("s", day) for name, day in days.items()}}


STORY = {
    "GetAll": ("a{sv}", {**CONNECTED, "State": ("s", "waiting"), "Reason": ("s", "account-refused"),
                         "NextAttempt": ("x", BEGAN), "Attempts": ("u", 3), "LimitReached": ("b", True),
                         "ForeignLinks": ("as", ["ppp7"]), "History": ("s", "set-aside")}),
    "GetSessions": ("aa{sv}", SESSIONS), "GetAttempts": ("aa{sv}", ATTEMPTS),
    "GetDays": ("aa{sv}", [traffic(2_000_000_000, 300, day="2025-11-21"),
                           traffic(0, 0, day="2025-11-20")]),
    "GetMonths": ("aa{sv}", [traffic(2_000_000_000, 300, begin="2025-11-15", end="2025-12-14"),
                             traffic(7, 8, begin="2025-10-15", end="2025-11-14")]),
    "GetPlan": ("a{sv}", {"limit": ("t", 50_000_000_000), "billing_day": ("u", 15)})}


def samples(count, spacing=60, span=60):
    now = int(time.time())
    return [{"time": ("x", now - spacing * (count - place)), "span": ("x", span), "carrier": ("d", 1.0),
             "down_rate": ("d", 8128.0), "up_rate": ("d", 832.0), "down_margin": ("d", 6.0 + place % 7),
             "up_margin": ("d", 9.0), "down_errors": ("d", float(place)), "up_errors": ("d", 0.0)}
            for place in range(count)]


@pytest.fixture(name="lone")
def lone_fixture(machine):
    """A machine with a bus, on which neither daemon nor keeper runs."""
    keeper_service.prepare(machine)
    machine.start_bus(policies=[keeper_service.POLICY])
    return machine


# ---- as it is told

@pytest.mark.parametrize("path", ["keep", "history", "usage", "usage --month"])
def test_what_the_keeper_tells_is_printed_as_text_lines_and_json(lone, path):
    start_keeper(lone, **STORY)
    for form, options in FORMS.items():
        result = Ctl(lone)(*path.split(), *options)
        assert (result.status, result.stderr) == (OK, "")
        golden("%s.%s" % (path.replace(" --", "-"), form), result.stdout)
    check_schema(path.split()[0], json.loads(result.stdout))


@pytest.mark.parametrize("path", ["keep", "history", "usage"])
def test_germans_read_it_in_german(lone, path):
    start_keeper(lone, **STORY)
    result = Ctl(lone)(path, env={"LANG": "de_DE.UTF-8", "LC_ALL": "de_DE.UTF-8"})
    assert result.status == OK
    golden(path + ".german", result.stdout)


def test_the_daily_hang_up_is_told_from_others(lone):
    start_keeper(lone, **STORY)
    entries = Ctl(lone).json("history")["history"]
    sessions = [entry for entry in entries if entry["kind"] == "session"]
    assert [entry["daily"] for entry in sessions] == [False, True, True, False, False]


def test_of_the_history_only_the_newest_entries_are_shown(lone):
    keeper = start_keeper(lone, **STORY)
    entries = Ctl(lone).json("history", "-n", "4")["history"]
    assert [entry["kind"] for entry in entries] == ["session", "session", "session", "attempts"]
    assert ("GetSessions", 5) in keeper.asked and ("GetAttempts", 4) in keeper.asked
    assert Ctl(lone).json("history", "--lines=0") == {"history": []}
    assert Ctl(lone)("history", "-n", "some").status == USAGE


@pytest.mark.parametrize("path, text", [("history", "Nothing has been connected yet"),
                                        ("usage", "No traffic has been counted yet"),
                                        ("line quality", "Nothing is known of the line")])
def test_where_nothing_is_known_it_says_so(lone, path, text):
    start_keeper(lone)
    result = Ctl(lone)(*path.split())
    assert result.status == OK
    assert text in words(result)
    check_schema(path, Ctl(lone).json(*path.split()))


@pytest.mark.parametrize("locale", ["C.UTF-8", "C"])
def test_the_lines_quality_is_drawn_within_80_columns(lone, locale):
    start_keeper(lone, GetLineQuality=("aa{sv}", samples(1400)))
    result = Ctl(lone)("line", "quality", env={"LC_ALL": locale})
    assert result.status == OK
    lines = result.stdout.splitlines()
    assert max(len(line) for line in lines) <= 80
    assert len(lines) <= 24
    assert "Margin down: last" in result.stdout and "Errors down: " in result.stdout
    assert ("█" in result.stdout) == (locale == "C.UTF-8")
    assert result.stdout.isascii() == (locale == "C")


def test_the_lines_quality_is_asked_for_the_days_that_are_wanted(lone):
    keeper = start_keeper(lone, GetLineQuality=("aa{sv}", samples(3, DAY, DAY)))
    shown = Ctl(lone).json("line", "quality", "--days", "30")
    check_schema("line quality", shown)
    assert [sample["seconds"] for sample in shown["samples"]] == [DAY] * 3
    (_, begin, end), = [call for call in keeper.asked if call[0] == "GetLineQuality"]
    assert end - begin == 30 * DAY
    assert len(Ctl(lone)("line", "quality", "--terse").stdout.splitlines()) == 3
    for wrong in ("0", "-1", "x", "99999"):
        assert Ctl(lone)("line", "quality", "--days=" + wrong).status == USAGE


def test_text_of_a_keeper_steers_no_terminal(lone):
    evil = "\x1b[2J\u202e"
    start_keeper(lone, GetAll=("a{sv}", {**CONNECTED, "State": ("s", evil), "Reason": ("s", evil),
                                         "ForeignLinks": ("as", [evil])}),
                 GetSessions=("aa{sv}", [session(BEGAN, 5, evil, address=("s", evil))]))
    for path in (["keep"], ["history"], ["keep", "--json"], ["history", "--terse"]):
        assert "\x1b" not in Ctl(lone)(*path).stdout and "\u202e" not in Ctl(lone)(*path).stdout


# ---- when there is none, or another

@pytest.mark.parametrize("path", KEEPERS)
def test_a_keeper_that_is_stopped_is_not_started(lone, path):
    result = Ctl(lone)(*path.split())
    assert result.status == NO_DAEMON
    assert "systemctl start norvix-keeper" in words(result)


@pytest.mark.parametrize("path", KEEPERS)
def test_a_keeper_that_is_not_installed_is_named(lone, path):
    lone.request("hide", path=keeper_service.PROGRAM)
    result = Ctl(lone)(*path.split())
    assert result.status == NO_DAEMON
    assert "apt install norvix-keeper" in words(result)


@pytest.mark.parametrize("path", KEEPERS)
def test_without_the_bus_it_is_the_bus_that_is_missed(machine, path):
    result = Ctl(machine)(*path.split())
    assert result.status == NO_DAEMON
    assert "system bus can not be reached" in words(result)


METHODS = {"keep": "GetAll", "history": "GetSessions", "usage": "GetPlan",
           "line quality": "GetLineQuality"}


NO_SENSE = [("s", "hello"), ("", ), ("a{sv}", {"State": ("u", 7)}), ("aas", [["x"]]), ("ay", b"\x00\xff")]


@pytest.mark.parametrize("path", KEEPERS)
@pytest.mark.parametrize("answer, told", [
    (None, "keeper does not answer"), (("com.example.Error", "on strike"), "on strike"),
    *((answer, "answer is not understood") for answer in NO_SENSE)])
def test_a_keeper_that_hangs_refuses_or_makes_no_sense_is_named(lone, path, answer, told):
    start_keeper(lone, **{METHODS[path]: answer})
    result = Ctl(lone)(*path.split())
    assert result.status == FAILED
    assert told in words(result)


def test_entries_that_make_no_sense_are_left_out(lone):
    start_keeper(lone, GetSessions=("aa{sv}", [{"began": ("s", "yesterday")}, {},
                                               session(BEGAN, 5, "user")]))
    assert len(Ctl(lone).json("history")["history"]) == 1


def test_a_value_that_the_keeper_refuses_is_not_stored(lone):
    start_keeper(lone, SetBillingDay=("com.norvix.Keeper1.Error.InvalidValue", "No such day."))
    result = Ctl(lone)("usage", "--billing-day", "30")
    assert result.status == REFUSED
    assert "refuses this: No such day." in words(result)


@ROOT_ONLY
def test_who_is_not_in_the_group_may_look_how_it_stands_and_nothing_else(lone):
    start_keeper(lone)
    anybody, member = Ctl(lone, uid=1000), Ctl(lone, uid=1000, groups=[NORVIX_GROUP])
    assert anybody("keep").status == OK
    for path in ("keep off", "history", "usage", "line quality", "usage --limit off"):
        result = anybody(*path.split())
        assert result.status == NOT_PERMITTED, path
        assert "group" in words(result)
    assert member("history").status == OK


@pytest.mark.parametrize("line", ["keep maybe", "keep on off", "usage --limit 50", "usage --limit much",
                                  "usage --billing-day 0", "usage --billing-day 32", "usage -n x"])
def test_what_is_no_value_is_refused_before_anybody_is_asked(lone, line):
    keeper = start_keeper(lone)
    assert Ctl(lone)(*line.split()).status == USAGE
    assert keeper.asked == []


# ---- the line

@pytest.fixture(name="look_at_line")
def look_at_line_fixture(new_machine):
    """Whoever asks for the status while an ATM device has this carrier and the keeper has looked at
    the line; nobody may read the kernel log."""
    def look(carrier, **answers):
        machine = new_machine(private_folders=["/sys/class/atm"])
        keeper_service.prepare(machine)
        machine.start_bus(policies=[keeper_service.POLICY])
        device = machine.path("/sys/class/atm/cxacru0")
        device.mkdir()
        (device / "carrier").write_text("%d\n" % carrier, encoding="ascii")
        start_keeper(machine, **answers)
        return Ctl(machine)

    return look


def test_where_the_kernel_log_is_closed_the_keeper_tells_the_lines_rates(look_at_line):
    ctl = look_at_line(1, GetLineQuality=("aa{sv}", samples(3)))
    shown = ctl.json("status")
    assert shown["line"] == {"state": "up", "downKbit": 8128, "upKbit": 832}
    check_schema("status", shown)


def test_a_rate_in_one_direction_is_told_alone(look_at_line):
    [sample] = samples(1)
    del sample["up_rate"]
    ctl = look_at_line(1, GetLineQuality=("aa{sv}", [{**sample, "down_rate": ("d", 8127.656)}]))
    assert ctl.json("status")["line"] == {"state": "up", "downKbit": 8128, "upKbit": None}
    assert "synchronised, 8128 kbit/s down" in words(ctl("status"))


def test_a_line_that_has_gone_since_the_keeper_looked_has_no_rates(look_at_line):
    ctl = look_at_line(0, GetLineQuality=("aa{sv}", samples(3)))
    assert ctl.json("status")["line"] == {"state": "down", "downKbit": None, "upKbit": None}


def test_where_nobody_tells_rates_the_carrier_is_told(look_at_line):
    ctl = look_at_line(1, GetLineQuality=("org.freedesktop.DBus.Error.AccessDenied", "no"))
    assert ctl.json("status")["line"] == {"state": "up", "downKbit": None, "upKbit": None}


# ---- the real one

@pytest.fixture(name="world")
def world_fixture(new_machine):
    made = World(new_machine())
    made.start_keeper()
    return made


def test_keeping_is_switched_off_and_on(world):
    ctl = Ctl(world.machine)
    assert ctl.json("keep")["keep"] is True
    assert "stays lost" in words(ctl("keep", "off"))
    world.keeper.wait_for(Keep=False, State="off")
    assert ctl.json("status")["keeper"]["keep"] is False
    assert ctl("keep", "on").status == OK
    world.keeper.wait_for(Keep=True)


def test_the_status_says_wish_reason_and_next_attempt(world):
    ctl = Ctl(world.machine)
    world.connect()
    assert ctl.json("status")["keeper"]["wanted"] is True
    world.be_silent()
    world.machine.pppd.trigger("hang-up-1")
    # The first attempt is planned too, after the hang-up; what the test asks about is the one after it.
    shown = wait_until(lambda: (found := ctl.json("status"))["keeper"]["nextAttempt"]
                       and found["keeper"]["reason"] == "no-concentrator" and found,
                       what="an attempt is planned")
    check_schema("status", shown)
    assert shown["keeper"]["attempts"] >= 1
    text = words(wait_until(lambda: "Next attempt" in (told := ctl("status")).stdout and told,
                            what="it is told"))
    assert "No concentrator of the provider answered." in text and "Wanted: yes" in text


def test_the_stored_idle_time_is_not_honoured_while_something_is_kept(world):
    ctl = Ctl(world.machine)
    assert "idle time" not in words(ctl("status"))
    assert ctl("idle", "5").status == OK
    assert "idle time (5) is not honoured" in words(ctl("status"))
    ctl("keep", "off")
    world.keeper.wait_for(Keep=False)
    assert "idle time" not in words(ctl("status"))


def test_the_history_tells_what_has_happened(world):
    ctl = Ctl(world.machine)
    world.connect()
    world.hang_up()
    world.wait_lost()
    world.keeper.wait_for(State="connected")
    shown = ctl.json("history")
    check_schema("history", shown)
    assert [(entry["reason"], entry["address"]) for entry in shown["history"]] == [
        (None, "10.64.0.100"), ("hung-up", "10.64.0.100")]
    text = words(ctl("history"))
    assert "It is still up." in text and "The provider hung up." in text


def test_limit_and_billing_day_are_stored(world):
    ctl = Ctl(world.machine)
    assert ctl("usage", "--limit", "50GB", "--billing-day", "15").status == OK
    plan = {name: value for name, (_, value) in world.keeper.call("GetPlan").items()}
    assert plan == {"limit": 50_000_000_000, "billing_day": 15}
    shown = ctl.json("usage")
    check_schema("usage", shown)
    assert (shown["limitBytes"], shown["billingDay"]) == (50_000_000_000, 15)
    assert "of 50.0 GB; what is left is" in words(ctl("usage"))
    assert ctl("usage", "--limit", "off").status == OK
    assert ctl.json("usage", "--month")["limitBytes"] is None

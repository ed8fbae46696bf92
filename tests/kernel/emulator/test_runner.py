# SPDX-License-Identifier: MIT
"""What decides which scenarios run, how many guests at once, and whether all is well."""

import importlib.util
import pathlib
import threading

import pytest

from lab.kernel import guest

SCENARIOS = pathlib.Path(__file__).resolve().parents[1]
module = importlib.util.spec_from_file_location("run_scenarios",
                                                SCENARIOS / "run_scenarios.py")
runner = importlib.util.module_from_spec(module)
module.loader.exec_module(runner)


def test_without_names_every_file_runs_and_the_longest_begin():
    stems = [selection.path.stem for selection in runner.chosen([])]
    assert sorted(stems) == sorted(path.stem for path in SCENARIOS.glob("test_*.py"))
    assert tuple(stems[:len(runner.LONGEST_FIRST)]) == runner.LONGEST_FIRST


def test_a_guest_is_booted_only_for_files_with_a_quick_scenario():
    picked = runner.chosen(["quick"])
    assert {selection.options for selection in picked} == {("-m", "quick")}
    stems = [selection.path.stem for selection in picked]
    assert "test_first_use" in stems
    assert "test_unicorn" not in stems


def test_one_scenario_is_named_with_its_file():
    (selection,) = runner.chosen(["line::never"])
    assert selection.path.stem == "test_line"
    assert selection.options == ("-k", "never")


def test_each_system_that_is_named_runs_everything_that_is_chosen():
    picked = runner.chosen(["13", "newest", "line::never"])
    assert [(selection.name, selection.system) for selection in picked] == [
        ("13-test_line-never", "13"), ("newest-test_line-never", "newest")]


def test_without_a_system_the_guests_are_like_the_machine():
    assert {selection.system for selection in runner.chosen([])} == {None}


def test_an_unknown_name_is_told():
    with pytest.raises(SystemExit, match="no file is called nothing"):
        runner.chosen(["nothing"])


@pytest.mark.parametrize("outcomes, well", [
    ((), False), (("ok", "ok"), True), (("ok", "failure"), False), (("ok", "error"), False),
    (("ok", "skipped"), False)])
def test_all_is_well_when_every_scenario_ran_and_passed(outcomes, well):
    rows = [runner.Row("scenario", 1.0, outcome) for outcome in outcomes]
    assert runner.summary(rows, 1.0)[1] is well


def test_a_guest_waits_until_there_is_a_place(monkeypatch, tmp_path):
    monkeypatch.setenv("NORVIX_LAB_CACHE", str(tmp_path))
    monkeypatch.setattr(guest, "LOOK_SECONDS", 0.01)
    entered = threading.Event()

    def third():
        with guest.place(2):
            entered.set()

    with guest.place(2):
        with guest.place(2):
            waiting = threading.Thread(target=third)
            waiting.start()
            assert not entered.wait(0.1)
        assert entered.wait(30)
    waiting.join()

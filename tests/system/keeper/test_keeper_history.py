# SPDX-License-Identifier: MIT
"""The keeper's history under everything that can befall a file."""
import os
import re
import shutil
import sqlite3
import subprocess
import time

import pytest
from keeper_world import world  # noqa: F401
from machine_fixtures import ROOT_ONLY

from lab.machine.keeper_service import STATE_FOLDER, USER_ID
from lab.machine.private_machine import BUILD
from lab.waiting import wait_until

WRITER = BUILD / "tests" / "history-writer"
# What can be half done when the program dies: all that touches a file or its locks.
CALLS = "openat,pwrite64,write,fdatasync,fsync,ftruncate,unlink,rename,fcntl,close"
FILE = STATE_FOLDER + "/history.sqlite"


def write_history(folder, *before):
    return subprocess.run([*before, str(WRITER), str(folder / "history.sqlite")], timeout=60,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)


def content(folder):
    database = sqlite3.connect(folder / "history.sqlite")
    assert database.execute("PRAGMA quick_check").fetchone() == ("ok",)
    version = database.execute("PRAGMA user_version").fetchone()[0]
    if version == 0:
        return None
    [(received,)] = database.execute("SELECT ifnull(sum(received), 0) FROM traffic")
    ended = database.execute("SELECT count(*) FROM session WHERE reason = 'hung-up'").fetchone()[0]
    attempts = database.execute("SELECT count(*) FROM attempt").fetchone()[0]
    database.close()
    return received // 1000, ended, attempts


def test_a_kill_at_any_system_call_loses_nothing_that_was_written(tmp_path):
    whole = write_history(tmp_path, "strace", "-qq", "-o", str(tmp_path / "calls"), "-e", "trace=" + CALLS)
    assert whole.returncode == 0 and content(tmp_path) == (4, 1, 2)
    calls = (tmp_path / "calls").read_text(encoding="utf-8").splitlines()
    first = next(i for i, line in enumerate(calls, 1) if "history.sqlite" in line)
    # All of them take minutes: NORVIX_EVERY_CALL=1 by hand, else one in five.
    step = 1 if os.environ.get("NORVIX_EVERY_CALL") else 5
    for number in range(first, len(calls) + 1, step):
        folder = tmp_path / ("killed-%d" % number)
        folder.mkdir()
        run = write_history(folder, "strace", "-qq", "-o", os.devnull, "-e", "trace=none",
                            "-e", "inject=%s:signal=KILL:when=%d" % (CALLS, number))
        told = run.stdout.split()
        booked = max([int(told[i + 1]) for i, word in enumerate(told) if word == "booked"], default=0)
        if (folder / "history.sqlite").exists():
            found = content(folder) or (0, 0, 0)
            assert found[0] >= booked and found[1] >= told.count("ended"), (number, told, found)
            assert found[2] >= told.count("attempted")
        again = write_history(folder)
        assert again.stdout.startswith("ok 0") and again.stderr == "ok", (number, again)
        shutil.rmtree(folder)


# ---- with the keeper

def with_keeper(world, prepare):
    """Starts the keeper anew, on a file that was prepared meanwhile."""
    world.keeper.stop()
    file = world.machine.path(FILE)
    prepare(file)
    if os.geteuid() == 0 and file.exists():
        os.chown(file, USER_ID, USER_ID)
    return world.start_keeper()


def keeps_the_connection(world):
    """Whatever becomes of the history."""
    world.connect()
    world.hang_up()
    assert world.wait_lost() == ["hung-up"]
    world.keeper.wait_for(State="connected")


def test_a_damaged_file_is_set_aside_and_said(world):
    keeper = with_keeper(world, lambda file: file.write_bytes(b"this is no database\n" * 300))
    assert keeper.properties()["History"] == "set-aside"
    assert "is damaged" in keeper.process.errors()
    keeps_the_connection(world)
    assert [row["reason"] for row in keeper.rows("GetSessions") if "reason" in row] == ["hung-up"]
    assert world.machine.path(FILE + ".damaged").read_bytes().startswith(b"this is no database")


def test_a_file_of_a_newer_version_is_left_untouched_and_said(world):
    def make_newer(file):
        database = sqlite3.connect(file)
        database.execute("PRAGMA user_version = 99")
        database.commit()
        database.close()
        make_newer.bytes = file.read_bytes()

    keeper = with_keeper(world, make_newer)
    assert keeper.properties()["History"] == "newer"
    keeps_the_connection(world)
    assert keeper.rows("GetSessions") == []
    keeper.stop()
    assert world.machine.path(FILE).read_bytes() == make_newer.bytes


def mount(world, options):
    result = world.machine.run(["/usr/bin/mount", "-t", "tmpfs", "-o", options, "tmpfs", STATE_FOLDER])
    assert result.status == 0, result.stderr


@ROOT_ONLY
def test_a_full_disk_costs_entries_and_nothing_else(world):
    world.keeper.stop()
    mount(world, "size=300k,uid=%d,mode=700" % USER_ID)
    world.start_keeper()
    filled = world.machine.run(["/usr/bin/dd", "if=/dev/zero", "of=%s/filler" % STATE_FOLDER, "bs=1k"])
    assert "No space left" in filled.stderr
    keeps_the_connection(world)
    world.machine.run(["/usr/bin/rm", STATE_FOLDER + "/filler"])
    world.hang_up()
    world.wait_lost(2)
    world.keeper.wait_for(State="connected", History="ok")
    assert world.keeper.rows("GetSessions") != []


@ROOT_ONLY
def test_a_read_only_disk_is_said(world):
    world.keeper.stop()
    mount(world, "ro")
    keeper = world.start_keeper()
    assert keeper.properties()["History"] == "unwritable"
    keeps_the_connection(world)
    assert "a restart will forget the wish" in keeper.process.errors()


def sent(keeper):
    """On all days: there are two when it is just midnight."""
    return sum(day["sent"] for day in keeper.rows("GetDays"))


@ROOT_ONLY
def test_a_kill_loses_a_minute_of_traffic_at_most(world):
    world.connect()
    world.machine.traffic(20_000, seconds=1).wait()
    before = sent(world.keeper)  # books what is counted up to now
    world.keeper.kill()
    world.machine.traffic(20_000, seconds=1).wait()
    keeper = world.start_keeper()
    keeper.wait_for(State="connected")
    world.hang_up()
    world.wait_lost()
    after = sent(keeper)
    assert after >= before + 15_000
    [session] = [row for row in keeper.rows("GetSessions") if "reason" in row]
    assert session["sent"] == after or len(keeper.rows("GetSessions")) == 2


def test_history_grows_by_little(world):
    world.connect()
    wait_until(lambda: world.keeper.rows("GetSessions"), what="a session")
    assert world.machine.path(FILE).stat().st_size < 200_000
    assert re.fullmatch(r"\d+", str(world.keeper.properties()["Since"]))
    assert world.keeper.properties()["Since"] <= time.time()
    assert pytest.approx(world.keeper.rows("GetSessions")[0]["began"], abs=60) == time.time()

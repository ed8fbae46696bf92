# SPDX-License-Identifier: MIT
"""A sample of the table in tests/faults: operations that write, each fault at one of their calls, and
full disks. Of endurance, two rounds each."""
import subprocess
import sys
from pathlib import Path

import pytest
from machine_fixtures import ROOT_ONLY

TOOLS = Path(__file__).resolve().parents[2] / "faults"
sys.path.append(str(TOOLS))

from harness import FAULTS, PAGES, complaints, points, world_of  # noqa: E402
from operations import OPERATIONS  # noqa: E402

SAMPLE = ("settings: SetSettings", "settings: norvixctl line set", "account: setAccountData",
          "resolver: a file", "norvixctl doctor --fix", "norvix-daemon.postinst")
ON_FULL_DISKS = ("settings: norvixctl line set", "norvixctl doctor --fix")

pytestmark = ROOT_ONLY  # owners and file systems of their own


@pytest.mark.parametrize("name", SAMPLE)
def test_whatever_goes_wrong_files_are_old_or_new_and_nothing_is_left_over(name):
    [operation] = [each for each in OPERATIONS if each.name == name]
    with world_of(operation) as world:
        sample = []
        for number, fault in enumerate(FAULTS, 1):
            there = points(world, fault)
            sample.append(there[len(there) * number // (len(FAULTS) + 1)])
        if name in ON_FULL_DISKS:
            sample += [{"pages": pages} for pages in PAGES]
        assert [complaint for point in sample if (complaint := complaints(world, point))] == []


def test_each_trial_of_endurance_runs():
    done = subprocess.run([TOOLS / "endurance", "--cycles", "2", "--calls", "20", "--terminations", "2",
                           "--kills", "2"], capture_output=True, text=True, check=False)
    assert done.returncode == 0, done.stderr
    lines = done.stdout.splitlines()
    for trial in ("up and down", "calls", "terminations", "kills"):
        assert any(line.startswith(trial) for line in lines), done.stdout

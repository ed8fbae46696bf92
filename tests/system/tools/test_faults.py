# SPDX-License-Identifier: MIT
"""A sample of the table in tests/faults: operations that write, each fault at one of their calls, and
full disks."""
import sys
from pathlib import Path

import pytest
from obstacles import ROOT_ONLY

sys.path.append(str(Path(__file__).resolve().parents[2] / "faults"))

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

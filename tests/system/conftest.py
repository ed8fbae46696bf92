# SPDX-License-Identifier: MIT
"""What all system tests share: machines to run in, and slices for long files."""
import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))

from machine_fixtures import *  # noqa: E402, F401, F403

from lab.machine import fake_hal  # noqa: E402


@pytest.fixture
def hal_machine(machine):
    """A machine with a bus on which HAL may be played; nobody does yet."""
    machine.start_bus(names=[fake_hal.SERVICE])
    return machine


@pytest.fixture
def hal(hal_machine):
    """HAL on hal_machine's bus, without devices."""
    return fake_hal.FakeHal.start(hal_machine)


def pytest_addoption(parser):
    parser.addoption("--slice", metavar="I/N",
                     help="only every Nth test, beginning with the Ith: all N together are all tests")


def pytest_collection_modifyitems(config, items):
    if wanted := config.getoption("--slice"):
        number, count = map(int, wanted.split("/"))
        chosen = items[number - 1::count]
        config.hook.pytest_deselected(items=[item for item in items if item not in chosen])
        items[:] = chosen

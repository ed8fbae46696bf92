# SPDX-License-Identifier: MIT
"""What all tests of windows share: desktops in private machines."""
import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))

from machine_fixtures import (  # noqa: E402, F401
    machine, new_machine, pytest_runtest_makereport, witnesses)

from lab.desktop.computer import Computer  # noqa: E402
from lab.desktop.session import Session  # noqa: E402
from lab.machine.private_machine import BUILD  # noqa: E402
from lab.machine.standin_control import install  # noqa: E402


@pytest.fixture
def computer(machine):  # noqa: F811
    """The machine with its system bus; start daemon and keeper with it."""
    return Computer(machine)


@pytest.fixture
def new_desktop(request, computer):
    """Makes sessions in the machine: new_desktop(user="other", member=False, wayland=True, ...)."""
    made = []
    request.node.stash[witnesses] = []

    def make(**options):
        session = Session(computer.machine, **options)
        made.append(session)
        request.node.stash[witnesses].append(session.evidence)
        return session

    yield make
    for session in made:
        session.close()


@pytest.fixture
def desktop(new_desktop):
    """A session on X of an ordinary user who is in the group norvix."""
    return new_desktop()


@pytest.fixture
def probe(machine):  # noqa: F811
    """The program of the lab's own tests, where everybody may start it."""
    install(BUILD / "tests/window-probe", machine.state / "lib/window-probe")
    return "/mnt/lab/lib/window-probe"


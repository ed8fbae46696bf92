# SPDX-License-Identifier: MIT
"""What tests in private machines share: the machines, and the evidence when one fails."""
import os
import sys
import time
from pathlib import Path

import pytest

REPOSITORY = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(REPOSITORY))

# Times and programs outside of the machines are as inside, whatever the shell of the developer holds.
os.environ.update(TZ="UTC", LC_ALL="C.UTF-8")
time.tzset()
os.umask(0o022)

from lab.machine.private_machine import PrivateMachine  # noqa: E402

# Only root has other users in its machines, and can give files away or lay file systems over folders.
ROOT_ONLY = pytest.mark.skipif(os.geteuid() != 0, reason="owners, other users and file systems need root")

machines = pytest.StashKey()
witnesses = pytest.StashKey()  # functions that give further evidence: (title, text) of each part


@pytest.fixture
def new_machine(request):
    """Makes private machines: new_machine(real_kernel_log=..., private_folders=...). They vanish
    after the test; memory errors that the daemon's checker reported fail it."""
    made = []
    request.node.stash[machines] = made

    def make(**options):
        machine = PrivateMachine(**options)
        machine.__enter__()
        made.append(machine)
        return machine

    yield make
    reports = [machine.sanitizer_reports() for machine in made]
    for machine in reversed(made):
        machine.__exit__(Exception, None, None)
    assert not "".join(reports), "memory errors were reported:\n" + "\n".join(reports)


@pytest.fixture
def machine(new_machine):
    """A private machine; nothing runs in it yet, not even the bus."""
    return new_machine()


@pytest.fixture
def bus_machine(machine):
    """A private machine with its system bus and the daemon's policy."""
    machine.start_bus()
    return machine


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    """A failed test shows what the daemon said and which programs it ran."""
    outcome = yield
    report = outcome.get_result()
    if not report.failed:
        return
    for number, machine in enumerate(item.stash.get(machines, [])):
        name = "machine %d: " % number if number else ""
        for daemon in machine.daemons:
            report.sections.append((name + "daemon's output", daemon.output()[-20000:]))
            report.sections.append((name + "daemon's errors", daemon.errors()[-5000:]))
        report.sections.append((name + "daemon.log", machine.daemon_log()[-20000:]))
        calls = "\n".join("%.3f %s" % (call.time, call.command) for call in machine.calls())
        report.sections.append((name + "programs called", calls[-10000:]))
    for witness in item.stash.get(witnesses, []):
        report.sections += witness()

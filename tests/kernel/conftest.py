# SPDX-License-Identifier: MIT
"""What the scenarios share. They run inside a guest; `run_scenarios.py` boots one for each file."""

import pathlib
import sys

import pytest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPOSITORY))

from lab.kernel import system  # noqa: E402
from lab.kernel.chain import Chain  # noqa: E402

RESULTS = pathlib.Path("/results")


def pytest_configure(config):
    config.addinivalue_line("markers", "quick: one of those few that continuous integration runs")


@pytest.fixture(scope="session")
def guest():
    """udev, bus, HAL companion: once for all scenarios of a guest."""
    if not system.in_guest():
        pytest.exit("these tests run inside a guest: see run_scenarios.py", returncode=2)
    guest = system.Guest(RESULTS)
    guest.start()
    return guest


@pytest.fixture(scope="session")
def far_end(guest):
    """The line's holder, with the exchange plugged in for as long as the guest lives."""
    return Chain.make_far_end()


@pytest.fixture
def chain(guest, far_end, request):
    """A modem's world in which nothing is configured; all of it is taken down afterwards."""
    folder = RESULTS / request.node.name
    folder.mkdir(exist_ok=True)
    chain = Chain(guest, far_end, folder)
    yield chain
    chain.keep_evidence()
    chain.take_down()


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    """A failed scenario shows the ends of the logs."""
    outcome = yield
    report = outcome.get_result()
    chain = item.funcargs.get("chain") if hasattr(item, "funcargs") else None
    if report.failed and chain:
        for name, text in chain.evidence().items():
            report.sections.append((name, text[-6000:]))

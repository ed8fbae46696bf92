# SPDX-License-Identifier: MIT
"""What waits for the guest's processes and files."""

import pathlib

import pytest

from lab.waiting import read_text


@pytest.mark.parametrize("problem", [FileNotFoundError, ProcessLookupError])
def test_a_process_that_ends_while_it_is_looked_at_has_no_text(monkeypatch, problem):
    def ended(*_, **__):
        raise problem()

    monkeypatch.setattr(pathlib.Path, "read_text", ended)
    assert read_text(pathlib.Path("/proc/1/status")) == ""

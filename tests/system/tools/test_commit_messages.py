# SPDX-License-Identifier: MIT
"""What the hook for commit messages takes and what it refuses."""
import subprocess
from pathlib import Path

import pytest

HOOK = Path(__file__).resolve().parents[3] / "tools" / "commit-msg"
WHY = "\n\nThe old one loses the answer.\n"


def judged(tmp_path, text):
    message = tmp_path / "message"
    message.write_text(text, encoding="utf-8")
    return subprocess.run([HOOK, message], capture_output=True, text=True, timeout=30, check=False)


@pytest.mark.parametrize("text", [
    "Ask again after a timeout" + WHY,
    "A" * 72 + WHY,
    "Merge branch 'other'\n",
    "Ask again" + WHY + "# a line for the person who writes\n",
    "Ask again" + WHY + "# ------------------------ >8 ------------------------\n" + "+" * 200,
    "Ask again" + WHY + "https://example.org/" + "a" * 80 + "\n",
])
def test_a_message_that_says_what_and_why_is_taken(tmp_path, text):
    outcome = judged(tmp_path, text)
    assert (outcome.returncode, outcome.stderr) == (0, "")


@pytest.mark.parametrize("text, complaint", [
    ("", "no subject"),
    ("A" * 73 + WHY, "73 characters"),
    ("ask again" + WHY, "imperative"),
    ("Ask again." + WHY, "full stop"),
    ("Ask again\nThe old one loses the answer.\n", "empty line"),
    ("Ask again\n", "why is missing"),
    ("Ask again\n\nReviewed-by: Somebody\n", "why is missing"),
    ("Ask again\n\n" + "word " * 20 + "\n", "wrap at 72"),
])
def test_a_message_that_does_not_is_refused_with_the_reason(tmp_path, text, complaint):
    outcome = judged(tmp_path, text)
    assert outcome.returncode == 1
    assert complaint in outcome.stderr

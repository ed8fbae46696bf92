# SPDX-License-Identifier: MIT
"""Documents that name files: each is there."""
import re

import pytest

from lab.machine.private_machine import REPOSITORY

DOCUMENTS = sorted(file for file in REPOSITORY.rglob("*.md")
                   if not {"build", ".git"} & set(file.relative_to(REPOSITORY).parts))


def is_there(name):
    """A file, a folder, a pattern, or a unit by the name that its files have in common."""
    return any(next(REPOSITORY.glob(name + ending), None) for ending in ("", ".h", ".cpp", ".py", "_slots.cpp"))


@pytest.mark.parametrize("document", DOCUMENTS, ids=lambda file: str(file.relative_to(REPOSITORY)))
def test_what_a_document_names_is_there(document):
    text = document.read_text(encoding="utf-8")
    linked = re.findall(r"\]\((?!https?:|#)([^)#]+)", text)
    assert [link for link in linked if not (document.parent / link).exists()] == []
    words = [word.rstrip(":,/") for quoted in re.findall(r"`([^`\n]+)`", text) for word in quoted.split()]
    named = [word for word in words if re.fullmatch(r"[a-z]+/[\w./*-]+", word)
             and (REPOSITORY / word.partition("/")[0] / "CMakeLists.txt").exists()]
    assert [name for name in named if not is_there(name)] == []

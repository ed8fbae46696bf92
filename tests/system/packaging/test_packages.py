# SPDX-License-Identifier: MIT
"""What the commands of the repository install: the list, and what is chosen from it."""
import os
import re
import subprocess

import pytest

from lab.clean.clean_system import package_names
from lab.clean.fresh_system import command_of_the_readme
from lab.machine.private_machine import REPOSITORY

LIST = (REPOSITORY / "tools/debian-packages").read_text(encoding="ascii")
FOR_THE_DEMO = ("build", "machine")


def shell(script, folder, **programs):
    """What a piece of shell prints after tools/install-packages.sh, with these programs on the path."""
    for name, text in programs.items():
        (folder / name).write_text("#!/bin/sh\n" + text + "\n", encoding="ascii")
        (folder / name).chmod(0o755)
    return subprocess.run(["sh", "-euc", ". tools/install-packages.sh\n" + script], check=True,
                          stdout=subprocess.PIPE, text=True, cwd=REPOSITORY,
                          env={"PATH": "%s:%s" % (folder, os.environ["PATH"])}).stdout.split()


def test_every_line_of_the_list_is_for_a_command_that_its_head_names():
    told = set(re.findall(r"(?m)^#   \S.*?  +([a-z ]+)$", LIST))
    kinds = {kind for words in told for kind in words.split()} | {"guest", "clean"}
    lines = [line.split() for line in LIST.splitlines() if line and not line.startswith("#")]
    assert [line for line in lines if len(line) != 2 or line[0] not in kinds] == []
    assert kinds == {line[0] for line in lines}


@pytest.mark.parametrize("name", ["clang", "clang-tidy", "lintian", "linux-headers-amd64", "zsh",
                                  "python3-pytest", "qemu-system-x86"])
def test_the_demo_installs_no_tools_of_the_tests(name):
    assert name not in [entry for kind in FOR_THE_DEMO for entry in package_names(kind)]


def test_no_name_is_of_one_release_alone():
    assert re.findall(r"(?m)^[a-z]+ \S*-\d\d(?:-\S*)?$", LIST) == []


def test_the_package_test_depends_on_all_that_a_private_machine_needs():
    text = (REPOSITORY / "debian/tests/control").read_text(encoding="ascii")
    [depends] = re.findall(r"(?m)^Depends: ((?:.|\n )*)$", text)
    assert set(package_names("machine")) <= set(re.split(r",\s+", depends))


def test_both_readers_of_the_list_read_the_same(tmp_path):
    for kind in ("build", "test", "clean"):
        assert shell("listed_packages " + kind, tmp_path) == sorted(package_names(kind))


def test_an_entry_is_there_when_one_of_its_names_is_installed(tmp_path):
    known = 'case $4 in old | plain) echo installed;; half) echo half-installed;; *) exit 1;; esac'
    assert shell("missing_packages 'new|old' plain half 'this|that' gone", tmp_path,
                 **{"dpkg-query": known}) == ["half", "this|that", "gone"]


def test_of_several_names_the_first_that_the_release_has_is_installed(tmp_path):
    known = 'case $2 in old | both*) echo "$2 | 1.0 | http://mirror.example";; esac'
    assert shell("chosen_packages 'new|old' 'both1|both2' plain 'no|none'", tmp_path,
                 **{"apt-cache": known}) == ["old", "both1", "plain", "no"]


def test_a_clean_system_runs_what_the_readme_says():
    readme = (REPOSITORY / "README.md").read_text(encoding="utf-8")
    for name in ("demo", "check"):
        assert command_of_the_readme(name, readme, has_sudo=True) == "sudo ./" + name
        assert command_of_the_readme(name, readme, has_sudo=False) == "./" + name

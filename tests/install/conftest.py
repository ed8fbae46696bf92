# SPDX-License-Identifier: MIT
"""What the trials of the installation share."""
import os
import sys
from pathlib import Path

import pytest

REPOSITORY = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPOSITORY))

from lab.clean.clean_system import CleanSystem  # noqa: E402

USER = "anna"
BUILD_SECONDS = 3600  # for all of ./install, which builds everything: minutes, unless the host is busy


def add_user(system, name=USER):
    system.run("useradd", "--create-home", "--shell", "/bin/bash", name)
    system.write("/etc/sudoers.d/trial", "%s ALL=(ALL) NOPASSWD: ALL\n" % name, 0o440)


@pytest.fixture(scope="session")
def from_clone():
    """A system on which a user has called ./install in a clone, with what it printed."""
    if os.geteuid() != 0:
        pytest.exit("these trials need root", returncode=2)
    with CleanSystem() as system:
        add_user(system)
        system.before = system.files("/", without=["/proc", "/sys", "/dev", "/run", "/tmp"])
        clone = "/home/%s/norvix" % USER
        system.run("git", "clone", "-q", "/run/repository", clone)
        system.run("chown", "-R", "%s:%s" % (USER, USER), clone)
        system.told = system.run("sudo", "./install", "--user", USER, user=USER,
                                 cwd=clone, timeout=BUILD_SECONDS).output
        yield system


@pytest.fixture(scope="session")
def packages(from_clone, tmp_path_factory):
    """The packages that were built there, outside."""
    folder = tmp_path_factory.mktemp("packages")
    for file in from_clone.path("/home/%s/norvix/build/packages" % USER).glob("*.deb"):
        if "dbgsym" not in file.name:
            (folder / file.name).write_bytes(file.read_bytes())
    return folder


@pytest.fixture
def system():
    """Another clean system."""
    with CleanSystem() as fresh:
        add_user(fresh)
        yield fresh


@pytest.fixture
def give(packages):
    """Gives a system the packages, as ./NAME.deb in /root; returns their paths there."""
    def put(system, folder=packages):
        names = []
        for file in sorted(folder.glob("*.deb")):
            system.path("/root/" + file.name).write_bytes(file.read_bytes())
            names.append("./" + file.name)
        return names
    return put

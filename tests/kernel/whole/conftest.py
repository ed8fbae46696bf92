# SPDX-License-Identifier: MIT
"""A whole Debian with norvix and its neighbours, to be booted by its own systemd on the real kernel."""
import os
import pathlib
import shutil
import subprocess
import sys

import pytest

REPOSITORY = pathlib.Path(__file__).resolve().parents[3]
sys.path.insert(0, str(REPOSITORY))

from lab.clean.clean_system import CleanSystem  # noqa: E402
from lab.clean.installed_machine import DESKTOP_PACKAGES  # noqa: E402
from lab.kernel import guest  # noqa: E402

BUILD = pathlib.Path(os.environ.get("NORVIX_BUILD_DIR") or REPOSITORY / "build/release")
COMPONENTS = ("client", "daemon", "support", "hald", "keeper")
NEEDED = ("br2684ctl", "libqt5dbus5", "libsqlite3-0", "net-tools", "ppp", "procps", "psmisc")
NEIGHBOURS = ("modemmanager", "network-manager", "polkitd", "systemd-resolved")
WINDOW_NEEDS = ("libqt5widgets5",)
UNITS = ("norvix-daemon", "norvix-hald", "norvix-keeper")
# They begin when a story wants them.
LATER = ("ModemManager", "NetworkManager", "NetworkManager-wait-online",
         "NetworkManager-dispatcher", "systemd-networkd", "systemd-resolved")
GUEST_SECONDS = 3000
PATIENCE = {"NORVIX_PATIENCE": "180"}  # emulated, everything takes its time
PASSED_ON = ("NORVIX_MOMENTS",)
PICTURES = os.environ.get("NORVIX_PICTURES")


def put_files(system, *components):
    """Files as the packages bring them."""
    for component in components:
        subprocess.run(["cmake", "--install", BUILD, "--component", component, "--prefix", "/opt/norvix"],
                       env={**os.environ, "DESTDIR": str(system.path(""))}, check=True,
                       stdout=subprocess.DEVNULL)


def put_norvix(system):
    """All but the window, and what the packages' scripts do."""
    put_files(system, *COMPONENTS)
    links = (REPOSITORY / "debian/norvix-daemon.links").read_text(encoding="ascii").split()
    for target, link in zip(links[::2], links[1::2]):
        system.run("ln", "-s", "/" + target.lstrip("/"), "/" + link.lstrip("/"))
    system.run("systemd-sysusers")
    system.run("systemd-tmpfiles", "--create", "norvix-daemon.conf", "norvix-hald.conf", check=False)
    system.run("sh", "/run/repository/debian/norvix-daemon.postinst", "configure")
    system.run("systemctl", "enable", *UNITS)


@pytest.fixture(scope="session")
def whole():
    if os.geteuid() != 0:
        pytest.exit("these scenarios need root", returncode=2)
    with CleanSystem() as system:
        system.run("apt-get", "-q", "update")
        system.run("apt-get", "-q", "-y", "install", "--no-install-recommends", *NEEDED, *NEIGHBOURS,
                   timeout=1800)
        system.run("systemctl", "disable", *LATER)
        system.run("systemctl", "mask", "NetworkManager-wait-online", "systemd-networkd-wait-online")
        put_norvix(system)
        yield system


@pytest.fixture(scope="session")
def window(whole):
    """What the whole system has besides then: a desktop, and the window in its menu."""
    whole.run("apt-get", "-q", "-y", "install", "--no-install-recommends", *WINDOW_NEEDS, *DESKTOP_PACKAGES,
              timeout=1800)
    put_files(whole, "desktop")


@pytest.fixture
def tell(whole, tmp_path_factory):
    """Boots the system, runs a program with stories in it and shows what they told. With NORVIX_PICTURES
    their pictures are kept there."""
    def run(*names, program="story.py"):
        results = tmp_path_factory.mktemp("whole")
        story = REPOSITORY / "tests/kernel/whole" / program
        chosen = PATIENCE | {name: os.environ[name] for name in PASSED_ON if name in os.environ}
        status = guest.run(["/usr/bin/python3", "-B", str(story), *names], results, GUEST_SECONDS,
                           chosen, clean=whole.path(""), system=whole.release)
        told = (results / "output").read_text(encoding="utf-8", errors="replace")
        print(told)
        if PICTURES:
            for picture in results.glob("*.png"):
                shutil.copy(picture, PICTURES)
        assert status == 0, told[-8000:]

    return run

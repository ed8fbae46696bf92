# SPDX-License-Identifier: MIT
"""The installed system booted by its own systemd on the real kernel, with an emulated modem and the
units as they are shipped."""
import re

from conftest import USER

from lab.kernel import guest, image

GUEST_SECONDS = 3600


def compiler_of_the_kernel():
    """The package of the compiler that the headers name."""
    [variables] = image.prepare().root.glob("usr/src/linux-headers-*-amd64/.kernelvariables")
    return re.search(r"gcc-\d+", variables.read_text(encoding="utf-8")).group()


def test_under_its_shipped_units_a_member_goes_from_a_new_modem_to_the_line(system, give, tmp_path):
    system.run("apt-get", "-q", "update")
    system.run("apt-get", "-q", "-y", "install", *give(system), cwd="/root")
    # As the page on building a driver says; the headers and the compiler that they ask for are those of
    # the laboratory's kernel.
    system.run("apt-get", "-q", "-y", "install", "--no-install-recommends", "make", "patch",
               "xz-utils", compiler_of_the_kernel())
    system.run("usermod", "-a", "-G", "norvix", USER)
    system.run("useradd", "--create-home", "otto")
    story = guest.REPOSITORY / "tests/install/guest_story.py"
    status = guest.run(["/usr/bin/python3", "-B", str(story)], tmp_path, GUEST_SECONDS,
                       clean=system.path(""))
    told = (tmp_path / "output").read_text(encoding="utf-8", errors="replace")
    assert status == 0, told
    assert "story: everything went as it should" in told

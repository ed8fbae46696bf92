# SPDX-License-Identifier: MIT
"""Whose packages a guest is made from."""

import pytest

from lab.kernel import suites

ONE_LINE = ("# deb http://old.example/debian bookworm main\n"
            "deb [arch=amd64] http://mirror.example/debian/ bookworm main\n"
            "deb http://mirror.example/debian-security bookworm-security main\n")
FIELDS = ("Types: deb\n# http://old.example/debian\nURIs: http://mirror.example/debian/\n"
          "Suites: bookworm\n",
          "Types: deb\nURIs: http://mirror.example/debian-security\nSuites: bookworm-security\n")
FOREIGN = "deb http://else.example/tools stable main\n"


@pytest.mark.parametrize("texts", [[FOREIGN, ONE_LINE], [FOREIGN, *FIELDS]])
def test_another_suite_comes_from_the_mirror_of_the_host(texts):
    lines = suites.sources(texts, "trixie").splitlines()
    assert [line.partition("] ")[2] for line in lines] == [
        "http://mirror.example/debian/ trixie main",
        "http://mirror.example/debian-security trixie-security main"]
    assert all("signed-by=" in line for line in lines)


def test_the_newest_suite_has_no_security_updates_of_its_own():
    assert "security" not in suites.sources([ONE_LINE], suites.codename("newest"))


def test_a_host_without_a_mirror_of_debian_is_told():
    with pytest.raises(RuntimeError, match="no mirror"):
        suites.sources([FOREIGN], "trixie")


def test_files_are_named_as_apt_names_them():
    plan = ("Reading package lists...\n"
            "Inst libc6 (2.41-12+deb13u4 Debian:13.7/stable [amd64]) []\n"
            "Inst libcap2 (1:2.75-10+deb13u1+b3 Debian:13.7/stable [amd64])\n"
            "Inst linux-headers-6.12.107+deb13-common (6.12.107-1 Debian:13.7/stable, "
            "Debian-Security:13/stable-security [all])\n"
            "Conf libc6 (2.41-12+deb13u4 Debian:13.7/stable [amd64])\n")
    assert suites.archive_names(plan) == [
        "libc6_2.41-12+deb13u4_amd64.deb", "libcap2_1%3a2.75-10+deb13u1+b3_amd64.deb",
        "linux-headers-6.12.107+deb13-common_6.12.107-1_all.deb"]

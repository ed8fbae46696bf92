# SPDX-License-Identifier: MIT
"""The resolver configuration manager by itself: what the daemon never asks of it, and its
judgement beside the C library's."""
import ipaddress
import random
import shutil
import time

import pytest

from lab.machine.private_machine import BUILD
from obstacles import mount, run
from resolver import COMMENT, RESOLV, SERVERS, WRONG, text_inside

PROBE = "/opt/norvix/bin/resolver-probe"


@pytest.fixture
def probe(machine):
    """Runs the manager in a machine; the result is its answer."""
    shutil.copy(BUILD / "tests/resolver-probe", machine.path(PROBE))

    def ask(*arguments):
        return run(machine, PROBE, *arguments).strip() == "true"

    return ask


def test_servers_are_written_in_the_order_given(machine, probe):
    machine.path(RESOLV).write_text(WRONG, encoding="ascii")
    assert not probe("check")
    assert probe("set", "2001:db8::1", "192.0.2.9", "fe80::1%eth0", "192.0.2.1")
    assert text_inside(machine) == COMMENT + (
        "nameserver 2001:db8::1\nnameserver 192.0.2.9\nnameserver fe80::1%eth0\n"
        "nameserver 192.0.2.1\n")
    assert probe("check")


@pytest.mark.parametrize("servers", (
    [], [""], ["192.0.2.1", ""], ["192.0.2.1", "192.0.2.256"], ["dns.example.org"],
    ["192.0.2.1\nnameserver 10.0.0.1"], ["192.0.2.1 # x"], ["0.0.0.0"], ["::"], ["224.0.0.1"]))
def test_an_empty_list_or_an_invalid_address_touches_nothing(machine, probe, servers):
    before = machine.path(RESOLV).stat()
    content = text_inside(machine)
    assert not probe("set", *servers)
    after = machine.path(RESOLV).stat()
    assert (after.st_ino, after.st_mtime_ns, after.st_ctime_ns) == (
        before.st_ino, before.st_mtime_ns, before.st_ctime_ns)
    assert text_inside(machine) == content


def test_a_file_of_a_hundred_megabytes_is_judged_at_once_and_left_alone(machine, probe):
    content = b"#\n" * 50000000 + b"nameserver 192.0.2.1\n"
    machine.path(RESOLV).write_bytes(content)
    begun = time.monotonic()
    assert not probe("check")
    assert not probe("set", *SERVERS)
    assert time.monotonic() - begun < 10
    assert machine.path(RESOLV).stat().st_size == len(content)


def test_a_full_disk_leaves_the_old_mounted_file(machine, probe):
    """The new content needs one page more than the file system has."""
    content = "# %s\n%s" % ("x" * 4070, WRONG)
    machine.path("/run/small").mkdir()
    mount(machine, "-t", "tmpfs", "-o", "size=4k", "tmpfs", "/run/small")
    machine.write("/run/small/full", content.encode())
    mount(machine, "--bind", "/run/small/full", RESOLV)
    assert not probe("set", *SERVERS)
    assert text_inside(machine) == content


WORDS = ["nameserver", "NAMESERVER", "nameservers", "search", "options", "#", ";", " ", "  ", "\t",
         "\r", "\v", "\0", "%", "%eth0", "%1", ".", ":", "::", "0", "1", "127.1", "0x7f.0.0.1",
         "0177.1", "192.0.2.1", "192.0.2.300", "1.2.3.4.5", "0.0.0.0", "255.255.255.255",
         "224.0.0.1", "239.1.2.3", "240.0.0.1", "4294967295", "4294967296", "::1", "fe80::1",
         "2001:db8::1", "ff02::1", "::ffff:192.0.2.1", "::ffff:0.0.0.0", "[::1]", "example.org",
         "\xff", "/32", "-1", "+1", "1e1", "0x", "08"]


def configurations():
    """Single lines in every way that matters, one line each, and random mixtures."""
    for address in WORDS:
        for form in ("nameserver %s\n", "nameserver\t%s # text\n", " nameserver %s\n",
                     "nameserver %s", "Nameserver %s\n", "nameserver%s\n", "nameserver %s\r\n",
                     "nameserver %s;\n", "#nameserver %s\n", "\nnameserver   \t %s\t\n"):
            yield form % address
    chance = random.Random(4711)
    for _ in range(2000):
        words = [chance.choice(WORDS) for _ in range(chance.randrange(1, 5))]
        yield chance.choice(("nameserver ", "nameserver ", "nameserver", "")) + "".join(words)


def can_serve(text):
    address = ipaddress.ip_address(text)
    address = getattr(address, "ipv4_mapped", None) or address
    return not (address.is_unspecified or address.is_multicast or str(address) == "255.255.255.255")


def test_the_check_sees_the_servers_that_the_systems_resolver_sees(machine, probe):
    """The C library's own reader takes each configuration, too. When it finds no server in it, it
    falls back to 127.0.0.1, which these configurations reach in other spellings only."""
    cases = [case for case in configurations() if not is_fallback(case)]
    listed = machine.path("/run/cases")
    listed.write_text("".join(case.encode("latin-1").hex() + "\n" for case in cases),
                      encoding="ascii")
    answers = run(machine, PROBE, "compare", "/run/cases").splitlines()
    assert len(answers) == len(cases)
    verdicts = set()
    for case, answer in zip(cases, answers):
        verdict, *servers = answer.split()
        usable = servers != ["127.0.0.1"] and any(can_serve(server) for server in servers)
        assert verdict == ("correct" if usable else "wrong"), (case, servers)
        verdicts.add((verdict, len(servers)))
    assert {("correct", 1), ("wrong", 1)} <= verdicts


def is_fallback(case):
    return any(word in case for word in ("127.1", "0x7f.0.0.1", "0177.1"))

# SPDX-License-Identifier: MIT
"""The resolver configuration: checked after each connection, repaired when no server is usable."""
import fcntl
import ipaddress
import os
import random
import shutil
import struct
from pathlib import Path

import pytest

from lab.private_machine import BUILD
from lab.scenario import end, link_up
from lab.waiting import wait_until

RESOLV = "/etc/resolv.conf"
CXACRU = 1394
COMMENT = "# Written by norvix-daemon, which had found no usable name server here.\n"
SERVERS = ("208.67.222.222", "208.67.220.220")
REPAIRED = COMMENT + "nameserver 208.67.222.222\nnameserver 208.67.220.220\n"
WRONG = "nameserver 0.0.0.0\n"
ROOT_ONLY = pytest.mark.skipif(os.geteuid() != 0, reason="needs a file system operation of root")


class Line:
    """A running daemon whose connections come up at once."""

    def __init__(self, machine):
        self.machine = machine
        machine.settings(protocol="PPPoA", vpi=8, vci=35, vendor_id=CXACRU)
        machine.kernel_log.line_up(CXACRU)
        machine.pppd.script(link_up() + [end(0)])
        self.daemon = machine.start_daemon()
        self.client = machine.client()

    def connect(self):
        """Brings a connection up once; the signals about the resolver that it caused, in order,
        with the one that says that it is up."""
        start = self.client.mark()
        self.client.call("establishConnection")
        self.client.wait_signal("connectionState", after=start)
        self.client.mark()
        about = ("connectionEstablished", "incorrectDNS", "settingOpenDNS")
        return [(signal.name, *signal.args) for signal in self.client.signals[start:]
                if signal.name in about]


CORRECT = [("connectionEstablished",)]
REPAIR = [("connectionEstablished",), ("incorrectDNS",), ("settingOpenDNS", True)]
FAILURE = [("connectionEstablished",), ("incorrectDNS",), ("settingOpenDNS", False)]


@pytest.fixture
def line(bus_machine):
    return Line(bus_machine)


@pytest.fixture
def resolv(bus_machine):
    return bus_machine.path(RESOLV)


def run(machine, *argv):
    done = machine.run(argv)
    assert done.status == 0, done.stderr
    return done.stdout


def text_inside(machine):
    return machine.read(RESOLV).decode("latin-1")


def leftovers(folder):
    return [name for name in os.listdir(folder) if name.startswith(".resolv")]


def test_a_correct_configuration_is_left_alone_without_a_signal(line, resolv):
    for content in ("nameserver 192.0.2.53\n", "search home\nnameserver 127.0.0.53\n",
                    "nameserver fe80::1%ppp0 # the router"):
        resolv.write_text(content, encoding="ascii")
        before = resolv.stat()
        assert line.connect() == CORRECT
        assert resolv.read_text(encoding="ascii") == content
        assert resolv.stat().st_ino == before.st_ino


def test_a_wrong_configuration_is_reported_and_then_repaired(line, resolv):
    resolv.write_text("# mine\nsearch home\n%soptions rotate\n" % WRONG, encoding="ascii")
    assert line.connect() == REPAIR
    assert resolv.read_text(encoding="ascii") == (
        COMMENT + "# mine\nsearch home\nnameserver %s\nnameserver %s\noptions rotate\n" % SERVERS)
    assert leftovers(resolv.parent) == []
    assert line.connect() == CORRECT


def test_the_check_and_the_repair_log_nothing(line, resolv):
    resolv.unlink()
    resolv.mkdir()
    line.connect()
    log = line.machine.daemon_log()
    assert "esolv" not in log and "DNS" not in log and "208.67" not in log


@pytest.mark.parametrize("content", (
    "", "# nameserver 192.0.2.1\n", "NameServer 192.0.2.1\n", " nameserver 192.0.2.1\n",
    "nameserver 0.0.0.0\nnameserver ::\nnameserver 224.0.0.1\nnameserver 255.255.255.255\n",
    "nameserver dns.example.org\n", "\0\xff\xfe nameserver 192.0.2.1"))
def test_a_configuration_without_a_usable_server_is_wrong(line, resolv, content):
    resolv.write_bytes(content.encode("latin-1"))
    assert line.connect() == REPAIR
    assert line.connect() == CORRECT


def test_a_missing_configuration_is_made(line, resolv):
    resolv.unlink()
    assert line.connect() == REPAIR
    assert resolv.read_text(encoding="ascii") == REPAIRED
    assert resolv.stat().st_mode & 0o7777 == 0o644


@ROOT_ONLY
def test_a_repair_keeps_owner_group_and_mode(line, resolv):
    resolv.write_text(WRONG, encoding="ascii")
    os.chown(resolv, 1234, 2345)
    resolv.chmod(0o664)
    assert line.connect() == REPAIR
    state = resolv.stat()
    assert (state.st_uid, state.st_gid, state.st_mode & 0o7777) == (1234, 2345, 0o664)


def test_a_link_to_a_correct_file_of_another_service_is_left_alone(line, resolv):
    managed = line.machine.path("/run/managed.conf")
    managed.write_text("nameserver 127.0.0.53\n", encoding="ascii")
    resolv.unlink()
    resolv.symlink_to("/run/managed.conf")
    assert line.connect() == CORRECT
    assert os.readlink(resolv) == "/run/managed.conf"


def test_a_link_to_a_wrong_file_is_replaced_and_never_written_through(line, resolv):
    managed = line.machine.path("/run/managed.conf")
    managed.write_text("search home\n" + WRONG, encoding="ascii")
    managed.chmod(0o600)
    resolv.unlink()
    resolv.symlink_to("/run/managed.conf")
    assert line.connect() == REPAIR
    assert not resolv.is_symlink()
    assert resolv.read_text(encoding="ascii") == (
        COMMENT + "search home\nnameserver %s\nnameserver %s\n" % SERVERS)
    assert resolv.stat().st_mode & 0o7777 == 0o644
    assert managed.read_text(encoding="ascii") == "search home\n" + WRONG


@pytest.mark.parametrize("target", ("/run/nowhere.conf", "resolv.conf", "/run", "/dev/null"))
def test_a_link_that_leads_to_no_file_is_replaced(line, resolv, target):
    resolv.unlink()
    resolv.symlink_to(target)
    assert line.connect() == REPAIR
    assert not resolv.is_symlink()
    assert resolv.read_text(encoding="ascii") == REPAIRED


def test_a_pipe_without_a_writer_is_not_waited_for(line, resolv):
    resolv.unlink()
    os.mkfifo(resolv)
    assert line.connect() == REPAIR
    assert resolv.read_text(encoding="ascii") == REPAIRED


def test_a_folder_in_its_place_cannot_be_repaired_and_is_reported_each_time(line, resolv):
    resolv.unlink()
    resolv.mkdir()
    assert line.connect() == FAILURE
    assert line.connect() == FAILURE
    assert resolv.is_dir() and leftovers(resolv.parent) == []


FS_IOC_SETFLAGS, IMMUTABLE = 0x40086602, 0x10


def set_file_flags(path, flags):
    with open(path, "rb") as file:
        fcntl.ioctl(file, FS_IOC_SETFLAGS, struct.pack("l", flags))


@ROOT_ONLY
def test_an_immutable_file_stays_and_is_reported_each_time(line, resolv):
    resolv.write_text(WRONG, encoding="ascii")
    set_file_flags(resolv, IMMUTABLE)
    try:
        assert line.connect() == FAILURE
        assert line.connect() == FAILURE
    finally:
        set_file_flags(resolv, 0)
    assert resolv.read_text(encoding="ascii") == WRONG
    assert leftovers(resolv.parent) == []
    assert line.connect() == REPAIR


def test_a_read_only_file_system_is_reported(line, resolv):
    resolv.write_text(WRONG, encoding="ascii")
    run(line.machine, "/usr/bin/mount", "--bind", "/etc", "/etc")
    run(line.machine, "/usr/bin/mount", "-o", "remount,bind,ro", "/etc")
    assert line.connect() == FAILURE
    assert resolv.read_text(encoding="ascii") == WRONG


def mount_by_itself(machine, content):
    """Mounts a file on the configuration, as container managers do; its place outside."""
    mounted = machine.path("/run/mounted.conf")
    mounted.write_text(content, encoding="ascii")
    run(machine, "/usr/bin/mount", "--bind", "/run/mounted.conf", RESOLV)
    return mounted


@pytest.mark.parametrize("content", (WRONG, "search home\n" + "nameserver ff02::1 # wrong\n" * 50))
def test_a_file_that_is_a_mount_point_is_written_in_place(line, resolv, content):
    mounted = mount_by_itself(line.machine, content)
    inode = mounted.stat().st_ino
    assert line.connect() == REPAIR
    assert text_inside(line.machine) == REPAIRED.replace(
        COMMENT, COMMENT + ("search home\n" if "search" in content else ""))
    assert mounted.stat().st_ino == inode
    assert leftovers(resolv.parent) == []


def test_a_mount_point_in_a_read_only_folder_is_written_in_place(line):
    run(line.machine, "/usr/bin/mount", "--bind", "/etc", "/etc")
    run(line.machine, "/usr/bin/mount", "-o", "remount,bind,ro", "/etc")
    mount_by_itself(line.machine, WRONG)
    assert line.connect() == REPAIR
    assert text_inside(line.machine) == REPAIRED


def test_a_mount_point_that_is_read_only_is_reported(line):
    mounted = mount_by_itself(line.machine, WRONG)
    run(line.machine, "/usr/bin/mount", "-o", "remount,bind,ro", RESOLV)
    assert line.connect() == FAILURE
    assert mounted.read_text(encoding="ascii") == WRONG


def test_programs_then_ask_the_servers_that_were_written(line, resolv):
    """Both addresses are put on this machine's loopback; the primary answers, and when it is gone
    the secondary is asked."""
    resolv.write_text("options timeout:1 attempts:1\n" + WRONG, encoding="ascii")
    assert line.connect() == REPAIR
    script = line.machine.path("/opt/norvix/name_server.py")
    shutil.copy(Path(__file__).with_name("name_server.py"), script)
    servers = []
    for address in SERVERS:
        run(line.machine, "/usr/sbin/ip", "addr", "add", address + "/32", "dev", "lo")
        server = line.machine.spawn(["/usr/bin/python3", "/opt/norvix/name_server.py", address])
        wait_until(lambda: "ready" in server.output(), what="the name server", detail=server.errors)
        servers.append(server)

    found = run(line.machine, "/usr/bin/getent", "ahostsv4", "first.example.org")
    assert found.startswith("198.51.100.7 ")
    assert "first.example.org" in servers[0].output()
    assert "first.example.org" not in servers[1].output()

    servers[0].signal()
    servers[0].wait()
    found = run(line.machine, "/usr/bin/getent", "ahostsv4", "second.example.org")
    assert found.startswith("198.51.100.7 ")
    assert "second.example.org" in servers[1].output()


# The manager by itself: what the daemon never asks of it.

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


def test_a_full_disk_leaves_the_old_file(machine, probe):
    run(machine, "/usr/bin/mount", "-t", "tmpfs", "-o", "size=8k", "tmpfs", "/etc")
    machine.write(RESOLV, WRONG.encode())
    machine.write("/etc/other", b"x" * 4096)
    assert not probe("set", *SERVERS)
    assert text_inside(machine) == WRONG
    assert run(machine, "/usr/bin/ls", "-A", "/etc").split() == ["other", "resolv.conf"]


def test_a_full_disk_leaves_the_old_mounted_file(machine, probe):
    """The new content needs one page more than the file system has."""
    content = "# %s\n%s" % ("x" * 4070, WRONG)
    machine.path("/run/small").mkdir()
    run(machine, "/usr/bin/mount", "-t", "tmpfs", "-o", "size=4k", "tmpfs", "/run/small")
    machine.write("/run/small/full", content.encode())
    run(machine, "/usr/bin/mount", "--bind", "/run/small/full", RESOLV)
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


RESETS = {
    "plain": "echo '%(old)s' > /etc/resolv.conf",
    "link": "rm -f /etc/resolv.conf; ln -s /run/managed.conf /etc/resolv.conf",
    "missing": "rm -f /etc/resolv.conf",
    "mounted, growing": "echo '%(old)s' > /etc/resolv.conf",
    "mounted, shrinking": "echo '%(long)s' > /etc/resolv.conf",
}


@pytest.mark.parametrize("kind", RESETS)
def test_killed_at_any_system_call_it_leaves_the_old_file_or_the_new_one(machine, probe, kind):
    long = "\n".join(["search home"] + ["nameserver ff02::%d" % n for n in range(20)])
    texts = {"old": "search home\n" + WRONG.strip(), "long": long}
    if kind.startswith("mounted"):
        mount_by_itself(machine, "")
    machine.path("/run/managed.conf").write_text(texts["old"] + "\n", encoding="ascii")
    reset = machine.path("/opt/norvix/bin/reset")
    reset.write_text("#!/bin/sh\n%s\n" % (RESETS[kind] % texts), encoding="ascii")
    reset.chmod(0o755)

    output = run(machine, PROBE, "kill", "/opt/norvix/bin/reset").splitlines()
    assert output[-2] == "ended with 0"
    states = []
    for report in output[:-2] + output[-1:]:
        _, content = report.split()
        states.append(None if content == "missing" else bytes.fromhex(content[1:]).decode())
    old = {"missing": None, "mounted, shrinking": long + "\n"}.get(kind, texts["old"] + "\n")
    search = "" if kind == "missing" else "search home\n"
    new = COMMENT + search + "nameserver %s\nnameserver %s\n" % SERVERS
    # In place a longer old file leaves empty lines, for a moment, at the end of the complete new one.
    complete = [state.rstrip("\n") + "\n" if state else state for state in states]
    assert set(complete) == {old, new}
    if not kind.startswith("mounted"):
        assert set(states) == {old, new}
    changes = sum(before != after for before, after in zip(complete, complete[1:]))
    assert changes == 1 and states[0] == old and states[-1] == new
    assert len(states) > 10
    assert leftovers(machine.path("/etc")) == []

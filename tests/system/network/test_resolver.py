# SPDX-License-Identifier: MIT
"""The resolver configuration: checked after each connection, repaired when no server is usable."""
import os
import shutil
from pathlib import Path

import pytest

from lab.machine.pppd_script import end, link_up
from lab.waiting import wait_until
from machine_fixtures import ROOT_ONLY
from obstacles import immutable, make_read_only, mount, run
from resolver import (COMMENT, REPAIRED, RESOLV, SERVERS, WRONG, leftovers, mount_by_itself,
                      text_inside)

CXACRU = 1394


class Line:
    """A running daemon whose connections come up at once."""

    def __init__(self, machine):
        self.machine = machine
        machine.settings(protocol="PPPoA", vpi=8, vci=35, vendor_id=CXACRU)
        machine.kernel_log.line_up(CXACRU)
        machine.pppd.script(link_up() + [end(0)])
        self.daemon = machine.start_daemon()
        self.daemon.wait_started()  # before, no line of pppd means anything
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


@ROOT_ONLY
def test_an_immutable_file_stays_and_is_reported_each_time(line, resolv):
    resolv.write_text(WRONG, encoding="ascii")
    with immutable(resolv):
        assert line.connect() == FAILURE
        assert line.connect() == FAILURE
    assert resolv.read_text(encoding="ascii") == WRONG
    assert leftovers(resolv.parent) == []
    assert line.connect() == REPAIR


def test_a_read_only_file_system_is_reported(line, resolv):
    resolv.write_text(WRONG, encoding="ascii")
    make_read_only(line.machine, "/etc")
    assert line.connect() == FAILURE
    assert resolv.read_text(encoding="ascii") == WRONG


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
    make_read_only(line.machine, "/etc")
    mount_by_itself(line.machine, WRONG)
    assert line.connect() == REPAIR
    assert text_inside(line.machine) == REPAIRED


def test_a_mount_point_that_is_read_only_is_reported(line):
    mounted = mount_by_itself(line.machine, WRONG)
    mount(line.machine, "-o", "remount,bind,ro", RESOLV)
    assert line.connect() == FAILURE
    assert mounted.read_text(encoding="ascii") == WRONG


def test_programs_then_ask_the_servers_that_were_written(line, resolv):
    """Both addresses are put on this machine's loopback; the primary answers, and when it is gone
    the secondary is asked."""
    resolv.write_text("options timeout:10 attempts:1\n" + WRONG, encoding="ascii")
    assert line.connect() == REPAIR
    script = line.machine.path("/opt/norvix/fake_name_server.py")
    shutil.copy(Path(__file__).parents[1].joinpath("fake_name_server.py"), script)
    servers = []
    for address in SERVERS:
        run(line.machine, "/usr/sbin/ip", "addr", "add", address + "/32", "dev", "lo")
        server = line.machine.spawn(["/usr/bin/python3", "/opt/norvix/fake_name_server.py", address])
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

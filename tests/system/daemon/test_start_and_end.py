# SPDX-License-Identifier: MIT
"""How the daemon starts, stays alone, and ends."""
import os
import shutil
import signal
from pathlib import Path

import pytest

from lab.machine.pppd_script import link_up, out, stay
from lab.waiting import wait_until
from obstacles import make_read_only

STARTED = "Norvix Daemon: started.\n"
POLICY = Path(__file__).resolve().parents[3] / "packaging" / "norvix.conf"
LOCK = "/run/lock/norvixdaemon"


@pytest.mark.parametrize("switch", ["--debug", "-debug", "-d", "--verbose", "-v"])
def test_every_switch_turns_debug_on(bus_machine, switch):
    daemon = bus_machine.start_daemon(switch)
    daemon.wait_for_output(STARTED)
    assert "ctor invoked." in daemon.output()


@pytest.mark.parametrize("argument", ["--Debug", "-D", "-V", "--VERBOSE", "-verbose", "--debugger",
                                      "x--debug", "debug", "--debug=1", ""])
def test_what_is_no_switch_is_ignored(bus_machine, argument):
    daemon = bus_machine.start_daemon(argument)
    assert bus_machine.client().call("reply") is True
    daemon.stop()
    assert "started" not in daemon.output()
    assert "ctor invoked." not in daemon.output()


def test_a_switch_counts_wherever_it_stands(bus_machine):
    bus_machine.start_daemon("unknown", "-v", "other").wait_for_output(STARTED)


def test_the_parent_ends_at_once_with_status_0(bus_machine):
    daemon = bus_machine.start_daemon()
    assert daemon.parent_status() == 0
    assert daemon.running()


SILENT_BUS = """
import os, socket
os.makedirs("/run/dbus", exist_ok=True)
server = socket.socket(socket.AF_UNIX)
server.bind("/run/dbus/not-yet")
server.listen()
os.rename("/run/dbus/not-yet", "/run/dbus/system_bus_socket")
visitor, _ = server.accept()
visitor.recv(1)
print("somebody came", flush=True)
server.accept()
"""


@pytest.mark.parametrize("number", [signal.SIGHUP, signal.SIGINT, signal.SIGTERM])
def test_a_signal_ends_it_the_same_way_while_a_bus_keeps_it_waiting(machine, number):
    bus = machine.spawn(["/usr/bin/python3", "-c", SILENT_BUS], label="silent-bus")
    wait_until(machine.path("/run/dbus/system_bus_socket").is_socket, what="the bus is there")
    daemon = machine.start_daemon(wait=False)
    wait_until(lambda: "somebody came" in bus.output(), what="the daemon greets the bus")
    daemon.signal(number)
    assert daemon.wait_exit() == 255
    assert daemon.output() == "Norvix Daemon: Signal %d handled\n" % number


@pytest.mark.parametrize("number", [signal.SIGHUP, signal.SIGINT, signal.SIGTERM])
def test_a_signal_prints_its_line_and_ends_with_status_255(bus_machine, number):
    daemon = bus_machine.start_daemon()
    daemon.wait_started()  # which has its own lines to print
    daemon.signal(number)
    assert daemon.wait_exit() == 255
    assert daemon.output().endswith("Norvix Daemon: Signal %d handled\n" % number)


def test_a_running_pppd_survives_the_signal(bus_machine):
    bus_machine.kernel_log.line_up()
    bus_machine.pppd.script(link_up() + [stay()])
    client = bus_machine.client()
    daemon = bus_machine.start_daemon()
    daemon.wait_started()
    client.call("establishConnection")
    client.wait_signal("connectionEstablished")
    pppd = bus_machine.calls("pppd")[0]
    assert daemon.stop() == 255
    assert [facts["pid"] for facts in bus_machine.processes("pppd")] == [pppd.pid]
    assert bus_machine.path("/run/ppp-norvix.pid").exists()


def test_a_second_instance_says_so_and_ends_with_254(bus_machine):
    first = bus_machine.start_daemon()
    second = bus_machine.start_daemon(wait=False)
    assert second.parent_status() == 0
    assert second.wait_exit() == 254
    assert second.errors() == "Norvix Daemon: It seems that the daemon is already running.\n"
    assert second.output() == ""
    assert first.running() and bus_machine.client().call("reply") is True


def test_past_the_lock_the_bus_name_stops_a_second_instance(bus_machine):
    first = bus_machine.start_daemon()
    first.wait_started()  # the log is the second one's from here on
    bus_machine.path(LOCK).unlink()
    second = bus_machine.start_daemon(wait=False)
    assert second.wait_exit() == 1
    assert "NorvixDaemon::NorvixDaemon(): Failed to register the service!\n" in second.output()
    log = bus_machine.daemon_log()
    assert "NorvixDaemon::NorvixDaemon(): failed to register the service!\n" in log
    assert log.splitlines()[-1].endswith("NorvixDaemon::NorvixDaemon(): ")
    assert first.running() and bus_machine.client().call("reply") is True


@pytest.fixture(name="lockless_machine")
def lockless_machine_fixture(bus_machine):
    """A machine in which nobody can make a lock."""
    make_read_only(bus_machine, "/run/lock")
    return bus_machine


def test_where_no_lock_is_possible_the_daemon_starts(lockless_machine):
    daemon = lockless_machine.start_daemon()
    assert lockless_machine.client().call("reply") is True
    assert "cannot make the lock file /var/lock/norvixdaemon" in daemon.errors()


def test_without_locks_a_second_instance_says_so_and_leaves_the_log_alone(lockless_machine):
    first = lockless_machine.start_daemon()
    first.wait_for_log("klogctl() <= 0!")  # the last line of the start
    before = lockless_machine.path("/opt/norvix/daemon.log").stat()
    second = lockless_machine.start_daemon(wait=False)
    assert second.parent_status() == 0
    assert second.wait_exit() == 254
    assert second.errors().endswith("Norvix Daemon: It seems that the daemon is already running.\n")
    assert second.output() == ""
    after = lockless_machine.path("/opt/norvix/daemon.log").stat()
    assert (after.st_ino, after.st_size) == (before.st_ino, before.st_size)
    assert first.running() and lockless_machine.client().call("reply") is True


def test_of_many_without_locks_one_runs(lockless_machine):
    daemons = [lockless_machine.start_daemon(wait=False) for _ in range(6)]
    wait_until(lambda: sum(not daemon.running() for daemon in daemons) == 5, what="five have ended")
    ended = [daemon for daemon in daemons if not daemon.running()]
    assert [daemon.wait_exit() for daemon in ended] == [254] * 5
    assert lockless_machine.client().call("reply") is True
    assert lockless_machine.daemon_log().count("ctor invoked.") == 1


def test_planted_names_in_the_lock_folder_keep_no_lock_away(bus_machine):
    folder = bus_machine.path("/run/lock")
    (folder / "norvixdaemon/sub").mkdir(parents=True)
    for number in range(200):
        (folder / ("norvixdaemon.foreign%d" % number)).mkdir()
    first = bus_machine.start_daemon()
    second = bus_machine.start_daemon(wait=False)
    assert second.wait_exit() == 254
    assert first.errors() == ""


def test_after_the_end_the_lock_is_free_again(bus_machine):
    bus_machine.start_daemon().stop()
    bus_machine.start_daemon()
    assert bus_machine.client().call("reply") is True


def test_a_killed_daemon_leaves_no_lock(bus_machine):
    bus_machine.start_daemon().stop(signal.SIGKILL)
    bus_machine.start_daemon()


def _foreign_file(path, _victim):
    path.write_text("somebody else's\n", encoding="ascii")
    os.chown(path, 1000, 1000)


def _foreign_link(path, victim):
    path.symlink_to(victim)


def _hard_link(path, victim):
    os.link(victim, path)


def _folder(path, _victim):
    path.mkdir()
    (path / "kept").touch()


def _pipe(path, _victim):
    os.mkfifo(path)


@pytest.mark.parametrize("plant", [_foreign_file, _foreign_link, _hard_link, _folder, _pipe])
def test_what_others_leave_at_the_lock_keeps_nobody_out_and_is_not_written(bus_machine, plant):
    if not bus_machine.rooted and plant is _foreign_file:
        pytest.skip("giving a file to another user needs root")
    victim = bus_machine.path("/run/lock/victim")
    victim.write_text("precious\n", encoding="ascii")
    plant(bus_machine.path(LOCK), "/run/lock/victim" if plant is _foreign_link else victim)
    bus_machine.start_daemon()
    assert victim.read_text(encoding="ascii") == "precious\n"
    second = bus_machine.start_daemon(wait=False)
    assert second.wait_exit() == 254


def test_nobody_else_can_read_or_lock_the_lock_file(bus_machine):
    bus_machine.start_daemon()
    assert bus_machine.path(LOCK).stat().st_mode & 0o777 == 0o600


def test_a_failing_fork_is_reported(bus_machine):
    daemon = bus_machine.start_daemon(env={"NORVIX_LAB_FORK_FAILS": "1"}, wait=False)
    assert daemon.parent_status() == 255
    assert daemon.errors() == "Norvix Daemon: Failed to fork (-1)!\n"
    assert not bus_machine.path(LOCK).exists()


def test_the_child_keeps_process_group_and_folder(bus_machine):
    daemon = bus_machine.start_daemon(cwd="/run")
    facts = next(facts for facts in bus_machine.processes() if facts["pid"] == daemon.pid)
    assert facts["pgid"] == daemon.parent.pid
    assert bus_machine.run(["readlink", "/proc/%d/cwd" % daemon.pid]).stdout == "/run\n"


def test_without_a_bus_it_logs_and_ends_with_status_1(machine):
    daemon = machine.start_daemon(wait=False)
    assert daemon.wait_exit() == 1
    log = machine.daemon_log()
    assert "NorvixDaemon::NorvixDaemon(): failed to connect to DBus!\n" in log
    assert "NorvixDaemon::NorvixDaemon(): failed to register the service!\n" in log
    assert "D-Bus" in log.splitlines()[-1]


def test_a_bus_that_refuses_the_name_ends_it_with_status_1(machine):
    machine.start_bus(policy=None)
    daemon = machine.start_daemon(wait=False)
    assert daemon.wait_exit() == 1
    assert "is not allowed to own the service" in machine.daemon_log()


def test_with_no_policy_file_it_says_that_it_makes_one_and_makes_none(machine, tmp_path):
    elsewhere = tmp_path / "the-same-under-another-name.conf"
    shutil.copy(POLICY, elsewhere)
    machine.start_bus(policy=None, policies=[elsewhere])
    machine.start_daemon()
    assert ("NorvixDaemon::NorvixDaemon(): norvix.conf does not exist! Creating a new one...\n"
            in machine.daemon_log())
    assert not machine.path("/etc/dbus-1/system.d/norvix.conf").exists()


def test_start_logs_the_policy_file_and_the_bus(bus_machine):
    bus_machine.start_daemon()
    lines = bus_machine.daemon_log().splitlines()
    texts = [line[len("dd-MM-yyyy hh:mm:ss "):] for line in lines]
    assert texts[0] == "NorvixDaemon::NorvixDaemon(): ctor invoked."
    assert texts[1] == "NorvixDaemon::NorvixDaemon(): norvix.conf exists."
    assert texts[2] == "NorvixDaemon::NorvixDaemon(): successfully connected to DBus."


@pytest.mark.parametrize("streams", ["| head -n 1", "0>&-", "1>&-", "2>&-", "0>&- 1>&- 2>&-"])
def test_streams_that_are_closed_or_that_nobody_reads_any_more_do_no_harm(bus_machine, streams):
    process = bus_machine.spawn(["/bin/sh", "-c", "exec /opt/norvix/bin/norvix-daemon -d " + streams], env={
        "LD_PRELOAD": "/mnt/lab/lib/libklogctl-standin.so"}, label="streams")
    client = bus_machine.client()
    wait_until(client.owner_of, what="the daemon owns its name", detail=process.errors)
    for _ in range(50):
        client.call("getIP", "none")  # each prints a line
    assert client.call("reply") is True


def test_nothing_that_must_die_with_the_daemon_is_inherited(bus_machine):
    bus_machine.kernel_log.line_up()
    bus_machine.settings(protocol="PPPoE", vpi=8, vci=35)
    bus_machine.pppd.script(link_up() + [stay()])
    daemon = bus_machine.start_daemon("-d")
    bus_machine.client().call("establishConnection")
    for program in ("modprobe", "br2684ctl_amd64", "ip", "ifconfig", "pppd"):
        call = bus_machine.wait_call(program)
        beyond_standard = {number: target for number, target in call.fds.items()
                           if int(number) > 2 and "/proc/" not in target}
        assert beyond_standard == {}, program
    assert daemon.stop() == 255


def test_the_debug_switch_fills_the_verbose_log(bus_machine):
    bus_machine.kernel_log.line_up()
    bus_machine.start_daemon("-d")
    bus_machine.client().call("establishConnection")
    bus_machine.wait_call("pppd")
    assert (bus_machine.path("/opt/norvix/daemon_verbose.log").read_text(encoding="ascii")
            == "ConnectThread::waitForSynchronization(): modem synchronized.\n")


def test_without_the_switch_the_verbose_log_stays_empty(bus_machine):
    bus_machine.kernel_log.line_up()
    bus_machine.start_daemon()
    bus_machine.client().call("establishConnection")
    bus_machine.wait_call("pppd")
    assert bus_machine.path("/opt/norvix/daemon_verbose.log").read_bytes() == b""


def test_a_verbose_log_that_cannot_be_opened_stops_nobody(bus_machine):
    bus_machine.kernel_log.line_up()
    bus_machine.path("/opt/norvix/daemon_verbose.log").mkdir()
    bus_machine.pppd.script([out("hello\n"), stay()])
    daemon = bus_machine.start_daemon("-d")
    bus_machine.client().call("establishConnection")
    daemon.wait_for_log("debugConnecting(): hello")


@pytest.mark.parametrize("name", ["daemon_verbose.log", "daemon.log"])
def test_a_pipe_in_a_logs_place_does_not_hold_up_the_start(bus_machine, name):
    os.mkfifo(bus_machine.path("/opt/norvix/" + name))
    bus_machine.start_daemon("-d").wait_for_output(STARTED)
    assert bus_machine.client().call("reply") is True


def test_output_is_seen_at_once_through_a_pipe(bus_machine):
    daemon = bus_machine.start_daemon("-d")
    daemon.wait_for_output(STARTED)
    assert daemon.output().count("ctor invoked.") == 1

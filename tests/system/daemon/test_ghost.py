# SPDX-License-Identifier: MIT
"""A daemon that is killed while it starts pppd leaves a copy of itself behind, which owns its name."""
import shutil

import pytest

from lab.machine.bus_client import SERVICE
from lab.machine.private_machine import BUILD, REPOSITORY
from lab.machine.pppd_script import link_up, stay
from lab.waiting import wait_until

SCRIPT = "/opt/norvix/bin/end-ghosts"
DYING = "/run/dying"


@pytest.fixture(name="machine_with_script")
def machine_with_script_fixture(bus_machine):
    shutil.copy(REPOSITORY / "packaging/end-ghosts", bus_machine.path(SCRIPT))
    shutil.copy(BUILD / "tests/libdying-fork.so", bus_machine.path("/opt/norvix/lib"))
    bus_machine.kernel_log.line_up()
    return bus_machine


def daemons(machine):
    """By how they were called: a ghost has the name of the thread that it was forked from."""
    return [facts["pid"] for facts in machine.processes()
            if facts["argv"][:1] == ["/opt/norvix/bin/norvix-daemon"]]


def start_mortal(machine):
    """A daemon that dies at its next fork once it is told so."""
    preloaded = "/mnt/lab/lib/libklogctl-standin.so:/opt/norvix/lib/libdying-fork.so"
    return machine.start_daemon(env={"LD_PRELOAD": preloaded, "NORVIX_DYING": DYING})


def leave_ghost(machine):
    """Makes one; its id."""
    daemon = start_mortal(machine)
    machine.path(DYING).touch()
    client = machine.client()
    client.start_call("establishConnection")
    assert daemon.wait_exit() == -9
    machine.path(DYING).unlink()
    [ghost] = daemons(machine)
    assert client.owner_of(SERVICE) is not None
    return ghost


def test_a_ghost_is_ended_and_the_daemon_starts_again(machine_with_script):
    machine = machine_with_script
    ghost = leave_ghost(machine)
    refused = machine.start_daemon(wait=False)
    assert refused.parent_status() == 0
    assert refused.wait_exit() == 1  # the name is taken, and it ends nobody itself
    assert daemons(machine) == [ghost]

    done = machine.run([SCRIPT])
    assert (done.status, done.stdout) == (0, "ended %d, left of a daemon that was killed\n" % ghost)
    wait_until(lambda: machine.client().owner_of(SERVICE) is None, what="the name is free")
    machine.start_daemon().wait_started()
    machine.pppd.script(link_up() + [stay()])
    client = machine.client()
    client.call("establishConnection")
    client.wait_signal("connectionEstablished")


def test_a_ghost_of_a_program_that_has_been_replaced_is_ended_too(machine_with_script):
    machine = machine_with_script
    leave_ghost(machine)
    program = machine.path("/opt/norvix/bin/norvix-daemon")
    content = program.read_bytes()
    program.unlink()
    program.write_bytes(content)
    program.chmod(0o755)
    assert machine.run([SCRIPT]).status == 0
    wait_until(lambda: daemons(machine) == [], what="the ghost is gone", detail=lambda: daemons(machine))


def test_a_daemon_that_runs_and_its_connection_are_left_alone(machine_with_script):
    machine = machine_with_script
    machine.pppd.script(link_up() + [stay()])
    daemon = machine.start_daemon()
    daemon.wait_started()
    client = machine.client()
    client.call("establishConnection")
    client.wait_signal("connectionEstablished")
    done = machine.run([SCRIPT])
    assert (done.status, done.stdout, done.stderr) == (0, "", "")
    assert daemon.running() and machine.processes("pppd") != []
    assert client.call("reply") is True


def test_without_a_ghost_nothing_is_waited_for_and_nothing_said(machine_with_script):
    done = machine_with_script.run([SCRIPT])
    assert (done.status, done.stdout, done.stderr) == (0, "", "")

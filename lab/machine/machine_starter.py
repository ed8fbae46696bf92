# SPDX-License-Identifier: MIT
"""Starts private machines for their maker: a small process that has loaded all that process 1 of a
machine needs, and forks. Loading it anew for each machine took longer than all else that makes one.

Started as: machine_starter.py SOCKET_DESCRIPTOR. Each request is JSON with the machine's control
socket; the answer is the id of a process that lives as long as the machine, and that takes the machine
with it when it is killed. Ends when the maker closes the socket or dies, and all machines have ended.
"""
import ctypes
import json
import os
import signal
import socket
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import machine_init  # noqa: E402
from machine_init import MS_REC, libc, mount  # noqa: E402

CLONE_NEWNS, CLONE_NEWUTS, CLONE_NEWIPC = 0x20000, 0x4000000, 0x8000000
CLONE_NEWUSER, CLONE_NEWPID, CLONE_NEWNET = 0x10000000, 0x20000000, 0x40000000
NAMESPACES = CLONE_NEWNS | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWPID | CLONE_NEWNET
MS_PRIVATE = 1 << 18
PR_SET_PDEATHSIG = 1


def unshare(kinds):
    if libc.unshare(kinds):
        error = ctypes.get_errno()
        raise OSError(error, "no namespaces: " + os.strerror(error))


def become_root():
    """An ordinary user is root in a user namespace, and the only user there."""
    texts = {"uid_map": "0 %d 1" % os.geteuid(), "setgroups": "deny",
             "gid_map": "0 %d 1" % os.getegid()}
    unshare(CLONE_NEWUSER)
    for name, text in texts.items():
        with open("/proc/self/" + name, "w", encoding="ascii") as file:
            file.write(text)


def in_a_child(run, *arguments, **named):
    """Calls that in a child, whose id is returned."""
    pid = os.fork()
    if pid:
        return pid
    status = 1
    try:
        run(*arguments, **named)
        status = 0
    except BaseException:
        sys.excepthook(*sys.exc_info())
    finally:
        os._exit(status)


def be_process_1(control, state, keep):
    libc.prctl(PR_SET_PDEATHSIG, signal.SIGKILL)
    machine_init.main(control, state, keep)


def keep_a_machine(control, state, keep):
    """Makes the namespaces and process 1 in them, and waits for its end."""
    if os.geteuid() != 0:
        become_root()
    unshare(NAMESPACES)
    mount("none", "/", flags=MS_REC | MS_PRIVATE)
    in_a_child(be_process_1, control, state, keep)
    control.close()
    os.wait()


def reap(flags=0):
    try:
        while os.waitpid(-1, flags)[0]:
            pass
    except ChildProcessError:
        pass


def main(descriptor):
    maker = socket.socket(fileno=int(descriptor))

    def keeper(control, state, keep):
        maker.close()
        keep_a_machine(control, state, keep)

    while True:
        data, descriptors, _, _ = socket.recv_fds(maker, 65536, 1)
        if not data:
            break
        reap(os.WNOHANG)
        with socket.socket(fileno=descriptors[0]) as control:
            pid = in_a_child(keeper, control, **json.loads(data))
        maker.sendall(b"%d\n" % pid)
    reap()


main(sys.argv[1])

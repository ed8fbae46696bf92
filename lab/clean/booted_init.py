# SPDX-License-Identifier: MIT
"""Obeys in a whole system that has a process 1 of its own: booted_init.py CONTROL STATE_FOLDER"""
import ctypes
import os
import signal
import socket
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "machine"))
import machine_init  # noqa: E402

PR_SET_CHILD_SUBREAPER = 36


def end_everyone_begun_here():
    """Those that were started, and what they leave behind."""
    while pids := [facts["pid"] for facts in machine_init.processes() if facts["ppid"] == os.getpid()]:
        for pid in pids:
            os.kill(pid, signal.SIGKILL)
        for pid in pids:
            os.waitpid(pid, 0)


machine_init.libc.prctl(PR_SET_CHILD_SUBREAPER, ctypes.c_ulong(1))
control = socket.socket(fileno=int(sys.argv[1]))
control.set_inheritable(False)
machine_init.Init(control, sys.argv[2]).serve()
end_everyone_begun_here()

# SPDX-License-Identifier: MIT
"""Becomes a program whose system calls on chosen files are counted, and one of them goes wrong.

Runs inside a private machine: supervisor.py PLAN TRACE PROGRAM ARGUMENT... The program keeps this
process's id; whoever it starts is supervised with it. PLAN is a file that may come, change and go at any
time: {"files": pattern of paths, "looks": whether calls that change nothing count as well, "at": the
number of the call that goes wrong, "fault": "KILL" or the name of an error}. The calls that count are
written to TRACE, a line each ("looks" or "changes", name, paths); with a new plan counting begins anew.
"""
import contextlib
import ctypes
import errno
import fcntl
import json
import os
import re
import select
import signal
import socket
import struct
import sys

AT_FDCWD = -100
ALLOW, NOTIFY, CONTINUE = 0x7FFF0000, 0x7FC00000, 1
# What a call works on: ("fd", which argument), ("path", which), ("at", which is the folder's descriptor,
# which is the path). All of them change something but those in LOOKS.
CALLS = {
    "write": [("fd", 0)], "writev": [("fd", 0)], "pwrite64": [("fd", 0)], "pwritev": [("fd", 0)],
    "pwritev2": [("fd", 0)], "sendfile": [("fd", 0)], "copy_file_range": [("fd", 2)],
    "ftruncate": [("fd", 0)], "fallocate": [("fd", 0)], "fsync": [("fd", 0)], "fdatasync": [("fd", 0)],
    "fchmod": [("fd", 0)], "fchown": [("fd", 0)], "read": [("fd", 0)], "pread64": [("fd", 0)],
    "open": [("path", 0)], "creat": [("path", 0)], "mkdir": [("path", 0)], "rmdir": [("path", 0)],
    "unlink": [("path", 0)], "truncate": [("path", 0)], "chmod": [("path", 0)], "chown": [("path", 0)],
    "lchown": [("path", 0)], "rename": [("path", 0), ("path", 1)], "link": [("path", 0), ("path", 1)],
    "symlink": [("path", 1)], "openat": [("at", 0, 1)], "mkdirat": [("at", 0, 1)],
    "unlinkat": [("at", 0, 1)], "fchmodat": [("at", 0, 1)], "fchownat": [("at", 0, 1)],
    "utimensat": [("at", 0, 1)], "symlinkat": [("at", 1, 2)],
    "renameat": [("at", 0, 1), ("at", 2, 3)], "renameat2": [("at", 0, 1), ("at", 2, 3)],
    "linkat": [("at", 0, 1), ("at", 2, 3)],
}
LOOKS = ("read", "pread64")
OPENS = {"open": 1, "openat": 2}  # which argument says what for


# As <linux/seccomp.h> has them: a call (its id, process, flags, number, architecture, place and six
# arguments), and the answer to it (the id, a result, an error, flags).
CALL, ANSWER = struct.Struct("=QIIiIQ6Q"), struct.Struct("=QqiI")
RECEIVE, SEND = 0xC0502100, 0xC0182101

library = ctypes.CDLL("libseccomp.so.2")
library.seccomp_init.restype = ctypes.c_void_p
for function in ("seccomp_load", "seccomp_notify_fd"):
    getattr(library, function).argtypes = [ctypes.c_void_p]
library.seccomp_rule_add_array.argtypes = [ctypes.c_void_p, ctypes.c_uint32, ctypes.c_int, ctypes.c_uint,
                                           ctypes.c_void_p]


def number_of(name):
    return library.seccomp_syscall_resolve_name(name.encode())


# What this processor has not has a number below zero.
NAMES = {number_of(name): name for name in CALLS if number_of(name) >= 0}


def supervise_me():
    """From here on this process and all that it starts ask before each of the calls. Returns the
    descriptor on which they do."""
    rules = library.seccomp_init(ALLOW)
    for number in NAMES:
        library.seccomp_rule_add_array(rules, NOTIFY, number, 0, None)
    if library.seccomp_load(rules) != 0:
        raise OSError("no system calls can be supervised here")
    return library.seccomp_notify_fd(rules)


def text_at(pid, address):
    """A path in another process's memory; empty when there is none."""
    with open("/proc/%d/mem" % pid, "rb", buffering=0) as memory:
        memory.seek(address)
        data = b""
        while address and b"\0" not in data and len(data) < 4096:
            # Not over the end of a page: the next one may be nobody's.
            data += memory.read(4096 - (address + len(data)) % 4096)
    return os.fsdecode(data.split(b"\0")[0])


def path_of(pid, arguments, what):
    """The path that a call works on, links in its folder followed; None for what has no name."""
    kind, *places = what
    numbers = [ctypes.c_int(arguments[place]).value for place in places]
    if kind == "fd":
        return os.readlink("/proc/%d/fd/%d" % (pid, numbers[0]))
    path = text_at(pid, arguments[places[-1]])
    base = "/proc/%d/cwd" % pid
    if kind == "at" and numbers[0] != AT_FDCWD:
        base = "/proc/%d/fd/%d" % (pid, numbers[0])
    if not path:  # the descriptor itself
        return os.readlink(base)
    folder, name = os.path.split(os.path.join(os.readlink(base), path))
    return os.path.join(os.path.realpath(folder), name)


def only_looks(name, arguments):
    if name in OPENS:
        flags = arguments[OPENS[name]]
        return flags & os.O_ACCMODE == os.O_RDONLY and not flags & (os.O_CREAT | os.O_TRUNC)
    return name in LOOKS


class Supervisor:
    def __init__(self, plan, trace):
        self.plan_path, self.trace_path = plan, trace
        self.known, self.plan, self.count = None, None, 0

    def read_plan(self):
        try:
            facts = os.stat(self.plan_path)
        except FileNotFoundError:
            self.known = self.plan = None
            return
        identity = facts.st_ino, facts.st_mtime_ns
        if identity != self.known:
            with open(self.plan_path, encoding="utf-8") as file:
                self.plan = json.load(file)
            self.known, self.count = identity, 0

    def judge(self, pid, name, arguments):
        """What becomes of a call: the number of an error, or 0."""
        self.read_plan()
        looks = only_looks(name, arguments)
        if not self.plan or (looks and not self.plan["looks"]):
            return 0
        paths = [path_of(pid, arguments, what) for what in CALLS[name]]
        if not any(re.search(self.plan["files"], path) for path in paths):
            return 0
        self.count += 1
        with open(self.trace_path, "a", encoding="utf-8") as file:
            file.write("%s %s %s\n" % ("looks" if looks else "changes", name, " ".join(paths)))
        if self.count != self.plan["at"]:
            return 0
        if self.plan["fault"] == "KILL":
            os.killpg(os.getpgid(pid), signal.SIGKILL)
            return 0
        return getattr(errno, self.plan["fault"])

    def serve(self, descriptor):
        """Answers until nobody is left who asks."""
        waiting = select.poll()
        waiting.register(descriptor, select.POLLIN)
        while True:
            [(_, events)] = waiting.poll()
            if not events & select.POLLIN:
                return
            call = bytearray(CALL.size)
            with contextlib.suppress(FileNotFoundError):  # killed while it asks
                fcntl.ioctl(descriptor, RECEIVE, call)
                identity, pid, _, number, _, _, *arguments = CALL.unpack(call)
                try:
                    error = self.judge(pid, NAMES[number], arguments)
                except OSError:  # a descriptor that is not open, a process that has gone
                    error = 0
                answer = ANSWER.pack(identity, 0, -error, 0 if error else CONTINUE)
                fcntl.ioctl(descriptor, SEND, answer)


def main(plan, trace, *command):
    ours, theirs = socket.socketpair()
    if os.fork() == 0:
        os.setsid()  # not among those who are killed together
        theirs.close()
        _, [descriptor], _, _ = socket.recv_fds(ours, 1, 1)
        ours.close()
        Supervisor(plan, trace).serve(descriptor)
        os._exit(0)
    ours.close()
    descriptor = supervise_me()
    socket.send_fds(theirs, [b"x"], [descriptor])
    os.execvp(command[0], command)


main(*sys.argv[1:])

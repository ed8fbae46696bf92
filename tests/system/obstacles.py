# SPDX-License-Identifier: MIT
"""What an administrator or a mishap can put in the way of a file."""
import contextlib
import fcntl
import struct

FS_IOC_SETFLAGS, IMMUTABLE = 0x40086602, 0x10


def run(machine, *argv):
    """Runs a program inside that must not fail; its standard output."""
    done = machine.run(argv)
    assert done.status == 0, done.stderr
    return done.stdout


def mount(machine, *arguments):
    run(machine, "/usr/bin/mount", *arguments)


def make_read_only(machine, path):
    """Makes what lies at a path a read-only file system of its own."""
    mount(machine, "--bind", path, path)
    mount(machine, "-o", "remount,bind,ro", path)


def fill(machine, folder, free_pages):
    """Fills the file system at a folder but for so many pages of memory."""
    filler = folder + "/filler"
    machine.run(["/bin/sh", "-c", "/usr/bin/cat /dev/zero >" + filler])
    if free_pages:
        run(machine, "/usr/bin/truncate", "--size=-%d" % (free_pages * 4096), filler)


def _set_flags(path, flags):
    with open(path, "rb") as file:
        fcntl.ioctl(file, FS_IOC_SETFLAGS, struct.pack("l", flags))


@contextlib.contextmanager
def immutable(path):
    """Within this, nobody can change the file, not even root."""
    _set_flags(path, IMMUTABLE)
    try:
        yield
    finally:
        _set_flags(path, 0)

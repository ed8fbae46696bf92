# SPDX-License-Identifier: MIT
"""Boots the guest, lets it run one command, and hands back its exit status and its files."""

import contextlib
import fcntl
import os
import pathlib
import shlex
import subprocess
import sys
import time

from . import image as images

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
MEMORY_MIB = 1024

# Between two looks for a free place.
LOOK_SECONDS = 0.5


class GuestFailed(Exception):
    """The guest ended without telling a status: it did not boot, hung or died."""


def run(command, results, seconds=600, environment=None, places=1, clean=None, system=None):
    """Runs `command` (an argument vector) in a fresh guest; returns its exit status.

    `results` becomes /results in the guest; beside what the command writes there it holds
    "output", "kernel.log", "console.log" and "times" afterwards. Waits until fewer than `places`
    guests run on this machine, because each keeps most of a core busy.

    `clean` is the folder of another whole system. It is then booted with its own systemd, and the
    command runs beside it, in the host's files as always: it reaches the system by /proc/1/root.

    `system` tells whose kernel is booted: "12", "13", "newest"; without it this system's own.
    """
    results = pathlib.Path(results)
    results.mkdir(parents=True, exist_ok=True)
    for name in ("status", "output", "times", "kernel.log", "console.log"):
        (results / name).unlink(missing_ok=True)
    write_command(results / "command", command, environment or {})
    image = images.prepare(system)
    with place(places):
        boot(image, results, seconds, clean)
    status = results / "status"
    if not status.exists():
        raise GuestFailed(tail(results / "console.log"))
    return int(status.read_text())


@contextlib.contextmanager
def place(places):
    """Takes one of so many places for guests, and gives it back."""
    with contextlib.ExitStack() as opened:
        locks = [opened.enter_context(open(images.cache_folder() / f"place-{number}", "w"))
                 for number in range(places)]
        while not any(taken(lock) for lock in locks):
            time.sleep(LOOK_SECONDS)
        yield


def taken(lock):
    """Whether this lock could be had; closing its file gives it back."""
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        return False
    return True


def write_command(path, command, environment):
    lines = [f"export {name}={shlex.quote(value)}" for name, value in environment.items()]
    path.write_text("\n".join(lines + ["exec " + shlex.join(command)]) + "\n")


def boot(image, results, seconds, clean=None):
    """Starts the emulator and waits until the guest has powered off."""
    process = subprocess.Popen(arguments(image, results, clean), stdin=subprocess.DEVNULL,
                               stdout=open(results / "emulator.log", "wb"),
                               stderr=subprocess.STDOUT)
    try:
        process.wait(timeout=seconds)
    except subprocess.TimeoutExpired:
        pass
    finally:
        if process.poll() is None:
            process.kill()
            process.wait()


def arguments(image, results, clean=None):
    # On a busy machine an emulated timer is too late for the kernel's check that it works.
    words = ["console=ttyS0", "no_timer_check", "quiet", "panic=-1", "net.ifnames=0",
             "log_buf_len=1M", f"lab.repository={REPOSITORY}"]
    further = []
    if clean:
        words.append("lab.clean")
        further = ["-virtfs", f"local,path={clean},mount_tag=clean,security_model=none,readonly=on"]
    return [
        # Emulation on purpose: hardware virtualisation is often offered and seldom works in the
        # places where tests run.
        "setpriv", "--pdeathsig", "KILL",  # no guest outlives who asked for it
        "qemu-system-x86_64", "-accel", "tcg", "-nodefaults", "-no-reboot", "-display", "none",
        "-m", str(MEMORY_MIB), "-smp", os.environ.get("NORVIX_LAB_CPUS", "1"),
        "-kernel", str(image.kernel), "-initrd", str(image.initramfs), "-append", " ".join(words),
        "-serial", f"file:{results / 'console.log'}",
        "-device", "virtio-rng-pci",
        "-virtfs",
        "local,path=/,mount_tag=host,security_model=none,readonly=on,multidevs=remap",
        "-virtfs", f"local,path={image.root},mount_tag=packages,security_model=none,readonly=on",
        "-virtfs", f"local,path={results},mount_tag=results,security_model=none", *further,
    ]


def tail(path, lines=20):
    text = path.read_text(errors="replace") if path.exists() else ""
    return "\n".join(text.splitlines()[-lines:])


def main():
    if len(sys.argv) < 3:
        print("usage: python3 -m lab.kernel.guest RESULTS-FOLDER COMMAND [ARGUMENT...]",
              file=sys.stderr)
        return 2
    began = time.monotonic()
    results = pathlib.Path(sys.argv[1]).resolve()
    status = run(sys.argv[2:], results)
    sys.stdout.write((results / "output").read_text(errors="replace"))
    print(f"guest: status {status} after {time.monotonic() - began:.1f} s", file=sys.stderr)
    return status


if __name__ == "__main__":
    sys.exit(main())

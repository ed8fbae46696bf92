# SPDX-License-Identifier: MIT
"""The whole system that systemd has booted beside the laboratory, obeying as a private machine does: what
is made for those works in it, desktops among it. Nothing in it is a stand-in."""

import pathlib

from ..clean.installed_machine import LAB, InstalledMachine, InstalledPolkit

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
THERE = pathlib.Path("/proc/1/root")
# Where it sees the laboratory's files.
INSIDE = pathlib.Path(f"/lab{REPOSITORY}")


class BootedMachine(InstalledMachine):
    """Use as a context manager, in the emulated computer. What was started in it ends with it."""

    def __init__(self):
        super().__init__(None)

    def _new_state_folder(self):
        (self.path(LAB) / "out").mkdir(parents=True)
        return self.path(LAB)

    def path(self, inside):
        return THERE / inside.lstrip("/")

    def _words_of_process_1(self):
        return ["/usr/sbin/chroot", THERE, "/usr/bin/python3", "-ISB", INSIDE / "lab/clean/booted_init.py"]

    def _furnish(self):
        pass  # as it is installed


class BootedPolkit(InstalledPolkit):
    """That of the whole system, which its bus and systemd start."""

    def _start(self):
        self._root.call_bus("StartServiceByName", "su", "org.freedesktop.PolicyKit1", 0)

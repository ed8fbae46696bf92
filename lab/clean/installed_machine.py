# SPDX-License-Identifier: MIT
"""A clean system in which Norvix has been installed, run as a machine: its own programs, accounts,
policies and settings, as ./install has left them, where the private machine would have the host's."""
import os
import socket
import subprocess
from pathlib import Path

from ..desktop import polkit
from ..desktop.computer import Computer
from ..desktop.session import Session
from ..machine.companion import HalCompanion
from ..machine.furnishing import EMPTY_FOLDERS, FOR_EVERYONE
from ..machine.kernel_log import KernelLog
from ..machine.keeper_service import KeeperOnTheBus, NAME as KEEPER, PROGRAM as KEEPER_PROGRAM
from ..machine.private_machine import PrivateMachine
from ..machine.pppd_script import Pppd
from ..machine.standin_control import FOLDER_OF, install_standins
from ..waiting import PATIENCE, wait_until

HERE = Path(__file__).resolve().parent
INSIDE = "/run/repository/lab"
LAB = "/mnt/lab"
# What the machine needs beside what ./install brings: a screen and its services, and what plays a modem.
DESKTOP_PACKAGES = ("at-spi2-core", "dbus-user-session", "fonts-dejavu-core", "libglib2.0-bin", "openbox",
                    "pkexec", "polkitd", "python3", "xdotool", "xvfb")
PACKAGES = (*DESKTOP_PACKAGES, "gir1.2-umockdev-1.0", "python3-gi", "umockdev")


class InstalledMachine(PrivateMachine):
    """Use as a context manager, on a CleanSystem that has PACKAGES and what ./install has brought, its
    compiler too. Modem, kernel log and provider are stand-ins, as in the private machine."""

    def __init__(self, system):
        self._system = system
        self._process = None
        super().__init__()

    def _new_state_folder(self):
        self._system.run("rm", "-rf", LAB)
        self._system.run("mkdir", "-p", LAB + "/lib", LAB + "/out")
        return self._system.path(LAB)

    def path(self, inside):
        """Where a file of the machine lies outside; links in its path that begin at / lead astray."""
        return Path("%s%s" % (self.root, inside)) if self._keeper else self._system.path(inside)

    def __enter__(self):
        try:
            self._boot()
            self.kernel_log = KernelLog(self.path("/run/lab/kernel-log"))
            self.pppd = Pppd(self.path("/run/lab"))
            self._furnish()
        except BaseException:
            self._end()
            raise
        return self

    def _boot(self):
        self._control, theirs = socket.socketpair()
        with theirs:
            words = [*self._words_of_process_1(), str(theirs.fileno()), LAB]
            self._process = subprocess.Popen(words, pass_fds=[theirs.fileno()], stdin=subprocess.DEVNULL)
        self.request("exits", since=0)  # it has begun
        self._keeper = last_child(self._process.pid)
        self._keeper_end = open(os.pidfd_open(self._keeper), "rb", buffering=0)

    def _words_of_process_1(self):
        return self._system.command(
            "unshare", "--mount", "--net", "--pid", "--fork", "--kill-child=KILL", "/usr/bin/python3",
            "-ISB", INSIDE + "/clean/installed_init.py")

    def _end(self):
        super()._end()
        if self._process:
            self._process.wait(PATIENCE)
            self._process = None

    def _furnish(self):
        for folder in (*EMPTY_FOLDERS, "/tmp/.X11-unix"):
            self.path(folder).mkdir(parents=True, exist_ok=True)
        for folder in (*FOR_EVERYONE, "/tmp/.X11-unix"):
            self.path(folder).chmod(0o1777)
        sources = INSIDE + "/machine/"
        self._compile("-o", LAB + "/standin", sources + "standins/standin.c")
        self._compile("-shared", "-fPIC", "-o", LAB + "/lib/libklogctl-standin.so",
                      sources + "klogctl_standin.c", "-ldl")
        for name, folder in FOLDER_OF.items():  # a link would lead out of the machine
            self.path(folder + "/" + name).unlink(missing_ok=True)
        install_standins(HERE.parent / "machine/standins", self.state / "standin", self.state / "lib",
                         self.path)
        self.pppd.play()
        self.run(["/usr/bin/systemd-tmpfiles", "--create", "norvix-daemon.conf", "norvix-hald.conf"],
                 label="tmpfiles")

    def _compile(self, *words):
        result = self.run(["/usr/bin/gcc", "-O1", *words], label="compiler")
        assert result.status == 0, result.stderr

    def number_of(self, user):
        return self._entry("passwd", user)[2]

    def group_number_of(self, group):
        return self._entry("group", group)[2]

    def members_of(self, group):
        return set(filter(None, self._entry("group", group)[3].split(",")))

    def _entry(self, file, name):
        lines = self.path("/etc/" + file).read_text(encoding="utf-8").splitlines()
        fields = next(line.split(":") for line in lines if line.startswith(name + ":"))
        return [*fields[:2], int(fields[2]), *fields[3:]]

    def start_bus(self, **_):
        """The system bus, as it is installed, activation included."""
        self._bus = self.spawn(["/usr/bin/dbus-daemon", "--system", "--nofork", "--nopidfile"], label="bus")
        wait_until(self._does_bus_answer, what="the bus answers", detail=self._bus.errors)

    def _does_bus_answer(self):
        try:
            self.client().call_bus("GetId")
            return True
        except OSError:
            return False


def last_child(pid):
    """The process at the end of a row of only children, in the host's numbers."""
    while children := Path("/proc/%d/task/%d/children" % (pid, pid)).read_text(encoding="ascii").split():
        pid = int(children[0])
    return pid


class InstalledComputer(Computer):
    """What the units would start, and a modem to be plugged in. The daemon is left to start_daemon()."""

    def __init__(self, machine):
        self.machine = machine
        machine.start_bus()
        self.companion = HalCompanion(machine, self.usb, uid=machine.number_of("norvix-hal"))
        self.keeper = self._start_keeper()

    def _start_keeper(self):
        user = "norvix-keeper"
        folder = "/var/lib/" + user
        number = self.machine.number_of(user)
        self.machine.path(folder).mkdir(exist_ok=True)
        os.chown(self.machine.path(folder), number, number)
        process = self.machine.spawn([KEEPER_PROGRAM], label="keeper", uid=number,
                                     groups=[self.machine.group_number_of("norvix")],
                                     env={"STATE_DIRECTORY": folder})
        keeper = KeeperOnTheBus(self.machine.client(), process.errors)
        wait_until(lambda: keeper.client.owner_of(KEEPER), what="norvix-keeper owns its name",
                   detail=process.errors)
        return keeper


class InstalledSession(Session):
    """Of a user that is there, who has logged in before anything was installed: with the distribution's
    session bus, which starts what is installed, and its pkexec."""

    def __init__(self, machine, user):
        super().__init__(machine, user, member=False)

    def _furnish(self):
        for folder in (self.runtime_folder, self.home):
            place = self.machine.path(folder)
            place.mkdir(parents=True)
            place.chmod(0o700)
            os.chown(place, self.uid, self.uid)

    @property
    def pkexec(self):
        return None

    @property
    def _bus_words(self):
        return ["--session", "--address=unix:path=%s/bus" % self.runtime_folder]

    def launch(self, launcher="com.norvix.Desktop"):
        """As a panel's menu does it."""
        self.window
        file = "/usr/share/applications/%s.desktop" % launcher
        status, _, errors = self.run(["/usr/bin/gio", "launch", file])
        assert status == 0, errors


class InstalledPolkit(polkit.Polkit):
    """Rules, actions and PAM are the system's own."""

    def _furnish(self):
        if polkit.ADMINISTRATOR in self.machine.members_of("sudo"):
            return
        result = self.machine.run(["/usr/sbin/useradd", "--uid", str(polkit.NUMBER), "--groups", "sudo",
                                   "--password", polkit.HASH, polkit.ADMINISTRATOR])
        assert result.status == 0, result.stderr

# SPDX-License-Identifier: MIT
"""norvix-hald in a private machine, and what one asks it over the bus."""
import os
from pathlib import Path

from .bus_client import BusError
from ..waiting import PATIENCE, wait_until

REPOSITORY = Path(__file__).resolve().parents[2]
PROGRAM = "/opt/norvix/bin/norvix-hald"
POLICY = REPOSITORY / "packaging" / "norvix-hald.conf"
NAME, MANAGER = "org.freedesktop.Hal", "/org/freedesktop/Hal/Manager"
DEVICES = "/org/freedesktop/Hal/devices/"
USER, USER_ID = "norvix-hal", 64998


def prepare(machine):
    """What the package's installation does: the user, and the folder for the list of devices. To be
    called before the bus starts, which looks up the users in its policies."""
    with open(machine.path("/etc/passwd"), "a", encoding="utf-8") as file:
        file.write("%s:x:%d:%d::/:/usr/sbin/nologin\n" % (USER, USER_ID, USER_ID))
    with open(machine.path("/etc/group"), "a", encoding="utf-8") as file:
        file.write("%s:x:%d:\n" % (USER, USER_ID))
    folder = machine.path("/run/norvix-hal")
    folder.mkdir()
    if machine.rooted:
        os.chown(folder, USER_ID, USER_ID)


class HalCompanion:
    """A start of norvix-hald. usb: what it sees (SimulatedUsb); without, the host's devices."""

    def __init__(self, machine, usb=None, *arguments, env=None, uid=None, wait=True):
        environment = dict(usb.environment if usb else {}, **(env or {}))
        if uid is None:
            uid = USER_ID if machine.rooted else 0
        self._machine = machine
        self.process = machine.spawn([PROGRAM, *arguments], label="hald", env=environment, uid=uid)
        if wait:
            self.wait_ready()

    def wait_ready(self, timeout=PATIENCE):
        """Waits until it owns HAL's name."""
        observer = self._machine.client()

        def ready():
            if self.process.ended():
                raise RuntimeError("norvix-hald has ended:\n" + self.process.errors())
            try:
                return observer.pid_of(NAME) == self.process.pid
            except BusError:
                return False

        wait_until(ready, timeout, "norvix-hald owns its name", self.process.errors)
        observer.close()

    def wait_for_line(self, text):
        """Waits until it has said this on standard error."""
        wait_until(lambda: text in self.process.errors(), what=repr(text), detail=self.process.errors)

    def stop(self, *number):
        """Sends a signal and waits for the end; the exit status."""
        self.process.signal(*number)
        return self.process.wait()


def manager(client, method, signature="", *arguments, **options):
    """A call of the manager."""
    return client.call_raw(method, signature, *arguments, service=NAME, path=MANAGER,
                           interface=NAME + ".Manager", **options)


def device(client, name, method, signature="", *arguments):
    """A call of a device, named without the common prefix."""
    return client.call_raw(method, signature, *arguments, service=NAME, path=DEVICES + name,
                           interface=NAME + ".Device")


def devices(client):
    """The names of all devices, without the common prefix."""
    return [udi[len(DEVICES):] for udi in manager(client, "GetAllDevices")]


def news(client, after=0):
    """What HAL has announced so far: "+name" for each device that came, "-name" for one that went,
    "~name" with its changes for one that changed."""
    told = []
    for signal in client.signals[after:]:
        if signal.interface == NAME + ".Manager":
            told.append(("+" if signal.name == "DeviceAdded" else "-") + signal.args[0][len(DEVICES):])
        elif signal.interface == NAME + ".Device":
            told.append(("~" + signal.path[len(DEVICES):],) + signal.args)
    return told


def wait_news(client, count, after=0):
    """Waits until that much has been announced and returns it."""
    return wait_until(lambda: news(client, after) if len(news(client, after)) >= count else None,
                      what="%d announcements" % count, detail=lambda: news(client, after))

# SPDX-License-Identifier: MIT
"""norvix-hald beside its floor with 10, 1,000 and 10,000 devices."""
import shutil
import statistics
import subprocess
import time
from collections import namedtuple

from lab.machine import companion
from lab.machine.bus_client import BusError
from lab.machine.companion import DEVICES, MANAGER, NAME, PROGRAM, manager, news
from lab.machine.private_machine import BUILD, PrivateMachine
from lab.machine.simulated_usb import SimulatedUsb
from lab.waiting import wait_until

Effort = namedtuple("Effort", "sizes rounds events calls")
RESULT, LOOK = Effort((10, 1000, 10000), 5, 100, 2000), Effort((10, 1000), 2, 30, 800)
FOLDER = "/opt/norvix/bench"
# udev's events: after the kernel's first one all devices would be looked at again.
COMMANDS = ([PROGRAM, "--monitor=udev"], [FOLDER + "/floor-hal"])
CHANGING = DEVICES + "usb_device_1110_9041_noserial"


class Running:
    """One of the two services, serving until it is left."""

    def __init__(self, machine, usb, command):
        self.machine, self.usb = machine, usb
        self.client = machine.client()
        self.start = time.monotonic()
        self.process = machine.spawn(command, env=usb.environment)
        wait_until(self.serves, timeout=120, what="the service owns its name", detail=self.process.errors)
        self.start = time.monotonic() - self.start

    def serves(self):
        try:
            return self.client.pid_of(NAME) == self.process.pid
        except BusError:
            return False

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.signal()
        self.process.wait()
        self.client.close()

    def call(self, path, interface, method, argument, count):
        """The best time of a call in microseconds."""
        result = self.machine.run([FOLDER + "/bench-hal-caller", path, NAME + "." + interface, method,
                                   argument, count], timeout=300)
        return float(result.stdout.split()[0])

    def events(self, path, count):
        """The times from an event to DeviceAdded at the client, in microseconds."""
        times = []
        for _ in range(count):
            for action in ("remove", "add"):
                before = len(news(self.client))
                sent = self.usb.request("timed_event", path=path, action=action)
                wait_until(lambda: len(news(self.client)) > before, what="the announcement")
                if action == "remove":
                    manager(self.client, "GetAllDevices")  # answered when the list is written
            times.append((self.client.signals[-1].time - sent) * 1e6)
            self.client.signals.clear()
        return times

    def dirty_memory(self):
        """Private dirty memory in kB, but for pages of files (see measure.py)."""
        rollup = self.machine.read("/proc/%d/smaps_rollup" % self.process.pid).decode()
        return int(rollup.split("Anonymous:")[1].split()[0])


def measure(machine, usb, path, command, effort):
    with Running(machine, usb, command) as service:
        figures = {"memory at rest, kB": service.dirty_memory(),
                   "start until the name is owned, us": service.start * 1e6}
        figures["GetAllDevices, us"] = service.call(MANAGER, "Manager", "GetAllDevices", "udi",
                                                    effort.calls // 40)
        figures["GetProperty, us"] = service.call(CHANGING, "Device", "GetProperty",
                                                  "usb_device.vendor_id", effort.calls)
        figures["event to DeviceAdded, us"] = statistics.median(service.events(path, effort.events))
        return figures


def print_table(quick):
    """Builds what is measured, measures and prints."""
    effort = LOOK if quick else RESULT
    subprocess.run(["ninja", "-C", str(BUILD), "norvix-hald", "floor-hal", "bench-hal-caller"], check=True,
                   stdout=subprocess.DEVNULL)
    row = "%-36s %8s %12s %12s %7s"
    print(row % ("", "devices", "norvix-hald", "floor", "ratio"))
    for size in effort.sizes:
        with PrivateMachine() as machine:
            companion.prepare(machine)
            machine.start_bus(policies=[companion.POLICY])
            machine.path(FOLDER).mkdir()
            for name in ("floor-hal", "bench-hal-caller"):
                shutil.copy(BUILD / "bench" / name, machine.path(FOLDER))
            usb = SimulatedUsb(machine)
            path = usb.plug("1-1", 0x1110, 0x9041, interfaces=())
            for number in range(2, size):
                usb.plug("1-%d" % number, 0x0572, 0xcafe, serial="S%d" % number, interfaces=())
            best = {}
            for _ in range(effort.rounds):
                for column, command in enumerate(COMMANDS):
                    for name, value in measure(machine, usb, path, command, effort).items():
                        pair = best.setdefault(name, [float("inf")] * 2)
                        pair[column] = min(pair[column], value)
            for name, (ours, floor) in best.items():
                print(row % (name, size, "%.0f" % ours, "%.0f" % floor, "%.2f" % (ours / floor)), flush=True)

# SPDX-License-Identifier: MIT
"""What the tests of norvix-hald share: its machine, and how announcements are written."""
import pytest

from lab.machine import companion
from lab.machine.bus_client import BusError
from lab.machine.companion import HalCompanion, manager, news
from lab.machine.simulated_usb import SimulatedUsb

HUB = "usb_device_1d6b_2_0000_00_1d_7"
# With the kernel's events the first one makes it look at everything at once: what came and went
# meanwhile is then never told. Tests of whole histories listen to udev's.
EVERY_EVENT = "--monitor=udev"
MODEM = "usb_device_1110_9041_noserial"


@pytest.fixture
def place(machine):
    """A machine with a bus, ready for the companion."""
    companion.prepare(machine)
    machine.start_bus(policies=[companion.POLICY])
    return machine


@pytest.fixture
def usb(place):
    return SimulatedUsb(place)


@pytest.fixture
def client(place):
    return place.client()


@pytest.fixture
def hald(place, usb):
    """The companion with nothing plugged but the root hub."""
    return HalCompanion(place, usb, EVERY_EVENT)


def error_of(call, *arguments):
    with pytest.raises(BusError) as caught:
        call(*arguments)
    return caught.value


def came(name, *interfaces):
    return ["+" + name] + ["+%s_if%d" % (name, number) for number in interfaces]


def went(name, *interfaces):
    return ["-%s_if%d" % (name, number) for number in interfaces] + ["-" + name]


def settled(client):
    """Everything that the companion has told up to now: it says so before it answers this."""
    manager(client, "DeviceExists", "s", "x")
    return news(client)

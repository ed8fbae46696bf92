# SPDX-License-Identifier: MIT
"""What stands behind the window: daemon, keeper, companion, a modem that one plugs in, a provider."""
from functools import cached_property

from ..machine import companion, keeper_service
from ..machine.companion import HalCompanion
from ..machine.keeper_service import Keeper
from ..machine.modem_families import FAMILIES, up_line
from ..machine.simulated_usb import SimulatedUsb

PORT = "1-1"


class Computer:
    """A private machine whose system bus runs and knows everybody; nothing else runs until it is
    started. The provider is machine.pppd: play() or script()."""

    def __init__(self, machine, keeper_settings=""):
        self.machine = machine
        companion.prepare(machine)
        keeper_service.prepare(machine, keeper_settings)
        machine.start_bus(policies=[companion.POLICY, keeper_service.POLICY])
        self.companion = self.daemon = self.keeper = None

    @cached_property
    def usb(self):
        """The USB that the companion sees."""
        return SimulatedUsb(self.machine)

    def start_companion(self):
        self.companion = HalCompanion(self.machine, self.usb)

    def start_daemon(self, *arguments):
        """With the companion, if it does not run yet; waits until its start is over."""
        if not self.companion:
            self.start_companion()
        self.daemon = self.machine.start_daemon(*arguments)
        self.daemon.wait_started()
        return self.daemon

    def start_keeper(self, **options):
        self.keeper = Keeper(self.machine, **options)
        return self.keeper

    def plug(self, family="speedtch", line_up=True):
        """A modem of a family of modem_families.py, as it is with its firmware; returns its path, for
        usb.unplug(). line_up: whether its line synchronises at once."""
        modem = FAMILIES[family]
        if line_up:
            self.machine.kernel_log.append(up_line(modem))
        return self.usb.plug(PORT, modem.vendor, modem.product, serial=modem.serial,
                             interfaces=modem.interfaces)

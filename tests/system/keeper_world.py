# SPDX-License-Identifier: MIT
"""What the tests of norvix-keeper share: a machine with daemon, modem and provider."""
import pytest

from lab.machine import fake_hal, keeper_service
from lab.machine.fake_hal import FakeHal
from lab.machine.keeper_service import FakeLogind, Keeper
from lab.machine.pppd_script import PlayedProvider
from lab.waiting import wait_until

SPEEDTOUCH = (0x06B9, 0x4061)


class World(PlayedProvider):
    """Everything that a connection needs, and what happens to it."""

    def __init__(self, machine, settings="", protocol="PPPoA", names=()):
        self.machine = machine
        keeper_service.prepare(machine, settings)
        machine.start_bus(policies=[keeper_service.POLICY],
                          names=[fake_hal.SERVICE, FakeLogind.NAME, *names])
        self.hal = FakeHal.start(machine)
        self.modem = self.hal.plug("usb_device_6b9_4061_1", *SPEEDTOUCH)
        machine.settings(modem="Thomson Speedtouch 330", vendor_id=SPEEDTOUCH[0], protocol=protocol,
                         product_id=SPEEDTOUCH[1], udi=self.modem, vpi=8, vci=35)
        for name in ("norvix", "norvix_unicorn"):
            machine.path("/etc/ppp/peers/" + name).write_text('user "login"\n', encoding="ascii")
        machine.kernel_log.line_up(SPEEDTOUCH[0])
        super().__init__(machine.pppd)
        self.start_daemon()
        self.client = machine.client()
        self.keeper = None

    def start_daemon(self):
        self.daemon = self.machine.start_daemon()
        self.daemon.wait_started()

    def start_keeper(self, **options):
        self.keeper = Keeper(self.machine, **options)
        return self.keeper

    # ---- what one does and sees

    def add_foreign(self, name, address="10.9.9.9"):
        """Somebody else's link comes up."""
        for words in (["link", "add", name, "type", "veth", "peer", "far-" + name],
                      ["addr", "add", address, "dev", name], ["link", "set", name, "up"]):
            result = self.machine.run(["/usr/sbin/ip", *words])
            assert result.status == 0, result.stderr

    def connect(self):
        """Until the keeper knows of the link, and the pppd that brought it up has left it to its child."""
        here = len(self.client.signals)
        self.client.call("establishConnection")
        self.client.wait_signal("connectionState", after=here)
        self.keeper.wait_for(State="connected")

    def attempts(self):
        return len(self.machine.calls("pppd"))

    def links(self):
        """The names of the links that are up."""
        shown = self.machine.run(["/usr/sbin/ip", "-o", "-4", "addr", "show"]).stdout
        return sorted(line.split()[1] for line in shown.splitlines() if " ppp" in line)

    def wait_lost(self, count=1):
        """The reasons of the losses that clients were told of, when there are that many."""
        return wait_until(lambda: self.keeper.losses() if len(self.keeper.losses()) >= count else None,
                          what="%d losses" % count, detail=self.keeper.properties)


@pytest.fixture
def world(machine):
    """A world with a running connection's worth of everything, and a keeper."""
    made = World(machine)
    made.start_keeper()
    return made

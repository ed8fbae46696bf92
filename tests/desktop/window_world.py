# SPDX-License-Identifier: MIT
"""What tests of the window's pages share: a computer that is set up, and a provider."""
from functools import cached_property

from lab.machine.modem_families import FAMILIES
from lab.machine.pppd_script import PlayedProvider

MODEM = FAMILIES["speedtch"]
UDI = "/org/freedesktop/Hal/devices/usb_device_%x_%x_%s" % (MODEM.vendor, MODEM.product,
                                                            MODEM.serial)
ACCOUNT = b'"login" * "secret" *\n'


class WindowWorld(PlayedProvider):
    """A computer with a modem that is in use, an account and a line, a provider, and a window on it."""

    def __init__(self, computer, desktop):
        self.computer, self.desktop, self.machine = computer, desktop, computer.machine
        super().__init__(self.machine.pppd)
        self.machine.settings(modem=MODEM.name, vendor_id=MODEM.vendor, product_id=MODEM.product,
                              protocol="PPPoA", vpi=8, vci=35, udi=UDI)
        for name in ("norvix", "norvix_unicorn"):
            self.machine.path("/etc/ppp/peers/" + name).write_text('user "login"\n',
                                                                   encoding="ascii")
        for name in ("pap-secrets", "chap-secrets"):
            self.machine.path("/etc/ppp/" + name).write_bytes(ACCOUNT)
        computer.start_companion()
        computer.plug("speedtch")

    @cached_property
    def client(self):
        """Root's connection to the system bus."""
        return self.machine.client()

    @property
    def window(self):
        return self.desktop.window

    def open(self, page="Connection"):
        """Starts the window and turns to a page."""
        self.desktop.start("norvix-desktop")
        self.turn_to(page)

    def turn_to(self, page):
        self.window.select("Pages", page)

    def hang_up(self):
        self.computer.keeper.wait_for(State="connected")  # it loses only what it has seen
        super().hang_up()

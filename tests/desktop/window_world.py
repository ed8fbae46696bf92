# SPDX-License-Identifier: MIT
"""What tests of the window's pages share: a computer that is set up, and a provider."""
from functools import cached_property

from lab.machine.modem_families import FAMILIES
from lab.machine.pppd_script import end, link_up, out, wait_for

MODEM = FAMILIES["speedtch"]
UDI = "/org/freedesktop/Hal/devices/usb_device_%x_%x_%s" % (MODEM.vendor, MODEM.product,
                                                            MODEM.serial)
ACCOUNT = b'"login" * "secret" *\n'


class WindowWorld:
    """A computer with a modem that is in use, an account and a line, and a window on it."""

    def __init__(self, computer, desktop):
        self.computer, self.desktop, self.machine = computer, desktop, computer.machine
        self.machine.settings(modem=MODEM.name, vendor_id=MODEM.vendor, product_id=MODEM.product,
                              protocol="PPPoA", vpi=8, vci=35, udi=UDI)
        for name in ("norvix", "norvix_unicorn"):
            self.machine.path("/etc/ppp/peers/" + name).write_text('user "login"\n',
                                                                   encoding="ascii")
        for name in ("pap-secrets", "chap-secrets"):
            self.machine.path("/etc/ppp/" + name).write_bytes(ACCOUNT)
        computer.start_companion()
        computer.plug("speedtch")
        self._links = 0
        self.answer()

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

    # ---- the provider

    def answer(self):
        """The next attempts come up; hang_up ends the link that the last one of them brought."""
        self._links += 1
        self.machine.pppd.script(
            link_up() + [wait_for("hang-up-%d" % self._links), out("LCP terminated by peer\n"),
                         out("Connection terminated.\n"), end(16)], mode="updetach")

    def hang_up(self):
        """The link ends; the next attempt comes up again."""
        self.computer.keeper.wait_for(State="connected")  # it loses only what it has seen
        ending = self._links
        self.answer()
        self.machine.pppd.trigger("hang-up-%d" % ending)

    def refuse(self):
        """The next attempts are refused for their account."""
        self.machine.pppd.play("c1-chap-wrong-password", speed=50)

    def be_silent(self):
        """Nobody answers the next attempts."""
        self.machine.pppd.script([out("Plugin pppoe.so loaded.\n"),
                                  out("Timeout waiting for PADO packets\n"),
                                  out("Unable to complete PPPoE Discovery\n"), end(24)])

# SPDX-License-Identifier: MIT
"""A computer on which nothing is set up yet, and the pages of the assistant seen by name."""
import os
import re

from lab.machine.modem_families import FAMILIES
from lab.waiting import wait_until

MODULES = "".join("kernel/drivers/%s.ko:\n" % name for name in (
    "usb/atm/speedtch", "usb/atm/usbatm", "usb/atm/ueagle-atm", "net/atm/atm", "net/ppp/ppp_generic",
    "net/ppp/pppoe", "net/atm/pppoatm", "net/atm/br2684"))
PRIVATE = ["/sys/bus", "/sys/class/atm", "/usr/lib/modules"]
PEER = "/etc/ppp/peers/norvix"
SECRETS = ("/etc/ppp/pap-secrets", "/etc/ppp/chap-secrets")
SETTINGS = "/opt/norvix/.daemon_ng.ini"
STEPS = ["May I?", "Modem", "Provider", "Account", "Connect"]


def furnish(machine, repository, kernel=os.uname().release):
    """What the packages install and a kernel has, but no account, no line, no modem."""
    modules = machine.path("/usr/lib/modules") / kernel
    modules.mkdir(parents=True)
    (modules / "modules.dep").write_text(MODULES, encoding="ascii")
    machine.path("/sys/bus/usb/devices").mkdir(parents=True)
    peers = machine.path("/opt/norvix/share/peers")
    peers.mkdir(parents=True)
    for name in ("norvix", "norvix-pppoa", "norvix_unicorn"):
        text = (repository / "packaging/peers" / name).read_bytes()
        (peers / name).write_bytes(text)
        if name != "norvix-pppoa":
            machine.path("/etc/ppp/peers/" + name).write_bytes(text)
            machine.path("/etc/ppp/peers/" + name).chmod(0o644)
    for path in SECRETS:
        machine.path(path).write_text('"norvix" * "norvix" *\n', encoding="ascii")
        machine.path(path).chmod(0o600)


def show_in_sysfs(machine, family="speedtch", port="1-1", before=False):
    """A modem as programs without rights find it."""
    modem = FAMILIES[family]
    device = machine.path("/sys/bus/usb/devices/" + port)
    device.mkdir(exist_ok=True)
    product = modem.product_before if before else modem.product
    (device / "idProduct").write_text("%04x\n" % product, encoding="ascii")
    (device / "idVendor").write_text("%04x\n" % modem.vendor, encoding="ascii")


def hide_in_sysfs(machine, port="1-1"):
    device = machine.path("/sys/bus/usb/devices/" + port)
    for name in ("idVendor", "idProduct"):
        (device / name).unlink()
    device.rmdir()


class Guide:
    """The assistant in one session."""

    def __init__(self, desktop):
        self.desktop, self.window = desktop, desktop.window

    def open(self):
        """Opens it by the window's own button, as a newcomer would."""
        self.window.press_button(re.compile("^(Set up|Assistant)…$"))
        return self.at("May I?")

    @staticmethod
    def number(title):
        return "%d of 5" % (STEPS.index(title) + 1)

    def at(self, title):
        """Waits for a page of the assistant."""
        self.window.wait_text(self.number(title))
        return self

    def says(self, text):
        return self.window.wait_text(re.compile(text) if isinstance(text, str) else text)

    def press(self, name):
        """One at a time: a button that is pressed again while it is still down takes both for one."""
        self.window.press_button(name)
        return self

    def next(self, title):
        return self.press("Next").at(title)

    def back_to(self, title):
        """From where it is, page by page."""
        for step in reversed(STEPS[STEPS.index(title):self._place()]):
            self.press("Back").at(step)
        return self

    def skip_to(self, title):
        """From where it is, without storing anything."""
        for step in STEPS[self._place() + 1:STEPS.index(title) + 1]:
            self.press("Skip").at(step)
        return self

    def _place(self):
        said = self.window.texts()
        return next(place for place, step in enumerate(STEPS) if self.number(step) in said)


def stored(machine, key):
    text = machine.path(SETTINGS).read_text(encoding="utf-8") if machine.path(SETTINGS).exists() else ""
    found = re.search("^%s=(.*)$" % key, text, re.MULTILINE)
    return found and found[1].strip('"')


def wait_stored(machine, **values):
    wait_until(lambda: all(stored(machine, key) == value for key, value in values.items()),
               what="the settings %s" % values, detail=lambda: machine.path(SETTINGS).read_text())

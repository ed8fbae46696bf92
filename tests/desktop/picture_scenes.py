# SPDX-License-Identifier: MIT
"""What the pictures of the documents show: a computer on which everything has happened that a page can
tell of, at a moment that is always the same."""
import math
import re
import sqlite3
from datetime import date, datetime, timedelta, timezone

from first_connection import PEER, SECRETS, furnish, show_in_sysfs

from lab.desktop.bus_service import BusService
from lab.machine.bus_client import SERVICE
from lab.machine.keeper_service import STATE_FOLDER
from lab.machine.modem_families import FAMILIES
from lab.machine.private_machine import REPOSITORY
from lab.machine.pppd_script import link_up, stay
from lab.waiting import wait_until

# What is not the same everywhere is the machine's own, these folders among it.
PRIVATE = ["/sys/bus", "/sys/class/atm", "/sys/module", "/usr/lib/modules"]
PRELOADED = "/mnt/lab/lib/libklogctl-standin.so:/mnt/lab/lib/libpicture-standin.so"
KERNEL = "6.1.0-44-amd64"
NOW = datetime(2026, 5, 20, 20, 15, 0, tzinfo=timezone.utc)
MODEM = FAMILIES["speedtch"]
LOGIN = "anna@example.net"
UP_FOR = timedelta(hours=2, minutes=14)
SAMPLE_SECONDS, SHOWN_SECONDS = 2, 300
GIGABYTE, MEGABYTE = 10 ** 9, 10 ** 6
LOG = "".join("20-05-2026 %s\n" % line for line in (
    "18:00:48 NorvixDaemon::NorvixDaemon(): ctor invoked.",
    "18:00:48 NorvixDaemon::NorvixDaemon(): daemon.ini: modem = Thomson Speedtouch 330",
    "18:00:48 NorvixDaemon::NorvixDaemon(): daemon.ini: vci = 35",
    "18:00:48 NorvixDaemon::NorvixDaemon(): daemon.ini: vpi = 8",
    "18:00:48 NorvixDaemon::NorvixDaemon(): norvix.conf exists.",
    "18:00:48 NorvixDaemon::NorvixDaemon(): successfully connected to DBus.",
    "18:00:55 ConnectThread::prepareBridging(): VPI.VCI: 8.35",
    "18:00:55 ConnectThread::prepareBridging(): br2684ctl: success.",
    "18:00:57 ConnectThread::prepareNAS0(): interface nas0 is down.",
    "18:00:57 ConnectThread::prepareNAS0(): ifconfig nas0 up: success.",
    "18:00:58 Norvix_Daemon::debugConnecting(): Using interface ppp0",
    "18:00:58 Norvix_Daemon::debugConnecting(): Connect: ppp0 <--> nas0",
    "18:01:00 Norvix_Daemon::debugConnecting(): local  IP address 10.64.0.100",
    "18:01:00 Norvix_Daemon::debugConnecting(): remote IP address 10.64.0.1",
    "18:01:00 Norvix_Daemon::debugConnecting(): updetach is set. Now detaching."))


class PlayedDaemon(BusService):
    """A daemon whose connection is up and whose speeds are told when a picture needs them."""

    NAME = INTERFACE = SERVICE
    PATH = "/com/norvix/Daemon"

    def on_getConnectionState(self, _sender):
        return "i", (0,)

    def on_getIsModemPlugged(self, _sender):
        return "b", (True,)

    def on_getIsCompiling(self, _sender):
        return "b", (False,)

    def on_getInterface(self, _sender):
        return "s", ("ppp0",)

    def on_getIP(self, _sender, *_interface):
        return "s", ("10.64.0.100",)

    def on_getDefaultRoute(self, _sender):
        return "s", ("ppp0",)


class Scenes:
    """One computer, and a window on it that has all its pages. translated: what a sentence is in the
    window's language."""

    def __init__(self, computer, desktop, translated=str, arguments=()):
        self.computer, self.desktop, self.machine = computer, desktop, computer.machine
        self.translated, self._arguments = translated, arguments
        self.window = desktop.window
        desktop.env.update(QT_STYLE_OVERRIDE="Fusion", QT_QPA_PLATFORMTHEME="",
                           XDG_DATA_DIRS="/run/lab/none")  # nobody's theme and icons
        self.stop_clock_at(NOW)
        self._furnish()

    # ---- a computer

    def stop_clock_at(self, moment):
        clock = self.machine.path("/run/lab/clock")
        fresh = clock.with_suffix(".new")
        fresh.write_text("%d\n" % moment.timestamp(), encoding="ascii")
        fresh.replace(clock)

    def _furnish(self):
        machine = self.machine
        furnish(machine, REPOSITORY, KERNEL)
        machine.path("/run/lab/kernel-release").write_text(KERNEL + "\n", encoding="ascii")
        for name in ("speedtch", "usbatm", "atm"):
            machine.path("/sys/module/" + name).mkdir()
        machine.path("/usr/lib/firmware/speedtch-2.bin").touch()
        for path in SECRETS:
            machine.path(path).write_text('"%s" * "secret" *\n' % LOGIN, encoding="ascii")
        peer = machine.path(PEER)
        peer.write_text(peer.read_text(encoding="ascii").replace('"norvix"', '"%s"' % LOGIN),
                        encoding="ascii")
        machine.settings(modem=MODEM.name, vendor_id=MODEM.vendor, product_id=MODEM.product,
                         udi="/org/freedesktop/Hal/devices/usb_device_6b9_4061_0090D0123456",
                         protocol="PPPoE", vpi=8, vci=35, is_connected_at_boot=True)
        machine.path("/opt/norvix/.daemon_ng.ini").chmod(0o644)
        show_in_sysfs(machine)
        self.computer.start_companion()
        self.computer.plug()

    def start_daemon(self):
        self.machine.start_daemon(env={"LD_PRELOAD": PRELOADED}).wait_started()

    def start_window(self):
        self.desktop.start("norvix-desktop", *self._arguments, env={"LD_PRELOAD": PRELOADED})
        self.window.find("frame", states={"active"})

    # ---- a past

    def remember(self):
        """Starts a keeper that has kept the connection of a whole month, this one among it."""
        machine = self.machine
        self.computer.start_keeper(env={"LD_PRELOAD": PRELOADED}).stop()  # it makes its file
        (machine.path(STATE_FOLDER) / "memory.json").write_text(
            '{"limit": %d, "billing_day": 1, "wanted": true}' % (60 * GIGABYTE), encoding="ascii")
        with sqlite3.connect(machine.path(STATE_FOLDER) / "history.sqlite") as history:
            self._write_past(history)
        history.close()
        self.stop_clock_at(NOW - UP_FOR)
        keeper = self.computer.start_keeper(env={"LD_PRELOAD": PRELOADED})
        keeper.wait_for(State="connected")
        self.stop_clock_at(NOW)

    def _write_past(self, history):
        boot = self.machine.read("/proc/sys/kernel/random/boot_id").decode().strip()
        link = int(self.machine.read("/sys/class/net/ppp0/ifindex"))
        for began, lasted, reason, received, sent, number in (
                (NOW - timedelta(days=2, hours=13), timedelta(hours=23, minutes=59), "hung-up",
                 1840 * MEGABYTE, 121 * MEGABYTE, 0),
                (NOW - timedelta(days=1, hours=12), timedelta(hours=12, minutes=8), "line-lost",
                 1270 * MEGABYTE, 96 * MEGABYTE, 0),
                (NOW - timedelta(days=1, hours=3), timedelta(hours=5, minutes=31), "user",
                 655 * MEGABYTE, 48 * MEGABYTE, 0),
                (NOW - UP_FOR, UP_FOR, None, 412 * MEGABYTE, 37 * MEGABYTE, link)):
            seconds = int(lasted.total_seconds())
            end = int((began + lasted).timestamp())
            history.execute(
                "INSERT INTO session (began, ended, seen, seconds, reason, interface, address,"
                " received, sent, boot, number) VALUES (?, ?, ?, ?, ?, 'ppp0', '10.64.0.100', ?, ?, ?,"
                " ?)", (int(began.timestamp()), end if reason else None, end, seconds, reason,
                        received, sent, boot, number))
        failed = int((NOW - timedelta(days=1, hours=3, minutes=4)).timestamp())
        history.execute("INSERT INTO attempt (first, last, count, reason, after) VALUES"
                        " (?, ?, 2, 'no-concentrator', 0)", (failed - 90, failed))
        for day in range(NOW.day):
            share = 1.6 + math.sin(day * 1.9) + 0.5 * math.sin(day * 0.8)
            if day == NOW.day - 1:
                share = 0.45
            history.execute("INSERT OR REPLACE INTO traffic VALUES (?, ?, ?)",
                            (date(NOW.year, NOW.month, day + 1).isoformat(),
                             int(share * GIGABYTE), int((0.05 + share / 12) * GIGABYTE)))
        history.execute("INSERT INTO line (span, time, carrier, down_rate, up_rate, down_margin,"
                        " up_margin) VALUES (60, ?, 1, 8128, 832, 11.5, 14)",
                        (int(NOW.timestamp()) - 60,))

    # ---- the scenes

    def turn_to(self, page):
        pages = self.window.find("list", self.translated("Pages"))
        self.desktop.click(pages.find("list item", self.translated(page)))

    def start(self):
        """All is set up and nothing is connected."""
        self.start_daemon()
        self.computer.start_keeper(env={"LD_PRELOAD": PRELOADED})
        self.start_window()
        self.window.find("push button", self.translated("Connect"), {"sensitive"})

    def show_account(self):
        self.turn_to("Account and line")
        self.window.wait(lambda: LOGIN in self.window.texts(), what="the account is shown")
        self.window.wait(lambda: self.window.find("spin box").value, what="the line is shown")

    def show_driver(self):
        self.turn_to("Modem and driver")
        self.window.wait_text(KERNEL)

    def show_check_up(self):
        """Somebody has written into the files of the account."""
        for path in SECRETS:
            self.machine.path(path).write_text('# the old one\n"%s" * "secret" *\n' % LOGIN,
                                               encoding="ascii")
        self.turn_to("Check-up")
        self.window.press_button(self.translated("Look as administrator…"))
        self.window.find("push button", self.translated("Put yours first…"), {"sensitive"})
        self.window.find("push button", self.translated("Check again"), {"sensitive"})
        self.window.find("check box").press()
        self.window.wait_text("192.0.2.53")

    def guide_to_provider(self):
        say = self.translated
        self.window.press_button(say("Assistant…"))
        self._wait_step(1)
        self.window.press_button(say("Next"))
        self._wait_step(2)
        self.window.wait_text(say("%1 is ready.").replace("%1", MODEM.name))
        self.window.press_button(say("Next"))
        self._wait_step(3)
        self.window.choose(say("Country"), say("Italy"))
        self.window.choose(say("Provider"), "TIM (Alice)")
        self.window.find("push button", say("Next")).focus()

    def guide_to_connection(self):
        say = self.translated
        self.machine.pppd.script([*link_up(), stay()])
        for step in (4, 5):
            self.window.press_button(say("Skip"))
            self._wait_step(step)
        self.window.press_button(say("Connect"))
        self.window.wait_gone("push button", say("Skip"))
        self.window.wait_text(say("You are connected. “Close” leads to the window; the connection stays. "
                                  "There, “Account and line” can have it made by itself when the computer "
                                  "starts."))

    def _wait_step(self, number):
        self.window.wait_text(self.translated("%1 of %2").replace("%1", str(number)).replace("%2", "5"))

    def show_log(self):
        self.turn_to("Log")
        self.window.wait(lambda: LOG in self.window.texts(), what="the log is shown")

    def show_history(self):
        self.turn_to("History")
        self.window.find("cell", re.compile("2 "))

    def connect(self):
        """A connection that has been up for hours, with the speeds of its last minutes."""
        machine = self.machine
        machine.pppd.script([*link_up(), stay()])
        machine.spawn(["/usr/local/sbin/pppd", "linkname", "norvix"], label="pppd")
        wait_until(self._has_route, what="the link is up")
        machine.path("/opt/norvix/daemon.log").write_text(LOG, encoding="ascii")
        daemon = machine.client(kind=PlayedDaemon)
        daemon.take_name()
        self.remember()
        # How long pppd runs is asked for by its file; the keeper's word is the one that stands still.
        for file in ("ppp-norvix.pid", "ppp0.pid"):
            machine.path("/run/" + file).unlink()
        self.start_window()
        self.window.wait_text("10.64.0.100")
        daemon.emit("modemPlugged", "s", MODEM.name)
        plot, shown = self.window.find("chart"), 0
        for age in range(SHOWN_SECONDS, -1, -SAMPLE_SECONDS):
            self.stop_clock_at(NOW - timedelta(seconds=age))
            daemon.emit("transmissionSpeed", "uu", *speeds(age))
            shown = wait_until(lambda: plot.value != shown and plot.value, what="it is shown")
        daemon.emit("connectionState", "i", 0)  # it looks at everything else anew
        self.window.wait_text(re.compile("11.5"))
        self.window.wait_text(re.compile("192.0.2.53"))

    def _has_route(self):
        return b"\nppp0\t00000000" in self.machine.read("/proc/net/route")


def speeds(age):
    """Bytes per second down and up, so many seconds ago."""
    down = 560 + 150 * math.sin(age / 21) + 90 * math.sin(age / 5.3) + 40 * math.sin(age * 1.7)
    if 190 < age < 226:
        down = 70 + 25 * math.sin(age)
    return int(down * 1000), int((42 + 9 * math.sin(age / 13) + 5 * math.sin(age)) * 1000)

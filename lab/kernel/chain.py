# SPDX-License-Identifier: MIT
"""One scenario's world: a modem on the line, a provider behind the exchange, daemon and client."""

import pathlib
import shutil
import socket
import threading
import time

from ..machine.modem_families import FAMILIES, FAMILIES_OF_THE_KERNEL
from ..waiting import read_text, wait_until
from . import system
from .modems import cxacru, eagle, speedtch, vhci
from .modems.line import Line, State
from .provider import (ADDRESS, ECHO_PORT, LOGIN, PASSWORD, CableProvider, PppoaProvider,
                       PppoeProvider)

# For scenarios that are not about training. The drivers look once a second, or after five.
QUICK = ((State.INITIALIZING, 0.3),)

VPI, VCI = 8, 35

# The daemon looks at a new device 5 s after its last announcement.
VERIFICATION_SECONDS = 40
# A driver may take its time to notice the line: speedtch looks every 5 s.
LINE_SECONDS = 60

KINDS = {kind: FAMILIES[kind] for kind in FAMILIES_OF_THE_KERNEL}
VENDORS = {kind: family.vendor for kind, family in KINDS.items()}
PRODUCTS = {kind: family.product for kind, family in KINDS.items()}
NAMES = {kind: family.name for kind, family in KINDS.items()}
DRIVERS = {kind: family.driver for kind, family in KINDS.items()}
# What each driver writes when the line is up.
UP_LINES = {"cxacru": "ADSL line: up", "speedtch": "ADSL line is up (",
            "eagle": "modem operational", "eagle-e4": "modem operational"}
UDIS = {kind: "/org/freedesktop/Hal/devices/usb_device_%x_%x_%s"
        % (family.vendor, family.product, family.serial or eagle.SERIAL)
        for kind, family in KINDS.items()}


PROVIDERS = {"PPPoE": PppoeProvider, "PPPoA": PppoaProvider, "dsl0": CableProvider}


class FarEnd:
    """What the exchange is joined to. A line is put in for each scenario."""

    def __init__(self):
        self.line = Line()
        self._exchange = system.plug_exchange(self)

    @property
    def to_exchange(self):
        return self._send

    @to_exchange.setter
    def to_exchange(self, send):
        self._send = send

    def from_exchange(self, cell):
        self.line.from_exchange(cell)

    def join(self, line):
        line.to_exchange = self._send
        self.line = line


class Chain:
    """Nothing is plugged, configured or started at first."""

    make_far_end = FarEnd

    def __init__(self, guest, far_end, folder):
        self.guest = guest
        self.folder = folder
        self.line = Line(QUICK)
        far_end.join(self.line)
        self.socket = vhci.Socket()
        self.kind = None
        self.modem = None
        self.provider = None
        self.daemon = None
        self.keeper = None
        self.client = None
        self._starts = 0
        system.clear_kernel_log()
        shutil.rmtree("/var/log/norvix", ignore_errors=True)
        shutil.rmtree(system.KEEPER_STATE, ignore_errors=True)
        for path in (system.SETTINGS, system.LOG, system.LINK_PID_FILE, system.KEEPER_SETTINGS):
            path.unlink(missing_ok=True)
        system.RESOLVER.write_text(system.GOOD_RESOLVER)
        system.write_account()

    # The world.

    def plug(self, kind="cxacru", **options):
        """Plugs a modem in; udev loads its driver by itself."""
        self.kind = kind
        if kind == "cxacru":
            self.modem = cxacru.Cxacru(self.line, **options)
        elif kind == "speedtch":
            self.modem = speedtch.Speedtch(self.line, **options)
        else:
            generation = eagle.Newer if kind == "eagle-e4" else eagle.Older
            self.modem = eagle.plug(self.socket, generation, self.line, port=system.MODEM_PORT,
                                    **options)
            return
        self.socket.plug(self.modem, system.MODEM_PORT)

    def unplug(self):
        self.socket.unplug()

    def wait_line_up(self):
        """Until the driver has told the kernel log that the line is up."""
        self.wait_kernel_log(UP_LINES[self.kind], LINE_SECONDS)

    def wait_kernel_log(self, text, seconds=LINE_SECONDS, count=1):
        wait_until(lambda: system.kernel_log().count(text) >= count, seconds,
                   f"{text!r} ({count} times) in the kernel log", system.kernel_log)

    def start_provider(self, protocol="PPPoE", **account):
        self.provider = PROVIDERS[protocol]("/var/lib/provider", **account)
        self.provider.start()

    # The system under test.

    def configure(self, kind, protocol="PPPoE", **more):
        """Settings as a client has left them: the modem is the known one."""
        system.write_settings(vendor_id=VENDORS[kind], product_id=PRODUCTS[kind],
                              modem=NAMES[kind], udi=UDIS[kind], protocol=protocol, vpi=VPI,
                              vci=VCI, **more)

    def configure_line(self, protocol="PPPoE", **more):
        """Settings with the provider's parameters only; no modem has been chosen."""
        system.write_settings(protocol=protocol, vpi=VPI, vci=VCI, **more)

    def write_account(self, protocol="PPPoE", login=LOGIN, password=PASSWORD, replace=()):
        """Peer file and secrets as an administrator writes them."""
        system.write_peer("norvix" if protocol == "PPPoE" else "norvix-pppoa", login, replace)
        system.write_account(login, password)

    def make_ready(self, kind="cxacru", protocol="PPPoE", settings=None, provider=None, **account):
        """A modem in use with its line up, an account, a provider, and a daemon that has not connected
        yet. settings and provider: more for configure() and start_provider()."""
        self.configure(kind, protocol, **(settings or {}))
        self.write_account(protocol, **account)
        self.start_provider(protocol, **(provider or {}))
        self.plug(kind)
        self.wait_line_up()
        return self.start_daemon()

    def start_daemon(self, *arguments):
        self._starts += 1
        if self.client is None:
            self.client = self.guest.client()  # before the daemon, so that it hears everything
        self.daemon = system.Daemon(self.guest, self.folder / f"daemon-{self._starts}.output",
                                    *(arguments or ("--debug",)))
        return self.client

    def start_keeper(self, settings=""):
        """settings: lines of its file, which stay for the next start."""
        if settings:
            system.KEEPER_SETTINGS.write_text(settings)
        self.keeper = system.Keeper(self.guest, self.folder / "keeper.output")
        return self.keeper

    def connect(self, protocol=None):
        """Asks for a connection and waits until the client hears that it is there."""
        mark = len(self.client.signals)
        self.client.call("establishConnection")
        self.client.wait_signal("connectionEstablished", timeout=90, after=mark)
        return mark

    def disconnect(self):
        mark = len(self.client.signals)
        self.client.call("terminateConnection")
        self.client.wait_signal("connectionTerminated", after=mark)

    def daemon_log(self):
        return read_text(system.LOG)

    def wait_state(self, state, seconds=30):
        """Until the client is told this connection state when it asks."""
        wait_until(lambda: self.client.call("getConnectionState") == state, seconds,
                   f"connection state {state}", self.daemon_log)

    def wait_ended(self, name, seconds=30):
        """Until no process of that name runs any more."""
        wait_until(lambda: not system.processes(name), seconds, f"no {name} runs")

    # Evidence and end.

    def evidence(self):
        return {
            "kernel log": system.kernel_log(),
            "daemon's log": self.daemon_log(),
            "keeper's changes": "\n".join("%7.2f %s" % change for change in self.keeper.told())
            if self.keeper else "",
            "provider's log": self.provider.said() if self.provider else "",
            "signals": "\n".join(f"{signal.name}{signal.args}" for signal in self.client.signals)
            if self.client else "",
            "processes": system.run("ps", "axo", "pid,ppid,stat,args").stdout,
            "interfaces": system.run("ip", "addr").stdout,
        }

    def keep_evidence(self):
        for name, text in self.evidence().items():
            (self.folder / name.replace(" ", "-")).write_text(text)

    def take_down(self):
        if self.keeper:
            self.keeper.end()
            self.keeper.client.close()
        if self.daemon:
            self.daemon.end()
        if self.client:
            self.client.close()
        for name in ("pppd", "br2684ctl_amd64"):
            system.run("killall", "-q", "-9", name, check=False)
        if self.provider:
            self.provider.stop()
        self.unplug()
        for name in set(DRIVERS.values()):
            wait_until(lambda module=name: unload(module), what=f"{name} is unloaded")
        wait_until(lambda: not pathlib.Path("/sys/class/net/ppp0").exists(), what="ppp0 is gone")
        system.LINK_PID_FILE.unlink(missing_ok=True)


def unload(module):
    """Whether a driver is not loaded any more; tries to unload it."""
    name = module.replace("-", "_")
    if not pathlib.Path("/sys/module", name).exists():
        return True
    return system.run("rmmod", name, check=False).returncode == 0


def exchange_traffic(count=20_000, seconds=30):
    """Sends that many bytes to the provider's echo server and gets them back."""
    with socket.create_connection((ADDRESS, ECHO_PORT), timeout=seconds) as there:
        sender = threading.Thread(target=there.sendall, args=(b"x" * count,))
        sender.start()
        received = 0
        deadline = time.monotonic() + seconds
        while received < count and time.monotonic() < deadline:
            received += len(there.recv(65536))
        sender.join(seconds)
    return received


def carries_traffic():
    """Whether it does so now; a link that has just come up may have no route yet."""
    try:
        return exchange_traffic() == 20_000
    except OSError:
        return False

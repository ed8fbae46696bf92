# SPDX-License-Identifier: MIT
"""The system inside the guest: its files, udev, bus, HAL companion, and the daemon.

Only for the inside of a guest: it writes to /etc and /opt and loads kernel modules.
"""

import os
import pathlib
import pwd
import re
import shutil
import signal
import socket
import subprocess

from ..machine import keeper_service
from ..machine.bus_client import SERVICE, Client
from ..waiting import read_text, wait_until
from .modems import eagle, exchange, speedtch, vhci
from .modems.line import Line

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("NORVIX_BUILD_DIR") or REPOSITORY / "build/release")

BUS_SOCKET = "/run/dbus/system_bus_socket"
HAL = "org.freedesktop.Hal"
SETTINGS = pathlib.Path("/opt/norvix/.daemon_ng.ini")
LOG = pathlib.Path("/opt/norvix/daemon.log")
PEER = pathlib.Path("/etc/ppp/peers/norvix")
UNICORN_PEER = pathlib.Path("/etc/ppp/peers/norvix_unicorn")
LINK_PID_FILE = pathlib.Path("/run/ppp-norvix.pid")
RESOLVER = pathlib.Path("/etc/resolv.conf")
KEEPER_SETTINGS = pathlib.Path("/etc/norvix-keeper.conf")
KEEPER_STATE = pathlib.Path("/var/lib/norvix-keeper")
FIRMWARE = pathlib.Path("/lib/firmware")
ATM = pathlib.Path("/sys/class/atm")

MODULES = ("vhci-hcd", "br2684", "pppoatm", "pppoe", "vrf", "dummy")

# The modem's port is the first one, so that its driver calls it 1-1.
MODEM_PORT, EXCHANGE_PORT = 0, 1

GOOD_RESOLVER = "nameserver 10.64.0.53\n"


def run(*arguments, check=True, seconds=60):
    """Runs a program to its end; the result has returncode, stdout and stderr."""
    return subprocess.run(arguments, check=check, capture_output=True, text=True, timeout=seconds)


def in_guest():
    """Whether this is a guest and no machine that somebody works on."""
    return "lab.repository=" in read_text(pathlib.Path("/proc/cmdline"))


def kernel_log():
    """The real kernel log, without times."""
    text = run("dmesg").stdout
    return re.sub(r"(?m)^\[ *[0-9.]+\] ", "", text)


def clear_kernel_log():
    """Forgets what the log says; one line stays, as a log is never empty on a system that runs."""
    run("dmesg", "--clear")
    pathlib.Path("/dev/kmsg").write_text("lab: the next scenario\n")


def processes(name):
    """Ids of the processes of that name that still run."""
    found = []
    for entry in pathlib.Path("/proc").iterdir():
        if entry.name.isdigit():
            status = read_text(entry / "status") if entry.exists() else ""
            if f"Name:\t{name}\n" in status and "State:\tZ" not in status:
                found.append(int(entry.name))
    return found


def write_account(login="", password=""):
    """The secrets files with one account, or none."""
    for name in ("pap-secrets", "chap-secrets"):
        path = pathlib.Path("/etc/ppp") / name
        path.write_text(f'"{login}" * "{password}" *\n' if login else "")
        path.chmod(0o600)


def write_peer(template, login=None, replace=(), target=PEER):
    """Installs a shipped peer file as the connection's; `replace` are further (old, new) pairs."""
    text = (REPOSITORY / "packaging/peers" / template).read_text()
    if login:
        text = text.replace('user "login"', f'user "{login}"')
    for old, new in replace:
        if old not in text:
            raise ValueError(f"{template} has no {old!r}")
        text = text.replace(old, new)
    target.write_text(text)


def write_settings(**values):
    """The daemon's settings file. The daemon reads it again before each connection."""
    lines = ["[General]"]
    for name, value in values.items():
        lines.append(f"{name}={str(value).lower() if isinstance(value, bool) else value}")
    SETTINGS.write_text("\n".join(lines) + "\n")


def read_settings():
    pairs = [line.split("=", 1) for line in read_text(SETTINGS).splitlines() if "=" in line]
    return dict(pairs)


def write_firmware():
    """The smallest files that the drivers accept."""
    files = dict(speedtch.FIRMWARE_FILES)
    for generation in (eagle.Older, eagle.Newer):
        for name, content in eagle.firmware_files(generation).items():
            files[f"ueagle-atm/{name}"] = content
    for name, content in files.items():
        path = FIRMWARE / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def remove_firmware():
    shutil.rmtree(FIRMWARE / "ueagle-atm", ignore_errors=True)
    for name in speedtch.FIRMWARE_FILES:
        (FIRMWARE / name).unlink(missing_ok=True)


def install_files():
    """What an administrator has installed: programs, policies, users."""
    for folder in ("/opt/norvix/bin", "/opt/norvix/drivers", "/etc/dbus-1/system.d",
                   "/etc/ppp/peers", "/run/dbus", "/run/norvix-hal"):
        pathlib.Path(folder).mkdir(parents=True, exist_ok=True)
    # The daemon ends the bridge by the name that it starts it by.
    os.symlink("/usr/sbin/br2684ctl", "/opt/norvix/bin/br2684ctl_amd64")
    for policy in (REPOSITORY / "packaging").glob("*.conf"):
        shutil.copy(policy, "/etc/dbus-1/system.d")
    shutil.copy(REPOSITORY / "packaging/norvix-daemon.rules", "/usr/lib/udev/rules.d/60-norvix-daemon.rules")
    run("groupadd", "--system", "norvix", check=False)
    run("useradd", "--system", "--no-create-home", "norvix-hal", check=False)
    run("useradd", "--system", "--no-create-home", "--groups", "norvix", keeper_service.USER,
        check=False)
    # What the daemon logs is the group's to read.
    shutil.chown("/opt/norvix", group="norvix")
    os.chmod("/opt/norvix", 0o2755)
    shutil.chown("/run/norvix-hal", "norvix-hal")
    for template in ("norvix", "norvix_unicorn"):
        shutil.copy(REPOSITORY / "packaging/peers" / template, "/etc/ppp/peers")
    RESOLVER.unlink(missing_ok=True)
    RESOLVER.write_text(GOOD_RESOLVER)
    write_firmware()


def plug_exchange(line):
    """The far end of the line as the second ATM device, so that the modem is the first. Another
    device of its kind holds the first number until it is there."""
    run("modprobe", "xusbatm", *exchange.MODULE_PARAMETERS)
    holder, device, there = exchange.Exchange(Line()), exchange.Exchange(line), vhci.Socket()
    before = vhci.Socket()
    before.plug(holder, MODEM_PORT)
    wait_until((ATM / "xusbatm0").exists, what="the first ATM device is taken")
    there.plug(device, EXCHANGE_PORT)
    wait_until((ATM / "xusbatm1").exists, what="the exchange is an ATM device")
    before.unplug()
    wait_until(lambda: not (ATM / "xusbatm0").exists(), what="the first ATM device is free")
    return device


class Guest:
    """What runs in the guest beside the kernel. Made once for a guest."""

    def __init__(self, results):
        if not in_guest():
            raise RuntimeError("this is for the inside of a guest only")
        self.results = pathlib.Path(results)
        self.hald = None

    def start(self):
        """Kernel modules, udev, system bus and HAL companion."""
        install_files()
        run("modprobe", "-a", *MODULES)
        run("/usr/lib/systemd/systemd-udevd", "--daemon")
        run("udevadm", "settle")
        run("dbus-daemon", "--system", "--fork")
        self.start_hald()

    def start_hald(self):
        program = BUILD / "bin/norvix-hald"
        with open(self.results / "norvix-hald.log", "ab") as log:
            self.hald = subprocess.Popen([program], stdout=log, stderr=subprocess.STDOUT,
                                         user=pwd.getpwnam("norvix-hal").pw_uid)
        with self.client() as client:
            wait_until(lambda: client.owner_of(HAL), what="HAL is on the bus")

    def client(self):
        """A new connection to the system bus, as root."""
        there = socket.socket(socket.AF_UNIX)
        there.connect(BUS_SOCKET)
        return Client(there, os.getuid())


class Daemon:
    """A start of the daemon."""

    def __init__(self, guest, output, *arguments):
        self._guest = guest
        self._output = pathlib.Path(output)
        with open(self._output, "ab") as out:
            parent = subprocess.Popen(
                [BUILD / "bin/norvix-daemon", *arguments], stdin=subprocess.DEVNULL, stdout=out,
                stderr=subprocess.STDOUT, start_new_session=True,
                env={"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LANG": "C.UTF-8"})
        self.status = parent.wait(timeout=60)
        with guest.client() as observer:
            wait_until(lambda: observer.owner_of(SERVICE), what="the daemon owns its name",
                       detail=self.output)
            self.pid = observer.pid_of(SERVICE)
            # It has its name before it hears HAL. It answers when its start is done, or at least
            # while it waits for a driver to be built.
            observer.call("reply", timeout=60)

    def output(self):
        return read_text(self._output)

    def end(self, number=signal.SIGTERM):
        """Sends a signal and waits until the daemon is gone."""
        if self.pid in processes("norvix-daemon"):
            os.kill(self.pid, number)
        wait_until(lambda: self.pid not in processes("norvix-daemon"), what="the daemon has ended")


class Keeper(keeper_service.KeeperOnTheBus):
    """A start of norvix-keeper, as its own user."""

    def __init__(self, guest, output):
        user = keeper_service.USER
        KEEPER_STATE.mkdir(mode=0o700, exist_ok=True)
        shutil.chown(KEEPER_STATE, user)
        with open(output, "ab") as out:
            self._process = subprocess.Popen(
                [BUILD / "bin/norvix-keeper"], stdin=subprocess.DEVNULL, stdout=out,
                stderr=subprocess.STDOUT, start_new_session=True, user=user,
                group=pwd.getpwnam(user).pw_gid, extra_groups=["norvix"],
                env={"STATE_DIRECTORY": str(KEEPER_STATE), "LANG": "C.UTF-8"})
        super().__init__(guest.client(), lambda: read_text(pathlib.Path(output)))
        wait_until(lambda: self.client.owner_of(keeper_service.NAME),
                   what="the keeper owns its name", detail=self.errors)

    def told(self):
        """Every change that it has announced, with seconds since the first."""
        changes = [signal for signal in self.client.signals if signal.name == "PropertiesChanged"
                   and signal.path == keeper_service.PATH]
        return [(signal.time - changes[0].time,
                 {name: value for name, (_, value) in signal.args[1].items()})
                for signal in changes]

    def end(self, number=signal.SIGTERM):
        if self._process.poll() is None:
            self._process.send_signal(number)
        self._process.wait(timeout=30)

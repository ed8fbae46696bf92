# SPDX-License-Identifier: MIT
"""Runs inside the emulated computer, beside the whole system that systemd has booted: what a connection
lives through there. Arguments are the names of stories, told one after the other."""
import json
import os
import pathlib
import random
import shutil
import socket
import subprocess
import sys
import time
import traceback

REPOSITORY = pathlib.Path(__file__).resolve().parents[3]
sys.path.insert(0, str(REPOSITORY))

from lab.kernel import chain as world  # noqa: E402
from lab.kernel import provider, system  # noqa: E402
from lab.kernel.modems import cxacru, phone, vhci  # noqa: E402
from lab.kernel.modems.line import Line  # noqa: E402
from lab.machine import keeper_service  # noqa: E402
from lab.machine.bus_client import Client  # noqa: E402
from lab.waiting import wait_until  # noqa: E402

THERE = pathlib.Path("/proc/1/root")
UNITS = ("norvix-daemon", "norvix-hald", "norvix-keeper")
LATER = ("ModemManager", "NetworkManager", "systemd-networkd.socket", "systemd-networkd", "systemd-resolved")
PATIENCE = 180


class Neighbour(provider.PppoeProvider):
    """Somebody else's concentrator, at the far end of a cable."""

    def __init__(self, number):
        super().__init__("/var/lib/neighbour%d" % number, login="me@other", password="other")
        self.near, self.interface = "eth%d" % number, "far%d" % number
        self.namespace = "neighbour%d" % number
        self.address = "10.%d.0.1" % (60 + number)
        self.client_address = "10.%d.0.100" % (60 + number)

    def _make_interface(self):
        lay_cable(self.near, self.interface)

    def serves(self, device):
        """Whether a link is one to here; each session has another address."""
        network = self.address.rpartition(".")[0] + "."
        return [entry["local"].startswith(network) for entry in addresses(device)] == [True]


class MobileNetwork(provider.Provider):
    """Somebody else's, whom a phone calls: each call gets a pppd of its own."""

    address, client_address = "10.70.0.1", "10.70.0.100"
    namespace = "mobile"
    nameservers = ("10.70.0.53", "10.70.0.54")
    pppd = pathlib.Path("/usr/local/sbin/mobile-ppp")  # when the provider hangs up this one does not

    def __init__(self):
        super().__init__("/var/lib/mobile", authentication=None)

    def start(self):
        self._write_files()
        shutil.copy("/usr/sbin/pppd", self.pppd)
        system.run("ip", "netns", "add", self.namespace)

    def answer(self):
        """Takes a call: its end of the stream."""
        near, far = socket.socketpair()
        words = self._in_room(str(self.pppd), "notty", "nodetach", "logfd", "2", "file", "/etc/ppp/server",
                              "%s:%s" % (self.address, self.client_address))
        with far, open(self.log, "ab") as log:
            self._processes.append(subprocess.Popen(
                ["ip", "netns", "exec", self.namespace, *words], stdin=far, stdout=far, stderr=log,
                start_new_session=True))
        return near

    def serves(self, device):
        """Whether a link is one to here, and something comes back through it."""
        reached = system.run("busybox", "ping", "-c", "3", "-I", device, self.address, check=False)
        print(reached.stdout, flush=True)
        return ([entry["local"] for entry in addresses(device)] == [self.client_address]
                and reached.returncode == 0)


def lay_cable(near, far):
    system.run("ip", "link", "add", near, "type", "veth", "peer", "name", far)
    system.run("ip", "link", "set", near, "up")


def say(*words):
    print("%7.1f " % time.monotonic(), *words, flush=True)


def inside(*argv, check=True):
    """Runs a program in the whole system; what it has printed."""
    done = subprocess.run(["/usr/sbin/chroot", str(THERE), *argv], capture_output=True, text=True,
                          timeout=PATIENCE, check=False)
    text = done.stdout + done.stderr
    say("$", *argv)
    print(text.rstrip(), flush=True)
    if check and done.returncode != 0:
        raise AssertionError("%s: status %d" % (" ".join(argv), done.returncode))
    return done.stdout


def is_active(unit):
    done = subprocess.run(["/usr/sbin/chroot", str(THERE), "systemctl", "is-active", "-q", unit],
                          timeout=PATIENCE, check=False)
    return done.returncode == 0


def start(unit):
    inside("systemctl", "start", unit)
    wait_until(lambda: is_active(unit), PATIENCE, unit + " is active")


def client():
    there = socket.socket(socket.AF_UNIX)
    there.connect(str(THERE / "run/dbus/system_bus_socket"))
    return Client(there, 0)


def write(name, text):
    path = THERE / name.lstrip("/")
    path.parent.mkdir(parents=True, exist_ok=True)
    path.unlink(missing_ok=True)
    path.write_text(text, encoding="utf-8")


def addresses(device):
    shown = system.run("ip", "-j", "-4", "addr", "show", "dev", device, check=False).stdout
    return [address for entry in json.loads(shown or "[]") for address in entry.get("addr_info", [])]


SETTINGS = "\n".join(
    ["[General]", "vendor_id=%d" % world.VENDORS["cxacru"], "product_id=%d" % world.PRODUCTS["cxacru"],
     "modem=%s" % world.NAMES["cxacru"], "udi=%s" % world.UDIS["cxacru"], "protocol=PPPoE",
     "vpi=%d" % world.VPI, "vci=%d" % world.VCI]) + "\n"


class Computer:
    """The whole system's own daemon and keeper, a line and a provider. No modem is plugged in, and what
    is set up is in the settings, if there are any."""

    def __init__(self, settings=""):
        wait_until(lambda: is_active("dbus") and is_active("systemd-logind"), PATIENCE, "it is booted")
        system.run("modprobe", "-a", *system.MODULES)
        if settings:
            write("/opt/norvix/.daemon_ng.ini", settings)
            inside("chgrp", "norvix", "/opt/norvix/.daemon_ng.ini")
            inside("chmod", "0640", "/opt/norvix/.daemon_ng.ini")
        for unit in UNITS:
            start(unit)
        self.line = Line(world.QUICK)
        far_end = world.FarEnd()
        far_end.join(self.line)
        self.provider = provider.PppoeProvider("/var/lib/provider")
        self.provider.start()
        self.client = client()
        wait_until(self.client.owner_of, PATIENCE, "the daemon is on the bus")
        wait_until(lambda: self.client.owner_of(keeper_service.NAME), PATIENCE, "the keeper is, too")
        self.keeper = keeper_service.KeeperOnTheBus(
            client(), lambda: inside("journalctl", "--no-pager", "-b", "-u", "norvix-keeper"))
        self.modem = vhci.Socket()

    def plug(self):
        self.modem.plug(cxacru.Cxacru(self.line), system.MODEM_PORT)


class Connection(Computer):
    """With a modem that is used already, and an account."""

    def __init__(self):
        super().__init__(SETTINGS)
        self.plug()
        self.client.wait_signal("modemPlugged", timeout=PATIENCE)
        self.client.call("setAccountData", provider.LOGIN, provider.PASSWORD)
        wait_until(lambda: world.UP_LINES["cxacru"] in system.kernel_log(), PATIENCE, "the line is up")

    def connect(self):
        mark = self.client.mark()
        self.client.call("establishConnection")
        self.comes_up(mark)
        return mark

    def comes_up(self, mark=0):
        began = time.monotonic()
        self.keeper.wait_for(PATIENCE, State="connected")
        self.client.wait_signal("connectionState", timeout=PATIENCE, after=mark,
                                where=lambda state: state == 0)
        wait_until(world.carries_traffic, 60, "traffic passes")
        say("connected, waited for %.1f s" % (time.monotonic() - began))

    def disconnect(self):
        self.client.call("terminateConnection")
        self.keeper.wait_for(PATIENCE, State="idle")
        wait_until(lambda: not system.processes("pppd"), PATIENCE, "pppd has ended")

    def is_up(self):
        return bool(addresses("ppp0")) and bool(addresses("nas0"))


# ---- sleep

def sleeps(connection):
    """Through the log-in service; the kernel freezes everything for five seconds and goes no further."""
    wait_until(lambda: "norvix-keeper" in inside("systemd-inhibit", "--list", "--no-pager"), PATIENCE,
               "sleep is held up")
    connection.connect()
    for _ in range(2):
        one_sleep(connection)
    assert connection.keeper.ended()[-2:] == ["sleep", "sleep"] and connection.keeper.losses() == []
    wait_until(lambda: "norvix-keeper" in inside("systemd-inhibit", "--list", "--no-pager"), PATIENCE,
               "the next sleep is held up")

    connection.disconnect()
    one_sleep(connection, is_wanted=False)
    time.sleep(20)
    assert connection.keeper.properties()["State"] == "idle" and not addresses("ppp0")


def one_sleep(connection, is_wanted=True):
    pathlib.Path("/sys/power/pm_test").write_text("freezer")
    kernel = system.kernel_log().count("PM: suspend exit")
    mark = connection.client.mark()
    inside("systemctl", "suspend", "--no-block")
    coming = announcement(connection, mark, True)
    if is_wanted:
        over = connection.client.wait_signal("connectionTerminated", timeout=PATIENCE, after=mark)
        say("the link's end was asked for %.2f s after the announcement" % (over.time - coming))
    wait_until(lambda: system.kernel_log().count("PM: suspend exit") > kernel, PATIENCE,
               "it slept", lambda: system.kernel_log()[-3000:])
    let_go = [signal.time for signal in connection.client.signals[mark:]
              if signal.name == "PropertiesChanged" and "DelayInhibited" in signal.args[1]
              and signal.args[1]["DelayInhibited"][1] == ""]
    if let_go:  # somebody may hold it besides
        say("nobody holds it up %.2f s after the announcement" % (let_go[0] - coming))
    woken = announcement(connection, mark, False)
    say("awake %.1f s after the announcement, five of them asleep" % (woken - coming))
    if is_wanted:
        connection.keeper.wait_for(PATIENCE, State="connected")
        say("back %.1f s after waking" % (time.monotonic() - woken))
        wait_until(world.carries_traffic, 60, "traffic passes")


def announcement(connection, mark, is_coming):
    """When sleep or its end was announced."""
    def found():
        return [signal.time for signal in connection.client.signals[mark:]
                if signal.name == "PrepareForSleep" and signal.args == (is_coming,)]

    return wait_until(found, PATIENCE, "an announcement of sleep or its end")[0]


def sleeps_without_polkit(connection):
    """Nobody grants the inhibitor then; the link comes back all the same."""
    inside("systemctl", "mask", "--now", "polkit")
    inside("systemctl", "restart", "norvix-keeper")
    assert "norvix-keeper" not in inside("systemd-inhibit", "--list", "--no-pager")
    connection.connect()
    pathlib.Path("/sys/power/pm_test").write_text("freezer")
    mark = connection.client.mark()
    inside("systemctl", "suspend")
    connection.client.wait_signal("connectionTerminated", timeout=PATIENCE, after=mark)
    connection.comes_up(mark)
    assert "sleep will not wait" in connection.keeper.errors()
    connection.disconnect()
    inside("systemctl", "unmask", "polkit")


# ---- neighbours

def states():
    """NetworkManager's word for each interface."""
    lines = inside("nmcli", "-t", "-f", "DEVICE,TYPE,STATE", "device").splitlines()
    return {line.split(":")[0]: line.split(":")[2] for line in lines if line.count(":") == 2}


def are_ours_left_alone(connection):
    now = states()
    atm = [path.name for path in system.ATM.iterdir() if path.name.startswith("cxacru")]
    for name in ("nas0", "ppp0", *atm):
        assert now.get(name, "unmanaged") == "unmanaged", now
    return "nas0" in now and connection.is_up()


def lives_beside_networkmanager(connection):
    start("NetworkManager")
    connection.connect()
    wait_until(lambda: are_ours_left_alone(connection), 30, "our interfaces are unmanaged")
    say("an administrator's own list of unmanaged devices")
    write("/etc/NetworkManager/conf.d/own.conf", "[keyfile]\nunmanaged-devices=interface-name:foo\n")
    inside("nmcli", "general", "reload", "conf")
    time.sleep(5)
    assert are_ours_left_alone(connection)
    inside("systemctl", "restart", "NetworkManager")
    wait_until(lambda: "ppp0" in states(), 60, "it has seen all interfaces")
    assert are_ours_left_alone(connection) and world.carries_traffic()

    say("a connection of its own, with a default route, beside ours")
    neighbour = Neighbour(9)
    neighbour.start()
    inside("nmcli", "connection", "add", "type", "ethernet", "ifname", "eth9", "con-name", "cable",
           "ipv4.method", "manual", "ipv4.addresses", "192.0.2.2/24", "ipv4.gateway", "192.0.2.1",
           "ipv4.dns", "192.0.2.53", "ipv6.method", "disabled")
    inside("nmcli", "connection", "up", "cable")
    assert states()["eth9"] == "connected" and are_ours_left_alone(connection)
    assert world.carries_traffic()
    say("resolv.conf:", (THERE / "etc/resolv.conf").read_text())
    mark = connection.client.mark()
    connection.provider.say_goodbye()
    wait_until(lambda: connection.keeper.losses() == ["hung-up"], PATIENCE, "the loss is told")
    connection.comes_up(mark)
    assert are_ours_left_alone(connection)
    print(system.run("ip", "-4", "route").stdout)
    connection.disconnect()
    assert states()["eth9"] == "connected"
    inside("nmcli", "connection", "down", "cable")

    say("a PPPoE connection of its own, as ppp0")
    inside("nmcli", "connection", "add", "type", "pppoe", "ifname", "eth9", "con-name", "other",
           "pppoe.username", "me@other", "pppoe.password", "other")
    inside("nmcli", "connection", "up", "other")
    assert neighbour.serves("ppp0"), addresses("ppp0")
    connection.keeper.wait_for(PATIENCE, ForeignLinks=["ppp0"], State="idle")
    time.sleep(20)
    assert connection.keeper.properties()["State"] == "idle" and len(system.processes("pppd")) == 1
    inside("nmcli", "connection", "down", "other")
    connection.keeper.wait_for(PATIENCE, ForeignLinks=[])
    inside("nmcli", "connection", "delete", "other")

    say("the same as a device of its own, called ppp0")
    inside("nmcli", "connection", "add", "type", "pppoe", "ifname", "ppp0", "con-name", "parented",
           "pppoe.parent", "eth9", "pppoe.username", "me@other", "pppoe.password", "other")
    inside("nmcli", "connection", "up", "parented")
    assert neighbour.serves("ppp0"), addresses("ppp0")
    inside("nmcli", "connection", "delete", "parented")
    inside("systemctl", "stop", "NetworkManager")


PHONE_RULE = ('SUBSYSTEM=="tty", ATTRS{idVendor}=="%04x", ATTRS{idProduct}=="%04x", '
              'ENV{ID_MM_DEVICE_PROCESS}="1"\n' % (phone.VENDOR, phone.PRODUCT))


def resolver_entries(device):
    """What systemd-resolved knows of an interface."""
    return [inside("resolvectl", word, device) for word in ("dns", "domain", "default-route")]


def are_neighbours_fine():
    """Somebody else's link is no reason for the check-up to complain of who manages it."""
    checks = json.loads(inside("/opt/norvix/bin/norvixctl", "doctor", "--json", check=False))["checks"]
    verdicts = {check["id"]: check["verdict"] for check in checks}
    assert all(verdicts[name] == "ok" for name in ("networkmanager", "networkd", "resolved")), checks


def lives_beside_a_mobile_connection(connection):
    """NetworkManager's own, through a phone whose modem ModemManager has found. Whoever comes first is
    ppp0, and neither cares about the other."""
    use_resolved()
    for unit in ("systemd-networkd", "NetworkManager", "ModemManager"):
        start(unit)
    # ModemManager looks at modems of makers that it knows, and at those that an administrator names.
    write("/etc/udev/rules.d/90-phone.rules", PHONE_RULE)
    inside("udevadm", "control", "--reload")
    network, there = MobileNetwork(), vhci.Socket()
    network.start()
    modem = phone.Phone(network.answer)
    there.plug(modem)
    wait_until(lambda: states().get("ttyACM0") == "disconnected", PATIENCE, "the phone can be used",
               lambda: modem.commands)
    inside("nmcli", "connection", "add", "type", "gsm", "ifname", "ttyACM0", "con-name", "phone",
           "apn", phone.APN, "connection.autoconnect", "no")
    inside("nmcli", "connection", "up", "phone")
    assert network.serves("ppp0"), network.said()
    connection.keeper.wait_for(PATIENCE, ForeignLinks=["ppp0"], State="idle")
    theirs, entries = system.processes("pppd"), resolver_entries("ppp0")
    assert network.nameservers[0] in entries[0]
    are_neighbours_fine()

    def is_theirs_as_before():
        return (network.serves("ppp0") and set(theirs) <= set(system.processes("pppd"))
                and resolver_entries("ppp0") == entries and states()["ttyACM0"] == "connected")

    say("our link beside it")
    connection.connect()
    assert [entry["local"] for entry in addresses("ppp1")] == [provider.CLIENT_ADDRESS]
    assert connection.keeper.properties()["ForeignLinks"] == ["ppp0"]
    assert states().get("ppp1", "unmanaged") == "unmanaged"
    wait_until(lambda: provider.NAMESERVERS[0] in inside("resolvectl", "dns", "ppp1"), 60,
               "the servers were handed over")
    wait_until(lambda: "no" in inside("resolvectl", "default-route", "ppp1"), 60, "not for all names")
    assert is_theirs_as_before()
    are_neighbours_fine()

    say("ours is lost and kept")
    before, mark = len(connection.keeper.losses()), connection.client.mark()
    connection.provider.say_goodbye()
    wait_until(lambda: connection.keeper.losses()[before:] == ["hung-up"], PATIENCE, "the loss is told")
    connection.comes_up(mark)
    assert connection.keeper.properties()["ForeignLinks"] == ["ppp0"] and is_theirs_as_before()

    say("theirs ends")
    inside("nmcli", "connection", "down", "phone")
    connection.keeper.wait_for(PATIENCE, ForeignLinks=[], State="connected")
    assert addresses("ppp1") and world.carries_traffic()
    connection.disconnect()

    say("the other order")
    connection.connect()
    entries = resolver_entries("ppp0")
    inside("nmcli", "connection", "up", "phone")
    assert network.serves("ppp1"), network.said()
    connection.keeper.wait_for(PATIENCE, ForeignLinks=["ppp1"], State="connected")
    assert connection.is_up() and world.carries_traffic() and resolver_entries("ppp0") == entries
    inside("nmcli", "connection", "down", "phone")
    connection.keeper.wait_for(PATIENCE, ForeignLinks=[], State="connected")
    assert connection.is_up() and world.carries_traffic()
    connection.disconnect()
    inside("nmcli", "connection", "delete", "phone")
    there.unplug()
    inside("systemctl", "stop", *LATER)


def lives_beside_networkd(connection):
    write("/etc/systemd/network/50-all.network", "[Match]\nName=*\n\n[Network]\nDHCP=yes\n")
    start("systemd-networkd")
    before = len(connection.keeper.losses())
    connection.connect()
    for _ in range(2):
        inside("systemctl", "restart", "systemd-networkd")
        time.sleep(5)
        listed = inside("networkctl", "list", "--no-pager", "--no-legend")
        ours = [line.split() for line in listed.splitlines() if line.split()[1] in ("nas0", "ppp0")]
        assert [words[-1] for words in ours] == ["unmanaged", "unmanaged"], listed
        assert connection.is_up() and world.carries_traffic()
    assert len(connection.keeper.losses()) == before

    say("without our file")
    write("/etc/systemd/network/10-norvix.network", "")
    inside("systemctl", "restart", "systemd-networkd")
    wait_until(lambda: not connection.is_up(), 60, "the catch-all has taken the addresses away")
    say("the file is needed")
    inside("systemctl", "stop", "systemd-networkd.socket", "systemd-networkd.service")
    connection.disconnect()


def use_resolved():
    """As its package leaves it; the resolver file."""
    start("systemd-resolved")
    resolver = THERE / "etc/resolv.conf"
    resolver.unlink(missing_ok=True)
    resolver.symlink_to("../run/systemd/resolve/stub-resolv.conf")
    return resolver


def lives_beside_resolved(connection):
    resolver = use_resolved()
    mark = connection.connect()
    servers = " ".join(provider.NAMESERVERS)
    wait_until(lambda: servers in inside("resolvectl", "dns", "ppp0"), 60, "the servers were handed over")
    assert "~." in inside("resolvectl", "domain", "ppp0")
    assert resolver.is_symlink() and "127.0.0.53" in inside("cat", "/etc/resolv.conf")
    names = connection.client.names(after=mark)
    assert "incorrectDNS" not in names and "settingOpenDNS" not in names
    connection.disconnect()
    assert "ppp0" not in inside("resolvectl", "dns")

    say("beside another default route")
    lay_cable("eth7", "far7")
    for words in (["addr", "add", "192.0.2.2/24", "dev", "eth7"], ["link", "set", "far7", "up"],
                  ["route", "add", "default", "via", "192.0.2.1", "metric", "100"]):
        system.run("ip", *words)
    mark = connection.client.mark()
    connection.client.call("establishConnection")
    connection.comes_up(mark)
    wait_until(lambda: servers in inside("resolvectl", "dns", "ppp0"), 60, "the servers were handed over")
    wait_until(lambda: "no" in inside("resolvectl", "default-route", "ppp0"), 60, "not for all names")
    assert "~." not in inside("resolvectl", "domain", "ppp0")
    connection.disconnect()
    system.run("ip", "link", "del", "eth7")
    inside("systemctl", "stop", "systemd-resolved")
    write("/etc/resolv.conf", system.GOOD_RESOLVER)


def restarts_the_modem_after_a_loss(connection):
    """udev, in the confinement that the distribution gives it, ends the bridge with the device."""
    shipped = (THERE / "etc/norvix-keeper.conf").read_text(encoding="utf-8")
    write("/etc/norvix-keeper.conf", "pause_hung_up = 20\n")  # time to restart it while nothing is tried
    inside("systemctl", "restart", "norvix-keeper")
    connection.connect()
    connection.provider.say_goodbye()
    connection.keeper.wait_for(PATIENCE, State="waiting", Reason="hung-up")
    assert system.processes("br2684ctl_amd64")
    mark = connection.client.mark()
    connection.client.call("restartModem")
    connection.client.wait_signal("restartModemFinished", timeout=PATIENCE, after=mark)
    connection.comes_up(mark)
    assert "killall" not in inside("journalctl", "--no-pager", "-b", "-u", "systemd-udevd")
    connection.disconnect()
    write("/etc/norvix-keeper.conf", shipped)
    inside("systemctl", "restart", "norvix-keeper")


# ---- beside others that keep a connection

PERSISTENT = pathlib.Path("/usr/local/sbin/persistent-ppp")  # the daemon ends everything called pppd
MOMENTS = int(os.environ.get("NORVIX_MOMENTS") or 20)
# A whole period of its attempts, so that the provider comes back at any moment of one.
AWAY = (15, 58)
SPENT_SECONDS = 200  # four tries of NetworkManager's
BLOCKED_SECONDS = 400


def compares(connection):
    """Connections whose concentrators go and return at the same moments: how long until each link is back.
    norvix-keeper over the modem; over cables pppd with persist, and in the end NetworkManager. Not
    before: where its link is up the daemon takes it for ours, and the keeper lets ten seconds pass."""
    write("/etc/norvix-keeper.conf", "pause_hung_up = 0\n")  # a link that lasted has no such pause
    inside("systemctl", "restart", "norvix-keeper")
    nine, eight = Neighbour(9), Neighbour(8)
    for neighbour in (nine, eight):
        neighbour.start()
    shutil.copy("/usr/sbin/pppd", PERSISTENT)
    subprocess.Popen(
        [PERSISTENT, "plugin", "pppoe.so", "nic-eth9", "user", "me@other", "password", "other", "noauth",
         "nodefaultroute", "noipdefault", "persist", "holdoff", "1", "maxfail", "0", "lcp-echo-interval",
         "10", "lcp-echo-failure", "3", "unit", "5", "nodetach"], stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
    connection.connect()
    isps = {"keeper": connection.provider, "pppd": nine}
    wait_until(lambda: are_up(isps) == set(isps), PATIENCE, "both are up", lambda: are_up(isps))
    seconds = {name: [] for name in isps}
    for number in range(MOMENTS):
        away = random.uniform(*AWAY)
        heard = len(connection.keeper.client.signals)
        delays = go_and_return(isps, away, PATIENCE)
        say("%2d away %5.1f s: %s" % (number + 1, away, delays))
        say_changes(connection, heard)
        for name, delay in delays.items():
            seconds[name].append(delay)
    for name, values in seconds.items():
        say("%s: mean %.1f s of %d, longest %.1f s" % (
            name, sum(values) / len(values), len(values), max(values)))
    keeper, pppd = (sum(seconds[name]) / len(seconds[name]) for name in ("keeper", "pppd"))

    start("NetworkManager")
    inside("nmcli", "connection", "add", "type", "pppoe", "ifname", "eth8", "con-name", "other",
           "pppoe.username", "me@other", "pppoe.password", "other", "ipv4.never-default", "yes")
    isps["NetworkManager"] = eight
    wait_until(lambda: are_up(isps) == set(isps), BLOCKED_SECONDS, "all are up")
    delays = go_and_return(isps, SPENT_SECONDS, BLOCKED_SECONDS)
    say("away %d s: %s" % (SPENT_SECONDS, delays))
    assert delays["keeper"] < delays["NetworkManager"] and keeper <= pppd + 5


def say_changes(connection, heard):
    """What the keeper has announced since its client had heard so many signals."""
    news = [signal for signal in connection.keeper.client.signals[heard:]
            if signal.name == "PropertiesChanged" and signal.path == keeper_service.PATH]
    for signal in news:
        print("    %6.1f" % (signal.time - news[0].time),
              {name: value for name, (_, value) in signal.args[1].items()}, flush=True)


def are_up(isps):
    """Whose link has a route to its concentrator."""
    routes = pathlib.Path("/proc/net/route").read_text(encoding="ascii").split("\n")
    targets = {line.split()[1] for line in routes[1:] if line}
    return {name for name, isp in isps.items()
            if "%02X%02X%02X%02X" % tuple(map(int, reversed(isp.address.split(".")))) in targets}


def go_and_return(isps, away, patience):
    """Seconds from each concentrator's return to its link's."""
    for isp in isps.values():
        isp.fall_silent()
    isps["keeper"].say_goodbye()  # for all of them: it goes by the program's name
    wait_until(lambda: not are_up(isps), PATIENCE, "all have gone")
    time.sleep(away)
    for isp in isps.values():
        isp.serve()
    there, back = {}, {}
    end = time.monotonic() + patience
    while set(back) != set(isps) and time.monotonic() < end:
        now = time.monotonic()
        for name, isp in isps.items():
            if name not in there and isp.is_answering():
                there[name] = now
        for name in are_up(isps) - set(back):
            back[name] = now
        time.sleep(0.02)
    assert set(back) == set(isps), back
    time.sleep(3)
    return {name: round(back[name] - there[name], 1) for name in back}


def is_told(story, connection):
    """Whether it goes as it should; what went wrong is shown."""
    say("====", story.__name__)
    try:
        story(connection)
        say("==== as it should")
        return True
    except Exception:
        traceback.print_exc(file=sys.stdout)
        for unit in (*UNITS, "NetworkManager", "ModemManager"):
            inside("journalctl", "--no-pager", "-b", "-n", "30", "-u", unit, check=False)
        inside("tail", "-n", "40", "/opt/norvix/daemon.log", check=False)
        print(system.run("ip", "addr").stdout, system.kernel_log()[-2000:], flush=True)
        inside("systemctl", "stop", *LATER, check=False)
        connection.client.call("terminateConnection")
        return False


def tell(stories, computer):
    """The exit status: 0 when all go as they should."""
    well = [is_told(story, computer) for story in stories]
    for unit in UNITS:
        said = inside("journalctl", "--no-pager", "-b", "-u", unit)
        for text in ("Permission denied", "Operation not permitted", "Read-only file system"):
            assert text not in said, text
    return 0 if all(well) else 1


if __name__ == "__main__":
    sys.exit(tell([globals()[name] for name in sys.argv[1:]], Connection()))

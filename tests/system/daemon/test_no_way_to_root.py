# SPDX-License-Identifier: MIT
"""A member of the group norvix tries every way to become root, or to make root write or run what the
member chose."""
import json
import re
import shutil
import stat
import subprocess
from pathlib import Path

import pytest
from account import CHAP, FILES, PAP, PEER, UNICORN
from driver_world import DRIVERS, HALT, TREE, UEAGLE_MODEM, DriverWorld, quick
from jeepney import DBusAddress, HeaderFields, new_method_call, new_signal
from norvixctl import Ctl
from machine_fixtures import ROOT_ONLY
from setup_client import INVALID, OBJECT, Setup

from lab.machine import fake_hal
from lab.machine.bus_client import INTERFACE, PATH, BusError
from lab.machine.daemon_process import Daemon
from lab.machine.fake_hal import MANAGER, MANAGER_PATH, FakeHal
from lab.machine.furnishing import NORVIX_GROUP
from lab.machine.private_machine import BUILD, REPOSITORY, USUAL_PATH
from lab.waiting import wait_until

pytestmark = ROOT_ONLY
PACKAGING = REPOSITORY / "packaging"
USER = 1000
MEMBER = {"uid": USER, "groups": (NORVIX_GROUP,)}
DENIED = "org.freedesktop.DBus.Error.AccessDenied"
INI = "/opt/norvix/.daemon_ng.ini"
PRELOADED = "/opt/norvix/lib/libppp-channel.so"
OPTIONS = (b'user "login"\nnoauth\nnoipdefault\ndefaultroute\nusepeerdns\nhide-password\nupdetach\n'
           b"noipv6\n")


def install(machine):
    """Folders, modes and pppd's files as the package leaves them."""
    done = machine.run(["/usr/bin/systemd-tmpfiles", "--create",
                        str(PACKAGING / "norvix-daemon.tmpfiles")])
    assert done.status == 0, done.stderr
    for path in (PAP, CHAP):
        machine.path(path).write_bytes(b'"login" * "password" *\n# guard\n')
        machine.path(path).chmod(0o600)
    for path in (PEER, UNICORN):
        machine.path(path).write_bytes(OPTIONS)
        machine.path(path).chmod(0o640)
    shutil.copytree(PACKAGING / "peers", machine.path("/opt/norvix/share/peers"))
    shutil.copy(BUILD / "tests/libppp-channel.so", machine.path(PRELOADED))


@pytest.fixture(name="installed")
def installed_fixture(machine):
    install(machine)
    machine.start_bus(names=[fake_hal.SERVICE])
    return machine


@pytest.fixture(name="running")
def running_fixture(installed):
    installed.start_daemon()
    return installed


def options_of_pppd(machine):
    """What the distribution's pppd, run by root as the daemon runs it, takes from all of its files."""
    done = machine.run(["/usr/sbin/pppd", "call", "norvix", "dump", "dryrun", "local", "/dev/tty"],
                       env={"LD_PRELOAD": PRELOADED})
    assert done.status == 0, (done.stdout, done.stderr)
    return done.stdout


@pytest.fixture(name="member")
def member_fixture(running):
    return Member(running)


class Member:
    """What a member of the group does: programs run and calls made under that identity."""

    def __init__(self, machine):
        self.machine = machine
        self._caller = None

    def run(self, script, *words):
        """What a shell script of the member's prints; what it may not do is not shown."""
        return self.machine.run(["/bin/sh", "-c", "exec 2>/dev/null\n" + script, "sh", *words],
                                **MEMBER).stdout

    def client(self):
        return self.machine.client(**MEMBER)

    def setup(self):
        return Setup(self.client())

    def error_of(self, method, signature="", *arguments, **target):
        """The name of the error that a call ends with; None when it is answered."""
        self._caller = self._caller or self.client()
        try:
            self._caller.call_raw(method, signature, *arguments, **target)
        except BusError as error:
            return error.name
        return None

    def writable(self, *places):
        """What of these places the member may write."""
        found = self.run('find "$@" -writable ! -type l', *places).splitlines()
        return [path for path in found if not path.startswith("/run/lab")]


# ---- files and folders

# Whatever root's programs read, write or run, beside the distribution's own.
OWN = ("/opt", "/etc", "/run", "/var/log", "/usr/local/sbin", "/usr/lib/firmware")
# Where everybody may: sockets that speak for themselves, and folders in which nobody may touch what
# is another's.
FOR_EVERYBODY = {"/run/lock", "/run/dbus/system_bus_socket"}
FOLDERS_OF_ROOT = (
    "/opt/norvix", "/opt/norvix/bin", "/opt/norvix/lib", "/opt/norvix/share/peers",
    "/opt/norvix/drivers", "/opt/norvix/driver_backup", "/var/log/norvix", "/run", "/var/run",
    "/etc/ppp", "/etc/ppp/peers", "/etc/ppp/ip-up.d", "/etc/ppp/ip-down.d", "/etc/dbus-1/system.d",
    "/etc", "/usr/local/sbin", "/usr/lib/firmware")
PLANT = """
for folder in "$@"; do
    ln -s /etc/hosts "$folder/link" && echo "link in $folder"
    ln /tmp/own "$folder/hard" && echo "hard link in $folder"
    mkfifo "$folder/fifo" && echo "pipe in $folder"
    mkdir "$folder/folder" && echo "folder in $folder"
    : >"$folder/file" && echo "file in $folder"
    for name in "$folder"/* "$folder"/.[!.]*; do
        [ -e "$name" ] || continue
        mv "$name" "$name.moved" && echo "moved $name"
        rm -f "$name" && echo "removed $name"
        chmod u+w "$name" && echo "opened $name"
        : >>"$name" && echo "wrote $name"
    done
done
"""


def use(machine, daemon):
    """Everything that makes files happens once."""
    for folder in ("/etc/ppp/ip-up.d", "/etc/ppp/ip-down.d", "/opt/norvix/driver_backup"):
        machine.path(folder).mkdir(exist_ok=True)
    client = machine.client()
    Setup(client).set(vpi=8, vci=35, protocol="PPPoE")
    Setup(client).set_account("user@isp", "secret")
    machine.kernel_log.line_up()
    client.call("establishConnection")
    machine.wait_call("pppd")
    client.call("terminateConnection")
    daemon.wait_for_output("Norvix_Daemon::terminateConnection()")


def test_nothing_that_root_reads_or_runs_can_be_written(installed):
    use(installed, installed.start_daemon())
    member = Member(installed)
    assert set(member.writable(*OWN)) == FOR_EVERYBODY
    assert member.run('find "$@" -perm /6000 -type f', *OWN) == ""


def test_what_a_package_brings_is_for_nobody_else_to_write(tmp_path):
    subprocess.run(["cmake", "--install", str(BUILD), "--prefix", "/opt/norvix"], check=True,
                   env={"DESTDIR": str(tmp_path), "PATH": USUAL_PATH}, stdout=subprocess.DEVNULL)
    brought = {path.relative_to(tmp_path): path.lstat() for path in tmp_path.rglob("*")}
    assert Path("opt/norvix/bin/norvix-daemon") in brought
    assert [path for path, facts in brought.items()
            if facts.st_mode & 0o6022 and not stat.S_ISLNK(facts.st_mode)] == []
    # Libraries are looked for beside the programs and nowhere else.
    for name in ("norvix-daemon", "norvix-hald", "norvixctl"):
        said = subprocess.run(["readelf", "-d", str(tmp_path / "opt/norvix/bin" / name)], check=True,
                              stdout=subprocess.PIPE, text=True).stdout
        assert re.findall(r"R(?:UN)?PATH.*\[(.*)\]", said) in ([], ["$ORIGIN/../lib"])


def test_nothing_can_be_planted_in_a_folder_of_roots(installed):
    use(installed, installed.start_daemon())
    member = Member(installed)
    member.run(": >/tmp/own")
    assert member.run(PLANT, *FOLDERS_OF_ROOT) == ""


@pytest.mark.parametrize("mask", (0o000, 0o002))
def test_files_that_the_daemon_makes_are_roots_whatever_mask_it_inherits(installed, mask):
    """The folders hand the group on, so that a mask for private groups would open them to members."""
    installed.path(INI).unlink()
    installed.path("/var/log/norvix").rmdir()
    process = installed.spawn(
        ["/bin/sh", "-c", "umask %o; exec /opt/norvix/bin/norvix-daemon" % mask], label="daemon",
        env={"PATH": USUAL_PATH, "LD_PRELOAD": "/mnt/lab/lib/libklogctl-standin.so"})
    daemon = Daemon(process)
    installed.daemons.append(daemon)
    daemon.wait_ready()
    use(installed, daemon)
    assert installed.path(INI).exists()
    assert set(Member(installed).writable(*OWN)) == FOR_EVERYBODY


LOCK = "/run/lock/norvixdaemon"


@pytest.mark.parametrize("plant", (
    "ln -s /etc/victim %s", "ln -s /etc/not-there %s", "echo own >/tmp/own; ln /tmp/own %s",
    "ln /etc/victim %s", "mkfifo %s", "mkdir -p %s/folder", "echo 1 >%s; chmod 666 %s"))
def test_what_is_planted_in_the_locks_place_before_it_leads_nowhere(installed, plant):
    """As where the lock file was not made at boot."""
    installed.path(LOCK).unlink()
    victim = installed.path("/etc/victim")
    victim.write_text("root's\n", encoding="ascii")
    victim.chmod(0o600)
    member = Member(installed)
    member.run(plant.replace("%s", LOCK))
    installed.start_daemon()
    assert (victim.read_text(encoding="ascii"), oct(victim.stat().st_mode)) == (
        "root's\n", "0o100600")
    assert not installed.path("/etc/not-there").exists()
    in_the_locks_folder = {path for path in member.writable("/run/lock") if path != LOCK}
    assert set(member.writable(*OWN)) == in_the_locks_folder | {"/run/dbus/system_bus_socket"}
    assert member.run('cat "$1"', LOCK) == ""


# ---- the account

REST = b"# guard\n"
VALUES = (
    "x\nplugin /tmp/evil.so", "x\r\nconnect /tmp/evil", "x\rplugin", "x\tplugin", "x\x0bplugin",
    'x" plugin /tmp/evil.so "', "x' plugin /tmp/evil.so '", 'x\\" plugin /tmp/evil.so "',
    'x\\\\" plugin /tmp/evil.so "', 'x"\nplugin', '"', '""', "\\", "x\\", "x\\\\", "x\\\\\\",
    "\\1", "\\2", "x\\1y", "\\12", "\\\\1", "\\n plugin /tmp/evil.so", "\\x0aplugin", "\\012plugin",
    "\\x22 plugin /tmp/evil.so \\x22", "\\042 connect /tmp/evil \\042", "\\x00", "\\000",
    "x\\\nplugin", "#", "x # plugin", "*", "!", "-", "", " ", "  plugin /tmp/evil.so", "user",
    "file /tmp/evil", "x" * 50, "x" * 51, "x" * 100000, "\u00e4" * 50, "\u20ac" * 50,
    "\U0001f600" * 25, "x\u0085plugin", "x\u2028plugin", "x\u2029plugin", "\u201d plugin /tmp/evil.so",
    "\uff02 plugin /tmp/evil.so \uff02", "\u02ba plugin", "x\uff3c", "x\ufe68", "\u8a31", "x\u529f",
    "\u529f plugin /tmp/evil.so", "\ufeff", "\u202eplugin", "\u0130", "\ufffd", "\uffff", "\ue022")
LOCALES = ("C.UTF-8", "C", "zh_TW.big5")


def contents(machine):
    return {path: machine.path(path).read_bytes() for path in FILES}


def options_but_the_login(machine):
    return [line for line in options_of_pppd(machine).splitlines() if not line.startswith("user ")]


@pytest.mark.parametrize("locale", LOCALES)
def test_no_account_becomes_an_option_of_pppd(installed, locale):
    """In the last locale the second byte of a character can be a backslash."""
    if locale.endswith("big5"):
        made = installed.run(["/usr/bin/localedef", "--no-archive", "-i", "zh_TW", "-f", "BIG5",
                              "/usr/lib/locale/" + locale])
        assert installed.path("/usr/lib/locale/" + locale).exists(), made.stderr
    installed.start_daemon(env={"LC_ALL": locale})
    before, member, accepted = options_but_the_login(installed), Member(installed), 0
    for value in VALUES:
        for login, password in ((value, "secret"), ("login", value)):
            files = contents(installed)
            error = member.error_of("SetAccount", "ss", login, password, **OBJECT)
            if error is not None:
                assert (error, contents(installed)) == (INVALID, files), (login, password)
                continue
            accepted += 1
            assert options_but_the_login(installed) == before, (login, password)
            for path in (PAP, CHAP):
                content = installed.path(path).read_bytes()
                assert content.endswith(REST) and content.count(b"\n") == 2, content
    assert accepted > 10


class Bytes:
    """A message in which some bytes are replaced."""

    def __init__(self, message, old, new):
        self.message, self.old, self.new = message, old, new

    def serialise(self, serial):
        return self.message.serialise(serial=serial).replace(self.old, self.new)


@pytest.mark.parametrize("encoded", (b"\0\n", b"\xc0\x8a", b"\xed\xa0", b"\xff\n"))
def test_what_is_no_text_does_not_arrive(member, encoded):
    """Zero bytes, a line feed in two bytes, half a pair, no character at all."""
    client = member.client()
    call = new_method_call(DBusAddress(OBJECT["path"], "com.norvix.Daemon", OBJECT["interface"]),
                           "SetAccount", "ss", ("XXlogin", "password"))
    before = contents(member.machine)
    with pytest.raises(BusError, match="closed by the bus"):
        client.finish_call(client.send(Bytes(call, b"XX", encoded)))
    assert contents(member.machine) == before


@pytest.mark.parametrize("password", ("@/etc/word", "\\@/etc/word", "@\\/etc/word", "\\x40/etc/word",
                                      "\\100/etc/word", "\\x40\\x2fetc/word"))
def test_no_password_makes_pppd_read_a_file_of_roots(member, password):
    """It would take its first word for the password, and tell it to whoever is at the other end."""
    machine = member.machine
    machine.path("/etc/word").write_text("roots-own\n", encoding="ascii")
    machine.path("/etc/word").chmod(0o600)
    shutil.copy(Path(__file__).parents[1].joinpath("ppp_peer.py"), machine.path("/opt/norvix/ppp_peer.py"))
    assert member.error_of("SetAccount", "ss", "login", password, **OBJECT) == INVALID
    said = machine.run(["/usr/bin/python3", "/opt/norvix/ppp_peer.py", PRELOADED, "pap"])
    assert json.loads(said.stdout.splitlines()[-1]) == ["login", "password"]


# ---- settings

NAMES = ("pppd_arguments", "PPPD_ARGUMENTS", "pppd_arguments ", "General/pppd_arguments",
         "x\npppd_arguments", "pppd%5Farguments", "", "modem", "udi", "vendor_id", "product_id")
TEXTS = ("x\npppd_arguments=plugin, /tmp/evil.so", "x\\npppd_arguments=plugin, /tmp/evil.so",
         "x\\x0apppd_arguments=plugin", "%0apppd_arguments=plugin", "@Variant(\\0\\0\\0\\t)",
         "@ByteArray(x)", "@Invalid()", '"\\npppd_arguments=plugin', "plugin, /tmp/evil.so", ";x", "[x]",
         "x\u2028pppd_arguments=plugin", "x\rpppd_arguments=plugin", "x=pppd_arguments", "'", "\\")


def started_anew(machine, daemon):
    daemon.stop()
    return machine.start_daemon()


def test_no_setting_becomes_an_argument_of_pppd(installed):
    daemon = installed.start_daemon()
    member = Member(installed)
    for name in NAMES:
        for signature, value in (("s", "plugin /tmp/evil.so"), ("as", ["plugin", "/tmp/evil.so"]),
                                 ("i", 1), ("v", ("as", ["plugin"]))):
            call = {name: (signature, value)}
            assert member.error_of("SetSettings", "a{sv}", call, **OBJECT) == INVALID, call
    accepted = 0
    for text in TEXTS:
        error = member.error_of("SetSettings", "a{sv}", {"service": ("s", text)}, **OBJECT)
        assert error in (None, INVALID)
        if error is None:
            accepted += 1
            daemon = started_anew(installed, daemon)
            assert member.setup().settings() == {"service": text}
    assert accepted > 5
    installed.kernel_log.line_up()
    member.client().call("establishConnection")
    assert installed.wait_call("pppd").argv == ["debug", "linkname", "norvix", "call", "norvix"]


# ---- the bus

def test_what_is_roots_is_refused_on_every_path_and_without_an_interface(member):
    before = contents(member.machine)
    for path in (PATH, OBJECT["path"], "/"):
        for interface in (INTERFACE, OBJECT["interface"], None, "org.freedesktop.DBus.Properties"):
            for method, signature, arguments in (
                    ("setAccountData", "ss", ("x\nplugin /tmp/evil.so", "y")),
                    ("SetPppdArguments", "as", (["plugin", "/tmp/evil.so"],))):
                error = member.error_of(method, signature, *arguments, path=path,
                                        interface=interface)
                assert error in (DENIED, "org.freedesktop.DBus.Error.UnknownMethod",
                                 "org.freedesktop.DBus.Error.UnknownObject",
                                 "org.freedesktop.DBus.Error.UnknownInterface"), (path, interface)
    assert contents(member.machine) == before
    assert Setup(member.machine.client()).arguments() == []


@pytest.mark.parametrize("name", ("com.norvix.Daemon", "com.norvix.Daemon.x", "org.freedesktop.Hal"))
def test_nobody_but_root_can_be_the_daemon_or_hal(member, name):
    bus = {"service": "org.freedesktop.DBus", "path": "/org/freedesktop/DBus",
           "interface": "org.freedesktop.DBus"}
    assert member.error_of("RequestName", "su", name, 7, **bus) == DENIED


def test_the_environment_of_an_activated_daemon_is_nobodys_choice(installed):
    """The rules of this bus are those of a distribution's."""
    shutil.copy(PACKAGING / "com.norvix.Daemon.service", installed.path("/etc/dbus-1/services"))
    member = Member(installed)
    wanted = {"LD_PRELOAD": "/tmp/evil.so", "PATH": "/tmp/evil", "LD_LIBRARY_PATH": "/tmp/evil",
              "QT_PLUGIN_PATH": "/tmp/evil", "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/tmp/evil"}
    bus = {"service": "org.freedesktop.DBus", "path": "/org/freedesktop/DBus"}
    for interface in ("org.freedesktop.DBus", None):
        assert member.error_of("UpdateActivationEnvironment", "a{ss}", wanted, interface=interface,
                               **bus) == DENIED
    client = member.client()
    assert client.owner_of("com.norvix.Daemon") is None
    assert client.call("reply") is True
    pid = client.pid_of("com.norvix.Daemon")
    assert b"evil" not in installed.read("/proc/%d/environ" % pid)
    assert installed.read("/proc/%d/cmdline" % pid) == b"/opt/norvix/bin/norvix-daemon\0"


# ---- the driver build

EVIL = "all install:\n\ttouch /run/lab/evil\n"
BUILD_FOLDER = "/tmp/ueagle-atm-1.4"
WAYS_IN = """
for folder in "$@"; do
    touch "$folder/Makefile.evil" && echo "into $folder"
    mv "$folder" "$folder.moved" && echo "away $folder"
    ls "$folder"
    echo 'all install:; touch /run/lab/evil' >"$folder/Makefile" && echo "over $folder"
done
"""


@pytest.fixture(name="world")
def world_fixture(new_machine):
    world = DriverWorld(new_machine(private_folders=["/lib/modules"]))
    install(world.machine)
    world.machine.start_bus(names=[fake_hal.SERVICE])
    world.bus_runs = True
    return world


@pytest.mark.parametrize("plant", (
    "mkdir {0} && printf '{1}' >{0}/Makefile", "mkdir -m 777 {0} && mkdir -m 777 {0}/sub",
    "mkdir /tmp/mine && printf '{1}' >/tmp/mine/Makefile && ln -s /tmp/mine {0}", "mkfifo {0}",
    "ln -s /opt/norvix/bin {0}"))
def test_the_build_runs_and_installs_only_what_is_roots(world, plant):
    """Neither what lies at the build folder's place beforehand, nor what is tried meanwhile, nor what
    the build leaves can be a member's."""
    machine, member = world.machine, Member(world.machine)
    world.quick_tarball(b"module", quick(compile=HALT.format("build")))
    member.run(plant.format(BUILD_FOLDER, EVIL))
    assert machine.path(BUILD_FOLDER).is_symlink() or machine.path(BUILD_FOLDER).exists()
    _, client = world.start(modem=UEAGLE_MODEM, wait=False)
    world.reached("build")
    assert member.run(WAYS_IN, BUILD_FOLDER, "/opt/norvix/driver_backup", DRIVERS, TREE,
                      TREE + "/build").split() == machine_listing(machine)
    world.go("build")
    assert client.wait_signal("compilationFinished", timeout=60).args == (True,)
    assert world.modules()["extra/ueagle-atm.ko"][-1] == b"module"
    assert not machine.path("/run/lab/evil").exists()
    assert set(member.writable(*OWN, TREE)) == FOR_EVERYBODY


def machine_listing(machine):
    """What everybody may list of the folders above."""
    return sorted(path.name for path in machine.path(DRIVERS).iterdir()) + sorted(
        path.name for path in machine.path(TREE).iterdir()) + sorted(
        path.name for path in (machine.path(TREE) / "build").iterdir())


@pytest.mark.parametrize("give", ("chown 1000 {0}", "chgrp norvix {0}; chmod g+w {0}",
                                  "mv {0} /tmp/it; ln -s /tmp/it {0}",
                                  "chgrp norvix {1}; chmod g+w {1}", "chown 1000 {1}"))
def test_an_archive_that_a_member_could_have_changed_is_not_unpacked(world, give):
    """As a careless administrator might leave one."""
    path = "/opt/norvix/drivers/" + world.quick_tarball(b"module", EVIL).name
    done = world.machine.run(["/bin/sh", "-ec", give.format(path, DRIVERS)])
    assert done.status == 0, done.stderr
    _, client = world.start(modem=UEAGLE_MODEM)
    assert client.named("compilationFinished")[0].args == (False,)
    assert not world.machine.path("/run/lab/evil").exists() and world.modules() == {}


# ---- HAL

EVIL_UDIS = ("x\npppd_arguments=plugin, /tmp/evil.so", "/x\npppd_arguments=plugin", "@Variant(x)",
             "/org/freedesktop/Hal/devices/x%0apppd_arguments", "../../etc/ppp", "")


def test_no_modem_and_no_identifier_becomes_a_setting_of_roots(installed):
    hal = FakeHal.start(installed)
    installed.start_daemon().wait_for_log("getModemState(): klogctl()")
    member = Member(installed)
    client = member.client()
    # As somebody who is not HAL, to everybody and to the daemon alone.
    for signal in ("DeviceAdded", "DeviceRemoved"):
        for udi in EVIL_UDIS:
            message = new_signal(DBusAddress(MANAGER_PATH, interface=MANAGER), signal, "s", (udi,))
            client.send(message)
            message.header.fields[HeaderFields.destination] = "com.norvix.Daemon"
            client.send(message)
    client.mark()
    assert [call for call in hal.calls if call[0] == "GetProperty"] == []
    # As HAL itself, with what a device might bring.
    for udi in EVIL_UDIS:
        hal.devices[udi] = {"usb_device.vendor_id": 0x06B9, "usb_device.product_id": 0x4061}
        hal.announce("DeviceAdded", udi)
    udi = hal.plug("usb_device_6b9_4061_1", 0x06B9, 0x4061)
    client.wait_signal("newModemPlugged", timeout=20)
    client.call("useNewModem")
    settings = {"modem": "Thomson Speedtouch 330", "vendor_id": 0x06B9, "product_id": 0x4061,
                "udi": udi}
    wait_until(lambda: "product_id" in installed.path(INI).read_text(encoding="ascii"),
               what="the modem is stored")
    assert member.setup().settings() == settings and member.setup().arguments() == []
    assert sorted(line.split("=")[0] for line in installed.path(INI).read_text().splitlines()[1:]) == (
        sorted(settings))


# ---- the check-up

ACCOUNTS = (("x\\x22\\x20plugin\\x20/tmp/evil.so", "\\042 plugin"), ("a'b#c", "x\\\\"),
            ("\\n plugin /tmp/evil.so", "p\\x0aq"), ("x\\\\", 'a\\"b'), ("*", "#"))


@pytest.mark.parametrize("login, password", ACCOUNTS)
def test_the_check_up_mends_nothing_to_a_members_liking(member, login, password):
    """Run by root, it takes the account of one file over into others."""
    machine = member.machine
    for path in (PAP, CHAP):
        machine.path(path).write_bytes(b'# as shipped\n"other" * "others" *\n')
    member.setup().set_account(login, password)
    member.setup().set(vpi=255, vci=65535, protocol="PPPoE", service="x, y\\n8.35")
    machine.path(PEER).unlink()
    # Something that is called like pppd, with words that a terminal would obey.
    fake = machine.spawn(["/bin/sh", "-c", "cp /bin/dash /tmp/pppd; exec /tmp/pppd -c 'sleep 60; :' \"$1\"",
                          "sh", "linkname norvix\x1b]0;evil\x07"], **MEMBER)
    wait_until(lambda: machine.processes("pppd"), what="it runs")
    mended = Ctl(machine)("doctor", "--fix")
    fake.signal()
    assert "now begins with" in mended.stdout + mended.stderr and "Another pppd" in mended.stdout
    assert "\x1b" not in mended.stdout + mended.stderr
    template = (PACKAGING / "peers/norvix").read_text(encoding="ascii").splitlines()
    made = machine.path(PEER).read_text(encoding="utf-8").splitlines()
    at = template.index('user "login"')
    assert made[:at] + made[at + 1:] == template[:at] + template[at + 1:]
    assert made[at] in ('user "%s"' % login, 'user "login"')
    machine.path(PEER).write_bytes(machine.path(PEER).read_bytes().replace(b"plugin pppoe.so\nnic-nas0\n",
                                                                         b""))
    assert [line for line in options_but_the_login(machine)
            if line.startswith(("plugin ", "connect ", "ipparam ", "file "))] == []
    for path in (PAP, CHAP):
        lines = machine.path(path).read_bytes().splitlines()
        assert lines[-2:] == [b"# as shipped", b'"other" * "others" *'], lines
        assert lines[0] == b'"%s" * "%s" *' % (login.encode(), password.encode())
    assert set(member.writable(*OWN)) == FOR_EVERYBODY

# SPDX-License-Identifier: MIT
"""The operations that write, one a row: the table of the harness."""
import contextlib
import json
import lzma
import re
import shutil
import time

from harness import FAULTS, UNDER, BusError, Operation

import account
from account import CHAP, PAP, PEER, UNICORN
from driver_world import DIRECT, UEAGLE_MODEM, DriverWorld, built_module
from lab.machine import companion as hal_companion
from lab.machine import keeper_service
from lab.machine.private_machine import BUILD, REPOSITORY, USUAL_PATH
from lab.machine.pppd_script import end, link_up, out
from lab.machine.simulated_usb import SimulatedUsb
from lab.waiting import wait_until
from norvixctl import NORVIX_GROUP, Ctl
from obstacles import mount, run
from resolver import RESOLV, SERVERS, WRONG
from setup_client import OBJECT

INI = "/opt/norvix/.daemon_ng.ini"
CTL = "/opt/norvix/bin/norvixctl"
PROBE = "/opt/norvix/bin/resolver-probe"


# ---- settings

def settings(world):
    world.write(INI, b"[General]\nservice=" + b"x" * 5000 + b"\nvci=35\nvpi=8\n", 0o640, 0, NORVIX_GROUP)


def with_daemon(world):
    world.start_daemon()


def set_idleness(world):
    world.call("setIdlenessTime", 7)
    world.call("reply")  # behind the write, which waits for the main loop


def set_settings(world):
    return world.call("SetSettings", "a{sv}", {"vpi": ("i", 1)}, **OBJECT)


def line_set(world):
    return world.run(CTL, "line", "set", "--vpi", "1", env=Ctl(world.machine).environment())


# ---- the account

def account_files(world):
    for path in (PAP, CHAP):
        world.write(path, b'"old" * "password" *\n' + account.COMMENT, 0o600)
    for path in (PEER, UNICORN):
        world.write(path, b'user "old"\n' + account.OPTIONS, 0o640, 0, 30)


def set_account_data(world):
    start = world.client.mark()
    if not world.call("setAccountData", "x" * 20, "y" * 20):
        return None
    try:
        world.client.mark()
    except BusError:
        return None
    [signal] = world.client.named("accountDataChanged", after=start)
    return signal.args[0]


def set_account(world):
    return world.call("SetAccount", "ss", "x" * 20, "y" * 20, **OBJECT)


def account_set(world):
    """Supervised is the daemon, which does the writing."""
    done = Ctl(world.machine)("account", "set", "x" * 20, stdin="y" * 20)
    return done.status == 0


def without_last_lines(_, content):
    """What is rewritten in place may have empty lines behind it, when the new text is the shorter."""
    return content.rstrip(b"\n") if isinstance(content, bytes) else content



# ---- the resolver

LONG = ("search home\n" + "".join("nameserver ff02::%d\n" % number for number in range(20))).encode()


def resolver(make):
    def prepare(world):
        shutil.copy(BUILD / "tests/resolver-probe", world.machine.path(PROBE))
        world.inside(RESOLV).unlink()
        make(world)
    return prepare


def linked(world):
    world.write("/opt/managed.conf", WRONG.encode())
    world.write(RESOLV, "/opt/managed.conf")


def mounted(content):
    def make(world):
        world.write("/opt/managed.conf", content)
        world.write(RESOLV, b"")
        mount(world.machine, "--bind", "/opt/managed.conf", RESOLV)
    return make


def set_servers(world):
    claim = world.run(PROBE, "set", *SERVERS)
    return claim and world.done.stdout == "true\n"


# ---- the daemon's own small files

def pid_files(world):
    for name in ("ppp-norvix", "ppp0"):
        world.write("/run/%s.pid" % name, b"99999\nppp0\n")


def terminate(world):
    world.call("terminateConnection")
    world.call("reply")


def start_up(world, *arguments):
    """A daemon's start, up to its name on the bus."""
    daemon = world.machine.start_daemon(*arguments, wait=False, under=UNDER)
    wait_until(daemon.parent.ended)
    if daemon.parent_status() == 0:
        world.daemon = daemon
        world.client = world.machine.client()
        wait_until(lambda: not daemon.running() or world.client.owner_of(), what="it runs or has ended",
                   detail=daemon.everything_said)


def pid_of_any(_, content):
    """The lock is what counts; where there is no room for the id in it, it holds all the same."""
    return b"pid\n" if content is not None and re.fullmatch(rb"(\d+\n)?", content) else content


# ---- logs

STAMPED = rb"\d\d-\d\d-\d{4} \d\d:\d\d:\d\d "
LINES = {"daemon.log": STAMPED + rb"[^\n]*\n", "daemon_verbose.log": rb"[^\n]*\n",
         ".log": rb"\d\d\.\d\d\.\d{4} \d\d:\d\d:\d\d: [^\n]*\n"}
OLD_LINES = {"daemon.log": b"", "daemon_verbose.log": b"an old line\n",
             ".log": b"01.01.2026 00:00:00: an old line\n"}
LOGS = r"^/opt/norvix/daemon(_verbose)?\.log|^/var/log/norvix(/|$)"


def old_logs(world):
    world.write("/opt/norvix/daemon_verbose.log", OLD_LINES["daemon_verbose.log"])
    world.inside("/var/log/norvix").mkdir()
    world.write("/var/log/norvix/%s.log" % time.strftime("%d-%m-%Y"), OLD_LINES[".log"])


def whole_lines(path, content):
    """A log counts as such, as long as it begins with what it held and has nothing but whole lines."""
    for name, line in LINES.items():
        if content is not None and path.endswith(name):
            begin = OLD_LINES[name]
            is_whole = content.startswith(begin) and re.fullmatch(b"(" + line + b")*",
                                                                  content[len(begin):])
            return b"whole lines" if is_whole else content[-300:]
    return content


LAST = "the last line"


def attempt_to_connect(world):
    """Up to the last line of pppd, which the daemon prints and logs."""
    world.call("establishConnection")
    if world.daemon:
        printed = world.daemon.parent.stdout_path
        wait_until(lambda: LAST.encode() in printed.read_bytes()[-200:] or not world.daemon.running(),
                   what=LAST)


def connect(world):
    """A start with everything that it and a connection print."""
    world.machine.kernel_log.line_up()
    world.machine.pppd.script(link_up() + [out(LAST + "\n"), end(0)])
    start_up(world, "--debug")
    if world.daemon and world.daemon.running():
        attempt_to_connect(world)


def print_much(world):
    """pppd prints more than what a log keeps of an attempt."""
    world.machine.kernel_log.line_up()
    world.machine.pppd.script([out("x" * 990 + "\n", repeat=3300), out(LAST + "\n"), end(0)])
    world.start_daemon("--debug")
    world.daemon.wait_started()


def keep_log_and_start(world):
    """The next start begins the log anew: what it was is looked at under another name."""
    log = world.inside("/opt/norvix/daemon.log")
    if log.exists():
        log.rename(log.with_name("kept-daemon.log"))
    world.start_and_stop()
    log.unlink(missing_ok=True)


# ---- drivers

def driver(makefile=None):
    def prepare(world):
        machine = world.machine
        world.drivers = DriverWorld(machine)
        world.drivers.install_module("kernel/drivers/usb/atm/ueagle-atm.ko.xz",
                                     lzma.compress(built_module() + b"old"), 0o640, (3, 4))
        machine.standin("modprobe").set(exit=1)
        machine.settings(**UEAGLE_MODEM)
        world.tarball = world.drivers.quick_tarball(built_module(), makefile)
        world.tarball.rename(world.tarball.with_suffix(".kept"))
    return prepare


def with_sources(world):
    shutil.copy(world.tarball.with_suffix(".kept"), world.tarball)


def build(world, supervised=True):
    """A start, up to the end of the build: whether the daemon says that the driver is there."""
    client = world.machine.client()
    if supervised:
        start_up(world)
    else:
        world.daemon = world.machine.start_daemon(wait=False)
    daemon = world.daemon
    if daemon:
        wait_until(lambda: client.named("compilationFinished") or not daemon.running(),
                   what="the build is over", detail=daemon.everything_said)
    signals = client.named("compilationFinished")
    client.close()
    return signals[0].args[0] if signals else None


def fail_to_build(world):
    """The same with a makefile whose install fails: that nothing is done is as it should be."""
    build(world)


def start_without_sources(world):
    """What was cut off is put back, and nothing new is built."""
    world.tarball.unlink()
    build(world, supervised=False)
    world.end_daemon()


# ---- norvixctl doctor --fix

def faulty_files(world):
    shutil.copytree(REPOSITORY / "packaging/peers", world.machine.path("/opt/norvix/share/peers"))
    world.machine.settings(protocol="PPPoE", vpi=8, vci=35, vendor_id=0x0572, product_id=0xCAFE)
    world.write(PAP, b'# comment\n"user@isp" * "secret" *\n', 0o644)
    world.write(CHAP, b'# comment\n"user@isp" * "secret" *\n', 0o640, 0, 30)
    world.write(PEER, (REPOSITORY / "packaging/peers/norvix-pppoa").read_bytes(), 0o640, 0, 30)


def mend(world):
    """Its status tells of all that is wrong: whether the mending went well, only 1 tells."""
    world.run(CTL, "doctor", "--fix", env=Ctl(world.machine).environment())
    return None if world.done.status < 0 else world.done.status != 1


# ---- maintainer scripts

def script(name, *arguments):
    """Runs a script of a package; the next start is dpkg's, which runs it again."""
    def act(world):
        return world.run("/bin/sh", "/tmp/" + name, *arguments, env={"PATH": USUAL_PATH})

    def again(world):
        run(world.machine, "/usr/bin/env", "PATH=" + USUAL_PATH, "/bin/sh", "/tmp/" + name, *arguments)

    return {"act": act, "next_start": again}


def scripts(world):
    for path in (REPOSITORY / "debian").glob("*.post*"):
        shutil.copy(path, world.machine.path("/tmp/" + path.name))
    for tool in ("systemd-sysusers", "groupdel", "userdel"):
        stub = world.machine.path("/usr/local/sbin/" + tool)
        stub.write_text("#!/bin/sh\n", encoding="ascii")
        stub.chmod(0o755)
    peers = world.machine.path("/opt/norvix/share/peers")
    if not peers.exists():
        shutil.copytree(REPOSITORY / "packaging/peers", peers)


def shipped_secrets(world):
    scripts(world)
    world.write(PAP, b"# as shipped\nguest * password *\n", 0o600)
    world.write(CHAP, b"# as shipped\n", 0o640, 0, 30)


def without_secrets(world):
    scripts(world)
    for path in (PAP, CHAP):
        world.inside(path).unlink()


def configured(world):
    shipped_secrets(world)
    script("norvix-daemon.postinst", "configure")["next_start"](world)


def open_settings(world):
    scripts(world)
    world.write(INI, b"[General]\nvpi=8\n", 0o660, 0, NORVIX_GROUP)


def all_that_a_daemon_leaves(world):
    """Of the daemon's folder only what it makes itself: the programs are the package's."""
    configured(world)
    world.write(INI, b"[General]\nvpi=8\n", 0o640, 0, NORVIX_GROUP)
    for name in ("daemon.log", "daemon.log.1", "daemon_verbose.log", "driver_build.log",
                 ".daemon_ng.ini.lock", ".norvix-new-.daemon_ng.ini-abcdef"):
        world.write("/opt/norvix/" + name, b"a line\n")
    for folder in ("/var/log/norvix", "/opt/norvix/driver_backup"):
        world.inside(folder).mkdir()
        world.write(folder + "/file", b"text\n")


# ---- norvix-hald

def devices(world):
    hal_companion.prepare(world.machine)
    world.usb = SimulatedUsb(world.machine)
    world.usb.plug("1-1", 0x1110, 0x9041)
    world.write("/run/norvix-hal/devices", b"norvix-hald devices 1\nend\n", 0o644, hal_companion.USER_ID,
                hal_companion.USER_ID)


def watch_devices(world):
    companion = world.machine.spawn([*UNDER, hal_companion.PROGRAM], label="hald", env=world.usb.environment,
                                    uid=hal_companion.USER_ID)
    observer = world.machine.client()

    def answers():
        return companion.ended() or observer.owner_of(hal_companion.NAME)

    wait_until(answers, what="the companion runs or has ended", detail=companion.errors)
    with contextlib.suppress(ProcessLookupError):
        companion.signal()
    companion.wait()
    wait_until(lambda: not observer.owner_of(hal_companion.NAME), what="the name is free")
    observer.close()


def watch_again(world):
    companion = hal_companion.HalCompanion(world.machine, world.usb)
    companion.process.signal()
    companion.process.wait()


# ---- norvix-keeper

MEMORY = keeper_service.STATE_FOLDER + "/memory.json"


def memory(world):
    keeper_service.prepare(world.machine)
    world.write(MEMORY, b'{"billing_day": 1, "keep": true}\n', 0o600, keeper_service.USER_ID,
                keeper_service.USER_ID)


def end_keeper(keeper):
    with contextlib.suppress(ProcessLookupError):
        keeper.process.signal()
    keeper.process.wait()
    wait_until(lambda: not keeper.client.owner_of(keeper_service.NAME), what="the name is free")
    keeper.client.close()


def set_billing_day(world):
    keeper = keeper_service.Keeper(world.machine, wait=False, wrapper=UNDER)
    wait_until(lambda: keeper.process.ended() or keeper.client.owner_of(keeper_service.NAME),
               what="the keeper runs or has ended", detail=keeper.errors)
    try:
        keeper.call("SetBillingDay", "u", 9)
    except BusError:
        return None
    finally:
        end_keeper(keeper)
    return "cannot write" not in keeper.errors()


def keep_again(world):
    end_keeper(keeper_service.Keeper(world.machine))


def without_times(path, content):
    """What it remembers, but for when it was written and since which start of the computer."""
    if not path.endswith(".json") or not content:
        return content
    with contextlib.suppress(ValueError):
        return {key: value for key, value in json.loads(content).items()
                if key in ("billing_day", "keep", "wanted", "limit")} or None
    return content


# ---- the table

SETTINGS = {"files": r"^/opt/norvix(/\.|$)", "folder": "/opt/norvix", "prepare": settings}
PPP = {"files": "^/etc/ppp(/|$)", "folder": "/etc/ppp", "keeps_old_when_refused": False}
ACCOUNT = {**PPP, "prepare": account_files, "same": without_last_lines, "begin": with_daemon}
RESOLVER = {"files": r"^/etc(/[^/]*resolv\.conf[^/]*)?$|^/opt/managed\.conf", "folder": "/etc",
            "also": ("/opt",), "act": set_servers}
MOUNTED = {**RESOLVER, "same": without_last_lines, "faults": FAULTS}
LOG = {"files": LOGS, "folder": "/opt/norvix", "also": ("/var/log",), "same": whole_lines}
# Without depmod's own temporary files, which it leaves when it is killed.
MODULES = r"^/usr/lib/modules/[^/]+(/(?!build|modules\.[a-z.]+\.\d)|$)"
DRIVER = {"files": MODULES + r"|^/opt/norvix/driver_backup/(installing|.*norvix)",
          "folder": "/usr/lib/modules", "also": ("/opt/norvix",), "private": ("/lib/modules",),
          "unsettled": r"/modules\.[^/]*$",  # depmod's, which makes them anew each time
          "begin": with_sources, "next_start": start_without_sources}
OURS = r"^/opt/norvix(/\.|/daemon|/driver|$)|^/var/log/norvix|^/etc/ppp(/|$)"

OPERATIONS = (
    Operation("settings: setIdlenessTime", act=set_idleness, begin=with_daemon, **SETTINGS),
    Operation("settings: SetSettings", act=set_settings, begin=with_daemon, **SETTINGS),
    Operation("settings: norvixctl line set", act=line_set, **SETTINGS),
    Operation("account: setAccountData", act=set_account_data, **ACCOUNT),
    Operation("account: SetAccount", act=set_account, **ACCOUNT),
    Operation("account: norvixctl account set", act=account_set, **ACCOUNT),
    Operation("resolver: a file", prepare=resolver(lambda world: world.write(RESOLV, WRONG.encode())),
              **RESOLVER),
    Operation("resolver: a link", prepare=resolver(linked), **RESOLVER),
    Operation("resolver: nothing", prepare=resolver(lambda world: None), **RESOLVER),
    Operation("resolver: a mounted file that grows", prepare=resolver(mounted(WRONG.encode())), **MOUNTED),
    Operation("resolver: a mounted file that shrinks", prepare=resolver(mounted(LONG)), **MOUNTED),
    Operation("pid files: terminateConnection", files=r"^/run/ppp[^/]*\.pid$", folder="/run", act=terminate,
              prepare=pid_files, begin=with_daemon, faults=FAULTS),
    Operation("lock: a start", files=r"^/run/lock(/|$)", folder="/run/lock", act=start_up, same=pid_of_any),
    Operation("logs: a start and a connection", act=connect, prepare=old_logs,
              next_start=lambda world: None, **LOG),
    Operation("logs: the middle is left out", act=attempt_to_connect, begin=print_much,
              next_start=keep_log_and_start, counted=r"^/opt/norvix/daemon\.log\.new$", **LOG),
    Operation("driver: installed", prepare=driver(), act=build,
              # A copy that would be loaded instead, as depmod sees it, is kept in the backup alone.
              may_go=r"/kernel/drivers/usb/atm/ueagle-atm\.ko\.xz$", **DRIVER),
    Operation("driver: put back", prepare=driver(DIRECT), act=fail_to_build, judged_at_once=False,
              **DRIVER),
    Operation("norvixctl doctor --fix", prepare=faulty_files, act=mend, **PPP),
    Operation("norvix-daemon.postinst", prepare=shipped_secrets, **PPP,
              **script("norvix-daemon.postinst", "configure")),
    Operation("norvix-daemon.postinst, no secrets", prepare=without_secrets, **PPP,
              **script("norvix-daemon.postinst", "configure")),
    Operation("norvix-daemon.postinst, upgrade", prepare=open_settings, files=SETTINGS["files"],
              folder="/opt/norvix", keeps_old_when_refused=False,
              **script("norvix-daemon.postinst", "configure", "0.1.0")),
    Operation("norvix-daemon.postrm", prepare=all_that_a_daemon_leaves, files=OURS, folder="/etc/ppp",
              also=("/opt", "/var/log"), keeps_old_when_refused=False,
              **script("norvix-daemon.postrm", "purge")),
    Operation("norvix-hald: the list of devices", prepare=devices, act=watch_devices,
              next_start=watch_again, files="^/run/norvix-hal(/|$)", folder="/run/norvix-hal",
              policies=(hal_companion.POLICY,)),
    Operation("norvix-keeper: what it remembers", prepare=memory, act=set_billing_day, next_start=keep_again,
              files=r"^%s(/(memory|\.)|$)" % keeper_service.STATE_FOLDER, same=without_times,
              folder=keeper_service.STATE_FOLDER, policies=(keeper_service.POLICY,)),
)

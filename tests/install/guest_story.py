# SPDX-License-Identifier: MIT
"""Runs inside the emulated computer, beside the installed system that systemd has booted: a fresh
user's way from a new modem to the line with norvixctl alone, under the units as they are shipped."""
import json
import pathlib
import subprocess
import sys

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPOSITORY))

from lab.kernel import chain as world  # noqa: E402
from lab.kernel import driver_tarball, provider, system  # noqa: E402
from lab.kernel.modems import cxacru, eagle, vhci  # noqa: E402
from lab.kernel.modems.line import Line  # noqa: E402
from lab.waiting import wait_until  # noqa: E402

MEMBER, STRANGER = "anna", "otto"
UNITS = ("norvix-daemon", "norvix-hald")
PATIENCE = 120
BUILD_PATIENCE = 1800  # for a driver's build: minutes, unless the host is busy


def inside(*argv, user=None, stdin=""):
    """Runs a program in the installed system; its result."""
    words = ["/usr/sbin/chroot", "/proc/1/root"]
    words += ["/sbin/runuser", "-u", user, "--"] if user else []
    return subprocess.run(words + list(argv), input=stdin, capture_output=True, text=True,
                          timeout=PATIENCE * 2, check=False)


def ctl(*words, user=MEMBER, stdin="", status=0):
    """norvixctl as that user; what it printed. It has to end with that status (None: any)."""
    done = inside("norvixctl", *words, user=user, stdin=stdin)
    print("$ norvixctl", *words, flush=True)
    print(done.stdout + done.stderr, flush=True)
    assert status is None or done.returncode == status, (words, done.returncode)
    return done.stdout


def facts():
    return json.loads(ctl("status", "--json"))


def property_of(unit, name):
    return inside("systemctl", "show", "-P", name, unit).stdout.strip()


def wait_active(unit):
    wait_until(lambda: property_of(unit, "ActiveState") == "active", PATIENCE, unit + " is active",
               lambda: inside("systemctl", "status", "--no-pager", unit).stdout)


def connected():
    """Whether it says so; a daemon that is just being started again says nothing."""
    done = inside("norvixctl", "status", "--json", user=MEMBER)
    return done.returncode == 0 and json.loads(done.stdout)["connection"]["state"] == "connected"


def boots():
    for unit in UNITS:
        wait_active(unit)
    owner = inside("ps", "-o", "user:20=", "-C", "norvix-hald").stdout.strip()
    assert owner == "norvix-hal", owner


def sets_up():
    ctl("line", "set", "--vpi", str(world.VPI), "--vci", str(world.VCI), "--protocol", "PPPoE")
    ctl("account", "set", provider.LOGIN, stdin=provider.PASSWORD + "\n")


def adopts_what_is_plugged():
    wait_until(lambda: inside("norvixctl", "modem", "adopt", user=MEMBER).returncode == 0, PATIENCE,
               "the modem has been announced and adopted")
    ctl("modem", "show")


def plugs_in_and_connects():
    line = Line(world.QUICK)
    far_end = world.FarEnd()
    far_end.join(line)
    isp = provider.PppoeProvider("/var/lib/provider")
    isp.start()
    socket = vhci.Socket()
    socket.plug(cxacru.Cxacru(line), system.MODEM_PORT)
    adopts_what_is_plugged()
    ctl("connect", "--wait")
    now = facts()
    assert now["connection"]["state"] == "connected"
    assert now["connection"]["address"] == provider.CLIENT_ADDRESS, now
    assert world.exchange_traffic(20_000) == 20_000
    wait_until(lambda: facts()["connection"]["receivedBytes"] > 20_000, PATIENCE, "traffic is counted")
    return socket, isp


def outlives_its_daemon():
    [pppd] = system.processes("pppd")
    inside("systemctl", "stop", "norvix-daemon")
    assert property_of("norvix-daemon", "Result") == "success"
    assert property_of("norvix-daemon", "ExecMainStatus") == "255"
    assert system.processes("pppd") == [pppd]
    inside("systemctl", "start", "norvix-daemon")
    wait_until(connected, PATIENCE, "the connection is found again")
    assert property_of("norvix-daemon", "MainPID") == str(system.processes("norvix-daemon")[0])
    inside("systemctl", "kill", "--kill-whom=main", "--signal=KILL", "norvix-daemon")
    wait_until(lambda: property_of("norvix-daemon", "NRestarts") == "1", PATIENCE,
               "the daemon that was killed is started again")
    wait_until(connected, PATIENCE, "the connection is found again")
    assert system.processes("pppd") == [pppd]


def reads_logs():
    assert "ctor invoked" in ctl("log")
    done = inside("norvixctl", "log", user=STRANGER)
    assert done.returncode != 0 and "sudo" in done.stderr, done
    assert inside("cat", "/run/ppp-norvix.pid", user=STRANGER).returncode == 0


def disconnects_and_restarts_the_modem():
    ctl("disconnect")
    wait_until(lambda: not connected(), PATIENCE, "the connection is down")
    before = system.kernel_log().count(world.UP_LINES["cxacru"])
    ctl("driver", "restart")
    wait_until(lambda: system.kernel_log().count(world.UP_LINES["cxacru"]) > before, PATIENCE,
               "the driver was reloaded and the line is up again", system.kernel_log)
    ctl("connect", "--wait")
    assert connected()


def changes_to_pppoa(isp):
    ctl("disconnect")
    wait_until(lambda: not connected(), PATIENCE, "the connection is down")
    isp.stop()
    provider.PppoaProvider("/var/lib/provider").start()
    ctl("line", "set", "--protocol", "PPPoA")
    ctl("doctor", "--fix", user="root", status=None)
    assert "pppoatm.so" in inside("cat", "/etc/ppp/peers/norvix").stdout
    ctl("connect", "--wait")
    assert connected()


def unplugs(socket):
    socket.unplug()
    wait_until(lambda: not connected(), PATIENCE, "unplugging has ended the connection")
    wait_until(lambda: not system.processes("pppd"), PATIENCE, "pppd is gone")


def has_built():
    done = inside("norvixctl", "driver", "show", "--json", user=MEMBER)
    return done.returncode == 0 and json.loads(done.stdout)["compiling"] is False


def builds_a_missing_driver():
    """For a modem whose driver the kernel does not bring, with the distribution's headers."""
    [shipped] = pathlib.Path("/lib/modules").glob("*/kernel/drivers/usb/atm/ueagle-atm.ko*")
    shipped.unlink()
    system.run("depmod", "-a")
    [tools] = pathlib.Path("/usr/lib").glob("linux-kbuild-*")
    for folder in ("/usr/src", str(tools)):
        inside("mkdir", "-p", folder)
        inside("mount", "--bind", "/lab" + folder, folder)
    driver_tarball.write_tarball(pathlib.Path(f"/proc/1/root{driver_tarball.TARBALL}"))
    socket = vhci.Socket()
    eagle.plug(socket, eagle.Newer, Line(world.QUICK), port=system.MODEM_PORT)
    adopts_what_is_plugged()
    inside("systemctl", "restart", "norvix-daemon")
    wait_until(lambda: driver_tarball.LOADED in system.kernel_log(), BUILD_PATIENCE,
               "the driver is built and loaded",
               lambda: inside("tail", "-n", "40", "/opt/norvix/driver_build.log").stdout)
    wait_until(has_built, PATIENCE, "the daemon has finished")
    ctl("driver", "show")
    socket.unplug()


def was_not_hindered():
    """Nothing that the sandbox forbids was tried."""
    said = inside("journalctl", "--no-pager", "-b", "-u", "norvix-daemon", "-u", "norvix-hald").stdout
    log = ctl("log") + inside("cat", "/opt/norvix/driver_build.log").stdout
    print(said)
    for text in ("Operation not permitted", "Permission denied", "Read-only file system",
                 "SIGSYS"):
        assert text not in said + log, text
    print(ctl("doctor", user="root", status=None))


def main():
    boots()
    system.run("modprobe", "-a", *system.MODULES)
    sets_up()
    socket, isp = plugs_in_and_connects()
    outlives_its_daemon()
    reads_logs()
    disconnects_and_restarts_the_modem()
    changes_to_pppoa(isp)
    unplugs(socket)
    builds_a_missing_driver()
    was_not_hindered()
    print("story: everything went as it should")


if __name__ == "__main__":
    try:
        main()
    except BaseException:
        for unit in UNITS:
            print(inside("journalctl", "--no-pager", "-b", "-u", unit).stdout[-4000:], flush=True)
        print(inside("tail", "-n", "60", "/opt/norvix/daemon.log").stdout, flush=True)
        raise

# SPDX-License-Identifier: MIT
"""A private machine with a module folder of its own, kernel headers and driver tarballs."""
import functools
import io
import os
import shutil
import tarfile
from pathlib import Path

from lab.machine.private_machine import REPOSITORY, PrivateMachine
from lab.waiting import PATIENCE, read_text, wait_until

RELEASE = os.uname().release
SOURCES = REPOSITORY / "tests/data/drivers"
TREE = "/lib/modules/" + RELEASE
DRIVERS = "/opt/norvix/drivers"
UEAGLE, UNICORN = "ueagle-atm-1.4", "unicorn-neo"
UEAGLE_MODEM = {"vendor_id": 0x1110, "product_id": 0x9041}
UNICORN_MODEM = {"vendor_id": 0x0483, "product_id": 0x0138}
SPEEDTOUCH_MODEM = {"vendor_id": 0x06B9, "product_id": 0x4061}
EXTRA = "extra/ueagle-atm.ko"

# Hidden from the adapting, it writes to the module folder itself, and fails.
DIRECT = ("all:\n\tcp built.ko ueagle-atm.ko\ninstall:\n\trm {0}/kernel/drivers/usb/atm/*\n"
          "\tmkdir -p {0}/extra\n\thead -c 100 built.ko > {0}/extra/ueagle-atm.ko\n"
          "\t/usr/sbin/depmod -a\n\texit 3\n").format("/lib/./modules/" + RELEASE)

# Makes what a real build makes, in a moment. {before} and {after} are lines around the copying.
QUICK = """
OUT = $(INSTALL_MOD_PATH)/lib/modules/{release}/extra
all:
\t{compile}
\tcp built.ko ueagle-atm.ko
install:
\tmkdir -p $(OUT)
\t{before}
\tcp ueagle-atm.ko $(OUT)/ueagle-atm.ko
\t{after}
"""

# A step of a makefile that tells that it has been reached and then waits for the test's leave.
HALT = "touch /run/lab/reached-{0}; while [ ! -e /run/lab/go-{0} ]; do sleep 0.02; done"


def quick(compile="@true", before="@true", after="@true"):
    return QUICK.format(release=RELEASE, compile=compile, before=before, after=after)


def kernel_headers():
    """The newest of Debian's kernel headers that are installed."""
    return sorted(Path("/usr/src").glob("linux-headers-*-amd64"))[-1]


class DriverWorld:
    def __init__(self, machine):
        self.machine = machine
        self.bus_runs = False
        self.tree = machine.path(TREE)
        self.tree.mkdir(parents=True)
        self.drivers = machine.path(DRIVERS)
        self.drivers.mkdir()
        self.log_path = machine.path("/opt/norvix/driver_build.log")
        self.backup = machine.path("/opt/norvix/driver_backup")
        machine.standin("modprobe").set(if_installed=True)
        self.give_headers(real=False)

    # ---- what is there

    def give_headers(self, real=True):
        """Debian's kernel headers under the running kernel's name; or only what looks like them."""
        folder = self.tree / "build"
        shutil.rmtree(folder, ignore_errors=True)
        if not real:
            folder.mkdir()
            (folder / "Makefile").touch()
            return
        source = kernel_headers()
        folder.mkdir()
        for entry in source.iterdir():
            (folder / entry.name).symlink_to(entry)
        variables = folder / ".kernelvariables"  # the one that names the release
        text = variables.read_text(encoding="utf-8")
        variables.unlink()
        variables.write_text(text.replace(source.name[len("linux-headers-"):], RELEASE),
                             encoding="utf-8")

    def tarball(self, name=UEAGLE, files=None, members=()):
        """Packs a driver: the sources of that name, or the given files ({name: text or bytes}), and
        further TarInfo members as they are. Returns the path outside."""
        path = self.drivers / (name + ".tar")
        with tarfile.open(path, "w") as tar:
            if files is None:
                tar.add(SOURCES / name, name)
            for member, content in (files or {}).items():
                add(tar, name + "/" + member, content)
            for member in members:
                tar.addfile(member, io.BytesIO(b"x" * member.size))
        return path

    def quick_tarball(self, module, makefile=None):
        """A driver that is built in a moment: module is what it installs."""
        return self.tarball(files={"Makefile": makefile or quick(), "built.ko": module})

    def install_module(self, relative, content, mode=0o644, owner=(0, 0)):
        """A module that is there from the beginning, indexed."""
        path = self.tree / relative
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        path.chmod(mode)
        os.chown(path, *owner)
        self.machine.run(["/usr/sbin/depmod", "-a"])
        return path

    def modules(self):
        """Every module file: path, mode, owner, bytes."""
        found = {}
        for path in sorted(self.tree.rglob("*.ko*")):
            if "build" not in path.relative_to(self.tree).parts:
                facts = path.stat()
                found[str(path.relative_to(self.tree))] = (
                    oct(facts.st_mode), facts.st_uid, facts.st_gid, path.read_bytes())
        return found

    def found_by_modprobe(self, name="ueagle-atm"):
        """The file that modprobe would load, relative to the module folder; None when none."""
        asked = self.machine.run(["/usr/sbin/modprobe", "--show-depends", name])
        if asked.status != 0:
            return None
        path = asked.stdout.splitlines()[-1].split()[1][len(TREE) + 1:]
        return path if (self.tree / path).exists() else None

    # ---- what happens

    def start(self, *arguments, modem=None, wait=True):
        """Starts bus and daemon with that modem configured; a client listens from the beginning.
        With wait, until the build has been reported."""
        machine = self.machine
        machine.settings(**(UEAGLE_MODEM if modem is None else modem))
        if not self.bus_runs:
            machine.start_bus()
            self.bus_runs = True
        client = machine.client()
        daemon = machine.start_daemon(*arguments)
        if wait:
            client.wait_signal("compilationFinished", timeout=2 * PATIENCE)
        return daemon, client

    def build_log(self):
        return read_text(self.log_path)

    def reached(self, name):
        """Waits until a makefile has come to HALT."""
        wait_until(lambda: self.machine.path("/run/lab/reached-" + name).exists(),
                   what="the makefile has reached " + name, detail=self.build_log)

    def go(self, name):
        self.machine.path("/run/lab/go-" + name).touch()

    def power_failure(self):
        """The daemon, its tools, everyone but process 1 and the bus are gone at once."""
        def all_gone():
            left = [facts["pid"] for facts in self.machine.processes()
                    if facts["pid"] != 1 and facts["comm"] != "dbus-daemon"]
            for pid in left:
                try:
                    self.machine.kill(pid, 9)
                except ProcessLookupError:
                    pass
            return not left

        wait_until(all_gone, what="everyone has ended")


@functools.lru_cache
def built_module():
    """A real module, as the real makefile makes it."""
    with PrivateMachine(private_folders=["/lib/modules"]) as machine:
        world = DriverWorld(machine)
        world.give_headers()
        sources = world.tarball(UNICORN)
        machine.run(["/usr/bin/tar", "-xf", DRIVERS + "/" + sources.name, "-C", "/tmp"])
        made = machine.run(["/usr/bin/make", "modules"], cwd="/tmp/" + UNICORN)
        assert made.status == 0, made.stdout + made.stderr
        return machine.path("/tmp/%s/unicorn_usb_eth.ko" % UNICORN).read_bytes()


def add(tar, name, content):
    data = content.encode() if isinstance(content, str) else content
    member = tarfile.TarInfo(name)
    member.size, member.mode = len(data), 0o644
    tar.addfile(member, io.BytesIO(data))

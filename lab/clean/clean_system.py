# SPDX-License-Identifier: MIT
"""A clean Debian in a folder of its own, to install into: other processes, other files and devices, and
its own network where it is asked for. Needs root; the host is only read.

debootstrap makes it once; it is kept in the cache folder for a week. Each use lays a fresh layer over
it, in which everything that is written stays and with which it vanishes.
"""
import hashlib
import os
import shutil
import subprocess
import tempfile
import time
from collections import namedtuple
from pathlib import Path

from lab.kernel import suites
from lab.kernel.image import cache_folder, package_names

REPOSITORY = Path(__file__).resolve().parents[2]
RELEASES = {name: suites.CODENAMES[name] for name in ("12", "13")}
MAKING_SECONDS, KEPT_SECONDS, LEFTOVER_SECONDS = 1800, 7 * 24 * 3600, 24 * 3600
PATH = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"

Completed = namedtuple("Completed", "status output")

# The holder of the namespaces: ends when its standard input does. As process 1 it inherits the orphans;
# ignoring the signal it leaves none of them behind. pivot_root and not chroot, because the kernel
# refuses user namespaces to whoever is in a chroot.
HOLDER = """
set -e
base=$1 layer=$2 archives=$3 repository=$4 kept=$5
cd "$layer"
mount -t overlay overlay -o "lowerdir=$base,upperdir=$layer/upper,workdir=$layer/work" root
cd root
mount -t proc proc proc
mount --rbind /sys sys
mount --make-rslave sys
mount -o remount,bind,ro sys
mount -t tmpfs -o mode=755,nosuid tmpfs dev
mkdir dev/net dev/pts dev/shm
for node in null:1:3 zero:1:5 full:1:7 random:1:8 urandom:1:9 kmsg:1:11 tty:5:0 net/tun:10:200; do
    number=${node#*:}
    mknod -m 666 "dev/${node%%:*}" c "${number%:*}" "${number#*:}"
done
mount -t devpts -o newinstance,mode=620,ptmxmode=666,gid=5 devpts dev/pts
mount -t tmpfs -o mode=1777,nosuid,nodev tmpfs dev/shm
ln -s pts/ptmx dev/ptmx
ln -s /proc/self/fd dev/fd
for stream in 0:stdin 1:stdout 2:stderr; do
    ln -s "/proc/self/fd/${stream%:*}" "dev/${stream#*:}"
done
mount -t tmpfs -o mode=755 tmpfs run
mkdir -m 1777 run/lock
mkdir run/repository
mount --bind "$archives" var/cache/apt/archives
mount --bind -o ro "$repository" run/repository
if [ -n "$kept" ]; then
    mkdir -p var/cache/norvix-lab
    mount --bind "$kept" var/cache/norvix-lab
fi
pivot_root . .
umount -l .
cd /
echo ready
exec env --ignore-signal=CHLD cat
"""


def mirror():
    """Where the host takes its packages from, in a list, so that a local mirror serves here too;
    an empty list leaves the choice to debootstrap."""
    address = suites.mirror(suites.host_sources(), "debian")
    return [address] if address else []


def prepare(release, packages):
    """The folder of the clean system that has these packages; made when it is missing or old."""
    for leftover in cache_folder().glob("clean-*"):  # of a use that was killed
        if time.time() - leftover.stat().st_mtime > LEFTOVER_SECONDS:
            shutil.rmtree(leftover, ignore_errors=True)
    key = hashlib.sha256(" ".join(packages).encode()).hexdigest()[:16]
    folder = cache_folder() / ("debian-%s-%s" % (release, key))
    if folder.exists() and time.time() - folder.stat().st_mtime > KEPT_SECONDS:
        shutil.rmtree(folder)
    if not folder.exists():
        fresh = folder.with_suffix(".new")
        shutil.rmtree(fresh, ignore_errors=True)
        fresh.mkdir(parents=True)
        subprocess.run(["debootstrap", "--variant=minbase", "--include=" + ",".join(packages),
                        RELEASES[release], str(fresh), *mirror()],
                       check=True, timeout=MAKING_SECONDS, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL)
        # The layers over it do not outlive a power failure, so nobody needs to wait for the disk.
        (fresh / "etc/dpkg/dpkg.cfg.d/hasty").write_text("force-unsafe-io\n", encoding="ascii")
        fresh.rename(folder)
    return folder


class CleanSystem:
    """Use as a context manager. release is a key of RELEASES (without it the variable
    NORVIX_CLEAN_RELEASE decides, else Debian 12), packages are what it has beside Debian's minimum
    (else the list's). The repository is at /run/repository, read-only. With kept, its folder
    /var/cache/norvix-lab is the same in every system of the release."""

    def __init__(self, release=None, packages=None, kept=False):
        self.release = release or os.environ.get("NORVIX_CLEAN_RELEASE") or "12"
        self._packages = package_names("clean") if packages is None else packages
        self._kept = cache_folder() / ("kept-" + self.release) if kept else None

    def __enter__(self):
        base = prepare(self.release, self._packages)
        archives = cache_folder() / ("archives-" + self.release)
        (archives / "partial").mkdir(parents=True, exist_ok=True)
        if self._kept:
            self._kept.mkdir(exist_ok=True)
        self.folder = Path(tempfile.mkdtemp(prefix="clean-", dir=cache_folder()))
        self.folder.chmod(0o755)
        for name in ("upper", "work", "root"):
            (self.folder / name).mkdir()
        self._holder = subprocess.Popen(
            ["unshare", "--mount", "--propagation=private", "--pid", "--ipc", "--uts", "--fork",
             "--kill-child=KILL", "sh", "-c", HOLDER, "sh", str(base), str(self.folder),
             str(archives), str(REPOSITORY), str(self._kept or "")],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        if self._holder.stdout.readline() != b"ready\n":
            self.__exit__()
            raise RuntimeError("the clean system could not be made")
        children = Path("/proc/%d/task/%d/children" % (self._holder.pid, self._holder.pid))
        self._pid = children.read_text(encoding="ascii").split()[0]
        self.write("/etc/resolv.conf", Path("/etc/resolv.conf").read_text(encoding="utf-8"))
        return self

    def __exit__(self, *_):
        self._holder.stdin.close()
        self._holder.stdout.close()
        self._holder.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def path(self, name):
        """Where a file of the system can be read and written from outside."""
        return Path("/proc/%s/root%s" % (self._pid, name))

    def write(self, name, text, mode=0o644):
        path = self.path(name)
        path.unlink(missing_ok=True)
        path.write_text(text, encoding="utf-8")
        path.chmod(mode)

    def command(self, *argv, user="root", network=True, cwd="/"):
        """The words by which the host runs a program in there. network=False: without any."""
        words = ["nsenter", "-t", self._pid, "--mount", "--pid", "--ipc", "--uts"]
        words += [] if network else ["unshare", "--net"]
        words += ["env", "-i", "-C", cwd, "PATH=" + PATH, "LANG=C.UTF-8", "HOME=/root",
                  "DEBIAN_FRONTEND=noninteractive"]
        words += [] if user == "root" else ["runuser", "-u", user, "--"]
        return words + list(argv)

    def run(self, *argv, check=True, timeout=900, stdin="", **place):
        """Runs a program to its end; both its streams together. place: as command() takes it."""
        done = subprocess.run(self.command(*argv, **place), stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, errors="replace", timeout=timeout, input=stdin,
                              check=False)
        if check and done.returncode != 0:
            raise AssertionError("%s: status %d\n%s" % (" ".join(argv), done.returncode,
                                                        done.stdout[-6000:]))
        return Completed(done.returncode, done.stdout)

    def files(self, *below, without=()):
        """Everything below some folders: path to (kind and mode, owner, group, size or target)."""
        listing = self.run("find", *below, "-xdev", "-printf",
                           "%p\\t%M\\t%U\\t%G\\t%s\\t%l\\n").output
        found = {}
        for line in listing.splitlines():
            path, mode, owner, group, size, target = line.split("\t")
            if not any(path == name or path.startswith(name + "/") for name in without):
                found[path] = (mode, owner, group, "" if mode[0] == "d" else size, target)
        return found

# SPDX-License-Identifier: MIT
"""A clean Debian in a folder of its own, to install into: other processes, other files, and its own
network where it is asked for. Needs root; the host is only read.

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

REPOSITORY = Path(__file__).resolve().parent.parent
PACKAGE_LIST = REPOSITORY / "debian-packages-install"
RELEASE = "bookworm"
MAKING_SECONDS, KEPT_SECONDS, LEFTOVER_SECONDS = 1800, 7 * 24 * 3600, 24 * 3600
PATH = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"

Completed = namedtuple("Completed", "status output")

# The holder of the namespaces: ends when its standard input does.
HOLDER = """
set -e
mount -t overlay overlay -o "lowerdir=$1,upperdir=$2/upper,workdir=$2/work" "$2/root"
mount -t proc proc "$2/root/proc"
mount --rbind /sys "$2/root/sys"
mount --make-rslave "$2/root/sys"
mount -o remount,bind,ro "$2/root/sys"
mount --bind /dev "$2/root/dev"
mount -t tmpfs tmpfs "$2/root/run"
mount --bind "$3" "$2/root/var/cache/apt/archives"
mkdir "$2/root/run/repository"
mount --bind -o ro "$4" "$2/root/run/repository"
echo ready
exec cat
"""


def cache_folder():
    return Path(os.environ.get("NORVIX_LAB_CACHE") or "/var/cache/norvix-lab")


def package_names(kind):
    lines = PACKAGE_LIST.read_text(encoding="ascii").splitlines()
    return [words[1] for words in map(str.split, lines) if len(words) == 2 and words[0] == kind]


def mirror():
    """Where the host takes its packages from, in a list, so that a local mirror serves here too;
    an empty list leaves the choice to debootstrap."""
    for file in [Path("/etc/apt/sources.list"), *Path("/etc/apt/sources.list.d").glob("*")]:
        for line in file.read_text(encoding="utf-8").splitlines() if file.is_file() else ():
            words = line.split()
            if words[:1] == ["URIs:"] or (words[:1] == ["deb"] and len(words) > 2):
                address = words[1] if words[0] == "URIs:" else next(
                    word for word in words[1:] if "://" in word)
                if address.rstrip("/").endswith("/debian"):
                    return [address]
    return []


def prepare():
    """The clean system's folder; made when it is missing, old, or its list has changed."""
    missing = [name for name in package_names("host") if shutil.which(name) is None]
    if missing:
        subprocess.run(["apt-get", "install", "-q", "-y", "--no-install-recommends", *missing],
                       check=True, env=dict(os.environ, DEBIAN_FRONTEND="noninteractive"),
                       stdin=subprocess.DEVNULL)
    for leftover in cache_folder().glob("clean-*"):  # of a use that was killed
        if time.time() - leftover.stat().st_mtime > LEFTOVER_SECONDS:
            shutil.rmtree(leftover, ignore_errors=True)
    key = hashlib.sha256(PACKAGE_LIST.read_bytes()).hexdigest()[:16]
    folder = cache_folder() / ("debian-" + key)
    if folder.exists() and time.time() - folder.stat().st_mtime > KEPT_SECONDS:
        shutil.rmtree(folder)
    if not folder.exists():
        fresh = folder.with_suffix(".new")
        shutil.rmtree(fresh, ignore_errors=True)
        fresh.mkdir(parents=True)
        subprocess.run(["debootstrap", "--variant=minbase",
                        "--include=" + ",".join(package_names("clean")), RELEASE, str(fresh),
                        *mirror()], check=True, timeout=MAKING_SECONDS, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL)
        fresh.rename(folder)
    return folder


class CleanSystem:
    """Use as a context manager. The repository is at /run/repository, read-only."""

    def __enter__(self):
        base = prepare()
        archives = cache_folder() / "archives"
        (archives / "partial").mkdir(parents=True, exist_ok=True)
        self.folder = Path(tempfile.mkdtemp(prefix="clean-", dir=cache_folder()))
        self.folder.chmod(0o755)
        for name in ("upper", "work", "root"):
            (self.folder / name).mkdir()
        self.root = self.folder / "root"
        self._holder = subprocess.Popen(
            ["unshare", "--mount", "--propagation=private", "--pid", "--ipc", "--uts", "--fork",
             "--kill-child=KILL", "sh", "-c", HOLDER, "sh", str(base), str(self.folder),
             str(archives), str(REPOSITORY)], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
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
        return Path("/proc/%s/root%s%s" % (self._pid, self.root, name))

    def write(self, name, text, mode=0o644):
        path = self.path(name)
        path.unlink(missing_ok=True)
        path.write_text(text, encoding="utf-8")
        path.chmod(mode)

    def run(self, *argv, user="root", network=True, cwd="/", check=True, timeout=900, stdin=""):
        """Runs a program to its end; both its streams together. network=False: without any."""
        words = ["nsenter", "-t", self._pid, "--mount", "--pid", "--ipc", "--uts"]
        words += [] if network else ["unshare", "--net"]
        words += ["chroot", str(self.root), "env", "-i", "-C", cwd, "PATH=" + PATH, "LANG=C.UTF-8",
                  "HOME=/root", "DEBIAN_FRONTEND=noninteractive"]
        words += [] if user == "root" else ["runuser", "-u", user, "--"]
        done = subprocess.run(words + list(argv), stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
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

# SPDX-License-Identifier: MIT
"""Fills the private folders of a machine before anything runs in it."""
import shutil
import uuid
from pathlib import Path

from .standin_control import install, install_standins

HERE = Path(__file__).resolve().parent
NORVIX_GROUP = 64999
INSTALLED = {"bin": ("norvix-daemon", "norvix-hald", "norvix-keeper", "norvixctl",
                     "norvix-desktop"),
             "lib": ("libnorvix-support.so",),
             "libexec": ("norvix-desktop-join", "norvix-desktop-mend")}
EMPTY_FOLDERS = ("/opt/norvix/bin", "/opt/norvix/lib", "/opt/norvix/libexec", "/run/dbus",
                 "/run/lab/standins", "/run/lab/triggers", "/run/lock")
FOR_EVERYONE = ("/tmp", "/var/tmp", "/run/lock", "/run/lab")
# What the host's programs are found and started by, and nothing that says whose machine it is.
ETC_OF_THE_HOST = ("alternatives", "ld.so.cache", "ld.so.conf", "ld.so.conf.d")
USERS = {"root": (0, "/root"), "user": (1000, "/tmp"), "nobody": (65534, "/nonexistent")}
GROUPS = {"root": 0, "tty": 5, "dip": 30, "user": 1000, "norvix": NORVIX_GROUP, "nogroup": 65534}
TEXTS = {
    "resolv.conf": "nameserver 192.0.2.53\n",
    "nsswitch.conf": "passwd: files\ngroup: files\nhosts: files dns\n",
    "hostname": "norvix-lab\n",
    "hosts": "127.0.0.1 localhost norvix-lab\n::1 localhost\n",
    "timezone": "Etc/UTC\n",
    "passwd": "".join("%s:x:%d:%d::%s:/bin/sh\n" % (name, number, number, home)
                      for name, (number, home) in USERS.items()),
    "group": "".join("%s:x:%d:\n" % entry for entry in GROUPS.items()),
}


def furnish(state, path, folders, build):
    """state is the state folder, path maps a place inside to its place in there, folders are the
    private places, build is the build tree whose programs are installed."""
    state.chmod(0o755)
    for name in ("lib", "out"):
        (state / name).mkdir()
    for folder in tuple(folders) + EMPTY_FOLDERS:
        path(folder).mkdir(parents=True, exist_ok=True)
    for folder in FOR_EVERYONE:
        path(folder).chmod(0o1777)
    _furnish_etc(path("/etc"))
    path("/var/lib/dbus/machine-id").symlink_to("/etc/machine-id")
    _install_build(build, path("/opt/norvix"), state / "lib")
    install_standins(HERE / "standins", build / "lab/standin", state / "lib", path)


def _furnish_etc(etc):
    """An /etc of the machine's own, with links to the little that the host's programs need."""
    for name in ETC_OF_THE_HOST:
        (etc / name).symlink_to("/mnt/host-etc/" + name)
    for name, text in TEXTS.items():
        (etc / name).write_text(text, encoding="ascii")
    (etc / "machine-id").write_text(uuid.uuid4().hex + "\n", encoding="ascii")
    (etc / "localtime").symlink_to("/usr/share/zoneinfo/Etc/UTC")
    (etc / "os-release").symlink_to("../usr/lib/os-release")
    (etc / "ppp/peers").mkdir(parents=True)
    for folder in ("system.d", "services"):
        (etc / "dbus-1" / folder).mkdir(parents=True)
    shutil.copy(HERE / "system-bus.conf", etc / "dbus-1/system.conf")
    for name in ("pap-secrets", "chap-secrets"):
        (etc / "ppp" / name).touch(0o600)


def _install_build(build, prefix, library):
    for folder, names in INSTALLED.items():
        for name in names:
            if (build / folder / name).exists():
                install(build / folder / name, prefix / folder / name)
    for name in ("libklogctl-standin.so", "libpicture-standin.so"):
        if (build / "lab" / name).exists():
            install(build / "lab" / name, library / name)

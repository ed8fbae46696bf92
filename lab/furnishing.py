# SPDX-License-Identifier: MIT
"""Fills the private folders of a machine before anything runs in it."""
import os
import shutil
from pathlib import Path

from .standin_control import install_standins

HERE = Path(__file__).resolve().parent
NORVIX_GROUP = 64999
INSTALLED = {"bin": ("norvix-daemon", "norvix-hald", "norvixctl"),
             "lib": ("libnorvix-support.so",)}
EMPTY_FOLDERS = ("/opt/norvix/bin", "/opt/norvix/lib", "/run/dbus", "/run/lab/standins",
                 "/run/lab/triggers", "/run/lock")
FOR_EVERYONE = ("/tmp", "/run/lock", "/run/lab")
# What of /etc the daemon or a test changes.
OWN_ETC = ("ppp", "dbus-1", "resolv.conf", "group", "passwd")


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
    _install_build(build, path("/opt/norvix"), state / "lib")
    install_standins(HERE / "standins", state / "lib", path)


def _furnish_etc(etc):
    """The host's /etc by links, and files of its own for what changes."""
    for entry in os.scandir("/etc"):
        if entry.name not in OWN_ETC:
            target = os.readlink(entry.path) if entry.is_symlink() else "/mnt/host-etc/" + entry.name
            (etc / entry.name).symlink_to(target)
    (etc / "ppp/peers").mkdir(parents=True)
    (etc / "dbus-1/system.d").mkdir(parents=True)
    shutil.copy(HERE / "system-bus.conf", etc / "dbus-1/system.conf")
    (etc / "resolv.conf").write_text("nameserver 192.0.2.53\n", encoding="ascii")
    for name in ("pap-secrets", "chap-secrets"):
        (etc / "ppp" / name).touch(0o600)
    groups = Path("/etc/group").read_text(encoding="utf-8").rstrip("\n")
    (etc / "group").write_text("%s\nnorvix:x:%d:\n" % (groups, NORVIX_GROUP), encoding="utf-8")
    shutil.copy("/etc/passwd", etc / "passwd")


def _install_build(build, prefix, library):
    for folder, names in INSTALLED.items():
        for name in names:
            if (build / folder / name).exists():
                shutil.copy(build / folder / name, prefix / folder)
    preloaded = build / "lab/libklogctl-standin.so"
    if preloaded.exists():
        shutil.copy(preloaded, library)

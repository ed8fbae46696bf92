# SPDX-License-Identifier: MIT
"""The resolver configuration of a machine, as tests make it and look at it."""
import os

from obstacles import mount

RESOLV = "/etc/resolv.conf"
COMMENT = "# Written by norvix-daemon, which had found no usable name server here.\n"
SERVERS = ("208.67.222.222", "208.67.220.220")
REPAIRED = COMMENT + "nameserver 208.67.222.222\nnameserver 208.67.220.220\n"
WRONG = "nameserver 0.0.0.0\n"


def text_inside(machine):
    return machine.read(RESOLV).decode("latin-1")


def leftovers(folder):
    return [name for name in os.listdir(folder) if name.startswith((".resolv", ".norvix-new-resolv"))]


def mount_by_itself(machine, content):
    """Mounts a file on the configuration, as container managers do; its place outside."""
    mounted = machine.path("/run/mounted.conf")
    mounted.write_text(content, encoding="ascii")
    mount(machine, "--bind", "/run/mounted.conf", RESOLV)
    return mounted

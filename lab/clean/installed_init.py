# SPDX-License-Identifier: MIT
"""Process 1 of an installed system that is run as a machine: installed_init.py CONTROL STATE_FOLDER

As after its boot nothing is in /run; the kernel shows the network of these namespaces and no modem.
"""
import os
import shutil
import socket
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "machine"))
import machine_init  # noqa: E402
from machine_init import MS_NODEV, MS_NOSUID, Netlink, mount  # noqa: E402

MS_PRIVATE = 1 << 18
REPLACED = ("/usr/local/sbin", "/opt/norvix/bin")


def arrange():
    mount("none", "/", flags=machine_init.MS_REC | MS_PRIVATE)
    os.chdir("/")
    mount("proc", "/proc", "proc")
    mount("sysfs", "/sys", "sysfs", machine_init.MS_RDONLY)
    mount("tmpfs", "/sys/bus", "tmpfs", MS_NOSUID | MS_NODEV, "mode=755")
    os.makedirs("/sys/bus/usb/devices")
    # The stand-ins' sources stay where they were.
    os.makedirs("/mnt/repository", exist_ok=True)
    machine_init.bind("/run/repository", "/mnt/repository")
    mount("tmpfs", "/run", "tmpfs", MS_NOSUID | MS_NODEV, "mode=755")
    os.mkdir("/run/repository")
    machine_init.bind("/mnt/repository", "/run/repository")
    for folder in REPLACED:
        lay_copy_over(folder)
    Netlink().set_up("lo")


def lay_copy_over(folder):
    """What stands for programs in there is gone with the machine."""
    kept = "/mnt/own" + folder
    os.makedirs(kept, exist_ok=True)
    machine_init.bind(folder, kept)
    mount("tmpfs", folder, "tmpfs", MS_NOSUID | MS_NODEV, "mode=755")
    shutil.copytree(kept, folder, symlinks=True, dirs_exist_ok=True)


control = socket.socket(fileno=int(sys.argv[1]))
arrange()
machine_init.main(control, sys.argv[2], keep=True)

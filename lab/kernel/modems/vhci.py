# SPDX-License-Identifier: MIT
"""Plugs devices into the kernel's virtual USB host controller and takes them out again."""

import pathlib

CONTROLLER = pathlib.Path("/sys/devices/platform/vhci_hcd.0")

FULL_SPEED = 2
FREE = "004"


def free_ports(status):
    """The numbers of the free full-speed ports in the text of the controller's status file."""
    rows = [line.split() for line in status.splitlines()[1:]]
    return [int(row[1]) for row in rows if len(row) >= 3 and row[0] == "hs" and row[2] == FREE]


class Socket:
    """One socket of the controller; holds at most one device."""

    def __init__(self, controller=CONTROLLER):
        self._controller = controller
        self.port = None

    def plug(self, device, port=None):
        """Plugs `device` into `port`, or the first free one; the kernel sees it at once."""
        if port is None:
            port = free_ports((self._controller / "status").read_text())[0]
        with device.connect() as kernels:
            identity = (1 << 16) | (port + 1)
            command = f"{port} {kernels.fileno()} {identity} {FULL_SPEED}"
            (self._controller / "attach").write_text(command)
        self.port = port

    def unplug(self):
        """Takes the device out; nothing happens when there is none."""
        if self.port is not None:
            (self._controller / "detach").write_text(str(self.port))
            self.port = None

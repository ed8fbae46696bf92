# SPDX-License-Identifier: MIT
"""The kernel log that the daemon reads: a file behind the preloaded klogctl, or the real one."""
import os
import time
from pathlib import Path

# What the drivers write when the line is up, by the vendor id of the modem in the settings.
LINE_UP = {
    1155: "unicorn_msw: Current Modem State (1): SHOWTIME_L1",
    1721: "ATM dev 0: ADSL line is up (8128 kb/s down | 832 kb/s up)",
    4368: "usb 1-1: [ueagle-atm] modem operational",
}
LINE_UP_CXACRU = "ATM dev 0: ADSL line: up (8128 kb/s down | 832 kb/s up)"


def line_up(vendor_id):
    return LINE_UP.get(vendor_id, LINE_UP_CXACRU)


class KernelLog:
    """The simulated log. Missing at first, as on a kernel that refuses to be read."""

    def __init__(self, path):
        self._path = path

    def write(self, text):
        """The whole log from now on; text or bytes. Replaced in one step."""
        data = text if isinstance(text, bytes) else text.encode("utf-8", "surrogateescape")
        fresh = self._path.with_suffix(".new")
        fresh.write_bytes(data)
        fresh.replace(self._path)

    def append(self, line):
        """One more line, stamped as the kernel does it."""
        old = self._path.read_bytes() if self._path.exists() else b""
        self.write(old + ("<6>[%12.6f] %s\n" % (time.monotonic(), line)).encode())

    def line_up(self, vendor_id=0):
        """The line that a family's driver writes when the line is synchronised."""
        self.append(line_up(vendor_id))

    def clear(self):
        self.write(b"")

    def load(self, recording):
        """A recorded log, byte for byte."""
        self.write(Path(recording).read_bytes())


class RealKernelLog:
    """The machine's own kernel log: what is written to it stays there, so keep it to a few lines."""

    DEVICE = "/dev/kmsg"

    @classmethod
    def reason_to_skip(cls):
        """Why the real log cannot be used here; empty when it can."""
        if os.geteuid() != 0:
            return "writing to and reading the real kernel log needs root"
        try:
            with open(cls.DEVICE, "wb", buffering=0):
                return ""
        except OSError as error:
            return "%s cannot be written: %s" % (cls.DEVICE, error.strerror)

    def append(self, line):
        with open(self.DEVICE, "wb", buffering=0) as device:
            device.write(b"<6>" + line.encode() + b"\n")

    def line_up(self, vendor_id=0):
        self.append(line_up(vendor_id))

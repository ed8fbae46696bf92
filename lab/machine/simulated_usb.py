# SPDX-License-Identifier: MIT
"""USB devices that do not exist, plugged into a private machine and pulled out again."""
import json
import shutil
import socket
from pathlib import Path

from .private_machine import ADDRESS_SANITIZER
from ..waiting import PATIENCE, wait_until

SOCKET = "/run/lab/usb"
HUB = {"idVendor": "1d6b", "idProduct": "0002", "bDeviceClass": "09", "serial": "0000:00:1d.7",
       "busnum": "1", "devnum": "1", "maxchild": "8", "speed": "480", "version": " 2.00",
       "manufacturer": "Linux ehci_hcd", "product": "EHCI Host Controller"}


class SimulatedUsb:
    """One root hub with any number of ports. Programs started with self.environment see it instead
    of the host's devices; all others see nothing of it."""

    def __init__(self, machine):
        # The simulator ends when a listener has more events waiting than this.
        machine.write("/proc/sys/net/unix/max_dgram_qlen", b"20000\n")
        # A clone below /tmp is not seen inside; the machine's own folder is.
        shutil.copy(Path(__file__).with_name("umockdev_program.py"), machine.state / "lib")
        self._process = machine.spawn(
            ["/usr/bin/umockdev-wrapper", "/usr/bin/python3", "-B",
             "/mnt/lab/lib/umockdev_program.py", SOCKET],
            env={"TMPDIR": "/dev/shm"}, label="usb")  # in memory: its devices are many small files
        wait_until(lambda: machine.path(SOCKET).exists() or self._process.ended(),
                   what="the USB simulator listens", detail=self._process.errors)
        # Written to directly: what an interrupt left in a buffer would be written when all is over.
        self._connection = socket.socket(
            fileno=machine.request("connect", path=SOCKET, uid=0, gid=0, groups=[]))
        self._connection.settimeout(PATIENCE)
        self._replies = self._connection.makefile("r", encoding="utf-8")
        self.environment = {"LD_PRELOAD": "libumockdev-preload.so.0",
                            "UMOCKDEV_DIR": self.request("root")}
        if ADDRESS_SANITIZER:  # a report into a file of its own would crash in what is preloaded
            self.environment["ASAN_OPTIONS"] = "verify_asan_link_order=0:detect_leaks=0"
        self._numbers = 1
        self._devices = {}
        self.hub = self.plug("usb1", 0x1d6b, 2, parent=None, number=1, interfaces=(),
                             attributes=HUB)

    def request(self, do, **arguments):
        """One request to the simulator; see umockdev_program.py."""
        self._connection.sendall(json.dumps({"do": do, **arguments}).encode() + b"\n")
        line = self._replies.readline()
        if not line:
            raise RuntimeError("the USB simulator has ended:\n" + self._process.errors())
        reply = json.loads(line)
        if "error" in reply:
            raise RuntimeError(reply["error"])
        return reply["result"]

    def many(self, *requests):
        """Requests (from add_requests, remove_requests) that are carried out without a pause."""
        return self.request("many", requests=[one for group in requests for one in group])

    def add_requests(self, port, vendor, product, serial=None, interfaces=(0,), number=None,
                     parent="", told=True, missing=(), driver=None, attributes=None):
        """What plug does, as requests. told=False: events do not say which product it is.
        missing: files of sysfs that are not there. attributes: files that differ."""
        parent = self.hub if parent == "" else parent
        if number is None:
            self._numbers += 1
            number = self._numbers
        files = {"idVendor": "%04x" % vendor, "idProduct": "%04x" % product, "busnum": "1",
                 "devnum": str(number), "bcdDevice": "0001", "bDeviceClass": "ff",
                 "bDeviceSubClass": "00", "bDeviceProtocol": "00", "bNumConfigurations": "1",
                 "bNumInterfaces": "%2d" % len(interfaces), "bConfigurationValue": "1",
                 "bmAttributes": "a0", "bMaxPower": "500mA", "maxchild": "0", "speed": "12",
                 "version": " 1.10", "product": "ADSL modem"}
        files.update({} if serial is None else {"serial": serial})
        files.update(attributes or {})
        files = {name: text for name, text in files.items() if name not in missing}
        facts = {"DEVTYPE": "usb_device"}
        if told:
            facts.update({"PRODUCT": "%x/%x/1" % (vendor, product), "BUSNUM": "001",
                          "DEVNUM": "%03d" % number})
        path = (parent or "/sys/devices") + "/" + port
        requests = [{"do": "add", "name": port, "parent": parent, "attributes": files,
                     "properties": facts, "driver": driver}]
        for interface in interfaces:
            requests.append({"do": "add", "name": "%s:1.%d" % (port, interface), "parent": path,
                             "attributes": {"bInterfaceNumber": "%02x" % interface,
                                            "bInterfaceClass": "ff", "bInterfaceSubClass": "00",
                                            "bInterfaceProtocol": "ff"},
                             "properties": {"DEVTYPE": "usb_interface"}})
        self._devices[path] = [request["name"] for request in requests[1:]]
        return requests

    def plug(self, port, vendor, product, **options):
        """Plugs a device; returns its path. Options as of add_requests."""
        return self.many(self.add_requests(port, vendor, product, **options))[0]

    def remove_requests(self, path, parent_first=False, how="remove"):
        """What unplug does, as requests. parent_first: in the order that never happens. how:
        "vanish" for a removal without events."""
        paths = [path + "/" + name for name in self._devices.pop(path)]
        paths = [path] + paths if parent_first else paths + [path]
        if not parent_first or how == "vanish":
            return [{"do": how, "path": one} for one in paths]
        return ([{"do": "hide", "path": one} for one in paths]
                + [{"do": "event", "path": one, "action": "remove"} for one in paths]
                + [{"do": "vanish", "path": one} for one in reversed(paths)])

    def unplug(self, path, **options):
        """Pulls a device out. Options as of remove_requests."""
        self.many(self.remove_requests(path, **options))

    def event(self, path, action, **properties):
        """Sends an event for a device that is there, with facts that it keeps from now on."""
        self.many([{"do": "property", "path": path, "name": name, "value": value}
                   for name, value in properties.items()]
                  + [{"do": "event", "path": path, "action": action}])

    def bind(self, path, driver):
        """A driver takes a device or interface."""
        self.request("driver", path=path, driver=driver)
        self.event(path, "bind")

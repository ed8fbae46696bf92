# SPDX-License-Identifier: MIT
"""Simulates the USB devices of a machine: sysfs and events as libudev sees them, by umockdev.

Runs inside as: umockdev-wrapper python3 umockdev_program.py SOCKET. Obeys requests, each one line of
JSON, of one connection after the other; see simulated_usb.py, which makes them.
"""
import json
import os
import shutil
import socket
import sys
import time

import gi

gi.require_version("UMockdev", "1.0")
from gi.repository import UMockdev  # noqa: E402


class Simulator:
    def __init__(self):
        self.testbed = UMockdev.Testbed.new()
        # Asked only now: an earlier answer would be "no" for ever, and no event would be sent.
        if not UMockdev.in_mock_environment():
            raise RuntimeError("umockdev is not preloaded")
        self.root = self.testbed.get_root_dir()
        os.chmod(self.root, 0o1777)  # listeners of any user put their sockets here
        os.makedirs(self.root + "/sys/bus/usb/devices", exist_ok=True)
        os.makedirs(self.root + "/sys/kernel", exist_ok=True)
        self.events = 0

    def tell(self, path, action):
        """Sends an event. As the kernel does, it is counted once sysfs shows what it tells."""
        self.testbed.uevent(path, action)
        self.count_event()

    def count_event(self):
        self.events += 1
        self.do_write("/sys/kernel/uevent_seqnum", "%d\n" % self.events)

    def do_root(self):
        return self.root

    def do_add(self, name, parent, attributes, properties, driver=None, subsystem="usb"):
        """A new device; its "add" event is sent. Returns its path."""
        flat = [text for pair in attributes.items() for text in pair]
        told = {**properties, "DRIVER": driver} if driver else properties
        facts = [text for pair in told.items() for text in pair]
        path = self.testbed.add_device(subsystem, name, parent, flat, facts)
        self.count_event()
        if driver:
            self.link_driver(path, driver)
        return path

    def link_driver(self, path, driver):
        link = self.root + path + "/driver"
        if os.path.islink(link):
            os.unlink(link)
        if driver:
            os.symlink("/sys/bus/usb/drivers/" + driver, link)

    def do_driver(self, path, driver):
        """Gives a device a driver, or none: the link, and what events say of it."""
        self.link_driver(path, driver)
        facts_file = self.root + path + "/uevent"
        with open(facts_file, encoding="utf-8") as file:
            facts = [line for line in file if not line.startswith("DRIVER=")]
        with open(facts_file + ".new", "w", encoding="utf-8") as file:
            file.writelines(facts + (["DRIVER=%s\n" % driver] if driver else []))
        os.rename(facts_file + ".new", facts_file)

    def do_property(self, path, name, value):
        self.testbed.set_property(path, name, value)

    def do_attribute(self, path, name, value):
        """Sets a file of sysfs, or takes it away."""
        if value is None:
            os.unlink(self.root + path + "/" + name)
        else:
            self.testbed.set_attribute(path, name, value)

    def do_event(self, path, action):
        self.tell(path, action)

    def do_timed_event(self, path, action):
        """The time (time.monotonic) at which the event was sent."""
        sent = time.monotonic()
        self.tell(path, action)
        return sent

    def do_unlist(self, path):
        """Nothing lists the device any more."""
        os.unlink(self.root + "/sys/bus/usb/devices/" + os.path.basename(path))

    def do_list(self, path):
        """The device is listed again; no event tells of it."""
        os.symlink("../../.." + path.removeprefix("/sys"),
                   self.root + "/sys/bus/usb/devices/" + os.path.basename(path))

    def do_hide(self, path):
        """As the kernel does before it tells of a removal: nothing lists the device any more, and
        its files are gone, but the event still has its facts."""
        self.do_unlist(path)
        for entry in os.scandir(self.root + path):
            if entry.is_file(follow_symlinks=False) and entry.name != "uevent":
                os.unlink(entry.path)

    def do_remove(self, path):
        """Takes a device away: its "remove" event is sent, then nothing is left."""
        self.do_hide(path)
        self.tell(path, "remove")
        self.do_vanish(path)

    def do_vanish(self, path):
        """Takes a device away without a word."""
        link = self.root + "/sys/bus/usb/devices/" + os.path.basename(path)
        if os.path.islink(link):
            os.unlink(link)
        shutil.rmtree(self.root + path, ignore_errors=True)

    def do_write(self, path, content):
        """Replaces a file as a whole, so that no reader sees it half written."""
        with open(self.root + path + ".new", "w", encoding="ascii") as file:
            file.write(content)
        os.rename(self.root + path + ".new", self.root + path)

    def do_many(self, requests):
        """Several requests without anything in between."""
        return [getattr(self, "do_" + request.pop("do"))(**request) for request in requests]


def serve(simulator, connection):
    with connection, connection.makefile("rw", encoding="utf-8") as stream:
        for line in stream:
            request = json.loads(line)
            try:
                reply = {"result": getattr(simulator, "do_" + request.pop("do"))(**request)}
            except Exception as error:  # told to the test, which knows what it did
                reply = {"error": repr(error)}
            stream.write(json.dumps(reply) + "\n")
            stream.flush()


def main(path):
    simulator = Simulator()
    with socket.socket(socket.AF_UNIX) as listener:
        listener.bind(path + ".new")
        listener.listen()
        os.rename(path + ".new", path)
        while True:
            serve(simulator, listener.accept()[0])


main(sys.argv[1])

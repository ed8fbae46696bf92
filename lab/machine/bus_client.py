# SPDX-License-Identifier: MIT
"""A client of the private system bus: calls, and a record of every signal in order of arrival."""
import os
import threading
import time
import xml.etree.ElementTree
from collections import namedtuple

from jeepney import DBusAddress, HeaderFields, MessageType, new_method_call
from jeepney.low_level import Parser

from ..waiting import PATIENCE, NotHappened

SERVICE, PATH, INTERFACE = "com.norvix.Daemon", "/com/norvix/Daemon", "com.norvix.Daemon"
BUS = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")
# The daemon's methods that take arguments; getIP is called with or without.
SIGNATURES = {"setConnectAtBoot": "b", "setConnectAtModemPlug": "b", "setIdlenessTime": "i",
              "setAccountData": "ss", "getIP": "s"}

Signal = namedtuple("Signal", "name args time sender path interface signature")


class BusError(Exception):
    """An error reply: name and text."""

    def __init__(self, name, text=""):
        super().__init__("%s: %s" % (name, text))
        self.name, self.text = name, text


class Client:
    """One connection. A thread of its own reads, so that signals carry the time of their arrival
    (time.monotonic). Calls may come from any thread."""

    def __init__(self, sock, uid):
        self._socket = sock
        self._changed = threading.Condition()
        self._replies = {}
        self._serial = 0
        self._closed = False
        self.signals = []
        self._authenticate(uid)
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()
        self.unique_name = self.call_bus("Hello")
        self.call_bus("AddMatch", "s", "type='signal'")

    def _authenticate(self, uid, *wishes):
        """wishes are further lines, each of which the bus has to agree to."""
        user = str(uid).encode().hex().encode()
        for line in (b"\0AUTH EXTERNAL " + user + b"\r\n",) + wishes:
            self._socket.sendall(line)
            answer = b""
            while not answer.endswith(b"\r\n"):
                data = self._socket.recv(4096)
                if not data:
                    break
                answer += data
            if not answer.startswith((b"OK ", b"AGREE_")):
                raise BusError("refused by the bus", answer.decode(errors="replace"))
        self._socket.sendall(b"BEGIN\r\n")

    def _read(self):
        parser = Parser()
        while True:
            try:
                data = self._socket.recv(65536)
            except OSError:
                data = b""
            now = time.monotonic()
            if data:
                parser.add_data(data)
            with self._changed:
                if not data:
                    self._closed = True
                else:
                    while (message := parser.get_next_message()) is not None:
                        self._take(message, now)
                self._changed.notify_all()
            if not data:
                return

    def _take(self, message, now):
        fields = message.header.fields
        if message.header.message_type is MessageType.signal:
            self.signals.append(Signal(
                fields[HeaderFields.member], tuple(message.body), now,
                fields.get(HeaderFields.sender), fields.get(HeaderFields.path),
                fields.get(HeaderFields.interface), fields.get(HeaderFields.signature, "")))
        elif HeaderFields.reply_serial in fields:
            self._replies[fields[HeaderFields.reply_serial]] = message

    def send(self, message):
        """Sends a message as it is; returns its serial."""
        with self._changed:
            self._serial += 1
            serial = self._serial
            self._socket.sendall(message.serialise(serial=serial))
        return serial

    def start_call(self, method, signature="", *arguments, service=SERVICE, path=PATH,
                   interface=INTERFACE):
        """Sends a call and does not wait; the result is for finish_call."""
        address = DBusAddress(path, bus_name=service, interface=interface)
        return self.send(new_method_call(address, method, signature or None, arguments))

    def finish_call(self, serial, timeout=PATIENCE):
        """The whole reply message of a started call. Raises BusError for an error reply."""
        with self._changed:
            self._changed.wait_for(lambda: serial in self._replies or self._closed, timeout)
            reply = self._replies.pop(serial, None)
        if reply is None:
            raise BusError("closed by the bus" if self._closed else "no reply",
                           "within %g s" % timeout)
        if reply.header.message_type is MessageType.error:
            text = reply.body[0] if reply.body and isinstance(reply.body[0], str) else ""
            raise BusError(reply.header.fields[HeaderFields.error_name], text)
        return reply

    def call_raw(self, method, signature="", *arguments, timeout=PATIENCE, **target):
        """A call with any signature to any target (service, path, interface); the result is the
        reply's body: None, the one value, or a tuple."""
        reply = self.finish_call(self.start_call(method, signature, *arguments, **target), timeout)
        return reply.body[0] if len(reply.body) == 1 else (tuple(reply.body) or None)

    def call(self, method, *arguments, timeout=PATIENCE):
        """Calls a method of the daemon with the types that it declares."""
        signature = SIGNATURES.get(method, "") if arguments else ""
        return self.call_raw(method, signature, *arguments, timeout=timeout)

    def call_bus(self, method, signature="", *arguments):
        """Calls the bus itself."""
        service, path, interface = BUS
        return self.call_raw(method, signature, *arguments, service=service, path=path,
                             interface=interface)

    def owner_of(self, name=SERVICE):
        """The unique name of a service's owner, or None."""
        try:
            return self.call_bus("GetNameOwner", "s", name)
        except BusError:
            return None

    def pid_of(self, name=SERVICE):
        """The process, as numbered inside the machine, that owns a name."""
        return self.call_bus("GetConnectionUnixProcessID", "s", name)

    def introspect(self, path=PATH, service=SERVICE):
        """The description of an object, parsed."""
        text = self.call_raw("Introspect", service=service, path=path,
                             interface="org.freedesktop.DBus.Introspectable")
        return xml.etree.ElementTree.fromstring(text)

    def named(self, name, where=None, after=0):
        """The daemon's signals of that name so far; where is a test of their arguments, after a
        position in self.signals from which to look (see mark)."""
        return [signal for signal in self.signals[after:]
                if signal.name == name and signal.interface == INTERFACE
                and (where is None or where(*signal.args))]

    def names(self, after=0):
        """The names of the daemon's signals so far, in order."""
        return [signal.name for signal in self.signals[after:] if signal.interface == INTERFACE]

    def mark(self):
        """The position in self.signals behind everything that the daemon has sent up to now: its
        answer to this call comes after them."""
        self.call("reply")
        return len(self.signals)

    def wait_signal(self, name, timeout=PATIENCE, where=None, after=0, count=1):
        """Waits for a signal of the daemon and returns it, the count-th that fits."""
        deadline = time.monotonic() + timeout
        with self._changed:
            while len(found := self.named(name, where, after)) < count:
                left = deadline - time.monotonic()
                if left <= 0 or self._closed:
                    raise NotHappened("signal %s did not come within %g s; seen: %s" % (
                        name, timeout, [(s.name, s.args) for s in self.signals[after:]]))
                self._changed.wait(left)
            return found[count - 1]

    def signal_at(self, position, timeout):
        """The signal at that position of self.signals, as soon as it has arrived; None when none
        comes within timeout seconds."""
        with self._changed:
            self._changed.wait_for(lambda: len(self.signals) > position or self._closed, timeout)
            return self.signals[position] if len(self.signals) > position else None

    def expect_no_signal(self, name, after=0, marker="reply"):
        """Fails when the daemon has sent that signal before it answered the marker call."""
        self.call(marker)
        found = self.named(name, after=after)
        if found:
            raise AssertionError("unexpected signal: %s" % (found,))

    def close(self):
        try:
            self._socket.shutdown(2)
        except OSError:
            pass
        self._reader.join()
        self._socket.close()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

# SPDX-License-Identifier: MIT
"""A USB device that is a program: answers the standard requests and queues what comes in."""

import collections
import socket
import struct
import threading
from dataclasses import dataclass

from . import usbip

GET_STATUS, CLEAR_FEATURE, SET_ADDRESS, GET_DESCRIPTOR = 0, 1, 5, 6
GET_CONFIGURATION, SET_CONFIGURATION, GET_INTERFACE, SET_INTERFACE = 8, 9, 10, 11
STANDARD_KIND = 0x00
KIND_MASK = 0x60

# A modem has little memory: what nobody fetches is lost in the end.
LONGEST_QUEUE = 4096


@dataclass(frozen=True)
class Setup:
    """The eight bytes that begin a control request."""

    kind: int
    request: int
    value: int
    index: int
    length: int

    @classmethod
    def parse(cls, data):
        return cls(*struct.unpack("<BBHHH", data))


class UsbDevice:
    """Base of all devices here. Subclasses override `control` and `received` and call `send`.

    One thread per plugging reads the kernel's requests; `send` may be called from any thread.
    """

    # Endpoints whose bytes are a stream: several messages may travel in one transfer.
    stream_endpoints = ()

    def __init__(self, description):
        self.description = description
        self._lock = threading.RLock()
        self._socket = None
        self._forget()

    # What a modem of its own kind does.

    def control(self, setup, data):
        """Answers a control request that is not a standard one: bytes, or None to refuse."""
        return None

    def received(self, endpoint, data):
        """Takes the bytes of one transfer to the device; False refuses them."""

    def plugged(self):
        """The device has just got power."""

    def unplugged(self):
        """The device has just lost power."""

    def interface_set(self, number, setting):
        """The host has chosen a setting of an interface; returns whether there is one."""
        return any(interface.number == number and interface.setting == setting
                   for interface in self.description.interfaces)

    # Between the device and the kernel.

    def connect(self):
        """Gives the device power and returns the socket for the kernel's end."""
        ours, kernels = socket.socketpair(socket.AF_UNIX, socket.SOCK_STREAM)
        with self._lock:
            self._forget()
            self._socket = ours
        threading.Thread(target=self._serve, args=(ours,), daemon=True).start()
        self.plugged()
        return kernels

    def send(self, endpoint, data):
        """Queues bytes for the host on an endpoint number; they wait for the host's request."""
        with self._lock:
            queue = self._outgoing[endpoint]
            if self._socket is None or len(queue) >= LONGEST_QUEUE:
                return
            queue.append(data)
            self._deliver(endpoint)

    def has_queued(self, endpoint):
        """Whether the host has not fetched yet what was sent on an endpoint."""
        with self._lock:
            return bool(self._outgoing[endpoint])

    def discard(self, endpoint):
        """Drops what is queued on an endpoint."""
        with self._lock:
            self._outgoing[endpoint].clear()

    def _forget(self):
        self._pending = collections.defaultdict(collections.deque)
        self._outgoing = collections.defaultdict(collections.deque)
        self._settings = collections.defaultdict(int)
        self._configuration = 0

    def _serve(self, ours):
        reader = usbip.Reader()
        try:
            while data := ours.recv(65536):
                for request in reader.feed(data):
                    self._handle(request)
        except OSError:
            pass  # the kernel's end is gone: that is how unplugging looks from here
        with self._lock:
            ours.close()
            if self._socket is ours:
                self._socket = None
        self.unplugged()

    def _handle(self, request):
        if isinstance(request, usbip.Unlink):
            self._unlink(request)
        elif request.endpoint == 0:
            self._control(request)
        elif request.is_in:
            with self._lock:
                self._pending[request.endpoint].append(request)
                self._deliver(request.endpoint)
        else:
            refused = self.received(request.endpoint, request.data) is False
            self._reply(usbip.answer(request, status=usbip.STALLED if refused else 0))

    def _reply(self, message):
        with self._lock:
            if self._socket is not None:
                try:
                    self._socket.sendall(message)
                except OSError:
                    pass  # unplugged in this moment; the reading thread notices

    def _unlink(self, request):
        with self._lock:
            was_pending = False
            for queue in self._pending.values():
                for waiting in list(queue):
                    if waiting.number == request.target:
                        queue.remove(waiting)
                        was_pending = True
            self._reply(usbip.unlinked(request, was_pending))

    def _deliver(self, endpoint):
        """Answers waiting requests of an endpoint as long as there is something to send."""
        pending, outgoing = self._pending[endpoint], self._outgoing[endpoint]
        while pending and outgoing:
            request = pending.popleft()
            data = outgoing.popleft()
            if endpoint in self.stream_endpoints:
                while outgoing and len(data) + len(outgoing[0]) <= request.length:
                    data += outgoing.popleft()
            if len(data) > request.length:
                outgoing.appendleft(data[request.length:])
                data = data[:request.length]
            self._reply(usbip.answer(request, data))

    def _control(self, request):
        setup = Setup.parse(request.setup)
        if setup.kind & KIND_MASK == STANDARD_KIND:
            answer = self._standard(setup)
        else:
            answer = self.control(setup, request.data)
        if answer is None:
            self._reply(usbip.answer(request, status=usbip.STALLED))
        else:
            self._reply(usbip.answer(request, answer[:request.length]))

    def _standard(self, setup):
        """Answers a request that every USB device knows; None refuses it."""
        if setup.request == GET_DESCRIPTOR:
            return self.description.descriptor(setup.value >> 8, setup.value & 0xFF)
        if setup.request == GET_STATUS:
            return b"\0\0"
        if setup.request == GET_CONFIGURATION:
            return bytes([self._configuration])
        if setup.request == SET_CONFIGURATION:
            self._configuration = setup.value
            return b""
        if setup.request == GET_INTERFACE:
            return bytes([self._settings[setup.index]])
        if setup.request == SET_INTERFACE:
            if not self.interface_set(setup.index, setup.value):
                return None
            self._settings[setup.index] = setup.value
            return b""
        if setup.request in (CLEAR_FEATURE, SET_ADDRESS):
            return b""
        return None

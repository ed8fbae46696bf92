# SPDX-License-Identifier: MIT
"""Interfaces that live as long as the program that made them, and the far end's answers."""
import errno
import fcntl
import os
import select
import socket
import struct

from netlink import Netlink

TUNSETIFF = 0x400454CA
IFF_TUN, IFF_TAP, IFF_NO_PI = 0x1, 0x2, 0x1000
CLONE_NEWNET = 0x40000000
ETH_P_IP = 0x0800
# No leave to open the node, no node, no driver behind it.
NO_TUN = (errno.EPERM, errno.EACCES, errno.ENOENT, errno.ENODEV, errno.ENXIO)
ICMP, UDP = 1, 17
LARGEST_PACKET = 65536


def checksum(data):
    """The internet checksum of a header or message."""
    if len(data) % 2:
        data += b"\0"
    total = sum(struct.unpack("!%dH" % (len(data) // 2), data))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    return ~total & 0xFFFF


def answer_to(packet):
    """What the far end sends back for one IPv4 packet, or None for what it does not know."""
    if len(packet) < 28 or packet[0] >> 4 != 4:
        return None
    header = (packet[0] & 15) * 4
    source, destination, rest = packet[12:16], packet[16:20], packet[header:]
    # Swapped addresses leave the header's and UDP's checksums as they are.
    swapped = packet[:12] + destination + source + packet[20:header]
    if packet[9] == ICMP and rest[0] == 8:
        reply = b"\0\0\0\0" + rest[4:]
        return swapped + reply[:2] + struct.pack("!H", checksum(reply)) + reply[4:]
    if packet[9] == UDP:
        return swapped + rest[2:4] + rest[0:2] + rest[4:]
    return None


class TunLink:
    """An interface behind /dev/net/tun: gone as soon as the descriptor is closed."""

    def __init__(self, name, kind=IFF_TUN):
        self.name = name
        self.netlink = Netlink()
        self._device = os.open("/dev/net/tun", os.O_RDWR | os.O_CLOEXEC | os.O_NONBLOCK)
        try:
            fcntl.ioctl(self._device, TUNSETIFF,
                        struct.pack("16sH22x", name.encode(), kind | IFF_NO_PI))
        except OSError:
            os.close(self._device)
            raise

    def fileno(self):
        return self._device

    def up(self):
        self.netlink.set_up(self.name)

    def receive(self):
        return os.read(self._device, LARGEST_PACKET)

    def send(self, packet):
        os.write(self._device, packet)

    def close(self):
        os.close(self._device)


class VethLink:
    """The same where /dev/net/tun may not be opened. The far end lies in a network namespace of its
    own that ends with this process, and takes both ends with it."""

    def __init__(self, name):
        import ctypes  # seldom needed, and slow to load

        self.name = name
        self.netlink = Netlink()
        far_end = name + "-far"
        self.netlink.add_veth(name, far_end)
        libc = ctypes.CDLL(None, use_errno=True)
        if libc.unshare(CLONE_NEWNET):
            raise OSError(ctypes.get_errno(), "no network namespace for the far end")
        self.netlink.move_to_namespace_of(far_end, os.getpid())
        Netlink().set_up(far_end)
        self._socket = socket.socket(socket.AF_PACKET, socket.SOCK_DGRAM, socket.htons(ETH_P_IP))
        self._socket.bind((far_end, ETH_P_IP))
        self._socket.setblocking(False)

    def fileno(self):
        return self._socket.fileno()

    def up(self):
        self.netlink.set_up(self.name, without_arp=True)

    def receive(self):
        packet, self._sender = self._socket.recvfrom(LARGEST_PACKET)
        return packet

    def send(self, packet):
        self._socket.sendto(packet, (self._socket.getsockname()[0], ETH_P_IP, 0, 0, self._sender[4]))

    def close(self):
        self._socket.close()
        if self.netlink.index(self.name) is not None:
            self.netlink.delete(self.name)


def make_link(name, kind=IFF_TUN):
    """An interface of that name, by whatever this machine allows."""
    try:
        return TunLink(name, kind)
    except OSError as error:
        if error.errno not in NO_TUN:
            raise
        return VethLink(name)


def echo(link, answers=1):
    """Answers every packet that waits at the link, each as often as told."""
    while True:
        try:
            packet = link.receive()
        except BlockingIOError:
            return
        except OSError:  # the interface is down
            return
        reply = answer_to(packet)
        for _ in range(answers if reply else 0):
            try:
                link.send(reply)
            except OSError:
                return


def serve(link, seconds, answers=1):
    """Is the far end for that long, or until a signal comes (PEP 475 does not restart poll there:
    the caller's handler raises). None waits without end."""
    poll = select.poll()
    if link is not None:
        poll.register(link.fileno(), select.POLLIN)
    for descriptor, event in poll.poll(None if seconds is None else max(0, seconds * 1000)):
        if event & select.POLLIN:
            echo(link, answers)

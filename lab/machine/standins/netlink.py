# SPDX-License-Identifier: MIT
"""Interfaces, addresses and routes, set through rtnetlink without running a program."""
import fcntl
import os
import socket
import struct

NEWLINK, DELLINK, NEWADDR, NEWROUTE = 16, 17, 20, 24
REQUEST, ACK, CREATE, EXCL = 0x1, 0x4, 0x400, 0x200
IFLA_ADDRESS, IFLA_IFNAME, IFLA_LINKINFO, IFLA_NET_NS_PID = 1, 3, 18, 19
IFLA_INFO_KIND, IFLA_INFO_DATA, VETH_INFO_PEER = 1, 2, 1
IFA_ADDRESS, IFA_LOCAL, RTA_OIF = 1, 2, 4
IFF_UP, IFF_NOARP = 0x1, 0x80
NETLINK_ROUTE = 0
SIOCGIFINDEX = 0x8933


def attribute(kind, payload):
    """One netlink attribute, padded to four bytes."""
    length = 4 + len(payload)
    return struct.pack("HH", length, kind) + payload + b"\0" * (-length % 4)


def name_attribute(kind, name):
    return attribute(kind, name.encode() + b"\0")


class Netlink:
    """Speaks to the network namespace in which it was made, wherever its owner goes later."""

    def __init__(self):
        self._socket = socket.socket(socket.AF_NETLINK, socket.SOCK_RAW, NETLINK_ROUTE)
        self._socket.bind((0, 0))
        self._plain = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)

    def index(self, interface):
        """The index of an interface, or None when there is none of that name."""
        request = struct.pack("16si12x", interface.encode(), 0)
        try:
            return struct.unpack("16si12x", fcntl.ioctl(self._plain, SIOCGIFINDEX, request))[1]
        except OSError:
            return None

    def _ask(self, kind, flags, payload):
        head = struct.pack("IHHII", 16 + len(payload), kind, REQUEST | ACK | flags, 1, 0)
        self._socket.send(head + payload)
        answer = self._socket.recv(65536)
        error = -struct.unpack_from("i", answer, 16)[0]
        if error:
            raise OSError(error, os.strerror(error))

    def _link_message(self, index=0, flags=0, change=0):
        return struct.pack("BxHiII", 0, 0, index, flags, change)

    def set_up(self, interface, without_arp=False):
        flags = IFF_UP | (IFF_NOARP if without_arp else 0)
        self._ask(NEWLINK, 0, self._link_message(self.index(interface), flags, flags))

    def delete(self, interface):
        self._ask(DELLINK, 0, self._link_message(self.index(interface)))

    def add_veth(self, interface, far_end):
        """A pair of interfaces: what goes into one comes out of the other."""
        peer = attribute(VETH_INFO_PEER,
                         self._link_message() + name_attribute(IFLA_IFNAME, far_end))
        info = name_attribute(IFLA_INFO_KIND, "veth") + attribute(IFLA_INFO_DATA, peer)
        self._ask(NEWLINK, CREATE | EXCL, self._link_message()
                  + name_attribute(IFLA_IFNAME, interface) + attribute(IFLA_LINKINFO, info))

    def move_to_namespace_of(self, interface, pid):
        self._ask(NEWLINK, 0, self._link_message(self.index(interface))
                  + attribute(IFLA_NET_NS_PID, struct.pack("I", pid)))

    def add_address(self, interface, local, peer=None, prefix=32):
        body = struct.pack("BBBBi", socket.AF_INET, prefix, 0, 0, self.index(interface))
        body += attribute(IFA_LOCAL, socket.inet_aton(local))
        body += attribute(IFA_ADDRESS, socket.inet_aton(peer or local))
        self._ask(NEWADDR, CREATE | EXCL, body)

    def add_default_route(self, interface):
        table_main, protocol_boot, scope_link, unicast = 254, 3, 253, 1
        body = struct.pack("BBBBBBBBI", socket.AF_INET, 0, 0, 0, table_main, protocol_boot,
                           scope_link, unicast, 0)
        body += attribute(RTA_OIF, struct.pack("i", self.index(interface)))
        self._ask(NEWROUTE, CREATE | EXCL, body)

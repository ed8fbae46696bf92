#!/usr/bin/python3 -IS
# SPDX-License-Identifier: MIT
"""The far end of a link that asks the real pppd to authenticate, and tells which account it uses.

Called as: ppp_peer.py PRELOADED PROTOCOL PASSWORD...; PROTOCOL is pap or chap, the passwords are
those to be told apart. Prints login and password as a list in JSON after what pppd itself says."""
import hashlib
import json
import os
import socket
import subprocess
import struct
import sys

LCP, PAP, CHAP = 0xC021, 0xC023, 0xC223
REQUEST, ACK = 1, 2
AUTHENTICATE_BY = {"pap": b"\x03\x04\xc0\x23", "chap": b"\x03\x05\xc2\x23\x05"}  # LCP options
CHALLENGE = bytes(range(16))
PATIENCE = 20


class Peer:
    def __init__(self, channel, protocol):
        self.channel, self.protocol = channel, protocol

    def send(self, protocol, code, number, data):
        self.channel.send(struct.pack("!HBBH", protocol, code, number, 4 + len(data)) + data)

    def receive(self):
        packet = self.channel.recv(2000)
        protocol, code, number, length = struct.unpack_from("!HBBH", packet)
        return protocol, code, number, packet[6:2 + length]

    def answer_of_pppd(self):
        """Brings the link to where pppd authenticates itself; the number and data of its packet."""
        self.send(LCP, REQUEST, 1, AUTHENTICATE_BY[self.protocol])
        agreed = asked = False
        while True:
            protocol, code, number, data = self.receive()
            if protocol == LCP and code == REQUEST:
                self.send(LCP, ACK, number, data)
                agreed = True
            elif protocol == LCP and code == ACK:
                asked = True
            elif protocol in (PAP, CHAP):
                return number, data
            if agreed and asked and self.protocol == "chap":
                self.send(CHAP, 1, 7, bytes([len(CHALLENGE)]) + CHALLENGE + b"provider")
                asked = False


def account_in(protocol, number, data, candidates):
    """PAP sends login and password themselves, CHAP the login and a digest of the password."""
    first, rest = data[1:1 + data[0]], data[1 + data[0]:]
    if protocol == "pap":
        return first.decode(), rest[1:1 + rest[0]].decode()
    for candidate in candidates:
        secret = bytes([number]) + candidate.encode() + CHALLENGE
        if hashlib.md5(secret).digest() == first:
            return rest.decode(), candidate
    return rest.decode(), None


def main(preloaded, protocol, *candidates):
    ours, theirs = socket.socketpair(socket.AF_UNIX, socket.SOCK_SEQPACKET)
    ours.settimeout(PATIENCE)
    master, slave = os.openpty()
    environment = dict(os.environ, LD_PRELOAD=preloaded, NORVIX_PPP_CHANNEL=str(theirs.fileno()))
    pppd = subprocess.Popen(["/usr/sbin/pppd", os.ttyname(slave), "call", "norvix", "nodetach",
                             "local", "remotename", "provider", "debug"],
                            env=environment, pass_fds=[theirs.fileno()], stdin=subprocess.DEVNULL)
    try:
        number, data = Peer(ours, protocol).answer_of_pppd()
        print(json.dumps(account_in(protocol, number, data, candidates)), flush=True)
    finally:
        pppd.kill()
        pppd.wait()
        os.close(master)


main(*sys.argv[1:])

#!/usr/bin/python3 -IS
# SPDX-License-Identifier: MIT
"""A name server for one address: answers every question for an IPv4 address with 198.51.100.7.

Called as: fake_name_server.py ADDRESS. Prints "ready", then the name of each question."""
import socket
import struct
import sys

ANSWER = socket.inet_aton("198.51.100.7")


def question_of(packet):
    """The asked name, the type, and where the question ends."""
    labels, position = [], 12
    while packet[position]:
        length = packet[position]
        labels.append(packet[position + 1:position + 1 + length].decode("ascii"))
        position += 1 + length
    kind, _ = struct.unpack_from("!HH", packet, position + 1)
    return ".".join(labels), kind, position + 5


def answer_to(packet):
    name, kind, end = question_of(packet)
    answers = 1 if kind == 1 else 0
    reply = packet[:2] + struct.pack("!HHHHH", 0x8180, 1, answers, 0, 0) + packet[12:end]
    if answers:
        reply += struct.pack("!HHHIH", 0xC00C, 1, 1, 60, 4) + ANSWER
    return name, reply


def main(address):
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as server:
        server.bind((address, 53))
        print("ready", flush=True)
        while True:
            packet, client = server.recvfrom(1500)
            name, reply = answer_to(packet)
            print(name, flush=True)
            server.sendto(reply, client)


main(sys.argv[1])

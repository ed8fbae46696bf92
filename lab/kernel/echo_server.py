# SPDX-License-Identifier: MIT
"""Sends back what it gets. Usage: echo_server.py PORT [DEVICE]; a device ties it to a VRF."""

import socket
import sys
import threading


def answer(connection):
    with connection:
        while data := connection.recv(65536):
            connection.sendall(data)


def main(port, device=None):
    listener = socket.socket()
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    if device:
        listener.setsockopt(socket.SOL_SOCKET, socket.SO_BINDTODEVICE, device.encode())
    listener.bind(("", int(port)))
    listener.listen()
    while True:
        threading.Thread(target=answer, args=(listener.accept()[0],), daemon=True).start()


if __name__ == "__main__":
    main(*sys.argv[1:])

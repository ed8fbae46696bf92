# SPDX-License-Identifier: MIT
"""Runs a program on a terminal: on_terminal.py PLAN PROGRAM [ARGUMENT]... PLAN is a JSON object with
rows, columns and dialogue, a list of [text to wait for, keys to type]. Prints what the terminal got
and ends with the program's status."""
import fcntl
import json
import os
import pty
import struct
import sys
import termios

plan = json.loads(sys.argv[1])
pid, terminal = pty.fork()
if pid == 0:
    fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", plan["rows"], plan["columns"], 0, 0))
    os.execv(sys.argv[2], sys.argv[2:])
dialogue = plan["dialogue"]
seen = b""
while True:
    try:
        part = os.read(terminal, 65536)
    except OSError:  # the far side is closed
        break
    if not part:
        break
    os.write(1, part)
    seen += part
    while dialogue and dialogue[0][0].encode() in seen:
        text, keys = dialogue.pop(0)
        seen = seen.split(text.encode(), 1)[1]
        os.write(terminal, keys.encode())
status = os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1])
sys.exit(status if status >= 0 else 128 - status)

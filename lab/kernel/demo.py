# SPDX-License-Identifier: MIT
"""The demonstration on the real kernel: boots a guest and shows what its inside tells."""

import os
import pathlib
import signal
import sys
import tempfile
import threading

from . import guest, story

SECONDS = 420
LOOK_SECONDS = 0.2


def follow(path, ended):
    """Shows a file as it grows, until `ended` is set and all of it is shown."""
    shown = 0
    while True:
        last_look = ended.wait(LOOK_SECONDS)
        text = path.read_bytes() if path.exists() else b""
        sys.stdout.buffer.write(text[shown:])
        sys.stdout.flush()
        shown = len(text)
        if last_look:
            return


def main(arguments):
    """Returns the exit status."""
    story.parser().parse_args(arguments)  # errors are told before anything takes time
    if os.geteuid() != 0:
        print("demo: the guest needs root, to show the host's files to it.", file=sys.stderr)
        return 1
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    print("Preparing the guest...", flush=True)
    with tempfile.TemporaryDirectory(prefix="norvix-demo-") as folder:
        results = pathlib.Path(folder)
        ended = threading.Event()
        shower = threading.Thread(target=follow, args=(results / "output", ended))
        shower.start()
        try:
            return guest.run(["env", "-C", str(story.system.REPOSITORY), "/usr/bin/python3", "-B",
                              "-m", "lab.kernel.story", *arguments], results, SECONDS)
        except guest.GuestFailed as problem:
            print(f"demo: the guest failed\n{problem}", file=sys.stderr)
            return 1
        except KeyboardInterrupt:
            return 130
        finally:
            ended.set()
            shower.join()


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

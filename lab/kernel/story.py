# SPDX-License-Identifier: MIT
"""The demonstration's inside: runs in the guest and tells what happens, as it happens."""

import argparse
import pathlib
import sys
import time

from ..machine.bus_client import INTERFACE
from ..machine.demo import Failed, Teller
from ..machine.modem_families import FAMILIES_OF_THE_KERNEL
from ..machine.signal_text import state, text_of
from . import chain as world
from . import system
from .modems.line import TRAINING

UNTIL_RESULT, UNTIL_ENDED = 150, 30


def parser():
    """The options, which the outside understands too."""
    options = argparse.ArgumentParser(prog="demo --real-kernel")
    options.add_argument("--modem", choices=FAMILIES_OF_THE_KERNEL, default="cxacru")
    options.add_argument("--protocol", choices=("pppoe", "pppoa"), default="pppoe")
    options.add_argument("--seconds", type=int, default=8)
    options.add_argument("--no-install", action="store_true")  # the front has seen to it
    return options


class Story:
    """One connection from a new modem to the end."""

    def __init__(self, options):
        self.options = options
        self.protocol = {"pppoe": "PPPoE", "pppoa": "PPPoA"}[options.protocol]
        self.tell = Teller().tell
        self._position = 0
        self._log_told = 0

    def run(self):
        guest = system.Guest("/results")
        guest.start()
        self.tell("lab", "guest", "Linux " + system.run("uname", "-r").stdout.strip()
                  + ", udev, system bus, norvix-hald")
        self.chain = world.Chain(guest, world.Chain.make_far_end(), pathlib.Path("/results"))
        self.chain.line.training = TRAINING
        self.chain.configure_line(self.protocol)
        self.chain.write_account(self.protocol)
        self.chain.start_provider(self.protocol)
        self.tell("lab", "exchange and provider",
                  f"{self.protocol}, circuit {world.VPI}.{world.VCI}")
        self.client = self.chain.start_daemon()
        self.tell("lab", "norvix-daemon", "answers on the system bus")
        self.connect()
        self.stay()
        self.disconnect()
        self.chain.unplug()
        self.tell("lab", "modem", "unplugged")
        self.until("modemUnplugged", UNTIL_ENDED)
        self.tell("result", "connected and disconnected")

    def connect(self):
        self.tell("lab", "modem", f"plugged in: {world.NAMES[self.options.modem]}")
        self.chain.plug(self.options.modem)
        self.until("newModemPlugged", UNTIL_RESULT)
        self.call("useNewModem")
        self.call("establishConnection")
        self.until("connectionEstablished", UNTIL_RESULT)

    def stay(self):
        end = time.monotonic() + self.options.seconds
        while time.monotonic() < end:
            world.exchange_traffic(20_000)
            self.tell_for(1)

    def disconnect(self):
        self.call("terminateConnection")
        self.until("connectionTerminated", UNTIL_ENDED)
        number = self.call("getConnectionState")
        self.tell("lab", "answer", state(number))
        if number != 2:
            raise Failed("the link should be down, but is " + state(number))

    def call(self, method):
        self.tell("call", method)
        return self.client.call(method)

    def until(self, name, seconds):
        """Tells everything up to and with the next signal of that name."""
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline:
            if any(signal.name == name for signal in self.tell_news()):
                return
            time.sleep(0.05)
        raise Failed(f"{name} was expected and did not come within {seconds} s")

    def tell_for(self, seconds):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.tell_news()
            time.sleep(0.05)

    def tell_news(self):
        """Tells what the kernel and the daemon have said since; returns the daemon's signals."""
        lines = system.kernel_log().splitlines()
        for line in lines[self._log_told:]:
            if "vhci" not in line and not line.startswith("lab:"):
                self.tell("line", line)
        self._log_told = len(lines)
        news = [signal for signal in self.client.signals[self._position:]]
        self._position += len(news)
        news = [signal for signal in news if signal.interface == INTERFACE]
        for signal in news:
            self.tell("signal", signal.name, text_of(signal), signal.time)
        return news


def main():
    try:
        Story(parser().parse_args()).run()
    except (Failed, AssertionError) as problem:
        print("demo: " + str(problem), flush=True)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())

# SPDX-License-Identifier: MIT
"""The demonstration: a new modem's first connection in a private machine, told as it happens."""
import argparse
import itertools
import os
import signal
import sys
import time
from pathlib import Path

from . import companion
from .bus_client import INTERFACE
from .companion import HalCompanion
from .modem_families import FAMILIES, TRAINED_AFTER, identity, up_line
from .private_machine import PrivateMachine
from .signal_text import size, state, text_of
from .simulated_usb import SimulatedUsb
from ..waiting import wait_until

HELP = Path(__file__).with_name("demo-help.txt")
UPLOAD_RATES = (20_000, 45_000, 33_000, 60_000)  # bytes per second, in turn
DOWNLOAD_PER_UPLOAD = 8
# Deadlines in seconds. The daemon itself gives up after 35 s without a line; pppd follows.
UNTIL_RESULT, UNTIL_ENDED = 60, 15
TICK_DEADLINE = 5  # the daemon reports once a second
SUCCESS, FAILED, INTERRUPTED = 0, 1, 130
UNTIL_NOTICED = 30  # a modem is announced five seconds after its last sign of life
FIRMWARE_SECONDS = 1
PORT = "1-1"


class Failed(Exception):
    """The demonstration did not show what it was asked to show."""


class Interrupted(Exception):
    """Somebody wants it to end before its time."""


class Interrupts:
    """Turns the signals that end a program into an exception, at moments when that is safe."""

    def __init__(self):
        self._came = self._safe = False
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            signal.signal(number, self._handle)

    def _handle(self, *_):
        self._came = True
        if self._safe:
            self._safe = False
            raise Interrupted

    def __enter__(self):
        self._safe = True
        if self._came:
            self._safe = False
            raise Interrupted

    def __exit__(self, *_):
        self._safe = False

    def check(self):
        """Raises for a signal whose exception got lost: one that is raised while the interpreter
        clears an object away is only reported."""
        if self._came:
            raise Interrupted


class Teller:
    """Prints what happens, with the time since the start; coloured on a terminal."""

    COLOURS = {"call": "1;36", "signal": "1", "line": "35", "daemon": "2", "lab": "2", "result": "1;32"}

    def __init__(self):
        self._start = time.monotonic()
        self._colour = sys.stdout.isatty() and not os.environ.get("NO_COLOR")

    def tell(self, kind, name, text="", moment=None):
        seconds = (moment or time.monotonic()) - self._start
        head = "%5.1f s  %-6s  " % (seconds, kind)
        name = "%-22s  " % name if text else name
        if self._colour:
            name = "\033[%sm%s\033[0m" % (self.COLOURS[kind], name)
        print(head + name + text, flush=True)


def parse(arguments):
    parser = argparse.ArgumentParser(prog="demo", add_help=False, allow_abbrev=False)
    parser.add_argument("--modem", choices=tuple(FAMILIES), default="cxacru")
    parser.add_argument("--protocol", choices=("pppoe", "pppoa"), default="pppoe")
    parser.add_argument("--line", choices=("up", "trains", "never"), default="up")
    provider = parser.add_mutually_exclusive_group()
    provider.add_argument("--wrong-password", action="store_true")
    provider.add_argument("--no-concentrator", action="store_true")
    parser.add_argument("--seconds", type=int, default=8)
    parser.add_argument("--verbose", action="store_true")
    parser.add_argument("--no-install", action="store_true")  # the front has seen to it
    parser.add_argument("-h", "--help", action="store_true")
    options = parser.parse_args(arguments)
    if options.seconds < 1:
        parser.error("--seconds: at least 1")
    if options.modem == "unicorn" and options.protocol == "pppoa":
        parser.error("the unicorn modem has an Ethernet interface of its own: no --protocol pppoa")
    return options


class Demo:
    """One run in a machine that is up."""

    def __init__(self, options, machine, teller, interrupts):
        self.options, self.machine, self.tell = options, machine, teller.tell
        self.check = interrupts.check
        self.modem = FAMILIES[options.modem]
        self.is_unicorn = options.modem == "unicorn"
        self.rates = itertools.cycle(UPLOAD_RATES)
        self.position = 0  # of the next signal to be told
        self.output_told = 0
        self.training = []
        self.totals = (0, 0)
        self.moved = False

    def run(self):
        self.prepare()
        self.start()
        self.plug_modem()
        expected = self.expected_result()
        self.begin_training()
        self.call("establishConnection")
        self.tell_until(expected, UNTIL_RESULT)
        if expected == "connectionEstablished":
            self.stay_connected()
            self.unplug_modem()
            self.tell("result", "connected and unplugged",
                      "%s received, %s sent" % tuple(map(size, self.totals)))
        else:
            self.tell_until("connectionState", UNTIL_ENDED)
            self.tell("result", "not connected", "as it was asked for")

    def prepare(self):
        """What an administrator has set, and the provider behind the line. No modem is known."""
        protocol = "PPPoE" if self.options.protocol == "pppoe" else "PPPoA"
        self.machine.settings(protocol=protocol, vpi=8, vci=35)
        self.machine.pppd.play(**self.provider())
        self.machine.kernel_log.append("usb usb1: Product: EHCI Host Controller")
        companion.prepare(self.machine)
        self.tell("lab", "private machine", "own processes, network, files, system bus")

    def provider(self):
        """The recording that pppd plays, at about its own pace."""
        atm = self.options.protocol == "pppoa"
        if self.options.wrong_password:
            play = {"recording": "i2-pppoa-wrong-password" if atm else "c1-chap-wrong-password"}
        elif self.options.no_concentrator:
            play = {"recording": "j6-pppoa-no-answer" if atm else "d1-no-concentrator", "speed": 6}
        else:
            play = {"recording": "i1-pppoa-success" if atm else "h1-pppoe-over-real-nas0",
                    "mode": "updetach", "answers": DOWNLOAD_PER_UPLOAD}
        device = "dsl0" if self.is_unicorn else None
        return {"speed": 1.5, "device": device, **play}

    def expected_result(self):
        if self.options.line == "never":
            return "synchronizationFailed"
        if self.options.wrong_password:
            return "invalidAccountData"
        if self.options.no_concentrator:
            # PPP over ATM has no discovery that could time out: pppd just ends.
            return "setEnabledConnect" if self.options.protocol == "pppoa" else "connectionTimeout"
        return "connectionEstablished"

    def start(self):
        self.machine.start_bus(policies=[companion.POLICY])
        self.usb = SimulatedUsb(self.machine)
        self.companion = HalCompanion(self.machine, self.usb).process
        self.tell("lab", "norvix-hald", "tells what is plugged in")
        self.daemon = self.machine.start_daemon(*(["--debug"] if self.options.verbose else []))
        # The last line of its start: from now on it hears of modems.
        self.daemon.wait_for_log("debugHandler: i: ")
        self.tell("lab", "norvix-daemon", "answers on the system bus")
        self.client = self.machine.client()
        self.position = len(self.client.signals)

    def plug_modem(self):
        """Plugs the modem in, lets its driver give it its firmware, and takes it into use."""
        modem = self.modem
        first = modem.product_before or modem.product
        self.tell("lab", "modem", "plugged in: " + identity(modem.vendor, first))
        self.path = self.usb.plug(PORT, modem.vendor, first, serial=modem.serial,
                                  interfaces=modem.interfaces)
        if modem.product_before:
            self.tell_for(FIRMWARE_SECONDS)
            self.re_enumerate()
        if self.is_unicorn:
            self.machine.run(["ip", "link", "add", "dsl0", "type", "veth", "peer", "dsl0-far"])
        if self.options.line == "up":
            self.machine.kernel_log.append(up_line(modem))
            self.tell("line", up_line(modem))
        self.tell_until("newModemPlugged", UNTIL_NOTICED)
        self.call("useNewModem")
        self.tell_until("modemPlugged", UNTIL_RESULT)

    def re_enumerate(self):
        """With its firmware the modem leaves the bus and comes back under another number."""
        modem = self.modem
        goes = self.usb.remove_requests(self.path)
        self.usb.many(goes, self.usb.add_requests(PORT, modem.vendor, modem.product,
                                                  serial=modem.serial, interfaces=modem.interfaces))
        self.tell("lab", "modem",
                  "has its firmware and is back as " + identity(modem.vendor, modem.product))

    def begin_training(self):
        if self.options.line == "trains":
            now = time.monotonic()
            self.training = [(now + after, line) for after, line in self.modem.training]
            self.training.append((now + TRAINED_AFTER, up_line(self.modem)))

    def call(self, method):
        self.tell("call", method)
        return self.client.call(method)

    def tell_until(self, name, timeout):
        """Tells every signal up to and with the next one of that name (that does not say no)."""
        deadline = time.monotonic() + timeout
        while time.monotonic() < deadline:
            came = self.tell_next(min(0.1, deadline - time.monotonic()))
            if came and came.name == name and came.args != (False,):
                return came
        raise Failed("%s was expected and did not come within %d s" % (name, timeout))

    def tell_next(self, timeout):
        """Tells one signal, if one comes in time, and what else has happened meanwhile."""
        self.check()
        self.go_on_training()
        came = self.client.signal_at(self.position, max(0, timeout))
        self.tell_daemon_output()
        if not came:
            if not self.daemon.running():
                raise Failed("the daemon has ended by itself")
            if self.companion.ended():
                raise Failed("norvix-hald has ended by itself")
            return None
        self.position += 1
        if came.interface != INTERFACE:
            return None
        self.watch_figures(came)
        self.tell("signal", came.name, text_of(came), came.time)
        return came

    def watch_figures(self, came):
        if came.name == "transmissionBytes":
            self.totals = tuple(map(int, came.args))
        elif came.name == "transmissionSpeed" and min(came.args) > 0:
            self.moved = True

    def go_on_training(self):
        """Lets the driver say what the line does, when its time has come."""
        while self.training and self.training[0][0] <= time.monotonic():
            _, line = self.training.pop(0)
            self.machine.kernel_log.append(line)
            self.tell("line", line)

    def tell_for(self, seconds):
        """Tells everything that happens in that time."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.tell_next(min(0.1, end - time.monotonic()))

    def tell_daemon_output(self):
        if not self.options.verbose:
            return
        output = self.daemon.output()
        end = output.rfind("\n") + 1
        for line in output[self.output_told:end].splitlines():
            self.tell("daemon", line)
        self.output_told = max(self.output_told, end)

    def stay_connected(self):
        """Sends traffic, more or less of it, while the daemon reports once a second."""
        end = time.monotonic() + self.options.seconds
        traffic = None
        while time.monotonic() < end:
            if not traffic or traffic.ended():
                traffic = self.machine.traffic(next(self.rates), 1)
            self.tell_next(min(0.1, end - time.monotonic()))
        if not self.moved and self.options.seconds > TICK_DEADLINE:
            raise Failed("the daemon has reported no traffic")

    def unplug_modem(self):
        self.tell("lab", "modem", "unplugged")
        self.usb.unplug(self.path)
        expected = {"connectionTerminated", "modemUnplugged"}
        deadline = time.monotonic() + UNTIL_ENDED
        while expected and time.monotonic() < deadline:
            came = self.tell_next(0.1)
            expected.discard(came.name if came else None)
        if expected:
            raise Failed("expected and did not come: " + ", ".join(sorted(expected)))
        # A killed pppd takes its interface along when it comes to die.
        wait_until(lambda: self.client.call("getConnectionState") != 0 or time.monotonic() > deadline,
                   what="the interface is gone")
        number = self.call("getConnectionState")
        self.tell("lab", "answer", state(number))
        if number != 2:
            raise Failed("the link should be down, but is %s" % state(number))


def main(arguments):
    """Returns the exit status."""
    options = parse(arguments)
    if options.help:
        print(HELP.read_text(encoding="ascii"), end="")
        return SUCCESS
    interrupts = Interrupts()
    try:
        with PrivateMachine() as machine, interrupts:
            try:
                Demo(options, machine, Teller(), interrupts).run()
            except Failed:
                print("The daemon's log ends:\n" + machine.daemon_log()[-2000:], file=sys.stderr)
                raise
        return SUCCESS
    except Interrupted:
        print("\nInterrupted; everything has been taken down.", flush=True)
        return INTERRUPTED
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), 1)  # nobody reads; nothing is left to flush
        return FAILED
    except (Failed, OSError, RuntimeError, AssertionError) as problem:
        print("demo: %s" % problem, file=sys.stderr)
        return FAILED


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

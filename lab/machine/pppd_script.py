# SPDX-License-Identifier: MIT
"""What the pppd stand-in is to play: recordings with their times, or steps written by a test."""
import json
import os
import re
from pathlib import Path

RECORDINGS = Path(__file__).resolve().parents[2] / "tests" / "data" / "pppd"
TIMED_LINE = re.compile(r"\s*([\d.]+) ([OE#]) ?(.*)$")
ENDED = re.compile(r"child \d+ ended with status (-?\d+)")
TERMINATED_STATUS = 5  # pppd's exit status after SIGTERM


def out(text, after=0.0, repeat=1):
    """A step: bytes (or text) to standard output, the line end included by the caller. Real pppd
    writes into the stream what it gets from the far end, so these may be any bytes."""
    return {"text": _latin1(text), "to": "O", "after": after, "repeat": repeat}


def err(text, after=0.0, repeat=1):
    """A step: the same to standard error."""
    return {"text": _latin1(text), "to": "E", "after": after, "repeat": repeat}


def wait_for(trigger):
    """A step: waits until the test pulls that trigger."""
    return {"await": trigger}


def discover(trigger, asks=(0, 5, 15), patience=35):
    """A step: looks for a concentrator as the real one does, which asks at these seconds and gives up
    in the end. It is there from when the test pulls the trigger."""
    return {"discover": trigger, "asks": asks, "patience": patience}


def stay():
    """A step: does nothing more until a signal ends it; the far end goes on answering."""
    return {"stay": True}


def end(status, after=0.0):
    """A step: ends with that exit status."""
    return {"exit": status, "after": after}


def link_up(local="10.64.0.100", remote="10.64.0.1", device="nas0"):
    """Steps: what matters of a connection coming up, without waiting."""
    return [out("Using interface ppp0\n"), out("Connect: ppp0 <--> %s\n" % device),
            out("local  IP address %s\n" % local), out("remote IP address %s\n" % remote)]


def _latin1(text):
    return (text if isinstance(text, bytes) else text.encode()).decode("latin-1")


def recorded(name, speed=1.0, device=None):
    """The steps of a recording and those that follow SIGTERM, its times divided by speed. Where the
    one who recorded ended pppd or nobody did, the played one stays until it is told to end. device
    takes the place of nas0."""
    text = (RECORDINGS / (name + ".txt.timed")).read_bytes().decode("latin-1")
    if device:
        text = text.replace("nas0", device)
    steps, last, told_to_end = [], 0.0, None
    for line in text.split("\n"):
        match = TIMED_LINE.match(line)
        if not match:
            continue
        time, stream, content = float(match[1]), match[2], match[3]
        if stream == "#":
            ended = ENDED.match(content)
            if ended:
                steps.append(end(int(ended[1]), (time - last) / speed))
            continue
        if content.startswith("Terminating on signal") and told_to_end is None:
            steps.append(stay())
            told_to_end = len(steps)
            last = time
        step = out if stream == "O" else err
        steps.append(step(content.encode("latin-1") + b"\n", (time - last) / speed))
        last = time
    if told_to_end is not None:
        return steps[:told_to_end], steps[told_to_end:]
    if "exit" not in steps[-1] or steps[-1]["exit"] < 0:  # was killed, or ran on
        return [step for step in steps if "exit" not in step] + [stay()], AFTER_SIGNAL
    return steps, AFTER_SIGNAL


AFTER_SIGNAL = [out("Terminating on signal 15\n"), out("Connection terminated.\n"),
                end(TERMINATED_STATUS)]


class Pppd:
    """The script of the pppd stand-in in one machine. The next pppd that starts plays it."""

    def __init__(self, folder):
        self._plan = folder / "pppd.json"
        self._triggers = folder / "triggers"

    def play(self, recording="h1-pppoe-over-real-nas0", speed=20.0, mode="nodetach", answers=1,
             device=None):
        """A recording of tests/data/pppd, played that much faster. mode: "nodetach" stays a child;
        "updetach" detaches once the link has its address; "bare" detaches after the first line.
        answers: how many packets the far end sends for each that it gets. device: what stands in
        place of nas0 in the recorded text."""
        steps, after_signal = recorded(recording, speed, device)
        self.script(steps, after_signal, mode, answers)

    def script(self, steps, after_signal=None, mode="nodetach", answers=1):
        """A list of steps (out, err, wait_for, stay, end, link_up) instead."""
        plan = {"steps": steps, "after_signal": after_signal or AFTER_SIGNAL, "mode": mode,
                "answers": answers}
        fresh = self._plan.with_suffix(".new")
        fresh.write_text(json.dumps(plan), encoding="ascii")
        os.replace(fresh, self._plan)

    def trigger(self, name):
        """Lets the wait_for steps of that name go on."""
        (self._triggers / name).touch()


class PlayedProvider:
    """What becomes of attempts to connect, and of the link that one of them has brought."""

    def __init__(self, pppd):
        self._pppd = pppd
        self._links = 0
        self.answer()

    def answer(self):
        """The next attempts come up; hang_up ends the link that the last one of them brought."""
        self._links += 1
        self._pppd.script(
            link_up() + [wait_for("hang-up-%d" % self._links), out("LCP terminated by peer\n"),
                         out("Connection terminated.\n"), end(16)], mode="updetach")

    def hang_up(self):
        """The link ends; the next attempt comes up again."""
        ending = self._links
        self.answer()
        self._pppd.trigger("hang-up-%d" % ending)

    def refuse(self):
        """The next attempts are refused for their account."""
        self._pppd.play("c1-chap-wrong-password", speed=50)

    def be_silent(self):
        """Nobody answers the next attempts."""
        self._pppd.script([out("Plugin pppoe.so loaded.\n"), out("Timeout waiting for PADO packets\n"),
                           out("Unable to complete PPPoE Discovery\n"), end(24)])

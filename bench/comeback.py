# SPDX-License-Identifier: MIT
"""How long until a link is back after the provider's return: norvix-keeper beside pppd's own persist."""
import random
import statistics
import sys
import time
from pathlib import Path

from lab.machine.keeper_service import Keeper
from lab.machine.pppd_script import discover, link_up, out, end, wait_for
from lab.machine.private_machine import PrivateMachine
from lab.waiting import wait_until

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests/system"))

from keeper_world import World  # noqa: E402

ASKS, PATIENCE, HOLD_OFF = (0, 5, 15), 35, 1
# A whole period of the keeper's attempts and more, so that the provider returns at any moment of one.
AWAY = (15, 60)
BACK_SECONDS = 120
# A link that has lasted, as in life, is tried for at once; here none has.
SETTINGS = "pause_hung_up = 0\n"


def persisting(returned):
    """When pppd with persist and that hold-off gets an answer, in seconds since the loss: it begins
    anew after the hold-off, asks, and gives up."""
    begin = HOLD_OFF
    while True:
        for at in ASKS:
            if begin + at >= returned:
                return begin + at
        begin += PATIENCE + HOLD_OFF


def script(world, number):
    """The next links: each waits for its concentrator, comes up and is hung up when the test says so."""
    world.machine.pppd.script(
        [out("Plugin pppoe.so loaded.\n"), discover("there-%d" % number, ASKS, PATIENCE), *link_up(),
         wait_for("gone-%d" % number), out("LCP terminated by peer\n"),
         out("Connection terminated.\n"), end(16)], mode="updetach")


def measure(moments):
    """Pairs of seconds from the provider's return to the link: the keeper's, and pppd's alone."""
    with PrivateMachine() as machine:
        world = World(machine, SETTINGS, protocol="PPPoE")
        script(world, 0)
        machine.pppd.trigger("there-0")
        world.keeper = Keeper(machine)
        world.connect()
        for number in range(moments):
            script(world, number + 1)
            machine.pppd.trigger("gone-%d" % number)
            lost = time.monotonic()
            wait_until(lambda: not world.links(), what="the link is gone")
            returned = random.uniform(*AWAY)
            time.sleep(lost + returned - time.monotonic())
            machine.pppd.trigger("there-%d" % (number + 1))
            wait_until(world.links, BACK_SECONDS, "the link is back")
            pair = time.monotonic() - lost - returned, persisting(returned) - returned
            print("away %4.1f s: %4.1f s, %4.1f s" % (returned, *pair), file=sys.stderr, flush=True)
            world.keeper.wait_for(State="connected")
            yield pair


def print_table(quick):
    pairs = list(measure(3 if quick else 20))
    print("seconds from the provider's return to the link, %d random moments" % len(pairs))
    for name, values in zip(("norvix-keeper", "pppd persist holdoff 1"), zip(*pairs)):
        print("%-24s mean %4.1f  longest %4.1f" % (name, statistics.mean(values), max(values)))
    return 0

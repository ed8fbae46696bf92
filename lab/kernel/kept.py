# SPDX-License-Identifier: MIT
"""A connection that norvix-keeper keeps, in a scenario's world."""

import json
import time

from ..waiting import wait_until
from . import chain as world
from . import system

# pppd asks for a concentrator for 35 s. An attempt that begins right before somebody answers is the worst.
BACK_SECONDS = 120
# Longer than the pause between two attempts and than what is under way needs to come up.
QUIET_SECONDS = 15


class Kept:
    """A connection that is up, and the keeper that keeps it."""

    def __init__(self, chain, protocol, settings=""):
        self.chain = chain
        self.protocol = protocol
        self.client = chain.make_ready(protocol=protocol)
        # A link that has lasted a minute is tried for at once; these have not.
        self.keeper = chain.start_keeper("pause_hung_up = 0\n" + settings)

    def connect(self):
        self.client.call("establishConnection")
        self.wait("connected", reason="")
        # The daemon takes requests again a moment later.
        self.client.wait_signal("connectionState")
        return self

    def wait(self, state, reason=None, seconds=BACK_SECONDS):
        """Until the keeper is in this state, for this reason; how long that took."""
        began = time.monotonic()
        more = {} if reason is None else {"Reason": reason}
        self.keeper.wait_for(seconds, State=state, **more)
        return time.monotonic() - began

    def wait_lost(self, *reasons, seconds=BACK_SECONDS):
        """Until so many losses were told; they must be these. How long the last one took."""
        began = time.monotonic()
        assert self.keeper.wait_losses(len(reasons), seconds) == list(reasons)
        return time.monotonic() - began

    def wait_unheard(self):
        """Until what the daemon logs is news to the next keeper; both tell whole seconds."""
        memory = json.loads((system.KEEPER_STATE / "memory.json").read_text(encoding="utf-8"))
        wait_until(lambda: time.time() >= memory["heard_until"] + 1, what="another second")

    def attempts(self):
        return self.client.names().count("establishingConnection")

    def note(self, text, *seconds):
        line = f"{self.protocol}: {text}" + "".join(f" {value:.1f} s" for value in seconds)
        print(line)
        with open(self.chain.folder / "figures", "a", encoding="utf-8") as file:
            file.write(line + "\n")

    def comes_back(self, what):
        self.note(what + ", back after", self.wait("connected", ""))
        wait_until(world.carries_traffic, 60, "traffic passes")

    def stays_quiet(self, attempts, state="idle"):
        """Nothing is tried, and no link is there."""
        self.keeper.stays(QUIET_SECONDS, lambda now: now["State"] == state)
        assert self.attempts() == attempts
        assert system.run("ip", "-o", "-4", "addr", "show", "dev", "ppp0", check=False).stdout == ""

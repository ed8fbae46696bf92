# SPDX-License-Identifier: MIT
"""The telephone line between a modem and the exchange: trains, comes up, drops, carries cells."""

import enum
import threading


class State(enum.Enum):
    DOWN = "down"
    INITIALIZING = "initializing"
    ACTIVATING = "activating"
    TRAINING = "training"
    ANALYSIS = "analysis"
    EXCHANGE = "exchange"
    UP = "up"


# Seconds in each state on the way up. A driver that polls once a second sees each of them.
TRAINING = (
    (State.INITIALIZING, 1.2), (State.ACTIVATING, 1.2), (State.TRAINING, 1.2),
    (State.ANALYSIS, 1.2), (State.EXCHANGE, 1.2),
)

DOWNSTREAM_KBIT = 8128
UPSTREAM_KBIT = 832


class Line:
    """Joins one modem to one exchange. All methods may be called from any thread.

    `comes_up` says whether training succeeds; `cut` loses every cell although both ends believe
    that the line is up.
    """

    def __init__(self, training=TRAINING):
        self.training = training
        self.comes_up = True
        self.cut = False
        self.state = State.DOWN
        self.on_change = lambda state: None
        self.to_modem = lambda cell: None
        self.to_exchange = lambda cell: None
        self.cells_up = 0
        self.cells_down = 0
        self._changed = threading.Condition()
        self._run = 0

    def start(self):
        """The modem wants the line: begins to train from the start."""
        with self._changed:
            self._run += 1
            run = self._run
            self._changed.notify_all()
        self._enter(self.training[0][0], run)
        threading.Thread(target=self._train, args=(run,), daemon=True).start()

    def drop(self):
        """The line is lost; nothing comes of itself until the modem starts it again."""
        with self._changed:
            self._run += 1
            self._changed.notify_all()
        self._enter(State.DOWN)

    def come_up(self):
        """Training that was kept from succeeding succeeds now."""
        self.comes_up = True
        self.start()

    def from_modem(self, cell):
        if self._carries():
            self.cells_up += 1
            self.to_exchange(cell)

    def from_exchange(self, cell):
        if self._carries():
            self.cells_down += 1
            self.to_modem(cell)

    def _carries(self):
        return self.state is State.UP and not self.cut

    def _train(self, run):
        for state, seconds in self.training:
            if not self._enter(state, run):
                return
            with self._changed:
                if self._changed.wait_for(lambda: self._run != run, timeout=seconds):
                    return
            if state is State.ACTIVATING and not self.comes_up:
                return
        if self.comes_up:
            self._enter(State.UP, run)

    def _enter(self, state, run=None):
        """Takes on a state, unless another training has begun meanwhile; returns whether it did."""
        with self._changed:
            if run is not None and run != self._run:
                return False
            self.state = state
        self.on_change(state)
        return True

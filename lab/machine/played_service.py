# SPDX-License-Identifier: MIT
"""A service on the bus that is played by the test's own process."""
from jeepney import MessageType

from .bus_client import Client

ALONE, RELEASED = 4, 1  # of RequestName: do not queue; of ReleaseName: it was ours


class PlayedService(Client):
    """A connection that owns NAME. Whoever derives from it answers calls in _answer(message), which runs in
    the connection's own thread and may make no calls itself."""

    NAME = ""

    @classmethod
    def start(cls, machine):
        """Connects to the machine's system bus, of whose names NAME must be one, and takes it."""
        service = machine.client(kind=cls)
        service.take_name()
        return service

    def take_name(self):
        assert self.call_bus("RequestName", "su", self.NAME, ALONE) == 1, self.NAME + " is taken"

    def leave_name(self):
        assert self.call_bus("ReleaseName", "s", self.NAME) == RELEASED

    def _take(self, message, now):
        if message.header.message_type is MessageType.method_call:
            self._answer(message)
        else:
            super()._take(message, now)

# SPDX-License-Identifier: MIT
"""The desktop's notification service: keeps what it was asked to show, and plays the person."""
from collections import namedtuple

from .bus_service import BusService
from ..waiting import PATIENCE

URGENCIES = ("low", "normal", "critical")
EXPIRED, DISMISSED, WITHDRAWN = 1, 2, 3  # why one is closed

# id: what the service calls it. replaces: the id of the one whose place it takes, or 0. actions: key to
# text. urgency: one of URGENCIES. hints: as plain values. timeout: in ms, -1 for the service's choice.
Notification = namedtuple(
    "Notification", "id replaces application icon summary body actions urgency hints timeout")


class Service(BusService):
    NAME, PATH = "org.freedesktop.Notifications", "/org/freedesktop/Notifications"
    INTERFACE = NAME

    def __init__(self, sock, uid):
        self.shown = []
        self.open = {}
        self.capabilities = ["actions", "body", "persistence"]
        super().__init__(sock, uid)

    def on_Notify(self, _sender, application, replaces, icon, summary, body, actions, hints, timeout):
        number = replaces or len(self.shown) + 1
        plain = {name: value for name, (_, value) in hints.items()}
        shown = Notification(number, replaces, application, icon, summary, body,
                             dict(zip(actions[::2], actions[1::2])),
                             URGENCIES[plain.get("urgency", 1)], plain, timeout)
        self.shown.append(shown)
        self.open[number] = shown
        return "u", (number,)

    def on_CloseNotification(self, _sender, number):
        if self.open.pop(number, None):
            self.emit("NotificationClosed", "uu", number, WITHDRAWN)
        return "", ()

    def on_GetCapabilities(self, _sender):
        return "as", (self.capabilities,)

    def on_GetServerInformation(self, _sender):
        return "ssss", ("lab", "lab", "1", "1.2")


class Notifications:
    """Is there from the start, as on nearly every desktop."""

    def __init__(self, session):
        self._session = session
        self._service = None

    def start(self):
        """Nothing happens when it is there already."""
        if not self._service:
            self._service = self._session.bus_client(Service)
            self._service.take_name()

    def stop(self):
        """The service ends, as a crash would; what it has shown is forgotten."""
        self._service.close()
        self._service = None

    def freeze(self):
        self._service.freeze()

    def thaw(self):
        self._service.thaw()

    @property
    def shown(self):
        """All that were to be shown so far, replacements too, oldest first."""
        return list(self._service.shown)

    @property
    def open(self):
        """Those that a person sees now."""
        return list(self._service.open.values())

    def wait(self, count=1, timeout=PATIENCE):
        """Waits until that many were to be shown, and returns the last of these."""
        return self._session.wait_on_bus(lambda: self.shown[count - 1:count], timeout,
                                         "%d notifications" % count, lambda: self.shown)[0]

    def press(self, notification, action="default"):
        """The person presses an action of it, which also closes it."""
        assert action in notification.actions, notification
        self._service.emit("ActionInvoked", "us", notification.id, action)
        self.close(notification)

    def close(self, notification, reason=DISMISSED):
        """The person waves it away, or it has been there long enough (EXPIRED)."""
        self._service.open.pop(notification.id, None)
        self._service.emit("NotificationClosed", "uu", notification.id, reason)

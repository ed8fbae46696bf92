# SPDX-License-Identifier: MIT
"""What the desktop says about light and dark, and about movement: the settings portal."""
from .bus_service import BusService

NAMESPACE, KEY = "org.freedesktop.appearance", "color-scheme"
WIDGETS, MOVEMENT = "org.gnome.desktop.interface", "enable-animations"
SCHEMES = {"no preference": 0, "dark": 1, "light": 2}


class Portal(BusService):
    NAME, PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
    INTERFACE = "org.freedesktop.portal.Settings"

    def __init__(self, sock, uid):
        self.scheme, self.does_move = 0, True
        super().__init__(sock, uid)

    def _value(self, key):
        return ("b", self.does_move) if key == MOVEMENT else ("u", self.scheme)

    def on_Read(self, _sender, _namespace, key):
        return "v", (("v", self._value(key)),)  # one variant too many is how it has always been

    def on_ReadOne(self, _sender, _namespace, key):
        return "v", (self._value(key),)

    def on_ReadAll(self, _sender, _namespaces):
        return "a{sa{sv}}", ({NAMESPACE: {KEY: ("u", self.scheme)}},)

    def properties(self):
        return {"version": ("u", 2)}


class Appearance:
    """There is no portal until the first set() or move()."""

    def __init__(self, session):
        self._session = session
        self._portal = None

    def set(self, scheme):
        """"dark", "light" or "no preference"; running programs are told."""
        self._change("scheme", SCHEMES[scheme], NAMESPACE, KEY, "u")

    def move(self, does_move):
        """Whether the person wants things that move; running programs are told."""
        self._change("does_move", does_move, WIDGETS, MOVEMENT, "b")

    def _change(self, name, value, namespace, key, kind):
        portal = self._portal or self._session.bus_client(Portal)
        setattr(portal, name, value)
        if not self._portal:
            self._portal = portal
            portal.take_name()
        portal.emit("SettingChanged", "ssv", namespace, key, (kind, value))

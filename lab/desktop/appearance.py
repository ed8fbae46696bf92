# SPDX-License-Identifier: MIT
"""What the desktop says about light and dark: the settings portal."""
from .bus_service import BusService

NAMESPACE, KEY = "org.freedesktop.appearance", "color-scheme"
SCHEMES = {"no preference": 0, "dark": 1, "light": 2}


class Portal(BusService):
    NAME, PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
    INTERFACE = "org.freedesktop.portal.Settings"

    def __init__(self, sock, uid):
        self.scheme = 0
        super().__init__(sock, uid)

    def on_Read(self, _sender, _namespace, _key):
        return "v", (("v", ("u", self.scheme)),)  # one variant too many is how it has always been

    def on_ReadOne(self, _sender, _namespace, _key):
        return "v", (("u", self.scheme),)

    def on_ReadAll(self, _sender, _namespaces):
        return "a{sa{sv}}", ({NAMESPACE: {KEY: ("u", self.scheme)}},)

    def properties(self):
        return {"version": ("u", 2)}


class Appearance:
    """There is no portal until the first set()."""

    def __init__(self, session):
        self._session = session
        self._portal = None

    def set(self, scheme):
        """"dark", "light" or "no preference"; running programs are told."""
        if not self._portal:
            self._portal = self._session.bus_client(Portal)
            self._portal.scheme = SCHEMES[scheme]
            self._portal.take_name()
        self._portal.scheme = SCHEMES[scheme]
        self._portal.emit("SettingChanged", "ssv", NAMESPACE, KEY, ("u", SCHEMES[scheme]))

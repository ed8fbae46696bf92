# SPDX-License-Identifier: MIT
"""A panel with a tray: keeps the items that programs register, and reads them as a panel would."""
from collections import namedtuple

from .bus_service import PROPERTIES, BusService
from ..machine.bus_client import BusError
from ..waiting import PATIENCE

ITEM, MENU = "org.kde.StatusNotifierItem", "com.canonical.dbusmenu"
USUAL_PATH = "/StatusNotifierItem"

# children: entries of a submenu. id: what the program calls it.
Entry = namedtuple("Entry", "id label enabled checked separator children")


class Watcher(BusService):
    """The service with which items register. It is host too, unless told otherwise."""

    NAME, PATH = "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher"
    INTERFACE = NAME

    def __init__(self, sock, uid):
        self.with_host = True
        self.items = []  # (bus name, path)
        super().__init__(sock, uid)

    def on_RegisterStatusNotifierItem(self, sender, service):
        item = (sender, service) if service.startswith("/") else (service, USUAL_PATH)
        if item not in self.items:
            self.items.append(item)
            self.emit("StatusNotifierItemRegistered", "s", "".join(item))
        return "", ()

    def on_RegisterStatusNotifierHost(self, _sender, _service):
        return "", ()

    def properties(self):
        return {"IsStatusNotifierHostRegistered": ("b", self.with_host), "ProtocolVersion": ("i", 0),
                "RegisteredStatusNotifierItems": ("as", ["".join(item) for item in self.items])}


class Tray:
    """Nothing is there until start()."""

    def __init__(self, session):
        self._session = session
        self._watcher = None

    def start(self, host=True):
        """The panel appears, with a place for items or without."""
        self._watcher = self._session.bus_client(Watcher)
        self._watcher.with_host = host
        self._watcher.take_name()

    def add_host(self):
        """A panel that was there without a place for items gets one."""
        self._watcher.with_host = True
        self._watcher.emit("StatusNotifierHostRegistered")

    def stop(self):
        """The panel ends, as a crash would."""
        self._watcher.close()
        self._watcher = None

    def restart(self):
        """The panel crashes and is started anew: it knows no item then."""
        self.stop()
        self.start()

    def freeze(self):
        """The panel is there and answers nothing."""
        self._watcher.freeze()

    def thaw(self):
        self._watcher.thaw()

    def items(self):
        """The items that are registered and still there, oldest first."""
        if not self._watcher:
            return []
        return [Item(self._session, *item) for item in list(self._watcher.items)
                if self._session.bus.owner_of(item[0])]

    def item(self, timeout=PATIENCE):
        """Waits for an item to be there and returns it, the newest."""
        return self._session.wait_on_bus(self.items, timeout, "an item in the tray")[-1]

    def wait_empty(self, timeout=PATIENCE):
        """Waits until there is no item any more."""
        self._session.wait_on_bus(lambda: not self.items(), timeout, "no item in the tray")


class Item:
    """One item, asked anew each time."""

    def __init__(self, session, service, path):
        self._session = session
        self._target = {"service": service, "path": path}

    def properties(self):
        """All properties, as plain values."""
        values = self._session.bus.call_raw("GetAll", "s", ITEM, interface=PROPERTIES, **self._target)
        return {name: value for name, (_, value) in values.items()}

    @property
    def status(self):
        """Active, Passive or NeedsAttention."""
        return self.properties()["Status"]

    @property
    def icon_name(self):
        """Empty when the program hands over pixels instead."""
        return self.properties()["IconName"]

    @property
    def tooltip(self):
        """The lines of the tooltip, title first, that are not empty."""
        _, _, title, text = self.properties()["ToolTip"]
        return "\n".join(filter(None, (title, text)))

    def wait(self, timeout=PATIENCE, **wanted):
        """Waits until attributes have these values: wait(status="Active", tooltip="...")."""
        def seen():
            return {name: getattr(self, name) for name in wanted}

        self._session.wait_on_bus(lambda: seen() == wanted, timeout, "the item says %s" % wanted, seen)

    def activate(self):
        """A click on the item."""
        self._session.bus.call_raw("Activate", "ii", 0, 0, interface=ITEM, **self._target)

    # ---- the menu

    def _menu_call(self, method, signature, *arguments):
        return self._session.bus.call_raw(method, signature, *arguments, interface=MENU,
                                          service=self._target["service"],
                                          path=self.properties()["Menu"])

    def menu(self):
        """Opens the menu and reads it: a list of Entry, the visible ones."""
        try:
            self._menu_call("AboutToShow", "i", 0)
        except BusError:  # a program need not care
            pass
        _, root = self._menu_call("GetLayout", "iias", 0, -1, [])
        return _entries(root[2])

    @property
    def labels(self):
        """The texts of the menu's own entries."""
        return [entry.label for entry in self.menu()]

    def press(self, label):
        """Chooses an entry of the menu, also of a submenu, by its text, as soon as it can be chosen."""
        def there():
            return [entry for entry in _flat(self.menu()) if entry.label == label and entry.enabled]

        entry = self._session.wait_on_bus(there, what="the menu offers %r" % label, detail=self.menu)[0]
        self._menu_call("Event", "isvu", entry.id, "clicked", ("i", 0), 0)


def _entries(children):
    found = []
    for _, (number, values, below) in children:
        plain = {name: value for name, (_, value) in values.items()}
        if plain.get("visible", True):
            found.append(Entry(number, plain.get("label", "").replace("_", ""),
                               plain.get("enabled", True), plain.get("toggle-state") == 1,
                               plain.get("type") == "separator", _entries(below)))
    return found


def _flat(entries):
    for entry in entries:
        yield entry
        yield from _flat(entry.children)

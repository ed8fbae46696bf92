# SPDX-License-Identifier: MIT
"""What a screen reader has of the windows: finds by role and name, reads, presses, waits by events."""
import re
import time
import weakref
from collections import namedtuple

from ..machine.bus_client import BusError
from ..waiting import PATIENCE, NotHappened

REGISTRY, ROOT = "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"
ACCESSIBLE, PROPERTIES = "org.a11y.atspi.Accessible", "org.freedesktop.DBus.Properties"
EVENTS = ("object:", "window:", "focus:")
LOOK_AGAIN = 0.25  # seconds; not everything that changes makes an event
BETWEEN_LOOKS = 0.05  # events come by the hundred, and each look asks every element
STATES = ("invalid active armed busy checked collapsed defunct editable enabled expandable expanded "
          "focusable focused has-tooltip horizontal iconified modal multi-line multiselectable opaque "
          "pressed resizable selectable selected sensitive showing single-line stale transient "
          "vertical visible manages-descendants indeterminate required truncated animated "
          "invalid-entry supports-autocompletion selectable-text is-default visited checkable "
          "has-popup read-only").split()
# These only hold others, or show nothing when they say nothing.
NEED_NO_NAME = {"application", "desktop frame", "filler", "panel", "frame", "layered pane", "scroll pane", "split pane",
                "viewport", "separator", "page tab list", "scroll bar", "tool bar", "menu bar",
                "status bar", "label", "table cell", "list item", "unknown"}
COMBO = "combo box"
LABELLED_BY = 2
TAB_LIMIT = 300
GONE = "org.freedesktop.DBus.Error.UnknownObject"  # what a program answers for an element that it has taken away
MOST_LOOKS = 20

ROLES = weakref.WeakKeyDictionary()  # bus to {element: role}; an element keeps its role

# One element at one moment. depth: 0 for where one began to look.
Seen = namedtuple("Seen", "element depth role name states")


def fits(wanted, text):
    """wanted: a text, a compiled regular expression to be searched for, or None for any."""
    if isinstance(wanted, re.Pattern):
        return bool(wanted.search(text))
    return wanted is None or wanted == text


def anew_when_gone(look):
    """Looks or acts once more when an element went in the middle of it: what has come in its place was not
    seen, and nothing was done."""
    for _ in range(MOST_LOOKS):
        try:
            return look()
        except BusError as error:
            if error.name != GONE:
                raise
        time.sleep(BETWEEN_LOOKS)
    return look()


class Element:
    """A window, a widget, or the whole desktop. What it says is asked anew each time. Elements that
    are not shown, and all in them, are not found."""

    def __init__(self, bus, keyboard, service=REGISTRY, path=ROOT):
        self._bus, self._keyboard = bus, keyboard
        self.service, self.path = service, path

    def _key(self):
        return self.service, self.path

    def __eq__(self, other):
        return isinstance(other, Element) and self._key() == other._key()

    def __hash__(self):
        return hash(self._key())

    def __repr__(self):
        return "<%s %r>" % (self.role, self.name)

    # ---- reading

    @property
    def name(self):
        return self._property(ACCESSIBLE, "Name")

    @property
    def label(self):
        """The name of the label that belongs to it, or empty."""
        for kind, references in self._call(ACCESSIBLE, "GetRelationSet"):
            if kind == LABELLED_BY:
                return Element(self._bus, self._keyboard, *references[0]).name
        return ""

    @property
    def description(self):
        return self._property(ACCESSIBLE, "Description")

    @property
    def role(self):
        return self._call(ACCESSIBLE, "GetRoleName")

    @property
    def parent(self):
        return Element(self._bus, self._keyboard, *self._property(ACCESSIBLE, "Parent"))

    @property
    def states(self):
        """A set of names out of STATES."""
        return _states(self._call(ACCESSIBLE, "GetState"))

    @property
    def text(self):
        """What is written in it: a field's content, else the name. A password field's is empty."""
        if "org.a11y.atspi.Text" in self._call(ACCESSIBLE, "GetInterfaces"):
            return self._call("org.a11y.atspi.Text", "GetText", "ii", 0, -1)
        return self.name

    @property
    def value(self):
        """The number that a slider, a spin box or a progress bar shows."""
        return self._property("org.a11y.atspi.Value", "CurrentValue")

    @property
    def extents(self):
        """Where it is on the screen: x, y, width, height."""
        return tuple(self._call("org.a11y.atspi.Component", "GetExtents", "u", 0))

    def children(self):
        """All of them, also those that are not shown."""
        return [Element(self._bus, self._keyboard, *reference)
                for reference in self._call(ACCESSIBLE, "GetChildren")]

    # ---- acting

    def press(self):
        """Does the first thing that can be done to it, as a click would."""
        assert self._call("org.a11y.atspi.Action", "DoAction", "i", 0), "nothing can be done to %r" % self

    def set_text(self, text):
        assert self._call("org.a11y.atspi.EditableText", "SetTextContents", "s", text), self

    def set_value(self, value):
        self._call(PROPERTIES, "Set", "ssv", "org.a11y.atspi.Value", "CurrentValue", ("d", value))

    def focus(self):
        """Takes the keyboard; needs a window manager."""
        self._call("org.a11y.atspi.Component", "GrabFocus")
        self.wait(lambda: "focused" in self.states, what="%r has the focus" % self)

    # ---- finding

    def seen(self):
        """This element and all in it that is shown, in order: a list of Seen."""
        return anew_when_gone(self._look)

    def _look(self):
        told, level = {}, [self]
        while level:
            level = self._ask(level, told)
        return list(_in_order(self, told))

    def _ask(self, elements, told):
        """Asks all elements of a level at once, so that this takes only as long as the tree is deep.
        told: element to what it said and its children. Returns the next level. Raises BusError for one
        that has gone while its program is there."""
        roles = ROLES.setdefault(self._bus, {})
        asked = [(element, [element._start(PROPERTIES, "Get", "ss", ACCESSIBLE, "Name"),
                            element._start(ACCESSIBLE, "GetState"),
                            element._start(ACCESSIBLE, "GetChildren")],
                  None if element in roles else element._start(ACCESSIBLE, "GetRoleName")) for element in elements]
        below, gone = [], None
        for element, serials, role in asked:
            try:
                name, bits, references = [self._bus.finish_call(serial).body[0] for serial in serials]
                if role is not None:
                    roles[element] = self._bus.finish_call(role).body[0]
            except BusError as error:
                roles.pop(element, None)  # another may come by its path
                gone = error if error.name == GONE and element != self else gone
                continue
            states = _states(bits)
            if "showing" in states or element.path == ROOT:
                children = [Element(self._bus, self._keyboard, *one) for one in references]
                told[element] = (roles[element], name[1], states, children)
                below += children
        if gone:
            raise gone
        return below

    def matches(self, role=None, name=None, states=()):
        """All that fit now. A combo box is called by what is chosen in it, so here by its label."""
        return anew_when_gone(lambda: [
            one.element for one in self._look()
            if fits(role, one.role) and one.states.issuperset(states)
            and fits(name, one.element.label if role == COMBO else one.name)])

    def has(self, role=None, name=None, states=()):
        return bool(self.matches(role, name, states))

    def find(self, role=None, name=None, states=(), timeout=PATIENCE):
        """Waits until one is shown that fits, and returns the first."""
        return self.wait(lambda: self.matches(role, name, states), timeout,
                         "%s %s is shown" % (role or "something", name))[0]

    def wait_gone(self, role=None, name=None, timeout=PATIENCE):
        """Waits until none is shown that fits."""
        self.wait(lambda: not self.has(role, name), timeout, "no %s %s is shown" % (role, name))

    def wait_text(self, text, timeout=PATIENCE):
        """Waits until something shows this text (or regular expression), and returns it."""
        return self.wait(lambda: next((said for said in self.texts() if fits(text, said)), None),
                         timeout, "%s is to be read" % text)

    def wait(self, condition, timeout=PATIENCE, what="condition"):
        """Waits until condition gives something true and returns that; looks whenever an event comes."""
        deadline = time.monotonic() + timeout
        while True:
            position = len(self._bus.signals)
            try:
                result = condition()
            except BusError as error:  # an element went while it was asked
                if error.name.startswith("closed"):
                    raise
                result = None
            if result:
                return result
            left = deadline - time.monotonic()
            if left <= 0:
                raise NotHappened("not within %g s: %s\n%s" % (timeout, what, self.outline()))
            self._bus.signal_at(position, min(left, LOOK_AGAIN))
            time.sleep(BETWEEN_LOOKS)

    # ---- what a test does most

    def press_button(self, name, role="push button", **options):
        """Presses a button as soon as it is shown and can be pressed."""
        anew_when_gone(lambda: self.find(role, name, {"sensitive"}, **options).press())

    def fill(self, name, text, role="text"):
        """Writes into the field of that name."""
        self.find(role, name, {"sensitive"}).set_text(text)

    def select(self, name, row, role="list"):
        """Selects a row of the list of that name, as a screen reader does: without the keyboard."""
        rows = self.find(role, name)
        found = self.wait(lambda: [child for child in rows.children() if fits(row, child.name)],
                          what="row %s of %s" % (row, name))[0]
        if "selected" not in found.states:
            found.press()

    def choose(self, label, item):
        """Opens the combo box with that label and chooses by keyboard: what a screen reader selects in
        its list is not chosen yet. X only."""
        combo = self.find(COMBO, label, {"sensitive"})
        items = [row.name for row in combo.children()[0].children()]
        combo.press()
        self._keyboard("Home", *["Down"] * items.index(item), "Return")
        self.wait(lambda: combo.name == item, what="%s is chosen" % item)

    def check(self, name, on=True, role="check box"):
        """Ticks a box, or takes the tick away."""
        box = self.find(role, name, {"sensitive"})
        if ("checked" in box.states) != on:
            box.press()

    def answer_time(self):
        """Seconds until the program has answered, of the whole desktop all of them one after another: as
        long as its main loop is busy."""
        asked = self.children() if self._key() == (REGISTRY, ROOT) else [self]
        assert asked, "there is no program"
        before = time.monotonic()
        for element in asked:
            element.role
        return time.monotonic() - before

    # ---- judging

    def texts(self):
        """All that is to be read now, in order: names, and what is written in fields."""
        return anew_when_gone(self._texts)

    def _texts(self):
        said = []
        for one in self._look():
            said.append(one.name)
            if one.role in ("text", "password text", "paragraph"):
                said.append(one.element.text)
        return [text for text in said if text]

    def nameless(self):
        """What a screen reader can say nothing about: (role, description) of each."""
        return [(one.role, one.element.description) for one in self.seen()
                if one.role not in NEED_NO_NAME and one.depth
                and not (one.element.label if one.role == COMBO else one.name)
                and one.element.parent.role != COMBO]

    def outline(self):
        """The tree as text, for people who wonder what was there."""
        return "\n".join("%s%s %r%s" % ("  " * one.depth, one.role, one.name,
                                       "" if "sensitive" in one.states else " (disabled)")
                         for one in self.seen())

    def focused(self):
        """Waits until something has the keyboard, and returns it."""
        return self.wait(lambda: self.matches(states={"focused"}), what="something has the focus")[-1]

    def focus_order(self, key="Tab"):
        """Presses Tab until the focus is where it began: (role, name) of each stop."""
        stops = [self.focused()]
        while len(stops) < TAB_LIMIT:
            position = len(self._bus.signals)
            self._keyboard(key)
            here = self._next_focus(position)
            if here in (None, *stops):
                return [(stop.role, stop.name) for stop in stops]
            stops.append(here)
        raise AssertionError("the focus never comes back: %s" % stops)

    def _next_focus(self, position, timeout=PATIENCE):
        """What gets the focus first after a position in the events; None when nothing does."""
        while signal := self._bus.signal_at(position, timeout):
            position += 1
            if signal.name == "StateChanged" and signal.args[:2] == ("focused", 1):
                element = Element(self._bus, self._keyboard, signal.sender, signal.path)
                element.role  # a list tells of its row and of itself: all of that comes before the answer
                return element
        return None

    # ---- the bus

    def _start(self, interface, method, signature="", *arguments):
        return self._bus.start_call(method, signature, *arguments, service=self.service, path=self.path,
                                    interface=interface)

    def _call(self, interface, method, signature="", *arguments):
        body = self._bus.finish_call(self._start(interface, method, signature, *arguments)).body
        return body[0] if body else None

    def _property(self, interface, name):
        return self._call(PROPERTIES, "Get", "ss", interface, name)[1]


def _states(bits):
    return {name for number, name in enumerate(STATES) if bits[number // 32] >> (number % 32) & 1}


def _in_order(element, told, depth=0):
    """Each element before those in it."""
    if element in told:
        role, name, states, children = told[element]
        yield Seen(element, depth, role, name, states)
        for child in children:
            yield from _in_order(child, told, depth + 1)


def join(bus, keyboard):
    """The whole desktop, of which all events are told from now on."""
    for kind in EVENTS:
        bus.call_raw("RegisterEvent", "s", kind, service=REGISTRY, path="/org/a11y/atspi/registry",
                     interface=REGISTRY)
    return Element(bus, keyboard)

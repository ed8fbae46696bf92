# SPDX-License-Identifier: MIT
"""norvix-keeper in a private machine, and what one asks it over the bus."""
import array
import os
import select
import socket
import time
from pathlib import Path

from jeepney import DBusAddress, HeaderFields, new_method_return, new_signal

from .bus_client import BusError
from .furnishing import NORVIX_GROUP
from .played_service import PlayedService
from ..waiting import PATIENCE, NotHappened, wait_until

REPOSITORY = Path(__file__).resolve().parents[2]
PROGRAM = "/opt/norvix/bin/norvix-keeper"
POLICY = REPOSITORY / "packaging" / "norvix-keeper.conf"
NAME, PATH, INTERFACE = "com.norvix.Keeper", "/com/norvix/Keeper", "com.norvix.Keeper1"
PROPERTIES = "org.freedesktop.DBus.Properties"
STATE_FOLDER = "/var/log/keeper-state"  # a private folder of the machine
USER, USER_ID = "norvix-keeper", 64997
NO_PAUSES = "".join("pause_%s = 0\n" % name for name in (
    "unanswered", "unanswered_most", "after_a_day", "hung_up", "hung_up_most", "refused_once",
    "refused_twice", "refused_thrice", "refused_most"))


def prepare(machine, settings=""):
    """What the package's installation does: the user, in the group norvix, and the state folder. To be
    called before the bus starts, which looks up the users in its policies."""
    with open(machine.path("/etc/passwd"), "a", encoding="utf-8") as file:
        file.write("%s:x:%d:%d::/:/usr/sbin/nologin\n" % (USER, USER_ID, USER_ID))
    group = machine.path("/etc/group")
    text = group.read_text(encoding="ascii")
    group.write_text(text.replace("norvix:x:%d:" % NORVIX_GROUP,
                                  "norvix:x:%d:%s" % (NORVIX_GROUP, USER))
                     + "%s:x:%d:\n" % (USER, USER_ID), encoding="ascii")
    folder = machine.path(STATE_FOLDER)
    folder.mkdir()
    if machine.rooted:
        os.chown(folder, USER_ID, USER_ID)
    # As the daemon's package makes them: what the daemon logs is the group's to read.
    home = machine.path("/opt/norvix")
    if machine.rooted:
        os.chown(home, 0, NORVIX_GROUP)
        home.chmod(0o2755)
    write_settings(machine, settings)


def write_settings(machine, text):
    machine.path("/etc/norvix-keeper.conf").write_text(text, encoding="ascii")


class KeeperOnTheBus:
    """What one asks a keeper, and hears of it. client is a connection of its own; errors, a function,
    gives what the program has said."""

    def __init__(self, client, errors):
        self.client = client
        self.errors = errors

    def call(self, method, signature="", *arguments, client=None):
        return (client or self.client).call_raw(method, signature, *arguments, service=NAME,
                                                path=PATH, interface=INTERFACE)

    def properties(self, client=None):
        """All properties, as plain values."""
        values = (client or self.client).call_raw("GetAll", "s", INTERFACE, service=NAME, path=PATH,
                                                  interface=PROPERTIES)
        return {name: value for name, (_, value) in values.items()}

    def rows(self, method, signature="u", *arguments):
        """Entries of the history, as plain dictionaries."""
        return [{name: value for name, (_, value) in row.items()}
                for row in self.call(method, signature, *(arguments or (1000,)))]

    def wait_for(self, timeout=PATIENCE, **wanted):
        """Waits until properties have these values; all of them as they were then."""
        return self.wait_properties(lambda now: all(now[name] == value for name, value in wanted.items()),
                                    timeout, "the keeper says %s" % wanted)

    def wait_properties(self, is_wanted, timeout=PATIENCE, what="properties that fit"):
        """Waits until is_wanted, a function, says so of the properties; looks at them whenever the
        keeper announces a change, and returns them."""
        deadline = time.monotonic() + timeout
        heard = len(self.client.signals)
        while not is_wanted(now := self.properties()):
            heard = self._next(heard, "PropertiesChanged", deadline)
            if heard is None:
                raise NotHappened("not within %g s: %s\n%s" % (timeout, what, (now, self.errors())))
        return now

    def wait_losses(self, count, timeout=PATIENCE):
        """Waits until so many losses were told, and returns the reasons of all."""
        deadline = time.monotonic() + timeout
        heard = 0
        for _ in range(count):
            heard = self._next(heard, "LinkLost", deadline)
            if heard is None:
                raise NotHappened("not within %g s: %d losses, told were %s\n%s" % (
                    timeout, count, self.losses(), self.properties()))
        return self.losses()

    def _next(self, position, name, deadline):
        """The position in the client's signals behind the next one of that name from the keeper, from a
        position on; None when none comes before the deadline (time.monotonic)."""
        while (signal := self.client.signal_at(position, deadline - time.monotonic())) is not None:
            position += 1
            if signal.name == name and signal.path == PATH:
                return position
        return None

    def stays(self, seconds, is_wanted):
        """Fails as soon as is_wanted, a function, denies it of the properties: now, or at a change that
        the keeper announces within that time."""
        try:
            now = self.wait_properties(lambda now: not is_wanted(now), seconds)
        except NotHappened:
            return
        raise AssertionError("it did not stay so: %s" % now)

    def losses(self):
        """The reasons of all losses told so far."""
        return [signal.args[0] for signal in self.client.signals
                if signal.interface == INTERFACE and signal.name == "LinkLost"]

    def ended(self):
        """The reasons of the sessions that are over, oldest first."""
        return [row["reason"] for row in reversed(self.rows("GetSessions")) if "reason" in row]


class Keeper(KeeperOnTheBus):
    """A start of norvix-keeper, as its own user."""

    def __init__(self, machine, wait=True, env=None, wrapper=()):
        self.machine = machine
        uid = USER_ID if machine.rooted else 0
        self.process = machine.spawn([*wrapper, PROGRAM], label="keeper", uid=uid,
                                     groups=[NORVIX_GROUP] if machine.rooted else [],
                                     env={"STATE_DIRECTORY": STATE_FOLDER, **(env or {})})
        super().__init__(machine.client(), self.process.errors)
        if wait:
            self.wait_ready()

    def wait_ready(self):
        def ready():
            if self.process.ended():
                raise RuntimeError("norvix-keeper has ended:\n" + self.process.errors())
            try:
                return self.client.pid_of(NAME) == self.process.pid  # not one's that has just ended
            except BusError:
                return False

        wait_until(ready, what="norvix-keeper owns its name", detail=self.process.errors)

    def kill(self):
        """As a crash would."""
        self.process.signal(9)
        self.process.wait()
        self.client.close()

    def stop(self):
        self.process.signal()
        return self.process.wait()


class FakeLogind(PlayedService):
    """Owns the name of the log-in service, which has to be one of the bus's names."""

    NAME, PATH = "org.freedesktop.login1", "/org/freedesktop/login1"
    MANAGER = "org.freedesktop.login1.Manager"

    def __init__(self, sock, uid):
        self._ends = []  # a reading end for each that was handed out
        super().__init__(sock, uid)

    def _authenticate(self, uid):
        """Like any client, and asks that descriptors may be passed."""
        super()._authenticate(uid, b"NEGOTIATE_UNIX_FD\r\n")

    def _answer(self, message):
        if message.header.fields[HeaderFields.member] != "Inhibit":
            return
        mine, theirs = os.pipe()
        self._ends.append(mine)
        reply = new_method_return(message, "h", (theirs,))
        with self._changed:
            self._serial += 1
            passed = array.array("i")
            data = reply.serialise(serial=self._serial, fds=passed)
            socket.send_fds(self._socket, [data], list(passed))
        os.close(theirs)

    @property
    def asked(self):
        """How often somebody wanted to hold up sleep."""
        return len(self._ends)

    @property
    def is_held(self):
        """Whether somebody holds up sleep."""
        poll = select.poll()
        for end in self._ends:
            poll.register(end, select.POLLIN)
        let_go = {end for end, event in poll.poll(0) if event & select.POLLHUP}
        return len(let_go) < len(self._ends)

    def announce_sleep(self, is_coming, times=2):
        """Some services tell everything twice."""
        emitter = DBusAddress(self.PATH, interface=self.MANAGER)
        for _ in range(times):
            self.send(new_signal(emitter, "PrepareForSleep", "b", (is_coming,)))

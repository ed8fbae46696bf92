# SPDX-License-Identifier: MIT
"""Lets an operation that writes go wrong at one of its system calls, or on a full disk, and judges what
is there after the next start: each file old or new, whole, with the owner and mode that it had, and
nothing left over."""
import contextlib
import json
import os
import re
import shutil
import stat
import sys
from collections import namedtuple
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parents[1]), str(HERE.parent / "system")]

from lab.machine.bus_client import BusError  # noqa: E402
from lab.machine.private_machine import PrivateMachine  # noqa: E402
from obstacles import fill, run  # noqa: E402

FAULTS = ("KILL", "ENOSPC", "EIO", "EROFS")
PAGES = range(5)
ALL = (*FAULTS, "pages")
PLAN, TRACE = "/run/lab/fault-plan", "/run/lab/fault-trace"
UNDER = ("/usr/bin/python3", "-IB", "/mnt/lab/lib/supervisor.py", PLAN, TRACE)
DISK = "size=64m"

# What may be left until the next start.
TEMPORARY = r"norvix-new|daemon\.log\.new$|\.daemon_ng\.ini\.(lock|[A-Za-z]{6})"

Entry = namedtuple("Entry", "mode owner group content")


@dataclass(frozen=True)
class Operation:
    """A row of the table. act does the work under supervision and answers what the work itself says:
    that it was done (True), that it was not (False), or nothing (None)."""

    name: str
    files: str  # a pattern of the paths that are its own: of these the calls count, these are judged
    folder: str  # where they are; the disk that gets full
    act: Callable
    prepare: Callable = lambda world: None  # once: the files before the operation
    begin: Callable = lambda world: None  # before each time, unharmed
    next_start: Callable = lambda world: world.start_and_stop()
    same: Callable = lambda path, content: content  # what counts of a file's content
    keeps_old_when_refused: bool = True  # "not done" means that all is as it was
    counted: str = ""  # a pattern of the paths whose calls count, where not all of them should
    unsettled: str = "$^"  # a pattern of paths at which there may be anything until the next start
    may_go: str = "$^"  # a pattern of old paths that may be taken away where all is said to be done
    judged_at_once: bool = True  # before the next start, too; temporary files may then be there
    also: tuple = ()  # further folders with such files
    private: tuple = ()  # further folders that the machine needs of its own
    policies: tuple = ()  # further ones of the bus
    faults: tuple = ALL


class World:
    """A machine in which one operation is tried again and again."""

    def __init__(self, machine, operation):
        self.machine, self.operation = machine, operation
        self.daemon = self.client = None
        self.refusal = ""  # the bus's last error
        shutil.copy(HERE / "supervisor.py", machine.state / "lib/supervisor.py")
        operation.prepare(self)
        machine.start_bus(policies=operation.policies)
        self.prepared = self.files()
        self.old = self.attempt(act=lambda _: None)
        self.new = self.attempt()
        if not self.new.calls or self.new.claim is False:
            raise AssertionError("%s: nothing is written when all is well\n%s\n%s" % (
                operation.name, self.refusal, self.what_was_said()))

    # ---- for operations

    def start_daemon(self, *arguments, **options):
        """Starts a daemon under supervision, and a client of it."""
        self.daemon = self.machine.start_daemon(*arguments, under=UNDER, **options)
        self.client = self.machine.client()

    def start_and_stop(self):
        """The daemon's next start, and its end."""
        self.machine.start_daemon().stop()

    def call(self, *call, **target):
        """Calls the daemon: True when it answers, False when it answers with an error, None when it has
        been killed."""
        try:
            self.client.call_raw(*call, **target) if target else self.client.call(*call)
        except BusError as error:
            self.refusal = str(error)
            return False if self.daemon.running() and self.fault != "KILL" else None
        return True

    def run(self, *argv, **options):
        """Runs a program under supervision: whether it says that all went well, None when killed."""
        self.done = self.machine.run([*UNDER, *argv], **options)
        return None if self.done.status < 0 else self.done.status == 0

    # ---- files

    def inside(self, path):
        return self.machine.root / path.lstrip("/")

    def write(self, path, content, mode=0o644, owner=0, group=0):
        """Makes a file; bytes, or the text of a link."""
        place = self.inside(path)
        if isinstance(content, str):
            place.symlink_to(content)
        else:
            place.write_bytes(content)
            place.chmod(mode)
        os.chown(place, owner, group, follow_symlinks=False)

    def files(self):
        """All of the operation's files as they are now."""
        found = {}
        for top in (self.operation.folder, *self.operation.also):
            root = self.inside(top)
            for place in [root, *sorted(root.rglob("*"))]:
                path = top + str(place)[len(str(root)):]
                if re.search(self.operation.files, path) and os.path.lexists(place):
                    facts = os.lstat(place)
                    content = (os.readlink(place) if stat.S_ISLNK(facts.st_mode) else
                               place.read_bytes() if stat.S_ISREG(facts.st_mode) else None)
                    found[path] = Entry(facts.st_mode, facts.st_uid, facts.st_gid, content)
        return found

    def put_back(self):
        """Makes the files as they were prepared."""
        now = self.files()
        for path in sorted(now, reverse=True):
            wanted = self.prepared.get(path)
            if not wanted or (now[path] != wanted and not (stat.S_IFMT(now[path].mode)
                                                           == stat.S_IFMT(wanted.mode) != stat.S_IFLNK)):
                place = self.inside(path)
                place.rmdir() if stat.S_ISDIR(now[path].mode) else place.unlink()
        for path, entry in sorted(self.prepared.items()):
            if now.get(path) == entry:
                continue
            if stat.S_ISDIR(entry.mode):
                self.inside(path).mkdir(exist_ok=True)
                os.chown(self.inside(path), entry.owner, entry.group)
                self.inside(path).chmod(stat.S_IMODE(entry.mode))
            else:
                self.write(path, entry.content, stat.S_IMODE(entry.mode), entry.owner, entry.group)

    def judged(self):
        return {path: entry._replace(content=self.operation.same(path, entry.content))
                for path, entry in self.files().items()}

    # ---- attempts

    def plan(self, fault, at):
        """From now on the operation's calls count, and that one goes wrong."""
        self.machine.path(TRACE).unlink(missing_ok=True)
        files = self.operation.counted or self.operation.files
        plan = {"files": files, "looks": fault in (None, "EIO"), "at": at, "fault": fault}
        made = self.machine.path(PLAN + ".new")
        made.write_text(json.dumps(plan), encoding="utf-8")
        made.rename(self.machine.path(PLAN))

    @contextlib.contextmanager
    def full_disk(self, pages):
        """The operation's folder on a disk of its own, which has so many pages left."""
        folder = self.operation.folder
        run(self.machine, "/bin/sh", "-ec", "rm -rf /run/copy; cp -a $0 /run/copy; "
            "mount -t tmpfs -o mode=755,%s tmpfs $0; cp -a /run/copy/. $0" % DISK, folder)
        try:
            yield lambda: fill(self.machine, folder, pages), self.inside(folder + "/filler").unlink
        finally:
            run(self.machine, "/usr/bin/umount", "-l", folder)

    def attempt(self, fault=None, at=0, act=None, pages=None):
        """The operation once, with that fault at that call, or on a disk with so many free pages; and
        the next start. What became of it."""
        self.fault = fault
        with contextlib.ExitStack() as stack:
            self.put_back()
            fill_up, make_room = lambda: None, lambda: None
            if pages is not None:
                fill_up, make_room = stack.enter_context(self.full_disk(pages))
            self.operation.begin(self)
            fill_up()
            self.plan(fault, at)
            claim = (act or self.operation.act)(self)
            self.machine.path(PLAN).unlink()
            calls = self.machine.path(TRACE)
            calls = calls.read_text(encoding="utf-8").splitlines() if calls.exists() else []
            self.end_daemon()
            make_room()
            at_once = self.judged()
            self.operation.next_start(self)
            return Outcome(claim, calls, at_once, self.judged())

    def end_daemon(self):
        """Ends the daemon, unless that has been done."""
        if self.daemon:
            with contextlib.suppress(ProcessLookupError):
                self.daemon.signal()
            self.daemon.wait_exit()
        if self.client:
            self.client.close()
        self.daemon = self.client = None

    def faulty(self, outcome):
        """What is wrong about an outcome, one line each."""
        gone = self.operation.may_go if outcome.claim else "$^"
        old, new = ({path: entry for path, entry in files.items()
                     if path in outcome.files or not re.search(gone, path)}
                    for files in (self.old.files, self.new.files))
        lines = self.neither(old, new, outcome.files, "after the next start")
        at_once = (self.old.at_once, self.new.at_once, outcome.at_once)
        passing = "%s|%s|%s" % (TEMPORARY, self.operation.unsettled, gone)
        if self.operation.judged_at_once:
            lines += self.neither(*at_once, "at once", allowed=passing)
        for claim, then, what in ((True, self.new, "done"), (False, self.old, "as it was")):
            if outcome.claim is claim and (claim or self.operation.keeps_old_when_refused):
                lines += ["%s is said to be %s, and is not: %s" % (path, what, describe(now))
                          for path, now in different(then.at_once, outcome.at_once)
                          if not re.search(passing, path)]
        return lines

    @staticmethod
    def neither(old, new, now, when, allowed="$^"):
        return ["%s is neither old nor new %s: %s" % (path, when, describe(now.get(path)))
                for path in sorted({*old, *new, *now})
                if not re.search(allowed, path) and now.get(path) not in (old.get(path), new.get(path))]

    def what_was_said(self):
        outputs = sorted((self.machine.state / "out").iterdir())[-4:]
        return "\n".join("%s: %s" % (file.name, file.read_text(errors="replace")) for file in outputs)


Outcome = namedtuple("Outcome", "claim calls at_once files")


def different(wanted, found):
    """The paths at which another entry is found, or none, with that."""
    return [(path, found.get(path)) for path in sorted({*wanted, *found})
            if found.get(path) != wanted.get(path)]


def describe(entry):
    if entry is None:
        return "missing"
    content = entry.content if entry.content is None else entry.content[:100]
    return "%o %d:%d %r" % (entry.mode, entry.owner, entry.group, content)


@contextlib.contextmanager
def world_of(operation):
    """A machine that is ready for an operation."""
    with PrivateMachine(private_folders=operation.private) as machine:
        yield World(machine, operation)


def points(world, fault):
    """The attempts that there are for a fault, each as arguments of attempt(). Calls that only look fail
    with an error of the disk alone."""
    if fault == "pages":
        return [{"pages": pages} for pages in PAGES]
    count = sum(fault == "EIO" or call.startswith("changes") for call in world.new.calls)
    return [{"fault": fault, "at": number} for number in range(1, count + 1)]


def complaints(world, point):
    """Tries one point; what was wrong about it in one text, empty when all is well."""
    outcome = world.attempt(**point)
    lines = world.faulty(outcome)
    place = ""
    if "pages" in point:
        place = "%d pages" % point["pages"]
    elif point["at"] <= len(outcome.calls):
        place = "%s at %d: %s" % (point["fault"], point["at"], outcome.calls[point["at"] - 1])
    return "%s, %s: %s" % (world.operation.name, place, "; ".join(lines)) if lines else ""

# SPDX-License-Identifier: MIT
"""Programs that run in a private machine, and the daemon among them with its fork."""
from signal import SIGTERM

from .bus_client import SERVICE
from ..waiting import PATIENCE, read_text, wait_until


class Process:
    """A program started inside. pid is its id inside; it leads a process group of that id."""

    def __init__(self, machine, pid, files):
        self.machine, self.pid = machine, pid
        self.stdout_path = files.with_name(files.name + ".stdout")
        self.stderr_path = files.with_name(files.name + ".stderr")

    def output(self):
        """Standard output so far."""
        return read_text(self.stdout_path)

    def errors(self):
        """Standard error so far."""
        return read_text(self.stderr_path)

    def ended(self):
        """The record of its end, or None while it runs."""
        return self.machine.exit_of(self.pid)

    def wait(self, timeout=PATIENCE):
        """Waits for its end; the exit status, negative for a signal."""
        return wait_until(self.ended, timeout, "process %d ends" % self.pid)["status"]

    def signal(self, number=SIGTERM):
        self.machine.kill(self.pid, number)


class Daemon:
    """A start of the daemon: the parent, which ends at once, and the child, which is the daemon."""

    COMM = "norvix-daemon"

    def __init__(self, process):
        self.machine = process.machine
        self.parent = process
        self._pid = None

    @property
    def pid(self):
        """The id of the child, inside. Waits for it to be there; it may have ended by now."""
        if self._pid is None:
            self._pid = wait_until(self._find_child, what="the daemon has forked",
                                   detail=self.everything_said)
        return self._pid

    @property
    def last_pid(self):
        """The same without waiting; None when nobody has asked for it yet."""
        return self._pid

    def _find_child(self):
        """The child outlives its parent: process 1 becomes its parent and reaps it in the end."""
        seen = self.machine.exits() + self.machine.processes()
        for facts in seen:
            if (facts.get("pgid") == self.parent.pid and facts["pid"] != self.parent.pid
                    and facts.get("comm") == self.COMM and facts["ppid"] in (1, self.parent.pid)):
                return facts["pid"]
        return None

    def parent_status(self):
        """The exit status that the one who started the daemon gets."""
        return self.parent.wait()

    def output(self):
        """Standard output of parent and child."""
        return self.parent.output()

    def errors(self):
        """Standard error of parent and child."""
        return self.parent.errors()

    def everything_said(self):
        return "--- output\n%s\n--- errors\n%s\n--- log\n%s" % (
            self.output(), self.errors(), self.machine.daemon_log())

    def wait_for_output(self, text, timeout=PATIENCE, count=1):
        """Waits until standard output holds a text that often."""
        wait_until(lambda: self.output().count(text) >= count, timeout,
                   "%r (%d times) on standard output" % (text, count), self.everything_said)

    def wait_for_log(self, text, timeout=PATIENCE, count=1):
        """Waits until the daemon's main log holds a text that often."""
        wait_until(lambda: self.machine.daemon_log().count(text) >= count, timeout,
                   "%r (%d times) in the log" % (text, count), self.everything_said)

    def wait_ready(self, timeout=PATIENCE):
        """Waits until this daemon owns its name on the bus."""
        observer = self.machine.client()

        def ready():
            record = self.machine.exit_of(self.pid)
            if record:
                raise RuntimeError("the daemon has ended with status %d\n%s" % (
                    record["status"], self.everything_said()))
            return observer.owner_of(SERVICE) and observer.pid_of(SERVICE) == self.pid

        wait_until(ready, timeout, "the daemon owns its name", self.everything_said)
        observer.close()

    def wait_started(self):
        """Waits until its start is over, the driver's test and a build included: last of all it asks
        for the line's state. Call it before anything else asks for that."""
        wait_until(lambda: "Debug: i: 0 \n" in self.output()
                   or "klogctl() <= 0!" in self.machine.daemon_log(),
                   what="the daemon's start is over", detail=self.everything_said)

    def running(self):
        return self.machine.exit_of(self.pid) is None

    def signal(self, number=SIGTERM):
        self.machine.kill(self.pid, number)

    def wait_exit(self, timeout=PATIENCE):
        """Waits for the child's end; its exit status, negative for a signal."""
        return wait_until(lambda: self.machine.exit_of(self.pid), timeout, "the daemon ends",
                          self.everything_said)["status"]

    def stop(self, number=SIGTERM):
        """Sends a signal and waits for the end; the exit status."""
        self.signal(number)
        return self.wait_exit()

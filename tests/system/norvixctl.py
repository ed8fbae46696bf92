# SPDX-License-Identifier: MIT
"""Running norvixctl in a private machine, on a terminal or not, and its recorded outputs."""
import base64
import json
import os
import re
import sys
from pathlib import Path

from lab.machine.furnishing import NORVIX_GROUP  # noqa: F401
from lab.machine.private_machine import ADDRESS_SANITIZER, REPOSITORY, SANITIZER_OPTIONS

GOLDEN = REPOSITORY / "tests/data/norvixctl"
SCHEMA = REPOSITORY / "docs/norvixctl.schema.json"
PROGRAM = "/opt/norvix/bin/norvixctl"
# Its exit statuses by class.
OK, FAILED, USAGE, NO_DAEMON, NOT_PERMITTED, REFUSED, FAULTS = range(7)
NO_SYNC, NO_ANSWER, ACCOUNT_REFUSED, NOT_CONNECTED, TOO_LONG = range(10, 15)


class Ctl:
    """norvixctl as a user of one machine: uid and groups say as whom."""

    def __init__(self, machine, uid=0, groups=()):
        self.machine, self.uid, self.groups = machine, uid, groups

    def environment(self, **env):
        environment = {"LD_PRELOAD": "/mnt/lab/lib/libklogctl-standin.so", "TZ": "UTC"}
        if ADDRESS_SANITIZER:
            environment.update(SANITIZER_OPTIONS)
        environment.update(env)
        return environment

    def __call__(self, *words, stdin=None, env=None):
        """Runs it to its end: status, stdout, stderr."""
        argv = [PROGRAM, *words]
        if stdin is not None:
            data = stdin if isinstance(stdin, bytes) else stdin.encode()
            feed = 'printf %s "$1" | base64 -d | { shift; "$@"; }'
            argv = ["/bin/sh", "-c", feed, "sh", base64.b64encode(data).decode(), *argv]
        return self.machine.run(argv, uid=self.uid, groups=self.groups, label="norvixctl",
                                env=self.environment(**(env or {})))

    def start(self, *words, env=None):
        """Starts it and does not wait."""
        return self.machine.spawn([PROGRAM, *words], uid=self.uid, groups=self.groups,
                                  label="norvixctl", env=self.environment(**(env or {})))

    def json(self, *words):
        """The object that it prints."""
        return json.loads(self(*words, "--json").stdout)

    def on_terminal(self, *words, dialogue=(), rows=24, columns=80, env=None, wait=True):
        """Runs it on a terminal of its own. dialogue: pairs of a text to wait for and keys to type
        then. The result's stdout is everything that the terminal got."""
        plan = json.dumps({"rows": rows, "columns": columns, "dialogue": list(dialogue)})
        argv = ["/usr/bin/python3", "-IB", "/mnt/lab/lib/on_terminal.py", plan, PROGRAM, *words]
        script = Path(__file__).with_name("on_terminal.py").read_bytes()
        (self.machine.state / "lib/on_terminal.py").write_bytes(script)
        env = self.environment(**{"TERM": "xterm-256color", **(env or {})})
        start = self.machine.run if wait else self.machine.spawn
        return start(argv, uid=self.uid, groups=self.groups, label="terminal", env=env)


def without_resolvconf(machine):
    """The computer's own programs are seen inside; this one would be missed its hook in there."""
    if os.path.exists("/usr/sbin/resolvconf"):
        machine.request("hide", path="/usr/sbin/resolvconf")


def words(said):
    """A text, or all that a run has said, with one blank between words: wherever its lines end."""
    return " ".join((said if isinstance(said, str) else said.stdout + said.stderr).split())


def golden(name, text):
    """Compares a text with the recorded one. NORVIX_RECORD=1 in the environment records it."""
    file = GOLDEN / (name + ".txt")
    if os.environ.get("NORVIX_RECORD"):
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")
    assert text == file.read_text(encoding="utf-8"), "differs from %s" % file


def without_times(text):
    """The text with times of day, dates, ages and the kernel's release made equal."""
    text = text.replace(os.uname().release, "KERNEL")
    text = re.sub(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}", "DATE", text)
    text = re.sub(r"\d\d-\d\d-\d{4}", "DAY", text)
    text = re.sub(r"\b\d\d:\d\d:\d\d\b", "TIME", text)
    return re.sub(r'(seconds"?[=:] ?)\d+', r"\1SECONDS", text)


if __name__ == "__main__":
    sys.exit("a helper of the tests")

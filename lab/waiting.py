# SPDX-License-Identifier: MIT
"""Waiting for things to happen, with a deadline and a reason when they do not."""
import os
import re
import time

# Seconds; a deadline for events that come, far above what a busy machine needs. An emulated one needs more.
PATIENCE = float(os.environ.get("NORVIX_PATIENCE") or 30)
POLL = 0.005


class NotHappened(AssertionError):
    """What was waited for did not come in time."""


def wait_until(condition, timeout=PATIENCE, what="condition", detail=None):
    """Calls condition until it gives something true and returns that. Raises NotHappened after
    timeout seconds; detail, a function, then adds what was seen instead."""
    deadline = time.monotonic() + timeout
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            seen = "\n" + str(detail()) if detail else ""
            raise NotHappened("not within %g s: %s%s" % (timeout, what, seen))
        time.sleep(POLL)


def read_text(path):
    """A file's text, empty when it is not there (yet), or when it is a process's that has just gone."""
    try:
        return path.read_text(encoding="utf-8", errors="replace")
    except (FileNotFoundError, ProcessLookupError):
        return ""


def wait_for_line(path, regex, timeout=PATIENCE, count=1):
    """Waits until that many lines of a file match; returns the last of these as a match object."""
    pattern = re.compile(regex)

    def matches():
        found = [match for line in read_text(path).splitlines() if (match := pattern.search(line))]
        return found[count - 1] if len(found) >= count else None

    return wait_until(matches, timeout, "line %r (%d times) in %s" % (regex, count, path),
                      lambda: read_text(path)[-4000:])

# SPDX-License-Identifier: MIT
"""Many changes in one build: each is compiled beside what it replaces and chosen when the program runs.

Building takes most of a trial's time. A change within a condition, a returned value, a simple statement
or an initial value can stand beside the original; constants, tables and declarations cannot and are built
one by one.
"""
import re
from collections import defaultdict

from changes import CALL_OR_ASSIGNMENT, NOT_A_CALL, closing, edits, functions, masked, places, statements

# Included by every changed file. The number of the chosen change stands in a file: programs that run
# with an environment of their own shall find it, too.
HEADER = """#pragma once
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
inline int norvixChosen()
{
    const int error = errno;
    char text[16] = {};
    const int fd = open("%s", O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
        if (read(fd, text, sizeof text - 1) < 0) {
            text[0] = 0;
        }
        close(fd);
    }
    errno = error;
    return atoi(text);
}
inline bool norvixChanged(int number)
{
    static const int chosen = norvixChosen();
    return chosen == number;
}
"""
INITIAL = re.compile(r"(?!static|constexpr|struct |auto |const auto |return|using|typedef)[\w:<>,*& ]+[ *&]\w+\s*=\s+(?![{\[])")


def holders(code):
    """{(start, end): kind} of the places that can stand beside a changed copy of themselves."""
    found = {}
    for start, end, name in functions(code):
        body = code.find("{", start)
        if not 0 <= body < end:
            continue
        for first, last in statements(code, body + 1, end):
            text = code[first:last]
            initial = INITIAL.match(text)
            if re.match(r"return\b", text):
                found[first, last] = "return"
            elif re.fullmatch(r"(break|continue);", text):
                found[first, last] = "statement"
            elif CALL_OR_ASSIGNMENT.match(text) and not NOT_A_CALL.match(text) and not text.startswith(name + "("):
                found[first, last] = "statement"
            elif initial and "Q_" not in text:
                found[first + initial.end(), last - 1] = "value"
        for hit in re.compile(r"\b(if|while|for) \(").finditer(code, body, end):
            first, last = hit.end(), closing(code, hit.end() - 1)
            if hit.group(1) == "for":
                parts = code[first:last].split(";")
                if len(parts) != 3:
                    continue
                first, last = first + len(parts[0]) + 1, first + len(parts[0]) + 1 + len(parts[1])
            elif re.search(r"(?<![=!<>])=(?!=)", re.sub(r"\(.*\)", "", code[first:last], flags=re.S)):
                continue
            if not any(a <= first < b for (a, b), kind in found.items()):
                found[first, last] = "condition"
    return found


def rendered(kind, original, changed):
    """changed: [(number, text)]. Each on lines of its own, so that a compiler's message tells which it means."""
    lines = []
    for number, text in changed:
        mark = "\n/*change %d*/ " % number
        if kind == "condition":
            lines.append("%snorvixChanged(%d) ? static_cast<bool>(%s) :" % (mark, number, text))
        elif kind == "value":
            lines.append("%snorvixChanged(%d) ? (%s) :" % (mark, number, text))
        else:
            lines.append("%sif (norvixChanged(%d)) { %s } else" % (mark, number, text))
    if kind == "condition":
        return "".join(lines) + "\nstatic_cast<bool>(" + original + ")"
    if kind == "value":
        return "".join(lines) + "\n(" + original + ")"
    return "{" + "".join(lines) + "\n{ " + original + " } }"


def edit_of(change, text, blocks):
    """(start, end, replacement) of a change that was written by hand."""
    spans = places(text, blocks, change)
    if change.nth >= len(spans):
        return None
    start, end = spans[change.nth]
    after = change.after
    while start < end and after and text[start] == after[0]:
        start, after = start + 1, after[1:]
    while start < end and after and text[end - 1] == after[-1]:
        end, after = end - 1, after[:-1]
    return start, end, after


def switchable(file, text, wanted):
    """{change: (place, kind, changed text)} of those wanted that can be switched."""
    code = masked(text)
    around = sorted(holders(code).items())
    known = {change: edit for change, *edit in edits(file, text)}
    found = {}
    for change in wanted:
        edit = known.get(change) or edit_of(change, text, functions(code))
        for (first, last), kind in around if edit else ():
            start, end, replacement = edit
            if first <= start and end <= last and "//" not in re.sub(r'"[^"\n]*"', "", text[first:last]):
                found[change] = ((first, last), kind, text[first:start] + replacement + text[end:last])
                break
    return found


def with_switches(text, chosen, header):
    """The text with all changes built in; chosen: {number: (place, kind, changed text)}."""
    if not chosen:
        return text
    by_place = defaultdict(list)
    for number, (place, kind, changed) in sorted(chosen.items()):
        by_place[place, kind].append((number, changed))
    for (place, kind), changed in sorted(by_place.items(), reverse=True):
        first, last = place
        text = text[:first] + rendered(kind, text[first:last], changed) + text[last:]
    return '#include "%s"\n%s' % (header, text)

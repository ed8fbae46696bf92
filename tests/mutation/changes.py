# SPDX-License-Identifier: MIT
"""Single changes to C++ text, as a careless edit would make them, and where they belong.

A change is stored by function and text, never by line, so that it is found again after a move.
Comments, preprocessor lines and what stands outside the rooms are left alone.
"""
import random
import re
from dataclasses import dataclass, replace

SOURCES = (".cpp", ".h")
NOT_A_CALL = re.compile(r"(return|if|for|while|switch|do|else|delete|throw|using|typedef|static_assert)\b")
CALL_OR_ASSIGNMENT = re.compile(r"(emit\s+)?(\+\+|--|\*)?[\w:]+\s*(\(|\.|->|\[|[-+|&]?=(?!=)|\+\+|--|;)")
LABELS = re.compile(r"(\s*(case\s+[\w:()]+?|default)\s*:(?!:))+")
LITERAL = re.compile(r'R"\((?:.|\n)*?\)"|"(?:\\.|[^"\\\n])*"|(?<![\w])\'(?:\\.|[^\'\\\n])\'')
HEADING = re.compile(r"^(?![#}{/\s]|namespace|using|extern|Q_|public|private|protected)[^\n]+", re.M)


@dataclass(frozen=True)
class Change:
    """In the nth place (from 0) of file's function where it stands, before becomes after."""
    file: str
    function: str
    kind: str
    before: str
    after: str
    nth: int = 0

    @property
    def room(self):
        return self.file.split("/")[0]

    def __str__(self):
        return "%s %s(): %s  ->  %s" % (self.file, self.function, self.before, self.after or "(dropped)")


# ---- reading C++

def masked(text):
    """The text with comments and preprocessor lines blanked and the insides of literals made the same;
    every character keeps its place."""
    pattern = re.compile(r'//[^\n]*|/\*(?:.|\n)*?\*/|^[ ]*#(?:[^\n]*\\\n)*[^\n]*|' + LITERAL.pattern, re.M)

    def replaced(hit):
        piece = hit.group()
        if piece[0] not in "\"'R":
            return re.sub(r"[^\n]", " ", piece)
        edge = (3, 2) if piece[0] == "R" else (1, 1)
        return piece[:edge[0]] + re.sub(r"[^\n]", "_", piece[edge[0]:-edge[1]]) + piece[-edge[1]:]

    return pattern.sub(replaced, text)


def functions(code):
    """(start, end, name) of everything that begins in the first column of masked text: functions,
    classes, tables, constants."""
    found = []
    position = 0
    while True:
        heading = HEADING.search(code, position)
        if not heading:
            return found
        start = heading.start()
        stop = re.compile(r"\{[ ]*$|;[ ]*$|\Z", re.M).search(code, start)
        end = stop.end()
        if "{" in stop.group():
            close = re.compile(r"^\}[^\n]*\n?", re.M).search(code, stop.start() + 1)
            end = close.end() if close else len(code)
        head = re.sub(r"^(template\s*<[^>]*>|const(expr)?|static|inline|\[\[\w+\]\])\s*", "", code[start:stop.start()])
        name = (re.match(r"(?:class|struct|enum(?: class)?|union)\s+(\w+)", head)
                or re.search(r"([\w:~]+)\s*(?:\(|\{)", head.split(" = ")[0])
                or re.search(r"(\w+)(?:\[\w*\])?\s*$", head.split(" = ")[0]))
        found.append((start, end, name.group(1) if name else ""))
        position = max(end, heading.end())


def statements(code, start, end):
    """(start, end) of the simple statements between two places of masked text."""
    begin, depth = start, 0
    for index in range(start, end):
        letter = code[index]
        if letter in "([":
            depth += 1
        elif letter in ")]":
            depth -= 1
        elif letter == "{":
            is_block = depth == 0 and re.search(r"(\)|\belse|\bdo|\bconst|\boverride|[;{}:])\s*$", code[max(0, index - 40):index])
            if is_block:
                begin = index + 1
            else:
                depth += 1
        elif letter == "}":
            if depth > 0:
                depth -= 1
            else:
                begin = index + 1
        elif letter == ";" and depth == 0:
            labels = LABELS.match(code, begin, index)
            first = labels.end() if labels else begin
            first += len(code[first:index]) - len(code[first:index].lstrip())
            yield first, index + 1
            begin = index + 1


def closing(code, index):
    """The place of the bracket that closes the one at index."""
    depth = 0
    for place in range(index, len(code)):
        depth += {"(": 1, ")": -1}.get(code[place], 0)
        if depth == 0:
            return place
    return len(code) - 1


# ---- the kinds of change: each gives (start, end, replacement)

SWAPS = {" < ": " <= ", " <= ": " < ", " > ": " >= ", " >= ": " > ", " == ": " != ", " != ": " == "}
SIGNS = {" + 1": "", " - 1": "", " + ": " - ", "++": "--", "--": "++"}


def tokens(code, table):
    for old, new in table.items():
        for hit in re.finditer(re.escape(old) + (r"\b" if old[-1].isdigit() else ""), code):
            yield hit.start(), hit.end(), new


def comparisons(code, text):
    yield from tokens(code, SWAPS)


def logic(code, text):
    for hit in re.finditer(r"&&|\|\|", code):
        if code[hit.end()] in " \n":  # not a reference to a temporary
            yield hit.start(), hit.end(), "||" if hit.group() == "&&" else "&&"


def negations(code, text):
    for hit in re.finditer(r"\b(if|while) \(", code):
        end = closing(code, hit.end() - 1)
        inside = code[hit.end():end]
        if not re.search(r"(?<![=!<>])=(?!=)", re.sub(r"\(.*\)", "", inside, flags=re.S)):
            yield hit.end(), end, "!(" + text[hit.end():end] + ")"
    for hit in re.finditer(r"(?<![\w=])!(?=[\w(])", code):
        yield hit.start(), hit.end(), ""


def numbers(code, text):
    for hit in re.finditer(r"(?<![\w.])(0x[0-9A-Fa-f]+|\d+)(?![\w.])", code):
        old = hit.group()
        if old.startswith("0x"):
            new = hex(int(old, 16) ^ 1)
        elif len(old) > 1 and old.startswith("0"):
            new = "0%o" % (int(old, 8) ^ 1)
        else:
            new = str(int(old) + 1 if int(old) < 3 else int(int(old) * 1.5))
        yield hit.start(), hit.end(), new


def truths(code, text):
    for hit in re.finditer(r"\b(true|false)\b", code):
        yield hit.start(), hit.end(), "false" if hit.group() == "true" else "true"


def returns(code, text):
    for hit in re.finditer(r"\breturn ([^;]+);", code):
        if not re.fullmatch(r"true|false|\{\}|0|nullptr|std::nullopt|\w+\(\)", hit.group(1)):  # they are that already
            yield hit.start(1), hit.end(1), "{}"


def signs(code, text):
    for start, end, replacement in tokens(code, SIGNS):
        line = code[code.rfind("\n", 0, start):code.find("\n", end)]
        if not re.search(r"Q\w*(Char|String|Literal)|Folder|prefix|path\b", line):  # texts are only added
            yield start, end, replacement


def flags(code, text):
    for hit in re.finditer(r" \| [A-Z]\w+(::\w+)?", code):
        yield hit.start(), hit.end(), ""


def dropped(code, text):
    for start, end, name in functions(code):
        body = code.find("{", start)
        for first, last in statements(code, body + 1, end) if 0 <= body < end else ():
            statement = code[first:last]
            is_constructor = re.match(re.escape(name) + r"\(", statement)
            if CALL_OR_ASSIGNMENT.match(statement) and not NOT_A_CALL.match(statement) and not is_constructor:
                yield first, last, ""


def jumps(code, text):
    for hit in re.finditer(r"\b(break|continue|return);", code):
        yield hit.start(), hit.end(), ""


def elses(code, text):
    for hit in re.finditer(r"\belse(?= \{| if )", code):
        brace = code.find("{", hit.end())
        close = re.compile(r"^%s\}" % re.escape(re.match(r" *", code[code.rfind("\n", 0, hit.start()) + 1:]).group()), re.M)
        end = close.search(code, brace)
        if end:
            yield hit.start(), end.end(), ""


def texts(code, text):
    for hit in LITERAL.finditer(code):
        literal = text[hit.start():hit.end()]
        if literal.startswith("'"):
            yield hit.start(), hit.end(), "'_'" if literal != "'_'" else "'-'"
        elif literal.endswith(')"'):
            yield hit.end() - 2, hit.end() - 2, "x"
        else:
            yield hit.end() - 1, hit.end() - 1, "x"


KINDS = {"comparison": comparisons, "logic": logic, "negation": negations, "number": numbers, "truth": truths,
         "return": returns, "sign": signs, "flag": flags, "dropped": dropped, "jump": jumps, "else": elses,
         "text": texts}


# ---- from places to changes and back

def plain(text):
    return " ".join(text.split())


def sought(before):
    return re.compile(r"(?<!\w)" + r"\s*".join(re.escape(word) for word in before.split()))


def places(text, blocks, change):
    """Where change.before stands within functions of that name."""
    pattern = sought(change.before)
    return [hit.span() for start, end, name in blocks if name == change.function
            for hit in pattern.finditer(text, start, end)]


def edits(file, text):
    """Every change of every kind to this text: (change, start, end, replacement)."""
    code = masked(text)
    blocks = functions(code)
    seen = set()
    for kind, find in KINDS.items():
        for start, end, replacement in find(code, text):
            name = next((name for first, last, name in blocks if first <= start < last), None)
            if name is None:
                continue
            first, last = start, end
            if kind == "jump":  # a bare "break;" says nothing: with the line before it
                first = text.rfind("\n", 0, text.rfind("\n", 0, start)) + 1
            elif kind not in ("dropped", "else") and "\n" not in text[start:end]:
                first = text.rfind("\n", 0, start) + 1
                last = text.find("\n", end)
            first += len(text[first:start]) - len(text[first:start].lstrip())
            if re.search(r"/[/*]", re.sub(LITERAL, "", text[first:last])):
                continue  # joined into one line a comment would swallow the rest
            change = Change(file, name, kind, plain(text[first:last]),
                            plain(text[first:start] + replacement + text[end:last]))
            spans = places(text, blocks, change)
            change = replace(change, nth=next((i for i, span in enumerate(spans) if span[0] == first), -1))
            if change.nth >= 0 and change not in seen:
                seen.add(change)
                yield change, start, end, replacement


def all_changes(file, text):
    """Every change of every kind to this text."""
    return [change for change, *_ in edits(file, text)]


def in_random_order(changes, seed):
    """Shuffled, and kinds by turns, so that the many texts and numbers do not crowd out the rest."""
    chance = random.Random(seed)
    heaps = {}
    for change in changes:
        heaps.setdefault(change.kind, []).append(change)
    kinds = sorted(heaps)
    for kind in kinds:
        chance.shuffle(heaps[kind])
    chance.shuffle(kinds)
    result = []
    while any(heaps.values()):
        result += [heaps[kind].pop() for kind in kinds if heaps[kind]]
    return result


def applied(change, text):
    """The changed text; None when the place is not there (any more)."""
    spans = places(text, functions(masked(text)), change)
    if change.nth >= len(spans):
        return None
    start, end = spans[change.nth]
    return text[:start] + change.after + text[end:]

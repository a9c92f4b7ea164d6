"""Small faults that could be made in the library's sources, found by rules about tokens.

The rules lean on the project's formatting: a comparison has blanks around it, an angle bracket of a
template has none.

SPDX-License-Identifier: MIT
"""

import re
from dataclasses import dataclass
from pathlib import Path

from source_tokens import code_tokens, matching, statements

SWAPS = {
    "comparison": {"<": ["<="], "<=": ["<"], ">": [">="], ">=": [">"], "==": ["!="], "!=": ["=="]},
    "logic": {"&&": ["||"], "||": ["&&"]},
    "arithmetic": {"+": ["-"], "-": ["+"], "*": ["+"], "/": ["*"], "+=": ["-="], "-=": ["+="],
                   "|": ["&"], "&": ["|"], "<<": [">>"], ">>": ["<<"], "%": ["/"]},
    "step": {"++": ["--"], "--": ["++"]},
    "jump": {"break": ["continue"], "continue": ["break"]},
    "truth": {"true": ["false"], "false": ["true"]},
}
NEEDS_BLANKS = {"comparison", "logic", "arithmetic"}
NUMBER = re.compile(r"(0x[0-9A-Fa-f]+|\d+)([uUlLfF.]*.*)")
STATUS = re.compile(r"RGEN_(E_\w+|OK|CANCELED)")
LOCK = re.compile(r"\block_guard\b")
CANCELLATION = re.compile(r"\b(isCancellationRequested|cancel)\b")
RELEASE = re.compile(r"\b(free|release|reset|close|delete|remove|erase|drop|clear|destroy"
                     r"|dispose\w*|rewind|giveBack|closeFile|removeQuietly|rgen_free\w+"
                     r"|pthread_attr_destroy|~\w+|xml\w*(Free|Cleanup)\w*"
                     r"|xslt\w*(Free|Cleanup)\w*)\b")


@dataclass(frozen=True)
class Fault:
    """One change of one source: the characters from `start` to `end` become `text`."""
    file: str
    kind: str
    start: int
    end: int
    text: str
    line: int
    before: str
    after: str
    behind: str  # The line in front of the changed one.

    @property
    def key(self):
        return f"{self.file}:{self.start}:{self.end}:{self.text}"

    def diff(self):
        return f"--- {self.file}:{self.line} ({self.kind})\n- {self.before}\n+ {self.after}"


class SourceFaults:
    """Collects the faults of one source."""

    def __init__(self, name, text):
        self.name = name
        self.text = text
        self.tokens = code_tokens(text)
        self.faults = []

    def add(self, kind, start, end, new):
        """The lines are stored without their indentation, several of them joined by blanks."""
        first = self.text.rfind("\n", 0, start) + 1
        last = self.text.find("\n", end)
        last = len(self.text) if last < 0 else last
        before = self.text[first:last]
        after = self.text[first:start] + new + self.text[end:last]
        if CANCELLATION.search(before) and kind in {"condition", "negation", "statement"}:
            kind = "cancellation"
        self.faults.append(Fault(self.name, kind, start, end, new,
                                 self.text.count("\n", 0, start) + 1,
                                 " ".join(before.split()), " ".join(after.split()),
                                 " ".join(self.text[:first].rstrip("\n").split("\n")[-1].split())))

    def collect(self):
        checked = 0
        for index, token in enumerate(self.tokens):
            if token.text == "static_assert":
                checked = matching(self.tokens, index + 1)
            if index < checked:
                continue
            self.swap(token)
            self.change_literal(token)
            self.change_status(token)
            self.change_condition(index, token)
        for first, last in statements(self.tokens):
            self.change_statement(first, last)
        return self.faults

    def swap(self, token):
        blanks = self.text[token.start - 1:token.start].isspace() and \
            self.text[token.end:token.end + 1].isspace()
        for kind, swaps in SWAPS.items():
            if token.text in swaps and (blanks or kind not in NEEDS_BLANKS):
                for new in swaps[token.text]:
                    self.add(kind, token.start, token.end, new)
        if token.text == "!":
            self.add("negation", token.start, token.end, "")
        if token.text == "?":
            self.add("condition", token.start, token.end, "&& false ?")
            self.add("condition", token.start, token.end, "|| true ?")

    def change_literal(self, token):
        if token.kind == "number":
            match = NUMBER.fullmatch(token.text)
            digits, suffix = match.groups()
            if "." in suffix:
                return
            base = 16 if digits.startswith("0x") else 10
            value = int(digits, base)
            for new in {value + 1, max(value - 1, 0)} - {value}:
                shown = hex(new) if base == 16 else str(new)
                self.add("number", token.start, token.end, shown + suffix)
        elif token.kind == "text":
            self.add("text", token.end - 1, token.end - 1, "?")
        elif token.kind == "character" and len(token.text) == 3:
            new = chr(ord(token.text[1]) ^ 1)
            if new not in "'\\":
                self.add("text", token.start + 1, token.end - 1, new)

    def change_status(self, token):
        if STATUS.fullmatch(token.text):
            new = "RGEN_OK" if token.text == "RGEN_E_UNKNOWN" else "RGEN_E_UNKNOWN"
            self.add("status", token.start, token.end, new)

    def change_condition(self, index, token):
        if token.text not in {"if", "while"} or self.tokens[index + 1].text != "(":
            return
        opening = self.tokens[index + 1]
        closing = self.tokens[matching(self.tokens, index + 1)]
        self.add("condition", opening.end, closing.start, "false")
        if token.text == "if":
            self.add("condition", opening.end, closing.start, "true")

    def change_statement(self, first, last):
        start, end = self.tokens[first].start, self.tokens[last].end
        text = self.text[start:end]
        if self.tokens[first].text == "return":
            inside = self.text[self.tokens[first].end:self.tokens[last].start].strip()
            if inside and not STATUS.fullmatch(inside) and inside not in {"true", "false"}:
                self.add("result", start, end, f"return !({inside});")
            return
        kind = "statement"
        if LOCK.search(text):
            kind = "lock"
        elif RELEASE.search(text):
            kind = "release"
        self.add(kind, start, end, ";")


def source_names(root):
    """The sources of the library that a Linux build compiles, relative to `root`."""
    paths = [*root.glob("src/**/*.cpp"), *root.glob("src/**/*.h")]
    names = [path.relative_to(root).as_posix() for path in paths]
    return sorted(name for name in names if not Path(name).stem.endswith("_windows"))


def all_faults(root, names):
    faults = []
    for name in names:
        faults += SourceFaults(name, (root / name).read_text()).collect()
    return faults

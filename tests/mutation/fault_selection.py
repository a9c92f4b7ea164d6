"""Which faults are tried, and which of them nobody can see.

SPDX-License-Identifier: MIT
"""

import hashlib
from collections import Counter, defaultdict

# A change of a header compiles half the tree again, so headers have fewer of the tried faults.
WEIGHT_OF_HEADERS = 0.3


def selection(faults, seed):
    """All faults in the order in which they are tried: the kinds take turns, and within a kind it
    is the turn of the file that has had the fewest for its share of all faults. Other faults that
    come or go change little of it."""
    by_kind = defaultdict(list)
    share = Counter()
    for fault in faults:
        by_kind[fault.kind].append(fault)
        share[fault.file] += WEIGHT_OF_HEADERS if fault.file.endswith(".h") else 1
    for group in by_kind.values():
        group.sort(key=lambda one: hashlib.sha256(
            f"{seed} {one.file} {one.before} {one.after}".encode()).digest())
    taken = Counter()
    while any(by_kind.values()):
        for kind in sorted(by_kind):
            group = by_kind[kind]
            if not group:
                continue
            fault = min(group, key=lambda one: (taken[one.file] + 1) / (share[one.file] + 10))
            group.remove(fault)
            taken[fault.file] += 1
            yield fault


class Equivalents:
    """The committed list of faults that change nothing that can be seen from outside.

    An entry is a line "file: NAME", the source line with "- " in front, the changed one with "+ ",
    and "why: REASON", which may go on in indented lines. Of several lines alike, "behind: LINE"
    says which one is meant: that below LINE. Line numbers do not matter.
    """

    def __init__(self, path):
        self.reasons = {}
        entry = {}
        last = None
        for number, line in enumerate(path.read_text().splitlines(), 1):
            head, _, rest = line.partition(" ")
            if not line.strip() or line.startswith("#"):
                last = None
            elif head in {"file:", "behind:", "-", "+"}:
                entry[head] = " ".join(rest.split())
            elif head == "why:" and {"file:", "-", "+"} <= set(entry):
                last = (entry["file:"], entry["-"], entry["+"], entry.get("behind:"))
                self.reasons[last] = rest.strip()
                entry = {"file:": entry["file:"]}
            elif last and line.startswith(" "):
                self.reasons[last] += " " + line.strip()
            else:
                raise SystemExit(f"{path}:{number}: not a line of this list: {line}")

    def reason(self, fault):
        return self.reasons.get((fault.file, fault.before, fault.after, fault.behind)) or \
            self.reasons.get((fault.file, fault.before, fault.after, None))

    def unknown(self, faults):
        """The entries that are no possible fault of the sources any more."""
        possible = set()
        for fault in faults:
            possible.add((fault.file, fault.before, fault.after, None))
            possible.add((fault.file, fault.before, fault.after, fault.behind))
        return [entry for entry in self.reasons if entry not in possible]

"""Which lines and branches ran, as gcov tells it.

What counts is what stands in the text: the two ways of a condition or of an operand of "&&", the
cases of a switch. What the compiler adds for exceptions does not:
- of nearly every call it makes a pair of branches, "goes on" and "throws"; gcov marks the second;
- at closing brackets it puts the destructors for the case that something is thrown;
- at a handler it compares the type of what has been thrown;
- it puts destructors at other places, too, with conditions of their own. On a line that runs, a
  pair of branches of which neither is taken is such a one, or stands behind a branch that counts as
  missing itself.

SPDX-License-Identifier: MIT
"""

import json
import re
import subprocess
from collections import defaultdict
from dataclasses import dataclass, field


@dataclass
class Line:
    """One line of a source; `branches` tells of each branch how often it was taken."""
    count: int = 0
    branches: list = field(default_factory=list)

    @property
    def missed(self):
        return sum(count == 0 for count in self.branches)


def without_throws(branches, text):
    """The counts of the branches that are no part of a pair with "throws"."""
    counts = []
    if re.match(r"\s*}?\s*catch \(", text):
        return counts
    for branch in branches:
        if not branch["throw"]:
            counts.append(branch["count"])
        elif counts:
            counts.pop()
    return counts


def without_idle_pairs(counts, text):
    """The counts without the pairs of which neither branch is taken. A switch has no pairs; there
    all of them stay."""
    if len(counts) % 2 or "switch (" in text:
        return counts
    pairs = zip(counts[::2], counts[1::2])
    return [count for pair in pairs if any(pair) for count in pair]


def is_text(line):
    """False for closing brackets alone."""
    return bool(line.strip("{}(); \t"))


def read_objects(root, build, prefix):
    """Counts by source below `prefix` and line number. Functions that several objects or several
    instances of a template have count together."""
    objects = sorted(build.glob("src/**/*.gcno"))
    instances = defaultdict(lambda: defaultdict(list))
    lines = defaultdict(lambda: defaultdict(Line))
    for path in objects:
        run = subprocess.run(["gcov", "--json-format", "--branch-probabilities", "--stdout", path],
                             check=True, capture_output=True, text=True, cwd=build)
        for file in json.loads(run.stdout)["files"]:
            if not file["file"].startswith(prefix):
                continue
            texts = (root / file["file"]).read_text().splitlines()
            for line in file["lines"]:
                number = line["line_number"]
                if not is_text(texts[number - 1]):
                    continue
                lines[file["file"]][number].count += line["count"]
                instances[file["file"]][number].append(
                    without_throws(line["branches"], texts[number - 1]))
    for name, numbers in instances.items():
        texts = (root / name).read_text().splitlines()
        for number, found in numbers.items():
            line = lines[name][number]
            line.branches = together(found)
            if line.count:
                line.branches = without_idle_pairs(line.branches, texts[number - 1])
    return lines


def together(found):
    """The branches of one line in several objects: those of the most common number are added up."""
    lengths = [len(counts) for counts in found]
    longest = max(lengths)
    return [sum(column) for column in zip(*(counts for counts in found if len(counts) == longest))]

"""Compares the lines and branches that gcovr reports as not reached with the list in gaps.txt.

Usage: check_gaps.py COVERAGE.json     (written by gcovr --json)
Prints every difference; the exit code is 0 if there is none. The list has lines "file: NAME", then
"line: TEXT" or "NUMBER branches: TEXT" with the text of the source line, and after one or several
of these "why: REASON", which may continue in indented lines. "at most" before the colon allows
fewer gaps than listed: it is for those that depend on the timing of threads.

SPDX-License-Identifier: MIT
"""

import json
import re
import sys
from collections import Counter
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
GAPS = Path(__file__).with_name("gaps.txt")
ENTRY = re.compile(r"(line|(?P<number>\d+) branch(es)?)(?P<limit> at most)?: (?P<text>.+)")


def found_gaps(report):
    """The number of gaps by source, kind and text of the line, and the line number of each."""
    gaps, places = Counter(), {}
    for file in report["files"]:
        texts = (ROOT / file["file"]).read_text(encoding="utf-8").splitlines()
        for line in file["lines"]:
            number = line["line_number"]
            missed = sum(branch["count"] == 0 for branch in line["branches"])
            kind = "branches" if line["count"] else "line"
            count = missed if line["count"] else 1
            if count and not line.get("gcovr/noncode"):
                key = (file["file"], kind, " ".join(texts[number - 1].split()))
                gaps[key] += count
                places.setdefault(key, number)
    return gaps, places


def listed_gaps():
    """The gaps of the list, and those of them that may be fewer."""
    gaps, variable, file, waiting = Counter(), set(), None, False
    for number, line in enumerate(GAPS.read_text(encoding="utf-8").splitlines(), 1):
        entry = ENTRY.fullmatch(line)
        if not line.strip() or line.startswith(("#", " ")):
            continue
        if line.startswith("file: ") and not waiting:
            file = line.removeprefix("file: ")
        elif entry and file:
            waiting = True
            kind = "branches" if entry["number"] else "line"
            key = (file, kind, " ".join(entry["text"].split()))
            gaps[key] += int(entry["number"] or 1)
            variable |= {key} if entry["limit"] else set()
        elif line.startswith("why: ") and waiting:
            waiting = False
        else:
            sys.exit(f"{GAPS}:{number}: not a line of this list: {line}")
    if waiting:
        sys.exit(f"{GAPS}: the last entry has no reason")
    return gaps, variable


def main():
    found, places = found_gaps(json.loads(Path(sys.argv[1]).read_text(encoding="utf-8")))
    listed, variable = listed_gaps()
    differences = 0
    for key in sorted(set(found) | set(listed)):
        if found[key] == listed[key] or (key in variable and found[key] < listed[key]):
            continue
        differences += 1
        name, kind, text = key
        place = f"{name}:{places[key]}" if key in places else name
        print(f"{place}: {kind} not reached: {found[key]}, listed: {listed[key]}\n    {text}")
    print(f"gaps: {sum(found.values())}, differences from {GAPS.name}: {differences}")
    sys.exit(1 if differences else 0)


main()

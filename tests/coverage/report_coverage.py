"""Compares the lines and branches that the tests run with the list of those that they do not reach.

Usage: report_coverage.py BUILD [--html]
Prints a table and every difference. The code is 0 when there is none and at least 95 % of the
branches are reached. With --html the sources, marked, go to BUILD/coverage.html.

SPDX-License-Identifier: MIT
"""

import html
import re
import sys
from collections import Counter
from pathlib import Path

from gcov_counts import read_objects

ROOT = Path(__file__).resolve().parents[2]
GAPS = Path(__file__).with_name("gaps.txt")
WANTED_BRANCHES = 0.95


def source_line(name, number, cache={}):  # pylint: disable=dangerous-default-value
    if name not in cache:
        cache[name] = (ROOT / name).read_text().splitlines()
    return " ".join(cache[name][number - 1].split())


def found_gaps(lines):
    """How much is not reached, by source, "line" or "branches", and text of the line."""
    gaps, places = Counter(), {}
    for name, numbers in lines.items():
        for number, line in numbers.items():
            kind = "line" if line.count == 0 else "branches"
            missed = 1 if line.count == 0 else line.missed
            if missed:
                key = (name, kind, source_line(name, number))
                gaps[key] += missed
                places.setdefault(key, number)
    return gaps, places


ENTRY = re.compile(r"(line|(?P<number>\d+) branch(es)?)(?P<limit> at most)?: (?P<text>.+)")


def named_gaps():
    """The committed list and, of it, the gaps that may also be smaller. It has lines "file: NAME",
    then "line: TEXT" or "NUMBER branches: TEXT", and behind one or several of these "why: REASON",
    which may go on in indented lines. With "at most" in front of the colon it depends on the moment
    at which threads meet whether there is a gap."""
    gaps, loose, file, waiting = Counter(), set(), None, False
    for number, line in enumerate(GAPS.read_text().splitlines(), 1):
        entry = ENTRY.fullmatch(line)
        if not line.strip() or line.startswith(("#", " ")):
            continue
        if line.startswith("file: ") and not waiting:
            file = line[6:]
        elif entry and file:
            waiting = True
            kind = "branches" if entry["number"] else "line"
            key = (file, kind, " ".join(entry["text"].split()))
            gaps[key] += int(entry["number"] or 1)
            loose |= {key} if entry["limit"] else set()
        elif line.startswith("why: ") and waiting:
            waiting = False
        else:
            sys.exit(f"{GAPS}:{number}: not a line of this list: {line}")
    if waiting:
        sys.exit(f"{GAPS}: the last entry has no reason")
    return gaps, loose


def compare(found, places, named, loose):
    """Prints the differences and tells how many there are."""
    differences = 0
    for key in sorted(set(found) | set(named)):
        if found[key] == named[key] or (key in loose and found[key] < named[key]):
            continue
        differences += 1
        name, kind, text = key
        place = f"{name}:{places[key]}" if key in places else name
        print(f"{place}: {kind} not reached: {found[key]}, named in the list: {named[key]}\n"
              f"    {text}")
    return differences


def percent(part, whole):
    return f"{100 * part / whole:.1f} %" if whole else "-"


def print_table(lines):
    """Prints a row for each source; gives the numbers of all together."""
    print(f"{'source':40} {'lines':>12} {'':>8} {'branches':>12}")
    total = Counter()
    for name in sorted(lines):
        row = Counter()
        for line in lines[name].values():
            row["lines"] += 1
            row["run"] += line.count > 0
            row["branches"] += len(line.branches)
            row["taken"] += len(line.branches) - line.missed
        total += row
        print_row(name, row)
    print_row("in all", total)
    return total


def print_row(name, row):
    print(f"{name:40} {row['run']:6}/{row['lines']:<5} {percent(row['run'], row['lines']):>8} "
          f"{row['taken']:6}/{row['branches']:<5} {percent(row['taken'], row['branches']):>8}")


def write_html(lines, path):
    """One page with all sources: green lines ran, red ones did not, yellow ones miss branches."""
    parts = ["<!DOCTYPE html><meta charset=utf-8><title>Coverage</title><style>"
             "pre{margin:0} .ran{background:#e6f4e6} .part{background:#fff3c4} "
             ".not{background:#f9d0d0}</style>"]
    for name in sorted(lines):
        parts.append(f"<h2>{html.escape(name)}</h2>")
        for number, text in enumerate((ROOT / name).read_text().splitlines(), 1):
            line = lines[name].get(number)
            style, note = "", ""
            if line is not None:
                style = "not" if line.count == 0 else "part" if line.missed else "ran"
                note = f"{line.count} [{' '.join(map(str, line.branches))}]" if line.branches \
                    else str(line.count)
            parts.append(f"<pre class='{style}'>{number:4} {html.escape(text):100} {note}</pre>")
    path.write_text("\n".join(parts))
    print(f"The marked sources are in {path}")


def main():
    build = Path(sys.argv[1]).resolve()
    lines = read_objects(ROOT, build, "src/")
    total = print_table(lines)
    found, places = found_gaps(lines)
    named, loose = named_gaps()
    print()
    differences = compare(found, places, named, loose)
    named_lines = sum(count for key, count in named.items() if key[1] == "line")
    print(f"lines {percent(total['run'], total['lines'])} ({named_lines} named in the list), "
          f"branches {percent(total['taken'], total['branches'])}")
    if "--html" in sys.argv[2:]:
        write_html(lines, build / "coverage.html")
    enough = total["taken"] >= WANTED_BRANCHES * total["branches"]
    sys.exit(0 if enough and not differences else 1)


main()

"""Compares docs/statuses.md with the output of "rgen explain", and that with rgen_status.h.

Usage: check_statuses.py RGEN [--accept]      --accept rewrites the page

SPDX-License-Identifier: MIT
"""

import json
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
PAGE = ROOT / "docs/statuses.md"
sys.path[:0] = [str(ROOT / "tests/structure"), str(ROOT / "tests/abi")]

from project_files import finish, problem  # In tests/structure.
from public_constants import constants_of  # In tests/abi.

HARD_BLANK = "\0"
HEAD = """# Statuses

All 37 statuses of the library: number, name, the English text of `rgen_getStatusCodeDescription`
(letter for letter, misspellings included), likely causes and what to do next in any host
(`rgenh_getStatusNextStep`) and with the commands of `rgen`. `rgen explain` prints the same, and a
test compares this page with it. Zero and positive numbers are success, negative ones failure.

The upper half of the number is the group: `0x0000` success; `0xC000` arguments, directories,
files and the converter; `0xC001` reading the configuration and the persistent data; `0xC002` the
template; `0x8000` cancellation. The description of any other number is "Undescribed error" if one
of its two highest bits is set, else "Unknown code.".
"""


def wrapped(text, first, rest):
    """The words in lines of at most 100 columns, unless a single word is longer."""
    lines = [first]
    for word in text.split():
        if len(lines[-1]) + len(word) >= 100 and lines[-1].strip():
            lines.append(rest)
        lines[-1] += word + " "
    return "".join(line.rstrip() + "\n" for line in lines).replace(HARD_BLANK, " ")


def plain(text):
    """Elements and commands as code, with blanks at which `wrapped` does not break lines."""
    text = re.sub(r'"(rgen [^"]*)"', r"`\1`", text)
    text = re.sub(r"[\w/]*(?:<[^<>]*>)+", r"`\g<0>`", text)
    return re.sub(r"`[^`]*`", lambda code: code.group(0).replace(" ", HARD_BLANK), text)


def page_text(statuses):
    text = HEAD
    for status in statuses:
        text += f"\n## {status['status']} {status['name']}\n\n\"{status['text']}\"\n\n"
        for cause in status["causes"]:
            text += wrapped(plain(cause) + ".", "- ", "  ")
        text += "\n" + wrapped("Next: " + plain(status["next"]), "", "")
        if status["withRgen"]:
            text += "\n" + wrapped("With `rgen`: " + plain(status["withRgen"]), "", "")
    return text


def check_order(statuses):
    """The statuses that the program explains are those of the header, in the same order."""
    header = ROOT / "include/strata_repgenlib/rgen_status.h"
    wanted = [(name.removeprefix("RgenStatus "), number)
              for name, number in constants_of([header]).items()]
    if wanted != [(status["name"], status["status"]) for status in statuses]:
        problem("\"rgen explain\" does not have the statuses of rgen_status.h in their order")


def main():
    program, *options = sys.argv[1:]
    told = subprocess.run([program, "explain", "--json"], capture_output=True, check=True).stdout
    statuses = json.loads(told)["statuses"]
    check_order(statuses)
    wanted = page_text(statuses)
    if options == ["--accept"]:
        PAGE.write_text(wanted, encoding="utf-8")
    if not PAGE.is_file() or PAGE.read_text(encoding="utf-8") != wanted:
        problem(f"{PAGE.relative_to(ROOT)} differs from \"rgen explain\"; "
                f"rewrite it: python3 {Path(__file__).relative_to(ROOT)} {program} --accept")
    finish("statuses")


if __name__ == "__main__":
    main()

"""Compares docs/statuses.md with what "rgen explain" says.

Usage: check_statuses.py RGEN [--accept]      --accept writes the page anew

SPDX-License-Identifier: MIT
"""

import json
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
PAGE = ROOT / "docs/statuses.md"
sys.path.insert(0, str(ROOT / "tests/structure"))

from project_files import finish, problem  # It is in the folder that was added.

HARD_BLANK = "\0"
HEAD = """# Statuses

All 37 statuses of the library: number, name, the English text of `rgen_getStatusCodeDescription`
(letter for letter, slips included), likely causes and the next thing to try. `rgen explain` prints
the same, and a test compares this page with it. Zero and positive numbers are success, negative
ones failure.

The upper half of the number tells the group: `0x0000` success; `0xC000` arguments, directories,
files and the converter; `0xC001` reading the configuration and the persistent data; `0xC002` the
template; `0x8000` cancellation. A number without a description gives "Undescribed error" when one
of its two highest bits is set, and "Unknown code." otherwise.
"""


def wrapped(text, first, rest):
    """The words in lines of at most 100 columns; a single one may be longer."""
    lines = [first]
    for word in text.split():
        if len(lines[-1]) + len(word) >= 100 and lines[-1].strip():
            lines.append(rest)
        lines[-1] += word + " "
    return "".join(line.rstrip() + "\n" for line in lines).replace(HARD_BLANK, " ")


def plain(text):
    """Elements and commands as code, with blanks inside that `wrapped` does not break at."""
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
    return text


def main():
    program, *options = sys.argv[1:]
    told = subprocess.run([program, "explain", "--json"], capture_output=True, check=True).stdout
    wanted = page_text(json.loads(told)["statuses"])
    if options == ["--accept"]:
        PAGE.write_text(wanted, encoding="utf-8")
    if not PAGE.is_file() or PAGE.read_text(encoding="utf-8") != wanted:
        problem(f"{PAGE.relative_to(ROOT)} differs from \"rgen explain\"; "
                f"write it anew: python3 {Path(__file__).relative_to(ROOT)} {program} --accept")
    finish("statuses")


if __name__ == "__main__":
    main()

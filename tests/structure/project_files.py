"""What the structure checks share: the project's files and how a check reports.

SPDX-License-Identifier: MIT
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
CODE_ENDINGS = {".c", ".cpp", ".h", ".hpp"}
SCRIPT_ENDINGS = {".cmake", ".py", ".sh", ".txt", ".env", ".in", ".map", ".def"}
CODE_FOLDERS = ["include", "src", "host", "tests", "examples", "tools", "benchmarks", "bindings"]

_problems = []


def problem(text):
    """Notes one violation."""
    _problems.append(text)


def finish(what):
    """Prints the violations and ends the program; the code says whether there was one."""
    for text in _problems:
        print(text)
    print(f"{what}: {len(_problems)} problem(s)" if _problems else f"{what}: fine")
    sys.exit(1 if _problems else 0)


def code_files(*folders):
    """The C and C++ files below the named folders, all code folders by default."""
    for folder in folders or CODE_FOLDERS:
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix in CODE_ENDINGS and path.is_file():
                yield path


def own_files():
    """Every text file that was written for the project."""
    for path in sorted(ROOT.rglob("*")):
        inside = path.relative_to(ROOT).parts
        if inside[0] in {".git", "build"} or "__pycache__" in inside or not path.is_file():
            continue
        yield path


def relative(path):
    return path.relative_to(ROOT).as_posix()


def without_comments(text):
    """C or C++ text with comments blanked out; line numbers stay as they are."""
    pattern = r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\''

    def blank(match):
        token = match.group(0)
        return re.sub(r"[^\n]", " ", token) if token.startswith("/") else token

    return re.sub(pattern, blank, text, flags=re.S)


def header_exports():
    """The functions that the public header declares for export."""
    text = without_comments((ROOT / "include/strata_repgenlib/rgen.h").read_text())
    return set(re.findall(r"\bRGEN_API\b[^;{]*?\bRGEN_CALL\s+(rgen_\w+)\s*\(", text))

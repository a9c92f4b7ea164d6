"""What the structure checks share: the project's files and how a check reports.

SPDX-License-Identifier: MIT
"""

import re
import sys
from dataclasses import dataclass
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


@dataclass(frozen=True)
class Library:
    """One of the two shared libraries: what its header declares."""
    header: str
    mark: str  # The macro of exported functions.
    prefix: str
    exports: int  # How many there are.


LIBRARIES = {
    "strata_repgenlib": Library("rgen.h", "RGEN_API", "rgen_", 26),
    "strata_repgenlib_host": Library("rgen_host.h", "RGENH_API", "rgenh_", 36),
}


def header_text(library):
    """The header of a library without its comments."""
    return without_comments((ROOT / "include/strata_repgenlib" / library.header).read_text())


def header_exports(library=LIBRARIES["strata_repgenlib"]):
    """The functions that the header of a library declares for export."""
    pattern = rf"\b{library.mark}\b[^;{{]*?\bRGEN_CALL\s+({library.prefix}\w+)\s*\("
    return set(re.findall(pattern, header_text(library)))

"""Names from the public headers, and their numbers from the C compiler.

Only the few forms in which the headers declare functions and named numbers are looked for; a test
compares the names of the functions with what the libraries export.

SPDX-License-Identifier: MIT
"""

import re
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

LIBRARY_HEADERS = ("rgen_status.h", "rgen.h")
ALL_HEADERS = (*LIBRARY_HEADERS, "rgen_host.h")
COMMENT = re.compile(r"/\*.*?\*/", re.S)
FUNCTION = re.compile(r"\bRGENH?_API\s+(?P<result>[\w\s*]+?)\s*RGEN_CALL\s+(?P<name>\w+)"
                      r"\((?P<parameters>[^()]*)\)")
ENUMERATION = re.compile(r"\benum (\w+) \{(.*?)\}", re.S)
ENUMERATOR = re.compile(r"(\w+)\s*=")
STATUS = re.compile(r"^#define (RGEN_\w+) RGEN_STATUS\(", re.M)
NUMBER = re.compile(r"^#define (RGENH?_\w+) (?:\d+|UINT64_MAX)$", re.M)
VERSION = "RGEN_VERSION_"


class HeaderError(Exception):
    """The C compiler refuses the headers."""


@dataclass(frozen=True)
class Function:
    name: str
    result: str
    parameters: str

    @property
    def parameter_count(self) -> int:
        return 0 if self.parameters == "void" else self.parameters.count(",") + 1


def text_of(include: Path, headers: tuple[str, ...]) -> str:
    """The headers in include/strata_repgenlib, without comments."""
    folder = include / "strata_repgenlib"
    return "".join(COMMENT.sub("", (folder / name).read_text(encoding="ascii"))
                   for name in headers)


def functions_of(include: Path, headers: tuple[str, ...] = ALL_HEADERS) -> list[Function]:
    return [Function(match["name"], " ".join(match["result"].split()),
                     " ".join(match["parameters"].split()))
            for match in FUNCTION.finditer(text_of(include, headers))]


def constants_of(include: Path,
                 headers: tuple[str, ...] = ALL_HEADERS) -> list[tuple[str, str]]:
    """The type and name of every named number but the version: ("RgenHint", "RGEN_HINT_TIME"). The
    type of a macro that is no status is "macro"."""
    text = text_of(include, headers)
    found = [("RgenStatus", name) for name in STATUS.findall(text)]
    for kind, enumerators in ENUMERATION.findall(text):
        found += [(kind, name) for name in ENUMERATOR.findall(enumerators)]
    return found + [("macro", name) for name in NUMBER.findall(text)
                    if not name.startswith(VERSION)]


def numbers_of(include: Path, expressions: list[str],
               headers: tuple[str, ...] = ALL_HEADERS) -> dict[str, int]:
    """The values that the C compiler computes for integer expressions."""
    lines = ["#include <stddef.h>", "#include <stdio.h>",
             *(f'#include "strata_repgenlib/{name}"' for name in headers), "int main(void) {",
             *(f'    printf("%llu\\n", (unsigned long long)({text}));' for text in expressions),
             "    return 0;", "}", ""]
    with tempfile.TemporaryDirectory() as folder:
        source, program = Path(folder, "numbers.c"), Path(folder, "numbers")
        source.write_text("\n".join(lines), encoding="ascii")
        built = subprocess.run(["gcc", "-std=c11", f"-I{include}", source, "-o", program],
                               capture_output=True, text=True, check=False)
        if built.returncode != 0:
            raise HeaderError(built.stderr.strip())
        printed = subprocess.run([program], check=True, capture_output=True, text=True).stdout
    return dict(zip(expressions, (signed(int(line)) for line in printed.split()), strict=True))


def signed(number: int) -> int:
    return number - (1 << 64) if number >= 1 << 63 else number

"""Reads the named numbers and the prototypes of the public headers, whose few forms of C it knows. Any
other form of a constant is an error, so that none is left out silently.

SPDX-License-Identifier: MIT
"""

import re
from pathlib import Path

COMMENT = re.compile(r"/\*.*?\*/", re.S)
ENUMERATION = re.compile(r"\benum (\w+) \{(.*?)\};", re.S)
ENUMERATOR = re.compile(r"\s*(\w+)\s*=\s*(\d+)\s*")
MACRO = re.compile(r"^#define (\w+)(.*)$", re.M)
STATUS = re.compile(r" RGEN_STATUS\(0x([0-9A-F]{8})U\)")
NUMBER = re.compile(r" (\d+|UINT64_MAX)")
# Macros that are no constants, and the version, which is no promise.
OTHER_MACRO = re.compile(r"STRATA_REPGENLIB_\w+_H|RGEN_VERSION_\w+|RGENH?_(CALL|API|NOEXCEPT|STATUS)")
PROTOTYPE = re.compile(r"\bRGENH?_API\s+([^;{}#]*?\bRGEN_CALL\s+rgenh?_\w+\([^;]*?\))[^;)]*;")


class HeaderError(Exception):
    """A header contains a form of a constant that is not known here."""


def text_of(header: Path) -> str:
    return COMMENT.sub("", header.read_text(encoding="ascii"))


def enumerators(header: Path) -> dict[str, str]:
    """Each with the name of its enumeration before its own."""
    found = {}
    for name, body in ENUMERATION.findall(text_of(header)):
        for entry in body.rstrip().removesuffix(",").split(","):
            match = ENUMERATOR.fullmatch(entry)
            if not match:
                raise HeaderError(f"{header.name}: not a constant of {name}: {entry.strip()}")
            found[f"{name} {match[1]}"] = match[2]
    return found


def macros(header: Path) -> dict[str, str]:
    """The statuses and the other numbers that are macros."""
    found = {}
    for name, value in MACRO.findall(text_of(header)):
        status, number = STATUS.fullmatch(value.rstrip()), NUMBER.fullmatch(value.rstrip())
        if status:
            found[f"RgenStatus {name}"] = f"0x{status[1]}"
        elif number and not OTHER_MACRO.fullmatch(name):
            found[f"macro {name}"] = number[1]
        elif not OTHER_MACRO.fullmatch(name):
            raise HeaderError(f"{header.name}: not a constant: {name}{value}")
    return found


def constants_of(headers: list[Path]) -> dict[str, str]:
    """Every named number of the headers, in their order."""
    found: dict[str, str] = {}
    for header in headers:
        found |= macros(header) | enumerators(header)
    return found


def prototypes(header: Path) -> list[str]:
    """The exported functions, without the semicolons at their ends."""
    return [" ".join(found.split()) for found in PROTOTYPE.findall(text_of(header))]

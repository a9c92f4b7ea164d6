"""The dump of a library's binary interface, as abidw of libabigail writes it.

SPDX-License-Identifier: MIT
"""

import re
import subprocess
from pathlib import Path
from xml.etree import ElementTree

# Only what the public headers declare counts; the dump contains nothing of the build machine.
DUMP_OPTIONS = ["--drop-private-types", "--drop-undefined-syms", "--exported-interfaces-only",
                "--no-corpus-path", "--no-show-locs", "--no-comp-dir-path", "--no-elf-needed",
                "--type-id-style", "hash"]
COMPARE_OPTIONS = ["--no-show-locs", "--harmless", "--redundant", "--no-default-suppression"]
# Bits of the exit code of abidiff.
FAILED, CHANGED, INCOMPATIBLE = 3, 4, 8
# Compiler, language level and file name of the build say nothing about the interface.
UNIT = re.compile(r"<abi-instr [^>]*>")


class DumpError(Exception):
    """The tools refused, or the library is not fit for a dump."""


def run_tool(command: list[str | Path], accepted: int) -> subprocess.CompletedProcess[str]:
    try:
        outcome = subprocess.run(command, capture_output=True, text=True, check=False)
    except FileNotFoundError as error:
        raise DumpError(f"there is no {command[0]}: install abigail-tools") from error
    if outcome.returncode & ~accepted:
        raise DumpError(f"{command[0]} failed: {outcome.stderr.strip() or outcome.stdout.strip()}")
    return outcome


def dump_of(library: Path, include: Path) -> str:
    """The interface of a library that has debug information; the folder holds its headers."""
    command = ["abidw", "--headers-dir", include, *DUMP_OPTIONS, library]
    text = run_tool(command, 0).stdout
    if "<function-decl" not in text:
        raise DumpError(f"{library} has no debug information, without which it cannot be compared")
    return UNIT.sub("<abi-instr address-size='64' path='library' language='LANG_C99'>", text)


class Comparison:
    """What abidiff says about two dumps."""

    def __init__(self, old: Path, new: Path) -> None:
        outcome = run_tool(["abidiff", *COMPARE_OPTIONS, old, new], CHANGED | INCOMPATIBLE)
        self.report = outcome.stdout.strip()
        self.is_same = outcome.returncode == 0 and not self.report
        removed_or_changed = re.findall(
            r"^Functions changes summary: (\d+) Removed, (\d+) Changed", self.report, re.M)
        only_added = removed_or_changed == [("0", "0")] and not outcome.returncode & INCOMPATIBLE
        self.is_compatible = self.is_same or (only_added and "SONAME" not in self.report)


# ---- Records that may grow ----------------------------------------------------------------------

def fields_of(record: ElementTree.Element) -> list[tuple[str, int, str]]:
    """Name, offset and type of each field."""
    return [(field[0].get("name", ""), int(member.get("layout-offset-in-bits", "0")),
             field[0].get("type-id", ""))
            for member in record.findall("data-member") if (field := list(member))]


def growth(old: ElementTree.Element, new: ElementTree.Element) -> list[str]:
    """The fields that a record has after its old end; empty if anything else changed."""
    before, after = fields_of(old), fields_of(new)
    added = after[len(before):]
    end = int(old.get("size-in-bits", "0"))
    if after[:len(before)] != before or any(offset < end for _, offset, _ in added):
        return []
    return [name for name, _, _ in added]


def records_of(dump: ElementTree.Element, names: tuple[str, ...]) -> dict[str, ElementTree.Element]:
    return {name: record for name in names
            for record in dump.findall(f".//class-decl[@name='{name}']")
            if record.find("data-member") is not None}


def grown_records(old: str, new: str, names: tuple[str, ...]) -> dict[str, list[str]]:
    """Of the named records those that have grown at their end, with the added fields."""
    before = records_of(ElementTree.fromstring(old), names)
    after = records_of(ElementTree.fromstring(new), names)
    grown = {name: growth(before[name], after[name]) for name in before if name in after}
    return {name: fields for name, fields in grown.items() if fields}


def without_growth(old: str, new: str, names: tuple[str, ...]) -> str:
    """The new dump with those records as they were."""
    grown = grown_records(old, new, names)
    if not grown:
        return new
    before = records_of(ElementTree.fromstring(old), names)
    dump = ElementTree.fromstring(new)
    for name, record in records_of(dump, names).items():
        if name in grown:
            for member in record.findall("data-member")[-len(grown[name]):]:
                record.remove(member)
            record.set("size-in-bits", before[name].get("size-in-bits", ""))
    return ElementTree.tostring(dump, encoding="unicode")

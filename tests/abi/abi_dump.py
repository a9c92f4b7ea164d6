"""The dump of a library's binary interface, as abidw of libabigail writes it.

SPDX-License-Identifier: MIT
"""

import re
import subprocess
from pathlib import Path

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

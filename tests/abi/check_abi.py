"""Compares the binary interfaces of the libraries with those that are committed.

Usage: check_abi.py LIBRARY...             code 1 and a list of the changes when there are any
       check_abi.py --accept LIBRARY...    makes the interface of each LIBRARY the committed one

LIBRARY is build/linux/bin/libstrata_repgenlib.so or libstrata_repgenlib_host.so, with debug
information. Functions and records are compared through NAME.abi, which abidw writes; statuses and other
named numbers, which a binary does not have, through a list. docs/abi.md says which changes are allowed.

SPDX-License-Identifier: MIT
"""

import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
ROOT = FOLDER.parents[1]

from abi_dump import Comparison, DumpError, dump_of, grown_records, without_growth
from public_constants import HeaderError, constants_of

CONSTANTS_HEAD = """# The named numbers of {headers}. check_abi.py --accept writes this file.
# SPDX-License-Identifier: MIT
"""
ADVICE = """
If a change is not intended, undo it. If it is, take it over and commit the result:
    python3 tests/abi/check_abi.py --accept build/linux/bin/lib{name}.so
docs/abi.md says what else an incompatible change needs."""


@dataclass(frozen=True)
class Interface:
    """What is committed about a library."""
    name: str
    headers: tuple[str, ...]
    dump: Path
    constants: Path
    growing: tuple[str, ...]  # Records whose first field is their size.

    def header_paths(self, include: Path) -> list[Path]:
        return [include / "strata_repgenlib" / header for header in self.headers]


FIRST = Interface("strata_repgenlib", ("rgen_status.h", "rgen.h"), FOLDER / "strata_repgenlib.abi",
                  FOLDER / "public_constants.txt", ())
HOST = Interface("strata_repgenlib_host", ("rgen_host.h",), FOLDER / "strata_repgenlib_host.abi",
                 FOLDER / "host_constants.txt",
                 ("RgenhError", "RgenhRequestParts", "RgenhVersions"))
INTERFACES = {f"lib{interface.name}": interface for interface in (FIRST, HOST)}


def interface_of(library: Path) -> Interface:
    name = library.name.partition(".so")[0]
    if name not in INTERFACES:
        raise DumpError(f"{library} is none of {', '.join(INTERFACES)}")
    return INTERFACES[name]


def constants_text(interface: Interface, constants: dict[str, str]) -> str:
    head = CONSTANTS_HEAD.format(headers=" and ".join(interface.headers))
    return head + "".join(f"{name} {text}\n" for name, text in constants.items())


def committed_constants(path: Path) -> dict[str, str]:
    lines = [line for line in path.read_text().splitlines() if line and not line.startswith("#")]
    return {name: text for name, text in (line.rsplit(" ", 1) for line in lines)}


class Verdict:
    """The changes, as text, and whether hosts that exist go on to work."""

    def __init__(self) -> None:
        self.lines: list[str] = []
        self.is_compatible = True

    def add(self, text: str, is_compatible: bool) -> None:
        self.lines.append(text)
        self.is_compatible = self.is_compatible and is_compatible

    def compare_constants(self, old: dict[str, str], new: dict[str, str]) -> None:
        for name in old:
            if name not in new:
                self.add(f"constant removed: {name} (was {old[name]})", False)
            elif old[name] != new[name]:
                self.add(f"constant changed: {name} from {old[name]} to {new[name]}", False)
        for name in new:
            if name not in old:
                self.add(f"constant added: {name} = {new[name]}", True)

    def compare_dumps(self, interface: Interface, old: str, new: str) -> None:
        """Records that may grow are compared in their old size."""
        for record, fields in grown_records(old, new, interface.growing).items():
            self.add(f"record grown at its end: {record} by {', '.join(fields)}", True)
        with tempfile.TemporaryDirectory() as folder:
            paths = Path(folder, "old.abi"), Path(folder, "new.abi")
            paths[0].write_text(old, encoding="utf-8")
            paths[1].write_text(without_growth(old, new, interface.growing), encoding="utf-8")
            comparison = Comparison(*paths)
        if not comparison.is_same:
            self.add(comparison.report, comparison.is_compatible)


def compare(interface: Interface, library: Path, include: Path) -> Verdict:
    """Compares a library and its headers in include/strata_repgenlib with what is committed."""
    verdict = Verdict()
    verdict.compare_constants(committed_constants(interface.constants),
                              constants_of(interface.header_paths(include)))
    verdict.compare_dumps(interface, interface.dump.read_text(encoding="utf-8"),
                          dump_of(library, include))
    return verdict


def accept(interface: Interface, library: Path, include: Path) -> None:
    interface.dump.write_text(dump_of(library, include), encoding="utf-8")
    constants = constants_of(interface.header_paths(include))
    interface.constants.write_text(constants_text(interface, constants), encoding="utf-8")
    print(f"written: {interface.dump.name}, {interface.constants.name}")


def check(interface: Interface, library: Path, include: Path) -> int:
    verdict = compare(interface, library, include)
    if not verdict.lines:
        print(f"binary interface of {interface.name}: as committed")
        return 0
    kind = ("compatible: hosts that exist go on to work" if verdict.is_compatible
            else "INCOMPATIBLE: hosts that exist may break")
    print("\n".join([f"The binary interface of {interface.name} has changed ({kind}):", "",
                     *verdict.lines, ADVICE.format(name=interface.name)]))
    return 1


def main() -> int:
    arguments = [word for word in sys.argv[1:] if word != "--accept"]
    if not arguments or any(word.startswith("-") for word in arguments):
        print(__doc__)
        return 2
    code = 0
    try:
        for library in map(Path, arguments):
            interface = interface_of(library)
            if "--accept" in sys.argv[1:]:
                accept(interface, library, ROOT / "include")
            else:
                code |= check(interface, library, ROOT / "include")
    except (DumpError, HeaderError) as error:
        print(f"check_abi.py: {error}", file=sys.stderr)
        return 1
    return code


if __name__ == "__main__":
    sys.exit(main())

"""Compares the binary interface of the library with the one that is committed.

Usage: check_abi.py LIBRARY             code 1 and a list of the changes when there are any
       check_abi.py --accept LIBRARY    makes the interface of LIBRARY the committed one

LIBRARY is build/linux/bin/libstrata_repgenlib.so, with debug information. Functions and records are
compared through strata_repgenlib.abi, which abidw writes; statuses and other named numbers, which
a binary does not have, through public_constants.txt. docs/abi.md says which changes are allowed.

SPDX-License-Identifier: MIT
"""

import sys
import tempfile
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
ROOT = FOLDER.parents[1]
sys.path.insert(0, str(ROOT / "bindings"))

from abi_dump import Comparison, DumpError, dump_of  # The folder of this file holds it.
from header_reader import Header, HeaderError, read_headers

DUMP = FOLDER / "strata_repgenlib.abi"
CONSTANTS = FOLDER / "public_constants.txt"
CONSTANTS_HEAD = """# The named numbers of the public headers. check_abi.py --accept writes this file.
# SPDX-License-Identifier: MIT
"""
ADVICE = """
If a change is not intended, undo it. If it is, take it over and commit the result:
    python3 tests/abi/check_abi.py --accept build/linux/bin/libstrata_repgenlib.so
docs/abi.md says what else an incompatible change needs."""


def constants_of(header: Header) -> dict[str, str]:
    """Every named number of the headers but the version, which is no promise."""
    statuses = {item.name: f"0x{item.value & 0xFFFFFFFF:08X}" for item in header.statuses}
    numbers = {f"{kind.name} {item.name}": str(item.value)
               for kind in header.enumerations for item in kind.constants}
    return {**{f"RgenStatus {name}": text for name, text in statuses.items()}, **numbers}


def constants_text(constants: dict[str, str]) -> str:
    return CONSTANTS_HEAD + "".join(f"{name} {text}\n" for name, text in constants.items())


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

    def compare_dumps(self, old: Path, new: Path) -> None:
        comparison = Comparison(old, new)
        if not comparison.is_same:
            self.add(comparison.report, comparison.is_compatible)


def compare(library: Path, include: Path) -> Verdict:
    """Compares a library and the headers in include/strata_repgenlib with what is committed."""
    verdict = Verdict()
    verdict.compare_constants(committed_constants(CONSTANTS),
                              constants_of(read_headers(include / "strata_repgenlib")))
    with tempfile.TemporaryDirectory() as folder:
        dump = Path(folder, "library.abi")
        dump.write_text(dump_of(library, include), encoding="utf-8")
        verdict.compare_dumps(DUMP, dump)
    return verdict


def accept(library: Path, include: Path) -> None:
    DUMP.write_text(dump_of(library, include), encoding="utf-8")
    header = read_headers(include / "strata_repgenlib")
    CONSTANTS.write_text(constants_text(constants_of(header)), encoding="utf-8")
    print(f"written: {DUMP.name}, {CONSTANTS.name}")


def check(library: Path, include: Path) -> int:
    verdict = compare(library, include)
    if not verdict.lines:
        print("binary interface: as committed")
        return 0
    kind = ("compatible: hosts that exist go on to work" if verdict.is_compatible
            else "INCOMPATIBLE: hosts that exist may break")
    print("\n".join([f"The binary interface has changed ({kind}):", "", *verdict.lines, ADVICE]))
    return 1


def main() -> int:
    arguments = [word for word in sys.argv[1:] if word != "--accept"]
    if len(arguments) != 1 or arguments[0].startswith("-"):
        print(__doc__)
        return 2
    try:
        if "--accept" not in sys.argv[1:]:
            return check(Path(arguments[0]), ROOT / "include")
        accept(Path(arguments[0]), ROOT / "include")
    except (DumpError, HeaderError) as error:
        print(f"check_abi.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())

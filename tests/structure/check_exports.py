"""The exported names of a library are the same in the binary, in its public header, in the export list
that the linker reads, and in the table of exports in docs/architecture.md.

Usage: check_exports.py LIBRARY BINARY EXPORT_LIST     (LIBRARY: strata_repgenlib[_host])

SPDX-License-Identifier: MIT
"""

import re
import subprocess
import sys
from pathlib import Path

from project_files import LIBRARIES, ROOT, finish, header_exports, problem


def exports_of(binary):
    if binary.suffix == ".dll":
        text = subprocess.check_output(["objdump", "-p", binary], text=True)
        table = text.split("[Ordinal/Name Pointer] Table", 1)[1].split("\n\n", 1)[0]
        return set(re.findall(r"\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+)?(\S+)", table))
    text = subprocess.check_output(["nm", "--dynamic", "--defined-only", binary], text=True)
    return {line.split()[-1].split("@")[0] for line in text.splitlines()}


def documented_exports(prefix):
    document = (ROOT / "docs/architecture.md").read_text()
    return set(re.findall(rf"^\|\s*`({prefix}\w+)`", document, flags=re.M))


def listed_exports(path):
    """Every name of the list, whatever its prefix."""
    return set(re.findall(r"^\s+(\w+);?\s*$", path.read_text(), flags=re.M))


def compare(what, names, wanted):
    for name in sorted(wanted - names):
        problem(f"{what}: {name} is missing")
    for name in sorted(names - wanted):
        problem(f"{what}: {name} is too much")


library = LIBRARIES[sys.argv[1]]
declared = header_exports(library)
if len(declared) != library.exports:
    problem(f"{library.header} declares {len(declared)} functions instead of {library.exports}")
compare(sys.argv[2], exports_of(Path(sys.argv[2])), declared)
compare(sys.argv[3], listed_exports(Path(sys.argv[3])), declared)
compare("docs/architecture.md", documented_exports(library.prefix), declared)
finish(f"exports of {sys.argv[1]}")

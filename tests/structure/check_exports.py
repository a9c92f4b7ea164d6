"""The exported names are the same in the binary, in the public header, in the export list that the
linker reads, and in the export map of docs/architecture.md.

Usage: check_exports.py BINARY EXPORT_LIST

SPDX-License-Identifier: MIT
"""

import re
import subprocess
import sys
from pathlib import Path

from project_files import ROOT, finish, header_exports, problem

COUNT = 26


def exports_of(binary):
    if binary.suffix == ".dll":
        text = subprocess.check_output(["objdump", "-p", binary], text=True)
        table = text.split("[Ordinal/Name Pointer] Table", 1)[1].split("\n\n", 1)[0]
        return set(re.findall(r"\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+)?(\S+)", table))
    text = subprocess.check_output(["nm", "--dynamic", "--defined-only", binary], text=True)
    return {line.split()[-1].split("@")[0] for line in text.splitlines()}


def documented_exports():
    document = (ROOT / "docs/architecture.md").read_text()
    return set(re.findall(r"^\|\s*`(rgen_\w+)`", document, flags=re.M))


def listed_exports(path):
    return set(re.findall(r"^\s+(rgen_\w+);?\s*$", path.read_text(), flags=re.M))


def compare(what, names, wanted):
    for name in sorted(wanted - names):
        problem(f"{what}: {name} is missing")
    for name in sorted(names - wanted):
        problem(f"{what}: {name} is too much")


declared = header_exports()
if len(declared) != COUNT:
    problem(f"the public header declares {len(declared)} functions instead of {COUNT}")
compare(sys.argv[1], exports_of(Path(sys.argv[1])), declared)
compare(sys.argv[2], listed_exports(Path(sys.argv[2])), declared)
compare("docs/architecture.md", documented_exports(), declared)
finish("exports")

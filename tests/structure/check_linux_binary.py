"""The shared library on Linux: its SONAME, what it needs, the oldest C and C++ libraries that it runs
on, and no folder of the building machine inside.

Usage: check_linux_binary.py BINARY SONAME FOLDER...

SPDX-License-Identifier: MIT
"""

import re
import sys
from pathlib import Path

from linux_binary import NEEDED, check_symbol_versions, readelf
from project_files import finish, problem


def check_dynamic_section(binary, soname):
    text = readelf("--dynamic", binary)
    if f"Library soname: [{soname}]" not in text:
        problem(f"the SONAME is not {soname}")
    for library in re.findall(r"Shared library: \[([^\]]+)\]", text):
        if library not in NEEDED:
            problem(f"needs {library}")
    if re.search(r"\((RPATH|RUNPATH|TEXTREL)\)", text):
        problem("has a run path or text relocations")
    if "BIND_NOW" not in text and "NOW" not in text:
        problem("is not bound at start")
    if re.search(r"GNU_STACK.*RWE", readelf("--program-headers", binary)):
        problem("asks for an executable stack")


def check_folders(binary, folders):
    content = Path(binary).read_bytes()
    for folder in folders:
        if folder and folder.encode() in content:
            problem(f"contains the folder {folder}")


check_dynamic_section(sys.argv[1], sys.argv[2])
check_symbol_versions(sys.argv[1])
check_folders(sys.argv[1], sys.argv[3:])
finish("Linux binary")

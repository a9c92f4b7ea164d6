"""The shared library on Linux: its SONAME, what it needs, the oldest C and C++ libraries that it runs
on, and no folder of the building machine inside.

Usage: check_linux_binary.py BINARY SONAME FOLDER...

SPDX-License-Identifier: MIT
"""

import re
import subprocess
import sys
from pathlib import Path

from project_files import finish, problem

# The newest symbol version of each kind that may be needed; docs/building.md states the same.
NEWEST = {"GLIBC": (2, 34), "GLIBCXX": (3, 4, 29), "CXXABI": (1, 3, 13), "GCC": (3, 3, 1)}
NEEDED = {"ld-linux-x86-64.so.2", "libc.so.6", "libgcc_s.so.1", "libm.so.6", "libstdc++.so.6"}


def readelf(*arguments):
    return subprocess.check_output(["readelf", "--wide", *arguments], text=True)


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


def check_symbol_versions(binary):
    for name, digits in sorted(set(re.findall(r"Name: ([A-Z]+)_([0-9.]+)",
                                              readelf("--version-info", binary)))):
        version = tuple(int(part) for part in digits.split("."))
        if name not in NEWEST or version > NEWEST[name]:
            problem(f"needs {name}_{digits}, which is newer than the stated oldest system")


def check_folders(binary, folders):
    content = Path(binary).read_bytes()
    for folder in folders:
        if folder and folder.encode() in content:
            problem(f"contains the folder {folder}")


check_dynamic_section(sys.argv[1], sys.argv[2])
check_symbol_versions(sys.argv[1])
check_folders(sys.argv[1], sys.argv[3:])
finish("Linux binary")

"""What the checks of Linux binaries share: the oldest C and C++ libraries that they have to run on.

SPDX-License-Identifier: MIT
"""

import re
import subprocess

from project_files import problem

# The newest symbol version of each kind that may be needed; docs/building.md states the same.
NEWEST = {"GLIBC": (2, 34), "GLIBCXX": (3, 4, 29), "CXXABI": (1, 3, 13), "GCC": (3, 3, 1)}
NEEDED = {"ld-linux-x86-64.so.2", "libc.so.6", "libgcc_s.so.1", "libm.so.6", "libstdc++.so.6"}


def readelf(*arguments):
    return subprocess.check_output(["readelf", "--wide", *arguments], text=True)


def check_symbol_versions(binary):
    for name, digits in sorted(set(re.findall(r"Name: ([A-Z]+)_([0-9.]+)",
                                              readelf("--version-info", binary)))):
        version = tuple(int(part) for part in digits.split("."))
        if name not in NEWEST or version > NEWEST[name]:
            problem(f"needs {name}_{digits}, which is newer than the stated oldest system")

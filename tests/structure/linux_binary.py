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


def check_hardening(binary, checked_functions=True):
    """The protections that rgen_harden() of cmake/build_settings.cmake asks for."""
    symbols = set(re.findall(r"\b(\w+)@", readelf("--dyn-syms", binary)))
    if "__stack_chk_fail" not in symbols:
        problem(f"{binary} has no protected stack frames")
    if checked_functions and not any(re.fullmatch(r"__\w+_chk", name) for name in symbols):
        problem(f"{binary} has no copies with checked sizes")
    if not re.search(r"x86 feature:.*\bSHSTK\b", readelf("--notes", binary)):
        problem(f"{binary} does not state that it keeps to a shadow stack")


def run_paths(binary):
    """The folders that a program or library names for its libraries; "" is the current folder."""
    paths = re.findall(r"\(R(?:UN)?PATH\).*\[(.*)\]", readelf("--dynamic", binary))
    return [folder for path in paths for folder in path.split(":")]


def check_run_paths(binary):
    """Where somebody else may write, nothing is looked for: only below the file's own folder, or at an
    absolute path."""
    for folder in sorted(set(run_paths(binary))):
        if not folder.startswith(("$ORIGIN", "/")):
            problem(f"{binary} looks for libraries in \"{folder}\", which depends on the current folder")


def check_symbol_versions(binary):
    for name, digits in sorted(set(re.findall(r"Name: ([A-Z]+)_([0-9.]+)",
                                              readelf("--version-info", binary)))):
        version = tuple(int(part) for part in digits.split("."))
        if name not in NEWEST or version > NEWEST[name]:
            problem(f"needs {name}_{digits}, which is newer than the stated oldest system")

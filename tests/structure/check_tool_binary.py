"""A program beside the libraries: it needs nothing but what every system has and, unless it stands
alone, a library of the project, which it uses through its exports; it runs on the oldest system, and has
no folder of the building machine inside.

Usage: check_tool_binary.py BINARY (with-library|alone) FOLDER...

SPDX-License-Identifier: MIT
"""

import re
import subprocess
import sys
from pathlib import Path

from linux_binary import NEEDED as LINUX
from linux_binary import check_hardening, check_symbol_versions, readelf, run_paths
from project_files import LIBRARIES, finish, header_exports, problem

WINDOWS = {"advapi32.dll", "bcrypt.dll", "kernel32.dll", "msvcrt.dll", "shell32.dll", "version.dll",
           "ws2_32.dll"}


def output_of(*command):
    return subprocess.check_output(command, text=True)


def needed_by(binary):
    """The libraries that a program loads at its start."""
    if binary.endswith(".exe"):
        return {name.lower() for name in
                re.findall(r"DLL Name: (\S+)", output_of("objdump", "-p", binary))}
    dynamic = readelf("--dynamic", binary)
    for folder in run_paths(binary):
        if folder != "$ORIGIN" and not folder.startswith("$ORIGIN/"):
            problem(f"looks for libraries in \"{folder}\"")
    return set(re.findall(r"Shared library: \[([^\]]+)\]", dynamic))


def imported_exports(binary):
    """The functions of the libraries that a program uses."""
    if binary.endswith(".exe"):
        text = output_of("objdump", "-p", binary)
        return set(re.findall(r"\b(rgenh?_\w+)\s*$", text, flags=re.M))
    return set(re.findall(r"\bU (rgenh?_\w+)", output_of("nm", "--dynamic", binary)))


def check_libraries(binary, with_library):
    is_windows = binary.endswith(".exe")
    own = {f"{name}.dll" if is_windows else f"lib{name}.so.0" for name in LIBRARIES}
    needed = needed_by(binary)
    if with_library != bool(own & needed):
        problem("needs " + (", ".join(sorted(own & needed)) or "no library of the project"))
    for name in sorted(needed - (WINDOWS if is_windows else LINUX) - own):
        problem(f"needs {name}")


def check_folders(binary, folders):
    content = Path(binary).read_bytes()
    for folder in folders:
        if folder and folder.encode() in content:
            problem(f"contains the folder {folder}")


program, mode = sys.argv[1:3]
check_libraries(program, mode == "with-library")
used = imported_exports(program)
if mode == "with-library" and not used:
    problem("uses no export of a library")
for function in sorted(used.difference(*map(header_exports, LIBRARIES.values()))):
    problem(f"uses {function}, which no header declares")
if not program.endswith(".exe"):
    check_symbol_versions(program)
    check_hardening(program)
check_folders(program, sys.argv[3:])
finish(Path(program).name)

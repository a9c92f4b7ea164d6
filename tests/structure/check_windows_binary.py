"""A DLL: of the system it imports exactly the functions of a list, all of which the oldest supported
Windows has, and of the project's other library functions of its header; it has the usual protections,
and no folder of the building machine inside.

Usage: check_windows_binary.py BINARY IMPORTS FOLDER...     (IMPORTS: a list of this folder)

SPDX-License-Identifier: MIT
"""

import re
import subprocess
import sys
from pathlib import Path

from project_files import LIBRARIES, ROOT, finish, header_exports, problem

OLDEST_WINDOWS = (6, 1)
PROTECTIONS = {"HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT"}


def allowed_imports(name):
    """(DLL, function) -> the Windows version that brought the function."""
    allowed = {}
    for line in (ROOT / "tests/structure" / name).read_text().splitlines():
        if line and not line.startswith("#"):
            library, function, version = line.split()
            allowed[library.lower(), function] = tuple(int(part) for part in version.split("."))
    return allowed


def own_imports(binary):
    """The functions of the project's other libraries."""
    return {(f"{name}.dll", function) for name, library in LIBRARIES.items()
            if name != Path(binary).stem for function in header_exports(library)}


def imports_of(dump):
    """The (DLL, function) pairs of the import table."""
    imports = set()
    library = None
    for line in dump.splitlines():
        name = re.match(r"\s*DLL Name: (\S+)", line)
        if name:
            library = name.group(1).lower()
        member = re.match(r"\s+[0-9a-f]+\s+\d+\s+(\w+)\s*$", line)
        if member and library:
            imports.add((library, member.group(1)))
        if not line.strip():
            library = None
    return imports


def check_imports(binary, dump, list_name):
    allowed = allowed_imports(list_name)
    imports = imports_of(dump) - own_imports(binary)
    if not imports:
        problem("the import table could not be read")
    for library, function in sorted(imports - allowed.keys()):
        problem(f"imports {function} of {library}, which {list_name} does not list")
    for library, function in sorted(allowed.keys() - imports):
        problem(f"{list_name} lists {function} of {library}, which is not imported")
    for (library, function), version in allowed.items():
        if version > OLDEST_WINDOWS:
            problem(f"{function} of {library} is newer than the oldest supported Windows")


def check_folders(binary, folders):
    content = Path(binary).read_bytes()
    for folder in folders:
        if folder and folder.encode() in content:
            problem(f"contains the folder {folder}")


table = subprocess.check_output(["objdump", "-p", sys.argv[1]], text=True)
check_imports(sys.argv[1], table, sys.argv[2])
for protection in sorted(PROTECTIONS - set(re.findall(r"^\s+([A-Z_]+)$", table, flags=re.M))):
    problem(f"lacks {protection}")
check_folders(sys.argv[1], sys.argv[3:])
finish(Path(sys.argv[1]).name)

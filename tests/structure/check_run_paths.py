"""Every program and library of the build tree: none looks for its libraries in the current folder,
where anybody may have put one. An empty entry of a run path is the current folder, too.

Usage: check_run_paths.py BUILD_FOLDER

SPDX-License-Identifier: MIT
"""

import sys
from pathlib import Path

from linux_binary import check_run_paths
from project_files import finish, problem

# Other build systems' output, and what a test leaves behind.
LEFT_OUT = {"CMakeFiles", "Testing", "wine"}


def is_linked(path):
    """Whether a file is an ELF program or a shared library."""
    with path.open("rb") as file:
        head = file.read(18)
    return head[:4] == b"\x7fELF" and int.from_bytes(head[16:18], "little") in (2, 3)


def linked_files(folder):
    for path in sorted(folder.rglob("*")):
        inside = path.relative_to(folder).parts
        if path.is_file() and not path.is_symlink() and not LEFT_OUT.intersection(inside):
            if is_linked(path):
                yield path


found = list(linked_files(Path(sys.argv[1])))
if not found:
    problem("no program was found")
for binary in found:
    check_run_paths(str(binary))
finish(f"run paths of {len(found)} files")

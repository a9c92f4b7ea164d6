"""Checks that names in the pages exist: links and their anchors, files of the repository,
functions, constants, CMake and environment variables, and the commands and options of rgen and
vellum.

Usage: check_links.py RGEN VELLUM

SPDX-License-Identifier: MIT
"""

import sys
from pathlib import Path

import named_things
import page_links

ROOT = Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tests/structure"))

from project_files import finish, problem  # In tests/structure.


def main():
    known = named_things.KnownNames(ROOT, named_things.ProgramOptions(sys.argv[1], "rgen"),
                                    named_things.ProgramOptions(sys.argv[2], "vellum"))
    for text in page_links.problems(ROOT) + named_things.problems(ROOT, known):
        problem(text)
    finish("links")


if __name__ == "__main__":
    main()

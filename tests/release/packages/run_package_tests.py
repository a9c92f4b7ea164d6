"""Runs the tests of packages and their bills of materials.

Usage: run_package_tests.py [SUITE...]            these suites, all of them by default
       run_package_tests.py --all-but SUITE...    all other suites

A suite is a file of this folder without its ending. The variables that package_case.py and
program_case.py list say what is tested. The last line is "all tests ran to the end" when no case
was left out.

SPDX-License-Identifier: MIT
"""

import sys
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
sys.path.insert(0, str(FOLDER.parents[1] / "support"))
sys.path.insert(0, str(FOLDER.parents[2] / "packaging"))

import suite_runner  # In tests/support.

sys.exit(suite_runner.run(FOLDER))

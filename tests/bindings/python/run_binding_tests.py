"""Runs the suites of the Python package and of the examples.

Usage: run_binding_tests.py [SUITE...]

A suite is a file of this folder without its ending. The variables that binding_case.py lists say
what is tested. The last line is "all tests ran to the end" when no case was left out.

SPDX-License-Identifier: MIT
"""

import sys
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
ROOT = FOLDER.parents[2]
sys.path[:0] = [str(ROOT / "tests/support"), str(ROOT / "tests/structure"),
                str(ROOT / "bindings/python")]

import suite_runner  # It is in a folder that was added.

sys.exit(suite_runner.run(FOLDER))

"""Runs the suites of the converter.

Usage: run_vellum_tests.py [SUITE...]            these suites, all of them by default
       run_vellum_tests.py --all-but SUITE...    all other suites

A suite is a file of this folder without its extension: page_test, time_test and so on. The variables
that vellum_case.py and program_case.py list say what is tested. The last line is "all tests ran to
the end" when no case was left out.

SPDX-License-Identifier: MIT
"""

import sys
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
sys.path.insert(0, str(FOLDER.parent / "support"))
sys.path.append(str(FOLDER.parent / "cli"))

import suite_runner  # From one of the folders above.

sys.exit(suite_runner.run(FOLDER))

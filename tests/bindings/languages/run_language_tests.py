"""Runs the suites of the declarations and hosts in other languages.

Usage: run_language_tests.py [SUITE...]    these suites, all of them by default

The last line is "all tests ran to the end" when no case was left out.

SPDX-License-Identifier: MIT
"""

import sys
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
sys.path.insert(0, str(FOLDER.parents[1] / "support"))

import suite_runner  # It is in the folder that was added.

sys.exit(suite_runner.run(FOLDER))

"""Runs the suites of the command-line host.

Usage: run_cli_tests.py [SUITE...]            these suites, all of them by default
       run_cli_tests.py --all-but SUITE...    all other suites

A suite is a file of this folder without its ending: usage_test, report_test and so on. The
variables that cli_case.py lists say what is tested. The last line is "all tests ran to the end"
when no case was left out.

SPDX-License-Identifier: MIT
"""

import sys
import unittest
from pathlib import Path

FOLDER = Path(__file__).resolve().parent


def chosen_suites(arguments):
    every = sorted(path.stem for path in FOLDER.glob("*_test.py"))
    named = [argument for argument in arguments if argument != "--all-but"]
    for name in named:
        if name not in every:
            sys.exit(f"run_cli_tests.py: there is no suite {name}")
    if "--all-but" in arguments:
        return [name for name in every if name not in named]
    return named or every


def main():
    cases = unittest.defaultTestLoader.loadTestsFromNames(chosen_suites(sys.argv[1:]))
    count = cases.countTestCases()
    outcome = unittest.TextTestRunner(stream=sys.stdout, verbosity=2).run(cases)
    if outcome.testsRun == count and count > 0:
        print("all tests ran to the end")
    return 0 if outcome.wasSuccessful() else 1


sys.exit(main())

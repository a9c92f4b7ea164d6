"""Runs suites of Python cases, which are files NAME_test.py of one folder.

Arguments: SUITE...              these suites, all of them by default
           --all-but SUITE...    all other suites

The last line is "all tests ran to the end" when no case was left out.

SPDX-License-Identifier: MIT
"""

import sys
import unittest


def chosen_suites(folder, arguments):
    every = sorted(path.stem for path in folder.glob("*_test.py"))
    named = [argument for argument in arguments if argument != "--all-but"]
    for name in named:
        if name not in every:
            sys.exit(f"{sys.argv[0]}: there is no suite {name}")
    if "--all-but" in arguments:
        return [name for name in every if name not in named]
    return named or every


def run(folder):
    """Runs the suites that the command line names; returns the exit code."""
    cases = unittest.defaultTestLoader.loadTestsFromNames(chosen_suites(folder, sys.argv[1:]))
    count = cases.countTestCases()
    outcome = unittest.TextTestRunner(stream=sys.stdout, verbosity=2).run(cases)
    if outcome.testsRun == count and count > 0:
        print("all tests ran to the end")
    return 0 if outcome.wasSuccessful() else 1

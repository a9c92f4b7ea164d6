"""Runs suites of Python cases, which are files NAME_test.py of one folder.

Arguments: SUITE...              these suites, all of them by default
           --all-but SUITE...    all other suites

Cases for the system that the programs are not built for are not loaded. The last line is "all tests
ran to the end" when no loaded case was left out. A case that failed because Wine did not start a
program runs once more.

SPDX-License-Identifier: MIT
"""

import os
import re
import sys
import unittest

# How a result looks when Wine ends without having started the program, one time in some thousands:
# no program of ours ends with this code and without a word. A program of ours that starts another
# one in vain says what the system has said of it.
NOT_STARTED = re.compile(r"code 1, out b'', err ''|cannot be started: Internal error \(1359\)")

# The reasons of linux_only and windows_only in program_case.py.
OTHER_SYSTEM = {"is about Linux", "is about Windows"}


def chosen_suites(folder, arguments):
    every = sorted(path.stem for path in folder.glob("*_test.py"))
    named = [argument for argument in arguments if argument != "--all-but"]
    for name in named:
        if name not in every:
            sys.exit(f"{sys.argv[0]}: there is no suite {name}")
    if "--all-but" in arguments:
        return [name for name in every if name not in named]
    return named or every


def cases_in(suite):
    for part in suite:
        if isinstance(part, unittest.TestSuite):
            yield from cases_in(part)
        else:
            yield part


def is_about_target(case):
    """Whether the case is one for the system that the programs are built for."""
    marked = (type(case), getattr(case, getattr(case, "_testMethodName", ""), None))
    return not any(getattr(item, "__unittest_skip_why__", "") in OTHER_SYSTEM for item in marked)


def run_cases(cases):
    return unittest.TextTestRunner(stream=sys.stdout, verbosity=2).run(cases)


def cases_to_repeat(outcome):
    """The names of the failed cases, when Wine's starts are all that failed."""
    if not os.environ.get("RGEN_CLI_LAUNCHER") or outcome.errors:
        return []
    if not all(NOT_STARTED.search(text) for _, text in outcome.failures):
        return []
    return sorted({getattr(case, "test_case", case).id() for case, _ in outcome.failures})


def run(folder):
    """Runs the suites that the command line names; returns the exit code."""
    loaded = unittest.defaultTestLoader.loadTestsFromNames(chosen_suites(folder, sys.argv[1:]))
    cases = unittest.TestSuite(filter(is_about_target, cases_in(loaded)))
    count = cases.countTestCases()
    outcome = run_cases(cases)
    is_whole = outcome.testsRun == count and count > 0
    repeated = cases_to_repeat(outcome)
    if repeated:
        print("Wine did not start a program; once more:", *repeated)
        outcome = run_cases(unittest.defaultTestLoader.loadTestsFromNames(repeated))
    if is_whole:
        print("all tests ran to the end")
    return 0 if outcome.wasSuccessful() else 1

#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that the baseline and the library make the same reports for the workloads S and M.

Usage: same_reports.py FOLDER BASELINE LIBRARY [LAUNCHER...]

Creates the workloads in FOLDER. LAUNCHER is the command that starts programs of the target system.
"""

import sys
from pathlib import Path

from candidate_programs import BenchmarkError, Candidate, expect_same_reports
from make_workloads import make_workloads


def main():
    folder, baseline, library, *launcher = sys.argv[1:]
    workloads = Path(folder) / "workloads"
    make_workloads(workloads, ["S", "M"])
    try:
        expect_same_reports([Candidate(baseline, launcher), Candidate(library, launcher)],
                            [workloads / "S", workloads / "M"], Path(folder) / "same_reports")
    except BenchmarkError as error:
        sys.exit(f"same_reports: {error}")
    print("the reports are the same")


main()

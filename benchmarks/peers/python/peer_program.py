# SPDX-License-Identifier: MIT
"""The common part of the Python peers: command line, values of a workload, two kinds of
measurement. cpp/peer_program.h describes the command line and the output."""

import argparse
import json
import time
from pathlib import Path

FEWEST_REPORTS = 3


def parse_arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("--values", type=Path, required=True)
    parser.add_argument("--template", type=Path, required=True)
    parser.add_argument("--output", type=Path, required=True)
    parser.add_argument("--way", choices=["each", "once"], required=True)
    parser.add_argument("--reports", type=int, default=0)
    parser.add_argument("--warm-up", type=float, default=0)
    parser.add_argument("--seconds", type=float, default=0)
    return parser.parse_args()


def read_values(path):
    """Pairs of a name and a text or number."""
    values = []
    for line in path.read_text(encoding="utf-8").splitlines():
        name, kind, text = line.split("\t")
        values.append((name, int(text) if kind == "int64" else text))
    return values


def make_reports(output, report, fewest, seconds):
    """Makes reports until both the count and the time are reached."""
    start = time.perf_counter()
    reports = 0
    passed = 0.0
    while reports < fewest or passed < seconds:
        output.unlink(missing_ok=True)
        report()
        reports += 1
        passed = time.perf_counter() - start
    return reports, passed


def peak_kib():
    for line in Path("/proc/self/status").read_text(encoding="ascii").splitlines():
        if line.startswith("VmHWM:"):
            return int(line.split()[1])
    return 0


def run_program(make_report_maker):
    """`make_report_maker` gets the arguments and the values and returns a function that makes one
    report."""
    arguments = parse_arguments()
    output = arguments.output
    report = make_report_maker(arguments, read_values(arguments.values))
    if arguments.reports:
        reports, seconds = make_reports(output, report, arguments.reports, 0)
    else:
        make_reports(output, report, 1, arguments.warm_up)
        reports, seconds = make_reports(output, report, FEWEST_REPORTS, arguments.seconds)
    print(json.dumps({"reports": reports, "seconds": seconds, "peak_kib": peak_kib()}))

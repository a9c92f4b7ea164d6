# SPDX-License-Identifier: MIT
"""The candidates as programs: how they are started and whether their reports are the same."""

import json
import shutil
import subprocess
from pathlib import Path

# Far above what one run takes; its passing is a failure.
LONGEST_RUN = 600
# Workloads whose template shows the properties in their order in the document, which the library
# does not define.
ANY_ORDER = {"M", "L", "XL"}


class BenchmarkError(Exception):
    """Something does not run, or reports differ."""


class Candidate:
    """A program of the target; `launcher` holds the words that start programs of the target."""

    def __init__(self, program, launcher=(), options=()):
        self.program = Path(program)
        self.launcher = [str(word) for word in launcher]
        self.options = list(options)

    @property
    def name(self):
        return self.program.stem.removeprefix("benchmark_")

    def native(self, path):
        """The absolute path as the program writes it."""
        text = str(Path(path).resolve())
        return "Z:" + text.replace("/", "\\") if self.program.suffix == ".exe" else text

    def command(self, workload, output, *options, prefix=()):
        return [*prefix, *self.launcher, str(self.program),
                f"--workload={self.native(workload)}", f"--output={self.native(output)}",
                *self.options, *options]


def run(command, stdout):
    """Runs a program with its output in a file: under Wine, processes that outlive it may hold on
    to a pipe. Returns what it printed."""
    errors = Path(f"{stdout}.err")
    with open(stdout, "wb") as out, open(errors, "wb") as err:
        ended = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=out, stderr=err,
                               timeout=LONGEST_RUN, check=False)
    if ended.returncode != 0:
        raise BenchmarkError(f"code {ended.returncode} from {' '.join(command)}\n"
                             + errors.read_text(encoding="utf-8", errors="replace"))
    return Path(stdout).read_text(encoding="utf-8")


def make_reports(candidate, workload, scratch, count, *options, prefix=()):
    """Makes exactly that many reports. Returns the last one's file and what the program says."""
    output = scratch / f"{candidate.name}-{workload.name}.html"
    command = candidate.command(workload, output, f"--reports={count}", *options, prefix=prefix)
    printed = run(command, scratch / "reports.json")
    return output, json.loads(printed.splitlines()[-1])


def expect_same_reports(candidates, workloads, scratch):
    """The candidates make the same bytes; where the order is open, the same lines."""
    shutil.rmtree(scratch, ignore_errors=True)
    scratch.mkdir(parents=True)
    for workload in workloads:
        reports = []
        for candidate in candidates:
            report = make_reports(candidate, workload, scratch, 2)[0].read_bytes()
            if workload.name in ANY_ORDER:
                report = sorted(report.splitlines())
            reports.append(report)
        if not all(report == reports[0] and report for report in reports):
            raise BenchmarkError(f"the reports of workload {workload.name} differ; see {scratch}")

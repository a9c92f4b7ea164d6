# SPDX-License-Identifier: MIT
"""Starts the candidates (library and baseline) and compares their reports."""

import json
import shutil
import subprocess
from pathlib import Path

# Seconds after which a run counts as failed.
LONGEST_RUN = 600
# Workloads whose template lists all properties. Their order in the data document is not defined.
ANY_ORDER = {"M", "L", "XL"}


class BenchmarkError(Exception):
    """A program failed, or reports differ."""


class Candidate:
    """A program of the target system; `launcher` is the command that starts such programs."""

    def __init__(self, program, launcher=(), options=()):
        self.program = Path(program)
        self.launcher = [str(word) for word in launcher]
        self.options = list(options)

    @property
    def name(self):
        return self.program.stem.removeprefix("benchmark_")

    def native(self, path):
        """The absolute path in the form that the program expects."""
        text = str(Path(path).resolve())
        return "Z:" + text.replace("/", "\\") if self.program.suffix == ".exe" else text

    def command(self, workload, output, *options, prefix=()):
        return [*prefix, *self.launcher, str(self.program),
                f"--workload={self.native(workload)}", f"--output={self.native(output)}",
                *self.options, *options]


def run(command, stdout):
    """Runs a program and returns its output. The output goes to a file: under Wine, processes that
    outlive the program may keep a pipe open."""
    errors = Path(f"{stdout}.err")
    with open(stdout, "wb") as out, open(errors, "wb") as err:
        ended = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=out, stderr=err,
                               timeout=LONGEST_RUN, check=False)
    if ended.returncode != 0:
        raise BenchmarkError(f"code {ended.returncode} from {' '.join(command)}\n"
                             + errors.read_text(encoding="utf-8", errors="replace"))
    return Path(stdout).read_text(encoding="utf-8")


def make_reports(candidate, workload, scratch, count, *options, prefix=()):
    """Makes exactly so many reports. Returns the file of the last one and the printed figures."""
    output = scratch / f"{candidate.name}-{workload.name}.html"
    command = candidate.command(workload, output, f"--reports={count}", *options, prefix=prefix)
    printed = run(command, scratch / "reports.json")
    return output, json.loads(printed.splitlines()[-1])


def expect_same_reports(candidates, workloads, scratch):
    """Requires identical reports; identical lines where the order is not defined."""
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

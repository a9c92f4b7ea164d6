#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the library with the baseline and prints which goals are met.

scripts/benchmark builds the programs and calls this. All files are written below build/benchmarks:
the workloads, the raw results of the last run, results.json and results.md.
"""

import argparse
import datetime
import json
import os
import platform
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

from candidate_programs import BenchmarkError, Candidate, expect_same_reports
from goals import all_goals, markdown, notes, table
from make_workloads import SHORT, WORKLOADS, make_workloads
from measurements import COUNTED_REPORTS, GROWTH, Measurements

ROOT = Path(__file__).resolve().parent.parent
FOLDER = ROOT / "build/benchmarks"
LINUX = ROOT / "build/linux"
WINDOWS = ROOT / "build/windows-mingw"
ROUNDS = 5
PEAK_WORKLOADS = ["S", "M", "L", "XL", "T"]
THREAD_WORKLOADS = ["S", "M", "L", "T"]
ALLOCATOR_WORKLOADS = ["S", "M", "L", "T"]
WINDOWS_WORKLOADS = ["S", "M", "L", "T", "C"]

STARTED = time.monotonic()


def step(text):
    print(f"[benchmark {time.monotonic() - STARTED:3.0f}s] {text}", file=sys.stderr, flush=True)


def parse_arguments():
    parser = argparse.ArgumentParser(prog="benchmark", description=__doc__.splitlines()[0])
    parser.add_argument("--short", action="store_true", help="few workloads, one round")
    parser.add_argument("--windows", action="store_true", help="also measure the DLL, under Wine")
    parser.add_argument("--keep", type=Path, metavar="FOLDER", help="folder for the raw results")
    return parser.parse_args()


# ---- Candidates ---------------------------------------------------------------------------------

def linux_candidates():
    return [Candidate(LINUX / "bin" / f"benchmark_{name}") for name in ("baseline", "library")]


def windows_candidates():
    launcher = [ROOT / "scripts/run-under-wine", WINDOWS / "wine"]
    return [Candidate(WINDOWS / "bin" / f"benchmark_{name}.exe", launcher)
            for name in ("baseline", "library")]


def has_mimalloc():
    cache = (LINUX / "CMakeCache.txt").read_text(encoding="utf-8")
    return re.search(r"^RGEN_MIMALLOC:FILEPATH=/", cache, flags=re.M) is not None


class BaselineWithMimalloc(Candidate):
    """The baseline with another allocator for the XML libraries."""

    def __init__(self, baseline):
        super().__init__(baseline.program, baseline.launcher, ["--allocator=mimalloc"])

    @property
    def name(self):
        return "baseline_mimalloc"


# ---- What a run measures ------------------------------------------------------------------------

def for_each(names, title, measure):
    """The result of `measure` for each workload, by its name."""
    measured = {}
    for name in names:
        step(f"{title} at {name}")
        measured[name] = measure(name)
    return measured


def measure_times(measurements, candidates, names):
    extra = [BaselineWithMimalloc(candidates[0])] if has_mimalloc() else []
    return for_each(names, "times", lambda name: measurements.times(
        [*candidates, *(extra if name in ALLOCATOR_WORKLOADS else [])], name))


def measure_memory(measurements, candidates, names):
    step("memory")
    peaks = {name: {candidate.name: measurements.peak_memory(candidate, name)
                    for candidate in candidates} for name in PEAK_WORKLOADS if name in names}
    growths = {name: {candidate.name: measurements.growth(candidate, name)
                      for candidate in candidates} for name in GROWTH if name in names}
    return peaks, growths


def measure_linux(measurements, names, short):
    candidates = linux_candidates()
    step("comparing the reports")
    expect_same_reports(candidates, [FOLDER / "workloads" / name for name in names],
                        FOLDER / "same_reports")
    counted = [name for name in COUNTED_REPORTS if name in names and not (short and name == "M")]
    results = {"times": measure_times(measurements, candidates, names),
               "instructions": for_each(counted, "instructions", lambda name:
                                        measurements.instructions(*candidates, name))}
    step("guarded calls")
    results["guarded"] = measurements.guarded_cost(
        candidates[1], Candidate(LINUX / "bin/benchmark_guarded"), "S")
    step("translation pass")
    results["translation_pass"] = measurements.translation_pass(LINUX / "bin/benchmark_translation")
    step("dates")
    results["dates"] = measurements.dates(LINUX / "bin/benchmark_dates")
    results["two_threads"] = for_each(
        [name for name in THREAD_WORKLOADS if name in names], "two threads",
        lambda name: measurements.two_threads(*candidates, name))
    results["peak_memory"], results["growth"] = measure_memory(measurements, candidates, names)
    results["library_bytes"] = measurements.stripped_size(LINUX / "bin/libstrata_repgenlib.so")
    return results


def measure_windows(measurements, names):
    candidates = windows_candidates()
    chosen = [name for name in WINDOWS_WORKLOADS if name in names]
    try:
        step("comparing the reports on Windows")
        expect_same_reports(candidates, [FOLDER / "workloads" / name for name in chosen],
                            FOLDER / "same_reports_windows")
        times = for_each(chosen, "times on Windows",
                         lambda name: measurements.times(candidates, name))
        step("dates on Windows")
        return {"windows": times, "dates_on_windows": measurements.dates(
            WINDOWS / "bin/benchmark_dates.exe", candidates[0].launcher)}
    finally:
        subprocess.run([*windows_candidates()[0].launcher, "--stop"], check=False,
                       stdin=subprocess.DEVNULL)


# ---- The machine --------------------------------------------------------------------------------

def first_line_of(*command):
    return subprocess.check_output(command, text=True).splitlines()[0]


def describe_machine():
    processor = re.search(r"^model name\s*: (.*)", Path("/proc/cpuinfo").read_text(), flags=re.M)
    libraries = (LINUX / "benchmarks/versions.env").read_text(encoding="utf-8").split()
    return {"date": datetime.datetime.now(datetime.timezone.utc).isoformat(timespec="seconds"),
            "processor": processor.group(1) if processor else platform.processor(),
            "cores": os.cpu_count(), "load_average": os.getloadavg(), "kernel": platform.release(),
            "compiler": first_line_of("g++", "--version"),
            "valgrind": first_line_of("valgrind", "--version"),
            "libraries": dict(line.split("=", 1) for line in libraries)}


# ---- The run ------------------------------------------------------------------------------------

def raw_folder(arguments):
    """The folder of --keep, or an empty one below build/benchmarks."""
    folder = arguments.keep or FOLDER / "raw"
    if arguments.keep is None:
        shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True, exist_ok=True)
    return folder.resolve()


def measure(arguments):
    names = SHORT if arguments.short else list(WORKLOADS)
    rounds = 1 if arguments.short else ROUNDS
    step("making the workloads")
    make_workloads(FOLDER / "workloads", names)
    measurements = Measurements(raw_folder(arguments), FOLDER / "workloads", rounds)
    results = {"machine": describe_machine(), "short": arguments.short, "rounds": rounds,
               **measure_linux(measurements, names, arguments.short)}
    if arguments.windows:
        folder = measurements.folder / "windows"
        folder.mkdir(exist_ok=True)
        results.update(measure_windows(
            Measurements(folder, FOLDER / "workloads", rounds), names))
    return results


def main():
    arguments = parse_arguments()
    try:
        results = measure(arguments)
    except (BenchmarkError, OSError, subprocess.SubprocessError) as error:
        sys.exit(f"benchmark: {error}")
    goals = all_goals(results)
    results["goals"] = [goal.as_record() for goal in goals]
    target = FOLDER / "results.json"
    target.write_text(json.dumps(results, indent=2) + "\n", encoding="utf-8")
    target.with_suffix(".md").write_text(markdown(goals, results), encoding="utf-8")
    print(table(goals), *notes(results), sep="\n")
    step(f"all numbers are in {target.relative_to(ROOT)}")


if __name__ == "__main__":
    main()

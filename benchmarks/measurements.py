# SPDX-License-Identifier: MIT
"""The measurements. Each returns numbers for results.json: times in seconds for one report, sizes
in KiB, ratios of library to baseline."""

import json
import os
import statistics
import subprocess
from pathlib import Path

from callgrind_layers import CallgrindFile
from candidate_programs import BenchmarkError, make_reports, run

MINIMUM_TIME = 0.25
# More time for slow workloads, so that not only the first report is measured, whose process has no
# memory yet.
LONGER_TIMES = {"XL": 2.0}
MINIMUM_TIME_OF_PASS = 0.05
STARTS_FOR_MEMORY = 3
# The two reports of a workload between which memory must not grow.
GROWTH = {"S": (1_000, 10_000), "M": (100, 1_000)}
# The number of reports whose instructions are counted, after one that is not counted.
COUNTED_REPORTS = {"S": 20, "M": 3, "L": 1, "T": 1, "C": 1}
UNITS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def pinned():
    """The command that binds a program to one core."""
    return ["taskset", "-c", str(max(os.sched_getaffinity(0)))]


def spread_of(values):
    return {"median": statistics.median(values), "lowest": min(values), "highest": max(values)}


class Measurements:
    """Writes raw results to a folder; takes medians of so many rounds."""

    def __init__(self, folder, workloads, rounds):
        self.folder = folder
        self.workloads = workloads
        self.rounds = rounds

    def _raw_file(self, *words):
        return self.folder / ("-".join(str(word) for word in words) + ".json")

    # ---- Times ----------------------------------------------------------------------------------

    def _google_benchmark(self, command, raw_file, minimum_time):
        printed = run([*command, f"--benchmark_min_time={minimum_time}",
                       "--benchmark_format=json"], raw_file)
        # Wine and the C runtime may print something before the JSON.
        return json.loads(printed[printed.index("{"):])

    def _time(self, candidate, workload, round_number, *options, prefix=()):
        """Seconds for one report."""
        label = [candidate.name, workload, *[option.strip("-") for option in options]]
        output = self.folder / f"{candidate.name}-{workload}.html"
        command = candidate.command(self.workloads / workload, output, *options, prefix=prefix)
        result = self._google_benchmark(command, self._raw_file(*label, round_number),
                                        LONGER_TIMES.get(workload, MINIMUM_TIME))
        report = result["benchmarks"][0]
        if report.get("error_occurred"):
            raise BenchmarkError(f"{candidate.name} at {workload}: {report['error_message']}")
        return report["real_time"] * UNITS[report["time_unit"]]

    def times(self, candidates, workload):
        """Times of the candidates, alternating on one core, and their ratios to the first one."""
        measured = {candidate.name: [] for candidate in candidates}
        for number in range(self.rounds):
            for candidate in candidates:
                measured[candidate.name].append(
                    self._time(candidate, workload, number, prefix=pinned()))
        base = measured[candidates[0].name]
        result = {name: statistics.median(seconds) for name, seconds in measured.items()}
        result["rounds"] = measured
        result["ratios"] = {
            name: spread_of([ours / theirs for ours, theirs in zip(seconds, base)])
            for name, seconds in measured.items() if seconds is not base}
        return result

    def two_threads(self, baseline, library, workload):
        """The speed-up by a second thread, and the ratio of the library's to the baseline's."""
        gains = {baseline.name: [], library.name: []}
        for number in range(self.rounds):
            for candidate in (baseline, library):
                alone = self._time(candidate, workload, number, "--threads=1")
                together = self._time(candidate, workload, number, "--threads=2")
                gains[candidate.name].append(alone / together)
        ratios = [ours / theirs for ours, theirs in zip(gains[library.name], gains[baseline.name])]
        return {"baseline": spread_of(gains[baseline.name]),
                "library": spread_of(gains[library.name]), "ratio": spread_of(ratios)}

    # ---- Instructions ---------------------------------------------------------------------------

    def _count(self, candidate, workload, reports):
        raw_file = self.folder / f"callgrind-{candidate.name}-{workload}"
        valgrind = ["valgrind", "--tool=callgrind", "--collect-atstart=no",
                    "--toggle-collect=benchmark_one_report", f"--callgrind-out-file={raw_file}"]
        make_reports(candidate, self.workloads / workload, self.folder, reports, "--warm-up=1",
                     prefix=valgrind)
        return CallgrindFile(raw_file)

    def instructions(self, baseline, library, workload):
        """Instructions of one report, in all and of the library's own layers."""
        reports = COUNTED_REPORTS[workload]
        baseline_costs = self._count(baseline, workload, reports)
        costs = self._count(library, workload, reports)
        if not baseline_costs.total or not costs.layers["xml"] or not costs.layers["own"]:
            raise BenchmarkError("callgrind names no source files; is there debug information?")
        return {"baseline": baseline_costs.total // reports, "library": costs.total // reports,
                "ratio": costs.total / baseline_costs.total, "own": costs.own // reports,
                "own_ratio": costs.own / baseline_costs.total,
                "layers": {name: cost // reports for name, cost in costs.layers.items()}}

    def guarded_cost(self, library, guarded, workload):
        """Instructions of one report by a call of each library, and their ratio."""
        reports = COUNTED_REPORTS[workload]
        plain, ours = (self._count(candidate, workload, reports).total // reports
                       for candidate in (library, guarded))
        return {"library": plain, "guarded": ours, "ratio": ours / plain}

    # ---- Memory ---------------------------------------------------------------------------------

    def peak_memory(self, candidate, workload):
        """Peak KiB of a process that makes one report."""
        return statistics.median(
            make_reports(candidate, self.workloads / workload, self.folder, 1)[1]["peak_kib"]
            for _ in range(STARTS_FOR_MEMORY))

    def growth(self, candidate, workload):
        """By how many KiB the resident memory grows between the two reports of GROWTH."""
        first, second = GROWTH[workload]
        figures = make_reports(candidate, self.workloads / workload, self.folder, second,
                               f"--growth={first},{second}")[1]
        return figures["growth"][1] - figures["growth"][0]

    # ---- Translation pass and size --------------------------------------------------------------

    def translation_pass(self, program):
        """Seconds of each benchmark, ratios to the fastest plain search, and stack use."""
        rounds = []
        for number in range(self.rounds):
            result = self._google_benchmark([*pinned(), str(program)],
                                            self._raw_file("translation", number),
                                            MINIMUM_TIME_OF_PASS)
            rounds.append({entry["name"].removesuffix("/manual_time"):
                           entry["real_time"] * UNITS[entry["time_unit"]]
                           for entry in result["benchmarks"]})
        ratios = {}
        for text in ("ordinary/1", "ordinary/16", "markers/1"):
            ratios[text] = spread_of(
                [times[f"pass/{text}"] / min(seconds for name, seconds in times.items()
                                             if name in (f"find/{text}", f"memmem/{text}"))
                 for times in rounds])
        return {"seconds": {name: statistics.median(times[name] for times in rounds)
                            for name in rounds[0]},
                "to_plain_search": ratios, "stack_bytes": int(result["context"]["stack_bytes"])}

    # ---- Dates ----------------------------------------------------------------------------------

    def dates(self, program, launcher=()):
        """Seconds to dump 20,000 numbers, times and dates, and the ratios to the numbers."""
        rounds = []
        for number in range(self.rounds):
            result = self._google_benchmark([*pinned(), *launcher, str(program)],
                                            self._raw_file("dates", number), MINIMUM_TIME)
            rounds.append({entry["name"].removeprefix("dump/"):
                           entry["real_time"] * UNITS[entry["time_unit"]]
                           for entry in result["benchmarks"]})
        return {"seconds": {name: statistics.median(times[name] for times in rounds)
                            for name in rounds[0]},
                "to_numbers": {name: spread_of([times[name] / times["number"] for times in rounds])
                               for name in rounds[0] if name != "number"}}

    def stripped_size(self, library):
        """Size of the shared library in bytes, without symbols."""
        stripped = self.folder / "stripped-library"
        subprocess.run(["strip", "-o", stripped, Path(library).resolve()], check=True)
        return stripped.stat().st_size

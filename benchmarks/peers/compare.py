#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the library with other engines that can make the same reports.

scripts/compare-with-peers builds the programs and calls this. All peers make the same reports for
the workloads S, M and L from values in memory, each with a template of its own kind, in two ways:
the template is compiled for each report, or once. Before the measurements, every peer's report is
compared with the library's. The results are build/benchmarks/peers.json and peers.md.
"""

import argparse
import datetime
import json
import os
import platform
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from peer_list import FOLDER, LIBRARY, ROOT, SCRATCH, PeerError, all_peers, run
from peer_table import terminal_tables, written_document
from peer_versions import versions
from verification import prepare_workloads, verify

# A memory file system for the measured reports.
MEMORY = Path("/dev/shm")
RESULTS = ROOT / "build/benchmarks"
# How many reports a process makes for the measurement of memory.
MEMORY_REPORTS = {"S": 1000, "M": 100, "L": 10}
STARTED = time.monotonic()


class Settings:
    """How much is measured."""

    def __init__(self, short):
        self.workloads = ["S", "M"] if short else ["S", "M", "L"]
        self.rounds = 1 if short else 3
        self.seconds = 0.5 if short else 2
        self.cold_workloads = ["S"] if short else ["S", "M"]
        self.cold_starts = 5 if short else 15

    def as_json(self):
        return {"rounds": self.rounds, "seconds": self.seconds, "cold_starts": self.cold_starts,
                "memory_reports": MEMORY_REPORTS}


def step(text):
    print(f"[compare-with-peers {time.monotonic() - STARTED:3.0f}s] {text}", file=sys.stderr,
          flush=True)


def parse_arguments():
    parser = argparse.ArgumentParser(prog="compare-with-peers", description=__doc__.splitlines()[0])
    parser.add_argument("--short", action="store_true", help="two workloads, one round")
    return parser.parse_args()


# ---- Preparation --------------------------------------------------------------------------------

def present_peers():
    """The peers that can run, and the reasons why the others cannot."""
    present, left_out = [], {}
    for peer in all_peers():
        reason = peer.missing()
        if reason:
            left_out[peer.name] = reason
            step(f"{peer.name} is left out: {reason}")
        else:
            present.append(peer)
    if LIBRARY.name in left_out:
        raise PeerError("benchmark_library is not built")
    return present, left_out


# ---- Measuring ----------------------------------------------------------------------------------

class Comparison:
    """Collects the results of all rounds."""

    def __init__(self, peers, settings, output):
        self.peers = peers
        self.output = output
        self.settings = settings
        self.core = max(os.sched_getaffinity(0))
        self.rates = {}
        self.peaks = {}
        self.starts = {}

    def bound(self, peer):
        """The command that binds a program without threads of its own to one core."""
        return [] if peer.own_threads else ["taskset", "-c", str(self.core)]

    def measure(self, workload):
        for peer in self.peers:
            for way in peer.ways:
                what = f"{peer.name} ({way}, {workload.name})"
                key = (peer.name, way, workload.name)
                command = peer.measure_command(workload, self.output, way, self.settings.seconds)
                printed = json.loads(run([*self.bound(peer), *command], what))
                self.rates.setdefault(key, []).append(peer.rate(printed))
                command = peer.reports_command(workload, self.output, way,
                                               MEMORY_REPORTS[workload.name])
                printed = run([*self.bound(peer), *command], what)
                peak = json.loads(printed.splitlines()[-1])["peak_kib"]
                self.peaks.setdefault(key, []).append(peak)

    def measure_cold_starts(self, workload):
        for peer in self.peers:
            command = peer.cold_command(workload, self.output)
            printed = run([*self.bound(peer), FOLDER / "cpp/bin/cold_start",
                           self.settings.cold_starts, *command], f"cold start of {peer.name}")
            milliseconds = [float(line) for line in printed.splitlines()]
            self.starts.setdefault((peer.name, workload.name), []).extend(milliseconds)

    def run_round(self, workloads, number):
        for workload in workloads:
            step(f"round {number} of {self.settings.rounds}, workload {workload.name}")
            self.measure(workload)
        step(f"round {number} of {self.settings.rounds}, cold starts")
        for workload in workloads:
            if workload.name in self.settings.cold_workloads:
                self.measure_cold_starts(workload)

    def peer_as_json(self, peer):
        ways = {}
        for way in peer.ways:
            ways[way] = {}
            for name in self.settings.workloads:
                rates = self.rates[peer.name, way, name]
                ways[way][name] = {"reports_per_second": statistics.median(rates),
                                   "rounds": rates,
                                   "peak_kib": statistics.median(self.peaks[peer.name, way, name])}
        cold = {name: statistics.median(self.starts[peer.name, name])
                for name in self.settings.cold_workloads}
        return {"name": peer.name, "bound_to_one_core": not peer.own_threads,
                "warm_up": peer.warm_up, "ways": ways, "cold_start_ms": cold}


def processor():
    for line in Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def compare(settings):
    shutil.rmtree(SCRATCH, ignore_errors=True)
    SCRATCH.mkdir(parents=True)
    load = [os.getloadavg()[0]]
    workloads = prepare_workloads(settings.workloads)
    peers, left_out = present_peers()
    for workload in workloads:
        step(f"comparing the reports of workload {workload.name}")
        verify(peers, workload)
    with tempfile.TemporaryDirectory(dir=MEMORY if MEMORY.is_dir() else None) as folder:
        comparison = Comparison(peers, settings, Path(folder) / "report.html")
        for number in range(1, settings.rounds + 1):
            comparison.run_round(workloads, number)
            load.append(os.getloadavg()[0])
    return {"date": datetime.date.today().isoformat(), "processor": processor(),
            "cores": os.cpu_count(), "files_in_memory": MEMORY.is_dir(),
            "load_averages": load,
            "system": platform.freedesktop_os_release()["PRETTY_NAME"],
            "settings": settings.as_json(), "versions": versions(peers), "left_out": left_out,
            "peers": [comparison.peer_as_json(peer) for peer in peers]}


def main():
    arguments = parse_arguments()
    try:
        results = compare(Settings(arguments.short))
    except (PeerError, subprocess.SubprocessError) as error:
        sys.exit(f"compare-with-peers: {error}")
    text = json.dumps(results, indent=2, ensure_ascii=False)
    (RESULTS / "peers.json").write_text(text + "\n", encoding="utf-8")
    (RESULTS / "peers.md").write_text(written_document(results), encoding="utf-8")
    print(terminal_tables(results))
    step("the results are build/benchmarks/peers.json and build/benchmarks/peers.md")


main()

"""Makes faults in copies of the library's sources and counts how many of them the tests see.

Usage: run_mutation.py DEPENDENCIES SANITIZED_DEPENDENCIES [OPTION...] [FILE...]
  --limit N   so many faults that compile (default 120)
  --seed S    another selection (default 1)
  --jobs N    so many copies of the tree at once (default 1)
  --quick     without the second look at survivors in a build with the address sanitizer
  --resume    goes on with an earlier run (the default): what was caught stays caught until its
              source changes, what survived is tried again when the tests have changed
  --fresh     forgets earlier runs
  FILE        only faults in these sources, such as src/store/guid.cpp
The code is 0 when at least 90 % of the faults are caught that can be seen from outside.

SPDX-License-Identifier: MIT
"""

import argparse
import hashlib
import json
import multiprocessing
import signal
import sys
import time
from collections import defaultdict
from pathlib import Path

from fault_candidates import all_faults, source_names
from fault_selection import Equivalents, selection
from fault_trial import Workshop, plain, sanitized

ROOT = Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutation"
GOAL = 0.9


def digest(paths):
    total = hashlib.sha256()
    for path in sorted(paths):
        total.update(path.relative_to(ROOT).as_posix().encode() + b"\0" + path.read_bytes())
    return total.hexdigest()[:16]


class State:
    """The results of all runs, one line of JSON for each trial."""

    def __init__(self, path, fresh, looks, equivalents):
        self.path = path
        self.looks = looks
        self.equivalents = equivalents
        self.records = {}
        self.tests = digest(path for path in (ROOT / "tests").rglob("*")
                            if path.suffix in {".c", ".cpp", ".h"})
        self.sources = {}
        path.parent.mkdir(parents=True, exist_ok=True)
        if fresh:
            path.unlink(missing_ok=True)
        if path.exists():
            for line in path.read_text().splitlines():
                record = json.loads(line)
                self.records[record["key"]] = record

    def source(self, name):
        if name not in self.sources:
            self.sources[name] = digest([ROOT / name])
        return self.sources[name]

    def of(self, fault):
        """The result that still holds, or None."""
        record = self.records.get(fault.key)
        if record is None or record["source"] != self.source(fault.file):
            return None
        if record["state"] == "survived" and not self.equivalents.reason(fault) and \
                (record["tests"] != self.tests or record["looks"] < self.looks):
            return None
        return record

    def add(self, fault, outcome):
        record = {"key": fault.key, "line": fault.line, "kind": fault.kind, "state": outcome.state,
                  "by": outcome.by, "seconds": outcome.seconds, "before": fault.before,
                  "after": fault.after, "source": self.source(fault.file), "tests": self.tests,
                  "looks": self.looks}
        self.records[fault.key] = record
        with open(self.path, "a") as file:
            file.write(json.dumps(record) + "\n")


def work(number, variants, faults, results):
    """One process: tries the faults of the queue in its own copies of the tree. What survives in
    one copy goes to the next."""
    shops = [Workshop(ROOT, WORK / f"job{number}", variant) for variant in variants]
    ready = set()
    try:
        for fault in iter(faults.get, None):
            for shop in shops:
                if shop not in ready:
                    shop.prepare()
                    ready.add(shop)
                outcome = shop.try_fault(fault)
                if outcome.state != "survived":
                    break
            results.put((fault, outcome))
    except BaseException as error:  # pylint: disable=broad-except
        results.put((None, f"{type(error).__name__}: {error}"))
        raise


def run_trials(faults, state, arguments, started):
    """Tries the faults; those of one source follow each other, so that less is compiled."""
    queue, results = multiprocessing.Queue(), multiprocessing.Queue()
    jobs = min(arguments.jobs, len(faults))
    for fault in sorted(faults, key=lambda one: (one.file, one.start)):
        queue.put(fault)
    variants = [plain(arguments.dependencies)]
    if not arguments.quick:
        variants.append(sanitized(arguments.sanitized_dependencies))
    workers = []
    for number in range(jobs):
        queue.put(None)
        workers.append(multiprocessing.Process(
            target=work, args=(number, variants, queue, results), daemon=True))
        workers[-1].start()
    done = 0
    while done < len(faults):
        fault, outcome = results.get()
        if fault is None:
            sys.exit(outcome)
        done += 1
        state.add(fault, outcome)
        print(f"[{time.monotonic() - started:6.0f}s] {done}/{len(faults)} {outcome.state:16} "
              f"{fault.file}:{fault.line} {fault.kind}  {outcome.by}", flush=True)
    for worker in workers:
        worker.join()


def chosen(order, state, limit):
    """The first faults of the order that compile, as far as that is known: a fault that does not
    compile makes room for the next one."""
    result = []
    for fault in order:
        record = state.of(fault)
        if record is None or record["state"] != "does not compile":
            result.append(fault)
        if len(result) == limit:
            break
    return result


def report(faults, state, equivalents):
    """Prints the table and the survivors; true when the goal is reached."""
    rows = defaultdict(lambda: [0, 0, 0])
    survivors = []
    for fault in faults:
        row = rows[fault.file]
        row[1] += 1
        if state.of(fault)["state"] == "caught":
            row[0] += 1
        elif equivalents.reason(fault):
            row[2] += 1
        else:
            survivors.append(fault)
    print(f"\n{'source':44} caught    all  equivalent")
    for name in sorted(rows):
        print(f"{name:44} {rows[name][0]:6} {rows[name][1]:6} {rows[name][2] or '':>11}")
    caught, count, same = (sum(row[place] for row in rows.values()) for place in range(3))
    print(f"{'in all':44} {caught:6} {count:6} {same:11}")
    for fault in survivors:
        print(f"\nsurvived:\n{fault.diff()}")
    visible = count - same
    print(f"\ncaught: {caught} of {count} ({100 * caught / max(count, 1):.1f} %), without the "
          f"equivalent ones {caught} of {visible} ({100 * caught / max(visible, 1):.1f} %)")
    return caught >= GOAL * visible


def parse_arguments():
    parser = argparse.ArgumentParser(allow_abbrev=False)
    parser.add_argument("dependencies")
    parser.add_argument("sanitized_dependencies")
    parser.add_argument("--limit", type=int, default=120)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=1)
    parser.add_argument("--quick", action="store_true")
    how = parser.add_mutually_exclusive_group()
    how.add_argument("--resume", action="store_true")
    how.add_argument("--fresh", action="store_true")
    parser.add_argument("files", nargs="*")
    return parser.parse_intermixed_args()


def main():
    arguments = parse_arguments()
    # In the workers, too: their end is to be the end of everything that the tests have started.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    started = time.monotonic()
    names = source_names(ROOT)
    unknown = set(arguments.files) - set(names)
    if unknown:
        sys.exit(f"No source of the library: {', '.join(sorted(unknown))}")
    everything = all_faults(ROOT, names)
    equivalents = Equivalents(Path(__file__).with_name("equivalent.txt"))
    stale = equivalents.unknown(everything)
    if stale:
        sys.exit("These entries of the list of equivalent faults fit no source:\n"
                 + "\n".join("\n".join(map(str, entry)) for entry in stale))
    faults = [fault for fault in everything if not arguments.files or fault.file in arguments.files]
    order = list(selection(faults, arguments.seed))
    print(f"{len(everything)} possible faults in {len(names)} sources", flush=True)
    state = State(WORK / "results.jsonl", arguments.fresh, 1 if arguments.quick else 2, equivalents)
    while True:
        wanted = chosen(order, state, arguments.limit)
        open_ones = [fault for fault in wanted if state.of(fault) is None]
        if not open_ones:
            break
        run_trials(open_ones, state, arguments, started)
    sys.exit(0 if report(wanted, state, equivalents) else 1)


if __name__ == "__main__":
    main()

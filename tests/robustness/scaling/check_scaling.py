"""Holds the library to work that is proportional to its input.

Usage: check_scaling.py PROGRAM FILES [GOOGLETEST-ARGUMENT...]

Runs the program with all cases under callgrind, which counts instructions: the same ones each time,
however busy the machine is. Each case has an input of nothing, one of its size and one of 16 times
that. The cost of an empty input is subtracted; of the rest the large input may cost at most 20 times
as much as the small one. Work that grows by the square costs 256 times as much. The cases whose
names begin with "stand-in" have to fail: they show that such work is noticed.

FILES is the beginning of the names of the files with what was counted and printed.

SPDX-License-Identifier: MIT
"""

import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

LIMIT = 20
# Instructions that say nothing: where the input is refused at its first look, only these vary.
NOISE = 2000
STAND_IN = "stand-in"
# How the C library copies memory: "rep movsb", which it takes for large blocks, counts as one
# instruction for each byte, and its other ways as one for 32 bytes.
TUNABLES = ("glibc.cpu.x86_rep_movsb_threshold=0x10000000"
            ":glibc.cpu.x86_rep_stosb_threshold=0x10000000")
COUNTED = "rgenCountedRun"


def run_program(program, arguments, files):
    """Runs the program; returns what it printed and the file with the counts."""
    valgrind = shutil.which("valgrind")
    if not valgrind:
        sys.exit("valgrind is missing; run: scripts/setup test")
    counts = Path(f"{files}.callgrind")
    counts.unlink(missing_ok=True)
    command = [valgrind, "--tool=callgrind", f"--callgrind-out-file={counts}",
               f"--log-file={files}.valgrind.log", "--combine-dumps=yes", "--dump-line=no",
               f"--toggle-collect={COUNTED}", f"--dump-after={COUNTED}", program, *arguments]
    # Functions of other libraries are looked up before anything is counted.
    done = subprocess.run(command, env={**os.environ, "LD_BIND_NOW": "1", "GLIBC_TUNABLES": TUNABLES}, text=True,
                          errors="replace", stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          stdin=subprocess.DEVNULL, check=False)
    Path(f"{files}.log").write_text(done.stdout, encoding="utf-8")
    if done.returncode != 0:
        sys.exit(f"{done.stdout[-4000:]}\nthe program ended with code {done.returncode}")
    return done.stdout, counts


def counts_in(path):
    """The instructions of each call that is counted, in the order of the calls."""
    trigger = ""
    with open(path, encoding="utf-8", errors="replace") as lines:
        for line in lines:
            if line.startswith("desc: Trigger:"):
                trigger = line
            total = re.match(r"totals: (\d+)", line)
            if total and COUNTED in trigger:
                yield int(total.group(1))


def measured(output, counts):
    """The counts of each case by name: for nothing, for its size and for 16 times that."""
    names = re.findall(r"^figure\|(.*)\|\d+$", output, flags=re.M)
    if not names or len(names) != len(counts):
        sys.exit(f"{len(names)} measurements, but {len(counts)} counts")
    cases = {}
    for name, count in zip(names, counts):
        cases.setdefault(name, []).append(count)
    for name, values in cases.items():
        if len(values) != 3:
            sys.exit(f"{name}: {len(values)} measurements; is the name used twice?")
    return cases


def is_proportional(nothing, small, large):
    return large - nothing <= LIMIT * max(small - nothing, 0) + NOISE


def judge(cases):
    wrong = []
    for name, (nothing, small, large) in cases.items():
        proportional = is_proportional(nothing, small, large)
        ratio = (large - nothing) / max(small - nothing, 1)
        print(f"{nothing:>10} {small:>10} {large:>11} {ratio:8.2f}  {name}")
        if name.startswith(STAND_IN) == proportional:
            wrong.append(f"{name}: " + ("was not noticed" if proportional else
                                        f"{ratio:.1f} times the work for 16 times the input"))
    return wrong


def main():
    output, counts = run_program(sys.argv[1], sys.argv[3:], sys.argv[2])
    cases = measured(output, list(counts_in(counts)))
    print(f"{'nothing':>10} {'small':>10} {'16 times':>11} {'ratio':>8}  case")
    wrong = judge(cases)
    for text in wrong:
        print("NOT AS IT SHOULD BE:", text)
    print(f"{len(cases)} cases, {len(wrong)} not as they should be")
    if len(sys.argv) == 3 and not any(name.startswith(STAND_IN) for name in cases):
        sys.exit("the stand-ins were not run")
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()

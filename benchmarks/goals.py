# SPDX-License-Identifier: MIT
"""The goals, and whether the results meet them."""

TIME_BARS = {"S": 0.75, "M": 0.75, "L": 0.75, "T": 0.60, "C": 0.50}
OWN_LAYER_BARS = {"S": 0.03, "T": 0.03, "M": 0.10, "L": 0.10}
THREAD_BAR = 0.97
PEAK_FACTOR = 1.10
PEAK_ALLOWANCE_KIB = 2 * 1024
GROWTH_BAR_KIB = 64
PASS_BAR = 1.2
HOSTILE_BAR_SECONDS = 0.002
HOSTILE_GROWTH_BAR = 30
STACK_BAR_BYTES = 16 * 1024
SIZE_BAR_BYTES = 1_300_000
LARGE_TABLE_BAR = 1.6
DATES_BAR = 1.3
GUARDED_BAR = 1.01
KEY_BAR = 0.10


class Goal:
    """A row of the table: a measured value and its limit."""

    def __init__(self, title, value, bar, form="{:.3f}", at_least=False, note=""):
        self.title = title
        self.met = value >= bar if at_least else value <= bar
        self.bar = (">= " if at_least else "<= ") + form.format(bar)
        self.measured = form.format(value)
        self.note = note
        self.value = value

    def as_record(self):
        return {"goal": self.title, "bar": self.bar, "value": self.value, "met": self.met}


def percent_note(spread):
    return f"{spread['lowest']:.3f} to {spread['highest']:.3f}"


def time_goals(times, where=""):
    for workload, bar in TIME_BARS.items():
        if workload in times:
            measured = times[workload]
            spread = measured["ratios"]["library"]
            yield Goal(f"time at {workload}{where}, ratio to the baseline", spread["median"], bar,
                       note=f"{percent_note(spread)}; {measured['library'] * 1e3:.3f} ms / "
                            f"{measured['baseline'] * 1e3:.3f} ms")


def scaling_goals(times):
    if "XL" in times:
        ratio = times["XL"]["library"] / 100_000 / (times["M"]["library"] / 1_000)
        yield Goal("time for a property, ratio XL to M", ratio, LARGE_TABLE_BAR)
    if "K1" in times:
        yield Goal("look-ups by key, ratio to look-ups by scan (K1/K0)",
                   times["K1"]["library"] / times["K0"]["library"], KEY_BAR)


def instruction_goals(instructions):
    for workload, bar in OWN_LAYER_BARS.items():
        if workload in instructions:
            counts = instructions[workload]
            yield Goal(f"instructions of own layers at {workload}, ratio to the baseline",
                       counts["own_ratio"], bar, "{:.4f}",
                       note=f"{counts['own']:,}; in all {counts['library']:,} / "
                            f"{counts['baseline']:,} = {counts['ratio']:.3f}")


def pass_goals(measured):
    spread = measured["to_plain_search"]["ordinary/1"]
    yield Goal("translation pass of 1 MB, ratio to a plain search", spread["median"], PASS_BAR,
               note=percent_note(spread))
    seconds = measured["seconds"]
    for name, value in seconds.items():
        kind, text, size = name.split("/")
        if kind != "pass" or size != "1" or text in ("ordinary", "markers"):
            continue
        yield Goal(f"hostile text, {text}, 1 MB, ms", value * 1e3, HOSTILE_BAR_SECONDS * 1e3)
        yield Goal(f"hostile text, {text}, ratio 16 MB to 1 MB", seconds[f"pass/{text}/16"] / value,
                   HOSTILE_GROWTH_BAR, "{:.1f}")
    yield Goal("stack of the translation pass, bytes", measured["stack_bytes"], STACK_BAR_BYTES,
               "{:,}")


def guarded_goals(measured):
    yield Goal("guarded call at S, instructions, ratio to the plain one", measured["ratio"],
               GUARDED_BAR, note=f"{measured['guarded']:,} / {measured['library']:,}")


def date_goals(measured, where=""):
    seconds = measured["seconds"]
    for name, spread in measured["to_numbers"].items():
        yield Goal(f"dump of 20,000 values as {name}{where}, ratio to one of numbers",
                   spread["median"], DATES_BAR,
                   note=f"{percent_note(spread)}; {seconds[name] * 1e3:.1f} ms / "
                        f"{seconds['number'] * 1e3:.1f} ms")


def thread_goals(threads):
    for workload, gains in threads.items():
        yield Goal(f"speed-up by two threads at {workload}, ratio to the baseline",
                   gains["ratio"]["median"], THREAD_BAR, at_least=True,
                   note=f"{percent_note(gains['ratio'])}; {gains['library']['median']:.2f} / "
                        f"{gains['baseline']['median']:.2f}")


def memory_goals(peaks, growths):
    for workload, peak in peaks.items():
        bar = max(peak["baseline"] * PEAK_FACTOR, peak["baseline"] + PEAK_ALLOWANCE_KIB)
        yield Goal(f"peak memory at {workload}, KiB", peak["library"], bar, "{:,.0f}",
                   note=f"baseline {peak['baseline']:,.0f}")
    for workload, growth in growths.items():
        yield Goal(f"memory growth at {workload}, KiB", growth["library"], GROWTH_BAR_KIB,
                   "{:,}", note=f"baseline {growth['baseline']:,}")


def all_goals(results):
    """All goals for which there are results."""
    goals = [*time_goals(results["times"]), *instruction_goals(results["instructions"]),
             *pass_goals(results["translation_pass"]), *guarded_goals(results["guarded"]),
             *date_goals(results["dates"]),
             *thread_goals(results["two_threads"]),
             *memory_goals(results["peak_memory"], results["growth"]),
             Goal("stripped shared library, bytes", results["library_bytes"], SIZE_BAR_BYTES,
                  "{:,}"),
             *scaling_goals(results["times"])]
    if "windows" in results:
        goals += time_goals(results["windows"], " on Windows")
        goals += date_goals(results["dates_on_windows"], " on Windows")
    return goals


def notes(results):
    """Results without a goal."""
    for workload, measured in results["times"].items():
        if "baseline_mimalloc" in measured:
            ratio = measured["library"] / measured["baseline_mimalloc"]
            yield f"time at {workload}, ratio to the baseline with mimalloc: {ratio:.3f}"


def markdown(goals, results):
    """The table for docs/performance.md."""
    machine = results["machine"]
    libraries = ", ".join(f"{name.removesuffix('_VERSION').lower()} {version}"
                          for name, version in machine["libraries"].items())
    lines = [f"Measured on {machine['date'][:10]}: {machine['processor']}, {machine['cores']} cores, "
             f"Linux {machine['kernel']}, {machine['compiler']}; {libraries}; "
             f"medians of {results['rounds']} rounds.", "",
             "| measurement | goal | measured | met | details |", "|---|---|---|---|---|"]
    lines += [f"| {goal.title} | {goal.bar} | {goal.measured} | {'yes' if goal.met else '**no**'} "
              f"| {goal.note} |" for goal in goals]
    return "\n".join(lines) + "\n"


def table(goals):
    """The table as text."""
    rows = [("goal", "bar", "measured", "", "")]
    rows += [(goal.title, goal.bar, goal.measured, "met" if goal.met else "NOT MET", goal.note)
             for goal in goals]
    widths = [max(len(row[column]) for row in rows) for column in range(4)]
    lines = ["  ".join([row[0].ljust(widths[0]), row[1].rjust(widths[1]), row[2].rjust(widths[2]),
                        row[3].ljust(widths[3]), row[4]]).rstrip() for row in rows]
    lines.insert(1, "-" * max(len(line) for line in lines))
    missed = sum(not goal.met for goal in goals)
    return "\n".join([*lines, "", f"{len(goals) - missed} of {len(goals)} goals met"])

# SPDX-License-Identifier: MIT
"""The results as tables, for a terminal and as a Markdown document."""

WAYS = {"each": "each report", "once": "once"}
LIBRARY = "strata_repgenlib"
# Results whose rounds differ by more than this are listed.
LARGEST_SPREAD = 0.2


def significant(number):
    """Three significant digits, with commas between thousands."""
    if number >= 100:
        digits = len(str(int(number))) - 3
        return f"{round(number, -digits):,.0f}"
    return f"{number:.1f}" if number >= 10 else f"{number:.2f}"


def workload_names(results):
    return list(results["peers"][0]["ways"]["each"])


def library_of(results):
    return next(peer for peer in results["peers"] if peer["name"] == LIBRARY)


def rows_of(results, cell):
    """A row for each peer and way: its name, the way and a cell for each workload."""
    return [[peer["name"], WAYS[way],
             *(cell(measured, results, name) for name, measured in by_workload.items())]
            for peer in results["peers"] for way, by_workload in peer["ways"].items()]


def rate(measured, _results, _name):
    return significant(measured["reports_per_second"])


def factor(measured, results, name):
    """How many reports the library makes in the time of one report of the peer."""
    library = library_of(results)["ways"]["each"][name]["reports_per_second"]
    return f"{significant(library / measured['reports_per_second'])} x"


def peak(measured, _results, _name):
    return f"{measured['peak_kib'] / 1024:.1f}"


def speed_table(results):
    names = workload_names(results)
    head = ["", "template compiled", *(f"{name}, reports/s" for name in names),
            *(f"{name}, library faster by" for name in names)]
    factors = rows_of(results, factor)
    return [head, *(row + more[2:] for row, more in zip(rows_of(results, rate), factors))]


def memory_table(results):
    counts = results["settings"]["memory_reports"]
    head = ["", "template compiled",
            *(f"{name} ({counts[name]:,} reports), MiB" for name in workload_names(results))]
    return [head, *rows_of(results, peak)]


def cold_table(results):
    names = list(library_of(results)["cold_start_ms"])
    head = ["", *(f"{name}, ms" for name in names)]
    return [head, *([peer["name"], *(significant(peer["cold_start_ms"][name]) for name in names)]
                    for peer in results["peers"])]


def in_markdown(table, texts):
    """A Markdown table. The first `texts` columns contain text, the others numbers."""
    widths = [max(len(row[column]) for row in table) for column in range(len(table[0]))]

    def line(cells):
        aligned = [cell.ljust(width) if column < texts else cell.rjust(width)
                   for column, (cell, width) in enumerate(zip(cells, widths))]
        return "| " + " | ".join(aligned) + " |"

    rule = ["-" * width if column < texts else "-" * (width - 1) + ":"
            for column, width in enumerate(widths)]
    return "\n".join([line(table[0]), line(rule), *map(line, table[1:])])


def unsteady(results):
    """The results whose rounds differ much, each with the spread."""
    found = []
    for peer in results["peers"]:
        for way, by_workload in peer["ways"].items():
            for name, measured in by_workload.items():
                rounds = measured["rounds"]
                spread = (max(rounds) - min(rounds)) / measured["reports_per_second"]
                if spread > LARGEST_SPREAD:
                    found.append(f"{peer['name']} {WAYS[way]} {name} ({spread:.0%})")
    return found


def warm_ups(results):
    """The warm-up times of the programs that are not bound to one core."""
    return ", ".join(f"{peer['name']} ({peer['warm_up']} s)" for peer in results["peers"]
                     if not peer["bound_to_one_core"])


def notes(results):
    settings = results["settings"]
    apart = warm_ups(results)
    far = unsteady(results)
    load = ", ".join(f"{number:.1f}" for number in results["load_averages"])
    lines = [
        "The same report of every engine: the values are in memory, the report is a file of HTML "
        "in UTF-8 with its values escaped, and its text is the library's. S has 10 values, M 1,000 "
        "and L 10,000.",
        "The engines for XSLT (the baseline, lxml, xsltproc, Xalan-C, Saxon-HE) run the workload's "
        "own stylesheet and build its input document for each report; the others have a template "
        "of their own kind.",
        "The library and the baseline also read the configuration and the stored values from their "
        "files for each report; the peers have the stored values in memory. The baseline is a "
        "program that calls libxml2 and libxslt directly for the same work.",
        "Where the library is faster by less than 1 x, it is the slower one.",
        "xsltproc is a new process for each report; its memory is that of the process alone.",
        f"Medians of {settings['rounds']} round(s) with all engines in turn, at least "
        f"{settings['seconds']:g} s each after a warm-up. Each program is bound to one core"
        + (f", except these, which run on virtual machines with threads of their own and are "
           f"warmed up for longer: {apart}" if apart else "") + ".",
        f"Load of the machine before the first round and after each: {load}.",
        "Each report replaces the previous one, whose file is deleted first."
        + (" The files are in a memory file system, so that no disk is measured."
           if results["files_in_memory"] else ""),
        "Memory is the peak of the resident memory of a process that makes the stated number of "
        "reports.",
        f"A cold start takes from the start of a process to its end, with one report "
        f"({settings['cold_starts'] * settings['rounds']} starts).",
    ]
    if far:
        lines.append(f"Results whose rounds differ by more than {LARGEST_SPREAD:.0%}: "
                     f"{'; '.join(far)}.")
    lines += [f"{name} is left out: {reason}." for name, reason in results["left_out"].items()]
    return "\n".join(f"- {line}" for line in lines)


def written_document(results):
    versions = "\n".join(f"- {name} {version}" for name, version in results["versions"].items())
    return "\n".join([
        f"Measured on {results['date']}: {results['processor']}, {results['cores']} cores, "
        f"{results['system']}.", "",
        "### Reports per second", "", in_markdown(speed_table(results), 2), "",
        "### Peak memory", "", in_markdown(memory_table(results), 2), "",
        "### Cold start", "", in_markdown(cold_table(results), 1), "",
        "### How it is measured", "", notes(results), "",
        "### Versions", "", versions, ""])


def terminal_tables(results):
    tables = [("Reports per second", speed_table(results), 2),
              ("Peak memory", memory_table(results), 2), ("Cold start", cold_table(results), 1)]
    return "\n".join(f"\n{title}\n" + in_markdown(table, texts)
                     for title, table, texts in tables)

# SPDX-License-Identifier: MIT
"""Prepares the workloads for the peers and verifies their reports."""

import shutil
import sys
import xml.etree.ElementTree as ElementTree

from peer_list import FOLDER, LIBRARY, ROOT, SCRATCH, Candidate, PeerError, run
from report_text import difference, report_text

sys.path.insert(0, str(ROOT / "benchmarks"))
from make_workloads import make_workloads  # noqa: E402

# Workloads whose table has a row for each property, in an order that the library does not define.
ANY_ORDER = {"M", "L"}
# Replaces the value "Sample" to test whether a peer escapes it. The library and the baseline do
# not: their values are XML content.
MARKED_UP = 'one <b>bold</b> & "quoted"'


def prepare_workload(folder):
    """Writes the values for the peers: the persistent ones, then those of the workload."""
    persistent = ElementTree.parse(folder / "data/.rgen/persist_data.xml")
    lines = "".join(f"{found.get('name')}\ttext\t{found.text}\n"
                    for found in persistent.iterfind("properties/property"))
    values = (folder / "values.tsv").read_text(encoding="utf-8")
    (folder / "all_values.tsv").write_text(lines + values, encoding="utf-8")


def prepare_workloads(names):
    folder = FOLDER / "workloads"
    make_workloads(folder, names)
    for name in names:
        prepare_workload(folder / name)
    return [folder / name for name in names]


def with_markup(workload):
    """A copy of a workload with one value that contains markup."""
    copy = SCRATCH / "escaping" / workload.name
    shutil.copytree(workload, copy)
    path = copy / "all_values.tsv"
    lines = [f"Sample\ttext\t{MARKED_UP}" if line.startswith("Sample\t") else line
             for line in path.read_text(encoding="utf-8").splitlines()]
    path.write_text("\n".join(lines) + "\n", encoding="utf-8")
    return copy


def make_report(peer, workload, way, kind=""):
    """Content and file of the second report that a process makes."""
    output = SCRATCH / f"{peer.key}-{workload.name}-{way}{kind}.html"
    run(peer.reports_command(workload, output, way, 2), f"{peer.name} ({way}, {workload.name})")
    return output.read_bytes(), output


def text_differs(wanted, made, any_order):
    try:
        return difference(wanted, made, any_order)
    except UnicodeDecodeError:
        return "it is not UTF-8"


def verify_texts(peers, workload):
    """Requires that each peer's report has the text of the library's."""
    wanted, _ = make_report(LIBRARY, workload, "each")
    for peer in peers:
        for way in peer.ways:
            made, path = make_report(peer, workload, way)
            differs = text_differs(wanted, made, workload.name in ANY_ORDER)
            if differs:
                raise PeerError(f"the report of {peer.name} ({way}) of workload {workload.name} "
                                f"is not the library's: {differs}\nsee {path}")


def verify_escaping(peers, workload):
    """Requires that each peer escapes markup in values."""
    marked_up = with_markup(workload)
    for peer in peers:
        for way in () if isinstance(peer, Candidate) else peer.ways:
            made, path = make_report(peer, marked_up, way, "-escaping")
            shown = any(MARKED_UP in text for text in report_text(made))
            if not shown or b"<b>" in made:
                raise PeerError(f"the report of {peer.name} ({way}) of workload {workload.name} "
                                f"does not have its values escaped\nsee {path}")


def verify(peers, workload):
    verify_texts(peers, workload)
    verify_escaping(peers, workload)

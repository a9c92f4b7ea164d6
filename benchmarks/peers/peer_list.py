# SPDX-License-Identifier: MIT
"""The peers: how they are started and what they need."""

import re
import shutil
import subprocess
from dataclasses import dataclass, field
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SOURCES = ROOT / "benchmarks/peers"
FOLDER = ROOT / "build/benchmarks/peers"
# Compared reports and other intermediate files.
SCRATCH = FOLDER / "scratch"
PROGRAMS = FOLDER / "bin"
# Debian's Python, to which the packages of the peers belong.
PYTHON = "/usr/bin/python3"
SAXON = Path("/usr/share/java/Saxon-HE.jar")
TEMPLATES = {"S": "small", "M": "table", "L": "table"}
LONGEST_RUN = 600
# Seconds. Virtual machines with a just-in-time compiler become fast after a while: Saxon-HE
# compiles a template several times faster after 20 seconds than after 3.
WARM_UP = 0.5
NODE_WARM_UP = 10
JAVA_WARM_UP = 25


class PeerError(Exception):
    """A program failed, or its report is wrong."""


@dataclass
class Peer:
    """An engine and the small program that calls it."""

    name: str
    start: list
    engine: str = ""                # extension of its templates; empty: the workload's stylesheet
    ways: tuple = ("each", "once")
    needs: list = field(default_factory=list)       # required files
    modules: list = field(default_factory=list)     # required Python modules
    packages: list = field(default_factory=list)    # required packages, the peer first
    own_threads: bool = False       # a virtual machine: not bound to one core
    warm_up: float = WARM_UP

    @property
    def key(self):
        return re.sub(r"\W+", "-", self.name.lower())

    def missing(self):
        """Why the peer cannot run; empty when it can."""
        packages = " and ".join(self.packages) or "(build the preset linux)"
        for path in [self.start[0], *self.needs]:
            if shutil.which(str(path)) is None and not Path(path).exists():
                return f"{Path(path).name} is missing; install {packages}"
        for module in self.modules:
            if subprocess.run([PYTHON, "-c", f"import {module}"], capture_output=True,
                              check=False).returncode != 0:
                return f"{PYTHON} has no module {module}; install {packages}"
        return ""

    def command(self, workload, output, way, *options):
        template = (SOURCES / "templates" / f"{TEMPLATES[workload.name]}.{self.engine}"
                    if self.engine else workload / "data/.rgen/templates/html/translated.xsl")
        return [*map(str, self.start), f"--values={workload / 'all_values.tsv'}",
                f"--template={template}", f"--output={output}", f"--way={way}", *options]

    def reports_command(self, workload, output, way, count):
        return self.command(workload, output, way, f"--reports={count}")

    def measure_command(self, workload, output, way, seconds):
        return self.command(workload, output, way, f"--warm-up={self.warm_up}",
                            f"--seconds={seconds}")

    def cold_command(self, workload, output):
        return self.reports_command(workload, output, "each", 1)

    def rate(self, printed):
        """Reports per second."""
        return printed["reports"] / printed["seconds"]


class Xsltproc(Peer):
    """Its cold start is the program xsltproc itself, with its input prepared."""

    def cold_command(self, workload, output):
        document = SCRATCH / f"{self.key}-{workload.name}-each.html.xml"
        return ["xsltproc", "-o", str(output),
                str(workload / "data/.rgen/templates/html/translated.xsl"), str(document)]


class Candidate(Peer):
    """The library or the baseline: a benchmark program."""

    def command(self, workload, output, way, *options):
        return [*map(str, self.start), f"--workload={workload}", f"--output={output}", *options]

    def measure_command(self, workload, output, way, seconds):
        return self.command(workload, output, way, "--benchmark_format=json",
                            f"--benchmark_min_warmup_time={self.warm_up}",
                            f"--benchmark_min_time={seconds}")

    def rate(self, printed):
        measured = next(run for run in printed["benchmarks"] if run["run_type"] == "iteration")
        return {"ns": 1e9, "us": 1e6, "ms": 1e3, "s": 1}[measured["time_unit"]] / \
            measured["real_time"]


LIBRARY = Candidate("strata_repgenlib", [PROGRAMS / "benchmark_library"], ways=("each",))
BASELINE = Candidate("baseline", [PROGRAMS / "benchmark_baseline"], ways=("each",))


def python_peer(name, program, module, **more):
    return Peer(name, [PYTHON, "-B", SOURCES / "python" / program], modules=[module], **more)


def node_peer(name, program, **more):
    folder = FOLDER / "node"
    package = folder / "node_modules" / name.lower()
    return Peer(name, ["node", folder / program], needs=[folder / program, package],
                packages=[f"the npm package {name.lower()}", "Node"], own_threads=True,
                warm_up=NODE_WARM_UP, **more)


def all_peers():
    """The library first, then the baseline and the peers."""
    programs = FOLDER / "cpp/bin"
    java = FOLDER / "java"
    return [
        LIBRARY,
        BASELINE,
        python_peer("lxml", "lxml_peer.py", "lxml.etree", packages=["python3-lxml"]),
        Xsltproc("xsltproc", [programs / "peer_xsltproc"], ways=("each",), needs=["xsltproc"],
                 packages=["xsltproc"]),
        Peer("Xalan-C", [programs / "peer_xalan"], packages=["libxalan-c-dev"]),
        Peer("Saxon-HE", ["java", "-cp", f"{SAXON}:{java}", "SaxonPeer"],
             needs=[SAXON, java / "SaxonPeer.class"],
             packages=["libsaxonhe-java", "default-jdk-headless"],
             own_threads=True, warm_up=JAVA_WARM_UP),
        Peer("ctemplate", [programs / "peer_ctemplate"], "tpl", packages=["libctemplate-dev"]),
        python_peer("Jinja2", "jinja2_peer.py", "jinja2", engine="jinja",
                    packages=["python3-jinja2"]),
        node_peer("Handlebars", "handlebars_peer.mjs", engine="hbs"),
        node_peer("Eta", "eta_peer.mjs", engine="eta"),
    ]


def run(command, what):
    """Runs a command and returns its output."""
    try:
        ended = subprocess.run(list(map(str, command)), stdin=subprocess.DEVNULL,
                               capture_output=True, timeout=LONGEST_RUN, check=False)
    except (OSError, subprocess.TimeoutExpired) as error:
        raise PeerError(f"{what}: {error}") from error
    if ended.returncode != 0:
        errors = ended.stderr.decode("utf-8", "replace").strip()
        raise PeerError(f"{what} ends with code {ended.returncode}\n{errors[-2000:]}")
    return ended.stdout.decode("utf-8")

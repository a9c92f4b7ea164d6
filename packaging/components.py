"""The facts of a bill of materials about the parts and binaries of one package: versions, checksums
and package URLs, from the third-party folder and from dpkg.

SPDX-License-Identifier: MIT
"""

import hashlib
import os
import subprocess
from dataclasses import dataclass
from pathlib import Path

from linked_parts import Build, Links, Part, Table
from packaging_tools import RELEASE_NAME


LIBRARIES = ("strata_repgenlib", "strata_repgenlib_host")


class MissingFact(Exception):
    """A fact for a bill of materials cannot be determined."""


@dataclass
class Component:
    """A part, and its release that was linked or is loaded."""
    part: Part
    version: str
    purl: str
    archives: list[tuple[str, str]]  # SHA-256 and name of each source archive.


@dataclass
class PackagedFile:
    """A file of the package, and its path there."""
    path: str
    sha1: str
    sha256: str


@dataclass
class Binary(PackagedFile):
    """A binary of this project, and what it was linked with."""
    target: str
    links: Links


@dataclass(frozen=True)
class Subject:
    """The subject of a bill of materials: the name of the package, the common part of the file
    names, and the folder of the tree with the installation ("usr/" in the Debian package)."""
    name: str
    title: str
    version: str
    system: str
    prefix: str = ""


def archive_subject(version: str, system: str) -> Subject:
    return Subject(RELEASE_NAME, f"{RELEASE_NAME}-{version}-{system}-x64", version, system)


@dataclass
class Materials:
    """Everything that both kinds of documents are made from."""
    subject: Subject
    epoch: int
    files: list[PackagedFile]  # All but the bills of materials.
    excluded: list[str]  # The bills of materials.
    binaries: list[Binary]
    components: list[Component]


def source_component(part: Part, third_party: Path) -> Component:
    settings = dict(line.split("=", 1) for line in
                    (third_party / "versions.env").read_text(encoding="ascii").splitlines())
    version = settings[f"{part.source.upper()}_VERSION"]
    rows = [line.split() for line in
            (third_party / "sources.txt").read_text(encoding="ascii").splitlines()]
    archives = [(sum_, name) for source, sum_, name in rows if source == part.source]
    if not archives:
        raise MissingFact(f"{third_party}/sources.txt names no archive of {part.source}; remove "
                          "that folder and run scripts/dependencies")
    debian_name = archives[0][1].split("_")[0]
    return Component(part, version, package_url(debian_name, version, "source"), archives)


def package_component(part: Part) -> Component:
    query = subprocess.run(["dpkg-query", "-W", "-f", "${Version} ${Architecture}\n", part.package],
                           text=True, capture_output=True)
    words = query.stdout.split()
    if query.returncode or len(words) < 2:
        raise MissingFact(f"the Debian package {part.package}, from which {part.name} came, is not "
                          "installed; scripts/setup installs it")
    return Component(part, words[0], package_url(part.package, words[0], words[1]), [])


def package_url(name: str, version: str, architecture: str) -> str:
    escaped = version.replace("+", "%2B").replace(":", "%3A")
    return f"pkg:deb/debian/{name.replace('+', '%2B')}@{escaped}?arch={architecture}&distro=debian"


def component_of(part: Part, third_party: Path) -> Component:
    if part.source:
        return source_component(part, third_party)
    if part.package:
        return package_component(part)
    return Component(part, "", "", [])


def binaries_of(system: str, version: str) -> dict[str, str]:
    """Target and path in the package of each binary."""
    if system == "windows":
        return {**{name: f"bin/{name}.dll" for name in LIBRARIES}, "rgen": "bin/rgen.exe",
                "vellum": "bin/vellum.exe"}
    return {**{name: f"lib/lib{name}.so.{version}" for name in LIBRARIES}, "rgen": "bin/rgen",
            "vellum": "bin/vellum"}


def own_libraries(system: str, version: str) -> dict[str, str]:
    """The targets of the libraries, by the names under which binaries load them."""
    if system == "windows":
        return {f"{name}.dll": name for name in LIBRARIES}
    return {f"lib{name}.so.{version.split('.')[0]}": name for name in LIBRARIES}


def read_file(tree: Path, path: str) -> PackagedFile:
    content = (tree / path).read_bytes()
    return PackagedFile(path, *(hashlib.new(kind, content).hexdigest()
                                for kind in ("sha1", "sha256")))


def read_files(tree: Path, left_out: Path) -> list[PackagedFile]:
    """The files of a tree except those of one folder and symbolic links."""
    return [read_file(tree, path.relative_to(tree).as_posix()) for path in sorted(tree.rglob("*"))
            if path.is_file() and not path.is_symlink() and left_out not in path.parents]


def file_owners(paths: list[str]) -> dict[str, set[str]]:
    """The Debian packages that own files of this system; files without one are left out."""
    query = subprocess.run(["dpkg-query", "-S", *paths], text=True, capture_output=True,
                           env={**os.environ, "LC_ALL": "C.UTF-8"})
    owners: dict[str, set[str]] = {}
    for line in query.stdout.splitlines():
        names, found, path = line.partition(": ")
        if found and not line.startswith("diversion by "):
            owners[path] = {name.split(":")[0] for name in names.split(", ")}
    return owners


def check_owners(parts: list[Part], binaries: list[Binary]) -> None:
    """Checks that the files of each part belong to its Debian package, if it has one."""
    for part in parts:
        paths = sorted({os.path.realpath(path) for binary in binaries if part.package
                        for path in binary.links.files.get(part.id, ())})
        owners = file_owners(paths) if paths else {}
        for path in paths:
            found = owners.get(path, set())
            if part.package not in found:
                owner = f"the Debian package {', '.join(sorted(found))}" if found else \
                    "no Debian package"
                raise MissingFact(f"{path} was linked as a file of {part.name}, but belongs to "
                                  f"{owner} and not to {part.package}; correct the part in "
                                  "packaging/parts.json")


def linked_binaries(build: Build, tree: Path, subject: Subject) -> list[Binary]:
    libraries = own_libraries(subject.system, subject.version)
    binaries = []
    for target, name in binaries_of(subject.system, subject.version).items():
        path = subject.prefix + name
        links = build.links(target, tree / path, libraries)
        file = read_file(tree, path)
        binaries.append(Binary(path, file.sha1, file.sha256, target, links))
    return binaries


def collect(build: Build, tree: Path, third_party: Path, subject: Subject, epoch: int,
            documents: dict[str, Path]) -> Materials:
    """The materials of the complete TREE: each file, and the parts of all binaries. DOCUMENTS are
    the paths of the documents that will be written, all in one folder."""
    binaries = linked_binaries(build, tree, subject)
    used = set().union(*(binary.links.inside | binary.links.loaded for binary in binaries))
    parts = [part for part in build.table.parts if part.id in used]
    check_owners(parts, binaries)
    excluded = sorted(path.relative_to(tree).as_posix() for path in documents.values())
    return Materials(subject, epoch, read_files(tree, next(iter(documents.values())).parent),
                     excluded, binaries, [component_of(part, third_party) for part in parts])

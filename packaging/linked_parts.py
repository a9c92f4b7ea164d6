"""Finds the parts that were linked into a binary: objects and archive members from the linker's
map, headers from the compiler's dependency records, and loaded libraries from the binary itself. A
file that matches no part of parts.json is an error.

SPDX-License-Identifier: MIT
"""

import json
import re
import subprocess
from dataclasses import dataclass, field
from functools import cache
from os.path import normpath
from pathlib import Path

MEMBER = re.compile(r"^(\S.*\.a)\((.+?)\)$")
# Temporary files of the link-time optimiser.
INTERMEDIATE = re.compile(r"/cc\w{6}\.(ltrans\d+\.ltrans|debug\.temp)\.o$")


class UnknownPart(Exception):
    """A linked file matches no part of the table."""


@dataclass
class Part:
    """One entry of the table, with the paths of folders inserted."""
    id: str
    name: str
    licence: str
    licence_file: str = ""
    source: str = ""
    package: str = ""
    changed: str = ""
    systems: list[str] = field(default_factory=lambda: ["linux", "windows"])
    archives: list[str] = field(default_factory=list)
    objects: list[str] = field(default_factory=list)
    headers: list[str] = field(default_factory=list)
    shared: list[str] = field(default_factory=list)


@dataclass
class Table:
    parts: list[Part]
    interfaces: list[str]


@dataclass
class Links:
    """The identifiers of the parts inside a binary and of those that it loads, the targets of the
    project's own libraries that it loads, and the files by which each part inside was recognised."""
    inside: set[str] = field(default_factory=set)
    loaded: set[str] = field(default_factory=set)
    own: set[str] = field(default_factory=set)
    files: dict[str, set[str]] = field(default_factory=dict)

    def add(self, part: str, path: str) -> None:
        self.inside.add(part)
        self.files.setdefault(part, set()).add(path)


def read_table(path: Path, system: str, folders: dict[str, str]) -> Table:
    """The parts of one system, with the FOLDERS inserted for {third_party} and {headers}."""
    content = json.loads(path.read_text(encoding="utf-8"))
    parts = [Part(**entry) for entry in content["parts"]]
    for part in parts:
        for patterns in (part.archives, part.objects, part.headers):
            for index, pattern in enumerate(patterns):
                for name, folder in folders.items():
                    pattern = pattern.replace("{" + name + "}", folder)
                patterns[index] = pattern
    return Table([part for part in parts if system in part.systems], content["interfaces"])


@cache
def expression(pattern: str) -> re.Pattern[str]:
    """A pattern of the table as a regular expression: * stays within a folder, ** does not."""
    return re.compile(re.escape(pattern).replace(r"\*\*", ".*").replace(r"\*", "[^/]*"))


def matches(path: str, patterns: list[str]) -> bool:
    return any(expression(pattern).fullmatch(path) for pattern in patterns)


def known_part(table: Table, kind: str, path: str) -> str | None:
    """The part that a file of a kind (archives, objects, headers, shared) belongs to, or None."""
    for part in table.parts:
        if matches(path, getattr(part, kind)):
            return part.id
    return None


def part_of(table: Table, kind: str, path: str, binary: str) -> str:
    """Like known_part, for a file that must belong to a part."""
    part = known_part(table, kind, path)
    if part:
        return part
    raise UnknownPart(f"{path} went into {binary}, but packaging/parts.json has no part with it "
                      f"under \"{kind}\"; add the part with its licence")


def map_inputs(text: str) -> tuple[set[str], set[str]]:
    """The archives whose members were linked, and the single objects, as the map writes them."""
    head = text.split("\nMemory Configuration")[0].split("\nDiscarded input sections")[0]
    archives = set()
    for line in head.splitlines():
        member = MEMBER.match(line.split("  ")[0].strip()) if line[:1].strip() else None
        if member:
            archives.add(member.group(1))
    loaded = re.findall(r"^LOAD (.+)$", text, flags=re.M)
    objects = {path for path in loaded if path.endswith((".o", ".obj")) and
               not INTERMEDIATE.search(path)}
    return archives, objects


def read_headers(build: Path) -> dict[str, list[str]]:
    """The headers of every object of the build, by the object's path in the build folder."""
    text = subprocess.run(["ninja", "-C", str(build), "-t", "deps"], check=True, text=True,
                          capture_output=True).stdout
    headers: dict[str, list[str]] = {}
    current: list[str] = []
    for line in text.splitlines():
        if line.startswith("    "):
            current.append(line.strip())
        elif ": #deps" in line:
            current = headers.setdefault(line.split(": #deps")[0], [])
    return headers


def loaded_libraries(binary: Path) -> set[str]:
    """The libraries that a binary loads when it starts."""
    if binary.suffix in {".dll", ".exe"}:
        text = subprocess.run(["objdump", "-p", str(binary)], check=True, text=True,
                              capture_output=True).stdout
        return set(re.findall(r"DLL Name: (\S+)", text))
    text = subprocess.run(["readelf", "--wide", "--dynamic", str(binary)], check=True, text=True,
                          capture_output=True).stdout
    return set(re.findall(r"Shared library: \[([^\]]+)\]", text))


class Build:
    """A complete build: its folder, and the headers that its compiler recorded."""

    def __init__(self, folder: Path, source: Path, table: Table) -> None:
        self.folder = folder
        self.source = source
        self.table = table
        self.maps = folder / "maps"
        self.headers = read_headers(folder)

    def own(self, kind: str, path: str) -> bool:
        """True for the project's own files. Third-party libraries may be in its folder, too."""
        absolute = normpath(self.folder / path)
        return absolute.startswith((f"{self.folder}/", f"{self.source}/")) and \
            not known_part(self.table, kind, absolute)

    def objects_of(self, archives: set[str], objects: set[str]) -> set[str]:
        """The project's objects among those that were linked, and those in its own archives."""
        mine = {path for path in objects if self.own("objects", path)}
        for archive in archives:
            if self.own("archives", archive):
                target = Path(archive).stem.removeprefix("lib")
                mine |= {path for path in self.headers if f"/{target}.dir/" in path}
        return mine

    def foreign_headers(self, objects: set[str]) -> list[str]:
        """The headers of the objects that belong to a part, or to nothing known."""
        seen = {normpath(self.folder / header) for path in objects
                for header in self.headers.get(path, [])}
        return [header for header in sorted(seen) if known_part(self.table, "headers", header) or
                not (self.own("headers", header) or matches(header, self.table.interfaces))]

    def links(self, target: str, binary: Path, own_libraries: dict[str, str]) -> Links:
        """What is inside a binary and what it loads; OWN_LIBRARIES are the targets of the project's
        libraries by the names under which they are loaded."""
        text = (self.maps / f"{target}.map").read_text(encoding="utf-8")
        archives, objects = map_inputs(text)
        links = Links()
        headers = self.foreign_headers(self.objects_of(archives, objects))
        for kind, paths in (("archives", archives), ("objects", objects), ("headers", headers)):
            for path in sorted(paths):
                if not self.own(kind, path):
                    absolute = normpath(self.folder / path)
                    links.add(part_of(self.table, kind, absolute, target), absolute)
        for name in sorted(loaded_libraries(binary)):
            if name in own_libraries:
                links.own.add(own_libraries[name])
            else:
                links.loaded.add(part_of(self.table, "shared", name, target))
        return links

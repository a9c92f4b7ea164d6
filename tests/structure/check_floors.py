"""The floors of the architecture: no file of the library includes a higher floor, no circles; only
the platform sources know an OS header; the boundary records appear in src/api alone.

SPDX-License-Identifier: MIT
"""

import re

from project_files import ROOT, code_files, finish, problem, relative, without_comments

OS_HEADERS = re.compile(
    r"^(windows|winver|io|process|direct|unistd|fcntl|poll|pthread|spawn|signal|dlfcn"
    r"|sys/.*|linux/.*)\.h$")
OS_SOURCES = re.compile(r"^src/platform/.*_(windows|posix)\.cpp$")
RECORD_NAMES = re.compile(r"\bRgen(C[A-Z]\w*|AnsiString|ByteArray|Guid)\b")
RECORD_USERS = re.compile(r"^(include/|src/api/)")
HEADER_USERS = re.compile(r"^(include/|src/api/|src/report_generator\.h$)")
OUTSIDE = ["examples", "tools", "tests/host", "tests/abi", "tests/bindings"]


def read_floors():
    floors = {}
    for line in (ROOT / "tests/structure/floors.txt").read_text().splitlines():
        if line and not line.startswith("#"):
            floor, stem = line.split()
            floors[stem] = int(floor)
    return floors


def includes_of(path):
    text = without_comments(path.read_text())
    return re.findall(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', text, flags=re.M)


def resolve(name):
    """The project file that an include names, or None for a foreign header."""
    for base in ("src", "include"):
        if (ROOT / base / name).is_file():
            return f"{base}/{name}"
    return None


def check_library(floors):
    graph = {}
    for path in code_files("include", "src"):
        name = relative(path)
        floor = floors.get(name.rsplit(".", 1)[0])
        if floor is None:
            problem(f"{name}: has no floor in tests/structure/floors.txt")
            continue
        graph[name] = []
        for include in includes_of(path):
            target = resolve(include)
            if target is None and OS_HEADERS.match(include) and not OS_SOURCES.match(name):
                problem(f"{name}: includes the system header <{include}>")
            if target is None:
                continue
            graph[name].append(target)
            target_floor = floors.get(target.rsplit(".", 1)[0], 0)
            if target_floor > floor:
                problem(f"{name} (floor {floor}) includes {target} (floor {target_floor})")
            if target.endswith("/rgen.h") and not HEADER_USERS.match(name):
                problem(f"{name}: includes the public header; only src/api may")
        if RECORD_NAMES.search(without_comments(path.read_text())) and not RECORD_USERS.match(name):
            problem(f"{name}: uses a boundary record; only src/api may")
    return graph


def check_circles(graph):
    done = set()

    def visit(name, trail):
        if name in trail:
            problem("include circle: " + " -> ".join(trail[trail.index(name):] + [name]))
        elif name not in done:
            for target in graph.get(name, []):
                visit(target, trail + [name])
            done.add(name)

    for name in graph:
        visit(name, [])


def check_outside():
    for path in code_files(*OUTSIDE):
        for include in includes_of(path):
            target = resolve(include)
            local = (path.parent / include).is_file() or (ROOT / "tests" / include).is_file()
            if target and target.startswith("src/") and not local:
                problem(f"{relative(path)}: includes {target}; only the public header is allowed")


def check_table(floors):
    for stem in floors:
        if not any((ROOT / f"{stem}{ending}").is_file() for ending in (".h", ".cpp")):
            problem(f"tests/structure/floors.txt: {stem} does not exist")


floor_table = read_floors()
check_table(floor_table)
check_circles(check_library(floor_table))
check_outside()
finish("floors")

"""The floors of the architecture: a file of a library or of a program includes files of its own folder
and of lower floors, no circles; only the platform sources know an OS header; the boundary records appear
in src/api alone; the host library includes two named headers of src.

SPDX-License-Identifier: MIT
"""

import re

from project_files import ROOT, code_files, finish, problem, relative, without_comments

OS_HEADERS = re.compile(
    r"^(windows|winver|io|process|direct|unistd|fcntl|poll|pthread|spawn|signal|dlfcn"
    r"|sys/.*|linux/.*)\.h$")
OS_SOURCES = re.compile(r"^(src|host)/platform/.*_(windows|posix)\.cpp$")
RECORD_NAMES = re.compile(r"\bRgen(C[A-Z]\w*|AnsiString|ByteArray|Guid)\b")
RECORD_USERS = re.compile(r"^(include/|src/api/)")
HEADER_USERS = re.compile(r"^(include/|src/api/|src/report_generator\.h$)")
# What host/, a library of its own, shares with the first one.
SHARED_WITH_HOST = {"src/lock/spin_lock.h", "src/platform/runtime_end_windows.h"}
OUTSIDE = ["examples", "tools", "tests/host", "tests/abi", "tests/bindings"]


# Where the compiler looks for an include, by the folder of the including file.
INCLUDE_FOLDERS = {
    "include": ["include"],
    "src": ["src", "include"],
    "host": ["host", "src", "include"],
    "tools": ["tools", "include"],
    "tools/rgen": ["tools/rgen", "tools", "include"],
    "tools/vellum": ["tools/vellum", "tools"],
}


def read_floors():
    floors = {}
    for line in (ROOT / "tests/structure/floors.txt").read_text().splitlines():
        if line and not line.startswith("#"):
            floor, place = line.split()
            floors[place] = int(floor)
    return floors


def place_of(name, places):
    """The file itself or the innermost of its folders among the places; None without one."""
    while name not in places:
        name = name.rpartition("/")[0]
        if not name:
            return None
    return name


def includes_of(path):
    text = without_comments(path.read_text())
    return re.findall(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', text, flags=re.M)


def resolve(name, including):
    """The project file that an include names, or None for a foreign header."""
    for base in INCLUDE_FOLDERS[place_of(including, INCLUDE_FOLDERS)]:
        if (ROOT / base / name).is_file():
            return f"{base}/{name}"
    return None


def check_include(name, target, floors):
    place, target_place = place_of(name, floors), place_of(target, floors)
    if place is None or target_place is None:
        problem(f"{name if place is None else target}: has no floor in tests/structure/floors.txt")
    elif place != target_place and floors[target_place] >= floors[place]:
        problem(f"{name} (floor {floors[place]}) includes {target} (floor {floors[target_place]})")


def check_includes(floors):
    graph = {}
    for path in code_files("include", "src", "host", "tools"):
        name = relative(path)
        targets = (resolve(include, name) for include in includes_of(path))
        graph[name] = [target for target in targets if target is not None]
        check_include(name, name, floors)
        for target in graph[name]:
            check_include(name, target, floors)
            if name.startswith("host/") and target.startswith("src/"):
                check_shared(name, target)
    return graph


def check_shared(name, target):
    if target not in SHARED_WITH_HOST:
        problem(f"{name} (of the host library) includes {target} of the first library")


def check_system_headers(path):
    name = relative(path)
    for include in includes_of(path):
        if OS_HEADERS.match(include) and not OS_SOURCES.match(name):
            problem(f"{name}: includes the system header <{include}>")


def check_library_file(path):
    """What holds in the first library alone."""
    name = relative(path)
    for include in includes_of(path):
        if include == "strata_repgenlib/rgen.h" and not HEADER_USERS.match(name):
            problem(f"{name}: includes the public header; only src/api may")
    if RECORD_NAMES.search(without_comments(path.read_text())) and not RECORD_USERS.match(name):
        problem(f"{name}: uses a boundary record; only src/api may")


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
            local = (path.parent / include).is_file() or (ROOT / "tests" / include).is_file()
            if (ROOT / "src" / include).is_file() and not local:
                problem(f"{relative(path)}: includes src/{include}; only the public header is allowed")


def check_table(floors):
    for place in floors:
        if not (ROOT / place).exists():
            problem(f"tests/structure/floors.txt: {place} does not exist")


floor_table = read_floors()
check_table(floor_table)
check_circles(check_includes(floor_table))
for library_file in code_files("include", "src", "host"):
    check_system_headers(library_file)
for library_file in code_files("include/strata_repgenlib", "src"):
    check_library_file(library_file)
check_outside()
finish("floors")

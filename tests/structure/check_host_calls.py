"""No function of the host library throws, and the header says so to C++: every declaration of rgen_host.h
has RGEN_CALL and RGENH_NOEXCEPT, and every definition, in the file that docs/architecture.md names, has
RGEN_CALL and noexcept.

SPDX-License-Identifier: MIT
"""

import re

from project_files import (LIBRARIES, ROOT, code_files, finish, header_exports, header_text, problem,
                           relative, without_comments)

HOST = LIBRARIES["strata_repgenlib_host"]
DECLARATION = re.compile(r"\b(RGENH_API|static inline)\b([^;{]*?)\b(rgenh_\w+)\s*\(([^;{]*)[;{]")
DEFINITION = re.compile(r"^[\w*: ]*?(RGEN_CALL )?\b(rgenh_\w+)\(([^;{]*)\{", re.M)
ROW = re.compile(r"^\|\s*`(rgenh_\w+)`\s*\|.*\|\s*`(\S+)`\s*\|\s*$", re.M)


def check_declarations():
    found = set()
    for mark, result, name, rest in DECLARATION.findall(header_text(HOST)):
        found.add(name)
        if mark == "RGENH_API" and not result.rstrip().endswith("RGEN_CALL"):
            problem(f"{HOST.header}: {name} has no RGEN_CALL")
        if not rest.rstrip().endswith("RGENH_NOEXCEPT"):
            problem(f"{HOST.header}: {name} has no RGENH_NOEXCEPT")
    for name in sorted(header_exports(HOST) - found):
        problem(f"{HOST.header}: the declaration of {name} could not be read")
    for callback in re.findall(r"\btypedef\b[^;]*?\(([^()]*)\*\s*\w+\)", header_text(HOST)):
        if callback.strip() != "RGEN_CALL":
            problem(f"{HOST.header}: a callback has no RGEN_CALL")


def check_definitions():
    """Returns the file of each definition."""
    places = {}
    for path in code_files("host/api"):
        for call, name, rest in DEFINITION.findall(without_comments(path.read_text())):
            places.setdefault(name, []).append(relative(path))
            if not call:
                problem(f"{relative(path)}: {name} is defined without RGEN_CALL")
            if not rest.rstrip().endswith("noexcept"):
                problem(f"{relative(path)}: {name} is defined without noexcept")
    return places


def check_places(places):
    documented = dict(ROW.findall((ROOT / "docs/architecture.md").read_text()))
    for name in sorted(header_exports(HOST)):
        if len(places.get(name, [])) != 1:
            problem(f"{name} is defined {len(places.get(name, []))} times in host/api")
        elif documented.get(name) != places[name][0]:
            problem(f"docs/architecture.md: {name} is in {places[name][0]}, not in "
                    f"{documented.get(name)}")


check_declarations()
check_places(check_definitions())
finish("calls of the host library")

"""Budgets and habits that can be read off the sources: file sizes, one OS conditional, no left-over
marks, licence lines, file names, ASCII in the library.

SPDX-License-Identifier: MIT
"""

import re

from project_files import (CODE_ENDINGS, ROOT, code_files, finish, own_files, problem, relative,
                           without_comments)

LONGEST_FILE = 400
LONGEST_COMMENT_LINE = 100
COMMENT_LINE = re.compile(r"\s*(//|/\*| \*)")
WITHOUT_LIMIT = {"include/strata_repgenlib/rgen.h", "include/strata_repgenlib/rgen.hpp",
                 "include/strata_repgenlib/rgen_values.hpp",
                 "include/strata_repgenlib/rgen_host.h"}
BINDING_ENDINGS = {".cs", ".rs"}
CONDITIONAL = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b(.*)$", re.M)
OS_NAME = re.compile(r"\b(_WIN32|_WIN64|WIN32|__MINGW\w+|__linux__|__unix__|__GNUC__|_MSC_VER"
                     r"|__APPLE__|__CYGWIN__)\b")
# The export attribute, and in the C++ wrapper the end of a handle.
OS_CONDITIONAL_FILES = ["include/strata_repgenlib/rgen.h", "include/strata_repgenlib/rgen.hpp",
                        "include/strata_repgenlib/rgen_host.h"]
MARKS = re.compile(r"\b(TO" r"DO|FIX" r"ME|XX" r"X|HA" r"CK)\b")
SCRIPT_NAMES = {"CMakeLists.txt", "setup", "dependencies", "demo", "test", "lint", "run",
                "run-under-wine", "run_test_program", "inventory-data", "picture",
                "measure-conversion", "measure-preview", "picture-preview", "benchmark",
                "compare-with-peers", "fuzz", "soak", "coverage", "site", "release", "check-release", "check-debian-package"}
LICENSED_ENDINGS = CODE_ENDINGS | BINDING_ENDINGS | {".cmake", ".py", ".sh", ".map", ".def", ".dict",
                                                     ".toml"}


def check_os_conditionals():
    found = []
    for path in code_files("include", "src", "host"):
        for match in CONDITIONAL.finditer(without_comments(path.read_text())):
            if OS_NAME.search(match.group(2)):
                found.append(relative(path))
    if found != OS_CONDITIONAL_FILES:
        problem("each public header has exactly one OS conditional, the library none; found: "
                + (", ".join(found) or "none"))


def check_code_file(path):
    name = relative(path)
    text = path.read_text(encoding="utf-8")
    lines = text.splitlines()
    if len(lines) > LONGEST_FILE and name not in WITHOUT_LIMIT:
        problem(f"{name}: {len(lines)} lines, at most {LONGEST_FILE} are allowed")
    for number, line in enumerate(lines, 1):
        if len(line) > LONGEST_COMMENT_LINE and COMMENT_LINE.match(line):
            problem(f"{name}:{number}: comment line of {len(line)} characters")
        if name.startswith(("include/", "src/", "host/")) and not line.isascii():
            problem(f"{name}:{number}: not ASCII")
    if re.search(r"\bgoto\b", without_comments(text)):
        problem(f"{name}: uses goto")


def check_text_file(path):
    name = relative(path)
    try:
        text = path.read_text(encoding="utf-8")
    except UnicodeDecodeError:
        return
    for number, line in enumerate(text.splitlines(), 1):
        mark = MARKS.search(line)
        if mark:
            problem(f"{name}:{number}: left-over mark {mark.group(0)}")
    licensed = path.suffix in LICENSED_ENDINGS or path.name in SCRIPT_NAMES
    if licensed and "SPDX-License-Identifier: MIT" not in text:
        problem(f"{name}: no licence line")
    if name.startswith("scripts/") and len(text.splitlines()) > LONGEST_FILE:
        problem(f"{name}: more than {LONGEST_FILE} lines")


def check_binding_file(path):
    name = relative(path)
    lines = path.read_text(encoding="utf-8").splitlines()
    if len(lines) > LONGEST_FILE and name not in WITHOUT_LIMIT:
        problem(f"{name}: {len(lines)} lines, at most {LONGEST_FILE} are allowed")
    for number, line in enumerate(lines, 1):
        if len(line) > LONGEST_COMMENT_LINE or line != line.rstrip():
            problem(f"{name}:{number}: more than {LONGEST_COMMENT_LINE} columns, or blanks at the end")


def check_file_name(path):
    if not re.fullmatch(r"[a-z][a-z0-9_]*\.(c|cpp|h|hpp)", path.name):
        problem(f"{relative(path)}: file names are snake_case")


check_os_conditionals()
for code_file in code_files():
    check_code_file(code_file)
    check_file_name(code_file)
for file in own_files():
    check_text_file(file)
    if file.suffix in BINDING_ENDINGS:
        check_binding_file(file)
finish("sources")

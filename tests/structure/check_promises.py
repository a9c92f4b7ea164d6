"""Checks the pages of guarantees: each statement names its tests, and these exist.

A statement is a row of a table or an item of a list in one of the pages below. A test is named as
`Suite.Case`, `Suite.*`, or by its script. A statement that cannot be tested says "Not tested".

SPDX-License-Identifier: MIT
"""

import re

from project_files import ROOT, finish, problem

PAGES = ("docs/security.md", "docs/threading.md")
# Names some tests, which must exist, too.
COMPARISON = "docs/linux-port.md"
CASE = re.compile(r"\bTEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\s*\)")
PYTHON_CASE = re.compile(r"^    def (test_\w+)\(", re.M)
NAMED = re.compile(r"`([A-Z]\w+)\.(\w+|\*)`")
SCRIPT = re.compile(r"`([\w./]+\.py)`")
RULE = re.compile(r"\|[-| :]+\|$")


def known_cases():
    """Suites and their cases, those of GoogleTest and those in Python."""
    cases = set()
    for path in (ROOT / "tests").rglob("*.cpp"):
        cases.update(CASE.findall(path.read_text(encoding="utf-8")))
    for path in (ROOT / "tests").rglob("*.py"):
        for block in re.split(r"(?m)^class ", path.read_text(encoding="utf-8"))[1:]:
            suite = re.match(r"\w+", block).group(0)
            cases.update((suite, case) for case in PYTHON_CASE.findall(block))
    return cases


def item_at(lines, start):
    """A list item with the indented lines that belong to it."""
    end = start + 1
    while end < len(lines) and lines[end].startswith("  "):
        end += 1
    return " ".join(" ".join(lines[start:end]).split())


def statements(text):
    """Rows of tables without their heads, and list items, with their line numbers."""
    lines = text.splitlines() + [""]
    for index, line in enumerate(lines[:-1]):
        is_head = RULE.match(line) or RULE.match(lines[index + 1])
        if line.startswith("|") and not is_head:
            yield index + 1, line
        elif line.startswith("- "):
            yield index + 1, item_at(lines, index)


def check_statement(place, statement, cases):
    named = NAMED.findall(statement)
    scripts = SCRIPT.findall(statement)
    if not named and not scripts and "Not tested" not in statement:
        problem(f"{place}: names no test: {statement[:70]}")
    suites = {suite for suite, _ in cases}
    for suite, case in named:
        if (case == "*" and suite not in suites) or (case != "*" and (suite, case) not in cases):
            problem(f"{place}: there is no test {suite}.{case}")
    for script in scripts:
        if not (ROOT / script).is_file():
            problem(f"{place}: there is no file {script}")


all_cases = known_cases()
for page in PAGES:
    for number, text in statements((ROOT / page).read_text(encoding="utf-8")):
        check_statement(f"{page}:{number}", text, all_cases)
for number, text in enumerate((ROOT / COMPARISON).read_text(encoding="utf-8").splitlines(), 1):
    if NAMED.search(text):
        check_statement(f"{COMPARISON}:{number}", text, all_cases)
finish("promises")

"""The version is defined in the public header. Files that have to repeat it, because tools of other
languages read them, say the same; no other file states it, apart from those that tell of the past.

SPDX-License-Identifier: MIT
"""

import re
from fnmatch import fnmatch

from project_files import ROOT, finish, own_files, problem, relative

HEADER = "include/strata_repgenlib/rgen.h"
# Files that repeat the version, and the line in which they do.
REPEATING = {
    "bindings/*/pyproject.toml": r'^version = "(.*)"$',
    "bindings/*/Cargo.toml": r'^version = "(.*)"$',
    "bindings/*/Cargo.lock": r'^name = "strata[_-]repgenlib"\nversion = "(.*)"$',
    "bindings/*/version.py": r'^__version__ = "(.*)"$',
    "bindings/*.csproj": r"<Version>(.*)</Version>",
    "bindings/*.cs": r'\bHeaderVersion = "(.*)";',
    "bindings/*.rs": r'\bHEADER_VERSION: &str = "(.*)";',
}
# What changed in which version, and what was measured with which.
HISTORY = {"CHANGELOG.md", "docs/performance.md"}


def header_version():
    text = (ROOT / HEADER).read_text(encoding="utf-8")
    return ".".join(re.search(rf"^#define RGEN_VERSION_{part} (\d+)", text, flags=re.M).group(1)
                    for part in ("MAJOR", "MINOR", "PATCH"))


def check_file(path, version):
    name = relative(path)
    try:
        text = path.read_text(encoding="utf-8")
    except UnicodeDecodeError:
        return
    for pattern, line in REPEATING.items():
        if fnmatch(name, pattern):
            for stated in re.findall(line, text, flags=re.M):
                if stated != version:
                    problem(f"{name}: says version {stated}, but {HEADER} says {version}")
            text = re.sub(line, "", text, flags=re.M)
    for match in re.finditer(rf"(?<![\w.]){re.escape(version)}(?![\w.]*\d)", text):
        number = text.count("\n", 0, match.start()) + 1
        problem(f"{name}:{number}: states the version; {HEADER} is the place for it")


current = header_version()
for file in own_files():
    if relative(file) not in HISTORY:
        check_file(file, current)
finish("version")

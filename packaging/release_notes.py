"""Prints the notes of a release: the section of its version in CHANGELOG.md, and a table of the
packages.

Usage: release_notes.py --version V [--allow-unreleased]

SPDX-License-Identifier: MIT
"""

import argparse
import re
import sys
from pathlib import Path

CHANGELOG = Path(__file__).resolve().parent.parent / "CHANGELOG.md"
UNRELEASED = "Unreleased"
PACKAGES = """## Packages

| file | for |
|---|---|
| `strata_repgenlib-{version}-windows-x64.zip` | Windows x64, from Windows 7 on |
| `strata_repgenlib-{version}-linux-x64.tar.gz` | Linux x64, with glibc 2.34 and libstdc++ of GCC 11 or later |
| `strata-repgenlib_{version}_amd64.deb` | Debian 12 and later |
| `*.spdx.json`, `*.cdx.json` | what is inside each of them, as SPDX 2.3 and CycloneDX 1.5 |
| `SOURCES` | the source archives, compilers and Debian packages that they were made with |
| `SHA256SUMS` | `sha256sum --check SHA256SUMS` verifies the files |
"""


def section(text: str, heading: str) -> str | None:
    """The lines after "## [HEADING]" up to the next heading of that level, or None."""
    found = re.search(rf"^## \[{re.escape(heading)}\].*\n((?:(?!## ).*\n?)*)", text, flags=re.M)
    return found.group(1).strip() if found else None


def notes(text: str, version: str, allow_unreleased: bool) -> str:
    """The complete notes. Raises LookupError if the changelog has no section for the version."""
    body = section(text, version)
    if body is None and allow_unreleased:
        body = section(text, UNRELEASED)
    if not body:
        raise LookupError(f"CHANGELOG.md has no section \"## [{version}]\" with text; name the "
                          f"section \"{UNRELEASED}\" so, or make a trial with --allow-unreleased")
    return f"# strata_repgenlib {version}\n\n{body}\n\n{PACKAGES.format(version=version)}"


def main() -> None:
    parser = argparse.ArgumentParser(description="Prints the notes of a release.")
    parser.add_argument("--version", required=True)
    parser.add_argument("--allow-unreleased", action="store_true")
    options = parser.parse_args()
    try:
        print(notes(CHANGELOG.read_text(encoding="utf-8"), options.version,
                    options.allow_unreleased), end="")
    except LookupError as error:
        sys.exit(f"release_notes: {error.args[0]}")


if __name__ == "__main__":
    main()

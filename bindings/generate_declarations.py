"""Writes the declarations for C# and Rust and the statuses for Python from the public headers.

Usage: generate_declarations.py           writes the files
       generate_declarations.py --check   compares them; exit code 1 when one is out of date

SPDX-License-Identifier: MIT
"""

import difflib
import sys
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
sys.path.insert(0, str(FOLDER))

from csharp_declarations import csharp_text
from header_reader import HeaderError, read_headers
from python_declarations import python_text
from rust_declarations import rust_text

HEADERS = FOLDER.parent / "include" / "strata_repgenlib"
SHOWN_LINES = 40


def generated_files() -> dict[Path, str]:
    """The text of each file, by its path in this folder."""
    header = read_headers(HEADERS)
    return {Path("csharp/RgenNative.cs"): csharp_text(header),
            Path("python/strata_repgenlib/status.py"): python_text(header),
            Path("rust/src/rgen_native.rs"): rust_text(header)}


def differences(path: Path, wanted: str) -> list[str]:
    """The differences between a file and its wanted text, as lines of a comparison."""
    target = FOLDER / path
    found = target.read_text(encoding="utf-8") if target.is_file() else ""
    return list(difflib.unified_diff(found.splitlines(), wanted.splitlines(), f"bindings/{path}",
                                     "generated from the headers", lineterm=""))


def write_files(files: dict[Path, str]) -> None:
    for path, text in files.items():
        (FOLDER / path).parent.mkdir(parents=True, exist_ok=True)
        (FOLDER / path).write_text(text, encoding="utf-8", newline="\n")


def check_files(files: dict[Path, str]) -> int:
    code = 0
    for path, text in files.items():
        lines = differences(path, text)
        if lines:
            code = 1
            print("\n".join(lines[:SHOWN_LINES]))
            print(f"bindings/{path} is out of date: "
                  "run bindings/generate_declarations.py and commit the result")
    return code


def main() -> int:
    if sys.argv[1:] not in ([], ["--check"]):
        print(__doc__)
        return 2
    try:
        files = generated_files()
    except HeaderError as error:
        print(f"generate_declarations.py: {error}", file=sys.stderr)
        return 1
    if sys.argv[1:] == ["--check"]:
        return check_files(files)
    write_files(files)
    return 0


if __name__ == "__main__":
    sys.exit(main())

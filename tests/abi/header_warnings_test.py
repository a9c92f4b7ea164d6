"""The public header is silent in hosts that switch every warning on and make it an error.

The two sources that use every declaration are compiled by GCC and Clang, in each language version,
for both systems. RGEN_CLANG_VERSION is the version of Clang.

SPDX-License-Identifier: MIT
"""

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

FOLDER = Path(__file__).resolve().parent
TESTS = FOLDER.parent
INCLUDE = TESTS.parent / "include"
CLANG = os.environ["RGEN_CLANG_VERSION"]
C_VERSIONS = ("c99", "c11", "c17")
CXX_VERSIONS = ("c++11", "c++14", "c++17", "c++20")
GCC_WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-pedantic-errors", "-Wshadow", "-Wconversion",
                "-Wsign-conversion", "-Wcast-qual", "-Wundef", "-Wredundant-decls"]
GXX_WARNINGS = [*GCC_WARNINGS, "-Wold-style-cast", "-Wuseless-cast", "-Wextra-semi",
                "-Wzero-as-null-pointer-constant"]
# The records have gaps, whose sizes are part of the binary interface.
CLANG_WARNINGS = ["-Weverything", "-Wno-padded"]
CLANGXX_WARNINGS = [*CLANG_WARNINGS, "-Wno-c++98-compat", "-Wno-c++98-compat-pedantic"]

COMPILERS = [("header_compiles.c", C_VERSIONS, GCC_WARNINGS, compiler)
             for compiler in ("gcc", "x86_64-w64-mingw32-gcc-posix")]
COMPILERS += [("header_compiles.cpp", CXX_VERSIONS, GXX_WARNINGS, compiler)
              for compiler in ("g++", "x86_64-w64-mingw32-g++-posix")]
COMPILERS += [("header_compiles.c", C_VERSIONS, CLANG_WARNINGS, f"clang-{CLANG}"),
              ("header_compiles.cpp", CXX_VERSIONS, CLANGXX_WARNINGS, f"clang++-{CLANG}")]


def compile_header(compiler, version, warnings, source, include=INCLUDE):
    """The first lines of the compiler's output; empty when it accepts the header."""
    run = subprocess.run([compiler, f"-std={version}", *warnings, "-Werror", f"-I{include}",
                          f"-I{TESTS}", "-fsyntax-only", FOLDER / source], check=False, text=True,
                         stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                         stderr=subprocess.STDOUT)
    return run.stdout[:1000] or ("" if run.returncode == 0 else f"code {run.returncode}")


class HeaderWarnings(unittest.TestCase):

    def test_no_compiler_warns_in_any_language_version(self):
        for source, versions, warnings, compiler in COMPILERS:
            for version in versions:
                with self.subTest(f"{compiler} {version}"):
                    self.assertEqual("", compile_header(compiler, version, warnings, source))

    def test_a_cast_of_c_would_be_noticed(self):
        with tempfile.TemporaryDirectory() as name:
            copy = Path(name) / "include"
            shutil.copytree(INCLUDE, copy)
            header = copy / "strata_repgenlib/rgen_status.h"
            text = header.read_text(encoding="ascii")
            changed = text.replace("static_cast<RgenStatus>(number)", "(RgenStatus)(number)")
            self.assertNotEqual(text, changed)
            header.write_text(changed, encoding="ascii")
            for source, versions, warnings, compiler in COMPILERS:
                if not source.endswith(".cpp"):
                    continue
                with self.subTest(compiler):
                    self.assertIn("old-style-cast", compile_header(
                        compiler, versions[0], warnings, source, copy))

    def test_every_status_is_used(self):
        text = (INCLUDE / "strata_repgenlib/rgen_status.h").read_text(encoding="ascii")
        stated = [line.split()[1] for line in text.splitlines() if " RGEN_STATUS(0x" in line]
        listed = (TESTS / "support/every_status.h").read_text(encoding="ascii")
        used = re.findall(r"\{(RGEN_\w+), 0x", listed)
        self.assertEqual(37, len(stated))
        self.assertEqual(stated, used)


if __name__ == "__main__":
    unittest.main()

"""The declarations of every language against the C compiler: sizes, offsets, numbers, parameters.

Each language tells what it declares in lines of one form, which the public headers have to confirm:

    sizeof(RgenhError)=6184
    offsetof(RgenhError, path)=40
    RGEN_HINT_SIZE=5
    parameters(rgenh_newRequest)=2

SPDX-License-Identifier: MIT
"""

import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from language_host_case import ROOT
from language_layouts import csharp_lines, python_lines, rust_lines

sys.path.insert(0, str(ROOT / "tests" / "abi"))

from public_constants import constants_of, prototypes  # It is in the folder that was added.

INCLUDE = ROOT / "include"
HEADERS = [INCLUDE / "strata_repgenlib" / name
           for name in ("rgen_status.h", "rgen.h", "rgen_host.h")]
LANGUAGES = {"C#": csharp_lines, "Python": python_lines, "Rust": rust_lines}
PROTOTYPE = re.compile(r".*?(\w+)\((.*)\)")
STATUSES = 37


def figures_of(lines):
    pairs = (line.rsplit("=", 1) for line in lines)
    return {what: int(number) % (1 << 64) for what, number in pairs}


def parameter_counts():
    counts = {}
    for header in HEADERS:
        for prototype in prototypes(header):
            name, parameters = PROTOTYPE.fullmatch(prototype).groups()
            counts[f"parameters({name})"] = 0 if parameters == "void" else parameters.count(",") + 1
    return counts


def compiled(expressions):
    """The values that the C compiler computes."""
    lines = ["#include <stddef.h>", "#include <stdio.h>",
             '#include "strata_repgenlib/rgen_host.h"', "int main(void) {",
             *(f'    printf("%s=%llu\\n", "{text}", (unsigned long long)({text}));'
               for text in expressions), "    return 0;", "}", ""]
    with tempfile.TemporaryDirectory() as folder:
        source, program = Path(folder, "figures.c"), Path(folder, "figures")
        source.write_text("\n".join(lines), encoding="ascii")
        subprocess.run(["gcc", "-std=c11", f"-I{INCLUDE}", source, "-o", program], check=True)
        printed = subprocess.run([program], check=True, capture_output=True, text=True).stdout
    return figures_of(printed.splitlines())


def confirmed(figures):
    """What the headers say about the same things."""
    counts = parameter_counts()
    numbers = compiled([what for what in figures if not what.startswith("parameters(")])
    return {what: numbers.get(what, counts.get(what)) for what in figures}


class Layouts(unittest.TestCase):
    maxDiff = 4000

    def test_every_declaration_is_that_of_the_c_compiler(self):
        for language, lines in LANGUAGES.items():
            with self.subTest(language):
                figures = figures_of(lines())
                self.assertEqual(confirmed(figures), figures)

    def test_every_language_declares_records_functions_and_all_statuses(self):
        """So that the comparison above is not one of nothing."""
        statuses = {name.split()[1] for name in constants_of(HEADERS[:1])}
        self.assertEqual(STATUSES, len(statuses))
        for language, lines in LANGUAGES.items():
            with self.subTest(language):
                figures = figures_of(lines())
                self.assertLessEqual(statuses, set(figures))
                for wanted in ("sizeof(RgenhError)", "offsetof(RgenhError, message)",
                               "offsetof(RgenhRequestParts, valueCount)",
                               "parameters(rgenh_generateReport)"):
                    self.assertIn(wanted, figures)


if __name__ == "__main__":
    unittest.main()

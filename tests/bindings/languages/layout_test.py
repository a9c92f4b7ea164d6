"""The declarations of every language against the C compiler: sizes, offsets, numbers, parameters.

Each language tells what it declares in lines of one form, which the public headers have to confirm:

    sizeof(RgenhError)=6184
    offsetof(RgenhError, path)=40
    RGEN_HINT_SIZE=5
    parameters(rgenh_newRequest)=2

SPDX-License-Identifier: MIT
"""

import re
import sys
import unittest

from language_host_case import ROOT
from language_layouts import csharp_lines, python_lines, rust_lines

sys.path.insert(0, str(ROOT / "tests" / "support"))

from public_headers import constants_of, functions_of, numbers_of  # It is in the folder that was added.

INCLUDE = ROOT / "include"
LANGUAGES = {"C#": csharp_lines, "Python": python_lines, "Rust": rust_lines}
PARAMETERS = re.compile(r"parameters\((\w+)\)")
STATUSES = 37


def figures_of(lines):
    found = {}
    for line in lines:
        what, number = line.rsplit("=", 1)
        found[what] = int(number) % (1 << 64)
    return found


def confirmed(figures):
    """What the headers say about the same things."""
    counts = {f"parameters({item.name})": item.parameter_count for item in functions_of(INCLUDE)}
    expressions = [what for what in figures if not PARAMETERS.fullmatch(what)]
    numbers = numbers_of(INCLUDE, expressions)
    return {what: counts.get(what) if what not in numbers else numbers[what] % (1 << 64)
            for what in figures}


class Layouts(unittest.TestCase):
    maxDiff = 4000

    def test_every_declaration_is_that_of_the_c_compiler(self):
        for language, lines in LANGUAGES.items():
            with self.subTest(language):
                figures = figures_of(lines())
                self.assertEqual(confirmed(figures), figures)

    def test_every_language_declares_records_offsets_functions_and_all_statuses(self):
        """So that the comparison above is not one of nothing."""
        statuses = {name for kind, name in constants_of(INCLUDE) if kind == "RgenStatus"}
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

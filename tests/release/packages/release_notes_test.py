"""The notes of a release are made from the changelog's section of its version.

SPDX-License-Identifier: MIT
"""

import unittest

from program_case import linux_only
from release_notes import notes, section

CHANGELOG = """# Changelog

## [Unreleased]

### Added

- Something new.

## [1.2.0] - 2026-01-31

- The second one.

## [1.1.0]

## [1.0.0]

- The first one.
"""


@linux_only
class ReleaseNotes(unittest.TestCase):

    def test_they_are_the_section_of_the_version(self):
        text = notes(CHANGELOG, "1.2.0", False)
        self.assertTrue(text.startswith("# strata_repgenlib 1.2.0\n\n- The second one.\n\n"
                                        "## Packages"))
        self.assertNotIn("The first one", text)
        self.assertIn("strata_repgenlib-1.2.0-windows-x64.zip", text)
        self.assertEqual("- The first one.", section(CHANGELOG, "1.0.0"))

    def test_a_version_without_a_section_or_text_is_refused(self):
        for version in ("1.3.0", "1.1.0", "1x2.0"):
            with self.assertRaisesRegex(LookupError, f'no section "## \\[{version}\\]" with text'):
                notes(CHANGELOG, version, False)

    def test_a_trial_takes_what_is_unreleased(self):
        self.assertIn("- Something new.", notes(CHANGELOG, "1.3.0", True))
        with self.assertRaises(LookupError):
            notes("# Changelog\n", "1.3.0", True)

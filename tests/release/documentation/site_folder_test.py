"""What scripts/site does with its folder. A stand-in for Doxygen writes the pages.

SPDX-License-Identifier: MIT
"""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

SITE = Path(__file__).resolve().parents[3] / "scripts/site"
# Writes a page into the output folder, then exits with the code in the variable END.
DOXYGEN = """#!/bin/sh
folder=$(sed -n 's/^OUTPUT_DIRECTORY = "\\(.*\\)"$/\\1/p')
echo page >"$folder/index.html"
exit "$END"
"""


class SiteFolder(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.root = Path(temporary.name)
        self.write("bin/doxygen", DOXYGEN).chmod(0o755)
        self.folder = self.root / "top/site"

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        return path

    def make(self, code, end=0):
        done = subprocess.run([SITE, self.folder], capture_output=True, text=True, env={
            "PATH": f"{self.root}/bin:{os.environ['PATH']}", "END": str(end)})
        self.assertEqual(code, done.returncode, done.stderr)
        self.assertEqual([self.folder] if self.folder.exists() else [],
                         list((self.root / "top").iterdir()))
        return done.stderr

    def names(self):
        return {path.name for path in self.folder.iterdir()}

    def test_foreign_files_stay(self):
        for name in ("letter.txt", ".hidden", "docs/letter.txt"):
            with self.subTest(name):
                self.setUp()
                letter = self.write(f"top/site/{name}", "mine")
                self.assertRegex(self.make(1), r"^site: .* contains other files.*\n$")
                self.assertEqual("mine", letter.read_text())
                self.assertEqual(1, len(self.names()))

    def test_a_file_stays(self):
        self.write("top/site", "mine")
        self.assertRegex(self.make(1), r"^site: .* is a file.*\n$")
        self.assertEqual("mine", self.folder.read_text())

    def test_new_and_empty_folders_get_a_site_and_sites_are_replaced(self):
        self.make(0)
        self.assertLess({"index.html", ".strata-site"}, self.names())
        self.write("top/site/old.html", "old")
        self.make(0)
        self.assertNotIn("old.html", self.names())
        for path in self.folder.iterdir():
            path.unlink()
        self.make(0)
        self.assertIn("index.html", self.names())

    def test_a_site_stays_when_a_new_one_cannot_be_made(self):
        self.write("top/site/.strata-site", "")
        self.write("top/site/index.html", "old")
        self.make(1, end=1)
        self.assertEqual("old", (self.folder / "index.html").read_text())


if __name__ == "__main__":
    unittest.main()

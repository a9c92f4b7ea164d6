"""The package's documents: its README runs, and its types are right.

SPDX-License-Identifier: MIT
"""

import doctest
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from binding_case import CONVERTER, LIBRARY, ROOT
from strata_repgenlib import load_library

PACKAGE = ROOT / "bindings/python"
MYPY = shutil.which("mypy", path="/usr/bin")


class Documents(unittest.TestCase):
    def test_the_examples_of_the_readme_run(self):
        here = os.getcwd()
        self.addCleanup(os.chdir, here)
        with tempfile.TemporaryDirectory() as folder:
            shutil.copytree(ROOT / "templates/acquisition", Path(folder) / "case/.rgen")
            os.chdir(folder)
            outcome = doctest.testfile(str(PACKAGE / "README.md"), module_relative=False,
                                       globs={"LIBRARY": LIBRARY},
                                       optionflags=doctest.ELLIPSIS)
            os.chdir(here)
        self.assertEqual(0, outcome.failed)
        self.assertGreater(outcome.attempted, 10)

    def test_the_types_are_right(self):
        self.assertTrue(MYPY, "mypy is missing; run scripts/setup bindings")
        cache = Path(CONVERTER).parents[1] / "mypy_cache"
        for platform in ("linux", "win32"):
            run = subprocess.run(
                [MYPY, "--strict", "--python-version", "3.9", "--platform", platform, "--cache-dir",
                 cache / platform, PACKAGE / "strata_repgenlib"],
                capture_output=True, text=True, check=False)
            self.assertEqual(0, run.returncode, run.stdout + run.stderr)


if __name__ == "__main__":
    unittest.main()

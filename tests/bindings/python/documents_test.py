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
from unittest import mock

from binding_case import CONVERTER, LIBRARY, ROOT
import strata_repgenlib
from strata_repgenlib import generator, nesting, status, values

PACKAGE = ROOT / "bindings/python"
MYPY = shutil.which("mypy", path="/usr/bin")


class Documents(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        shutil.copytree(ROOT / "templates/acquisition", Path(folder.name) / "case/.rgen")
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)
        patch = mock.patch.dict(os.environ, STRATA_REPGENLIB_DIR=str(Path(LIBRARY).parent))
        patch.start()
        self.addCleanup(patch.stop)

    def test_the_examples_of_the_readme_run(self):
        outcome = doctest.testfile(str(PACKAGE / "README.md"), module_relative=False,
                                   optionflags=doctest.ELLIPSIS)
        self.assertEqual(0, outcome.failed)
        self.assertGreater(outcome.attempted, 15)

    def test_the_examples_of_the_docstrings_run(self):
        outcomes = [doctest.testmod(module, extraglobs=vars(strata_repgenlib))
                    for module in (generator, nesting, status, values)]
        self.assertEqual(0, sum(outcome.failed for outcome in outcomes))
        self.assertGreater(sum(outcome.attempted for outcome in outcomes), 8)

    def test_what_help_shows_is_described(self):
        for name in strata_repgenlib.__all__:
            member = getattr(strata_repgenlib, name)
            if not isinstance(member, type):
                continue
            self.assertTrue(member.__doc__, name)
            for method, function in vars(member).items():
                if callable(function) and not method.startswith("_") and member.__module__.endswith(
                        "generator"):
                    self.assertTrue(function.__doc__, f"{name}.{method}")

    def test_the_types_are_right(self):
        self.assertTrue(MYPY, "mypy is missing; run scripts/setup bindings")
        cache = Path(CONVERTER).parents[1] / "mypy_cache"
        for platform in ("linux", "win32"):
            run = subprocess.run(
                [MYPY, "--strict", "--python-version", "3.11", "--platform", platform, "--cache-dir",
                 cache / platform, PACKAGE / "strata_repgenlib"],
                capture_output=True, text=True, check=False)
            self.assertEqual(0, run.returncode, run.stdout + run.stderr)


if __name__ == "__main__":
    unittest.main()

"""A wheel with both libraries, built without a network, makes reports in a new environment.

SPDX-License-Identifier: MIT
"""

import os
import shutil
import subprocess
import tempfile
import unittest
import zipfile
from pathlib import Path

from binding_case import LIBRARY, ROOT

PYTHON = "/usr/bin/python3"  # Debian's, which has the packages that build wheels.

HOST = """
from strata_repgenlib import Generator, Request
with Generator("case") as generator:
    request = Request("acquisition", "txt", {"Device": {"Model": "TH500"}})
    assert b"TH500" in generator.generate_bytes(request)
    print(generator.library.path, generator.library.host_path, sep="\\n")
"""


class Wheel(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="rgen wheel ")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name).resolve()
        shutil.copytree(ROOT / "bindings/python", self.folder / "source",
                        ignore=shutil.ignore_patterns("__pycache__", "build", "*.egg-info"))
        shutil.copytree(ROOT / "templates/acquisition", self.folder / "case/.rgen")

    def run_in_folder(self, *command, **environment):
        inherited = {name: value for name, value in os.environ.items()
                     if not name.startswith(("PYTHON", "STRATA", "LD_"))}
        run = subprocess.run(command, cwd=self.folder, env={**inherited, **environment},
                             capture_output=True, text=True, check=False)
        return run.returncode, run.stdout + run.stderr

    def build(self, *options):
        code, output = self.run_in_folder(PYTHON, "-m", "build", "--no-isolation", *options,
                                          "source", STRATA_REPGENLIB_DIR=str(Path(LIBRARY).parent))
        self.assertEqual(0, code, output)
        return next(self.folder.glob("source/dist/*.whl"))

    def test_it_is_built_installed_and_used(self):
        wheel = self.build()
        self.assertRegex(wheel.name, r"^strata_repgenlib-[\d.]+-py3-none-linux_x86_64\.whl$")
        names = zipfile.ZipFile(wheel).namelist()
        for name in ("libstrata_repgenlib.so.0", "libstrata_repgenlib_host.so.0", "py.typed"):
            self.assertIn(f"strata_repgenlib/{name}", names)
        self.assertEqual(0, self.run_in_folder(PYTHON, "-m", "venv", "venv")[0])
        python = str(self.folder / "venv/bin/python")
        code, output = self.run_in_folder(python, "-m", "pip", "install", "--no-index", wheel)
        self.assertEqual(0, code, output)
        code, output = self.run_in_folder(python, "-c", HOST)
        self.assertEqual(0, code, output)
        site = next(self.folder.glob("venv/lib/python3*/site-packages")) / "strata_repgenlib"
        self.assertEqual(f"{site / 'libstrata_repgenlib.so.0'}\n"
                         f"{site / 'libstrata_repgenlib_host.so.0'}\n", output)

    def test_without_the_libraries_it_is_refused(self):
        code, output = self.run_in_folder(PYTHON, "-m", "build", "--no-isolation", "--wheel",
                                          "source", STRATA_REPGENLIB_DIR="/nowhere")
        self.assertNotEqual(0, code)
        self.assertIn("set STRATA_REPGENLIB_DIR to their folder", output)


if __name__ == "__main__":
    unittest.main()

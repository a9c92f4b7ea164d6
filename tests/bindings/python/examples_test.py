"""The example hosts make the same reports, byte for byte: in C, in C++, in Python.

SPDX-License-Identifier: MIT
"""

import os
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
HOSTS = os.environ.get("RGEN_BINDINGS_HOSTS", "").split(os.pathsep)
LAUNCHER = shlex.split(os.environ.get("RGEN_BINDINGS_LAUNCHER", ""))
LIBRARY = os.environ.get("RGEN_BINDINGS_LIBRARY", "")


@unittest.skipUnless(HOSTS[0], "this build was configured without the examples")
class Examples(unittest.TestCase):
    def setUp(self):
        # The hosts in C and C++ take their arguments in the code page of Windows.
        folder = tempfile.TemporaryDirectory(prefix="rgen example ")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        shutil.copytree(ROOT / "templates/acquisition", self.folder / "case/.rgen")

    def reports_of(self, command, **environment):
        output = self.folder / f"output {len(list(self.folder.iterdir()))}"
        output.mkdir()
        run = subprocess.run([*command, "case", output.name], cwd=self.folder, text=True,
                             env={**os.environ, **environment}, capture_output=True, check=False)
        self.assertEqual((0, ""), (run.returncode, run.stderr.strip()), run.stdout)
        (self.folder / "case/.rgen/acquisition_data.xml").unlink()
        return {path.name: path.read_bytes() for path in output.iterdir()}

    def test_all_of_them_make_the_same_reports(self):
        expected = self.reports_of([*LAUNCHER, HOSTS[0]])
        self.assertEqual({f"acquisition-{language}.{ending}" for language in ("en", "de", "ru")
                          for ending in ("html", "txt")}, set(expected))
        for host in HOSTS[1:]:
            self.assertEqual(expected, self.reports_of([*LAUNCHER, host]), host)

    @unittest.skipUnless(LIBRARY, "a Python of Linux cannot load a DLL")
    def test_the_host_in_python_does_as_well(self):
        expected = self.reports_of([*LAUNCHER, HOSTS[0]])
        host = [sys.executable, str(ROOT / "examples/acquisition_host.py")]
        search = {"PYTHONPATH": str(ROOT / "bindings/python"),
                  "LD_LIBRARY_PATH": str(Path(LIBRARY).parent)}
        self.assertEqual(expected, self.reports_of(host, **search))

    def test_wrong_arguments_are_told(self):
        hosts = [[*LAUNCHER, host] for host in HOSTS]
        for command in hosts:
            run = subprocess.run(command, capture_output=True, text=True, check=False)
            self.assertEqual(2, run.returncode)
            self.assertIn("DATA_DIR OUTPUT_DIR", run.stderr)


if __name__ == "__main__":
    unittest.main()

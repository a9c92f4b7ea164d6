"""The package and the library: layouts, functions, names, version, finding it, memory.

SPDX-License-Identifier: MIT
"""

import ctypes
import os
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path
from unittest import mock

import strata_repgenlib
from binding_case import LIBRARY, ROOT, TYPE, BindingCase
from project_files import header_exports, without_comments
from strata_repgenlib import (Generator, Hint, LibraryNotFoundError, Request, Status, library,
                              load_library)
from strata_repgenlib.errors import status_name

class Finding(BindingCase):
    def load_as(self, package):
        code = ("import strata_repgenlib as s\n"
                "try:\n    print(s.load_library().path)\n"
                "except s.LibraryNotFoundError as error:\n    print('none:', error)")
        return subprocess.check_output([sys.executable, "-c", code], cwd="/", text=True,
                                       env={"PYTHONPATH": str(package), "PATH": "/usr/bin"}).strip()

    def install(self, folder):
        shutil.copytree(ROOT / "bindings/python", folder,
                        ignore=shutil.ignore_patterns("__pycache__"))

    def test_in_the_installation_that_the_package_is_in(self):
        package = self.folder / "share/strata_repgenlib/bindings/python"
        self.install(package)
        for place in ("lib64", "lib/x86_64-linux-gnu", "lib"):
            target = self.folder / place / "libstrata_repgenlib.so.0"
            target.parent.mkdir(parents=True, exist_ok=True)
            target.symlink_to(Path(LIBRARY).resolve())
            self.assertEqual(str(target), self.load_as(package))

    def test_beside_the_package(self):
        self.install(self.folder / "python")
        target = self.folder / "python/strata_repgenlib/libstrata_repgenlib.so"
        target.symlink_to(Path(LIBRARY).resolve())
        self.assertEqual(str(target), self.load_as(self.folder / "python"))

    def test_in_a_folder_or_by_its_own_path(self):
        folder = Path(LIBRARY).parent
        self.assertEqual(folder, Path(load_library(folder).path).parent)
        self.assertIs(load_library(LIBRARY), load_library(LIBRARY))

    def test_along_path_on_windows(self):
        target = self.folder / "bin/strata_repgenlib.dll"
        target.parent.mkdir()
        target.write_text("")
        path = os.pathsep.join(("", "relative", str(self.folder), str(target.parent)))
        with mock.patch.object(library, "_IS_WINDOWS", True), \
                mock.patch.object(library, "_NAMES", [target.name]), \
                mock.patch.dict(os.environ, PATH=path):
            self.assertEqual([str(target)], list(library._candidates(self.folder)))

    def test_a_failure_says_what_was_tried(self):
        broken = self.folder / "broken.so"
        broken.write_text("")
        for path in (broken, self.folder / "none.so", self.folder, "libc.so.6"):
            with self.assertRaisesRegex(LibraryNotFoundError, "Tried: .*(so|libc)"):
                load_library(path)


class Memory(BindingCase):
    REPORTS = 2000

    def resident(self):
        ctypes.CDLL(None).malloc_trim(0)
        fields = Path("/proc/self/statm").read_text().split()
        return int(fields[1]) * 4096

    def make(self, number):
        request = Request(TYPE, values={"v": "x" * 5000, "b": bytes(1000)}, pairs={"p": "y" * 2000})
        self.own.generate_bytes(request)
        if number % 10 == 0:
            self.own.open_report(request, self.folder / "report.html").close()
            self.own.set_persistent_data(TYPE, {"p": "x" * 5000})
            self.own.persistent_data(TYPE)

    def test_many_generators_leave_nothing(self):
        def make():
            with Generator(self.folder, library=LIBRARY) as generator:
                generator.generate_bytes(Request(TYPE, values={"v": 1}))

        for _ in range(20):
            make()
        before = self.resident()
        for _ in range(300):
            make()
        self.assertLess(self.resident() - before, 1500000)

    def test_many_reports_leave_nothing(self):
        for number in range(200):
            self.make(number)
        before = self.resident()
        for number in range(self.REPORTS):
            self.make(number)
        growth = self.resident() - before
        # One record that is not freed is 4 MB and more.
        self.assertLess(growth, 1500000)


if __name__ == "__main__":
    unittest.main()

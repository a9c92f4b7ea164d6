"""The package and the libraries: finding them, versions, memory.

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
from strata_repgenlib import (Generator, LibraryNotFoundError, LibraryVersionError, Request,
                              load_library, loading)

NAMES = ("libstrata_repgenlib.so.0", "libstrata_repgenlib_host.so.0")


class Finding(BindingCase):
    def load_as(self, package, **environment):
        code = ("import strata_repgenlib as s\n"
                "try:\n    print(s.load_library().host_path)\n"
                "except s.LibraryNotFoundError as error:\n    print('none:', error)")
        return subprocess.check_output(
            [sys.executable, "-c", code], cwd="/", text=True,
            env={"PYTHONPATH": str(package), "PATH": "/usr/bin", **environment}).strip()

    def install(self, folder):
        shutil.copytree(ROOT / "bindings/python", folder,
                        ignore=shutil.ignore_patterns("__pycache__", "build", "*.egg-info"))

    def put_libraries(self, folder):
        folder.mkdir(parents=True, exist_ok=True)
        for name in NAMES:
            shutil.copy(Path(LIBRARY).parent / name, folder)
        return str(folder / NAMES[1])

    def test_in_the_installation_that_the_package_is_in(self):
        package = self.folder / "share/strata_repgenlib/bindings/python"
        self.install(package)
        for place in ("lib64", "lib/x86_64-linux-gnu", "lib"):
            self.assertEqual(self.put_libraries(self.folder / place), self.load_as(package))

    def test_beside_the_package(self):
        self.install(self.folder / "python")
        target = self.put_libraries(self.folder / "python/strata_repgenlib")
        self.assertEqual(target, self.load_as(self.folder / "python"))

    def test_in_the_folder_that_the_environment_names_and_nowhere_else(self):
        self.install(self.folder / "python")
        self.put_libraries(self.folder / "python/strata_repgenlib")
        target = self.put_libraries(self.folder / "named")
        for folder, expected in ((self.folder / "named", target),
                                 (self.folder / "none", f"none: .*{self.folder}/none")):
            found = self.load_as(self.folder / "python", STRATA_REPGENLIB_DIR=str(folder))
            self.assertRegex(found, expected)

    def test_in_a_folder_or_by_the_path_of_one_of_them(self):
        folder = Path(LIBRARY).parent
        self.assertEqual(folder, Path(load_library(folder).path).parent)
        self.assertIs(load_library(LIBRARY), load_library(folder / NAMES[1]))

    def test_along_path_on_windows(self):
        path = os.pathsep.join(("", "relative", str(self.folder), str(self.folder / "bin")))
        self.put_libraries(self.folder / "bin")
        with mock.patch.object(loading, "_IS_WINDOWS", True), \
                mock.patch.dict(os.environ, PATH=path):
            self.assertEqual([str(self.folder / "bin")], list(loading.places(self.folder)))

    def test_a_failure_says_what_was_tried(self):
        for name in NAMES:
            (self.folder / name).write_text("")
        for path in (self.folder / "none", self.folder, self.folder / NAMES[0]):
            with self.assertRaisesRegex(LibraryNotFoundError, f"Tried: {self.folder}.*so"):
                load_library(path)


class Versions(unittest.TestCase):
    def test_the_version_is_that_of_the_header(self):
        header = (ROOT / "include/strata_repgenlib/rgen.h").read_text()
        parts = re.findall(r"#define RGEN_VERSION_\w+ (\d+)", header)
        self.assertEqual(".".join(parts), strata_repgenlib.__version__)

    def test_libraries_of_another_version_are_refused(self):
        with mock.patch.object(loading, "__version__", "9.9.9"), \
                self.assertRaisesRegex(LibraryVersionError,
                                       r"has the version \d.*for 9\.9\.9.*STRATA_REPGENLIB_DIR"):
            loading.Library(str(Path(LIBRARY).parent))

    def test_a_function_that_does_not_exist_is_an_error(self):
        with self.assertRaises(AttributeError):
            load_library(LIBRARY).rgen_unknown


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

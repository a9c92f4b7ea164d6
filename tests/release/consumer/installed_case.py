"""Shared by the suites: an installation, made once and moved before it is used, and the tools that
build hosts with it.

The target comes from the environment: besides the variables that program_case.py lists,

RGEN_PACKAGE_BUILD         the build folder
RGEN_PACKAGE_CONFIGURATION the configuration of the build, "RelWithDebInfo"
RGEN_PACKAGE_LIBDIR        the folder of the libraries in the prefix
RGEN_PACKAGE_VERSION       the version of the library
RGEN_PACKAGE_THIRD_PARTY   the folder of the third-party libraries
RGEN_PACKAGE_C_COMPILER, RGEN_PACKAGE_CXX_COMPILER   the compilers of the target

SPDX-License-Identifier: MIT
"""

import atexit
import functools
import os
import re
import shlex
import shutil
import subprocess
import tempfile
from pathlib import Path

from program_case import DROPPED_VARIABLES, ON_WINDOWS, SOURCE_FOLDER, ProgramCase, native

HERE = SOURCE_FOLDER / "tests/release/consumer"
BUILD_FOLDER = Path(os.environ["RGEN_PACKAGE_BUILD"])
CONFIGURATION = os.environ["RGEN_PACKAGE_CONFIGURATION"].lower()
LIBDIR = os.environ["RGEN_PACKAGE_LIBDIR"]
VERSION = os.environ["RGEN_PACKAGE_VERSION"]
MAJOR, MINOR, PATCH = (int(number) for number in VERSION.split("."))
THIRD_PARTY = Path(os.environ["RGEN_PACKAGE_THIRD_PARTY"])
C_COMPILER = os.environ["RGEN_PACKAGE_C_COMPILER"]
CXX_COMPILER = os.environ["RGEN_PACKAGE_CXX_COMPILER"]
PROGRAM_ENDING = ".exe" if ON_WINDOWS else ""
# The output of the hosts on success.
DONE = "Operation completed successfully\n"


def tool_environment(changes=None):
    """The environment for tools, without variables that help to find the library."""
    env = {name: value for name, value in os.environ.items()
           if name not in DROPPED_VARIABLES and not name.startswith(("CMAKE_", "PKG_CONFIG"))}
    env.pop("LD_LIBRARY_PATH", None)
    env.update(LC_ALL="C.UTF-8", **(changes or {}))
    return env


def run_tool(*command, folder=None, env=None):
    """Runs a tool; both output streams are one text."""
    return subprocess.run([str(word) for word in command], cwd=folder, env=tool_environment(env),
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, check=False)


@functools.cache
def installation():
    """Returns the folder of the moved installation, and the folder in which it was made."""
    base = Path(tempfile.mkdtemp(prefix="rgen-installed-"))
    atexit.register(shutil.rmtree, base)
    first, moved = base / "first place", base / "moved to another place"
    outcome = run_tool("cmake", "--install", BUILD_FOLDER, "--prefix", first)
    if outcome.returncode != 0:
        raise AssertionError(f"the installation fails: {outcome.stdout[-600:]}")
    first.rename(moved)
    return moved, first


class InstalledCase(ProgramCase):
    """A case with a separate folder; all cases share the installation."""

    folder_name = "rgen-consumer-"

    def setUp(self):
        super().setUp()
        self.prefix, self.first_place = installation()
        self.library_folder = self.prefix / LIBDIR
        self.package_folder = self.library_folder / "cmake/strata_repgenlib"

    def installed(self, name):
        """A program of the installation."""
        return self.prefix / "bin" / (name + PROGRAM_ENDING)

    # ---- Tools ----------------------------------------------------------------------------------

    def tool(self, *command, **settings):
        """The output of a tool, which must succeed."""
        outcome = run_tool(*command, **settings)
        self.assertEqual(0, outcome.returncode, f"{command}: {outcome.stdout}")
        return outcome.stdout

    def cmake_options(self):
        """The options by which CMake finds the installation and the compilers of the target."""
        options = [f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DCMAKE_C_COMPILER={C_COMPILER}",
                   f"-DCMAKE_CXX_COMPILER={CXX_COMPILER}", "-GNinja"]
        return [*options, "-DCMAKE_SYSTEM_NAME=Windows"] if ON_WINDOWS else options

    def build_project(self, source, *options):
        """Configures and builds; returns the build folder."""
        folder = self.folder / "build"
        self.tool("cmake", "-S", source, "-B", folder, *self.cmake_options(), *options)
        self.tool("cmake", "--build", folder, "--parallel", "2")
        return folder

    def find(self, wanted="", *options):
        """The results of find_package: the lines that finder/CMakeLists.txt prints, by name."""
        outcome = run_tool("cmake", "-S", HERE / "finder", "-B", self.folder / "finder", "-GNinja",
                           f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DWANTED={wanted}",
                           f"-DCMAKE_SYSTEM_NAME={'Windows' if ON_WINDOWS else 'Linux'}",
                           f"-DCMAKE_LIBRARY_ARCHITECTURE={LIBDIR.partition('/')[2]}", *options)
        shutil.rmtree(self.folder / "finder")
        self.assertEqual(0, outcome.returncode, outcome.stdout)
        return dict(re.findall(r"^-- ([\w-]+)\|(.*)$", outcome.stdout, re.M))

    def pkg_config(self, *words, name="strata_repgenlib"):
        """The words that pkg-config prints; it finds only the installation."""
        answer = self.tool("pkg-config", *words, name,
                           env={"PKG_CONFIG_LIBDIR": str(self.library_folder / "pkgconfig")})
        return shlex.split(answer)

    # ---- Programs of the target -----------------------------------------------------------------

    def output_of(self, program, *args, code=0, env=None):
        """The output of a program of the target, run without variables for finding the library."""
        result = self.start(*args, program=program, env=env).finish()
        self.assertEqual((code, ""), (result.code, result.err), result)
        return result.text

    def expect_reports(self, c_program, cpp_program, env=None):
        """Checks that the hosts report_in_c and report_in_cpp of the folder project work."""
        text = self.page_of(c_program, env)
        for part in ("Inventory of of a host in C", "first.bin", "1,234,567"):
            self.assertIn(part, text)
        (self.folder / "empty").mkdir()
        printed = self.output_of(cpp_program, native(self.folder / "empty"), env=env)
        self.assertIn("Capacity=500107862016", printed)
        self.assertTrue(printed.endswith("\n" + DONE), printed)

    def expect_pages(self, c_program, cpp_program, env=None):
        """Checks that the hosts host_report_in_c and host_report_in_cpp of the folder project work."""
        text = self.page_of(c_program, env)
        for part in ("Inventory of of a host in C &amp; its disk", "first.bin", "1,234,567"):
            self.assertIn(part, text)
        self.assertIn("Inventory of of a host in C++", self.page_of(cpp_program, env))

    def page_of(self, program, env):
        """The page that a host makes by the report type for inventories."""
        shutil.copytree(self.prefix / "share/strata_repgenlib/templates/inventory",
                        self.folder / "data/.rgen", dirs_exist_ok=True)
        page = self.folder / "page.html"
        page.unlink(missing_ok=True)
        self.assertEqual(DONE, self.output_of(
            program, native(self.folder / "data"), native(page), env=env))
        return page.read_text(encoding="utf-8")

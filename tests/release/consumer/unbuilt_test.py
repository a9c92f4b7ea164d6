"""What an installation of a build that is not complete says, and that it copies nothing then; with each
part of the build left out.

SPDX-License-Identifier: MIT
"""

import re
import shutil
from pathlib import Path

from installed_case import BUILD_FOLDER, InstalledCase, run_tool
from program_case import ON_WINDOWS, SOURCE_FOLDER

LIBRARY = "strata_repgenlib"
COMPLETION = [] if ON_WINDOWS else ["completion/_rgen", "completion/rgen"]
IMPORTS = ["libstrata_repgenlib.dll.a", "strata_repgenlib.lib"] if ON_WINDOWS else [
    "libstrata_repgenlib.so"]
PROGRAMS = ["rgen", "vellum"]
# What is left out, and what the installation then misses in an empty build.
OPTIONS = [((), [*PROGRAMS, *COMPLETION]),
           (("RGEN_BUILD_TOOLS",), []),
           (("RGEN_BUILD_EXAMPLES",), [*PROGRAMS, *COMPLETION]),
           (("RGEN_BUILD_TESTS",), [*PROGRAMS, *COMPLETION]),
           (("RGEN_BUILD_TOOLS", "RGEN_BUILD_EXAMPLES", "RGEN_BUILD_TESTS"), [])]


def preset_options():
    """The variables that make a configuration like that of the tested build."""
    cache = (BUILD_FOLDER / "CMakeCache.txt").read_text(encoding="utf-8")
    wanted = ("CMAKE_TOOLCHAIN_FILE", "CMAKE_BUILD_TYPE", "CMAKE_C_COMPILER", "CMAKE_CXX_COMPILER",
              "RGEN_DEPENDENCIES")
    found = re.findall(r"^(\w+):(?:\w+)=(.*)$", cache, re.M)
    return [f"-D{name}={value}" for name, value in found if name in wanted and value]


class Unbuilt(InstalledCase):

    def setUp(self):
        """The installation that the other cases share is not needed."""
        super(InstalledCase, self).setUp()

    def install(self, build, *words):
        """(exit code, what is said, the files that were copied)"""
        prefix = self.folder / "prefix"
        outcome = run_tool("cmake", "--install", build, "--prefix", prefix, *words)
        copied = [path for path in prefix.rglob("*") if not path.is_dir()]
        shutil.rmtree(prefix, ignore_errors=True)
        return outcome.returncode, outcome.stdout, copied

    def missing(self, text, build):
        """The files that a message names, without their folders on the way."""
        names = re.findall(rf"^ *({re.escape(str(build))}/\S+)$", text, re.M)
        return sorted(re.sub(r"^(bin|lib|converter)/", "", str(Path(name).relative_to(build)))
                      for name in names)

    def test_an_empty_build_with_each_part_left_out(self):
        for left_out, programs in OPTIONS:
            with self.subTest(left_out=left_out):
                build = self.folder / "build"
                self.tool("cmake", "-S", SOURCE_FOLDER, "-B", build, "-GNinja", *preset_options(),
                          *(f"-D{name}=OFF" for name in left_out))
                code, text, copied = self.install(build)
                self.assertEqual((1, []), (code, copied), text)
                self.assertIn("Nothing was installed, since not everything is built.", text)
                self.assertIn(LIBRARY, text)
                for component, names in (("tools", programs), ("development", IMPORTS)):
                    code, text, copied = self.install(build, "--component", component)
                    found = [re.sub(r"\.exe$", "", name) for name in self.missing(text, build)]
                    self.assertEqual(sorted(names), sorted(found), text)
                    self.assertEqual(1 if names else 0, code, text)
                    if names:
                        self.assertEqual([], copied)
                shutil.rmtree(build)

    def test_without_installation(self):
        build = self.folder / "build"
        self.tool("cmake", "-S", SOURCE_FOLDER, "-B", build, "-GNinja", *preset_options(),
                  "-DRGEN_INSTALL=OFF", "-DRGEN_BUILD_TESTS=OFF")
        code, text, copied = self.install(build)
        self.assertEqual((0, []), (code, copied), text)

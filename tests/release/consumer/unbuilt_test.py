"""Installing an incomplete build fails with a message and copies nothing, for each part that may be
missing.

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
# The options that leave parts out, and the files that an empty build then lacks.
OPTIONS = [((), [*PROGRAMS, *COMPLETION]),
           (("RGEN_BUILD_TOOLS",), []),
           (("RGEN_BUILD_EXAMPLES",), [*PROGRAMS, *COMPLETION]),
           (("RGEN_BUILD_TESTS",), [*PROGRAMS, *COMPLETION]),
           (("RGEN_BUILD_TOOLS", "RGEN_BUILD_EXAMPLES", "RGEN_BUILD_TESTS"), [])]


def preset_options():
    """The options for the same configuration as the tested build's."""
    cache = (BUILD_FOLDER / "CMakeCache.txt").read_text(encoding="utf-8")
    wanted = ("CMAKE_TOOLCHAIN_FILE", "CMAKE_BUILD_TYPE", "CMAKE_C_COMPILER", "CMAKE_CXX_COMPILER",
              "RGEN_DEPENDENCIES")
    found = re.findall(r"^(\w+):(?:\w+)=(.*)$", cache, re.M)
    return [f"-D{name}={value}" for name, value in found if name in wanted and value]


class Unbuilt(InstalledCase):

    def setUp(self):
        """Does not make the installation that the other cases share."""
        super(InstalledCase, self).setUp()

    def install(self, build, *words):
        """Returns the exit code, the output and the copied files."""
        prefix = self.folder / "prefix"
        outcome = run_tool("cmake", "--install", build, "--prefix", prefix, *words)
        copied = [path for path in prefix.rglob("*") if not path.is_dir()]
        shutil.rmtree(prefix, ignore_errors=True)
        return outcome.returncode, outcome.stdout, copied

    def missing(self, text, build):
        """The names of the files in a message, without folders."""
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

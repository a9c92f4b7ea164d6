"""Installing an incomplete build: without a library it fails with a message and copies nothing, and a
program that is not built is left out. A build that was moved says so.

SPDX-License-Identifier: MIT
"""

import re
import shutil
from pathlib import Path

from installed_case import BUILD_FOLDER, LIBDIR, VERSION, InstalledCase, run_tool
from program_case import ON_WINDOWS, SOURCE_FOLDER, linux_only

LIBRARIES = ["bin/strata_repgenlib.dll", "bin/strata_repgenlib_host.dll"] if ON_WINDOWS else [
    f"bin/libstrata_repgenlib.so.{VERSION}", f"bin/libstrata_repgenlib_host.so.{VERSION}"]
# The files for the linkers of hosts.
IMPORTS = ["lib/libstrata_repgenlib.dll.a", "lib/libstrata_repgenlib_host.dll.a",
           "lib/strata_repgenlib.lib", "lib/strata_repgenlib_host.lib"] if ON_WINDOWS else [
               "bin/libstrata_repgenlib.so", "bin/libstrata_repgenlib_host.so"]
ENDING = ".exe" if ON_WINDOWS else ""
RGEN, VELLUM = f"bin/rgen{ENDING}", f"converter/vellum{ENDING}"
COMPLETION = [] if ON_WINDOWS else ["completion/_rgen", "completion/rgen"]
TOOLS = [RGEN, VELLUM, *COMPLETION]
# The options that leave parts out, and the files of tools that an empty build then lacks.
OPTIONS = [((), TOOLS),
           (("RGEN_BUILD_TOOLS",), []),
           (("RGEN_BUILD_EXAMPLES",), TOOLS),
           (("RGEN_BUILD_TESTS",), TOOLS),
           (("RGEN_BUILD_TOOLS", "RGEN_BUILD_EXAMPLES", "RGEN_BUILD_TESTS"), [])]
# What is installed with a program only.
OF_RGEN = {"share/doc/strata_repgenlib/licences/cli11.txt",
           "share/doc/strata_repgenlib/licences/cpp-httplib.txt",
           "share/doc/strata_repgenlib/licences/nlohmann-json.txt",
           *([] if ON_WINDOWS else ["share/man/man1/rgen.1"])}
OF_VELLUM = set() if ON_WINDOWS else {"share/man/man1/vellum.1"}
OF_COMPLETION = set() if ON_WINDOWS else {"share/bash-completion/completions/rgen",
                                          "share/zsh/site-functions/_rgen"}


def preset_options():
    """The options for the same configuration as the tested build's."""
    cache = (BUILD_FOLDER / "CMakeCache.txt").read_text(encoding="utf-8")
    wanted = ("CMAKE_TOOLCHAIN_FILE", "CMAKE_BUILD_TYPE", "CMAKE_C_COMPILER", "CMAKE_CXX_COMPILER",
              "RGEN_DEPENDENCIES")
    found = re.findall(r"^(\w+):(?:\w+)=(.*)$", cache, re.M)
    return [f"-D{name}={value}" for name, value in found if name in wanted and value]


class PartlyBuilt(InstalledCase):

    def setUp(self):
        """Does not make the installation that the other cases share."""
        super(InstalledCase, self).setUp()
        self.build = self.folder / "build"

    def configure(self, *options):
        self.tool("cmake", "-S", SOURCE_FOLDER, "-B", self.build, "-GNinja", *preset_options(),
                  *options)

    def add_built(self, *names):
        """Files of the tested build, as if they had been built here."""
        for name in names:
            for path in (BUILD_FOLDER / name).parent.glob(Path(name).name):
                target = self.build / path.relative_to(BUILD_FOLDER)
                target.parent.mkdir(exist_ok=True)
                shutil.copy(path, target, follow_symlinks=False)

    def add_libraries(self):
        """Everything of the components library and development."""
        self.add_built(*LIBRARIES, *IMPORTS, "bin/libstrata_repgenlib*.so.?")

    def install(self, *words, build=None):
        """Returns the exit code, the output and the copied files."""
        prefix = self.folder / "prefix"
        outcome = run_tool("cmake", "--install", build or self.build, "--prefix", prefix, *words)
        copied = {path.relative_to(prefix).as_posix() for path in prefix.rglob("*")
                  if path.is_symlink() or not path.is_dir()}
        return outcome.returncode, outcome.stdout, copied

    def named(self, text):
        """The files of the build that a message names."""
        names = re.findall(rf"^ *({re.escape(str(self.build))}/\S+)$", text, re.M)
        return sorted(str(Path(name).relative_to(self.build)) for name in names)

    def expect_refused(self, names, *words):
        """Names the missing files and copies nothing."""
        code, text, copied = self.install(*words)
        self.assertEqual((1, set()), (code, copied), text)
        self.assertIn("Nothing was installed, since these files are not built:", text)
        self.assertEqual(sorted(names), self.named(text), text)

    def expect_installed(self, left_out, *words):
        """Names what is left out; returns the paths of the files."""
        code, text, copied = self.install(*words)
        self.assertEqual(0, code, text)
        self.assertEqual(sorted(left_out), self.named(text), text)
        self.assertEqual(bool(left_out), "Left out, since they are not built:" in text, text)
        shutil.rmtree(self.folder / "prefix")
        return copied

    def test_nothing_is_installed_without_the_libraries(self):
        for left_out, tools in OPTIONS:
            with self.subTest(left_out=left_out):
                self.configure(*(f"-D{name}=OFF" for name in left_out))
                self.expect_refused(LIBRARIES)
                self.expect_refused(IMPORTS, "--component", "development")
                if tools:
                    self.expect_refused(tools, "--component", "tools")
                else:
                    self.assertEqual((0, set()), self.install("--component", "tools")[::2])
                shutil.rmtree(self.build)

    def test_each_library_and_each_file_for_a_linker_is_required(self):
        self.configure("-DRGEN_BUILD_TESTS=OFF")
        self.add_libraries()
        for name in [*LIBRARIES, *IMPORTS]:
            with self.subTest(name):
                (self.build / name).rename(self.folder / "away")
                # On Linux the file for the linker is a link to the library.
                broken = [link for link in IMPORTS if not (self.build / link).exists()]
                self.expect_refused([name] if name in LIBRARIES else broken)
                (self.folder / "away").rename(self.build / name)

    def test_programs_that_are_not_built_are_left_out(self):
        self.configure("-DRGEN_BUILD_TESTS=OFF")
        self.add_libraries()
        bare = self.expect_installed(TOOLS)
        self.assertIn(LIBRARIES[0] if ON_WINDOWS else f"{LIBDIR}/libstrata_repgenlib.so", bare)
        self.add_built(RGEN)
        with_rgen = self.expect_installed([VELLUM, *COMPLETION])
        self.assertEqual({RGEN} | OF_RGEN, with_rgen - bare)
        self.add_built(*COMPLETION)
        with_completion = self.expect_installed([VELLUM])
        self.assertEqual(OF_COMPLETION, with_completion - with_rgen)
        self.add_built(VELLUM)
        whole = self.expect_installed([])
        self.assertEqual({f"bin/vellum{ENDING}"} | OF_VELLUM, whole - with_completion)

    def test_the_component_of_tools_needs_one_of_them(self):
        self.configure("-DRGEN_BUILD_TESTS=OFF")
        self.expect_refused(TOOLS, "--component", "tools")
        self.add_built(VELLUM)
        self.assertEqual({f"bin/vellum{ENDING}"} | OF_VELLUM,
                         self.expect_installed([RGEN, *COMPLETION], "--component", "tools"))

    @linux_only
    def test_hosts_are_built_with_the_libraries_alone(self):
        self.configure("-DRGEN_BUILD_TESTS=OFF")
        self.add_libraries()
        self.assertEqual(0, self.install()[0])
        self.prefix = self.folder / "prefix"
        self.assertEqual("1", self.find()["found"])

    def test_a_build_folder_that_was_moved_or_copied_says_so(self):
        self.configure("-DRGEN_BUILD_TESTS=OFF", "-DRGEN_BUILD_TOOLS=OFF")
        self.add_libraries()
        other = self.folder / "elsewhere"
        shutil.copytree(self.build, other, symlinks=True)
        for step in ("copied", "moved"):
            with self.subTest(step):
                code, text, copied = self.install(build=other)
                self.assertEqual((1, set()), (code, copied), text)
                for word in ("Nothing was installed: this build was configured in", str(self.build),
                             str(other), "cmake --fresh"):
                    self.assertIn(word, text)
            shutil.rmtree(self.build, ignore_errors=True)

    def test_a_link_to_the_build_folder_is_as_good_as_the_folder(self):
        self.configure("-DRGEN_BUILD_TESTS=OFF", "-DRGEN_BUILD_TOOLS=OFF")
        self.add_libraries()
        (self.folder / "link").symlink_to(self.build)
        self.assertEqual(0, self.install(build=self.folder / "link")[0])

    def test_sources_that_were_moved_are_named(self):
        sources = self.folder / "sources"
        shutil.copytree(SOURCE_FOLDER, sources, ignore=shutil.ignore_patterns("build", ".git"))
        self.tool("cmake", "-S", sources, "-B", self.build, "-GNinja", *preset_options(),
                  "-DRGEN_BUILD_TESTS=OFF", "-DRGEN_BUILD_TOOLS=OFF")
        self.add_libraries()
        sources.rename(self.folder / "other sources")
        code, text, copied = self.install()
        self.assertEqual((1, set()), (code, copied), text)
        self.assertIn("the sources of this build are no longer in", text)
        self.assertIn(str(sources), text)

    def test_without_installation(self):
        self.configure("-DRGEN_INSTALL=OFF", "-DRGEN_BUILD_TESTS=OFF")
        code, text, copied = self.install()
        self.assertEqual((0, set()), (code, copied), text)

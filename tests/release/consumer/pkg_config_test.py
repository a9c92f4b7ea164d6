"""The pkg-config files of an installation: their answers, and hosts that are built with them.

SPDX-License-Identifier: MIT
"""

from installed_case import (C_COMPILER, CXX_COMPILER, HERE, MAJOR, MINOR, PROGRAM_ENDING, VERSION,
                            InstalledCase, run_tool)
from program_case import ON_WINDOWS, search_path

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]
# After the words of pkg-config: link the compiler's own libraries statically.
WINDOWS = ["-static-libgcc", "-Wl,-Bstatic"]


class PkgConfig(InstalledCase):

    def build(self, compiler, standard, source, library):
        program = self.folder / (source.partition(".")[0] + PROGRAM_ENDING)
        options = WINDOWS if ON_WINDOWS else [
            "-Wl,-rpath," + self.pkg_config("--variable=libdir", name=library)[0]]
        self.tool(compiler, f"-std={standard}", *WARNINGS, HERE / "project" / source, "-o", program,
                  *self.pkg_config("--cflags", "--libs", name=library), *options)
        return program

    def built(self, name, library):
        """A host in C, one in C++, and the variables with which they find the library."""
        return (self.build(C_COMPILER, "c99", f"{name}_in_c.c", library),
                self.build(CXX_COMPILER, "c++17", f"{name}_in_cpp.cpp", library),
                search_path(self.prefix / "bin") if ON_WINDOWS else None)

    def test_hosts_are_built_and_make_reports(self):
        self.expect_reports(*self.built("report", "strata_repgenlib"))

    def test_hosts_of_the_host_library_are_built_and_make_reports(self):
        self.expect_pages(*self.built("host_report", "strata_repgenlib_host"))

    def test_the_host_library_of_a_version_requires_the_first_library_of_that_version(self):
        self.assertEqual(["strata_repgenlib", "=", VERSION],
                         self.pkg_config("--print-requires", name="strata_repgenlib_host"))
        self.assertEqual([VERSION], self.pkg_config("--modversion", name="strata_repgenlib_host"))
        flags = self.pkg_config("--libs", name="strata_repgenlib_host")
        self.assertEqual(["-lstrata_repgenlib_host", "-lstrata_repgenlib"],
                         [flag for flag in flags if flag.startswith("-l")])

    def test_the_answers_name_the_moved_place_and_no_other_library(self):
        flags = self.pkg_config("--cflags", "--libs")
        folders = [flag[:2] + str(self.resolved(flag[2:])) if flag[:2] in ("-I", "-L") else flag
                   for flag in flags]
        self.assertEqual([f"-I{self.prefix / 'include'}", f"-L{self.library_folder}",
                          "-lstrata_repgenlib"], folders)
        self.assertEqual(flags, self.pkg_config("--static", "--cflags", "--libs"))
        self.assertEqual([VERSION], self.pkg_config("--modversion"))
        self.assertEqual([], self.pkg_config("--print-requires"))
        templates = self.resolved(" ".join(self.pkg_config("--variable=templatesdir")))
        self.assertTrue((templates / "inventory/config.xml").is_file())

    def resolved(self, text):
        """The folder without "..", by which the file finds its prefix."""
        return (self.folder / text).resolve()

    def test_a_later_version_is_refused(self):
        answer = run_tool("pkg-config", f"strata_repgenlib >= {MAJOR}.{MINOR + 1}",
                          env={"PKG_CONFIG_LIBDIR": str(self.library_folder / "pkgconfig")})
        self.assertNotEqual(0, answer.returncode)
        self.pkg_config(f"--atleast-version={VERSION}")

    def test_the_files_name_no_address(self):
        for name in ("strata_repgenlib", "strata_repgenlib_host"):
            text = (self.library_folder / f"pkgconfig/{name}.pc").read_text()
            self.assertNotIn("://", text)
            self.assertIn("\nprefix=${pcfiledir}/", text)

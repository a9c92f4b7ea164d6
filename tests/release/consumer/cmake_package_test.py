"""The CMake package of an installation, and the library's sources as a part of another project.

SPDX-License-Identifier: MIT
"""

import shutil
import sys
from pathlib import Path

from installed_case import (HERE, LIBDIR, MAJOR, MINOR, PATCH, PROGRAM_ENDING, THIRD_PARTY, VERSION,
                            InstalledCase)
from program_case import ON_WINDOWS, SOURCE_FOLDER, native, search_path, windows_only

SERIES = f"{MAJOR}.{MINOR}"


class CMakePackage(InstalledCase):

    def expect_found(self, wanted):
        answer = self.find(wanted)
        self.assertEqual(("1", VERSION), (answer["found"], answer["version"]), wanted)

    def expect_refused(self, wanted, *options):
        """Returns the reason, which comes from the package itself."""
        answer = self.find(wanted, *options)
        self.assertEqual("0", answer["found"], wanted)
        self.assertNotIn("INTERFACE_INCLUDE_DIRECTORIES", answer, wanted)
        return answer["reason"]

    def test_hosts_are_built_and_make_reports(self):
        folder = self.build_project(HERE / "project", f"-DWANTED_VERSION={SERIES}")
        self.expect_reports(folder / f"report_in_c{PROGRAM_ENDING}",
                            folder / f"report_in_cpp{PROGRAM_ENDING}")
        self.expect_pages(folder / f"host_report_in_c{PROGRAM_ENDING}",
                          folder / f"host_report_in_cpp{PROGRAM_ENDING}")

    def test_versions_of_the_major_number_are_accepted_up_to_this_one(self):
        for wanted in ("", str(MAJOR), f"{MAJOR}.0", SERIES, VERSION, f"{VERSION};EXACT",
                       f"{MAJOR}.0...<{MAJOR + 1}"):
            self.expect_found(wanted)

    def test_other_versions_are_refused(self):
        for wanted in (f"{MAJOR}.{MINOR}.{PATCH + 1}", f"{MAJOR}.{MINOR + 1}", f"{MAJOR + 1}.0",
                       f"{MAJOR + 1}.0...<{MAJOR + 2}"):
            self.expect_refused(wanted)
        if MAJOR > 0:
            self.expect_refused(f"{MAJOR - 1}.0")

    def test_a_library_folder_may_be_reached_through_a_link(self):
        top = LIBDIR.partition("/")[0]
        (self.folder / "elsewhere").mkdir()
        (self.folder / "elsewhere" / top).symlink_to(self.prefix / top)
        answer = self.find("", f"-DCMAKE_PREFIX_PATH={self.folder / 'elsewhere'}")
        self.assertEqual("1", answer["found"])
        self.assertEqual(self.find(), answer)

    def test_a_component_that_must_be_there_is_refused_and_named(self):
        answer = self.find("COMPONENTS;static")
        self.assertEqual("0", answer["found"])
        self.assertIn("no components, asked for: static", answer["reason"])
        self.assertEqual("1", self.find("OPTIONAL_COMPONENTS;static")["found"])

    def test_another_system_is_refused(self):
        other = "Linux" if ON_WINDOWS else "Windows"
        reason = self.expect_refused("", f"-DCMAKE_SYSTEM_NAME={other}")
        self.assertIn(f"not for {other}", reason)

    def expect_target(self, name, **more):
        """Checks the properties of a target that users get."""
        answer = self.find("", f"-DDESCRIBED=strata_repgenlib::{name}")
        library = f"bin/{name}.dll" if ON_WINDOWS else (
            f"{self.library_folder.relative_to(self.prefix)}/lib{name}.so.{VERSION}")
        expected = {"INTERFACE_INCLUDE_DIRECTORIES": str(self.prefix / "include"),
                    "IMPORTED_LOCATION": str(self.prefix / library), **more}
        if ON_WINDOWS:
            expected["IMPORTED_IMPLIB"] = str(self.library_folder / f"lib{name}.dll.a")
        self.assertEqual(expected, {name: value for name, value in answer.items()
                                    if name.isupper()})

    def test_users_get_the_header_the_library_and_nothing_else(self):
        self.expect_target("strata_repgenlib")

    def test_users_of_the_host_library_get_the_first_one_with_it(self):
        self.expect_target("strata_repgenlib_host",
                           INTERFACE_LINK_LIBRARIES="strata_repgenlib::strata_repgenlib")

    @windows_only
    def test_compilers_that_link_otherwise_get_their_import_libraries(self):
        for name in ("MSVC", "CMAKE_C_SIMULATE_ID", "CMAKE_CXX_SIMULATE_ID"):
            value = f"-DSEARCHED_BY={name}" if name == "MSVC" else f"-D{name}=MSVC"
            for target in ("strata_repgenlib", "strata_repgenlib_host"):
                answer = self.find("", value, f"-DDESCRIBED=strata_repgenlib::{target}")
                self.assertEqual(str(self.library_folder / f"{target}.lib"),
                                 answer["IMPORTED_IMPLIB"], name)
                self.assertTrue(Path(answer["IMPORTED_IMPLIB"]).is_file())

    def test_the_folder_of_the_templates_is_told(self):
        folder = self.prefix / "share/strata_repgenlib"
        answer = self.find()
        self.assertEqual(str(folder / "templates"), answer["templates"])
        self.assertTrue((folder / "templates/inventory/config.xml").is_file())
        bindings = folder / "bindings"
        self.assertEqual(str(bindings) if bindings.is_dir() else "", answer["bindings"])

    def test_the_installed_examples_are_built_and_make_the_same_reports(self):
        folder = self.build_project(self.prefix / "share/strata_repgenlib/examples",
                                    "-DCMAKE_EXE_LINKER_FLAGS=" + ("-static" if ON_WINDOWS else ""))
        env = search_path(self.prefix / "bin") if ON_WINDOWS else None
        in_c = self.reports_of(
            lambda *folders: self.output_of(folder / f"acquisition_report{PROGRAM_ENDING}",
                                            *map(native, folders), env=env))
        self.assertEqual({f"acquisition-{language}.{ending}" for language in ("en", "de", "ru")
                          for ending in ("html", "txt")}, set(in_c))
        self.assertEqual(in_c, self.reports_of(
            lambda *folders: self.output_of(folder / f"acquisition_host{PROGRAM_ENDING}",
                                            *map(native, folders), env=env)))
        if not ON_WINDOWS:
            self.assertEqual(in_c, self.reports_of(self.run_host_in_python))

    def reports_of(self, host):
        """The files that an example makes in its two folders, which are empty before."""
        data, reports = self.folder / "data", self.folder / "reports"
        shutil.copytree(self.prefix / "share/strata_repgenlib/templates/acquisition",
                        data / ".rgen")
        reports.mkdir()
        host(data, reports)
        found = {path.name: path.read_bytes() for path in reports.iterdir()}
        for folder in (data, reports):
            shutil.rmtree(folder)
        return found

    def run_host_in_python(self, *folders):
        """Builds the installed example with the installed package and library."""
        share = self.prefix / "share/strata_repgenlib"
        self.tool(sys.executable, share / "examples/acquisition_host.py", *folders,
                  env={"PYTHONPATH": str(share / "bindings/python"),
                       "LD_LIBRARY_PATH": str(self.library_folder)})

    def test_the_sources_can_be_a_part_of_another_project(self):
        folder = self.folder / "build"
        self.tool("cmake", "-S", HERE / "inside", "-B", folder, *self.cmake_options(),
                  f"-DSOURCES={SOURCE_FOLDER}", f"-DRGEN_DEPENDENCIES={THIRD_PARTY}",
                  f"-DHOST={HERE / 'project/host_report_in_c.c'}")
        self.tool("cmake", "--build", folder, "--target", "host")
        self.tool("cmake", "--install", folder, "--prefix", self.folder / "own")
        self.assertEqual(["CMakeLists.txt"],
                         [path.name for path in (self.folder / "own").iterdir()])

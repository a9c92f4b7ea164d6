"""The archives: the same bytes wherever they are made, exactly the expected files, nothing of the
machine that made them, and programs that work where the archive is unpacked.

SPDX-License-Identifier: MIT
"""

import re
import subprocess
import tarfile
import zipfile
from datetime import datetime, timezone

from package_case import (ARCHIVE, BUILD_FOLDER, DEBIAN_PACKAGE, EPOCH, NAME, SBOM_ENDINGS,
                          THIRD_PARTY, PackageCase, expected_files, packages, unpacked)
from program_case import ON_WINDOWS, SOURCE_FOLDER, linux_only, windows_only

PROGRAM_ENDING = ".exe" if ON_WINDOWS else ""


def package_names():
    """The files that CPack writes, except its own description of the run."""
    return {path.name for path in packages().iterdir()} - {f"{NAME}.json"}


class Packages(PackageCase):

    def test_the_expected_packages_are_made(self):
        wholes = [ARCHIVE] if ON_WINDOWS else [ARCHIVE, DEBIAN_PACKAGE]
        names = [NAME] if ON_WINDOWS else [NAME, DEBIAN_PACKAGE]
        expected = {*wholes, *(f"{name}.{ending}" for name in names for ending in SBOM_ENDINGS)}
        self.assertEqual(expected, package_names())

    def test_another_folder_zone_and_mode_mask_give_the_same_bytes(self):
        again = packages("in another and longer folder", "Asia/Kathmandu", 0o077)
        for name in package_names():
            self.assertTrue((packages() / name).read_bytes() == (again / name).read_bytes(), name)


class Archive(PackageCase):

    def entries(self):
        """Path, mode and time of every entry."""
        if ON_WINDOWS:
            with zipfile.ZipFile(packages() / ARCHIVE) as archive:
                return [(entry.filename.rstrip("/"), entry.external_attr >> 16 & 0o777,
                         datetime(*entry.date_time, tzinfo=timezone.utc).timestamp())
                        for entry in archive.infolist()]
        with tarfile.open(packages() / ARCHIVE) as archive:
            return [(entry.name, entry.mode, entry.mtime) for entry in archive]

    def test_exactly_the_expected_files_are_inside(self):
        found = {path.relative_to(unpacked()).as_posix() for path in unpacked().rglob("*")
                 if path.is_symlink() or not path.is_dir()}
        self.assertEqual([], sorted(expected_files() - found), "missing")
        self.assertEqual([], sorted(found - expected_files()), "not expected")

    def test_entries_are_sorted_and_have_the_time_of_the_release(self):
        paths = [path for path, _, _ in self.entries()]
        self.assertEqual(sorted(paths), paths)
        self.assertEqual({EPOCH}, {time for _, _, time in self.entries()})

    def test_programs_may_run_and_everybody_may_read(self):
        links = {path.name for path in unpacked().rglob("*") if path.is_symlink()}
        for path, mode, _ in self.entries():
            name = path.removeprefix(NAME).lstrip("/")
            if path.rpartition("/")[2] in links:
                continue
            folder = (unpacked() / name).is_dir()
            program = re.fullmatch(r"bin/(rgen|vellum)(\.exe)?|bin/\w+\.dll", name)
            self.assertEqual(0o755 if folder or program else 0o644, mode, name)

    def test_the_readme_and_the_licence_are_at_the_top_and_links_lead_to_files(self):
        self.assertEqual((SOURCE_FOLDER / "LICENSE").read_bytes(),
                         (unpacked() / "LICENSE").read_bytes())
        text = (unpacked() / "README.md").read_text(encoding="utf-8")
        links = re.findall(r"\]\(([^()\s]+)\)", text)
        self.assertGreater(len(links), 10)
        for link in links:
            if "://" not in link:
                self.assertTrue((unpacked() / link.split("#")[0]).exists(), link)

    def test_the_licences_of_the_tools_are_installed_with_them(self):
        for component in ("library", "tools"):
            self.tool("cmake", "--install", BUILD_FOLDER, "--component", component, "--prefix",
                      self.folder / component)
        tools = {"cli11.txt", "cpp-httplib.txt", "nlohmann-json.txt"}
        folder = self.folder / "tools/share/doc/strata_repgenlib/licences"
        self.assertEqual(tools, {path.name for path in folder.iterdir()})
        folder = self.folder / "library/share/doc/strata_repgenlib/licences"
        self.assertFalse(tools & {path.name for path in folder.iterdir()})

    @linux_only
    def test_without_tools_nobody_asks_for_their_licences(self):
        self.tool("cmake", "-S", SOURCE_FOLDER, "-B", self.folder, "-G", "Ninja",
                  f"-DRGEN_DEPENDENCIES={THIRD_PARTY}",
                  *(f"-DRGEN_BUILD_{name}=OFF" for name in ("TOOLS", "TESTS", "EXAMPLES")))
        rules = (self.folder / "cmake_install.cmake").read_text(encoding="utf-8")
        self.assertIn("gcc-runtime.txt", rules)
        for name in ("cli11", "cpp-httplib", "nlohmann-json"):
            self.assertNotIn(name, rules)

    @linux_only
    def test_everything_belongs_to_root(self):
        with tarfile.open(packages() / ARCHIVE) as archive:
            owners = {(entry.uid, entry.gid, entry.uname, entry.gname) for entry in archive}
        self.assertEqual({(0, 0, "root", "root")}, owners)

    def test_nothing_names_a_folder_of_the_building_machine(self):
        folders = [SOURCE_FOLDER, BUILD_FOLDER, THIRD_PARTY, packages()]
        for path in unpacked().rglob("*"):
            if path.is_file():
                content = path.read_bytes()
                for folder in folders:
                    self.assertNotIn(str(folder).encode(), content, path)

    def test_binaries_are_stripped(self):
        for path in [*(unpacked() / "bin").iterdir(), *(unpacked() / "lib").glob("*.so")]:
            sections = subprocess.run(["objdump", "-h", path], capture_output=True, text=True,
                                      check=True).stdout
            self.assertNotIn(".debug_", sections, path)
            self.assertIn(".text", sections, path)

    def test_rgen_makes_a_report_where_the_archive_is_unpacked(self):
        self.expect_report(unpacked() / "bin" / f"rgen{PROGRAM_ENDING}")

    @windows_only
    def test_the_binaries_carry_the_time_of_the_release(self):
        for path in (unpacked() / "bin").iterdir():
            header = path.read_bytes()[:1024]
            start = header.index(b"PE\0\0")
            self.assertEqual(EPOCH, int.from_bytes(header[start + 8:start + 12], "little"), path)

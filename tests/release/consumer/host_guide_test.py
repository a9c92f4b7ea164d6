"""The first report of the installed host guide, with CMake: its files are built, and the program
runs without variables for finding the library.

SPDX-License-Identifier: MIT
"""

import sys

from installed_case import DONE, PROGRAM_ENDING, InstalledCase
from program_case import ON_WINDOWS, SOURCE_FOLDER

sys.path.append(str(SOURCE_FOLDER / "tests/release/documentation"))

import markdown_page  # In tests/release/documentation.

FIRST_REPORT = {"CMakeLists.txt", "disk_report.c", "reports/.rgen/config.xml",
                "reports/.rgen/templates/txt/disk.xsl"}


class HostGuide(InstalledCase):

    def test_the_first_report_is_made_as_the_guide_says(self):
        documents = self.prefix / "share/doc/strata_repgenlib/docs"
        page = markdown_page.read_page(documents / "host-guide.md")
        files = {block.marks["file"]: block.text for block in page.blocks if "file" in block.marks}
        for name in FIRST_REPORT:
            self.write(name, files[name])
        folder = self.build_project(self.folder)
        self.assertEqual(DONE, self.output_of(folder / f"disk_report{PROGRAM_ENDING}"))
        self.assertIn(b"Device: Disk 1 & 2", self.read("disk.txt"))
        self.assertEqual(ON_WINDOWS, (folder / "strata_repgenlib.dll").is_file())

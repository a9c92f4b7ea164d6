"""The report type for lists of files, with the data that scripts/inventory-data makes.

SPDX-License-Identifier: MIT
"""

import os
import re
import shutil
import subprocess
import sys

from cli_case import SOURCE_FOLDER, CliCase

SCRIPT = SOURCE_FOLDER / "scripts/inventory-data"
CHANGED = 1773044047  # 9 March 2026, 04:14:07 in the zone of the cases


class Inventory(CliCase):
    has_data_dir = False

    def setUp(self):
        super().setUp()
        shutil.copytree(SOURCE_FOLDER / "templates/inventory", self.folder / "list/.rgen")
        self.write("files/A & B <ü>.bin", bytes(range(256)))
        self.write("files/empty", b"")
        self.write("files/sub/three", b"abc")
        for path in self.folder.glob("files/**/*"):
            os.utime(path, (CHANGED, CHANGED))

    def listed(self, number):
        return subprocess.run([sys.executable, SCRIPT, str(number), "files"], cwd=self.folder,
                              capture_output=True, check=False)

    def test_names_sizes_dates_and_first_bytes(self):
        listed = self.listed(3)
        self.assertEqual((0, b""), (listed.returncode, listed.stderr))
        self.write("files.json", listed.stdout)
        self.expect_done(self.rgen("report", "-d", "list", "--data", "files.json", "-o",
                                   "files.html"))
        page = self.text_of("files.html")
        self.assertIn("3 files, 259 bytes", page)
        rows = re.findall(r"<tr><th.*?</tr>", page.partition("<tbody>")[2], re.S)
        self.assertEqual(3, len(rows))
        first = " ".join(f"{byte:02X}" for byte in range(16))
        second = " ".join(f"{byte:02X}" for byte in range(16, 32))
        self.assertIn("files/A &amp; B &lt;ü&gt;.bin", rows[0])
        self.assertIn('>256</td><td class="date">9.03.2026 04:14:07</td>', rows[0])
        self.assertIn(f">{first}<br>{second}</td>", rows[0])
        self.assertIn(">0</td>", rows[1])
        self.assertIn('<td class="dump"><br></td>', rows[1])
        self.assertIn(">61 62 63<br></td>", rows[2])

    def test_too_few_files(self):
        listed = self.listed(4)
        self.assertEqual((1, b""), (listed.returncode, listed.stdout))
        self.assertIn(b"only 3 files in files, but 4 are needed", listed.stderr)

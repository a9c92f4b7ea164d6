"""The Debian package: its control fields, its files where Debian wants them, and an installation
that leaves no files when it is purged.

SPDX-License-Identifier: MIT
"""

import gzip
import hashlib
import os
import re
import subprocess
from pathlib import Path
from unittest import mock

from package_case import (DEBIAN_PACKAGE, VERSION, PackageCase, expected_files, packages,
                          root_command, scratch)
from program_case import SOURCE_FOLDER, linux_only

DOCUMENTS = "usr/share/doc/strata-repgenlib"
# The paths of files that differ in the Debian package; None: not in the package.
MOVED = {"LICENSE": None, "README.md": None, "share/doc/strata_repgenlib/LICENSE": None,
         "share/doc/strata_repgenlib/licences/GPL-3.txt": None,
         "share/doc/strata_repgenlib/licences/LGPL-2.1.txt": None,
         "share/zsh/site-functions/_rgen": "share/zsh/vendor-completions/_rgen",
         "share/man/man1/rgen.1": "share/man/man1/rgen.1.gz",
         "share/man/man1/vellum.1": "share/man/man1/vellum.1.gz"}
ADDED = {f"{DOCUMENTS}/changelog.gz", f"{DOCUMENTS}/copyright",
         "usr/share/lintian/overrides/strata-repgenlib"}


def package():
    return packages() / DEBIAN_PACKAGE


def debian_files():
    """The expected files of the package."""
    names = set(ADDED)
    for name in expected_files():
        new = MOVED.get(name, name)
        if new:
            names.add("usr/" + new.replace("doc/strata_repgenlib", "doc/strata-repgenlib"))
    return names


@linux_only
class DebianPackage(PackageCase):

    def extracted(self):
        folder = scratch() / "extracted"
        if not folder.exists():
            self.tool("dpkg-deb", "--raw-extract", package(), folder)
        return folder

    def field(self, name):
        return self.tool("dpkg-deb", "--field", package(), name).strip()

    def test_its_control_fields_say_what_it_is_and_needs(self):
        for name, value in {"Package": "strata-repgenlib", "Version": VERSION,
                            "Architecture": "amd64", "Section": "devel", "Priority": "optional",
                            "Recommends": "chromium-headless-shell | chromium | weasyprint",
                            }.items():
            self.assertEqual(value, self.field(name), name)
        needed = {re.sub(r" \(.*\)", "", word) for word in self.field("Depends").split(", ")}
        self.assertEqual({"libc6", "libgcc-s1", "libstdc++6"}, needed)
        self.assertRegex(self.field("Maintainer"), r"^[\w ]+ <[\w.@-]+>$")
        self.assertGreater(len(self.field("Description").splitlines()), 3)
        self.assertGreater(int(self.field("Installed-Size")), 1000)

    def test_exactly_the_expected_files_are_inside(self):
        found = {path.relative_to(self.extracted()).as_posix()
                 for path in (self.extracted() / "usr").rglob("*")
                 if path.is_symlink() or not path.is_dir()}
        self.assertEqual([], sorted(debian_files() - found), "missing")
        self.assertEqual([], sorted(found - debian_files()), "not expected")

    def test_everything_belongs_to_root(self):
        owners = {line.split()[1] for line in
                  self.tool("dpkg-deb", "--contents", package()).splitlines()}
        self.assertEqual({"root/root"}, owners)

    def test_its_checksums_are_those_of_its_files(self):
        root = self.extracted()
        lines = (root / "DEBIAN/md5sums").read_text(encoding="utf-8").splitlines()
        for line in lines:
            checksum, name = line.split("  ", 1)
            self.assertEqual(checksum, hashlib.md5((root / name).read_bytes()).hexdigest(), name)
        files = [path for path in (root / "usr").rglob("*")
                 if path.is_file() and not path.is_symlink()]
        self.assertEqual(len(files), len(lines))

    def test_compressed_files_carry_neither_name_nor_time(self):
        compressed = sorted(self.extracted().rglob("*.gz"))
        self.assertEqual(3, len(compressed))
        for path in compressed:
            head = path.read_bytes()[:8]
            self.assertEqual(b"\x1f\x8b\x08\x00\0\0\0\0", head, path)

    def test_its_changelog_and_copyright_are_what_debian_expects(self):
        documents = self.extracted() / DOCUMENTS
        changelog = gzip.decompress((documents / "changelog.gz").read_bytes()).decode()
        self.assertTrue(changelog.startswith(f"strata-repgenlib ({VERSION}) "), changelog)
        self.assertIn("Tue, 14 Nov 2023 22:13:20 +0000", changelog)
        copyright_text = (documents / "copyright").read_text(encoding="utf-8")
        for part in ("the strata_repgenlib authors", "Boost Software License", "Daniel Veillard",
                     "University of Cincinnati", "Niels Lohmann"):
            self.assertIn(part, copyright_text)

    def test_the_binaries_name_no_folder_for_libraries(self):
        for name in ("bin/rgen", "bin/vellum", "lib/libstrata_repgenlib.so",
                     "lib/libstrata_repgenlib_host.so"):
            dynamic = self.tool("readelf", "--wide", "--dynamic", self.extracted() / "usr" / name)
            self.assertNotRegex(dynamic, r"\((RPATH|RUNPATH)\)", name)
        shlibs = (self.extracted() / "DEBIAN/shlibs").read_text(encoding="ascii")
        self.assertEqual([f"{name} 0 strata-repgenlib (>= {VERSION})" for name in (
            "libstrata_repgenlib", "libstrata_repgenlib_host")], shlibs.splitlines())
        self.assertIn("activate-noawait ldconfig",
                      (self.extracted() / "DEBIAN/triggers").read_text(encoding="ascii"))

    def test_purging_leaves_nothing_behind(self):
        as_root = root_command()
        root = self.folder / "root"
        self.addCleanup(self.tool, *as_root, "rm", "-rf", root)
        admin = root / "var/lib/dpkg"
        for name in ("info", "updates", "triggers"):
            (admin / name).mkdir(parents=True)
        (admin / "status").touch()
        env = {**os.environ, "PATH": "/usr/sbin:/usr/bin:/sbin:/bin"}
        dpkg = [*as_root, "dpkg", f"--root={root}", "--force-depends", "--log=/dev/null"]
        self.tool(*dpkg, "--install", package(), env=env)
        for name in debian_files():
            self.assertTrue(os.path.lexists(root / name), name)
        self.assertIn(VERSION, self.tool(root / "usr/bin/rgen", "--version",
                                         env={**env, "LD_LIBRARY_PATH": str(root / "usr/lib")}))
        self.tool(*dpkg, "--purge", "strata-repgenlib", env=env)
        left = {path.relative_to(root) for path in root.rglob("*")}
        self.assertEqual([], sorted(path for path in left if path.parts[0] != "var"))
        self.assertEqual([], [path for path in left if "strata" in str(path)])
        self.assertEqual(Path("var"), min(left))

    def test_a_fresh_debian_takes_it_uses_it_and_loses_it_again(self):
        check = SOURCE_FOLDER / "scripts/check-debian-package"
        printed = self.tool(*root_command(), check, package())
        self.assertIn("purged without leaving files", printed)

    def test_cases_fail_where_there_are_no_root_rights(self):
        refused = subprocess.CalledProcessError(1, "sudo")
        for error in (refused, FileNotFoundError("sudo")):
            with mock.patch("subprocess.run", side_effect=error), \
                    self.assertRaisesRegex(AssertionError, "^this case takes root rights, .*sudo"):
                root_command(user=1000)
        with mock.patch("subprocess.run"):
            self.assertEqual(["sudo", "-n", "env"], root_command(user=1000)[:3])
        self.assertEqual([], root_command(user=0))

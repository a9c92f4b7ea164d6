"""scripts/release in a small clone with stand-ins for the builds: which folders it replaces, in which
order it works, what it writes and what it says when it fails. And how a release is compared, and
how the check of the Debian package judges rgen doctor.

SPDX-License-Identifier: MIT
"""

import hashlib
import os
import re
import shlex
import shutil
import subprocess

from package_case import PackageCase
from program_case import SOURCE_FOLDER, linux_only

NOTES = "# strata_repgenlib 1.2.3\n"
HEADER = "".join(f"#define RGEN_VERSION_{name} {number}\n"
                 for name, number in (("MAJOR", 1), ("MINOR", 2), ("PATCH", 3)))
CPACK = ("[ -z \"${FAILING:-}\" ] || exit 1\npreset=${2#build/}\n"
         "echo package >\"$4/${preset%%/*}.package\"")
# Stand-ins for the programs that build; they record that they ran.
STAND_INS = {
    "scripts/setup": 'if [ "$1" = --list ]; then echo bash; else echo setup >>"$CALLS"; fi',
    "scripts/dependencies": '[ "$1" != --print-prefix ] || echo "$LIBRARIES/$2"',
    "programs/cmake": "true",
    "programs/python3": 'echo python3 >>"$CALLS"\ncase $2 in\n*/release_notes.py) printf '
                        f"{shlex.quote(NOTES)};;\n*) echo python 3.99 zlib 1.99;;\nesac",
    "programs/dpkg-query": 'printf "%s 1.0 amd64\\n" "$@"',
    "programs/cpack": CPACK,
}


@linux_only
class Release(PackageCase):

    def setUp(self):
        super().setUp()
        self.clone = self.folder / "clone"
        for name in ("scripts/release", "scripts/lib/console.sh", "scripts/lib/releases.sh",
                     "cmake/versions.env"):
            path = self.clone / name
            path.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(SOURCE_FOLDER / name, path)
        for name, text in STAND_INS.items():
            self.write(f"clone/{name}", f"#!/bin/sh\n{text}\n")
            (self.clone / name).chmod(0o755)
        self.write("clone/include/strata_repgenlib/rgen.h", HEADER)
        self.write("clone/.gitignore", "/build/\n")
        for flavour in ("linux", "windows"):
            self.write(f"libraries/{flavour}/sources.txt", "libxml2 12ab libxml2.orig.tar.xz\n")
        git = ["git", "-C", self.clone, "-c", "user.name=A", "-c", "user.email=a@b.example"]
        self.tool(*git, "init", "--quiet")
        self.tool(*git, "add", ".")
        self.tool(*git, "commit", "--quiet", "-m", "All")
        self.output = self.folder / "output"

    def release(self, folder, failing=""):
        """Exit code and output of a run."""
        env = {**os.environ, "PATH": f"{self.clone}/programs:{os.environ['PATH']}",
               "CALLS": str(self.folder / "calls"), "LIBRARIES": str(self.folder / "libraries"),
               "FAILING": failing, "NO_COLOR": "1"}
        run = subprocess.run([self.clone / "scripts/release", folder], env=env, text=True,
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT, check=False)
        return run.returncode, run.stdout

    def expect_refusal(self, folder, text):
        before = {path for path in self.folder.rglob("*") if ".git" not in path.parts}
        code, printed = self.release(folder)
        self.assertEqual((1, 1), (code, len(printed.splitlines())), printed)
        self.assertRegex(printed, text)
        self.assertEqual(before, {path for path in self.folder.rglob("*")
                                  if ".git" not in path.parts})

    def test_everything_is_in_the_folder_and_setup_runs_first(self):
        code, printed = self.release(self.output)
        self.assertEqual(0, code, printed)
        names = {"RELEASE-NOTES.md", "SHA256SUMS", "SOURCES", "linux.package",
                 "windows-mingw.package"}
        self.assertEqual(names, {path.name for path in self.output.iterdir()})
        calls = (self.folder / "calls").read_text(encoding="utf-8").split()
        self.assertEqual("setup", calls[0], calls)
        sources = (self.output / "SOURCES").read_text(encoding="utf-8")
        for line in ("linux libxml2 12ab libxml2.orig.tar.xz", "gcc-12 1.0 amd64", "bash 1.0 amd64",
                     "windows libxml2 12ab libxml2.orig.tar.xz", "python 3.99 zlib 1.99"):
            self.assertIn(f"{line}\n", sources)
        self.assertEqual([], list((self.clone / "build").iterdir()))

    def test_an_earlier_release_is_replaced(self):
        self.assertEqual(0, self.release(self.output)[0])
        (self.output / "linux.package").write_text("changed", encoding="utf-8")
        self.assertEqual(0, self.release(self.output)[0])
        self.assertEqual("package\n", (self.output / "linux.package").read_text(encoding="utf-8"))

    def test_other_folders_are_refused(self):
        empty = hashlib.sha256(b"").hexdigest()
        folders = {
            "sums alone": {"SHA256SUMS": ""},
            "other notes": {"SHA256SUMS": f"{empty}  RELEASE-NOTES.md\n",
                            "RELEASE-NOTES.md": "# something else 1.2.3\n"},
            "a file more": {"SHA256SUMS": f"{empty}  RELEASE-NOTES.md\n", "mine": "",
                            "RELEASE-NOTES.md": NOTES},
            "a folder more": {"SHA256SUMS": f"{empty}  RELEASE-NOTES.md\n", "mine/file": "",
                              "RELEASE-NOTES.md": NOTES},
            "a file less": {"SHA256SUMS": f"{empty}  RELEASE-NOTES.md\n{empty}  gone\n",
                            "RELEASE-NOTES.md": NOTES}}
        for name, files in folders.items():
            for path, text in files.items():
                self.write(f"{name}/{path}", text)
            self.expect_refusal(self.folder / name, "holds other files; name a new or empty folder")
        self.expect_refusal(self.write("a file", ""), "holds other files")

    def test_folders_of_the_clone_are_refused_unless_git_ignores_them(self):
        self.expect_refusal(self.clone / "docs", "in the clone, and git does not ignore it")
        self.expect_refusal(self.clone / ".git/release", "in the clone, and git does not ignore it")
        for folder in (self.clone, self.clone / "build", self.folder):
            self.expect_refusal(folder, "holds the folder in which releases are built")
        self.assertEqual(0, self.release(self.clone / "build/release")[0])

    def test_a_failure_says_where_the_logs_are_and_leaves_the_folder_alone(self):
        code, printed = self.release(self.output, failing="yes")
        self.assertEqual(1, code)
        logs = re.search(r"its logs are in (\S+), remove it", printed)
        self.assertTrue(logs, printed)
        self.assertTrue((self.clone / "build" / logs[1].rpartition("/")[2]).is_dir())
        self.assertFalse(self.output.exists())


@linux_only
class Comparison(PackageCase):
    """Functions of scripts/lib."""

    def bash(self, library, *words):
        """Exit code and output of a function of a script library."""
        script = f"set -euo pipefail; source {SOURCE_FOLDER}/scripts/lib/{library}; \"$@\""
        run = subprocess.run(["bash", "-c", script, "bash", *map(str, words)], text=True,
                             capture_output=True, check=False)
        self.assertEqual("", run.stderr)
        return run.returncode, run.stdout

    def test_a_patch_has_to_match_exactly(self):
        script = (f'set -euo pipefail; root={self.folder}; scripts={SOURCE_FOLDER}/scripts/lib; '
                  'source "$scripts/console.sh"; source "$scripts/sources.sh"; '
                  f'source_version[demo]=1.2-3; apply_patches demo "{self.folder}/demo"')
        self.write("cmake/third_party/demo-one.patch",
                   "Why it is there.\n\n--- a/file\n+++ b/file\n@@ -1,3 +1,3 @@\n 1\n-2\n+two\n 3\n")
        for text, code in (("1\n2\n3\n", 0), ("0\n1\n2\n3\n", 0), ("1\n2\n4\n", 1),
                           ("1\ntwo\n3\n", 1)):
            file = self.write("demo/file", text)
            run = subprocess.run(["bash", "-c", script, "test"], text=True, capture_output=True,
                                 stdin=subprocess.DEVNULL, check=False)
            self.assertEqual(code, run.returncode, run.stderr)
            if code:
                self.assertIn("The patch demo-one.patch does not fit demo 1.2-3.", run.stderr)
            wanted = text if code else text.replace("2", "two")
            self.assertEqual(wanted, file.read_text(encoding="utf-8"))

    def test_a_file_that_only_one_build_made_is_noticed(self):
        for name in ("SHA256SUMS", "RELEASE-NOTES.md", "first only", "same", "other"):
            self.write(f"first/{name}", name)
        for name in ("same", "second only"):
            self.write(f"second/{name}", name)
        self.write("second/other", "bytes")
        found = self.bash("releases.sh", "differing_files", self.folder / "first",
                          self.folder / "second")
        self.assertEqual((0, "first only\nother\nsecond only\n"), found)
        self.assertEqual((0, ""), self.bash("releases.sh", "differing_files", self.folder / "first",
                                            self.folder / "first"))

    def test_the_doctor_may_miss_an_engine_and_nothing_else(self):
        fine = ['ok    library: 1.2.3 (/usr/lib/libx.so)', "ok    report: was made",
                'ok    data directory: "/root/case", report types: 1',
                "FAIL  converter: no engine"]
        self.assertEqual(0, self.doctor(fine))
        self.assertEqual(0, self.doctor([*fine[:3], "ok    converter: browser"]))
        for line in range(3):
            self.assertEqual(1, self.doctor(fine[:line] + fine[line + 1:]), fine[line])
        self.assertEqual(1, self.doctor([*fine, "FAIL  Acquisition: no template for pdf"]))
        self.assertEqual(1, self.doctor(["rgen: error while loading the engine"]))

    def doctor(self, lines):
        self.write("log", "\n".join(lines) + "\n")
        return self.bash("doctor.sh", "is_healthy_without_engine", self.folder / "log")[0]

    def test_packaging_without_python_says_what_is_missing(self):
        text = (SOURCE_FOLDER / "packaging/make_packages.cmake.in").read_text(encoding="utf-8")
        self.write("make.cmake", re.sub(r"@\w+@", "", text))
        run = subprocess.run(["cmake", "-P", self.folder / "make.cmake"], text=True,
                             capture_output=True, check=False)
        self.assertEqual(1, run.returncode)
        self.assertIn("needs Python 3.11 or later", " ".join(run.stderr.split()))

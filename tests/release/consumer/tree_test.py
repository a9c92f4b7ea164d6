"""The installed tree: exactly the expected files, no broken links, no paths of the building
machine; programs find their library, manual pages and completion work.

SPDX-License-Identifier: MIT
"""

import json
import os
import re
import subprocess
import sys

from installed_case import (BUILD_FOLDER, CONFIGURATION, HERE, LIBDIR, MAJOR, THIRD_PARTY, VERSION,
                            InstalledCase, tool_environment)
from program_case import ON_WINDOWS, SOURCE_FOLDER, from_native, linux_only, windows_only

sys.path.append(str(SOURCE_FOLDER / "tests/release/documentation"))

import page_links  # In tests/release/documentation.

LISTS = ["installed_everywhere.txt",
         "installed_on_windows.txt" if ON_WINDOWS else "installed_on_linux.txt"]
# Checks that zsh loads the completion function from the folder "$1".
ZSH_DRIVER = """
fpath=("$1" $fpath)
autoload -U compinit && compinit -D -u
[[ $_comps[rgen] == _rgen ]] || exit 3
autoload +X -U _rgen || exit 4
print -r -- $functions[_rgen]
"""
BASH_DRIVER = 'source "$1" && complete -p rgen && declare -F _rgen'


def expected_files():
    """The paths of the lists, with the values of the build inserted."""
    names = set()
    for name in LISTS:
        for line in (HERE / name).read_text(encoding="utf-8").splitlines():
            if line and not line.startswith("#"):
                names.add(re.sub(r"^lib/", LIBDIR + "/", line).replace("{version}", VERSION)
                          .replace("{major}", str(MAJOR)).replace("{configuration}", CONFIGURATION))
    return names


class Tree(InstalledCase):

    def files(self):
        return [path for path in self.prefix.rglob("*") if path.is_symlink() or not path.is_dir()]

    def test_exactly_the_expected_files_are_there(self):
        found = {path.relative_to(self.prefix).as_posix() for path in self.files()}
        expected = expected_files()
        lists = " and ".join(LISTS)
        self.assertEqual([], sorted(expected - found), f"missing, but in {lists}")
        self.assertEqual([], sorted(found - expected), f"installed, but not in {lists}")

    def test_no_folder_is_empty(self):
        for path in self.prefix.rglob("*"):
            self.assertFalse(path.is_dir() and not any(path.iterdir()), path)

    def test_no_file_names_a_folder_of_the_building_machine(self):
        folders = [SOURCE_FOLDER, BUILD_FOLDER, THIRD_PARTY, self.first_place]
        names = [str(folder).encode() for folder in folders]
        for path in self.files():
            content = path.read_bytes()
            for name in names:
                self.assertNotIn(name, content, path)

    def test_links_of_documents_lead_to_what_is_installed(self):
        followed = 0
        for path in self.prefix.rglob("*.md"):
            for line, _, target in page_links.read_page(path).links():
                place = f"{path.relative_to(self.prefix)}:{line}"
                self.assertEqual("", page_links.link_problem(self.prefix, path, target), place)
                followed += 1
        self.assertGreater(followed, 50)

    def test_everybody_may_read_and_only_programs_are_executable(self):
        for path in self.files():
            mode = path.stat().st_mode
            self.assertEqual(0o444, mode & 0o444, path)
            is_binary = path.parent.name == "bin" or ".so" in path.name
            if not is_binary:
                self.assertEqual(0, mode & 0o111, path)

    @linux_only
    def test_the_links_lead_to_the_libraries(self):
        links = {path.name: os.readlink(path) for path in self.files() if path.is_symlink()}
        names = [f"lib{library}.so" for library in ("strata_repgenlib", "strata_repgenlib_host")]
        self.assertEqual({link: target for name in names for link, target in (
            (name, f"{name}.{MAJOR}"), (f"{name}.{MAJOR}", f"{name}.{VERSION}"))}, links)
        for name, run_path in zip(names, ([], ["$ORIGIN"])):
            dynamic = self.tool("readelf", "--wide", "--dynamic", self.library_folder / name)
            self.assertIn(f"Library soname: [{name}.{MAJOR}]", dynamic)
            self.assertEqual(run_path, re.findall(r"\(R(?:UN)?PATH\).*\[(.*)\]", dynamic), name)

    @windows_only
    def test_there_are_no_links(self):
        self.assertEqual([], [path for path in self.files() if path.is_symlink()])

    def test_the_programs_run_with_the_library_of_their_tree(self):
        document = json.loads(self.output_of(self.installed("rgen"), "--version", "--json"))
        self.assertEqual([VERSION, VERSION], [document["rgen"], document["library"][:len(VERSION)]])
        loaded = from_native(document["path"], self.folder).resolve()
        folder = self.prefix / "bin" if ON_WINDOWS else self.library_folder
        self.assertEqual(folder, loaded.parent)
        self.assertIn(VERSION, self.output_of(self.installed("vellum"), "--version"))

    def test_the_programs_make_the_sample_report(self):
        program = self.installed("rgen")
        self.output_of(program, "init", "case", "--quiet")
        self.output_of(program, "report", "-d", "case", "--data", "case/acquisition.json", "-o",
                       "report.html", "--quiet")
        self.assertIn(b"<html", self.read("report.html"))


@linux_only
class ForShells(InstalledCase):

    def test_manual_pages_are_shown_without_a_warning(self):
        for name in ("rgen", "vellum"):
            page = self.prefix / f"share/man/man1/{name}.1"
            outcome = subprocess.run(
                ["man", "--local-file", "--warnings", str(page)], capture_output=True, text=True,
                env=tool_environment({"MANWIDTH": "100", "MAN_KEEP_FORMATTING": ""}), check=False)
            self.assertEqual((0, ""), (outcome.returncode, outcome.stderr))
            self.assertIn(f"{name.upper()}(1)", outcome.stdout)
            self.assertIn(VERSION, outcome.stdout)

    def test_bash_loads_its_completion(self):
        script = self.prefix / "share/bash-completion/completions/rgen"
        printed = self.tool("bash", "--norc", "-c", BASH_DRIVER, "driver", script)
        self.assertEqual(["complete -F _rgen rgen", "_rgen"], printed.splitlines())

    def test_zsh_loads_its_completion(self):
        folder = self.prefix / "share/zsh/site-functions"
        printed = self.tool("zsh", "-f", "-c", ZSH_DRIVER, "driver", folder,
                            env={"HOME": str(self.folder)})
        self.assertIn("_arguments", printed)

    def test_the_completion_is_what_the_program_prints(self):
        for shell, name in (("bash", "bash-completion/completions/rgen"),
                            ("zsh", "zsh/site-functions/_rgen")):
            printed = self.output_of(self.installed("rgen"), "completion", shell)
            self.assertEqual(printed, (self.prefix / "share" / name).read_text(), shell)

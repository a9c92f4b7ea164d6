"""Completion scripts and the version.

SPDX-License-Identifier: MIT
"""

import re
import shutil
import subprocess
import unittest

from cli_case import ON_WINDOWS, PROGRAM, CliCase, copy_program, from_native

COMMANDS = {"init", "report", "persist", "dump", "simulate", "explain", "types", "doctor",
            "completion"}

# Sources a script, finds the completion function that it registers and calls it as the shell does.
DRIVER = """
source "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
COMP_LINE="${COMP_WORDS[*]}"
COMP_POINT=${#COMP_LINE}
registered=$(complete -p rgen) || exit 9
function_name=$(sed -E 's/.* -F +([^ ]+) .*/\\1/' <<<"$registered")
compopt() { :; }
previous=
((COMP_CWORD == 0)) || previous=${COMP_WORDS[COMP_CWORD - 1]}
"$function_name" rgen "${COMP_WORDS[COMP_CWORD]}" "$previous"
printf '%s\\n' "${COMPREPLY[@]}"
"""


class Completion(CliCase):

    def script(self, shell):
        result = self.rgen("completion", shell)
        self.assertEqual((0, ""), (result.code, result.err))
        return self.write(f"completion.{shell}", result.text)

    def completions(self, *words):
        """What bash offers after these words; the last one is being typed."""
        outcome = subprocess.run(
            ["bash", "--norc", "-c", DRIVER, "driver", self.script("bash"), "rgen", *words],
            cwd=self.folder, capture_output=True, text=True, env=self.environment(
                {"PATH": "/usr/bin:/bin"}), check=False)
        self.assertEqual((0, ""), (outcome.returncode, outcome.stderr))
        return {word.strip() for word in outcome.stdout.split("\n") if word.strip()}

    def test_scripts_end_lines_as_shells_want_them(self):
        for shell in ("bash", "zsh"):
            self.assertNotIn(b"\r", self.rgen("completion", shell).out)

    def test_bash_accepts_its_script(self):
        outcome = subprocess.run(["bash", "-n", self.script("bash")], capture_output=True,
                                 text=True, check=False)
        self.assertEqual((0, ""), (outcome.returncode, outcome.stderr))

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_zsh_accepts_its_script(self):
        outcome = subprocess.run(["zsh", "-n", self.script("zsh")], capture_output=True,
                                 text=True, check=False)
        self.assertEqual((0, ""), (outcome.returncode, outcome.stderr))

    def test_the_zsh_script_names_what_it_completes(self):
        text = self.script("zsh").read_text()
        self.assertTrue(text.startswith("#compdef rgen"), text[:100])
        for command in COMMANDS:
            self.assertIn(command, text)

    def test_commands(self):
        self.assertLessEqual(COMMANDS, self.completions(""))
        self.assertEqual({"report"}, self.completions("rep"))
        self.assertEqual({"get", "set", "unset", "replace"},
                         {word for word in self.completions("persist", "")
                          if not word.startswith("-")})
        self.assertEqual({"unset"}, self.completions("persist", "un"))

    def test_options(self):
        self.assertEqual({"--format"}, self.completions("report", "--form"))
        self.assertLessEqual({"--set", "--show-data"}, self.completions("report", "--s"))
        offered = self.completions("report", "--")
        for option in ("--data-dir", "--type", "--output", "--lang", "--mode", "--base",
                       "--no-convert", "--timing", "--batch", "--json", "--quiet", "--help"):
            self.assertIn(option, offered)
        self.assertIn("--sample", self.completions("init", "--"))
        self.assertNotIn("--lang", self.completions("init", "--"))

    def test_values(self):
        for option in ("-f", "--format"):
            self.assertEqual({"html", "pdf", "txt"}, self.completions("report", option, ""))
        self.assertEqual({"html"}, self.completions("report", "--format", "h"))
        self.assertEqual({"file", "bytes", "delete-on-close"},
                         self.completions("report", "--mode", ""))
        self.assertEqual({"bash", "zsh"}, {word for word in self.completions("completion", "")
                                           if not word.startswith("-")})


class Version(CliCase):
    has_data_dir = False

    def expect_library(self, text, folder):
        path = from_native(text, self.folder)
        self.assertTrue(path.is_file(), text)
        self.assertIn("strata_repgenlib", path.name)
        self.assertTrue(path.resolve().parent.samefile(folder), text)

    def test_three_lines(self):
        result = self.rgen("--version")
        self.assertEqual((0, ""), (result.code, result.err))
        lines = result.text.splitlines()
        self.assertRegex(lines[0], r"^rgen \d+\.\d+\.\d+$")
        self.assertEqual(3, len(lines))
        for line, name in zip(lines[1:], ("strata_repgenlib", "strata_repgenlib_host")):
            path = re.fullmatch(name + r" \d+\.\d+\.\d+ \((.+)\)", line)
            self.expect_library(path.group(1), PROGRAM.parent)

    def test_the_document(self):
        document = self.rgen("--version", "--json").document
        self.assertTrue(document["ok"])
        self.assertRegex(document["rgen"], r"^\d+\.\d+\.\d+$")
        self.assertRegex(document["library"], r"\d+\.\d+\.\d+")
        self.assertEqual(document["library"], document["host"])
        self.expect_library(document["path"], PROGRAM.parent)
        self.expect_library(document["hostPath"], PROGRAM.parent)

    def test_a_copy_in_a_folder_of_any_name_finds_its_own_library(self):
        copy = copy_program(self.folder / "программа für alle")
        document = self.rgen("--version", "--json", program=copy).document
        self.expect_library(document["path"], copy.parent)
        self.expect_library(document["hostPath"], copy.parent)
        self.assertEqual(ON_WINDOWS, "\\" in document["path"])

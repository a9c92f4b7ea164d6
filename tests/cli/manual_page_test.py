"""The manual page and docs/rgen.md list exactly the commands and options of the program.

SPDX-License-Identifier: MIT
"""

import re

import command_pages
from cli_case import CliCase

PAGE = command_pages.MANUAL_PAGE


def words_of_page():
    """The page as text: font changes gone, hyphens plain."""
    text = re.sub(r"\\f[A-Z]", "", PAGE.read_text(encoding="utf-8"))
    return text.replace("\\-", "-")


class ManualPage(CliCase):
    has_data_dir = False

    def help_of(self, *command):
        result = self.rgen(*command, "--help")
        self.expect_done(result)
        return result.text

    def commands_of(self, *command):
        """The commands that a help text lists, each with the words before it."""
        listed = self.help_of(*command).partition("\nSubcommands:\n")[2]
        return [(*command, name) for name in re.findall(r"^  ([a-z]+) ", listed, re.M)]

    def every_command(self, *command):
        found = [command]
        for inner in self.commands_of(*command):
            found += self.every_command(*inner)
        return found

    def test_the_lists_of_commands_and_options_are_those_of_the_program(self):
        told = self.rgen("--help", "--json")
        self.expect_done(told)
        for path, text in command_pages.pages(told.out):
            self.assertEqual(text, path.read_text(encoding="utf-8"),
                             "write the lists anew: tests/cli/command_pages.py RGEN --accept")

    def test_every_command_and_option_is_described(self):
        commands = self.every_command()
        self.assertGreater(len(commands), 10)
        options = set()
        for command in commands:
            options.update(re.findall(r"^ +(?:-\w,)?(--[a-z-]+)", self.help_of(*command), re.M))
        self.assertGreater(len(options), 15)
        for text in (words_of_page(), command_pages.DOCUMENT.read_text(encoding="utf-8")):
            for command in commands:
                self.assertIn(" ".join(command), text)
            for option in sorted(options):
                self.assertRegex(text, option + r"(?![a-z-])")

    def test_no_option_is_described_that_does_not_exist(self):
        known = set()
        for command in self.every_command():
            known.update(re.findall(r"--[a-z-]+", self.help_of(*command)))
        self.assertEqual(set(), set(re.findall(r"--[a-z][a-z-]*", words_of_page())) - known)

    def test_every_help_text_begins_with_what_it_is_for_and_examples(self):
        for command in self.every_command():
            text = self.help_of(*command)
            self.assertRegex(text, r"\A\S.*\n")
            self.assertLess(0, text.find("\nExamples:\n"), command)
            self.assertLess(text.find("\nExamples:\n"), text.find("\nOptions:\n"), command)

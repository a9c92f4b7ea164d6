"""The manual page names every command and option that the help texts name, and no others.

SPDX-License-Identifier: MIT
"""

import re

from cli_case import SOURCE_FOLDER, CliCase

PAGE = SOURCE_FOLDER / "tools/rgen/rgen.1.in"


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
        """The commands that a help text lists, with the words that lead to them."""
        listed = self.help_of(*command).partition("\nSubcommands:\n")[2]
        return [(*command, name) for name in re.findall(r"^  ([a-z]+) ", listed, re.M)]

    def every_command(self, *command):
        found = [command]
        for inner in self.commands_of(*command):
            found += self.every_command(*inner)
        return found

    def test_every_command_and_option_is_described(self):
        page = words_of_page()
        commands = self.every_command()
        self.assertGreater(len(commands), 10)
        options = set()
        for command in commands:
            self.assertIn(" ".join(command), page)
            options.update(re.findall(r"^ +(?:-\w,)?(--[a-z-]+)", self.help_of(*command), re.M))
        self.assertGreater(len(options), 15)
        for option in sorted(options):
            self.assertRegex(page, option + r"(?![a-z-])")

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

"""The parts of rgen's manual page and of docs/rgen.md that list commands and options, made from
what "rgen --help --json" prints.

Usage: command_pages.py RGEN [--accept]      --accept writes these parts anew

In the pages a part lies between a comment "generated: NAME" and a comment "end of generated".

SPDX-License-Identifier: MIT
"""

import json
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
MANUAL_PAGE = ROOT / "tools/rgen/rgen.1.in"
DOCUMENT = ROOT / "docs/rgen.md"


class Table:
    """The commands with their options."""

    def __init__(self, document):
        self.commands = document["commands"]
        self.runnable = [command for command in self.commands if command["runs"]]
        self.root = self.commands[0]
        users = {}
        for command in self.runnable:
            for option in command["options"]:
                users.setdefault(self.key(option), []).append(command["name"])
        self.users = users

    @staticmethod
    def key(option):
        return option["names"][-1], option["details"]

    def is_common(self, option):
        """Every command takes it, or it is an option of rgen without a command."""
        return self.key(option) not in self.users or \
            len(self.users[self.key(option)]) == len(self.runnable)

    def is_shared(self, option):
        return not self.is_common(option) and len(self.users[self.key(option)]) > 1

    def is_own(self, option):
        return not self.is_common(option) and not self.is_shared(option)

    def options(self, wanted, commands=None):
        """The options for which `wanted` holds, each once."""
        found = {}
        for command in commands or self.commands:
            for option in filter(wanted, command["options"]):
                found.setdefault(self.key(option), option)
        return list(found.values())

    def group(self, words):
        """The runnable commands of "dump, simulate", and those inside "persist"."""
        names = words.split(", ")
        return [command for command in self.runnable
                if command["name"] in names or command["name"].split(" ")[0] in names]


def sentence(entry):
    return entry["details"] or entry["summary"] + "."


def operand_text(operand):
    """STATUS as "[STATUS]", a required NAME of many as "NAME..."."""
    text = "|".join(operand["choices"]) or operand["name"]
    text += "..." if operand["repeats"] else ""
    return text if operand["required"] and not operand["unless"] else f"[{text}]"


def usages(command):
    """Name and arguments of the command, once for each alternative of required options."""
    ways = [[]]
    for option in filter(lambda each: each["required"], command["options"]):
        ways = [[option]]
        if option["unless"]:
            ways.append([each for each in command["options"]
                         if each["names"][-1] == option["unless"]])
    for way in ways:
        words = [f"{option['names'][0]} {option['argument']}" for option in way]
        words += [operand_text(operand) for operand in command["operands"]]
        yield command["name"], words


class Markdown:
    begin, end = "<!-- generated: {} -->\n", "<!-- end of generated -->\n"

    def __init__(self, table):
        self.table = table

    @staticmethod
    def code(text):
        return f"`{text}`"

    def row(self, *cells):
        return "| " + " | ".join(cell.replace("|", "\\|") for cell in cells) + " |\n"

    def rows(self, head, rows):
        return self.row(*head) + "|" + "---|" * len(head) + "\n" + "".join(
            self.row(*row) for row in rows)

    def names(self, option):
        *short, name = option["names"]
        return ", ".join(map(self.code, [*short, f"{name} {option['argument']}".strip()]))

    def long_names(self, options):
        return ", ".join(self.code(option["names"][-1]) for option in options) or "none"

    def commands(self):
        return self.rows(["command", "does"], [
            [self.code("rgen " + command["name"]), command["summary"]]
            for command in self.table.runnable])

    def common_options(self):
        return self.rows(["option", "meaning"], [
            [self.names(option), option["details"]]
            for option in self.table.options(self.table.is_common)])

    def shared_options(self):
        return self.rows(["option", "meaning", "commands"], [
            [self.names(option), option["details"],
             ", ".join(map(self.code, self.table.users[self.table.key(option)]))]
            for option in self.table.options(self.table.is_shared)])

    def options_of(self, words):
        commands = self.table.group(words)
        several = len(commands) > 1
        text = ""
        if several:
            text += self.rows(["command", "does", "shared options"], [
                [self.code(" ".join(["rgen", name, *usage])), sentence(command),
                 self.long_names(filter(self.table.is_shared, command["options"]))]
                for command in commands for name, usage in usages(command)]) + "\n"
        own = self.table.options(self.table.is_own, commands)
        if own:
            text += self.rows(["option", "meaning"], [
                [self.names(option), (f"`{self.table.users[self.table.key(option)][0]}`: "
                                      if several else "") + option["details"]]
                for option in own]) + "\n"
        shared = self.table.options(self.table.is_shared, commands)
        if shared and not several:
            text += f"Shared options: {self.long_names(shared)}.\n"
        return text.rstrip("\n") + "\n"


class Roff:
    begin, end = '.\\" generated: {}\n', '.\\" end of generated\n'

    def __init__(self, table):
        self.table = table

    @staticmethod
    def escaped(text):
        return text.replace("\\", "\\e").replace("-", "\\-")

    def bold(self, text):
        return f"\\fB{self.escaped(text)}\\fP"

    def usage(self, name, words):
        return " ".join([self.bold(f"rgen {name}"), *map(self.word, words)])

    def word(self, text):
        """Words in capitals are for the reader to replace, all others are typed as they are."""
        return re.sub(r"[A-Z]+|-*[a-z][a-z-]*",
                      lambda match: f"\\fI{match[0]}\\fP" if match[0].isupper()
                      else self.bold(match[0]), text)

    def sentences(self, text):
        """One for each line; code in bold."""
        text = re.sub(r"\. (?=[A-Z`])", ".\n", text)
        return "".join(
            self.bold(part[1:-1]) if part.startswith("`") else self.escaped(part)
            for part in re.split(r"(`[^`]*`)", text)) + "\n"

    def names(self, option):
        *short, name = option["names"]
        last = self.word(f"{name} {option['argument']}".strip())
        return ", ".join([*map(self.bold, short), last])

    def entries(self, options):
        return "".join(f".TP\n{self.names(option)}\n{self.sentences(option['details'])}"
                       for option in options)

    def takes(self, command):
        shared = list(filter(self.table.is_shared, command["options"]))
        names = ", ".join(self.bold(option["names"][-1]) for option in shared)
        return f"Takes the shared options {names}.\n" if shared else ""

    def synopsis(self):
        lines = [self.usage(name, ["[OPTIONS]", *words])
                 for command in self.table.runnable for name, words in usages(command)]
        lines.append(self.usage("--version", ["[--json]"]))
        return "\n.br\n".join(lines) + "\n"

    def common_options(self):
        return self.entries(self.table.options(self.table.is_common))

    def shared_options(self):
        return self.entries(self.table.options(self.table.is_shared))

    def options_of(self, words):
        commands = self.table.group(words)
        text = ""
        for command in commands:
            if len(commands) > 1:
                for usage in usages(command):
                    text += f".TP\n{self.usage(*usage)}\n{self.sentences(sentence(command))}"
            text += self.takes(command)
            own = self.entries(filter(self.table.is_own, command["options"]))
            text += f".RS\n{own}.RE\n" if own and len(commands) > 1 else own
        return text


def part(writer, name):
    if name.startswith("options of "):
        return writer.options_of(name.removeprefix("options of "))
    return getattr(writer, name.replace(" ", "_"))()


def page_with_parts(text, writer):
    """The page with its generated parts replaced."""
    before, after = writer.begin.split("{}")
    pattern = (re.escape(before) + r"([^\n]*)" + re.escape(after) + r"(?:[^\n]*\n)*?"
               + re.escape(writer.end))
    return re.sub(pattern, lambda match: writer.begin.format(match[1]) + part(writer, match[1])
                  + writer.end, text)


def pages(program_output):
    """Each page with the text that it should have."""
    table = Table(json.loads(program_output))
    for path, writer in ((MANUAL_PAGE, Roff(table)), (DOCUMENT, Markdown(table))):
        yield path, page_with_parts(path.read_text(encoding="utf-8"), writer)


def main():
    program, *options = sys.argv[1:]
    told = subprocess.run([program, "--help", "--json"], capture_output=True, check=True).stdout
    for path, text in pages(told):
        if options == ["--accept"]:
            path.write_text(text, encoding="utf-8")
        elif path.read_text(encoding="utf-8") != text:
            sys.exit(f"{path.relative_to(ROOT)} differs from \"rgen --help --json\"; "
                     f"write it anew: {Path(__file__).relative_to(ROOT)} {program} --accept")


if __name__ == "__main__":
    main()

"""Executes the fenced blocks of a page, from top to bottom, in one temporary folder.

The blocks of the language sh share one session: a block starts with the folder and the exported
variables of the previous one. Comments before a block are marks:

    not run: REASON       the block is not executed
    file: NAME            the block is written to this file, for later blocks
    output                the block is the output of the previous one; "..." matches any text
    exit code: NUMBER     the exit code of the block, instead of 0
    build folder: NAME    makes a link to the build folder with this name
    inside: PARAMETERS    the block (c, cpp, csharp, rust) is the body of a function with these
                          parameters

SPDX-License-Identifier: MIT
"""

import json
import re
import subprocess
import xml.etree.ElementTree as ElementTree

import compiled_blocks

MARKS = {"not run", "file", "output", "exit code", "inside", "build folder"}
LONGEST_RUN = 120
FRAGMENT = ('<fragment xmlns:xsl="http://www.w3.org/1999/XSL/Transform"'
            ' xmlns:libxslt="http://xmlsoft.org/XSLT/namespace">\n')
SESSION = """[[ ! -e {state} ]] || source {state}
set -euo pipefail
{text}
{{ declare -px | grep -v ' BASHOPTS=\\| SHELLOPTS=' || true; printf 'cd %q\\n' "$PWD"; }} >{state}
"""


class BlockFailure(Exception):
    """A block failed; the text is the reason."""


def matches(expected, actual):
    """True if the text is as expected. A line "..." matches any lines, "..." in a line any
    characters."""
    pattern = ""
    for line in expected.rstrip().splitlines():
        if line.strip() == "...":
            pattern += r"(?:.*\n)*?"
        else:
            parts = [re.escape(part) for part in line.rstrip().split("...")]
            pattern += ".*".join(parts) + r"[ \t]*\n"
    return re.fullmatch(pattern, actual.rstrip() + "\n") is not None


def run(command, folder, environment, given=None):
    """The exit code, and the output of both streams."""
    try:
        done = subprocess.run(command, cwd=folder, env=environment, input=given, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=LONGEST_RUN,
                              **({} if given is not None else {"stdin": subprocess.DEVNULL}))
    except subprocess.TimeoutExpired as error:
        raise BlockFailure("does not end") from error
    return done.returncode, done.stdout


class PageRunner:
    """Runs the blocks of a page. `surroundings` has `environment` (variables), `includes` (folders
    of headers), `bindings` (their folder) and `build_folder`."""

    def __init__(self, page, folder, surroundings):
        self.page = page
        self.folder = folder
        self.surroundings = surroundings
        self.output = None

    def problems(self):
        """Runs the blocks up to the first one that fails."""
        found = list(self.page.problems)
        for block in self.page.blocks:
            try:
                self.run_block(block)
            except BlockFailure as failure:
                found.append(f"{self.page.path}:{block.line}: {failure}")
                break
        return found

    def run_block(self, block):
        unknown = set(block.marks) - MARKS
        if unknown:
            raise BlockFailure(f"there is no mark {', '.join(sorted(unknown))}")
        if not block.language:
            raise BlockFailure("the block has no language")
        if "not run" in block.marks:
            if not block.marks["not run"]:
                raise BlockFailure("\"not run\" needs a reason")
        elif "output" in block.marks:
            self.compare(block)
        elif "file" in block.marks:
            self.check_text(block)
            target = self.folder / block.marks["file"]
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_text(block.text, encoding="utf-8")
        else:
            if "build folder" in block.marks:
                link = self.folder / block.marks["build folder"]
                link.parent.mkdir(parents=True, exist_ok=True)
                link.symlink_to(self.surroundings.build_folder)
            self.execute(block)

    def compare(self, block):
        if self.output is None:
            raise BlockFailure("no block before this one has an output")
        if not matches(block.text, self.output):
            raise BlockFailure("the output differs:\n" + self.output)
        self.output = None

    def check_text(self, block):
        """Checks the syntax of a block."""
        try:
            if block.language == "json":
                json.loads(block.text)
            elif block.language == "ndjson":
                for line in block.text.splitlines():
                    json.loads(line)
            elif block.language in ("xml", "xsl"):
                whole = block.text.startswith("<?xml")
                text = block.text if whole else f"{FRAGMENT}{block.text}</fragment>"
                ElementTree.fromstring(text)
        except (ValueError, ElementTree.ParseError) as error:
            raise BlockFailure(f"is not {block.language}: {error}") from error

    def execute(self, block):
        if block.language in ("json", "ndjson", "xml", "xsl"):
            self.check_text(block)
        elif block.language in compiled_blocks.PRELUDES:
            self.compile(block)
        elif block.language == "sh":
            state = self.folder.parent / "session"
            text = SESSION.format(state=f"'{state}'", text=block.text)
            self.start(block, ["bash", "-c", text, str(self.page.path)])
        elif block.language == "python":
            self.start(block, ["python3", "-"], block.text)
        else:
            raise BlockFailure(f"the language {block.language} cannot be run; mark the block")

    def start(self, block, command, given=None):
        code, self.output = run(command, self.folder, self.surroundings.environment, given)
        expected = int(block.marks.get("exit code", "0"))
        if code != expected:
            raise BlockFailure(f"ends with {code} instead of {expected}:\n{self.output}")

    def compile(self, block):
        source = self.folder.parent / f"block.{block.language}"
        source.write_text(compiled_blocks.source_of(block), encoding="utf-8")
        for command in compiled_blocks.commands_for(block.language, source, self.surroundings):
            code, output = run(command, self.folder, self.surroundings.environment)
            if code != 0:
                raise BlockFailure("does not compile:\n" + output)

"""Reads the project's Markdown: fenced blocks with the comments before them, headings with their
anchors, links and texts in backticks.

SPDX-License-Identifier: MIT
"""

import re
from dataclasses import dataclass, field

FENCE = re.compile(r"(```+)\s*(\S*)\s*$")
COMMENT = re.compile(r"<!--\s*(.*?)\s*-->\s*$")
HEADING = re.compile(r"(#{1,6})\s+(.+?)\s*$")
LINK = re.compile(r"(!?)\[((?:[^\[\]]|\[[^\]]*\])*)\]\(([^()\s]+)\)")
CODE = re.compile(r"(`+)(.+?)\1")


@dataclass
class Block:
    """A fenced block; `line` is that of its fence, `marks` are the comments before it."""
    language: str
    text: str
    line: int
    marks: dict = field(default_factory=dict)


@dataclass
class Page:
    path: object
    blocks: list = field(default_factory=list)
    headings: list = field(default_factory=list)
    prose: list = field(default_factory=list)
    problems: list = field(default_factory=list)

    def anchors(self):
        """The anchors of the headings, as code hosts make them."""
        found = []
        for _, _, title in self.headings:
            anchor = anchor_of(title)
            found.append(f"{anchor}-{found.count(anchor)}" if anchor in found else anchor)
        return found

    def links(self):
        """Line, text and target of each link outside of code."""
        for line, text in self.prose:
            for match in LINK.finditer(CODE.sub(lambda code: "`" * len(code.group(0)), text)):
                yield line, match.group(2), match.group(3)

    def code(self):
        """Line and text of each text in backticks."""
        for line, text in self.prose:
            for match in CODE.finditer(text):
                yield line, match.group(2).strip()


def anchor_of(title):
    plain = re.sub(r"[`*]", "", LINK.sub(r"\2", title)).lower()
    return re.sub(r"[^\w\- ]", "", plain).replace(" ", "-")


def take_marks(lines, number, page):
    """The comments directly before the fence at index `number`: "name: value" or "name"."""
    marks = {}
    while number > 0 and COMMENT.match(lines[number - 1]):
        number -= 1
        name, _, value = COMMENT.match(lines[number]).group(1).partition(":")
        marks[name.strip()] = value.strip()
        page.prose.pop()
    return marks


def read_page(path):
    """Parses a page; syntax errors are in its problems."""
    page = Page(path)
    lines = path.read_text(encoding="utf-8").splitlines()
    number = 0
    while number < len(lines):
        fence = FENCE.match(lines[number])
        if not fence:
            heading = HEADING.match(lines[number])
            if heading:
                page.headings.append((number + 1, len(heading.group(1)), heading.group(2)))
            page.prose.append((number + 1, lines[number]))
            if "`" in CODE.sub("", lines[number]):
                page.problems.append(f"{path}:{number + 1}: a text in backticks has no end")
            number += 1
            continue
        end = number + 1
        while end < len(lines) and lines[end].strip() != fence.group(1):
            end += 1
        if end == len(lines):
            page.problems.append(f"{path}:{number + 1}: the block has no end")
        text = "".join(line + "\n" for line in lines[number + 1:end])
        page.blocks.append(
            Block(fence.group(2), text, number + 1, take_marks(lines, number, page)))
        number = end + 1
    return page


def project_pages(root):
    """The pages whose blocks and links are checked."""
    pages = [root / "README.md", root / "CONTRIBUTING.md", root / "CHANGELOG.md"]
    pages += sorted((root / "docs").glob("*.md"))
    pages += sorted((root / "bindings").glob("*/README.md"))
    return [path for path in pages if path.is_file()]

#!/usr/bin/env python3
"""Prepares a file for Doxygen, which calls this for each of its inputs and reads standard output.

Pages: headings get anchors, links between pages become those of the site, texts in backticks that
name a page or a function become links. Headers: the comment at the top becomes the description of
the file, with its headings; "Ownership:", "Threads:", "Exceptions:" and "Units:" become paragraphs
with a title; functions, statuses and headings that are mentioned become links.

SPDX-License-Identifier: MIT
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
HEADER = ROOT / "include/strata_repgenlib/rgen.h"
STATUSES = HEADER.with_name("rgen_status.h")
FENCE = re.compile(r"```")
HEADING = re.compile(r"(#{1,6}) (.+?)\s*$")
LINK = r"(!?)\[((?:[^\[\]]|\[[^\]]*\])*)\]\(([^()\s]+)\)"
CODE = r"(`+)(.+?)\4"
TOKEN = re.compile(f"{LINK}|{CODE}")
# Comments that say how a block is tested are not for readers.
COMMENT = re.compile(r"<!--.*?-->\s*$")
CONVENTION = re.compile(r"^( \*)   (?=\S)", re.M)
PARAGRAPH = re.compile(r"(?<=[*.]) (Ownership|Threads|Exceptions|Units): (\w+(?:::)?)")
# The part of rgen.h that differs between the systems is not for readers.
SYSTEM_PART = re.compile(r"/\*\n \* RGEN_API marks.*?(?=#ifdef __cplusplus)", re.S)
ELEMENT = re.compile(r"<(/?(?:data|properties|property)\b[^<>]*)>")


def page_name(path):
    """Doxygen's name of a page, such as page_docs_host_guide."""
    return "page_" + re.sub(r"\W", "_", path.relative_to(ROOT).with_suffix("").as_posix())


def plain_text(title):
    """A title without the marks of links and code."""
    return TOKEN.sub(lambda token: token.group(2) or token.group(5) or "", title).replace("`", "")


def anchor_of(path, title):
    """The anchor of a heading in the site, from its title or from the anchor that code hosts give it."""
    plain = re.sub(r"[^\w\- ]", "", plain_text(title).lower()).replace(" ", "-")
    return f"{page_name(path)}_{re.sub(r'[^a-z0-9]', '_', plain)}"


def escaped(text):
    """The text of a code span for Doxygen, which knows no escapes in backticks of its own."""
    text = text.replace("\\|", "|").replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
    text = text.replace('"', "&quot;").replace("'", "&apos;")
    text = re.sub(r"^ | $|(?<= ) ", "&nbsp;", text)
    # Addresses in code are no links.
    return re.sub(r"---?|[\\@#%*$|]", r"\\\g<0>", text).replace("://", ":<span></span>//")


def functions():
    return set(re.findall(r"\bRGEN_CALL\s+(rgen_\w+)\s*\(", HEADER.read_text(encoding="utf-8")))


class PageFilter:
    def __init__(self, path):
        self.path = path
        self.functions = functions()
        self.is_main = path == ROOT / "README.md"
        self.anchors = set()
        self.levels = set()

    def reference(self, target, text):
        """A link to another page, as HTML of the Doxygen site; empty for other targets."""
        name, _, anchor = target.partition("#")
        file = (self.path.parent / name).resolve() if name else self.path
        if "://" in target or file.suffix not in (".md", ".h", ".hpp"):
            return ""
        if file.suffix != ".md":
            reference = file.name.replace("_", "__").replace(".", "_8")
            return f'<a class="el" href="{reference}.html">{text}</a>'
        page = "index" if file == ROOT / "README.md" else page_name(file)
        place = f"#{anchor_of(file, anchor)}" if anchor else ""
        return f'<a class="el" href="{page}.html{place}">{text}</a>'

    def token(self, match):
        mark, text, target, _, code = match.groups()
        if mark:
            return f'<img src="{Path(target).name}" alt="{text}"/>'
        if target:
            label = TOKEN.sub(lambda token: f"<code>{escaped(token.group(5))}</code>", text)
            return self.reference(target, label) or match.group(0)
        if re.fullmatch(r"[\w./-]+\.md", code) and (ROOT / code).is_file():
            above = "../" * (len(self.path.relative_to(ROOT).parts) - 1)
            return self.reference(above + code, f"<code>{code}</code>")
        if code in self.functions:
            return f'@ref {code} "{code}"'
        return f"<code>{escaped(code)}</code>"

    def prose(self, line):
        heading = HEADING.match(line)
        return self.heading(*heading.groups()) if heading else TOKEN.sub(self.token, line)

    def heading(self, marks, title):
        """Doxygen counts heading levels from the page's title, and allows no gaps."""
        plain = plain_text(title)
        if len(marks) == 1:
            return f"# {plain}" if self.is_main else f"# {plain} {{#{page_name(self.path)}}}"
        anchor = anchor_of(self.path, title)
        while anchor in self.anchors:
            anchor += "_1"
        self.anchors.add(anchor)
        level = sum(1 for used in self.levels if 1 < used <= len(marks))
        return f"{'#' * level} {plain} {{#{anchor}}}"

    def run(self, text):
        self.levels = {len(marks) for marks in re.findall(r"(?m)^(#+) ", text)}
        in_code = False
        for line in text.splitlines():
            if FENCE.match(line):
                in_code = not in_code
            if in_code or FENCE.match(line):
                yield line
            elif not COMMENT.match(line):
                yield self.prose(line)


def reference_of(name, text):
    return f'@ref {name} "{text}"'


def linked_comment(line, headings, names):
    """A line of a comment in which functions, statuses and the headings at the top are links."""
    is_comment = line.lstrip().startswith(("* ", "/** "))
    if not is_comment or "@file" in line or line.count('"') % 2:
        return line
    for heading, anchor in headings.items():
        # A whole heading, not a part of one of another file.
        whole = rf"(?<![A-Z] )\b{heading}\b(?! [A-Z][A-Z])"
        line = re.sub(whole, reference_of(anchor, heading), line)
    line = line.replace('"\\"', r'"<tt>\\</tt>"')
    return re.sub(r'"[^"]*"|\b(?:rgen|RGEN)_\w+\b(?!\()',
                  lambda word: reference_of(word.group(0), word.group(0))
                  if word.group(0) in names else word.group(0), line)


def titled_paragraphs(line):
    """A line in which "Threads:" and the like begin a paragraph with a title. Lines keep their
    indentation: Doxygen treats text further to the right as code."""
    margin = re.match(r"\s*", line).group(0)

    def titled(found):
        title, word = found.groups()
        word = word if "::" in word else word[0].upper() + word[1:]
        return f"\n{margin}* @par {title}\n{margin}* {word}"

    return PARAGRAPH.sub(titled, line)


def header_text(text, name):
    """The first comment as the description of the file, with headings that can be referred to."""
    end = text.index("*/")
    top, rest = text[:end], text[end:]
    titles = re.findall(r"^ \* ([A-Z][A-Z ]+)$", top, flags=re.M)
    stem = re.sub(r"\W", "_", name)
    headings = {title: f"{stem}_{title.lower().replace(' ', '_')}" for title in titles}
    top = top.replace("/*\n", f"/**\n * @file {name}\n *\n", 1)
    top = re.sub(r"^ \* SPDX.*\n", "", CONVENTION.sub(r"\1 ", top), flags=re.M)
    rest = ELEMENT.sub(r"\\<\1\\>", SYSTEM_PART.sub("", rest))
    names = functions() | set(re.findall(r"#define (RGEN_(?:E_\w+|OK|CANCELED))",
                                         STATUSES.read_text(encoding="utf-8")))
    lines = []
    for line in (top + rest).splitlines(keepends=True):
        title = line[3:].strip()
        if title in headings and line.startswith(" * "):
            lines.append(f" *\n * @anchor {headings[title]}\n * <h3>{title}</h3>\n *\n")
        else:
            lines.append(titled_paragraphs(linked_comment(line, headings, names)))
    return "".join(lines)


def main():
    path = Path(sys.argv[1]).resolve()
    text = path.read_text(encoding="utf-8")
    if path.suffix == ".md":
        sys.stdout.write("\n".join(PageFilter(path).run(text)) + "\n")
    else:
        sys.stdout.write(header_text(text, path.name))


if __name__ == "__main__":
    main()

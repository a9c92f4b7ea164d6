"""Checks the generated site: no broken links, nothing loaded from outside, nothing missing.

SPDX-License-Identifier: MIT
"""

import re
import urllib.parse
from html.parser import HTMLParser

from page_links import OUTSIDE

# Elements that make a browser load something.
LOADED = {"img": "src", "script": "src", "link": "href", "iframe": "src"}
# Commands that Doxygen did not recognise.
LEFT_OVER = re.compile(r"[@\\](?:(?:sub)*section|ref|par|anchor|file)\b[^<]{0,40}|\{#page_\w+")


class SitePage(HTMLParser):
    """The links, loaded files and anchors of a page."""

    def __init__(self, path):
        super().__init__()
        self.links = []
        self.loaded = []
        self.anchors = set()
        self.codes = set()
        self.open_code = None
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        self.anchors.update(attributes[name] for name in ("id", "name") if attributes.get(name))
        if tag in ("a", "area") and attributes.get("href"):
            self.links.append(attributes["href"])
        if tag in LOADED and attributes.get(LOADED[tag]):
            self.loaded.append(attributes[LOADED[tag]])

        if tag == "code":
            self.open_code = ""

    def handle_data(self, data):
        if self.open_code is not None:
            self.open_code += data.replace("\N{NO-BREAK SPACE}", " ")

    def handle_endtag(self, tag):
        if tag == "code" and self.open_code is not None:
            self.codes.add(self.open_code.strip())
            self.open_code = None


def code_problems(path, codes, functions):
    """Finds texts in backticks that a page of the site does not show letter for letter."""
    shown = SitePage(path).codes
    for code in codes:
        if code not in functions and code.replace("\\|", "|").strip() not in shown:
            yield f"{path.name}: does not show {code}"


def target_problem(site, pages, name, target):
    if "://" in target:
        return "" if target in OUTSIDE else f"{name}: {target} is not among the known addresses"
    if target.startswith("javascript:"):
        return ""
    file, _, anchor = urllib.parse.unquote(target).partition("#")
    file = file or name
    if not (site / file).is_file():
        return f"{name}: there is no {target}"
    if anchor and file in pages and anchor not in pages[file].anchors:
        return f"{name}: there is no anchor {target}"
    return ""


def problems(site, functions, titles):
    """`functions` must be documented in the site, `titles` are those of its pages."""
    pages = {path.name: SitePage(path) for path in sorted(site.glob("*.html"))}
    found = []
    for name, page in pages.items():
        for target in page.links + page.loaded:
            text = target_problem(site, pages, name, target)
            if text:
                found.append(text)
        found += [f"{name}: loads {target}" for target in page.loaded if "//" in target]
    text = "".join(path.read_text(encoding="utf-8") for path in sorted(site.glob("*.html")))
    found += [f"the site shows {text}" for text in sorted(set(LEFT_OVER.findall(text)))]
    documented = set(re.findall(r'class="memtitle".*?</span>(\w+)\(\)</h2>', text))
    found += [f"the site does not describe {name}" for name in sorted(functions - documented)]
    shown = {title.strip() for title in re.findall(r'<div class="title">(.*?)</div>', text)}
    found += [f"the site has no page {title}" for title in titles if title not in shown]
    return found

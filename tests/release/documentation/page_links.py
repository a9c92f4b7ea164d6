"""Checks the links of the pages: targets in the repository exist, others are in a short list.

SPDX-License-Identifier: MIT
"""

from markdown_page import project_pages, read_page

# Before you add an address, consider whether the page needs it.
OUTSIDE = {"https://semver.org", "https://keepachangelog.com/en/1.1.0/"}
MAP = "docs/README.md"


def link_problem(root, path, target):
    """What is wrong with a link, or an empty text."""
    if "://" in target or target.startswith("mailto:"):
        return "" if target in OUTSIDE else f"{target} is not among the known addresses"
    name, _, anchor = target.partition("#")
    file = (path.parent / name).resolve() if name else path
    if not file.exists() or not file.is_relative_to(root.resolve()):
        return f"there is no {target}"
    if anchor and (file.suffix != ".md" or anchor not in read_page(file).anchors()):
        return f"there is no heading for {target}"
    return ""


def map_problems(root, pages):
    """Checks that the map lists every page."""
    index = root / MAP
    if not index.is_file():
        return [f"{MAP} is missing"]
    named = {(index.parent / target.partition("#")[0]).resolve()
             for _, _, target in read_page(index).links()}
    return [f"{MAP}: names no {path.relative_to(root)}" for path in pages
            if path != index and path.resolve() not in named]


def problems(root):
    pages = project_pages(root)
    found = map_problems(root, pages)
    for path in pages:
        for line, _, target in read_page(path).links():
            text = link_problem(root, path, target)
            if text:
                found.append(f"{path.relative_to(root)}:{line}: {text}")
    return found

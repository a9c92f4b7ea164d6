# SPDX-License-Identifier: MIT
"""The text of a report, which must be the same for all engines, without regard to white space."""

from html.parser import HTMLParser

BLOCKS = {"title", "h1", "p", "tr"}
CELLS = {"td", "th"}


class ReportParser(HTMLParser):
    """Collects one text for each block, with a separator between the cells of a row."""

    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.blocks = []
        self.opened = False

    def handle_starttag(self, tag, attrs):
        if tag in BLOCKS:
            self.blocks.append("")
            self.opened = True
        elif tag in CELLS and self.opened:
            self.blocks[-1] += " | "

    def handle_endtag(self, tag):
        if tag in BLOCKS:
            self.opened = False

    def handle_data(self, data):
        if self.opened:
            self.blocks[-1] += data
        elif data.strip():
            self.blocks.append(data)


def report_text(content):
    """The texts of the blocks of a report, with normalized white space."""
    parser = ReportParser()
    parser.feed(content.decode("utf-8"))
    parser.close()
    return [" ".join(block.split()) for block in parser.blocks]


def difference(wanted, made, any_order):
    """The first difference of two reports, or "". `any_order` ignores the order of rows."""
    expected, found = report_text(wanted), report_text(made)
    if any_order:
        expected, found = sorted(expected), sorted(found)
    for place, (left, right) in enumerate(zip(expected, found), 1):
        if left != right:
            return f'text {place} is "{right}" and not "{left}"'
    if len(expected) != len(found):
        return f"there are {len(found)} texts and not {len(expected)}"
    return "" if expected else "there is no text"

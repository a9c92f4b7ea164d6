# SPDX-License-Identifier: MIT
"""The text of a report: what two engines have to agree on, whatever their white space is like."""

from html.parser import HTMLParser

BLOCKS = {"title", "h1", "p", "tr"}
CELLS = {"td", "th"}


class ReportParser(HTMLParser):
    """Collects one text for each block; the cells of a row are set apart."""

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
    """The texts of the blocks of a report, with plain white space. Raises UnicodeDecodeError."""
    parser = ReportParser()
    parser.feed(content.decode("utf-8"))
    parser.close()
    return [" ".join(block.split()) for block in parser.blocks]


def difference(wanted, made, any_order):
    """Says where two reports differ, or nothing. `any_order`: the rows may stand in any order."""
    expected, found = report_text(wanted), report_text(made)
    if any_order:
        expected, found = sorted(expected), sorted(found)
    for place, (left, right) in enumerate(zip(expected, found), 1):
        if left != right:
            return f'text {place} is "{right}" and not "{left}"'
    if len(expected) != len(found):
        return f"there are {len(found)} texts and not {len(expected)}"
    return "" if expected else "there is no text"

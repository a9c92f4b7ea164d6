"""Parses what vellum inserts into a page.

SPDX-License-Identifier: MIT
"""

from html.parser import HTMLParser

POLICY = {"default-src": {"'none'"}, "style-src": {"'unsafe-inline'", "file:", "data:"},
          "img-src": {"file:", "data:"}, "font-src": {"file:", "data:"}}


class Inserted(HTMLParser):
    """The tags of an insertion in order, with their attributes and the text after them."""

    def __init__(self, text):
        super().__init__()
        self.tags = []
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attrs):
        self.tags.append([tag, dict(attrs), ""])

    def handle_data(self, data):
        self.tags[-1][2] += data

    def handle_comment(self, data):
        raise AssertionError(f"a comment: {data}")

    @property
    def kinds(self):
        return [tag for tag, _, _ in self.tags]

    @property
    def encoding(self):
        found = [attributes["charset"] for _, attributes, _ in self.tags if "charset" in attributes]
        return found[0].lower() if found else None

    @property
    def base(self):
        found = [attributes["href"] for tag, attributes, _ in self.tags if tag == "base"]
        return found[0] if found else None

    @property
    def policy(self):
        content = [attributes["content"] for _, attributes, _ in self.tags
                   if attributes.get("http-equiv") == "Content-Security-Policy"]
        parts = [part.split() for part in content[0].split(";") if part.strip()] if content else []
        return {part[0]: set(part[1:]) for part in parts}

    @property
    def style(self):
        return "".join(text for tag, _, text in self.tags if tag == "style").replace(" ", "")


class Tags(HTMLParser):
    """The start tags of a page with their attributes; the first one of a name counts."""

    def __init__(self, text):
        super().__init__()
        self.found = []
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attrs):
        attributes = {}
        for name, value in attrs:
            attributes.setdefault(name, value or "")
        self.found.append((tag, attributes))

    def values(self, tag, attribute):
        return [attributes[attribute] for name, attributes in self.found
                if name == tag and attribute in attributes]


def insertion(original, staged, place):
    """What was inserted into the page at this offset; nothing else may differ."""
    length = len(staged) - len(original)
    if staged[:place] != original[:place] or staged[place + length:] != original[place:]:
        raise AssertionError(f"not at {place} alone: {staged!r}")
    return Inserted(staged[place:place + length].decode("ascii"))

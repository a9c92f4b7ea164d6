"""The page as an engine gets it, without an engine: every encoding with every hostile construct, work
in proportion to the page, the clock and the cancellation meanwhile.

Where the target is Linux, the work is counted in instructions.

RGEN_VELLUM_PROBE    the program staging_probe; staging_probe.cpp says what it can do
RGEN_VELLUM_COUNTER  valgrind, where it can count the instructions of this build

SPDX-License-Identifier: MIT
"""

import html
import os
import re
import subprocess
import unittest
from pathlib import Path

from encoding_labels import LABELS, MAY_LACK, REFUSED, ROWS, UNKNOWN
from staged_page import Tags
from program_case import ON_WINDOWS, ProgramCase, linux_only, native

PROBE = Path(os.environ["RGEN_VELLUM_PROBE"]).resolve()
COUNTER = os.environ.get("RGEN_VELLUM_COUNTER")
MARK = b"\xef\xbb\xbf"
BASE = "https://base.invalid/"
SECRET = "file:///secret.html"

# Bytes that engines drop or change in some encoding.
GAPS = [b"\x1b(B", b"\x1b(J", b"\x1b$B\x1b(B", b"\x1b$)C", b"\x1b$)A\x0f", b"\x0e\x0f", b"~{~}", b"~\n",
        b"+-", b"\x00", b"\xef\xbb\xbf", b"\xc2\xad", b"\x80", b"\xff", b"\x8e", b"\x8f", b"\x81\x30\x81",
        b"\xfe\xff", b""]
# Harmful tags; "*" is replaced by such bytes.
CONSTRUCTS = [
    f"<link re*l=attachment href={SECRET}>",
    f"<link rel=att*achment href={SECRET}>",
    f"<li*nk rel=attachment href={SECRET}>",
    f"<*link rel=attachment href={SECRET}>",
    f"<a rel='x att*achment' href={SECRET}>link</a>",
    f"<LINK REL*=ATTACHMENT HREF={SECRET}>",
    f"<link rel*=&#97;ttachment href={SECRET}>",
    f"<link rel=*&#x61ttachment href={SECRET}>",
    f"<meta http-*equiv=refresh content='0;url={SECRET}'>",
    f"<meta http-equiv=re*fresh content='0;url={SECRET}'>",
    f"<me*ta http-equiv=refresh content='0;url={SECRET}'>",
    f"<meta*/http-equiv=refresh content='0;url={SECRET}'>",
    f"<meta http-equiv*='&#114;efresh' content='0;url={SECRET}'>",
    f"<svg><![CDATA[<*meta http-equiv=refresh content='0;url={SECRET}'>]]></svg>",
    f"<!--*--><meta http-equiv=refresh content='0;url={SECRET}'>",
    f"<!--*--!><meta http-equiv=refresh content='0;url={SECRET}'>",
    f"<script>*</script><meta http-equiv=refresh content='0;url={SECRET}'>",
    f"<title>*</title *x><meta http-equiv=refresh content='0;url={SECRET}'>",
    f"""<meta x="*<a rel=attachment y='"'>" http-equiv=refresh content="0;url={SECRET}">""",
    f"""<meta x='<a rel=attachment y="'*">' http-equiv=refresh content='0;url={SECRET}'>""",
    f"""<link x="<meta http-equiv=refresh y='"'*>" rel=attachment href={SECRET}>""",
    f"<b <link rel=attachment*x='>' href={SECRET}>",
]
# The start of the attributes of a tag: a parser starts a tag only at a "<" with a letter after it.
TAG = re.compile(rb"<[A-Za-z]")

# Repetitions of these can make scanners read the page many times.
REPEATS = {
    "empty comments": "<!---->",
    "comments with a mark": "<!--x--!>",
    "comments that do not end": "<!--",
    "ends of comments": "-->",
    "dashes in a comment": ("<!--", "-"),
    "references": ('<a href="', "&"),
    "references to letters": ('<meta http-equiv="', "&#97;"),
    "half references": ('<img src="', "&#"),
    "less-than signs": "<",
    "greater-than signs": ">",
    "tags": "<a>",
    "names of tags": "<a",
    "names of tags and blanks": ("", "<a", " "),
    "names of tags and attributes": ("", "<a", " b"),
    "double quotes": '"',
    "single quotes": "'",
    "values in values": '<a b="',
    "values of both kinds": "<a b=\"<a c='",
    "tags with quotes": "<a \"'",
    "attributes": ("<a ", "b "),
    "attributes with values": ("<p ", "rel=x "),
    "equivalents": ("<p ", "http-equiv=x "),
    "attachments in attachments": '<a rel=attachment x="',
    "attachments without an end": "<a rel=attachment ",
    "equals signs": ("<a ", "="),
    "slashes": ("<a ", "/"),
    "blanks": ("<a ", " "),
    "nested elements": "<div>",
    "scripts": "<script>",
    "ends of scripts": "<script></script",
    "titles": "<title>",
    "declarations": "<?x",
    "document types": "<!x",
    "ends of tags": "</",
    "metas": "<meta charset=x>",
    "contents": ('<meta http-equiv=content-type content="', "charset"),
    "bases": "<base href=x>",
    "images": lambda size: "".join(f"<img src=/?{n}>" for n in range(size // 15)),
    "a base and images": lambda size: ('<base href="file:///' + "a" * 3000 + '">' + "".join(
        f"<img src=/?{n}>" for n in range(size // 15))),
    "comments before the document type": ("<!-- ", "<!---->"),
    "bytes that are no characters": b"\xff",
    "shifts": (b"<meta charset=iso-2022-jp>", b"\x1b$B\x1b(B"),
    "half letters": (b"<meta charset=shift_jis>", b"\x81"),
    "UTF-16 halves": (b"\xff\xfe", b"\x00\xd8"),
}


# The encoding that a page of each kind declares.
DECLARED = {"shifts": "iso-2022-jp", "half letters": "shift_jis"}


def as_bytes(text):
    return text if isinstance(text, bytes) else text.encode("utf-8")


def repeated(repeat, size):
    """A page of about so many bytes: a start, then the pieces in equal shares."""
    if callable(repeat):
        return repeat(size).encode()
    start, *pieces = [as_bytes(text) for text in (repeat if isinstance(repeat, tuple) else ("", repeat))]
    return start + b"".join(piece * (size // len(pieces) // len(piece)) for piece in pieces)


def attributes_at(page, at):
    """The attributes of the tag at this offset. An independent implementation: it follows the states
    of the HTML standard, one character at a time."""
    state, name, value, found = "tag", b"", b"", []
    blank = b" \t\n\r\f"

    def finish():
        nonlocal name, value
        if name:
            found.append((name.lower(), value))
        name, value = b"", b""

    for place in range(at + 1, len(page)):
        letter = page[place:place + 1]
        if state == "tag":
            if letter == b">":
                return found
            state = "before" if letter in blank or letter == b"/" else state
        elif state == "before" or (state == "after" and letter not in blank and letter not in b"=/>"):
            if letter == b">":
                finish()
                return found
            if letter not in blank and letter != b"/":
                finish()
                name, state = letter, "name"
        elif state in ("name", "after"):
            if letter == b">":
                finish()
                return found
            if letter == b"=":
                state = "before value"
            elif letter == b"/":
                state = "before"
            elif letter in blank:
                state = "after"
            else:
                name += letter
        elif state == "before value":
            if letter == b">":
                finish()
                return found
            if letter in b"\"'":
                state = letter
            elif letter not in blank:
                value, state = letter, "value"
        elif state == "value":
            if letter == b">":
                finish()
                return found
            if letter in blank:
                finish()
                state = "before"
            else:
                value += letter
        elif letter == state:
            finish()
            state = "before"
        else:
            value += letter
    return found + ([(name.lower(), value)] if name else [])


def harmful_attributes(page):
    """What an engine would obey, wherever it starts to read a tag."""
    harmful = []
    for tag in TAG.finditer(page):
        for name, value in attributes_at(page, tag.start()):
            meant = html.unescape(value.decode("utf-8")).strip(" \t\n\r\f").lower()
            if name == b"rel" and "attachment" in meant:
                harmful.append((name, value))
            if name == b"http-equiv" and meant not in ("content-security-policy", "content-type"):
                harmful.append((name, value))
    return harmful


class ProbeCase(ProgramCase):

    def probe(self, command, *words):
        """For each page the exit code, the number of checks and the message."""
        result = self.start(command, *words, program=PROBE).finish()
        self.assertEqual(0, result.code, result)
        rows = [line.split(" ", 2) for line in result.text.splitlines()]
        return [(int(code), int(checks), message) for code, checks, message in rows]

    def stage(self, pages):
        """The exit code and the staged page for each of these pages (bytes by name)."""
        for name, page in pages.items():
            self.write(f"{name}.html", page)
        names = [f"{name}.html" for name in pages]
        rows = self.probe("stage", BASE, *names)
        staged = [self.folder / f"{name}.staged" for name in names]
        return {name: (row[0], row[2], path.read_bytes() if path.exists() else None)
                for name, row, path in zip(pages, rows, staged)}


class EveryEncoding(ProbeCase):

    def hostile_page(self, label):
        lines = [construct.encode().replace(b"*", gap) for construct in CONSTRUCTS for gap in GAPS]
        return b"<!doctype html><meta charset=" + label.encode() + b">" + b"\n".join(lines) + b"<p>end"

    def expect_harmless(self, label, staged):
        self.assertTrue(staged.startswith(MARK + b"<!doctype html><meta charset=\"utf-8\">"), label)
        staged.decode("utf-8")
        self.assertNotIn(b"\x00", staged)
        self.assertNotIn(b"\x1b(B", staged.replace(MARK, b"") if label == "iso-2022-jp" else b"")
        self.assertEqual([], harmful_attributes(staged), label)

    def test_hostile_constructs(self):
        labels = [*LABELS, *REFUSED, *UNKNOWN]
        for name, (code, message, staged) in self.stage(
                {f"{number}": self.hostile_page(label)
                 for number, label in enumerate(labels)}).items():
            label = labels[int(name)]
            with self.subTest(label=label):
                if code == 0:
                    self.expect_harmless(label, staged)
                else:
                    self.assertRegex(message, r'\Athe page is in the encoding "[\w-]+", which cannot be '
                                     r"read here; write it in UTF-8\Z")
                self.assertIn(code, (0, 3) if label in REFUSED or may_be_refused(label) else (0,))

    def test_hostile_constructs_in_utf_16(self):
        text = self.hostile_page("utf-8").decode("latin-1")
        pages = {"le": b"\xff\xfe" + text.encode("utf-16-le"), "be": b"\xfe\xff" + text.encode("utf-16-be"),
                 "xml-le": ('<?xml version="1.0"?>' + text).encode("utf-16-le"),
                 "xml-be": ('<?xml version="1.0"?>' + text).encode("utf-16-be"),
                 "32": b"\xff\xfe\0\0" + text.encode("utf-32-le")}
        for name, (code, _, staged) in self.stage(pages).items():
            self.assertEqual(0, code, name)
            self.assertTrue(staged.startswith(MARK), name)
            self.assertEqual([], harmful_attributes(staged), name)

    def test_letters(self):
        """A letter of each encoding is decoded under each of its labels."""
        pages, wanted = {}, {}
        for _, codec, labels in ROWS:
            letter = next(letter for letter in "中あ한Жéяאαعāกßė’ŵș" if can_encode(letter, codec))
            for label in labels.split():
                name = str(len(pages))
                pages[name] = f"<!doctype html><meta charset={label}><p>[{letter}]".encode(codec)
                wanted[name] = (label, f"<p>[{letter}]".encode())
        for name, (code, message, staged) in self.stage(pages).items():
            label, text = wanted[name]
            with self.subTest(label=label):
                if code == 3 and may_be_refused(label):
                    self.assertIn("which cannot be read here", message)
                    continue
                self.assertEqual(0, code, message)
                self.assertTrue(staged.endswith(text), staged[-40:])

    def test_labels_that_are_refused(self):
        pages = {label: f"<meta charset='{label}'><p>x".encode() for label in REFUSED}
        for label, (code, message, _) in self.stage(pages).items():
            self.assertEqual((3, 'the page is in the encoding "replacement", which cannot be read here; '
                              "write it in UTF-8"), (code, message), label)

    def test_labels_that_are_unknown_count_for_nothing(self):
        pages = {label: f"<meta charset='{label}'><p>Größe +ADw-".encode() for label in UNKNOWN}
        for label, (code, _, staged) in self.stage(pages).items():
            self.assertEqual(0, code, label)
            self.assertTrue(staged.endswith("<p>Größe +ADw-".encode()), label)

    def test_bytes_that_mean_nothing(self):
        pages = {"utf-8": b"a\xff\xc3b\xed\xa0\x80c\xf8d\0e", "shift_jis": b"a\x81<b>c",
                 "gb18030": b"a\xff<b>c", "euc-kr": b"a\xb0", "big5": b"a\x88\x66\xff<b>c"}
        rows = self.stage({label: f"<meta charset={label}><p>".encode() + text
                           for label, text in pages.items()})
        staged = {label: row[2].split(b"<p>")[-1].decode() for label, row in rows.items()
                  if row[0] == 0 or not may_be_refused(label)}
        self.assertEqual("a\ufffd\ufffdb\ufffd\ufffd\ufffdc\ufffdd\ufffde", staged["utf-8"])
        if not ON_WINDOWS:
            # Windows decodes such bytes to letters of its own.
            self.assertEqual("a\ufffd<b>c", staged["shift_jis"])
            self.assertEqual("a\ufffd<b>c", staged["gb18030"])
            self.assertEqual("a\ufffd", staged["euc-kr"])
            self.assertEqual("aÊ\ufffd<b>c", staged["big5"])

    def test_bytes_without_a_meaning_in_the_encodings_of_windows(self):
        """They are the control characters with their numbers, as in the HTML standard."""
        pages = {encoding: bytes(range(0x80, 0xa0)) for encoding, _, _ in ROWS
                 if encoding.startswith("windows-")}
        rows = self.stage({encoding: f"<meta charset={encoding}><p>".encode() + text
                           for encoding, text in pages.items()})
        codecs = {encoding: codec for encoding, codec, _ in ROWS}
        for encoding, text in pages.items():
            wanted = "".join(letter_of(byte, codecs[encoding]) for byte in text)
            self.assertEqual((0, wanted), (rows[encoding][0], rows[encoding][2].split(b"<p>")[-1].decode()),
                             encoding)
        (_, _, staged), = self.stage({"x": b"<p>a\x81\x8db"}).values()
        self.assertTrue(staged.endswith("<p>a\x81\x8db".encode()), staged)

    def test_a_second_mark_is_a_letter(self):
        """After a second byte order mark, which is a character, the document type is too late."""
        (_, _, staged), = self.stage({"x": MARK + MARK + b"<!doctype html><p>x"}).values()
        self.assertTrue(staged.startswith(MARK + b'<meta charset="utf-8">'), staged)

    def test_letters_longer_than_a_piece(self):
        """iconv is called for one piece after the other; a character may be split between two."""
        for shift in range(4):
            text = "x" * shift + "あ" * 70_000
            page = f"<meta charset=shift_jis><p>{text}".encode("shift-jis")
            (code, _, staged), = self.stage({"x": page}).values()
            self.assertEqual(0, code)
            self.assertTrue(staged.decode().endswith(text), shift)


def may_be_refused(label):
    """Returns whether the system may have no code page for the encoding."""
    return ON_WINDOWS and label in MAY_LACK


def letter_of(byte, codec):
    try:
        return bytes([byte]).decode(codec)
    except UnicodeDecodeError:
        return chr(byte)


def can_encode(letter, codec):
    try:
        return len(letter.encode(codec)) > 0
    except UnicodeEncodeError:
        return False


class Tokenizer(ProbeCase):
    """Comparison with a second reader of tags, for all short combinations of relevant pieces."""

    PIECES = ['<a ', '<b/', 'rel=attachment', ' http-equiv=refresh', '"', "'", '>', '=', ' ', '<!--', 'x']

    def test_short_texts(self):
        texts = [[]]
        for _ in range(4):
            texts += [[*text, piece] for text in texts if len(text) == len(texts[-1])
                      for piece in self.PIECES]
        pages = {}
        for number in range(0, len(texts), 200):
            # A text cannot affect the next one: all quotes and tags are closed.
            rows = ["".join(text) for text in texts[number:number + 200]]
            pages[str(number)] = "\n'\"'>\n".join(rows).encode()
        for name, (code, _, staged) in self.stage(pages).items():
            self.assertEqual(0, code)
            self.assertEqual([], harmful_attributes(staged), name)

    def test_no_place_moves(self):
        page = "\n".join(construct.replace("*", "") for construct in CONSTRUCTS).encode()
        (_, _, staged), = self.stage({"x": page}).values()
        rest = staged[len(staged) - len(page):]
        for letter in b"<>\"'=/ ":
            self.assertEqual([place for place, one in enumerate(page) if one == letter],
                             [place for place, one in enumerate(rest) if one == letter])

    def test_a_tag_in_front_cannot_take_the_policy(self):
        for front in ("<!-- <a rel=attachment x=' --><!doctype html>",
                      '<!-- <a rel=attachment x=" --><!doctype html>',
                      "<!doctype <a rel=attachment x='>", "<?x <a rel=attachment x='?>"):
            (_, _, staged), = self.stage({"x": f"{front}<p>x".encode()}).values()
            self.assertIn(b"default-src 'none'", staged)
            self.assertIn("Content-Security-Policy", Tags(staged.decode("utf-8-sig")).values(
                "meta", "http-equiv"))


class Proportion(ProbeCase):
    """The work grows linearly with the page."""

    SMALL, LARGE = 8_000, 128_000
    # For 16 times the size; some pages cost little more than an empty one.
    HIGHEST = 20

    # The number of kinds of pages in one run, since each start of valgrind takes time.
    TOGETHER = 4

    def instructions(self, repeats, size):
        names = [f"{number}.html" for number in range(len(repeats))]
        for name, repeat in zip(names, repeats):
            self.write(name, repeated(repeat, size))
        command = [COUNTER, "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null", PROBE,
                   "stage", "file:///", *names]
        done = subprocess.run(command, cwd=self.folder, capture_output=True, timeout=100, check=True)
        return int(re.search(rb"I\s+refs:\s+([\d,]+)", done.stderr).group(1).replace(b",", b""))

    @linux_only
    @unittest.skipUnless(COUNTER, "valgrind cannot run a build with a sanitizer")
    def test_instructions(self):
        names = list(REPEATS)
        for start in range(0, len(names), self.TOGETHER):
            chosen = names[start:start + self.TOGETHER]
            with self.subTest(names=chosen):
                repeats = [REPEATS[name] for name in chosen]
                nothing = self.instructions(repeats, 100)
                small = self.instructions(repeats, self.SMALL) - nothing
                large = self.instructions(repeats, self.LARGE) - nothing
                self.assertLessEqual(large / small, self.HIGHEST, (small, large))

    def test_regular_checks(self):
        """The clock is checked regularly, whatever the page contains."""
        size = 1_000_000
        names = {f"{number}": repeat for number, repeat in enumerate(REPEATS.values())}
        for name, repeat in names.items():
            self.write(f"{name}.html", repeated(repeat, size))
        rows = self.probe("stage", BASE, *(f"{name}.html" for name in names))
        for kind, (code, checks, message) in zip(REPEATS, rows):
            with self.subTest(kind=kind):
                if code == 3 and may_be_refused(DECLARED.get(kind)):
                    self.assertIn("which cannot be read here", message)
                    continue
                self.assertEqual(0, code, message)
                # Reading and decoding. The text may be shorter than the page.
                self.assertGreaterEqual(checks, 2 * (size // 65_536))


class Ends(ProbeCase):
    """Timeout and cancellation during the work on a page."""

    SIZE = 350_000

    def expect(self, command, code, message):
        self.write("page.html", repeated("<!---->", self.SIZE))
        (found, checks, words), = self.probe(command, "page.html")
        self.assertEqual((code, message), (found, words))
        return checks

    def test_the_clock(self):
        checks = self.expect("late", 6, "the work on the page was still busy after 2 s; set VELLUM_TIMEOUT to "
                            "give it more time")
        self.assertLess(checks, 5)

    def test_the_page_disappears(self):
        checks = self.expect("gone", 8, "cancelled")
        # On Windows a deleted file may exist until it is closed, which is after the page was read.
        self.assertLessEqual(checks, self.SIZE // 65_536 + 1 if ON_WINDOWS else 1)

    def test_a_signal(self):
        self.assertEqual(1, self.expect("signal", 8, "cancelled"))

    def environment(self, changes=None):
        return super().environment({"VELLUM_TIMEOUT": "2", **(changes or {})})

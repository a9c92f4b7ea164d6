"""What is done to a page before the engine gets it.

SPDX-License-Identifier: MIT
"""

from program_case import native
from staged_page import POLICY, Tags, insertion
from vellum_case import VellumCase

BASE = "https://base.invalid/a/"
BODY = '<html lang="de"><head><title>T</title></head><body class="x"><p>Größe и слово\n'
DOCTYPE = "<!DOCTYPE html>"
# The start of each page that an engine gets.
MARK = b"\xef\xbb\xbf"
# The number of conversions that run at the same time.
AT_ONCE = 4

# The text before the insertion, and the text after it. Comments end as in browsers.
PLACES = {
    "a document type": (DOCTYPE, BODY),
    "lower case": ("<!doctype html>", BODY),
    "no blank": ("<!doctypehtml>", BODY),
    "an old document type": ('<!DOCTYPE HTML PUBLIC "-//W3C//DTD HTML 4.01//EN" '
                             '"http://www.w3.org/TR/html4/strict.dtd">', "\n" + BODY),
    "blanks around it": ("\r\n \t<!doctype html>", "\r\n" + BODY),
    "a byte order mark": (DOCTYPE, BODY, "\ufeff"),
    "a byte order mark alone": ("", BODY, "\ufeff"),
    "two byte order marks": ("", "\ufeff" + DOCTYPE + BODY, "\ufeff"),
    "letters in a comment": ("<!-- Größe и слово -->" + DOCTYPE, BODY),
    "a comment": ("<!-- c -->" + DOCTYPE, BODY),
    "two comments": ("<!-- c -->\n<!---->\n" + DOCTYPE, BODY),
    "a document type in a comment": ("<!-- <!doctype html> -->" + DOCTYPE, BODY),
    "an empty comment": ("<!-->" + DOCTYPE, "<p> -->" + BODY),
    "an empty comment of three dashes": ("<!--->" + DOCTYPE, "<p> -->" + BODY),
    "a comment that ends with a mark": ("<!-- a --!>" + DOCTYPE, "<p> -->" + BODY),
    "a comment with half an end": ("<!-- a -- > b -->" + DOCTYPE, BODY),
    "a comment in a comment": ("<!-- a <!-- b -->" + DOCTYPE, BODY),
    "an XML declaration": ('<?xml version="1.0" encoding="UTF-8"?>\n' + DOCTYPE, BODY),
    "no document type": ("", BODY),
    "no head": (DOCTYPE, "<p>x"),
    "no tags": ("", "x"),
    "nothing": ("", ""),
    "a comment and no document type": ("", "<!-- c -->" + BODY),
    "a document type in a comment only": ("", "<!-- <!doctype html> -->" + BODY),
    "a comment without an end": ("", "<!-- <!doctype html>" + BODY),
    "a document type behind a tag": ("", "<p><!doctype html>" + BODY),
}

WORD = "слово"
# The text of a page and its encoding.
ENCODINGS = {
    "charset": ('<!doctype html><meta charset="windows-1251">' + WORD, "cp1251"),
    "capitals": ("<HTML><HEAD><META CHARSET='KOI8-R'></HEAD>" + WORD, "koi8-r"),
    "without quotes": ("<!doctype html><head><meta charset=iso-8859-5>" + WORD, "iso-8859-5"),
    "content type": ('<head><meta http-equiv="Content-Type" '
                     'content="text/html; charset=windows-1251"></head>' + WORD, "cp1251"),
    "content type, blanks": ("<META CONTENT='text/html;  CHARSET = koi8-r ; x=y' "
                             "HTTP-EQUIV=content-type>" + WORD, "koi8-r"),
    "far behind": ("<!doctype html><!--" + "x" * 3000 + '--><meta charset="koi8-r">' + WORD,
                   "koi8-r"),
    "the first of two": ('<meta charset="koi8-r"><meta charset="utf-8">' + WORD, "koi8-r"),
    "in a comment only": ('<!-- <meta charset="koi8-r"> --><p>' + WORD, "utf-8"),
    "in a script only": ("<script>'<meta charset=koi8-r>'</script><p>" + WORD, "utf-8"),
    "none, UTF-8": ("<p>" + WORD, "utf-8"),
    "none, another one": ("<p>Größe", "cp1252"),
    "a mark and another one": ('<meta charset="koi8-r"><p>' + WORD, "utf-8-sig"),
}

REDIRECTIONS = [
    '<meta http-equiv="refresh" content="0;url=https://elsewhere.invalid/">',
    "<META HTTP-EQUIV='ReFrEsH' CONTENT='0;https://elsewhere.invalid/'>",
    "<meta http-equiv=refresh content=0;url=https://elsewhere.invalid/>",
    '<meta content="0;url=https://elsewhere.invalid/?a>b" http-equiv="refresh">',
    '<meta\n\thttp-equiv\n=\n"refresh"\ncontent="0;url=https://elsewhere.invalid/">',
    '<meta/http-equiv="refresh"/content="0;url=https://elsewhere.invalid/">',
    '<meta http-equiv="&#114;efresh" content="0;url=https://elsewhere.invalid/">',
    '<meta http-equiv="&#x72efresh" content="0;url=https://elsewhere.invalid/">',
    '<meta http-equiv="refres&#104" content="0;url=https://elsewhere.invalid/">',
    '<meta http-equiv="refresh" http-equiv="x" content="0;url=https://elsewhere.invalid/">',
    '<meta name="x" http-equiv="refresh" content="0">',
    '<meta a="\'" http-equiv="refresh" b="\'" content="1">',
    "<meta a='>' http-equiv=refresh content=1>",
    '<body><div><meta http-equiv="refresh" content="1"></div>',
    '<svg><meta http-equiv="refresh" content="1"></svg>',
    '<noscript><meta http-equiv="refresh" content="1"></noscript>',
    '<textarea></textarea><meta http-equiv="refresh" content="1">',
    '<!-- a --!><meta http-equiv="refresh" content="1"><p title=" --> ">',
    '<title><!-- </title><meta http-equiv="refresh" content="1"><p title=" --> ">',
]
ATTACHMENTS = [
    '<link rel="attachment" href="secret-1.txt">',
    "<LINK HREF='secret-2.txt' REL='Attachment'>",
    "<link rel=attachment href=secret-3.txt>",
    '<link rel="help attachment" href="secret-4.txt" title="a>b">',
    '<link/rel="&#97;ttachment"/href="secret-5.txt">',
    '<a href="secret-6.txt" rel=attachment>text</a>',
]


class PageCase(VellumCase):

    def stage(self, *pages, base=BASE):
        """The staged pages for these pages (bytes)."""
        staged = []
        for start in range(0, len(pages), AT_ONCE):
            chunk = range(start, min(start + AT_ONCE, len(pages)))
            running = []
            for number in chunk:
                self.write(f"{number}.html", pages[number])
                log = {"STAND_IN_ENGINE_LOG": native(self.log_path(f"{number}"))}
                running.append(self.start("-i", f"{number}.html", "-b", base, "-o",
                                          f"{number}.pdf", env=log))
            for each in running:
                self.expect_done(each.finish())
            pages = [self.log(f"{number}").page for number in chunk]
            # The byte order mark overrides all declarations of a page.
            self.assertTrue(all(page.startswith(MARK) for page in pages), pages)
            staged += [page.removeprefix(MARK) for page in pages]
        return staged

    def stage_text(self, page):
        return self.stage(page.encode("utf-8"))[0].decode("utf-8")

    def expect_insertion(self, inserted, encoding, base=BASE):
        """Encoding, policy, base, paper size, in this order."""
        kinds = (["meta"] if encoding else []) + ["meta"] + (["base"] if base else []) + ["style"]
        self.assertEqual(kinds, inserted.kinds)
        self.assertEqual((encoding, base), (inserted.encoding, inserted.base))
        self.assertEqual(POLICY, inserted.policy)
        self.assertEqual("@page{size:A4}", inserted.style)


class Places(PageCase):

    def test_where_it_stands(self):
        pages = [(front + rest).encode("utf-8") for front, rest, *_ in PLACES.values()]
        given = ["".join(mark).encode("utf-8") + page
                 for (_, _, *mark), page in zip(PLACES.values(), pages)]
        rows = zip(PLACES.items(), pages, self.stage(*given))
        for (name, (front, *_)), page, staged in rows:
            with self.subTest(name=name):
                place = len(front.encode("utf-8"))
                self.expect_insertion(insertion(page, staged, place), "utf-8")

    def test_the_author_s_base_counts_from_the_given_one(self):
        for written, meant in (("https://own.invalid/b/", "https://own.invalid/b/"),
                               ("pics/", "https://base.invalid/pics/"),
                               ("/top/", "https://base.invalid/top/"),
                               ("//other.invalid/", "https://other.invalid/")):
            with self.subTest(written=written):
                page = (DOCTYPE + f'<head><base href="{written}"></head><p>x').encode()
                inserted = insertion(page, self.stage(page, base="https://base.invalid/a.html")[0],
                                     len(DOCTYPE))
                self.expect_insertion(inserted, "utf-8", base=meant)

    def test_what_is_no_base(self):
        pages = [(DOCTYPE + rest).encode() for rest in (
            '<base target="_blank"><p>x', '<!-- <base href="b/"> --><p>x',
            "<script>'<base href=b/>'</script><p>x", "<title><base href=b/></title><p>x",
            "<style>/*<base href=b/>*/</style><p>x", '<p title="<base href=b/>">x',
            "<basefont href=b/><p>x", "<p>&lt;base href=b/&gt;x")]
        for page, staged in zip(pages, self.stage(*pages)):
            with self.subTest(page=page):
                self.expect_insertion(insertion(page, staged, len(DOCTYPE)), "utf-8")


class Encodings(PageCase):

    def test_the_page_is_in_utf_8(self):
        pages = [text.encode(encoding) for text, encoding in ENCODINGS.values()]
        for (name, (text, _)), staged in zip(ENCODINGS.items(), self.stage(*pages)):
            with self.subTest(name=name):
                front = len("<!doctype html>") if text.startswith("<!doctype html>") else 0
                self.expect_insertion(insertion(text.encode(), staged, front), "utf-8")

    def test_utf_16(self):
        text = f"\ufeff<!doctype html><title>T</title><p>{WORD} \U0001f4c4 ß"
        pages = [text.encode("utf-16-le"), text.encode("utf-16-be")]
        for staged in self.stage(*pages):
            plain = text.removeprefix("\ufeff")
            self.expect_insertion(insertion(plain.encode(), staged, len("<!doctype html>")), "utf-8")

    def test_a_name_that_is_no_encoding(self):
        page = b'<!doctype html><meta charset="&quot;><script>alert(1)</script>"><p>x'
        inserted = insertion(page, self.stage(page)[0], len(DOCTYPE))
        self.assertEqual(POLICY, inserted.policy)
        self.assertNotIn("script", inserted.kinds)

    def test_the_base_cannot_leave_its_attribute(self):
        page = b"<!doctype html><p>x"
        base = "https://base.invalid/\"'><script>alert(1)</script>&amp;&"
        inserted = insertion(page, self.stage(page, base=base)[0], len(DOCTYPE))
        self.assertEqual(base, inserted.base)
        self.assertNotIn("script", inserted.kinds)


class Removals(PageCase):

    def test_redirections(self):
        pages = [f"{DOCTYPE}<p>in front{tag}<p>behind".encode() for tag in REDIRECTIONS]
        # One page with all but the last two, whose comments do not end.
        together = DOCTYPE + "".join(f"<p>in front{tag}<p>behind" for tag in REDIRECTIONS[:-2])
        rows = [together.encode(), *pages[-2:]]
        for page, staged in zip(rows, self.stage(*rows)):
            found = Tags(staged.decode()).values("meta", "http-equiv")
            self.assertEqual([], [value for value in found if value.strip().lower() == "refresh"])
            for words in (b"<p>in front", b"<p>behind"):
                self.assertEqual(page.count(words), staged.count(words))

    def test_other_equivalents_stay(self):
        tags = ('<meta http-equiv="Content-Type" content="text/html; charset=utf-8">',
                "<meta http-equiv=content-language content=de>",
                "<META HTTP-EQUIV='X-UA-Compatible' CONTENT='IE=edge'>")
        staged = self.stage_text(DOCTYPE + "".join(tags) + "<p>x")
        for tag in tags:
            self.assertIn(tag, staged)

    def test_attachments(self):
        page = DOCTYPE + "".join(f"<p>in front{tag}<p>behind" for tag in ATTACHMENTS)
        staged = self.stage_text(page)
        self.assertEqual([], Tags(staged).values("link", "href"))
        self.assertNotIn("secret", staged)
        self.assertEqual(len(ATTACHMENTS), staged.count("<p>behind"))

    def test_other_links_stay(self):
        tag = '<link rel="stylesheet" href="https://base.invalid/a.css">'
        self.assertIn(tag, self.stage_text(DOCTYPE + tag + "<p>x"))

    def test_words_about_such_tags_stay(self):
        text = ('<pre>&lt;meta http-equiv="refresh" content="1"&gt;\n'
                '&lt;link rel="attachment" href="a.txt"&gt;</pre>')
        self.assertIn(text, self.stage_text(DOCTYPE + text))

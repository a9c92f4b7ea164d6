"""Translated reports: choice of the catalogue, its parts that are read, allowed content.

SPDX-License-Identifier: MIT
"""

from xml.etree import ElementTree

from cli_case import IS_A_FOLDER, NO_ACCESS, NO_SUCH_FILE, CliCase, linux_only, unprivileged
from cli_templates import catalogue, marked, stylesheet


class TranslationCase(CliCase):

    def setUp(self):
        super().setUp()
        self.put_template(marked("Name", "Size", "Speed"))

    def lines_of(self, *args):
        """The lines of a report and the notes."""
        result = self.report("--set", "A=1", *args)
        self.expect_done(result)
        return self.text_of("report.txt").splitlines(), result.notes


class Choice(TranslationCase):

    def test_without_a_language_texts_stay(self):
        self.assertEqual((["Name", "Size", "Speed"], []), self.lines_of())

    def test_the_catalogue_of_the_template_comes_first(self):
        folder = "case/.rgen/translations/"
        self.write(folder + "de.po", catalogue({"Name": "allgemein"}))
        lines, _ = self.lines_of("--lang", "de")
        self.assertEqual("allgemein", lines[0])
        self.write(folder + "acquisition-de.po", catalogue({"Name": "eigen"}))
        lines, _ = self.lines_of("--lang", "de")
        self.assertEqual("eigen", lines[0])

    def test_a_catalogue_anywhere(self):
        name = "Übersetzungen и прочее/тест de.po"
        self.write(name, catalogue({"Name": "Имя", "Size": "Größe", "Speed": "速度"}))
        self.assertEqual((["Имя", "Größe", "速度"], []), self.lines_of("--lang", name))

    def test_a_language_without_a_catalogue(self):
        for name in ("acquisition-de.po", "ru.po"):
            self.write("case/.rgen/translations/" + name, catalogue({"Name": "x"}))
        self.expect_error(self.report("--set", "A=1", "--lang", "fr"), 2,
                          'rgen: there is no catalogue for "fr" in "case/.rgen/translations"; '
                          "there is: de, ru")

    def test_a_data_directory_without_catalogues(self):
        self.expect_error_like(
            self.report("--set", "A=1", "--lang", "fr"), 2,
            '^rgen: there is no catalogue for "fr" in "case/.rgen/translations"')

    def test_files_that_cannot_be_read(self):
        self.write("folder.po/file", "")
        for name, reason in (("missing.po", NO_SUCH_FILE), ("folder.po", IS_A_FOLDER)):
            self.expect_error_like(
                self.report("--set", "A=1", "--lang", name), 2,
                f'^rgen: cannot read "{name}": {reason}; check the path given to --lang$')

    @linux_only
    def test_a_file_without_rights(self):
        self.write("de.po", catalogue({}))
        self.forbid("de.po")
        result = self.report("--set", "A=1", "--lang", "de.po", prefix=unprivileged())
        self.expect_error_like(
            result, 2,
            f'^rgen: cannot read "de.po": {NO_ACCESS}; check the path given to --lang$')


class Notes(TranslationCase):

    def test_texts_without_a_translation_are_counted_and_named(self):
        self.write("de.po", catalogue({}))
        lines, notes = self.lines_of("--lang", "de.po")
        self.assertEqual(["Name", "Size", "Speed"], lines)
        self.assertEqual(
            ['3 texts have no translation in de.po: "Name", "Size", "Speed"'], notes)

    def test_three_are_named_at_most(self):
        self.put_template(marked("Alpha", "Beta", "Delta", "Gamma"))
        self.write("de.po", catalogue({}))
        _, notes = self.lines_of("--lang", "de.po")
        self.assertEqual(
            ['4 texts have no translation in de.po: "Alpha", "Beta", "Delta", ...'], notes)

    def test_an_empty_translation_is_none(self):
        self.write("de.po", catalogue({"Name": "", "Size": "Größe", "Speed": "Tempo"}))
        lines, notes = self.lines_of("--lang", "de.po")
        self.assertEqual(["Name", "Größe", "Tempo"], lines)
        self.assertEqual(1, len(notes))
        self.assertIn('in de.po: "Name"', notes[0])

    def test_they_are_in_the_document(self):
        self.write("de.po", catalogue({"Size": "Größe"}))
        document = self.report("--set", "A=1", "--lang", "de.po", "--json", "-q").document
        self.assertEqual(["Name", "Speed"], sorted(document["untranslated"]))
        self.assertEqual(1, len(document["notes"]))

    def test_a_text_that_is_marked_twice_counts_once(self):
        self.put_template(marked("Name", "Size", "Name", "Speed", "Name"))
        self.write("de.po", catalogue({}))
        _, notes = self.lines_of("--lang", "de.po")
        self.assertEqual(
            ['3 texts have no translation in de.po: "Name", "Size", "Speed"'], notes)


class Reading(TranslationCase):

    def expect_lines(self, lines, content, *args):
        self.write("de.po", content)
        self.assertEqual((lines, []), self.lines_of("--lang", "de.po", *args))

    def test_everything_that_a_catalogue_may_hold(self):
        self.expect_lines(["der Name", "zwei Zeilen", "Geschwindigkeit"], """# Free text, "quoted".
msgid ""
msgstr ""
"Content-Type: text/plain; charset=UTF-8\\n"
"Plural-Forms: nplurals=2; plural=n != 1;\\n"

#. from the author
#: html/acquisition.xsl:12
#, c-format
#| msgid "Nmae"
msgctxt "QObject"
msgid "Name"
msgstr "der Name"

msgid ""
"Si"
"ze"
msgstr "zwei "
"Zeilen"

msgid "Speed"
msgid_plural "Speeds"
msgstr[0] "Geschwindigkeit"
msgstr[1] "Geschwindigkeiten"

#~ msgid "Name"
#~ msgstr "gone"
""")

    def test_fuzzy_translations_are_not_used(self):
        self.write("de.po", catalogue({"Name": "der Name"})
                   + '\n#, c-format, fuzzy\nmsgid "Size"\nmsgstr "Grösse"\n'
                     '\n#, fuzzy\nmsgid "Speed"\nmsgstr "\\a<b>"\n')
        lines, notes = self.lines_of("--lang", "de.po")
        self.assertEqual(["der Name", "Size", "Speed"], lines)
        self.assertEqual(['2 texts have no translation in de.po: "Size", "Speed"'], notes)

    def test_obsolete_entries_are_not_read(self):
        self.expect_lines(["a", "b", "c"], catalogue({"Name": "a", "Size": "b", "Speed": "c"})
                          + '\n#~ msgid "Name"\n#~ msgstr "old"\n\n#~ nonsense\n#~ msgstr "x\n')

    def test_a_byte_order_mark_and_windows_line_ends(self):
        text = "\ufeff" + catalogue({"Name": "Имя", "Size": "Größe", "Speed": "Tempo"})
        self.expect_lines(["Имя", "Größe", "Tempo"], text.replace("\n", "\r\n"))

    def test_no_header(self):
        self.expect_lines(["a", "b", "c"], 'msgid "Name"\nmsgstr "a"\n\nmsgid "Size"\nmsgstr "b"\n'
                                           'msgid "Speed"\nmsgstr "c"')

    def test_escapes(self):
        self.expect_lines(['"Name"', "a\\b", "tab\there"], catalogue(
            {"Name": '\\"Name\\"', "Size": "a\\\\b", "Speed": "tab\\there"}))


class MarkupInTranslations(TranslationCase):

    def text_with(self, original, translation, *args):
        self.put_template(marked(original))
        self.write("de.po", catalogue({original: translation}))
        lines, notes = self.lines_of("--lang", "de.po", *args)
        self.assertEqual([], notes)
        return lines[0]

    def test_plain_signs_are_escaped(self):
        self.assertEqual("A & B < C &amp; D", self.text_with("Name", "A & B < C &amp; D"))

    def page_with(self, original, translation, *args):
        self.put_template(stylesheet(
            f"<p lang='QT_TRANSLATE_NOOP(\"QObject\", \"{original}\")'/>", "html"))
        self.write("de.po", catalogue({original: translation}))
        lines, _ = self.lines_of("--lang", "de.po", *args)
        return lines[0]

    def test_apostrophes_do_not_end_an_attribute(self):
        page = '<p lang="it\'s &amp; \'so\'"></p>'
        self.assertEqual(page, self.page_with("en", "it's & 'so'"))
        self.assertEqual(page, self.page_with("&apos;", "it's &amp; 'so'"))
        self.assertEqual("it's", self.text_with("that's", "it's"))

    def test_an_original_with_references_has_translations_with_references(self):
        self.assertEqual("Forschung & Lehre", self.text_with("R&amp;D", "Forschung &amp; Lehre"))

    def test_raw_translations_are_xml_content(self):
        self.assertEqual("A & B €", self.text_with("Name", "A &amp; B &#8364;", "--raw"))


class TranslationsLeaveTheTemplateWhole(TranslationCase):
    """Any translation is shown unchanged, and so is the rest of the template after it."""

    rest = "|&lt;&amp;&gt;"
    places = {"content": stylesheet("%s" + rest),
              "attribute": stylesheet(f"<a t='%s'>{rest}</a>", "xml"),
              "select": stylesheet("<xsl:value-of select='\"%s\"'/>" + rest)}
    texts = ["]]>", "x]]>y", "]>", ">", "]]]>>", "a > b", "<b>]]></b>", "&foo;", "AT&T", "a & b; c",
             "&#xD800;", "&f oo;", "&", "&&amp;;", "<", "<![CDATA[x]]>", "it's", "&lt;&amp;&gt;",
             "\u0085\u2028\ud7ff\ue000\ufffd\U0010ffff", "Größe слово 速度", "%s", "-->", "<?x?>"]

    def shown(self, template, original, translation, *args):
        marker = f'QT_TRANSLATE_NOOP("QObject", "{original}")'
        self.put_template(template.replace("%s", marker, 1))
        self.write("de.po", catalogue({original: translation}))
        self.expect_notes(self.report("--set", "A=1", "--lang", "de.po", *args))
        if template != self.places["attribute"]:
            return self.text_of("report.txt")
        element = ElementTree.fromstring(self.read("report.txt"))
        return element.get("t") + element.text

    def test_every_text_in_every_place(self):
        for place, template in self.places.items():
            for text in self.texts:
                with self.subTest(place=place, text=text):
                    self.assertEqual(text + "|<&>", self.shown(template, "Name", text))

    def test_after_brackets_of_the_template(self):
        template = self.places["content"].replace("%s", "]]%s")
        for text in (">", "]>", "]]>"):
            self.assertEqual(f"]]{text}|<&>", self.shown(template, "Name", text))

    def test_all_in_one_catalogue(self):
        texts = {f"text {i}": text for i, text in enumerate(self.texts)}
        self.put_template(marked(*texts))
        self.write("de.po", catalogue(texts))
        self.expect_notes(self.report("--set", "A=1", "--lang", "de.po"))
        self.assertEqual("".join(text + "\n" for text in self.texts), self.text_of("report.txt"))

    def test_originals_with_markup(self):
        template = self.places["content"]
        rows = [("R&amp;D", "A&T &foo; &amp; &#8364;", "A&T &foo; & €"),
                ("R&amp;D", "&#xD800; &#1;", "\ufffd \ufffd"), ("a > b", "c > ]]> d", "c > ]]> d"),
                ("a > b", "<![CDATA[x]]>", "<![CDATA[x]]>"),
                ("<xsl:text>a</xsl:text>", "<xsl:text>]]></xsl:text>", "]]>"),
                ("<xsl:text>a</xsl:text>", "<![CDATA[<b>]]>", "<b>"),
                ("<xsl:text>&amp;</xsl:text>", "&nbsp;&lt;", "&nbsp;<")]
        for original, translation, text in rows:
            with self.subTest(original=original, translation=translation):
                self.assertEqual(text + "|<&>", self.shown(template, original, translation))

    def test_characters_that_xml_cannot_hold(self):
        self.put_template(marked("Name"))
        rows = [(escape, f"U+{ord(letter):04X}") for escape, letter in
                (("\\a", "\a"), ("\\b", "\b"), ("\\f", "\f"), ("\\v", "\v"), ("\x01", "\x01"),
                 ("\x1b", "\x1b"), ("\ufffe", "\ufffe"), ("\uffff", "\uffff"))]
        for text, name in rows:
            for raw in ((), ("--raw",)):
                with self.subTest(text=text, raw=raw):
                    self.write("de.po", f'msgid "Name"\nmsgstr "x{text}y"\n')
                    before = self.contents()
                    self.expect_error(
                        self.report("--set", "A=1", "--lang", "de.po", *raw), 2,
                        f"rgen: de.po:2:1: the translation cannot be XML: the text contains "
                        f"{name} at byte 1; correct the catalogue")
                    self.assertEqual(before, self.contents())

    def test_in_texts_that_no_report_shows_they_do_no_harm(self):
        self.put_template(marked("Name"))
        self.write("de.po", 'msgid ""\nmsgstr "\\a"\nmsgid "\\b"\nmsgstr ""\nmsgid "Name"\n'
                            'msgid_plural "\\v"\nmsgstr[0] "Namen"\nmsgstr[1] "\\f"\n')
        self.assertEqual((["Namen"], []), self.lines_of("--lang", "de.po"))


class MarkupThatIsNotWellFormed(TranslationCase):
    """The library would drop references of the template without a message."""

    broken = ["<b>5 < 6</b> ok", "<b>a", "a</b>", "</r><r>", "<b a=1/>", "<![CDATA[x", "<!-- a -- -->",
              "<?xml version='1.0'?>", "<!DOCTYPE r><b/>", "<a:b:></a>"]
    whole = ["<b>x</b>", "plain", "<q:b/>", "<b q:a='&lt;'/>", "<!-- a --><?b c?>",
             "<![CDATA[x]]> y <![CDATA[<]]>"]
    original = "<b>Bold</b>"

    def setUp(self):
        super().setUp()
        self.put_template(marked("Name") + "<!-- -->")

    def test_where_the_original_has_markup(self):
        for text in self.broken:
            with self.subTest(text=text):
                self.write("de.po", f'msgid "Name"\nmsgstr ""\n\nmsgid "{self.original}"\n'
                                    f'msgstr "{text}"\n')
                before = self.contents()
                self.expect_error_like(
                    self.report("--set", "A=1", "--lang", "de.po"), 2,
                    r"^rgen: de\.po:5:1: the translation is not well-formed: .+; correct the catalogue$")
                self.assertEqual(before, self.contents())
        for text in self.whole:
            with self.subTest(text=text):
                self.write("de.po", catalogue({"Name": "x", self.original: text}))
                self.assertEqual((["x"], []), self.lines_of("--lang", "de.po"))

    def test_after_a_section(self):
        original = "<xsl:text>a</xsl:text>"
        self.put_template(stylesheet(f'QT_TRANSLATE_NOOP("QObject", "{original}")|&lt;&amp;'))
        self.write("de.po", catalogue({original: "<![CDATA[x<]]> ]]> y"}))
        self.assertEqual((["x< ]]> y|<&"], []), self.lines_of("--lang", "de.po"))

    def test_raw_translations_are_noted(self):
        texts = [*self.broken, "a & b", "a ]]> b", "<", "&"]
        for text in texts:
            with self.subTest(text=text):
                self.write("de.po", catalogue({"Other": "<b>x</b> &amp; &#8364;", "Unused": text}))
                result = self.report("--set", "A=1", "--lang", "de.po", "--raw")
                self.expect_done(result)
                self.assertRegex(result.notes[0], "^1 translation is not well-formed, and with --raw a "
                                                  r"part of the template may be lost: de\.po:10:1: .+")
        self.write("de.po", catalogue({f"Unused {i}": text for i, text in enumerate(texts)}))
        result = self.report("--set", "A=1", "--lang", "de.po", "--raw")
        self.assertRegex(result.notes[0], f"^{len(texts)} translations are not well-formed")

    def test_an_original_with_half_of_an_element(self):
        """Its other half is elsewhere in the template."""
        self.write("de.po", catalogue({"Name": "x", "</b> a <b>": "</b> c <b>"}))
        self.assertEqual((["x"], []), self.lines_of("--lang", "de.po"))

    def test_a_large_catalogue(self):
        self.write("de.po", catalogue({"Name": "x", **{f"<b>{i}</b>": f"<i>{i}</i>"
                                                       for i in range(50_000)}}))
        self.assertEqual((["x"], []), self.lines_of("--lang", "de.po"))


class BrokenCatalogues(TranslationCase):

    def test_the_place_of_the_error(self):
        rows = [('msgid "Name"\nmsgstr "x\n', 2), ('msgid "Name"\n\nnonsense\n', 3),
                ('# Größe\n\nmsgstr "x"\nmsgid "Name"\n', 3),
                ('msgid "Name"\nmsgstr "a\\qb"\n', 2), ('msgid "Name"\r\nmsgstr x\r\n', 2)]
        for content, line in rows:
            with self.subTest(content=content):
                self.write("de.po", content)
                before = self.contents()
                self.expect_error_like(self.report("--set", "A=1", "--lang", "de.po"), 2,
                                       rf"^rgen: de\.po:{line}:\d+: .+")
                self.assertEqual(before, self.contents())

    def test_the_column_of_the_error_counts_characters(self):
        self.write("de.po", 'msgid "Größe" x\nmsgstr "x"\n')
        self.expect_error_like(self.report("--set", "A=1", "--lang", "de.po"), 2,
                               r"^rgen: de\.po:1:15: .+")

    def test_bytes_that_are_not_utf8(self):
        self.write("de.po", b'msgid "Name"\nmsgstr "Gr\xf6\xdfe"\n')
        self.expect_error_like(self.report("--set", "A=1", "--lang", "de.po"), 2,
                               r"^rgen: de\.po:.*UTF-8")

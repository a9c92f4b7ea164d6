"""rgen check: catalogues, and translations that break the place of their marker.

SPDX-License-Identifier: MIT
"""

import shutil

from cli_case import CliCase
from cli_templates import GUID, OTHER_GUID, catalogue, marked, stylesheet

TRANSLATIONS = "case/.rgen/translations/"
DE = TRANSLATIONS + "acquisition-de.po"


def marker(text):
    return f'QT_TRANSLATE_NOOP("QObject", "{text}")'


class CatalogueCase(CliCase):

    def setUp(self):
        super().setUp()
        shutil.rmtree(self.folder / "case/.rgen/templates")
        self.put_template(marked("Name", "Size"))

    def findings(self):
        """The findings in catalogues, as lines without the folder."""
        document = self.rgen("check", "-d", "case", "--json").document
        return [f"{row['file'].replace(TRANSLATIONS, '')}:{row['line']}:{row['column']}: "
                f"{row['severity']}: {row['message']}; {row['advice']}"
                for row in document["findings"] if row["file"].endswith(".po")]


class Files(CatalogueCase):

    def test_a_good_catalogue(self):
        self.write(DE, catalogue({"Name": "Name", "Size": "Größe"}))
        self.assertEqual([], self.findings())

    def test_files_that_cannot_be_read_as_catalogues(self):
        rows = [('msgid "Name"\nmsgstr "x\n', "2:8: error: the text has no closing quote on its line"),
                ('# Größe\n\nmsgstr "x"\n', "3:1: error: msgstr without a msgid before it"),
                ('msgid "Größe" x\n', '1:15: error: "x" is no keyword of a PO file')]
        for content, message in rows:
            with self.subTest(content=content):
                self.write(DE, content)
                self.assertEqual([f"acquisition-de.po:{message}; correct the catalogue"],
                                 self.findings())
                self.assertEqual(3, self.rgen("check", "-d", "case").code)

    def test_bytes_that_are_not_utf8(self):
        self.write(DE, b'msgid "Name"\nmsgstr "Gr\xf6\xdfe"\n')
        self.assertEqual(["acquisition-de.po:2:11: error: the catalogue is not valid UTF-8; "
                          "convert it with msgconv"], self.findings())

    def test_another_encoding(self):
        self.write(DE, catalogue({"Name": "a"}).replace("UTF-8", "KOI8-R"))
        self.assertEqual(["acquisition-de.po:2:1: error: the catalogue is in KOI8-R instead of UTF-8; "
                          "convert it with msgconv"], self.findings())

    def test_characters_and_markup_that_xml_does_not_allow(self):
        self.put_template(stylesheet(marker("Name") + marker("<b>Bold</b>"), "xml"))
        self.write(DE, 'msgid "Name"\nmsgstr "x\\a"\n\nmsgid "<b>Bold</b>"\nmsgstr "<b>fett"\n')
        first, second = self.findings()
        self.assertEqual("acquisition-de.po:2:1: error: the translation cannot be XML: the text "
                         "contains U+0007 at byte 1; correct the translation", first)
        self.assertIn("acquisition-de.po:5:1: error: the translation is not well-formed: ", second)

    def test_two_entries_for_one_text(self):
        self.write(DE, catalogue({"Name": "a", "Size": "b"}) + '\nmsgid "Name"\nmsgstr "c"\n')
        self.assertEqual(["acquisition-de.po:12:1: warning: this text has an entry in line 6, too; "
                          "remove one of them"], self.findings())

    def test_texts_that_no_template_has(self):
        self.write(DE, catalogue({"Name": "a", "Gone": "b"}) + '\n#~ msgid "Old"\n#~ msgstr "x"\n')
        self.assertEqual(['acquisition-de.po:9:1: note: no template has this text; '
                          '"rgen messages --merge" makes it a comment'], self.findings())

    def test_texts_of_another_type_that_uses_the_catalogue(self):
        self.make_data_dir(types=[("acquisition.xsl", GUID, "a.xml"), ("scan.xsl", OTHER_GUID, "s.xml")],
                           templates={"txt/acquisition.xsl": marked("Name"),
                                      "txt/scan.xsl": marked("Scan")})
        self.write(TRANSLATIONS + "de.po", catalogue({"Name": "a", "Scan": "b"}))
        self.assertEqual([], self.findings())

    def test_fuzzy_translations_break_nothing(self):
        self.put_template(stylesheet(f"<p t='{marker('Name')}'/>", "xml"))
        self.write(DE, '#, fuzzy\nmsgid "Name"\nmsgstr "{\\a"\n')
        self.assertEqual([], self.findings())


class Places(CatalogueCase):
    """A translation must not end or change the place in which its marker is."""

    def finding(self, body, translation, original="Name"):
        """What is said about one translation, from the column on."""
        self.put_template(stylesheet(body.replace("%s", marker(original)), "xml"))
        self.write(DE, f'msgid "{original}"\nmsgstr "{translation}"\n')
        found = self.findings()
        self.assertLessEqual(len(found), 1, found)
        start = "acquisition-de.po:2:"
        self.assertTrue(all(line.startswith(start) for line in found), found)
        return found[0][len(start):] if found else None

    def fails(self):
        """Whether the library refuses the translated template."""
        return self.report("--set", "A=1", "--lang", "de").code == 1

    def test_braces_in_an_attribute(self):
        begins = 'error: "{" in an attribute begins an expression; write "{{"'
        ends = 'error: "}" in an attribute ends an expression; write "}}"'
        rows = [("Größe {", f"15: {begins}"), ("a { b }", f"11: {begins}"), ("a }", f"11: {ends}"),
                ("a {{ b }}", None), ("a {{{", f"11: {begins}")]
        for body in ("<p t='%s'/>", '<p t="%s"/>', "<p t='a {1} %s'/>",
                     "<xsl:element name='p{{%s'/>"):
            for translation, message in rows:
                with self.subTest(body=body, translation=translation):
                    self.assertEqual(message, self.finding(body, translation))
                    if body == "<p t='%s'/>" and " b }" not in translation:
                        self.assertEqual(message is not None, self.fails())

    def test_braces_where_they_are_signs(self):
        for body in ("%s", "<xsl:text>%s</xsl:text>", "<xsl:value-of select='\"%s\"'/>",
                     "<p t=\"{concat('%s', 1)}\"/>", "<p><xsl:attribute name='a'>%s</xsl:attribute></p>"):
            with self.subTest(body=body):
                self.assertIsNone(self.finding(body, "a { b"))
                self.assertFalse(self.fails())

    def test_an_original_with_an_expression(self):
        body = "<p t='%s'/>"
        self.assertIsNone(self.finding(body, "{1} von zwei", "{1} of two"))
        self.assertFalse(self.fails())
        self.assertEqual('9: error: the expression is not closed; write as many "}" as "{"',
                         self.finding(body, "{1 von zwei", "{1} of two"))

    def test_quotes_that_end_the_attribute(self):
        self.assertEqual("11: error: '\"' ends the attribute \"t\"; write “ and ”",
                         self.finding('<p t="%s"/>', 'a \\"b\\"'))
        self.assertEqual('16: error: "\'" ends the attribute "t"; write ’',
                         self.finding("<p t='%s'/>", "das war's", "that's"))
        for body, translation in (("<p t='%s'/>", 'a \\"b\\"'), ('<p t="%s"/>', "a'b"),
                                  ("<p t='%s'/>", "a'b")):
            self.assertIsNone(self.finding(body, translation), (body, translation))
            self.assertFalse(self.fails())

    def test_quotes_that_end_a_string_of_xpath(self):
        message = 'error: "\'" ends the XPath string; write ’'
        for body in ("<xsl:value-of select=\"concat('%s', 1)\"/>",
                     "<xsl:if test=\"'a' != '%s'\">x</xsl:if>", "<p t=\"{concat('%s', 1)}\"/>"):
            with self.subTest(body=body):
                self.assertEqual(f"11: {message}", self.finding(body, "it's"))
                self.assertTrue(self.fails())
                self.assertIsNone(self.finding(body, "it’s"))
                self.assertFalse(self.fails())

    def test_quotes_that_end_a_string_of_a_style_sheet(self):
        body = '<style>p:before {content: "%s"}</style>'
        self.assertEqual("11: error: '\"' ends the string in the style or script; write “ and ”",
                         self.finding(body, 'a \\"b\\"'))
        self.assertIsNone(self.finding(body, "it's"))

    def test_dashes_in_a_comment(self):
        self.assertEqual('11: error: a comment must not contain "--"; write a single dash',
                         self.finding("<!-- %s --><p/>", "a --"))

    def test_a_cdata_section(self):
        self.assertEqual("1: warning: in a CDATA section references are shown as they are written; "
                         "move the marker out of the section",
                         self.finding("<p><![CDATA[%s]]></p>", "a & b"))
        self.assertIsNone(self.finding("<p><![CDATA[%s]]></p>", "a"))

    def test_the_place_in_a_translation_of_several_lines(self):
        self.put_template(stylesheet(f"<p t='{marker('Name')}'/>", "xml"))
        self.write(DE, 'msgid "Name"\nmsgstr ""\n"Größe "\n"und {"\n')
        self.assertEqual(['acquisition-de.po:4:6: error: "{" in an attribute begins an expression; '
                          'write "{{"'], self.findings())
        result = self.rgen("check", "-d", "case")
        self.assertIn('    "und {"\n         ^\n', result.text)

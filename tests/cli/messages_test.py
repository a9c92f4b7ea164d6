"""rgen messages: collecting marked texts, merging catalogues, counting translations.

SPDX-License-Identifier: MIT
"""

import os
import re
import shutil

from cli_case import ON_WINDOWS, CliCase, linux_only, search_path
from cli_templates import GUID, OTHER_GUID, catalogue, marked, stylesheet

TRANSLATIONS = "case/.rgen/translations/"
DE = TRANSLATIONS + "acquisition-de.po"
HEADER = 'msgid ""\nmsgstr ""\n"Content-Type: text/plain; charset=UTF-8\\n"\n"Language: de\\n"\n'


def marker(text):
    return f'QT_TRANSLATE_NOOP("QObject", "{text}")'


class MessagesCase(CliCase):

    def setUp(self):
        super().setUp()
        shutil.rmtree(self.folder / "case/.rgen/templates")
        self.put_template(marked("Name", "Size", "Speed"))

    def messages(self, *args, **settings):
        return self.rgen("messages", "-d", "case", *args, **settings)

    def template_of_catalogues(self, *args):
        result = self.messages("-o", "-", *args)
        self.assertEqual(0, result.code, result)
        return result.text

    def entries(self, text):
        """The entries after the header."""
        return text.split("\n\n")[1:]


class Collecting(MessagesCase):

    def test_texts_with_their_places_in_the_order_of_the_templates(self):
        self.put_template(stylesheet(f"{marker('Size')}\n{marker('Name')}", "html"), "html")
        self.assertEqual([
            '#: templates/html/acquisition.xsl:4\n#: templates/txt/acquisition.xsl:4\n'
            'msgid "Size"\nmsgstr ""',
            '#: templates/html/acquisition.xsl:5\n#: templates/txt/acquisition.xsl:4\n'
            'msgid "Name"\nmsgstr ""',
            '#: templates/txt/acquisition.xsl:4\nmsgid "Speed"\nmsgstr ""\n'],
            self.entries(self.template_of_catalogues()))

    def test_a_template_that_two_formats_share_counts_once(self):
        for name in ("html", "pdf"):
            self.put_template(stylesheet(marker("Page"), "html"), name)
        self.assertIn("#: templates/html/acquisition.xsl:4\nmsgid", self.template_of_catalogues())

    def test_what_the_library_replaces_and_nothing_else(self):
        matching = ['QT_TRANSLATE_NOOP ( "QObject" , "a")', 'QT_TRANSLATE_NOOP("QObject", " b ")',
                    'xQT_TRANSLATE_NOOP("QObject", "c")', '<!-- QT_TRANSLATE_NOOP("QObject", "d") -->',
                    'QT_TRANSLATE_NOOP(\n"QObject", "e\nf")']
        others = ['QT_TRANSLATE_NOOP("QObject",  "g")', 'QT_TRANSLATE_NOOP("Other", "h")',
                  'QT_TRANSLATE_NOOP("QObject", "i" )', 'QT_TRANSLATE("QObject", "j")']
        self.put_template(stylesheet("\n".join(matching + others)))
        document = self.messages("--json").document
        self.assertEqual(["a", " b ", "c", "d", "e\nf"],
                         [text["text"] for text in document["texts"]])
        self.assertEqual(["templates/txt/acquisition.xsl:4"], document["texts"][0]["places"])

    def test_signs_that_have_a_meaning_in_catalogues(self):
        self.put_template(marked("a\\b", "tab\there", "Größe 速度", "two\nlines"))
        self.assertEqual(['msgid "a\\\\b"', 'msgid "tab\\there"', 'msgid "Größe 速度"',
                          'msgid ""\n"two\\n"\n"lines"'],
                         [re.search(r"msgid .*(\n\".*)*", entry)[0]
                          for entry in self.entries(self.template_of_catalogues())])

    def test_what_cannot_be_translated_is_noted(self):
        self.put_template(stylesheet(marker("") + marker("Name")))
        result = self.messages()
        self.expect_notes(result, "case/.rgen/templates/txt/acquisition.xsl:4:25: "
                                  "an empty text cannot be translated")
        self.assertEqual(1, len(self.messages("--json").document["texts"]))

    def test_a_file_name_with_blanks_is_one_word(self):
        self.make_data_dir(types=[("my report.xsl", OTHER_GUID, "data.xml")],
                           templates={"txt/my report.xsl": marked("Name")})
        self.assertIn("#: \u2068templates/txt/my report.xsl\u2069:4\n",
                      self.template_of_catalogues())

    def test_the_file_is_written_and_replaced(self):
        for name in ("texts.pot", TRANSLATIONS + "acquisition.pot"):
            self.write(name, "old")
            self.expect_done(self.messages("-o", name))
            self.assertIn('msgid "Speed"', self.text_of(name))

    def test_a_file_of_the_data_directory_is_not_overwritten(self):
        name = "case/.rgen/templates/txt/acquisition.xsl"
        self.expect_error(self.messages("-o", name), 2,
                          f'rgen messages: "{name}" is a file of the data directory; '
                          "choose another --output")

    @linux_only
    def test_gettext_reads_the_file(self):
        self.put_template(marked("a\\b", "Größe", "two\nlines"))
        self.expect_done(self.messages("-o", "texts.pot"))
        program = self.start("-c", "-o", os.devnull, "texts.pot", program=shutil.which("msgfmt"))
        self.assertEqual(0, program.finish().code)


class Arguments(MessagesCase):

    def test_the_type_as_operand_or_option(self):
        self.make_data_dir(types=[("acquisition.xsl", GUID, "a.xml"),
                                  ("scan.xsl", OTHER_GUID, "s.xml")],
                           templates={"txt/scan.xsl": marked("Scan")})
        for words in (["scan"], ["-t", "scan"]):
            self.assertEqual("scan", self.messages("--json", *words).document["type"])
        self.expect_error(self.messages("scan", "-t", "scan"), 2,
                          "rgen messages: the report type is given twice; leave --type out")

    def test_options_that_exclude_each_other(self):
        for args in (["-o", "-", "--json"], ["--lang", "fr"], ["--merge", "--lang", "x/y"]):
            with self.subTest(args=args):
                self.assertEqual(2, self.messages(*args).code)


class Table(MessagesCase):

    def test_the_state_of_each_language(self):
        self.write(DE, catalogue({"Name": "Name"})
                   + '\n#, fuzzy\nmsgid "Size"\nmsgstr "Grösse"\n\nmsgid "Gone"\nmsgstr "Weg"\n'
                     '\n#~ msgid "Old"\n#~ msgstr "Alt"\n')
        self.write(TRANSLATIONS + "ru.po", catalogue({"Name": "a", "Size": "b", "Speed": "c"}))
        result = self.messages()
        self.expect_done(result)
        self.assertEqual(
            "language  translated  missing  fuzzy  stale  catalogue\n"
            "de                 1        1      1      1  case/.rgen/translations/acquisition-de.po\n"
            "ru                 3        0      0      0  case/.rgen/translations/ru.po\n",
            result.text)
        self.assertEqual(["rgen: 3 texts in the templates of acquisition"], result.messages)

    def test_the_document(self):
        self.write(DE, catalogue({"Name": "Name", "Gone": "Weg"}))
        document = self.messages("--json").document
        self.assertEqual([{"language": "de", "catalogue": DE, "translated": 1,
                           "missing": ["Size", "Speed"], "fuzzy": [], "stale": ["Gone"]}],
                         document["languages"])
        self.assertTrue(document["ok"])

    def test_no_language(self):
        result = self.messages()
        self.expect_done(result)
        self.assertEqual(b"", result.out)
        self.assertIn("there is no catalogue", result.err)

    def test_a_broken_catalogue(self):
        self.write(DE, 'msgid "Name"\nmsgstr "x\n')
        for args in ([], ["--merge"], ["--check"]):
            self.expect_error(self.messages(*args), 2,
                              f"rgen: {DE}:2:8: the text has no closing quote on its line; "
                              "correct the catalogue")


class Check(MessagesCase):

    def test_complete_languages(self):
        self.write(DE, catalogue({"Name": "a", "Size": "b", "Speed": "c", "Gone": "d"}))
        self.expect_done(self.messages("--check"))

    def test_a_missing_and_a_fuzzy_translation(self):
        self.write(DE, catalogue({"Name": "a"}) + '\n#, fuzzy\nmsgid "Size"\nmsgstr "b"\n')
        result = self.messages("--check")
        self.assertEqual(3, result.code)
        self.assertEqual(['rgen: de: 1 text without a translation: "Speed"',
                          'rgen: de: 1 fuzzy translation, not used in reports: "Size"'],
                         result.messages[1:])
        self.assertFalse(self.messages("--check", "--json").document["ok"])

    def test_the_sample_is_complete(self):
        self.expect_done(self.rgen("init", "sample"))
        self.expect_done(self.rgen("messages", "-d", "sample", "--check"))


class MergeCase(MessagesCase):
    """Both ways of merging must lead to the same translations."""

    ways = {"alone": search_path()}
    if not ON_WINDOWS:
        ways["with msgmerge"] = {}

    def setUp(self):
        super().setUp()
        if not ON_WINDOWS and not shutil.which("msgmerge"):
            self.fail("msgmerge is missing; install it with: scripts/setup test")

    def merged(self, content, *args):
        """The catalogue after a merge, in each way."""
        for way, env in self.ways.items():
            with self.subTest(way=way):
                if content is not None:
                    self.write(DE, content)
                result = self.messages("--merge", *args, env=env)
                self.expect_notes(result)
                before = self.contents()
                self.expect_notes(self.messages("--merge", *args, env=env))
                self.assertEqual(before, self.contents(), "a second merge changes something")
                yield self.text_of(DE)


class Merge(MergeCase):

    def test_new_texts_are_added_and_translations_stay(self):
        for text in self.merged(HEADER + '\n# by hand\nmsgid "Speed"\nmsgstr "Tempo"\n'):
            self.assertEqual(
                HEADER + '\n#: templates/txt/acquisition.xsl:4\nmsgid "Name"\nmsgstr ""\n'
                '\n#: templates/txt/acquisition.xsl:4\nmsgid "Size"\nmsgstr ""\n'
                '\n# by hand\n#: templates/txt/acquisition.xsl:4\nmsgid "Speed"\nmsgstr "Tempo"\n',
                text)

    def test_a_complete_merged_catalogue_is_not_written(self):
        for _ in self.merged(HEADER + '\nmsgid "Speed"\nmsgstr "Tempo"\n'):
            self.assertEqual([], self.messages("--merge", "--json").document["changed"])

    def test_texts_that_no_template_has_become_comments(self):
        for text in self.merged(catalogue({"Completely different": "Ganz anders", "Empty": ""})):
            self.assertTrue(text.endswith(
                '\n\n#~ msgid "Completely different"\n#~ msgstr "Ganz anders"\n'), text)
            self.assertNotIn("Empty", text)

    def test_comments_become_translations_again(self):
        for text in self.merged(HEADER + '\n#~ msgid "Size"\n#~ msgstr "Größe"\n'):
            self.assertIn('\nmsgid "Size"\nmsgstr "Größe"\n', text)
            self.assertNotIn("#~", text)

    def test_a_changed_text_gets_a_fuzzy_translation(self):
        self.put_template(marked("The speed of the device"))
        for text in self.merged(HEADER + '\nmsgid "The speed of a device"\nmsgstr "Das Tempo"\n'):
            self.assertIn('\n#, fuzzy\n#| msgid "The speed of a device"\n'
                          'msgid "The speed of the device"\nmsgstr "Das Tempo"\n', text)
            self.assertNotIn("#~", text)
            self.write("report.txt", "")
            result = self.report("--set", "A=1", "--lang", "de")
            self.assertEqual("The speed of the device\n", self.text_of("report.txt"))
            self.assertIn("1 text", result.notes[0])

    def test_contexts_and_plural_forms_stay(self):
        content = (HEADER + '\nmsgctxt "QObject"\nmsgid "Size"\nmsgstr "Größe"\n'
                   '\nmsgid "Speed"\nmsgid_plural "Speeds"\nmsgstr[0] "Tempo"\nmsgstr[1] "Tempi"\n')
        for text in self.merged(content):
            self.assertIn('\nmsgctxt "QObject"\nmsgid "Size"\nmsgstr "Größe"\n', text)
            self.assertIn('\nmsgid_plural "Speeds"\nmsgstr[0] "Tempo"\nmsgstr[1] "Tempi"\n', text)
            self.assertNotIn("fuzzy", text)
            self.assertNotIn("#~", text)

    def test_catalogues_that_gettext_would_refuse(self):
        texts = catalogue({"Name": "Größe", "Size": "b"})
        rows = {"a byte order mark": "\ufeff" + texts, "Windows line ends": texts.replace("\n", "\r\n"),
                "no header": texts[texts.index('msgid "Name"'):]}
        for name, content in rows.items():
            for text in self.merged(content):
                self.assertIn('\nmsgid "Name"\nmsgstr "Größe"\n', text, name)

    def test_texts_of_several_lines(self):
        self.put_template(marked("two\nlines"))
        for text in self.merged(HEADER + '\nmsgid "two\\nlines"\nmsgstr "zwei\\nZeilen\\n"\n'):
            self.assertIn('\nmsgid ""\n"two\\n"\n"lines"\nmsgstr ""\n"zwei\\n"\n"Zeilen\\n"\n', text)

    def test_a_catalogue_of_several_types_keeps_the_texts_of_all(self):
        self.make_data_dir(types=[("acquisition.xsl", GUID, "a.xml"),
                                  ("scan.xsl", OTHER_GUID, "s.xml")],
                           templates={"txt/acquisition.xsl": marked("Name"),
                                      "txt/scan.xsl": marked("Scan")})
        for way, env in self.ways.items():
            with self.subTest(way=way):
                self.write(TRANSLATIONS + "de.po", catalogue({"Name": "a", "Scan": "b"}))
                self.expect_notes(self.messages("scan", "--merge", env=env))
                text = self.text_of(TRANSLATIONS + "de.po")
                self.assertIn('\nmsgid "Name"\nmsgstr "a"\n', text)
                self.assertIn('\nmsgid "Scan"\nmsgstr "b"\n', text)
                row = self.messages("scan", "--json").document["languages"][0]
                self.assertEqual((1, []), (row["translated"], row["stale"]))

    def test_a_new_language(self):
        for way, env in self.ways.items():
            with self.subTest(way=way):
                name = TRANSLATIONS + f"acquisition-{'fr' if env else 'pt_BR'}.po"
                language = name[:-3].rpartition("-")[2]
                self.expect_notes(self.messages("--merge", "--lang", language, env=env))
                text = self.text_of(name)
                self.assertIn(f'"Language: {language}\\n"', text)
                self.assertIn('msgid "Speed"\nmsgstr ""\n', text)

    @linux_only
    def test_a_link_stays_a_link(self):
        self.write("shared.po", HEADER)
        (self.folder / TRANSLATIONS).mkdir(parents=True, exist_ok=True)
        (self.folder / DE).symlink_to(self.folder / "shared.po")
        self.expect_notes(self.messages("--merge"))
        self.assertTrue((self.folder / DE).is_symlink())
        self.assertIn('msgid "Speed"', self.text_of("shared.po"))

    @linux_only
    def test_a_failure_of_msgmerge_is_noted(self):
        self.write("bin/msgmerge", "#!/bin/sh\necho it does not work\nexit 1\n")
        (self.folder / "bin/msgmerge").chmod(0o755)
        self.write(DE, catalogue({"Name": "a"}))
        result = self.messages("--merge", env=search_path(self.folder / "bin", "/bin", "/usr/bin"))
        self.expect_notes(result, "msgmerge failed, merged without it: it does not work")
        self.assertIn('msgid "Name"\nmsgstr "a"\n', self.text_of(DE))


class LargeCatalogue(MergeCase):

    def test_both_ways_make_the_same_file(self):
        words = ["Device", "sector", "speed", "address", "report", "error", "of the", "and", "with"]
        texts = [f"{words[i % 9]} {words[i * 7 % 9]} {words[i * 5 % 8]} {i}" for i in range(300)]
        self.put_template(marked(*texts[:200]))
        content = catalogue({text: "->" + text for i, text in enumerate(texts) if i % 3 < 2})
        kept = []
        for text in self.merged(content):
            kept.append(re.findall(r'(?<!fuzzy\n)\nmsgid "(.*)"\nmsgstr "(->.*)"', re.sub(
                r"\n#\|.*|\n#:.*", "", text)))
            document = self.messages("--json").document["languages"][0]
            self.assertEqual((134, []), (document["translated"], document["stale"]))
        self.assertEqual([kept[0]] * len(kept), kept)

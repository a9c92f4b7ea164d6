"""rgen new: report types that work from the start.

SPDX-License-Identifier: MIT
"""

import re

from cli_case import CliCase, linux_only, windows_only

GUID = r"[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}"


class New(CliCase):
    has_data_dir = False

    def new(self, *args, folder="case"):
        result = self.rgen("new", "-d", folder, *args)
        self.assertEqual(0, result.code, result)
        return result

    def path_text(self, path):
        return (self.folder / path).read_text(encoding="utf-8")

    def test_a_new_data_directory(self):
        result = self.new("health", "--title", "Health & more", "--langs", "de,ja")
        self.assertEqual(["case/.rgen/templates/html/health.xsl",
                          "case/.rgen/templates/pdf/health.xsl",
                          "case/.rgen/templates/txt/health.xsl",
                          "case/.rgen/translations/health-de.po",
                          "case/.rgen/translations/health-ja.po", "case/health.json",
                          "case/.rgen/tests/health/first/data.json", "case/health.html"],
                         [line.replace("\\", "/") for line in result.text.splitlines()])
        self.assertIn("<h1>Health &amp; more</h1>", self.path_text("case/health.html"))
        self.assertRegex(self.path_text("case/.rgen/config.xml"), f'<type guid="{GUID}">')
        for text in ("Marta Lindqvell", "First item", "A &amp; B"):
            self.assertIn(text, self.path_text("case/health.html"))

    def test_what_was_made_has_no_mistake(self):
        self.new("health", "--langs", "de")
        result = self.rgen("check", "--strict", "-d", "case")
        self.assertEqual((0, ""), (result.code, result.text))

    def test_all_formats_work(self):
        self.new("health")
        for format_name in ("html", "txt"):
            result = self.rgen("report", "-d", "case", "--data", "case/health.json", "-f",
                               format_name, "-o", "-")
            self.assertEqual(0, result.code, result)
            for text in ("Marta Lindqvell", "First item", "Second item"):
                self.assertIn(text, result.text)

    def test_the_catalogues_hold_every_marked_text(self):
        self.new("health", "--langs", "de")
        catalogue = self.path_text("case/.rgen/translations/health-de.po")
        self.assertIn('\nmsgid "Report author"\nmsgstr ""\n', catalogue)
        marked = set()
        for format_name in ("html", "txt"):
            text = self.path_text(f"case/.rgen/templates/{format_name}/health.xsl")
            marked |= set(re.findall(r'QT_TRANSLATE_NOOP\("QObject", "(.*?)"\)', text))
        self.assertEqual(marked, set(re.findall(r'(?m)^msgid "(.+)"$', catalogue)))

    @linux_only
    def test_the_template_for_pdf_is_a_link(self):
        self.new("health")
        link = self.folder / "case/.rgen/templates/pdf/health.xsl"
        self.assertEqual("../html/health.xsl", str(link.readlink()))

    @windows_only
    def test_the_template_for_pdf_is_a_copy(self):
        self.new("health")
        self.assertFalse((self.folder / "case/.rgen/templates/pdf/health.xsl").is_symlink())

    def test_a_copy_that_was_changed_is_found(self):
        self.new("health")
        path = self.folder / "case/.rgen/templates/pdf/health.xsl"
        text = self.path_text("case/.rgen/templates/html/health.xsl")
        path.unlink()
        path.write_text(text.replace("<h1>", "<h1 >"), encoding="utf-8", newline="")
        result = self.rgen("check", "-q", "-d", "case")
        self.assertEqual(3, result.code)
        self.assertRegex(result.text.replace("\\", "/"),
                         r'html/health\.xsl:2:1: error: "case/\.rgen/templates/pdf/health\.xsl" is '
                         r"to be the same as this file, and is not; copy this file there")

    def test_a_second_report_type(self):
        self.make_data_dir()
        before = self.path_text("case/.rgen/config.xml")
        self.new("visits", "--formats", "txt")
        after = self.path_text("case/.rgen/config.xml")
        entry = re.search(r'    <type guid="[^"]*">\s*<persistDataFile>visits_data\.xml.*?</type>\n',
                          after, re.S).group(0)
        self.assertEqual(before, after.replace(entry, ""))
        self.assertEqual(2, len(self.rgen("types", "-d", "case").text.splitlines()))
        self.assertIn("First item", self.path_text("case/visits.txt"))

    def test_every_value_and_list_of_a_data_file_is_shown(self):
        self.write_json("visits.json", {
            "Who's there": "O'Brien & \"Co\"",
            "Device": {"SectorSize:size": 512},
            "Visits": [{"Place": "Aarlund", "Day:date": "2026-03-09"}, {"Place": "Brack"}],
            "Hours": ["1.5", "2.25"]})
        self.new("visits", "--from-data", "visits.json")
        page = self.path_text("case/visits.html")
        for text in ("O'Brien &amp; \"Co\"", "512", "Aarlund", "9.03.2026", "Brack", "1.5", "2.25",
                     "Device sector size"):
            self.assertIn(text, page)
        self.assertEqual(self.path_text("visits.json"), self.path_text("case/visits.json"))
        checked = self.rgen("check", "--strict", "-d", "case")
        self.assertEqual((0, ""), (checked.code, checked.text))

    def test_it_has_a_test_that_passes(self):
        self.new("health")
        self.expect_done(self.rgen("test", "-q", "-d", "case"))
        expected = self.folder / "case/.rgen/tests/health/first/expected.html"
        expected.write_text(expected.read_text(encoding="utf-8").replace("First", "Other"),
                            encoding="utf-8", newline="")
        self.assertEqual(3, self.rgen("test", "-q", "-d", "case").code)

    def test_files_that_the_data_names_are_taken_along(self):
        self.write("given/sector.bin", b"\x01\xab")
        self.write_json("given/disk.json", {"Sector:bytes": "@sector.bin"})
        self.new("disk", "--from-data", "given/disk.json", "--formats", "html")
        self.assertIn("01 AB", self.path_text("case/disk.html"))
        self.expect_done(self.rgen("test", "-q", "-d", "case"))
        self.write_json("given/other.json", {"Sector:bytes": "@../given/sector.bin"})
        self.expect_error(self.rgen("new", "-d", "case", "other", "--from-data",
                                    "given/other.json"), 2,
                          'rgen new: the data names the file "given/../given/sector.bin" outside of '
                          "its folder; move it beside the data")

    def test_nothing_is_overwritten(self):
        self.new("health")
        self.expect_error(self.rgen("new", "-d", "case", "health"), 2,
                          'rgen new: "case/.rgen/config.xml" already has a report type "health"; '
                          "choose another name")
        self.write("other/visits.json", "{}")
        result = self.rgen("new", "-d", "other", "visits")
        self.assertEqual((2, 'rgen: "other/visits.json" exists; nothing was written\n'),
                         (result.code, result.err))
        self.assertFalse((self.folder / "other/.rgen").exists())

    def test_names_formats_and_languages_are_checked(self):
        for arguments, message in {
                ("a/b",): '"a/b" cannot be the name of a report type; use at most 64 letters from '
                          'a to z, digits, "-" and "_"',
                ("NUL",): '"NUL" cannot be the name of a report type; use at most 64 letters from '
                          'a to z, digits, "-" and "_"',
                ("a", "--formats", "docx"): 'there is no format "docx"; there is: html, pdf, txt',
                ("a", "--langs", "german"): '"german" is not the code of a language; write codes '
                                            "such as de, ja or pt-BR"}.items():
            with self.subTest(arguments=arguments):
                self.expect_error(self.rgen("new", "-d", "none", *arguments), 2,
                                  f"rgen new: {message}")
        self.assertFalse((self.folder / "none").exists())

    def test_the_document(self):
        document = self.rgen("new", "-d", "case", "health", "--json").document
        self.assertRegex(document["guid"], GUID)
        self.assertEqual(5, len(document["files"]))
        self.assertEqual("case/health.html", document["page"].replace("\\", "/"))

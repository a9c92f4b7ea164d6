"""rgen test: reports beside what is expected of them, and what no test reaches.

SPDX-License-Identifier: MIT
"""

import xml.etree.ElementTree as ElementTree

import cli_templates
from cli_case import CliCase

TEMPLATE = cli_templates.stylesheet(
    "<xsl:apply-templates select=\"data/properties/property[@name = 'Device']\"/>"
    "<xsl:if test=\"data/properties/property[@name = 'Serial']\">"
    "<xsl:call-template name=\"serial\"/></xsl:if>",
    top_level='<xsl:template match="property">QT_TRANSLATE_NOOP("QObject", "Device"): '
              '<xsl:value-of select="."/><xsl:text>&#10;</xsl:text>'
              '</xsl:template>\n'
              '<xsl:template name="serial">Serial: <xsl:value-of select="'
              "data/properties/property[@name = 'Serial']\"/></xsl:template>\n")
FOLDER = "case/.rgen/tests/acquisition"


class Golden(CliCase):
    def setUp(self):
        super().setUp()
        self.put_template(TEMPLATE)
        self.put_template(cli_templates.PAGE, "html")

    def put_case(self, name="plain", data=None, **files):
        self.write_json(f"{FOLDER}/{name}/data.json", data or {"Device": "TH500"})
        for file, value in files.items():
            self.write_json(f"{FOLDER}/{name}/{file}.json", value)

    def golden(self, *args):
        return self.rgen("test", "-d", "case", *args)

    def file(self, name, case="plain"):
        return self.folder.joinpath(f"{FOLDER}/{case}/{name}")

    def accept(self):
        self.expect_done(self.golden("--accept"))

    def results(self, *args):
        result = self.golden("--json", *args)
        return [(row["name"], row["format"], row["outcome"])
                for row in result.document["results"]]

    def test_a_report_that_is_as_expected_passes(self):
        self.put_case(options={"formats": "txt"})
        self.accept()
        self.assertEqual(b"Device: TH500\n", self.file("expected.txt").read_bytes())
        result = self.golden()
        self.expect_done(result)
        self.assertIn("passed    acquisition/plain txt\n", result.text)
        self.assertIn("rgen: 1 report as expected", result.err)

    def test_a_difference_is_shown_and_kept_for_a_look(self):
        self.put_case(options={"formats": "txt"})
        self.accept()
        self.put_case(data={"Device": "TH501"}, options={"formats": "txt"})
        result = self.golden()
        self.assertEqual(3, result.code)
        self.assertTrue(result.text.startswith(
            "FAILED    acquisition/plain txt: 1 line differs\n"
            "    @@ line 1\n"
            "    - Device: TH500\n"
            "    + Device: TH501\n"
            "                  ^\n"), result.text)
        self.assertEqual(b"Device: TH500\n", self.file("expected.txt").read_bytes())
        self.assertEqual(b"Device: TH501\n", self.file("expected.txt.new").read_bytes())

    def test_an_accepted_difference_is_expected_from_then_on(self):
        self.put_case(options={"formats": "txt"})
        self.accept()
        self.put_case(data={"Device": "TH501"}, options={"formats": "txt"})
        self.assertEqual(3, self.golden().code)
        result = self.golden("--accept")
        self.assertIn("accepted  acquisition/plain txt\n", result.text)
        self.assertEqual(b"Device: TH501\n", self.file("expected.txt").read_bytes())
        self.assertFalse(self.file("expected.txt.new").exists())
        self.assertEqual([("plain", "txt", "passed")], self.results())

    def test_a_new_case_says_what_to_do(self):
        self.put_case()
        result = self.golden()
        self.assertEqual(3, result.code)
        self.assertIn("expected.txt\" yet; look at the new report and accept it with --accept",
                      result.text)
        self.assertEqual([("plain", "html", "not-expected"), ("plain", "txt", "not-expected")],
                         self.results())

    def test_the_formats_are_those_that_have_an_expected_report(self):
        self.put_case()
        self.write(f"{FOLDER}/plain/expected.txt", "Device: TH500\n")
        self.assertEqual([("plain", "txt", "passed")], self.results())

    def test_a_pdf_is_its_page(self):
        self.put_case(options={"formats": ["pdf"]})
        self.accept()
        self.assertIn(b"<p>TH500</p>", self.file("expected.pdf.html").read_bytes())

    def test_times_are_those_of_utc_or_of_the_options(self):
        self.put_template(cli_templates.LISTING)
        data = {"At:datetime": "2026-03-09T08:14:07Z", "Local:datetime": "2026-03-09T08:14:07"}
        self.put_case("utc", data, options={"formats": "txt"})
        self.put_case("west", data, options={"formats": "txt", "timezone": "-05:00"})
        self.accept()
        self.assertEqual({"At": " 9.03.2026 08:14:07", "Local": " 9.03.2026 08:14:07"},
                         self.listed(self.file("expected.txt", "utc").read_bytes()))
        self.assertEqual({"At": " 9.03.2026 03:14:07", "Local": " 9.03.2026 08:14:07"},
                         self.listed(self.file("expected.txt", "west").read_bytes()))

    def test_persistent_data_is_the_cases_own(self):
        self.put_template(cli_templates.LISTING)
        self.expect_done(self.rgen("persist", "set", "-d", "case", "Lab=Outside"))
        self.put_case("own", persist={"Lab": "A & B"}, options={"formats": "txt"})
        self.put_case("without", options={"formats": "txt"})
        self.accept()
        self.assertEqual({"Device": "TH500", "Lab": "A & B"},
                         self.listed(self.file("expected.txt", "own").read_bytes()))
        self.assertEqual({"Device": "TH500"},
                         self.listed(self.file("expected.txt", "without").read_bytes()))
        self.assertEqual(b"Outside\n", self.rgen("persist", "get", "-d", "case", "Lab").out)

    def test_the_language_is_that_of_the_options(self):
        self.write("case/.rgen/translations/de.po", cli_templates.catalogue({"Device": "Gerät"}))
        self.put_case(options={"formats": "txt", "lang": "de"})
        self.accept()
        self.assertEqual("Gerät: TH500\n", self.file("expected.txt").read_text("utf-8"))

    def test_line_ends_that_were_converted_are_named(self):
        self.put_case()
        self.write(f"{FOLDER}/plain/expected.txt", "Device: TH500\r\n")
        result = self.golden()
        self.assertEqual(3, result.code)
        self.assertIn("only the ends of lines differ", result.text)

    def test_a_report_that_fails_is_a_failed_test_and_the_others_run(self):
        self.put_case("a", options={"formats": ["html", "txt"]})
        self.put_template(cli_templates.FAILING, "html")
        result = self.golden("--json", "--accept")
        self.assertEqual(3, result.code)
        [html, txt] = result.document["results"]
        self.assertEqual("failed", html["outcome"])
        self.assertIn("0xC0020002", html["reason"])
        self.assertEqual("accepted", txt["outcome"])

    # ---- What no test reaches ----------------------------------------------------------------

    def untested(self):
        result = self.golden("--json")
        return [(row["code"], row["line"], row["message"]) for row in result.document["untested"]]

    def test_templates_texts_and_values_that_no_test_reaches(self):
        self.put_case(options={"formats": ["txt"]})
        self.accept()
        rows = self.untested()
        self.assertIn(("untested-template", 5, 'no test reaches template "serial"'), rows)
        self.assertIn(("untested-value", 5, 'no test has a value "Serial"'), rows)
        self.assertIn(("untested-format", 1, "no test makes a report in html"), rows)

    def test_a_second_case_reaches_the_rest(self):
        self.put_case(options={"formats": ["txt", "html"]})
        self.put_case("serial", {"Device": "TH500", "Serial": "7K"}, options={"formats": "txt"})
        self.accept()
        self.assertEqual([], self.untested())

    def test_places_are_those_of_the_file_with_translations_too(self):
        self.write("case/.rgen/translations/de.po",
                   cli_templates.catalogue({"Device": "Ger<b/>ät und noch mehr"}))
        self.put_template(TEMPLATE.replace('"Device")', '"Device<i/>")'))
        self.put_case(options={"formats": "txt", "lang": "de"})
        self.accept()
        codes = [row for row in self.untested() if row[0] == "untested-template"]
        self.assertEqual([("untested-template", 5, 'no test reaches template "serial"')], codes)

    def test_a_value_of_that_shows_nothing(self):
        self.put_template(cli_templates.stylesheet(
            "a<xsl:value-of select=\"//property[. = 'x']\"/>\n<xsl:value-of select=\"1\"/>"))
        self.put_case(options={"formats": "txt"})
        self.accept()
        self.assertIn(("untested-text", 4, "no test shows a text here"), self.untested())
        self.assertNotIn(("untested-text", 5, "no test shows a text here"), self.untested())

    # ---- Output ------------------------------------------------------------------------------

    def test_junit(self):
        self.put_case("good", options={"formats": "txt"})
        self.accept()
        self.put_case("new", options={"formats": "txt"})
        result = self.golden("--junit", "results.xml")
        self.assertEqual(3, result.code)
        suites = ElementTree.parse(self.folder / "results.xml").getroot()
        self.assertEqual(("2", "1", "0"), (suites.get("tests"), suites.get("failures"),
                                           suites.get("errors")))
        good, new = suites.iter("testcase")
        self.assertEqual(("acquisition", "good (txt)", []),
                         (good.get("classname"), good.get("name"), list(good)))
        [failure] = new
        self.assertEqual("not-expected", failure.get("type"))

    def test_junit_on_standard_output_is_alone_there(self):
        self.put_case(options={"formats": "txt"})
        self.accept()
        suites = ElementTree.fromstring(self.golden("--junit", "-").out)
        self.assertEqual("1", suites.get("tests"))

    def test_json_and_junit_on_standard_output_exclude_each_other(self):
        result = self.golden("--json", "--junit", "-")
        self.assertEqual(2, result.code)
        self.assertEqual(["rgen test: --json and --junit - exclude each other; both write to "
                          "standard output"], result.messages)

    # ---- Mistakes ----------------------------------------------------------------------------

    def test_a_data_directory_without_tests(self):
        self.expect_error_like(self.golden(), 2, r'^rgen: there is no test in ".*tests"; write values')

    def test_a_folder_that_is_no_report_type(self):
        self.put_case(options={"formats": "txt"})
        self.write_json("case/.rgen/tests/aquisition/plain/data.json", {"Device": "TH500"})
        result = self.golden("--accept")
        self.assertEqual(0, result.code)
        [note] = result.notes
        self.assertRegex(note, r'^the tests in ".*aquisition" are not run: there is no report type '
                               r'"aquisition"; did you mean "acquisition"\?$')

    def test_a_case_without_data(self):
        self.write_json(f"{FOLDER}/plain/options.json", {})
        self.expect_error_like(self.golden(), 2,
                               r'^rgen: acquisition/plain: there is no ".*data.json"; '
                               r'write the values of the test into it$')

    def test_unusable_options(self):
        for options, expected in {
                '{"format": "txt"}': r'there is no option "format"; did you mean "formats"\?$',
                '{"formats": "text"}': r'there is no format "text"; did you mean "txt"\?$',
                '{"formats": [1]}': r'"formats" must be a text; put it in quotes$',
                '{"raw": 1}': r'"raw" must be true or false; write true or false$',
                '[]': r'a JSON object is expected; write { "formats": ... }$',
                '{"raw": }': r'options.json:1:9: not JSON: .*; correct it$',
                '{"timezone": "Nowhere"}': r'"Nowhere"'}.items():
            with self.subTest(options=options):
                self.put_case()
                self.write(f"{FOLDER}/plain/options.json", options)
                self.expect_error_like(self.golden(), 2, "^rgen: acquisition/plain: .*" + expected)

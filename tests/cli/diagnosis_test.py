"""Why a template failed, and the notes of templates and of the pdf converter.

SPDX-License-Identifier: MIT
"""

from cli_case import CONVERTER_FOLDER, CliCase, search_path
from cli_converter import WHOLE_PDF, ConversionCase
from cli_templates import catalogue, stylesheet

TEMPLATE = "case/.rgen/templates/txt/acquisition.xsl"
MESSAGE = "<xsl:message>the unit is <xsl:value-of select=\"'GB'\"/></xsl:message>A"
MESSAGE_NOTE = f'{TEMPLATE}:4:25: xsl:message: "the unit is GB"'
TWO_BLANKS = 'QT_TRANSLATE_NOOP("QObject",  "A")'
TWO_BLANKS_NOTE = (f"{TEMPLATE}:4:25: this marker is not translated: two blanks after the comma; "
                   "write exactly one blank there")


def endless():
    call = '<xsl:call-template name="rows"/>'
    return stylesheet(call, top_level=f'<xsl:template name="rows">{call}</xsl:template>\n')


class DiagnosisCase(CliCase):
    given = ("--set", "A=1")

    def diagnosis(self, *args, code=1):
        """The lines after the error."""
        result = self.report(*self.given, *args)
        self.assertEqual((code, b""), (result.code, result.out), result)
        self.assertRegex(result.messages[0], r"^rgen: report\.txt: .*\(0xC002000[123] ")
        self.assertLessEqual(len(result.messages), 6)
        self.expect_plain(result.err)
        return result.messages[1:]


class Failures(DiagnosisCase):

    def test_one_mistake_is_shown_with_its_line(self):
        self.put_template(stylesheet('<xsl:value-of select="flor(1)"/>'))
        self.assertEqual(
            [f'{TEMPLATE}:4:47: error: unknown function "flor" in "flor(1)"; did you mean "floor"?',
             '    <xsl:template match="/"><xsl:value-of select="flor(1)"/></xsl:template>',
             "    " + " " * 46 + "^~~~"], self.diagnosis())

    def test_many_mistakes_have_five_lines(self):
        self.put_template(stylesheet('<xsl:value-of select="flor(1)"/>\n' * 7))
        lines = self.diagnosis()
        self.assertEqual(5, len(lines))
        for line in lines[:4]:
            self.assertIn(': error: unknown function "flor"', line)
        self.assertEqual(f'3 more; run: rgen check "{TEMPLATE}"', lines[4])

    def test_endless_recursion_has_its_calls(self):
        self.put_template(endless())
        self.assertRegex(self.diagnosis()[0],
                         f'^{TEMPLATE}:4:1: error: template "rows" calls itself without end '
                         r'\(3,0\d\d levels\); the calls: match="/" \(line 5\) > "rows" \(line 4\) '
                         '> "rows"$')

    def test_the_text_with_which_a_template_ends_the_report(self):
        self.put_template(stylesheet('<xsl:message terminate="yes">No backup date given</xsl:message>'))
        self.assertEqual(f'{TEMPLATE}:4:25: error: stopped by the template: "No backup date given"',
                         self.diagnosis()[0])

    def test_messages_before_the_end_are_notes(self):
        self.put_template(stylesheet(MESSAGE + '<xsl:message terminate="yes">over</xsl:message>'))
        result = self.report(*self.given)
        self.assertEqual([MESSAGE_NOTE], result.notes)
        self.assertIn('stopped by the template: "over"', result.messages[1])

    def test_an_expression_of_the_wrong_type(self):
        self.put_template(stylesheet('<xsl:for-each select="$n">A</xsl:for-each>',
                                     top_level='<xsl:variable name="n" select="1"/>\n'))
        self.assertRegex(self.diagnosis()[0], f"^{TEMPLATE}:5:25: error: .*node")

    def test_the_report_s_own_data_is_used(self):
        self.put_template(stylesheet(
            "<xsl:if test=\"//property[@name='A'] = 1\"><xsl:message terminate=\"yes\">"
            "<xsl:value-of select=\"//property[@name='A']\"/> is too small</xsl:message></xsl:if>B"))
        self.assertIn('stopped by the template: "1 is too small"', self.diagnosis()[0])
        self.expect_done(self.report("--set", "A=2"))

    def test_a_translation_that_breaks_the_template(self):
        self.put_template(stylesheet("<xsl:value-of select='QT_TRANSLATE_NOOP(\"QObject\", \"1\")'/>"))
        self.write("de.po", catalogue({"1": "1 +"}))
        self.expect_done(self.report(*self.given))
        lines = self.diagnosis("--lang", "de.po")
        self.assertRegex(lines[0], ":4:[0-9]+: error: ")

    def test_the_document(self):
        self.put_template(stylesheet('<xsl:value-of select="flor(1)"/>'))
        document = self.report(*self.given, "--json").document
        checked = self.rgen("check", TEMPLATE, "--json").document
        self.assertFalse(document["ok"])
        self.assertEqual("RGEN_E_XSLT_APPLY", document["error"]["statusName"])
        self.assertEqual(["unknown-function"], [one["code"] for one in document["findings"]])
        self.assertEqual(checked["findings"], document["findings"])

    def test_other_failures_have_no_diagnosis(self):
        result = self.report(*self.given, output="missing/report.txt")
        self.assertEqual((1, 1), (result.code, len(result.messages)), result)
        self.assertNotIn("findings", self.report("--json").document)

    def test_standard_error_has_it_with_quiet_too(self):
        self.put_template(stylesheet('<xsl:value-of select="flor(1)"/>'))
        self.assertEqual(3, len(self.diagnosis("-q")))


class Batches(DiagnosisCase):

    def batch(self, *lines, **settings):
        self.write("batch.ndjson", "".join(
            f'{{"output": "{number}.txt", "set": {{"A": "{value}"}}}}\n'
            for number, value in enumerate(lines)))
        return self.rgen("report", "-d", "case", "--batch", "batch.ndjson", **settings)

    def test_each_reason_is_said_once(self):
        self.put_template(stylesheet(
            "<xsl:message terminate=\"yes\">no <xsl:value-of select=\"//property[@name='A']\"/>"
            "</xsl:message>"))
        lines = self.batch("x", "y", "x").messages
        said = [line for line in lines if "stopped by the template" in line]
        self.assertEqual([f'{TEMPLATE}:4:25: error: stopped by the template: "no {name}"'
                          for name in "xy"], said)
        self.assertIn("rgen: the same for 1 more line", lines)

    def test_a_marker_is_noted_once(self):
        self.put_template(stylesheet(TWO_BLANKS))
        result = self.batch("x", "y", "z")
        self.expect_notes(result, "batch.ndjson:1: " + TWO_BLANKS_NOTE)

    def test_messages_are_notes_of_their_lines(self):
        self.put_template(stylesheet(MESSAGE))
        self.expect_notes(self.batch("x", "y"), "batch.ndjson:1: " + MESSAGE_NOTE,
                          "batch.ndjson:2: " + MESSAGE_NOTE)


class Notes(DiagnosisCase):

    def test_messages_of_a_template(self):
        self.put_template(stylesheet(MESSAGE))
        result = self.report(*self.given)
        self.expect_notes(result, MESSAGE_NOTE)
        self.assertEqual(b"A", self.read("report.txt"))
        self.assertEqual([MESSAGE_NOTE], self.report(*self.given, "--json").document["notes"])

    def test_a_marker_that_the_library_does_not_see(self):
        self.put_template(stylesheet(TWO_BLANKS))
        self.expect_notes(self.report(*self.given), TWO_BLANKS_NOTE)

    def test_markers_in_comments_are_no_mistake(self):
        self.put_template(stylesheet(f"<!-- {TWO_BLANKS} -->A"))
        self.expect_notes(self.report(*self.given))

    def test_quiet_prints_none(self):
        self.put_template(stylesheet(MESSAGE + TWO_BLANKS))
        self.assertEqual("", self.report(*self.given, "-q").err)


class ConverterWarnings(ConversionCase):
    first = '"logo.png" does not exist (looked for "/a/logo.png")'
    second = "no installed font has U+4E00"

    def waiting_converter(self, number):
        return self.converter_environment(
            ("say", "vellum: warning: " + self.first), ("say", "vellum: warning: " + self.second),
            ("log", f"started {number}.log"), ("await", f"go {number}"), ("mark", f"end {number}"))

    def test_they_are_notes(self):
        result = self.convert("--set", "A=1").finish(WHOLE_PDF)
        self.expect_notes(result, "report.pdf: " + self.first, "report.pdf: " + self.second)

    def test_the_document(self):
        result = self.convert("--set", "A=1", "--json").finish(WHOLE_PDF)
        self.assertEqual(["report.pdf: " + self.first, "report.pdf: " + self.second],
                         result.document["notes"])

    def test_quiet_prints_none(self):
        self.assertEqual("", self.convert("--set", "A=1", "-q").finish(WHOLE_PDF).err)

    def test_they_are_no_reason_of_a_failure(self):
        self.expect_error(self.convert("--set", "A=1").finish(), 4,
                          'rgen: report.pdf: the converter made no file; run "rgen doctor"')


class Doctor(CliCase):

    def doctor(self):
        return self.rgen("doctor", "-d", "case", env=search_path(CONVERTER_FOLDER))

    def test_a_template_with_mistakes(self):
        self.put_template(stylesheet('<xsl:value-of select="flor(1)"/>'))
        result = self.doctor()
        self.assertEqual(5, result.code)
        self.assertIn(f'FAIL  acquisition, template for txt: {TEMPLATE}:4:47: unknown function "flor" in '
                      '"flor(1)"; did you mean "floor"?\n', result.text)
        self.put_template(stylesheet('<xsl:value-of select="flor(1)"/>\n' * 3))
        self.assertIn(f'(first of 3 errors; run: rgen check "{TEMPLATE}")\n', self.doctor().text)

    def test_warnings_of_a_template_are_counted(self):
        result = self.doctor()
        self.assertEqual(0, result.code)
        self.assertRegex(result.text, "(?m)^note  acquisition, template for html and pdf: [0-9]+ "
                                      "warnings?; run: rgen check \"case/.rgen/templates/html/")

    def test_a_catalogue_with_a_mistake(self):
        self.write("case/.rgen/translations/de.po", 'msgid "A"\nmsgstr "B\n')
        self.write("case/.rgen/translations/fr.po", catalogue({"A": "B"}))
        result = self.doctor()
        self.assertEqual(5, result.code)
        self.assertRegex(result.text, r"(?m)^FAIL  catalogue de\.po: "
                                      r"case/\.rgen/translations/de\.po:2:8: .*; .+$")
        self.assertRegex(result.text, r"(?m)^ok    catalogue fr\.po: ")

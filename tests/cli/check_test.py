"""rgen check: the mistakes of template authors, each with its place and its advice.

SPDX-License-Identifier: MIT
"""

import cli_templates
from cli_case import CliCase

HEAD = ('<?xml version="1.0" encoding="UTF-8"?>\n'
        '<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">\n'
        '<xsl:output method="html" encoding="UTF-8"/>\n')
PAGE_HEAD = '<html lang="en"><head><title>T</title></head><body>\n'
PAGE_END = '</body></html>\n'


def page(body, top_level=""):
    """A stylesheet for a page; the first line of the body is line 6 without top-level elements."""
    return (f'{HEAD}<xsl:template match="/">\n{PAGE_HEAD}{body}\n{PAGE_END}</xsl:template>\n'
            f'{top_level}</xsl:stylesheet>\n')


class Check(CliCase):
    has_data_dir = False

    def findings(self, text, *args):
        """The lines of the findings without the file name, source lines and marks."""
        self.write("a.xsl", text)
        result = self.rgen("check", "-q", *args, "a.xsl")
        self.assertEqual("", result.err)
        lines = [line for line in result.text.splitlines() if not line.startswith("    ")]
        for line in lines:
            self.assertTrue(line.startswith("a.xsl:"), line)
        self.assertEqual(3 if any(": error: " in line for line in lines) else 0, result.code)
        return [line[len("a.xsl:"):] for line in lines]

    def expect(self, text, *expected):
        self.assertEqual(list(expected), self.findings(text))

    def test_a_template_without_a_mistake_has_no_finding(self):
        self.expect(page("<h1>A</h1>"))

    # ---- The text ----------------------------------------------------------------------------

    def test_an_element_that_is_not_closed(self):
        self.expect(page("<table>"),
                    '7:1: error: "table" (line 6) is not closed before </body>; '
                    'what follows was repaired or lost')

    def test_the_file_ends_too_early(self):
        self.expect(HEAD + '<xsl:template match="/"/>\n',
                    '4:26: error: the file ends inside "xsl:stylesheet"; '
                    '"xsl:stylesheet" (line 2) is not closed')

    def test_entities_that_xml_does_not_know(self):
        self.expect(page("<p>a&nbsp;b</p>"),
                    '6:5: error: unknown entity "nbsp"; write "&#160;"')

    def test_a_plain_ampersand(self):
        self.expect(page("<p>A & B</p>"),
                    '6:6: error: "&" begins a reference; write "&amp;"')

    def test_text_after_the_root_element(self):
        self.expect(page("") + "more",
                    "10:1: error: text after the end of the root element; remove it")

    def test_an_empty_file(self):
        self.expect("", "1:1: error: the file has no element; "
                    'begin with <xsl:stylesheet version="1.0" '
                    'xmlns:xsl="http://www.w3.org/1999/XSL/Transform">')

    def test_what_only_the_parser_sees(self):
        [line] = self.findings(page("<p>\x01</p>"))
        self.assertRegex(line, r"^6:\d+: error: not well-formed; .")

    # ---- Markers -----------------------------------------------------------------------------

    def test_markers_that_the_library_does_not_see(self):
        start = "6:4: error: this marker is not translated: "
        for marker, expected in {
                'QT_TRANSLATE_NOOP("QObject",  "A")':
                    "two blanks after the comma; write exactly one blank there",
                'QT_TRANSLATE_NOOP("Health", "A")':
                    'the context is "Health", only "QObject" is known; write "QObject"',
                'QT_TRANSLATE_NOP("QObject", "A")':
                    '"QT_TRANSLATE_NOP" is not a keyword; did you mean "QT_TRANSLATE_NOOP"?'}.items():
            with self.subTest(marker=marker):
                self.expect(page(f"<p>{marker}</p>"), start + expected)

    def test_places_after_a_marker_are_those_of_the_file(self):
        self.expect(page('<p title=\'QT_TRANSLATE_NOOP("QObject", "A")\'>&nbsp;</p>'),
                    '6:46: error: unknown entity "nbsp"; write "&#160;"')

    def test_markers_in_comments_are_no_mistake(self):
        self.expect(page('<!-- QT_TRANSLATE_NOOP("QObject",  "A") -->'))

    # ---- Elements and attributes -------------------------------------------------------------

    def test_a_root_that_is_no_stylesheet(self):
        wrong = page("").replace("1999/XSL/Transform", "1999/XSLT/Transform")
        self.expect(wrong,
                    '2:1: error: this is not a stylesheet: the namespace is '
                    '"http://www.w3.org/1999/XSLT/Transform"; '
                    'write "http://www.w3.org/1999/XSL/Transform"')
        self.expect("<html/>\n",
                    '1:1: error: this is not a stylesheet: the root element is "html"; begin with '
                    '<xsl:stylesheet version="1.0" '
                    'xmlns:xsl="http://www.w3.org/1999/XSL/Transform">')

    def test_unknown_elements(self):
        self.expect(page('<xsl:value-off select="1"/>'),
                    '6:1: error: XSLT has no element "value-off"; did you mean "value-of"?')
        self.expect(page('<xsl:for-each-group select="1"/>'),
                    '6:1: error: XSLT 1.0 has no element "for-each-group"; '
                    'group with xsl:key and generate-id() as XSLT 1.0 does')

    def test_unknown_attributes(self):
        self.expect(page('<xsl:value-of selct="1"/>'),
                    '6:15: error: "xsl:value-of" has no attribute "selct"; did you mean "select"?')

    def test_missing_attributes(self):
        self.expect(page("<xsl:if>a</xsl:if>"),
                    '6:1: error: xsl:if needs the attribute "test"; add test="..."')

    def test_unknown_values(self):
        self.expect(page('<xsl:for-each select="//property">'
                         '<xsl:sort data-type="numeric"/></xsl:for-each>'),
                    '6:56: error: unknown data-type "numeric"; known are "text" and "number"')
        self.expect(page("").replace('method="html"', 'method="htlm"'),
                    '3:21: error: unknown method "htlm"; did you mean "html"?')
        self.expect(page("").replace('encoding="UTF-8"/>', 'encoding="UTF8X"/>'),
                    '3:37: error: unknown encoding "UTF8X"; '
                    'known are "UTF-8", "UTF-16", "ISO-8859-1" and "US-ASCII"')

    def test_misplaced_elements(self):
        for body, expected in {
                "<xsl:when test='1'/>":
                    '6:1: error: xsl:when cannot be inside "body"; write it inside xsl:choose',
                "<xsl:choose/>":
                    '6:1: error: xsl:choose has no xsl:when; add <xsl:when test="...">',
                "<xsl:choose><p/></xsl:choose>":
                    '6:1: error: xsl:choose has no xsl:when; add <xsl:when test="...">|'
                    '6:13: error: "p" cannot be inside xsl:choose; move it',
                "<xsl:for-each select='1'><p/><xsl:sort/></xsl:for-each>":
                    "6:30: error: xsl:sort must come first in xsl:for-each; move it up",
                "<p>a<xsl:attribute name='id'>b</xsl:attribute></p>":
                    '6:5: error: attribute "id" comes after the content of "p" and is lost; '
                    'move it directly after the start tag',
                "<xsl:template match='data'/>":
                    '6:1: error: xsl:template cannot be inside "body"; '
                    'write it as a child of xsl:stylesheet'}.items():
            with self.subTest(body=body):
                lines = [line for line in self.findings(page(body))
                         if "bad-expression" not in line]
                self.assertEqual(expected.split("|"), lines)

    def test_misplaced_top_level_parts(self):
        self.expect(page("", "<p/> text\n"),
                    '9:1: error: "p" is not inside a template; write it inside xsl:template',
                    '9:6: error: text inside "xsl:stylesheet" is not allowed; '
                    'write it inside xsl:template')

    def test_included_files(self):
        [line] = self.findings(page("", '<xsl:include href="parts.xsl"/>\n'))
        self.assertEqual('9:1: error: xsl:include "parts.xsl" is not available here: a template '
                         'has no folder of its own; put the parts into one file with '
                         '"rgen bundle"', line)

    # ---- Names -------------------------------------------------------------------------------

    def test_unknown_templates(self):
        self.expect(page('<xsl:call-template name="charts"/>',
                         '<xsl:template name="chart"/>\n'),
                    '6:26: error: there is no template "charts"; did you mean "chart" (line 9)?')

    def test_unknown_parameters(self):
        self.expect(page('<xsl:call-template name="size">'
                         '<xsl:with-param name="byte" select="1"/></xsl:call-template>',
                         '<xsl:template name="size"><xsl:param name="bytes"/></xsl:template>\n'),
                    '6:54: error: template "size" takes no parameter "byte"; did you mean "bytes"?')

    def test_unknown_modes(self):
        self.expect(page('<xsl:apply-templates select="data" mode="rwo"/>',
                         '<xsl:template match="data" mode="row"/>\n'),
                    '6:42: error: no template has the mode "rwo"; did you mean "row"?')

    def test_templates_that_are_declared_twice(self):
        self.expect(page('<xsl:call-template name="a"/>',
                         '<xsl:template name="a"/>\n<xsl:template name="a"/>\n'),
                    '10:21: error: template "a" is declared twice; the other one is in line 9')

    # ---- Expressions -------------------------------------------------------------------------

    def test_unknown_functions(self):
        self.expect(page('<xsl:value-of select="flor(number(//property) div 86400)"/>'),
                    '6:23: error: unknown function "flor" in '
                    '"flor(number(//property) div 86400)"; did you mean "floor"?')

    def test_unknown_variables(self):
        self.expect(page('<xsl:variable name="peak" select="1"/>'
                         '<xsl:value-of select="$peek"/>'),
                    '6:61: error: unknown variable "peek"; did you mean "peak"?')

    def test_a_variable_is_visible_only_inside_of_its_parent(self):
        self.expect(page('<p><xsl:variable name="peak" select="1"/></p>'
                         '<xsl:value-of select="$peak"/>'),
                    '6:68: error: unknown variable "peak"; '
                    'it is not declared, or not visible here')

    def test_unknown_keys(self):
        self.expect(page('<xsl:value-of select="key(\'q\', \'a\')"/>',
                         '<xsl:key name="p" match="property" use="@name"/>\n'),
                    '6:27: error: no xsl:key "q"; did you mean "p"?',
                    '9:1: warning: xsl:key "p" is never used; remove it')

    def test_a_pattern_that_can_match_nothing(self):
        self.expect(page("").replace('match="/"', 'match="/dat"'),
                    '4:22: warning: "/dat" matches nothing in the data document; '
                    'did you mean "/data"?')

    # ---- Pages -------------------------------------------------------------------------------

    def test_pages_that_are_hard_to_read(self):
        body = ('<h1>A</h1>\n<h3>B</h3>\n<img src="a.png"/>\n'
                '<table><tr><th>C</th></tr></table>')
        text = page(body).replace(' lang="en"', "").replace("<title>T</title>", "")
        self.expect(text,
                    '5:1: warning: "html" has no language; '
                    'add lang=\'QT_TRANSLATE_NOOP("QObject", "en")\'',
                    '5:7: warning: the page has no title; add <title> to "head"',
                    '7:1: warning: "h3" follows "h1"; write "h2"',
                    '8:1: warning: the picture has no text for readers who cannot see it; '
                    'add alt="...", or alt="" for a decoration',
                    '9:12: warning: it is not said whether this heads a column or a row; '
                    'add scope="col" or scope="row"')

    # ---- Output ------------------------------------------------------------------------------

    def test_the_source_line_and_a_mark_are_shown(self):
        self.write("a.xsl", page("<p>A & B</p>"))
        result = self.rgen("check", "a.xsl")
        self.assertEqual('a.xsl:6:6: error: "&" begins a reference; write "&amp;"\n'
                         '    <p>A & B</p>\n         ^\n', result.text)
        self.assertEqual("rgen: 1 error, 0 warnings in 1 template\n", result.err)
        self.assertEqual(3, result.code)

    def test_warnings_count_only_when_they_are_to(self):
        self.write("a.xsl", page("").replace(' lang="en"', ""))
        self.assertEqual(0, self.rgen("check", "a.xsl").code)
        self.assertEqual(3, self.rgen("check", "--strict", "a.xsl").code)

    def test_the_document(self):
        self.write("a.xsl", page("<p>\u00e9 & B</p>"))
        result = self.rgen("check", "--json", "a.xsl")
        document = result.document
        self.assertEqual((3, False, 1, 0), (result.code, document["ok"], document["errors"],
                                            document["warnings"]))
        self.assertEqual([{"severity": "error", "code": "plain-ampersand", "file": "a.xsl",
                           "line": 6, "column": 6, "length": 1,
                           "message": '"&" begins a reference', "advice": 'write "&amp;"'}],
                         document["findings"])

    def test_the_log_for_other_tools(self):
        self.write("a b.xsl", page("<p>A & B</p>"))
        result = self.rgen("check", "-q", "--sarif", "-", "a b.xsl")
        log = result.document
        self.assertEqual((3, "2.1.0"), (result.code, log["version"]))
        [run] = log["runs"]
        self.assertEqual([{"id": "plain-ampersand"}], run["tool"]["driver"]["rules"])
        [found] = run["results"]
        self.assertEqual(("plain-ampersand", "error"), (found["ruleId"], found["level"]))
        place = found["locations"][0]["physicalLocation"]
        self.assertEqual({"uri": "a%20b.xsl"}, place["artifactLocation"])
        self.assertEqual({"startLine": 6, "startColumn": 6, "endColumn": 7}, place["region"])

    def test_a_document_and_a_log_do_not_share_standard_output(self):
        self.write("a.xsl", page(""))
        result = self.rgen("check", "--json", "--sarif", "-", "a.xsl")
        self.assertEqual((2, "rgen check: --json and --sarif - exclude each other; "
                          "both write to standard output\n"), (result.code, result.err))

    def test_a_file_that_is_not_there(self):
        self.expect_error_like(self.rgen("check", "none.xsl"), 2,
                               r'^rgen: cannot read "none.xsl": .*; check the path of the template$')


class CheckedDirectory(CliCase):
    def test_all_templates_of_a_data_directory_are_checked(self):
        self.put_template(page("<p>A & B</p>"), "html")
        result = self.rgen("check", "-d", "case")
        self.assertEqual(3, result.code, result)
        self.assertIn("case/.rgen/templates/html/acquisition.xsl:6:6: error: ",
                      result.text.replace("\\", "/"))
        self.assertEqual("rgen: 1 error, 1 warning in 3 templates\n", result.err)

    def test_a_template_that_formats_share_is_checked_once(self):
        self.assertEqual(2, self.rgen("check", "-d", "case", "--json").document["templates"])

    def test_report_types_are_named_as_everywhere(self):
        for name in ("acquisition", cli_templates.GUID):
            with self.subTest(name=name):
                by_operand = self.rgen("check", "-d", "case", name)
                by_option = self.rgen("check", "-d", "case", "-t", name)
                self.assertEqual((0, by_operand.text), (by_operand.code, by_option.text))
        self.expect_error_like(self.rgen("check", "-d", "case", "acquisitoin"), 2,
                               'there is no report type "acquisitoin".*did you mean "acquisition"')

    def test_a_report_type_without_a_template(self):
        self.make_data_dir("empty", templates={"txt/other.xsl": cli_templates.LISTING})
        self.expect_error_like(self.rgen("check", "-d", "empty"), 2,
                               'report type "acquisition" has no template; put one at ')

    def test_the_sample_has_no_mistake(self):
        self.expect_done(self.rgen("init", "-q", "sample"))
        result = self.rgen("check", "-d", "sample")
        self.assertEqual((0, ""), (result.code, result.text))
        self.assertEqual("rgen: no mistake in 2 templates\n", result.err)


class CheckedWithData(CliCase):
    """Mistakes that only a run with data shows."""

    def findings(self, body, *values, top_level=""):
        self.put_template(cli_templates.stylesheet(body, top_level=top_level))
        result = self.rgen("check", "-q", "-d", "case", "case/.rgen/templates/txt/acquisition.xsl",
                           *values)
        start = "case/.rgen/templates/txt/acquisition.xsl:"
        return [line.replace("\\", "/").split(start, 1)[1] for line in result.text.splitlines()
                if not line.startswith("    ")]

    def test_a_misspelt_value(self):
        self.assertEqual(
            ['4:67: warning: no value "Hostt.Name"; did you mean "Host.Name"?'],
            self.findings('<xsl:value-of select="//property[@name = \'Hostt.Name\']"/>'
                          '<xsl:value-of select="//property"/>', "--set", "Host.Name=a"))

    def test_a_template_that_calls_itself_without_end(self):
        [line] = self.findings('<xsl:call-template name="rows"/>', "--set", "A=1", top_level=(
            '<xsl:template name="rows"><xsl:call-template name="rows"/></xsl:template>\n'))
        self.assertRegex(
            line, r'^4:1: error: template "rows" calls itself without end \(\d,\d{3} levels\); '
            r'the calls: match="/" \(line 5\) > "rows" \(line 4\) > "rows"$')

    def test_messages_of_the_template(self):
        self.assertEqual(
            ['4:25: error: stopped by the template: "No backup date given"'],
            self.findings('<xsl:message terminate="yes">No backup date given</xsl:message>',
                          "--set", "A=1"))
        self.assertIn('4:25: note: xsl:message: "One"',
                      self.findings("<xsl:message>One</xsl:message>", "--set", "A=1"))

    def test_texts_that_are_no_numbers(self):
        self.assertEqual(
            ['4:47: warning: this is "NaN" on the page; a value is missing or is not a number'],
            self.findings('<xsl:value-of select="//property * 2"/>', "--set", "A=x"))

    def test_values_that_make_no_difference(self):
        self.assertIn("2:1: note: the page does not use 2 values: B, C",
                      self.findings("<xsl:value-of select=\"//property[@name = 'A']\"/>",
                                    "--set", "A=1", "--set", "B=2", "--set", "C=3"))

    def test_a_template_without_a_report_type_takes_no_values(self):
        self.write("a.xsl", page(""))
        self.expect_error(self.rgen("check", "a.xsl", "--set", "A=1"), 2,
                          'rgen check: "a.xsl" belongs to no report type, so no report can be made; '
                          "leave out the values, or put it into a data directory")

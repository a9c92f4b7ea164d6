"""rgen explain of templates: what they use, and data files with all of their values.

SPDX-License-Identifier: MIT
"""

import json

from cli_case import CliCase

TEMPLATE = """<?xml version="1.0" encoding="UTF-8"?>
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="text" encoding="UTF-8"/>
<xsl:key name="p" match="property" use="@name"/>
<xsl:key name="list" match="property[contains(substring-after(@name, '.'), '.')]"
  use="concat(substring-before(@name, '.'), '*', substring-after(substring-after(@name, '.'), '.'))"/>
<xsl:template match="/">
<xsl:value-of select="key('p', 'Host.Name')"/> QT_TRANSLATE_NOOP("QObject", "host")
<xsl:value-of select="format-number(key('p', 'Disk.Size'), '#,##0')"/>
<xsl:for-each select="key('list', 'Err*Address')">
  <xsl:variable name="entry" select="substring-before(@name, 'Address')"/>
  <xsl:value-of select="key('p', concat($entry, 'Cause'))"/>
</xsl:for-each>
<xsl:value-of select="sum(//property[starts-with(@name, 'Hours.')])"/>
<xsl:apply-templates select="//property[@name = 'Host.Name']"/>
</xsl:template>
<xsl:template match="property"><xsl:value-of select="key('p', concat(@name, '.Note'))"/></xsl:template>
</xsl:stylesheet>
"""

EXPLANATION = """a.xsl
Output: method text, encoding UTF-8

Values, with guessed hints, and their lines:
  Disk.Size:int  9
  Host.Name      8, 15

Lists, N is the number of an entry:
  Err.N.Address  10
  Err.N.Cause    12

All names that begin with:
  Hours.:int  14

Names that are composed, and end with:
  .Note  17

Keys, and the lines that use them:
  p (line 4)     8, 9, 12, 17
  list (line 5)  10

Formats of numbers:
  "#,##0"  9

Texts to translate:
  "host"  8
"""


class ExplainTemplate(CliCase):
    has_data_dir = False

    def setUp(self):
        super().setUp()
        self.write("a.xsl", TEMPLATE)

    def test_everything_that_a_template_uses_is_listed_with_its_lines(self):
        result = self.rgen("explain", "a.xsl")
        self.assertEqual((0, "", EXPLANATION), (result.code, result.err, result.text))

    def test_the_document(self):
        document = self.rgen("explain", "--json", "a.xsl").document
        self.assertTrue(document["ok"])
        [template] = document["templates"]
        self.assertEqual(("a.xsl", [], "text", "UTF-8"),
                         tuple(template[name] for name in ("file", "formats", "method", "encoding")))
        self.assertEqual(
            [(".Note", "ending", ""), ("Disk.Size", "value", "int"),
             ("Err.N.Address", "list", ""), ("Err.N.Cause", "list", ""),
             ("Host.Name", "value", ""), ("Hours.", "prefix", "int")],
            [(value["name"], value["kind"], value["hint"]) for value in template["values"]])
        self.assertEqual([{"line": 9, "column": 47}], template["values"][1]["places"])
        self.assertEqual(["p", "list"], [key["name"] for key in template["keys"]])
        self.assertEqual([{"text": "host", "places": [{"line": 8, "column": 78}]}],
                         template["texts"])
        self.assertEqual("#,##0", template["numberFormats"][0]["format"])

    def test_a_data_file_with_every_value(self):
        result = self.rgen("explain", "a.xsl", "--skeleton", "new.json")
        self.assertEqual((0, ""), (result.code, result.text), result)
        self.assertEqual(
            ['names that are composed when the template runs are not in the data file: "*.Note"',
             "the hints are guessed from how the template uses the values"], result.notes)
        self.assertEqual(["rgen: new.json: a data file with every value"], result.messages)
        self.assertEqual(
            {"Disk.Size": 10, "Err.1.Address": "Err.1.Address", "Err.1.Cause": "Err.1.Cause",
             "Err.2.Address": "Err.2.Address", "Err.2.Cause": "Err.2.Cause",
             "Host.Name": "Host.Name", "Hours.1": 10, "Hours.2": 20},
            json.loads(self.text_of("new.json")))

    def test_a_data_file_is_never_replaced(self):
        self.write("new.json", "{}")
        result = self.rgen("explain", "a.xsl", "--skeleton", "new.json")
        self.assertEqual(2, result.code)
        self.assertEqual(['rgen explain: "new.json" exists already; '
                          'give --skeleton the name of a new file'], result.messages)
        self.assertEqual("{}", self.text_of("new.json"))

    def test_a_data_file_on_standard_output(self):
        result = self.rgen("explain", "-q", "a.xsl", "--skeleton", "-")
        self.assertEqual((0, ""), (result.code, result.err))
        self.assertEqual(10, json.loads(result.text)["Disk.Size"])
        both = self.rgen("explain", "--json", "a.xsl", "--skeleton", "-")
        self.assertEqual(2, both.code)
        self.assertIn("--json and --skeleton - exclude each other", both.err)

    def test_a_template_that_is_not_well_formed(self):
        self.write("b.xsl", "<a>")
        result = self.rgen("explain", "b.xsl")
        self.assertEqual(3, result.code)
        self.assertEqual(['rgen: "b.xsl" is not well-formed XML; "rgen check" says where'],
                         result.messages)

    def test_a_file_that_does_not_exist_is_no_status(self):
        result = self.rgen("explain", "missing.xsl")
        self.assertEqual(2, result.code)
        self.assertIn("missing.xsl", result.err)
        self.assertNotIn("there is no status", result.err)


class ExplainType(CliCase):
    has_data_dir = False

    def setUp(self):
        super().setUp()
        self.assertEqual(0, self.rgen("init", "-q", "case").code)

    def test_the_templates_of_a_report_type(self):
        document = self.rgen("explain", "--json", "-d", "case", "-t", "acquisition").document
        self.assertEqual([["html", "pdf"], ["txt"]],
                         [template["formats"] for template in document["templates"]])
        only = self.rgen("explain", "--json", "-d", "case", "-t", "acquisition",
                         "-f", "pdf").document
        self.assertEqual([["html", "pdf"]],
                         [template["formats"] for template in only["templates"]])

    def test_every_name_of_the_sample_is_known(self):
        document = self.rgen("explain", "--json", "-d", "case", "-t", "acquisition",
                             "-f", "html").document
        [template] = document["templates"]
        data = json.loads(self.text_of("case/acquisition.json"))
        data.update(json.loads(self.text_of("case/acquisition-lab.json")))
        given = set()
        for name in data:
            words = name.split(":")[0].split(".")
            given.add(".".join(["N" if word.isdigit() else word for word in words]))
        used = {value["name"] for value in template["values"]}
        self.assertEqual({"value", "list"}, {value["kind"] for value in template["values"]})
        self.assertEqual(set(), used - given)

    def test_a_report_of_the_data_file_has_all_values(self):
        self.assertEqual(0, self.rgen("explain", "-d", "case", "-t", "acquisition",
                                      "--skeleton", "new.json").code)
        for output in ("new.html", "new.txt"):
            result = self.rgen("report", "-d", "case", "--data", "new.json", "-o", output)
            self.assertEqual(0, result.code, result)
            page = self.text_of(output)
            for text in ("Device.Model", "Err.1.Cause", "Err.2.Cause", "Note.2.Text", "Reviewer.Name",
                         "2026"):
                self.assertIn(text, page)

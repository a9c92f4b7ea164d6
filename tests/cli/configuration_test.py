"""Mistakes in config.xml: line, message, correction.

SPDX-License-Identifier: MIT
"""

from cli_case import CONVERTER_FOLDER, CliCase, search_path
from cli_templates import GUID, OTHER_GUID

CONFIG = "case/.rgen/config.xml"
TYPE = (f'    <type guid="{GUID}">\n      <persistDataFile>a.xml</persistDataFile>\n'
        "      <reportTypeFile>acquisition.xsl</reportTypeFile>\n    </type>\n")
WHOLE = ('<?xml version="1.0" encoding="UTF-8"?>\n<config>\n  <reportTypes>\n' + TYPE +
         "  </reportTypes>\n</config>\n")
FORM = "write it as xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx with the digits 0-9 and a-f"
SHOWN = "write one as docs/file-formats.md shows it"
SHORTENED = GUID[:-1]
# Original text, its replacement, the line of the mistake, the message, the correction.
MISTAKES = [
    (GUID, "{" + GUID + "}", 4, "write the GUID without braces", f'write guid="{GUID}"'),
    (GUID, "{" + GUID, 4, "write the GUID without braces", FORM),
    (GUID, "g" + GUID[1:], 4, f'the guid "g{GUID[1:]}" has something else than hexadecimal digits and '
     "hyphens at character 1", FORM),
    (GUID, GUID.replace("-", "_"), 4, f'the guid "{GUID.replace("-", "_")}" has something else than '
     "hexadecimal digits and hyphens at character 9", FORM),
    (GUID, SHORTENED, 4, f'the guid "{SHORTENED}" has 35 characters instead of 36', FORM),
    (GUID, GUID + "0", 4, f'the guid "{GUID}0" has 37 characters instead of 36', FORM),
    (GUID, "1" + GUID.replace("-", "", 1), 4, f'the guid "1{GUID.replace("-", "", 1)}" has a hyphen '
     "missing, or in the wrong place", FORM),
    (GUID, "", 4, "the guid is empty", FORM),
    ("guid=", "Guid=", 4, '"Guid" is not known in <type>',
     'write guid="xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx"'),
    ("guid=", 'xmlns:x="urn:x" x:guid=', 4, "guid is in a namespace", "write it without prefix"),
    ("guid=", "name=", 4, "this <type> has no guid",
     'write guid="xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx"'),
    ("persistDataFile>", "persistDatafil>", 5, "<persistDatafil> is not known in <type>",
     "write <persistDataFile>"),
    ("reportTypeFile>", "reportTypFile>", 6, "<reportTypFile> is not known in <type>",
     "write <reportTypeFile>"),
    ("      <reportTypeFile>acquisition.xsl</reportTypeFile>\n", "", 4,
     "this <type> has no <reportTypeFile>", "write <reportTypeFile>FILE</reportTypeFile>"),
    ("      <persistDataFile>a.xml</persistDataFile>\n", "", 4,
     "this <type> has no <persistDataFile>", "write <persistDataFile>FILE</persistDataFile>"),
    (">a.xml<", "> \n <", 5, "<persistDataFile> is empty", "write the name of the file in it"),
    ("<reportTypeFile>acquisition.xsl</reportTypeFile>", "<reportTypeFile/>", 6,
     "<reportTypeFile> is empty", "write the name of the file in it"),
    ("config>", "confg>", 2, "the file begins with <confg>", "write <config>"),
    ("config>", "Config>", 2, "the file begins with <Config>", "write <config>"),
    ("<config>", '<config xmlns="urn:x">', 2, "<config> is in a namespace",
     "write it without xmlns and prefix"),
    ("reportTypes>", "reporttypes>", 3, "<reporttypes> is not known in <config>",
     "write <reportTypes>"),
    ("reportTypes>", "list>", 2, "there is no <reportTypes> in <config>", SHOWN),
    ("type guid", "typ guid", 4, None, None),
    (TYPE, "", 3, "there is no <type> in <reportTypes>", SHOWN),
    (TYPE, TYPE.replace("type>", "typo>").replace("<type ", "<typo "), 4,
     "<typo> is not known in <reportTypes>", "write <type>")]


class ConfigurationCase(CliCase):

    def doctor(self):
        return self.rgen("doctor", "-d", "case", env=search_path(CONVERTER_FOLDER))


class Mistakes(ConfigurationCase):

    def test_every_mistake(self):
        self.write("case/.rgen/templates/txt/acquisition.xsl", "")
        for old, new, line, wrong, advice in MISTAKES:
            with self.subTest(old=old, new=new):
                self.assertIn(old, WHOLE)
                self.write(CONFIG, WHOLE.replace(old, new))
                place = f"{CONFIG}:{line}: "
                if wrong is None:
                    # With only the start tag renamed the file would not be XML.
                    self.assertIn(f"FAIL  configuration: {CONFIG}:", self.doctor().text)
                    continue
                message = f"{place}{wrong}; {advice}"
                self.assertIn(f"FAIL  configuration: {message}\n", self.doctor().text)
                self.assertIn(message, self.rgen("types", "-d", "case").notes)
                self.expect_error(
                    self.report("--set", "A=1"), 5,
                    f'rgen: "{CONFIG}" has no usable report type; {message}')

    def test_a_good_one(self):
        for text in (WHOLE, WHOLE.replace(GUID, GUID.upper()),
                     WHOLE.replace("persistDataFile", "PERSISTDATAFILE"),
                     WHOLE.replace("<config>", "<!-- x --><config>")
                     .replace("<reportTypes>", "<note/><reportTypes>")):
            self.write(CONFIG, text)
            result = self.doctor()
            self.assertNotIn("configuration", result.text)
            self.assertEqual([], self.rgen("types", "-d", "case").notes)

    def test_what_is_no_xml(self):
        for old in ("    </type>\n", "</persistDataFile>"):
            self.write(CONFIG, WHOLE.replace(old, ""))
            self.assertRegex(self.doctor().text,
                             f"FAIL  configuration: {CONFIG}:[0-9]+: not well-formed; correct it: .+; "
                             "until then the library takes what it can read\n")

    def test_an_end_tag_that_is_missing_is_named_with_its_line(self):
        self.write(CONFIG, WHOLE.replace("    </type>\n", ""))
        self.assertRegex(self.doctor().text, f"FAIL  configuration: {CONFIG}:7: not well-formed; "
                                             "correct it: .*type.*reportTypes")

    def test_a_guid_that_the_configuration_lacks_because_of_braces(self):
        bad = TYPE.replace(GUID, "{" + OTHER_GUID + "}")
        self.write(CONFIG, WHOLE.replace(TYPE, TYPE + bad))
        result = self.report("--set", "A=1", "-t", OTHER_GUID)
        self.expect_error_like(result, 1, "RGEN_E_GUID_NOT_IN_CONFIG\\); "
                                          f"{CONFIG}:8: write the GUID without braces; ")

    def test_one_bad_entry_beside_a_good_one(self):
        bad = TYPE.replace(GUID, "{" + OTHER_GUID + "}").replace("acquisition.xsl", "beta.xsl")
        self.write(CONFIG, WHOLE.replace(TYPE, TYPE + bad))
        message = f'{CONFIG}:8: write the GUID without braces; write guid="{OTHER_GUID}"'
        self.expect_error(self.report("--set", "A=1", "-t", "beta"), 2,
                          f'rgen: there is no report type "beta" in "{CONFIG}"; {message}')
        self.expect_notes(self.report("--set", "A=1", "-t", "acquisition"))
        self.assertIn(message, self.rgen("types", "-d", "case").notes)

    def test_a_guid_that_is_there_twice(self):
        self.write(CONFIG, WHOLE.replace(TYPE, TYPE + TYPE.replace("a.xml", "b.xml")))
        self.assertIn(f"note  configuration: {CONFIG}:8: the guid {GUID} is that of line 4, too; of "
                      "both the last file names count; give each type a guid of its own\n",
                      self.doctor().text)
        self.expect_done(self.rgen("persist", "set", "-d", "case", "A=1"))
        self.assertIn("case/.rgen/b.xml", self.names())

    def test_of_a_guid_that_is_there_twice_each_name_counts_on_its_own(self):
        """As the library reads it, so that persistent data is written to the file that it reads."""
        half = TYPE.replace("a.xml", "b.xml").replace("acquisition.xsl", " ")
        self.write(CONFIG, WHOLE.replace(TYPE, TYPE + half))
        self.expect_done(self.rgen("persist", "set", "-d", "case", "A=1"))
        self.assertEqual("A=1\n", self.rgen("persist", "get", "-d", "case").text)
        self.assertIn("case/.rgen/b.xml", self.names())
        self.assertEqual({"A": "1"}, self.values())

"""One report: data directory, formats, delivery, statuses of the library, files after a failure.

SPDX-License-Identifier: MIT
"""

import os

from cli_case import CliCase, linux_only, unprivileged, with_small_files
from cli_templates import BROKEN, FAILING, GUID, LISTING, OTHER_GUID, stylesheet


TEMPLATE = "case/.rgen/templates/txt/acquisition.xsl"
# What follows the error for these templates.
OF_BROKEN = [f'{TEMPLATE}:1:1: error: the tag of "xsl:stylesheet" has no ">"; close it',
             f'{TEMPLATE}:1:16: error: the file ends inside "xsl:stylesheet"; "xsl:stylesheet" '
             "(line 1) is not closed"]
OF_FAILING = [f'{TEMPLATE}:4:47: error: unknown function "no-such-function" in '
              '"no-such-function()"; only the functions of XPath 1.0 and XSLT 1.0 are available',
              '    <xsl:template match="/"><xsl:value-of select="no-such-function()"/></xsl:template>',
              "    " + " " * 46 + "^" + "~" * 15]


class DataDirectories(CliCase):

    def test_the_folder_the_data_directory_and_the_current_folder(self):
        for arguments in (["-d", "case"], ["--data-dir", "case/"], ["-d", "case/.rgen"],
                          ["-d", "case/.rgen/"], ["--data-dir=case"]):
            with self.subTest(arguments=arguments):
                result = self.rgen("report", *arguments, "-o", "-", "-f", "txt", "--set", "A=1")
                self.expect_done(result)
                self.assertEqual(b"[A=1]\n", result.out)
        result = self.rgen("report", "-o", "here.txt", "--set", "A=1", folder=self.folder / "case")
        self.expect_done(result)
        self.assertEqual(b"[A=1]\n", self.read("case/here.txt"))

    def test_a_folder_that_does_not_exist(self):
        self.expect_error(self.rgen("report", "-d", "nowhere", "-o", "a.txt", "--set", "A=1"), 5,
                          'rgen: the folder "nowhere" does not exist; make it with: rgen init '
                          '"nowhere"')
        self.assertNotIn("nowhere", self.names())

    def test_a_folder_without_a_data_directory(self):
        (self.folder / "empty").mkdir()
        self.expect_error(self.rgen("report", "-d", "empty", "-o", "a.txt", "--set", "A=1"), 5,
                          'rgen: there is no data directory in "empty" ("empty/.rgen/config.xml" '
                          'is missing); make one with: rgen init "empty"')
        self.assertNotIn("empty/.rgen", self.names())

    def test_report_types_by_guid_and_name(self):
        self.make_data_dir("case", types=[("alpha.xsl", GUID, "a.xml"),
                                          ("beta.xslt", OTHER_GUID, "b.xml")],
                           templates={"txt/alpha.xsl": stylesheet("alpha"),
                                      "txt/beta.xslt": stylesheet("beta")})
        for name, text in (("alpha", b"alpha"), ("beta", b"beta"), (GUID, b"alpha"),
                           (OTHER_GUID.upper(), b"beta")):
            with self.subTest(name=name):
                result = self.report("-t", name, "-f", "txt", "--set", "A=1", output="-")
                self.expect_done(result)
                self.assertEqual(text, result.out)


class Delivery(CliCase):

    def test_the_ending_chooses_the_format(self):
        for output, start in (("a.txt", b"[A=1]"), ("b.html", b"<html>"), ("c.TXT", b"[A=1]")):
            with self.subTest(output=output):
                result = self.report("--set", "A=1", output=output)
                self.expect_done(result)
                content = self.read(output)
                self.assertTrue(content.startswith(start), content)
                self.assertEqual([f"rgen: {output}: {len(content)} bytes"], result.messages)
                self.assertEqual(b"", result.out)

    def test_the_option_wins_over_the_ending(self):
        self.expect_done(self.report("--set", "A=1", "-f", "txt", output="a.html"))
        self.assertEqual(b"[A=1]\n", self.read("a.html"))

    def test_standard_output_has_the_bytes_of_the_file(self):
        self.put_template(stylesheet("<xsl:text>Ä ж &#8364; a&#13;&#10;b&#10;&#10;c</xsl:text>"))
        for name in ("txt", "html"):
            self.expect_done(self.report("--set", "A=ж", output="report." + name))
            result = self.report("--set", "A=ж", "-f", name, output="-")
            self.assertEqual((0, ""), (result.code, "".join(result.notes)))
            self.assertEqual(self.read("report." + name), result.out)

    def test_the_modes_deliver_the_same(self):
        for mode in ("file", "bytes"):
            self.expect_done(self.report("--set", "A=ж", "--mode", mode, output=mode + ".html"))
        self.assertEqual(self.read("file.html"), self.read("bytes.html"))

    def test_a_file_that_vanishes_when_it_is_closed(self):
        before = self.contents()
        self.expect_done(self.report("--set", "A=1", "--mode", "delete-on-close"))
        self.assertEqual(before, self.contents())

    def test_an_older_report_is_replaced(self):
        for mode in ("file", "bytes"):
            self.write("report.txt", "older and much longer than the new one\n" * 100)
            self.expect_done(self.report("--set", "A=1", "--mode", mode))
            self.assertEqual(b"[A=1]\n", self.read("report.txt"))

    def test_quiet_success_says_nothing(self):
        result = self.report("--set", "A=1", "--quiet")
        self.assertEqual((0, b"", ""), (result.code, result.out, result.err))

    def test_standard_output_alone_has_the_report_alone(self):
        result = self.report("--set", "A=1", "-f", "txt", "-q", output="-")
        self.assertEqual((0, b"[A=1]\n", ""), (result.code, result.out, result.err))

    @linux_only
    def test_a_pipe_is_not_replaced(self):
        pipe = self.folder / "pipe.txt"
        os.mkfifo(pipe)
        reader = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, reader)
        result = self.report("--set", "A=1", output="pipe.txt")
        self.assertEqual(1, result.code, result)
        self.assertIn("RGEN_E_OVERWRITE_OUTPUT", result.err)
        self.assertTrue(pipe.is_fifo())
        self.expect_done(self.report("--set", "A=1", "--mode", "bytes", output="pipe.txt"))
        self.assertTrue(pipe.is_fifo())
        self.assertEqual(b"[A=1]\n", os.read(reader, 1000))

    @linux_only
    def test_a_report_through_a_link(self):
        self.write("real.txt", "older")
        (self.folder / "link.txt").symlink_to("real.txt")
        for mode in ("file", "bytes"):
            self.expect_done(self.report("--set", "A=1", "--mode", mode, output="link.txt"))
            self.assertEqual(b"[A=1]\n", self.read("link.txt"))
            self.assertFalse((self.folder / "link.txt").is_symlink())
            self.assertEqual(b"older", self.read("real.txt"))
            (self.folder / "link.txt").unlink()
            (self.folder / "link.txt").symlink_to("real.txt")


class Refusals(CliCase):
    given = ("--set", "A=1")

    def expect_refusal(self, message, *args, output="report.txt", code=1, diagnosis=()):
        """Returns the message; an existing report and all other files stay unchanged."""
        if output == "report.txt":
            self.write(output, "older")
        before = self.contents()
        result = self.report(*args, output=output)
        self.expect_error(result, code, f"rgen: {output}: {message}", *diagnosis)
        self.assertEqual(before, self.contents())

    def test_no_template(self):
        (self.folder / "case/.rgen/templates/txt/acquisition.xsl").unlink()
        self.expect_refusal(
            "Template is not found in folder (0xC0000009 RGEN_E_TEMPLATE_NOT_FOUND); looked for "
            '"case/.rgen/templates/txt/acquisition.xsl"', *self.given)

    def test_no_values(self):
        self.expect_refusal("Resulting intput dataset is empty (0xC0000007 RGEN_E_EMPTY_INPUT); "
                            "give values with --data, --set or --pair")

    def test_a_guid_that_the_configuration_does_not_have(self):
        self.expect_refusal(
            "Given guid(template) is not found in config (0xC0000008 RGEN_E_GUID_NOT_IN_CONFIG); "
            '"rgen types" lists the report types of "case"', *self.given, "-t", OTHER_GUID)

    def test_a_template_that_is_none(self):
        self.put_template(BROKEN)
        for mode in ("file", "bytes"):
            self.expect_refusal(
                "Cannot proceed xslt template file (0xC0020001 RGEN_E_XSLT_PARSE); the template "
                'is "case/.rgen/templates/txt/acquisition.xsl"', *self.given, "--mode", mode,
                diagnosis=OF_BROKEN)

    def test_a_template_that_fails(self):
        self.put_template(FAILING)
        self.expect_refusal(
            "Cannot apply xslt template to xml (0xC0020002 RGEN_E_XSLT_APPLY); the template is "
            '"case/.rgen/templates/txt/acquisition.xsl"', *self.given, diagnosis=OF_FAILING)

    def test_standard_output_stays_empty(self):
        self.put_template(FAILING)
        result = self.report(*self.given, "-f", "txt", output="-")
        self.assertEqual((1, b""), (result.code, result.out))
        self.assertEqual(OF_FAILING, result.messages[1:], result)

    def test_a_missing_folder(self):
        self.expect_refusal("Cannot create output file (0xC000000C RGEN_E_CREATE_OUTPUT); the "
                            'folder "missing" does not exist', *self.given,
                            output="missing/report.txt")

    def test_a_folder_in_the_place_of_the_report(self):
        self.write("folder.html/file", "kept")
        self.expect_refusal("Cannot overwrite output file (0xC000000B RGEN_E_OVERWRITE_OUTPUT); "
                            "it is a folder", *self.given, output="folder.html")

    def test_a_broken_configuration(self):
        self.write("case/.rgen/config.xml", "<config>")
        before = self.contents()
        result = self.report(*self.given, "-t", GUID)
        self.assertEqual(b"", result.out)
        self.assertIn(result.code, (1, 2, 5), result)
        self.assertEqual(1, len(result.messages), result)
        self.assertEqual(before, self.contents())

    @linux_only
    def test_a_folder_that_may_not_be_written(self):
        self.write("locked/report.txt", "older")
        (self.folder / "locked").chmod(0o555)
        self.addCleanup((self.folder / "locked").chmod, 0o755)
        for mode in ("file", "bytes"):
            result = self.report(*self.given, "--mode", mode, output="locked/report.txt",
                                 prefix=unprivileged())
            self.assertIn(result.code, (1, 4, 5), result)
            self.assertEqual(1, len(result.messages), result)
            self.assertEqual(b"older", self.read("locked/report.txt"))

    @linux_only
    def test_bytes_that_cannot_be_written_whole(self):
        self.write("report.txt", "older")
        before = self.contents()
        result = self.report("--set", "A=" + "x" * 5000, "--mode", "bytes",
                             prefix=with_small_files(1000))
        self.expect_error_like(result, 4, '^rgen: .*"?report.txt"?: .+; .+$')
        self.assertEqual(before, self.contents())

    @linux_only
    def test_a_data_directory_that_may_not_be_read(self):
        self.forbid("case/.rgen")
        result = self.report(*self.given, prefix=unprivileged())
        self.assertEqual((5, b""), (result.code, result.out), result)
        self.assertEqual(1, len(result.messages), result)
        self.assertNotIn("report.txt", self.names())

    @linux_only
    def test_what_the_library_may_not_look_at(self):
        self.forbid("case/.rgen/templates/txt")
        result = self.report(*self.given, prefix=unprivileged())
        self.expect_error_like(result, 5, "^rgen: report.txt: .+; check the access rights of the "
                                          "data directory$")

    @linux_only
    def test_standard_output_that_takes_nothing(self):
        full = os.open("/dev/full", os.O_WRONLY)
        result = self.report(*self.given, "-f", "txt", output="-", stdout=full)
        self.assertEqual((4, 1), (result.code, len(result.messages)), result)

    def test_a_template_that_writes_nothing(self):
        self.put_template(LISTING.replace("data/properties/property", "nothing"))
        before = self.contents()
        result = self.report(*self.given)
        self.assertEqual((1, b""), (result.code, result.out), result)
        self.assertRegex(
            result.messages[0],
            r"^rgen: report\.txt: .+ \(0xC0020003 RGEN_E_XSLT_RESULT\); the template is "
            '"case/.rgen/templates/txt/acquisition.xsl"$')
        self.assertRegex(result.messages[1],
                         f"{TEMPLATE}:2:1: error: the template writes nothing for this data; .+")
        self.assertEqual(before, self.contents())


class PlainOutput(CliCase):

    def test_there_is_no_colour(self):
        self.put_template(FAILING)
        for arguments in (["report", "-d", "case", "-o", "a.txt", "--set", "A=1"], ["nonsense"],
                          ["report", "--help"], ["doctor", "-d", "case"]):
            result = self.rgen(*arguments)
            self.assertNotIn("\x1b", result.err + result.text)

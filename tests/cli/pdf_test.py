"""Pdf reports: the converter's arguments, checks of its output, where it is found.

SPDX-License-Identifier: MIT
"""

import shutil

from cli_case import (CONVERTER_FOLDER, CliCase, copy_program, converter_name, from_native,
                      search_path)
from cli_converter import WHOLE_PDF, ConversionCase

SET = ("--set", "A=ä & ж")
ASKS_DOCTOR = 'run "rgen doctor"'


class Verification(ConversionCase):

    def expect_failure(self, reason, advice, content=None, error=None):
        """Returns the message; only an existing report is left."""
        self.write("report.pdf", "older")
        before = self.contents()
        result = self.convert(*SET).finish(content, error)
        self.expect_error(result, 4, f"rgen: report.pdf: {reason}; {advice}")
        self.assertEqual(before, self.contents())

    def test_a_whole_file(self):
        self.write("report.pdf", "older")
        result = self.convert(*SET).finish(WHOLE_PDF)
        self.expect_done(result)
        self.assertEqual([f"rgen: report.pdf: {len(WHOLE_PDF)} bytes"], result.messages)
        self.assertEqual(WHOLE_PDF, self.read("report.pdf"))
        self.assertEqual(["case", "report.pdf"],
                         [name for name in self.names() if not name.startswith("case/")])

    def test_line_ends_behind_the_end_mark(self):
        for end in (b"%%EOF", b"%%EOF\r\n", b"%%EOF\n\n"):
            with self.subTest(end=end):
                content = b"%PDF-1.4\n" + end
                self.expect_done(self.convert(*SET).finish(content))
                self.assertEqual(content, self.read("report.pdf"))

    def test_no_file(self):
        self.expect_failure("the converter made no file", ASKS_DOCTOR)

    def test_no_file_and_a_message(self):
        self.expect_failure("the converter made no file",
                            "vellum: cannot read page.html: no engine für Größe ж",
                            error="vellum: cannot read page.html: no engine für Größe ж\n".encode())

    def test_no_pdf(self):
        for content in (b"<html>%%EOF</html>", b"", b"%PD"):
            with self.subTest(content=content):
                self.expect_failure("the converter's file is not a whole PDF", ASKS_DOCTOR, content)

    def test_a_file_that_was_cut(self):
        self.expect_failure("the converter's file is not a whole PDF", ASKS_DOCTOR,
                            WHOLE_PDF[:-10])

    def test_a_file_that_was_cut_and_a_message(self):
        self.expect_failure("the converter's file is not a whole PDF", "vellum: the disk is full",
                            WHOLE_PDF[:-10], b"vellum: the disk is full\r\n")

    def test_a_page_about_a_failure_is_no_report(self):
        self.expect_failure("the converter failed", "vellum: there is no engine", WHOLE_PDF,
                            b"vellum: there is no engine\n")


class Arguments(ConversionCase):

    def test_the_page_is_beside_the_report_in_a_folder_that_goes(self):
        (self.folder / "Отчёты für 2026").mkdir()
        conversion = self.convert(*SET, output="Отчёты für 2026/Größe 1.pdf")
        folder = self.folder / "Отчёты für 2026"
        self.assertEqual(conversion.page.parent, conversion.output.parent)
        self.assertEqual(folder, conversion.page.parent.parent)
        self.assertRegex(conversion.page.parent.name, r"^rgen\.part-[a-z2-7]{10}$")
        page = conversion.page.read_text(encoding="utf-8")
        self.expect_done(conversion.finish(WHOLE_PDF))
        self.assertIn("ä &amp; ж", page)
        self.assertEqual(["Größe 1.pdf"], sorted(path.name for path in folder.iterdir()))

    def test_relative_links_count_from_the_folder_of_the_report(self):
        (self.folder / "Größe").mkdir()
        conversion = self.convert(*SET, output="Größe/report.pdf")
        base = conversion.option("-b")
        self.expect_done(conversion.finish(WHOLE_PDF))
        self.assertEqual(self.folder / "Größe", from_native(base, self.folder))

    def test_the_base_is_handed_over(self):
        conversion = self.convert(*SET, "--base", "https://example.org/a b/")
        base = conversion.option("-b")
        self.expect_done(conversion.finish(WHOLE_PDF))
        self.assertEqual("https://example.org/a b/", base)

    def test_an_older_report_is_there_until_the_new_one_is(self):
        self.write("report.pdf", "older")
        conversion = self.convert(*SET)
        self.assertEqual(b"older", self.read("report.pdf"))
        self.expect_done(conversion.finish(WHOLE_PDF))
        self.assertEqual(WHOLE_PDF, self.read("report.pdf"))

    def test_the_exit_code_of_the_converter_does_not_count(self):
        self.write("report.pdf", "older")
        result = self.report(*SET, output="report.pdf",
                             env=self.converter_environment(("exit", "3")))
        self.expect_error(result, 4, "rgen: report.pdf: the converter made no file; " + ASKS_DOCTOR)
        self.assertEqual(b"older", self.read("report.pdf"))


class WithoutConverter(CliCase):
    """A copy of rgen in its own folder, so that no other program is next to it."""

    def setUp(self):
        super().setUp()
        self.program = copy_program(self.folder / "программа für alle")
        self.addCleanup(self.expect_old_report)
        self.write("report.pdf", "older")
        self.expected = b"older"

    def expect_old_report(self):
        self.assertEqual(self.expected, self.read("report.pdf"))

    def test_no_converter(self):
        result = self.report(*SET, output="report.pdf", program=self.program)
        self.expect_error(
            result, 5, "rgen: report.pdf: Cannot run external program (0xC0000012 "
            'RGEN_E_RUN_EXTERNAL); the program "vellum" was not found on the search path: install '
            "it beside rgen or on PATH, or give --no-convert")
        self.assertEqual([], [name for name in self.names() if name.endswith(".html")])

    def test_a_converter_that_cannot_be_started(self):
        """The message contains the program and the reason."""
        broken = self.program.parent / converter_name()
        broken.write_bytes(b"this is no program")
        broken.chmod(0o755)
        result = self.report(*SET, output="report.pdf", program=self.program)
        self.assertEqual(5, result.code, result)
        self.assertRegex(result.err, r"\Argen: report\.pdf: Cannot run external program \(0xC0000012 "
                         r'RGEN_E_RUN_EXTERNAL\); ".+[/\\]' + converter_name() +
                         r'" cannot be started: .+ \(\d+\)\n\Z')
        self.assertEqual([], [name for name in self.names() if name.endswith(".html")])

    def test_the_doctor_says_it(self):
        result = self.rgen("doctor", program=self.program)
        self.assertEqual((5, ""), (result.code, result.err))
        self.assertRegex(result.text, r"(?m)^FAIL\b.*vellum")

    def test_the_template_s_own_page(self):
        result = self.report(*SET, "--no-convert", output="report.pdf", program=self.program)
        self.expect_done(result)
        self.expected = self.read("report.pdf")
        self.assertIn("ä &amp; ж".encode(), self.expected)

    def test_a_converter_beside_rgen(self):
        shutil.copy(CONVERTER_FOLDER / converter_name(), self.program.parent)
        self.write("converter.control", "mark\tconverter was here\n")
        result = self.report(*SET, output="report.pdf", program=self.program,
                             env={"STAND_IN_CONTROL": "converter.control"})
        self.assertEqual(4, result.code, result)
        self.assertIn("converter was here", self.names())

    def test_a_converter_on_the_search_path(self):
        self.write("converter.control", "mark\tconverter was here\n")
        result = self.report(*SET, output="report.pdf", program=self.program,
                             env={**search_path(self.folder / "ä", CONVERTER_FOLDER),
                                  "STAND_IN_CONTROL": "converter.control"})
        self.assertEqual(4, result.code, result)
        self.assertIn("converter was here", self.names())

    def test_only_the_mode_file_converts(self):
        before = self.contents()
        for mode in ("bytes", "delete-on-close"):
            self.expect_error(
                self.report(*SET, "--mode", mode, output="report.pdf", program=self.program), 2,
                f"rgen report: --mode {mode} does not convert to pdf; give --no-convert to get the "
                "page itself")
        self.assertEqual(before, self.contents())

    def test_the_bytes_of_a_pdf_are_the_page(self):
        result = self.report(*SET, "-f", "pdf", "--mode", "bytes", "--no-convert",
                             output="page.html", program=self.program)
        self.expect_done(result)
        self.assertIn("ä &amp; ж".encode(), self.read("page.html"))

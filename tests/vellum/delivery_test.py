"""A complete PDF is written or none; an error is written to a file next to it.

SPDX-License-Identifier: MIT
"""

import os
import re
import shutil
import subprocess
import unittest

from program_case import ON_WINDOWS, linux_only, native, windows_only, with_small_files
from vellum_case import ENGINE, OLD, PAGE, STAND_IN, VellumCase

NO_PDF = f"{ENGINE} made no PDF: it said nothing; try \"vellum --check\""
NOT_WHOLE = f"{ENGINE} made no whole PDF: "


class DeliveryCase(VellumCase):

    def setUp(self):
        super().setUp()
        self.write("report.pdf", OLD)

    def expect_failure(self, result, code, message):
        """The old PDF remains, with the error text next to it and nothing else."""
        self.expect_error(result, code, message)
        self.assertEqual(OLD, self.read("report.pdf"))
        self.assertEqual(f"vellum: {message}\n", self.error_text())
        self.assertEqual(["page.html", "report.pdf", "report.pdf.error.txt"], self.names())


class Success(DeliveryCase):

    def test_the_pdf_is_the_engine_s(self):
        self.expect_done(self.convert())
        self.assertIn(b"stand-in page", self.read("report.pdf"))
        self.assertEqual(["page.html", "report.pdf"], self.names())

    def test_exit_codes_of_engines_count_for_nothing(self):
        self.expect_done(self.convert(does="unwell"))
        self.expect_pdf()

    def test_it_removes_an_old_error_text(self):
        self.write("report.pdf.error.txt", "vellum: something older\n")
        self.expect_done(self.convert())
        self.assertEqual(["page.html", "report.pdf"], self.names())

    def test_other_error_texts_stay(self):
        self.write("other.pdf.error.txt", "vellum: something older\n")
        self.expect_done(self.convert())
        self.assertIn("other.pdf.error.txt", self.names())

    def test_the_page_stays_as_it_is(self):
        self.expect_done(self.convert())
        self.assertEqual(PAGE, self.text_of("page.html"))

    @linux_only
    def test_a_link_to_a_file(self):
        (self.folder / "report.pdf").unlink()
        self.write("elsewhere.pdf", OLD)
        (self.folder / "report.pdf").symlink_to("elsewhere.pdf")
        self.expect_done(self.convert())
        self.expect_pdf()


class Failures(DeliveryCase):

    def test_no_file(self):
        self.expect_failure(self.convert(does="nothing"), 5, NO_PDF)

    def test_no_pdf(self):
        result = self.convert(does="garbage")
        self.assertEqual(1, len(result.messages), result)
        self.expect_failure(result, 5, result.messages[0].removeprefix("vellum: "))
        self.assertRegex(result.err, f"^vellum: {re.escape(NOT_WHOLE)}.+; "
                         'try "vellum --check"\n$')

    def test_a_pdf_that_was_cut(self):
        result = self.convert(does="cut")
        self.assertEqual(1, len(result.messages), result)
        self.expect_failure(result, 5, result.messages[0].removeprefix("vellum: "))
        self.assertRegex(result.err, f"^vellum: {re.escape(NOT_WHOLE)}.+; "
                         'try "vellum --check"\n$')

    def test_an_engine_that_fails(self):
        self.expect_failure(self.convert(does="fail:the paper is out: Größe ж"), 5,
                            f'{ENGINE} made no PDF: the paper is out: Größe ж; '
                            'try "vellum --check"')

    def test_the_next_success_removes_the_text(self):
        self.convert(does="nothing")
        self.assertIn("report.pdf.error.txt", self.names())
        self.expect_done(self.convert())
        self.assertNotIn("report.pdf.error.txt", self.names())

    def test_a_newer_error_replaces_the_text(self):
        self.convert(does="fail:first")
        self.expect_failure(self.convert(does="nothing"), 5, NO_PDF)

    def test_no_engine(self):
        message = 'the engine "nix" was not found; "vellum --list-engines" shows those there are'
        self.expect_failure(self.convert("--engine", "nix"), 7, message)

    def test_no_page(self):
        self.write("page.html", PAGE)
        result = self.vellum("-i", "x.html", "-o", "report.pdf")
        self.expect_error_like(result, 3, 'cannot read "x.html": .+; check the path given to -i')
        self.assertEqual(OLD, self.read("report.pdf"))
        # A page that is deleted before it was read was cancelled early.
        self.assertNotIn("report.pdf.error.txt", self.names())

    def test_a_folder_as_page(self):
        (self.folder / "sub").mkdir()
        result = self.vellum("-i", "sub", "-o", "report.pdf")
        self.expect_error_like(result, 3, 'cannot read "sub": .+; check the path given to -i')
        self.assertEqual(OLD, self.read("report.pdf"))
        self.assertFalse(self.engine_ran)

    def test_wrong_arguments_with_an_output(self):
        result = self.vellum("-i", "page.html", "-t", "xml", "-o", "report.pdf")
        self.expect_error(result, 2, '-t "xml" is not known; there is html only')
        self.assertEqual(OLD, self.read("report.pdf"))
        self.assertEqual(result.err, self.error_text())

    @linux_only
    def test_a_pipe_as_page(self):
        """Opening it could block forever."""
        os.mkfifo(self.folder / "pipe")
        result = self.vellum("-i", "pipe", "-o", "report.pdf")
        self.expect_error(result, 3, 'cannot read "pipe": it is no ordinary file; check the path given to -i')

    @linux_only
    def test_no_room_for_the_copy_of_the_page(self):
        """An engine would make a PDF of half a report from half a page."""
        page = PAGE + "x" * 200_000
        result = self.convert(page=page, prefix=with_small_files(100_000))
        self.assertNotEqual(0, result.code, result)
        self.assertEqual(1, len(result.messages), result)
        self.assertEqual(OLD, self.read("report.pdf"))

    @linux_only
    def test_a_page_that_may_not_be_read(self):
        page = self.write("page.html", PAGE)
        prefix = self.as_nobody()
        page.chmod(0)
        result = self.vellum("-i", "page.html", "-o", "report.pdf", prefix=prefix,
                             program=self.program)
        self.expect_error(result, 3, 'cannot read "page.html": Permission denied; '
                                     "check the path given to -i")


class Outputs(VellumCase):

    def expect_refusal(self, result, message):
        self.expect_error(result, 4, message)
        self.assertFalse(self.engine_ran)

    def test_a_folder_that_is_missing(self):
        self.expect_refusal(
            self.convert(output="no/x.pdf"),
            'cannot write "no/x.pdf": the folder "no" does not exist; make it or name another')
        self.assertEqual(["page.html"], self.names())

    def test_a_folder_that_is_missing_by_its_whole_path(self):
        folder, separator = native(self.folder / "нет ß"), "\\" if ON_WINDOWS else "/"
        self.expect_refusal(
            self.convert(output=f"{folder}{separator}x.pdf"),
            f'cannot write "{folder}{separator}x.pdf": the folder "{folder}" does not exist; '
            "make it or name another")

    def test_the_page_itself_as_output(self):
        for given in ("text", "page"):
            self.expect_refusal(self.convert(output="page.html", env={"VELLUM_ON_ERROR": given}),
                                'cannot write "page.html": it is the page itself; name another '
                                "file")
            self.assertEqual(PAGE.encode("utf-8"), self.read("page.html"))

    def test_a_folder_as_output(self):
        (self.folder / "dir").mkdir()
        self.expect_refusal(self.convert(output="dir"),
                            'cannot write "dir": it is a folder; name a file')
        self.assertEqual([], list((self.folder / "dir").iterdir()))
        self.assertTrue((self.folder / "dir").is_dir())

    @linux_only
    def test_a_folder_that_may_not_be_written(self):
        (self.folder / "closed").mkdir()
        self.write("page.html", PAGE)
        prefix = self.as_nobody()
        (self.folder / "closed").chmod(0o555)
        result = self.vellum("-i", "page.html", "-o", "closed/x.pdf", prefix=prefix,
                             program=self.program)
        self.expect_error_like(result, 4, 'cannot write "closed/x.pdf": .*Permission denied.*')
        self.assertEqual([], list((self.folder / "closed").iterdir()))

    @windows_only
    def test_a_path_without_drive(self):
        """Paths that start with two backslashes: network paths and long paths."""
        self.expect_done(self.convert(output="\\\\?\\" + native(self.folder / "report.pdf")))
        self.expect_pdf()
        self.assertEqual(["page.html", "report.pdf"], self.names())

    def test_a_name_of_many_parts(self):
        self.expect_done(self.convert(output="Отчёт № 1.2026.pdf.pdf"))
        self.assertEqual(["page.html", "Отчёт № 1.2026.pdf.pdf"], self.names())

    def test_a_name_without_ending(self):
        self.expect_done(self.convert(output="report"))
        self.expect_pdf("report")


class LongNames(VellumCase):
    """Names of maximum length: 255 bytes, on Windows UTF-16 units."""

    def names_of_length(self):
        for length in (245, 246, 250, 255):
            yield "x" * (length - 4) + ".pdf"
            if not ON_WINDOWS:
                yield "x" * (length % 2) + "ж" * ((length - 4) // 2) + ".pdf"

    def test_they_are_made(self):
        for name in self.names_of_length():
            with self.subTest(name=name):
                self.expect_done(self.convert(output=name))
                self.expect_pdf(name)
                self.assertEqual(sorted([name, "page.html"]), self.names())
                (self.folder / name).unlink()

    def test_an_error_has_a_text_all_the_same(self):
        for name in self.names_of_length():
            with self.subTest(name=name):
                self.expect_error(self.convert(output=name, does="nothing"), 5, NO_PDF)
                texts = [each for each in self.names() if each != "page.html"]
                self.assertEqual(1, len(texts), texts)
                self.assertIn(texts[0].removesuffix(".error.txt"), name)
                self.assertEqual(f"vellum: {NO_PDF}\n", self.text_of(texts[0]))
                self.expect_done(self.convert(output=name))
                self.assertEqual(sorted([name, "page.html"]), self.names())
                (self.folder / name).unlink()


class OnError(DeliveryCase):

    def fail(self, how, **settings):
        return self.convert(does="nothing", env={"VELLUM_ON_ERROR": how}, **settings)

    def test_text(self):
        self.expect_failure(self.fail("text"), 5, NO_PDF)

    def test_none(self):
        self.expect_error(self.fail("none"), 5, NO_PDF)
        self.assertEqual(OLD, self.read("report.pdf"))
        self.assertEqual(["page.html", "report.pdf"], self.names())

    def test_page(self):
        self.expect_error(self.fail("page"), 5, NO_PDF)
        self.expect_pdf()
        self.assertIn(b"made no PDF", self.read("report.pdf"))
        self.assertEqual(f"vellum: {NO_PDF}\n", self.error_text())
        self.assertEqual(["page.html", "report.pdf", "report.pdf.error.txt"], self.names())

    def test_a_page_where_nothing_was(self):
        (self.folder / "report.pdf").unlink()
        self.expect_error(self.fail("page"), 5, NO_PDF)
        self.expect_pdf()

    def test_the_page_is_a_pdf_with_the_words(self):
        tools = [shutil.which(name) for name in ("qpdf", "pdftotext", "pdfinfo")]
        if None in tools:
            raise unittest.SkipTest("qpdf and poppler-utils are not installed")
        reason = "not (enough) \\ paper " * 30 + "Größe"
        self.convert(does=f"fail:{reason}", env={"VELLUM_ON_ERROR": "page"})
        path = self.folder / "report.pdf"
        subprocess.run([tools[0], "--check", path], check=True, capture_output=True)
        words = subprocess.check_output([tools[1], path, "-"], text=True).split()
        self.assertIn(" ".join(reason.split()[:-1]), " ".join(words))
        self.assertRegex(subprocess.check_output([tools[2], path], text=True),
                         r"(?m)^Pages: +1$")

    def test_a_success_is_not_concerned(self):
        for how in ("text", "none", "page"):
            self.expect_done(self.convert(env={"VELLUM_ON_ERROR": how}))
            self.assertIn(b"stand-in page", self.read("report.pdf"))
            self.assertEqual(["page.html", "report.pdf"], self.names())

    def test_none_removes_an_old_text_on_success(self):
        self.write("report.pdf.error.txt", "vellum: something older\n")
        self.expect_done(self.convert(env={"VELLUM_ON_ERROR": "none"}))
        self.assertEqual(["page.html", "report.pdf"], self.names())


class AtOnce(VellumCase):

    def test_several_into_one_folder(self):
        running = [self.start_conversion(
            output=f"report {number}.pdf",
            env={"STAND_IN_ENGINE_LOG": native(self.log_path(str(number)))})
            for number in range(4)]
        for each in running:
            self.expect_done(each.finish())
        self.assertEqual(["page.html", *(f"report {number}.pdf" for number in range(4))],
                         self.names())
        self.assertEqual(4, len({self.log(str(number)).pdf_path for number in range(4)}))
        self.assertEqual(4, len({self.log(str(number)).page_path for number in range(4)}))

    def test_one_fails_beside_another(self):
        bad = self.put_program(STAND_IN, self.base_folder / "engines", "bad engine")
        failing = self.start_conversion(output="bad.pdf", does="nothing",
                                        env={"VELLUM_ENGINE": native(bad),
                                             "STAND_IN_ENGINE_LOG": native(self.log_path("bad"))})
        self.expect_done(self.convert())
        self.expect_error(failing.finish(), 5,
                          'bad engine made no PDF: it said nothing; try "vellum --check"')
        self.assertEqual(["bad.pdf.error.txt", "page.html", "report.pdf"], self.names())

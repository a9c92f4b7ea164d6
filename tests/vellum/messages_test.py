"""The exact text of messages.

SPDX-License-Identifier: MIT
"""

from program_case import NO_SUCH_FILE
from vellum_case import ENGINE, VellumCase, engines_on

ADVICE = 'try "vellum --check"'
NOISE = "[1121/164240.415117:ERROR:dbus/bus.cc:405] Failed to connect to the bus"


class Input(VellumCase):

    def test_no_such_page(self):
        result = self.vellum("-i", "x.html", "-o", "report.pdf")
        self.expect_error_like(result, 3, f'cannot read "x.html": {NO_SUCH_FILE}; '
                               "check the path given to -i")

    def test_the_path_is_shown_as_it_was_given(self):
        for path in ("нет ß.html", "no/../x.html", "./x"):
            result = self.vellum("-i", path, "-o", "report.pdf")
            self.expect_error_like(result, 3, f'cannot read "{path}": {NO_SUCH_FILE}; '
                                   "check the path given to -i")

    def test_a_path_that_forges_lines(self):
        """A message is one line, on standard error and in the error text."""
        result = self.vellum("-i", "x\nvellum: forged\x1b[2J\u009b31m\u202e.html", "-b",
                             "\nvellum: forged", "-o", "no\nfolder/report.pdf")
        self.assertEqual(1, result.err.count("\n"), result)
        self.assertNotRegex(result.err.rstrip("\n"), "[\x00-\x1f\x7f-\x9f\u202a-\u202e]")
        self.assertIn("\\n", result.err)

    def test_a_page_that_forges_lines(self):
        """Warnings contain text from the page."""
        forged = "x\nvellum: forged\x1b[2J\u009b31m\u202e"
        for page, names in ((f'<img src="{forged}.png">', True),
                            (f'<link rel=stylesheet href="{forged}.css">', True),
                            (f'<img src="x&#10;vellum: forged&#27;[2J&#155;31m&#x202e;.png">', True),
                            ('<img src="x%0Avellum:%20forged%1B[2J%C2%9B31m%E2%80%AE.png">', True),
                            (f'<meta name="vellum:engine" content="{forged}">', False)):
            with self.subTest(page=page):
                env = {} if names else engines_on(self.engine.parent)
                result = self.convert(page="<!doctype html>" + page, env=env)
                lines = result.err.rstrip("\n").split("\n")
                self.assertTrue(all(line.startswith("vellum: ") for line in lines), result)
                self.assertNotIn("vellum: forged", [line[:14] for line in lines])
                self.assertNotRegex("".join(lines), "[\x00-\x1f\x7f-\x9f\u202a-\u202e]")
                self.assertIn("\\n", result.err)

    def test_lines_of_the_system_are_plain(self):
        result = self.vellum("-i", "x.html", "-o", "report.pdf")
        self.assertEqual(1, result.err.count("\n"))
        self.assertNotIn("\r", result.err)
        self.assertNotIn(" ;", result.err)
        self.assertNotIn(".;", result.err)


class EngineWords(VellumCase):

    def expect_reason(self, reason, printed):
        result = self.convert(does=f"fail:{printed}")
        self.expect_error(result, 5, f"{ENGINE} made no PDF: {reason}; {ADVICE}")
        self.assertEqual(result.err, self.error_text())

    def test_it_said_nothing(self):
        self.expect_error(self.convert(does="nothing"), 5,
                          f"{ENGINE} made no PDF: it said nothing; {ADVICE}")

    def test_empty_lines_are_nothing(self):
        self.expect_reason("it said nothing", "  \n\n \t")

    def test_the_last_line(self):
        self.expect_reason("the second", "the first\nthe second\n\n")
        self.expect_reason("the second", "the first\r\nthe second\r\n")

    def test_letters(self):
        self.expect_reason("Größe und слово ✓", "Größe und слово ✓")

    def test_noise_is_not_the_reason(self):
        self.expect_reason("the paper is out", f"{NOISE}\nthe paper is out\n{NOISE}")

    def test_noise_when_there_is_nothing_else(self):
        self.expect_reason(NOISE, f"[1121/164240.4:WARNING:a.cc(1)] first\n{NOISE}")

    def test_a_very_long_line_is_cut_between_letters(self):
        for text in ("x" * 20_000, "x" + "ж" * 10_000, "ж" * 10_000):
            result = self.convert(does=f"fail:{text}")
            self.assertEqual((5, 1), (result.code, len(result.messages)))
            self.expect_plain(result.err)
            self.assertIn(text[:50], result.err)
            self.assertLess(len(result.err), 1_000)


class Success(VellumCase):

    def test_nothing_is_printed(self):
        for does in ("pdf", "unwell"):
            result = self.convert(does=does)
            self.assertEqual((0, b"", ""), (result.code, result.out, result.err))


class Standard(VellumCase):
    """What is printed to standard output and to standard error."""

    def test_errors_are_on_standard_error_only(self):
        result = self.convert(does="nothing")
        self.assertEqual(b"", result.out)
        self.assertTrue(result.err.startswith("vellum: "))
        self.assertTrue(result.err.endswith("\n"))

    def test_help_and_lists_are_on_standard_output_only(self):
        for option in ("--help", "--version", "--list-engines"):
            result = self.vellum(option)
            self.assertEqual("", result.err)
            self.assertNotEqual("", result.text)

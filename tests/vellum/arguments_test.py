"""The command line of vellum, its documentation, and the command line that vellum gives to the engine.

SPDX-License-Identifier: MIT
"""

import itertools
import os
import re
from pathlib import Path

from program_case import linux_only, native, windows_only
from vellum_case import OLD, PAGE, STAND_IN, VellumCase, path_here

HELP = '"vellum --help" shows the options'
OPTIONS = ["-i", "-b", "-t", "-o", "--engine", "--list-engines", "--check", "--help", "--version"]
ROOT = Path(__file__).resolve().parents[2]


class Options(VellumCase):

    def test_any_order(self):
        self.write("page.html", PAGE)
        groups = [("-i", "page.html"), ("-b", ""), ("-t", "html"), ("-o", "report.pdf")]
        orders = list(itertools.permutations(groups))
        for order in orders[::7]:
            with self.subTest(order=order):
                (self.folder / "report.pdf").unlink(missing_ok=True)
                self.expect_done(self.vellum(*itertools.chain(*order)))
                self.expect_pdf()

    def test_base_and_type_may_be_left_out(self):
        self.write("page.html", PAGE)
        self.expect_done(self.vellum("-o", "report.pdf", "-i", "page.html"))
        self.expect_pdf()

    def test_absolute_paths_and_paths_upwards(self):
        page = self.write("sub/Größe и слово.html", PAGE)
        output = self.folder / "sub" / "Отчёт ß 1.pdf"
        for given in ((native(page), native(output)),
                      ("../sub/Größe и слово.html", "../sub/Отчёт ß 1.pdf")):
            self.expect_done(self.vellum("-i", given[0], "-o", given[1],
                                         folder=self.folder / "sub"))
            self.expect_pdf("sub/Отчёт ß 1.pdf")
            output.unlink()

    def test_values_that_look_like_options(self):
        self.write("-page.html", PAGE)
        self.expect_done(self.vellum("-i", "-page.html", "-o", "-out.pdf"))
        self.expect_pdf("-out.pdf")

    @linux_only
    def test_signs_that_only_linux_takes_in_names(self):
        page, output = 'a\\b "c": <d>|?*#%41.html', 'x\\y "z": <#>?*%42.pdf'
        self.write(page, PAGE)
        self.expect_done(self.vellum("-i", page, "-o", output))
        self.expect_pdf(output)

    def test_the_output_is_replaced(self):
        self.write("report.pdf", OLD)
        self.expect_done(self.convert())
        self.expect_pdf()
        self.assertEqual(["page.html", "report.pdf"], self.names())


class Mistakes(VellumCase):

    def expect_usage(self, message, *args):
        self.write("page.html", PAGE)
        result = self.vellum(*args)
        self.expect_error(result, 2, message)
        self.assertFalse(self.engine_ran)
        self.assertNotIn("report.pdf", self.names())

    def test_missing_options(self):
        self.expect_usage(f"-i is missing; {HELP}")
        self.expect_usage(f"-i is missing; {HELP}", "-o", "report.pdf")
        self.expect_usage(f"-i is missing; {HELP}", "-i", "", "-o", "report.pdf")
        self.expect_usage(f"-o is missing; {HELP}", "-i", "page.html")
        self.expect_usage(f"-o is missing; {HELP}", "-i", "page.html", "-o", "")

    def test_options_without_their_value(self):
        for option in ("-i", "-b", "-t", "-o", "--engine"):
            with self.subTest(option=option):
                self.expect_usage(f"{option} needs a value; {HELP}", "-i", "page.html", "-o",
                                  "report.pdf", option)

    def test_unknown_options(self):
        given = ("-i", "page.html", "-o", "report.pdf")
        for option in ("-x", "--unknown", "--Help", "-I", "--engine=chromium", "--größe"):
            with self.subTest(option=option):
                self.expect_usage(f'there is no option "{option}"; {HELP}', *given, option)

    def test_a_word_too_much(self):
        given = ("-i", "page.html", "-o", "report.pdf")
        self.expect_usage(f'"stray" is not expected; {HELP}', *given, "stray")
        self.expect_usage(f'"слово ß" is not expected; {HELP}', "слово ß", *given)
        self.expect_usage(f'"-" is not expected; {HELP}', *given, "-")

    def test_another_type(self):
        for name in ("xml", "HTML", ""):
            with self.subTest(name=name):
                self.expect_usage(f'-t "{name}" is not known; there is html only', "-i",
                                  "page.html", "-t", name, "-o", "report.pdf")


class Help(VellumCase):

    def test_help(self):
        for words in (["--help"], ["-h"], ["-i", "page.html", "--help"]):
            result = self.vellum(*words)
            self.assertEqual((0, ""), (result.code, result.err))
            for option in OPTIONS:
                self.assertIn(option, result.text)
            for variable in ("VELLUM_ENGINE", "VELLUM_TIMEOUT", "VELLUM_ON_ERROR"):
                self.assertIn(variable, result.text)
            self.assertTrue(all(len(line) <= 100 for line in result.text.splitlines()))

    def test_version(self):
        result = self.vellum("--version")
        self.assertEqual((0, ""), (result.code, result.err))
        self.assertRegex(result.text, r"\Avellum \d+\.\d+\.\d+\n\Z")


class Documents(VellumCase):
    """The manual page and docs/vellum.md have the options, variables and exit codes of --help."""

    def help_rows(self, title):
        """The (name, meaning) pairs of one table of --help."""
        text = self.vellum("--help").text.replace("\r", "")
        table = text.split(f"\n{title}:\n")[1].split("\n\n")[0]
        rows = [re.fullmatch(r"  (\S.*?) {2,}(\S.*)", line) for line in table.splitlines()]
        self.assertGreater(len(rows), 3)
        return [row.groups() for row in rows]

    def page_rows(self, header):
        text = (ROOT / "docs/vellum.md").read_text(encoding="utf-8")
        table = text.split(f"| {header} | meaning |\n|---|---|\n")[1].split("\n\n")[0]
        rows = [line.replace("`", "").strip("| ").split(" | ") for line in table.splitlines()]
        return [tuple(row) for row in rows]

    def manual_rows(self, section):
        text = (ROOT / "tools/vellum/vellum.1.in").read_text(encoding="utf-8")
        text = re.sub(r"\\f[BIP]", "", text.replace("\\-", "-"))
        paragraphs = re.split(r"^\.(?:TP|PP)\n", text.split(f".SH {section}\n")[1].split(".SH ")[0],
                              flags=re.M)
        rows = []
        for paragraph in paragraphs:
            if paragraph.startswith(".B"):
                name, meaning = paragraph.split("\n", 1)
                name = " ".join(re.sub(r'^\.B[IR]?|"', "", name).replace(" , ", ", ").split())
                rows.append((name, " ".join(meaning.split()).removesuffix(".")))
        return rows

    def test_the_tables_are_the_same(self):
        for title, header, section in (("Options", "option", "OPTIONS"),
                                       ("Environment variables", "variable", "ENVIRONMENT"),
                                       ("Exit codes", "exit code", "EXIT STATUS")):
            with self.subTest(title=title):
                rows = self.help_rows(title)
                self.assertEqual(rows, self.page_rows(header))
                # Sentences in the manual page begin with a capital letter.
                capital = [(name, text[0].upper() + text[1:]) for name, text in rows]
                self.assertEqual(capital, self.manual_rows(section))


class EngineArguments(VellumCase):

    def converted(self, page=PAGE, **settings):
        self.expect_done(self.convert(page=page, **settings))
        return self.log()

    def test_a_profile_of_its_own(self):
        first = self.converted().option("--user-data-dir")
        second = self.converted().option("--user-data-dir")
        self.assertNotEqual(first, second)
        self.assertFalse(path_here(first).exists())

    def test_what_the_page_may_not_do(self):
        arguments = self.converted().arguments
        self.assertIn("--headless", arguments)
        self.assertIn("--no-pdf-header-footer", arguments)
        self.assertIn("--host-resolver-rules=MAP * ~NOTFOUND", arguments)
        self.assertIn("--generate-pdf-document-outline", arguments)
        self.assertFalse([word for word in arguments if word.startswith("--remote-debugging")
                          or word == "--disable-web-security"
                          or word.startswith("--allow-file-access")])

    def test_the_page_is_a_file_of_a_folder_of_its_own(self):
        log = self.converted()
        self.assertTrue(log.words[-1].startswith("file:///"), log.words)
        self.assertNotEqual(self.folder, log.page_path.parent)

    def test_the_pdf_is_made_beside_the_output(self):
        (self.folder / "sub").mkdir()
        pdf = self.converted(output="sub/Отчёт.pdf").pdf_path
        self.assertTrue(pdf.is_absolute())
        self.assertEqual(self.folder / "sub", pdf.parent)
        self.assertNotEqual("Отчёт.pdf", pdf.name)
        self.assertEqual(["Отчёт.pdf"], [path.name for path in pdf.parent.iterdir()])

    def test_large_pages_are_not_tagged(self):
        word = "--disable-pdf-tagging"
        self.assertNotIn(word, self.converted().arguments)
        self.assertNotIn(word, self.converted(PAGE + "x" * 1_900_000).arguments)
        self.assertIn(word, self.converted(PAGE + "x" * 2_200_000).arguments)

    @linux_only
    def test_the_staged_page_is_private(self):
        running = self.start_conversion(does="hang")
        self.wait_until_it_hangs(running)
        page = self.log().page_path
        self.assertEqual(0, page.parent.stat().st_mode & 0o077)
        (self.folder / "page.html").unlink()
        self.assertEqual(8, running.finish().code)

    @linux_only
    def test_no_sandbox_for_root_only(self):
        settings = {}
        if os.geteuid() == 0:
            self.assertIn("--no-sandbox", self.converted().arguments)
            settings["prefix"] = self.as_nobody()
            settings["program"] = self.program
        self.assertNotIn("--no-sandbox", self.converted(**settings).arguments)

    @windows_only
    def test_a_sandbox_on_windows(self):
        self.assertNotIn("--no-sandbox", self.converted().arguments)

    def test_weasyprint(self):
        self.engine = self.put_program(STAND_IN, self.base_folder / "engines", "weasyprint")
        log = self.converted(base="https://example.invalid/a/")
        self.assertEqual("weasyprint", log.program)
        self.assertNotEqual([], [word for word in log.arguments if "example.invalid" in word])
        self.assertFalse([word for word in log.arguments if word.startswith("--print-to-pdf")])
        self.expect_pdf()

    def test_wkhtmltopdf(self):
        self.engine = self.put_program(STAND_IN, self.base_folder / "engines", "wkhtmltopdf")
        log = self.converted()
        self.assertEqual("wkhtmltopdf", log.program)
        self.assertIn("--disable-javascript", log.arguments)
        self.expect_pdf()

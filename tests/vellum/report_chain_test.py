"""The whole chain: rgen, the library, vellum, the engine.

SPDX-License-Identifier: MIT
"""

import shutil
import subprocess
import unittest
from pathlib import Path

import cli_templates
from program_case import (ON_WINDOWS, PROGRAM, linux_only, native, search_path, windows_only)
from staged_page import Tags
from vellum_case import (ENGINE, FIRST_ENGINE, OLD, STAND_IN, VELLUM, VellumCase, path_here)

APP_PATHS = "Software\\Microsoft\\Windows\\CurrentVersion\\App Paths"
SET = ("--set", "A=Größe & слово")
REAL = shutil.which(ENGINE)


class ChainCase(VellumCase):
    """A case with a data directory. rgen finds a copy of vellum on the search path; on Windows the
    stand-in engine is in a folder next to it."""

    def setUp(self):
        super().setUp()
        self.write("case/.rgen/config.xml", cli_templates.configuration(
            [("acquisition.xsl", cli_templates.GUID, "acquisition_data.xml")]))
        self.write("case/.rgen/templates/pdf/acquisition.xsl", cli_templates.PAGE)
        self.programs = self.base_folder / "Programme für слово"
        self.put_program(VELLUM, self.programs, "vellum")
        self.before = self.names()

    def environment(self, changes=None):
        return super().environment({"VELLUM_ENGINE": None, **search_path(self.programs),
                                    **(changes or {})})

    def start_report(self, *args, output="report.pdf", **settings):
        return self.start("report", "-d", "case", "-f", "pdf", "-q", "-o", output, *SET, *args,
                          program=PROGRAM, **settings)

    def report(self, *args, **settings):
        return self.start_report(*args, **settings).finish()

    def put_engine_beside(self):
        return self.put_program(STAND_IN, self.programs / "chrome-headless-shell-win64",
                                FIRST_ENGINE)

    def expect_report(self, result):
        self.assertEqual((0, ""), (result.code, result.err), result)
        self.expect_pdf()
        self.assertEqual(sorted([*self.before, "report.pdf"]), self.names())


class WithStandIn(ChainCase):

    def environment(self, changes=None):
        return super().environment({"VELLUM_ENGINE": native(self.engine), **(changes or {})})

    def test_a_report(self):
        self.expect_report(self.report())
        page = self.log().page.decode("utf-8")
        self.assertIn("<p>Größe &amp; слово</p>", page)

    def test_paths_with_blanks_and_letters(self):
        output = self.folder / "Отчёты für 2026" / "Größe 1.pdf"
        output.parent.mkdir()
        result = self.report(output=native(output))
        self.assertEqual((0, ""), (result.code, result.err), result)
        self.assertEqual(["Größe 1.pdf"], [path.name for path in output.parent.iterdir()])

    def test_the_base_of_the_host(self):
        separator = "\\" if ON_WINDOWS else "/"
        for base in (native(self.folder / "sub folder") + separator,
                     native(self.folder / "sub folder")):
            self.expect_report(self.report("--base", base))
            found = Tags(self.log().page.decode("utf-8")).values("base", "href")
            self.assertTrue(found[0].endswith("/work/sub%20folder/"), found)

    def test_no_base_means_the_folder_of_the_report(self):
        self.expect_report(self.report())
        found = Tags(self.log().page.decode("utf-8")).values("base", "href")
        self.assertTrue(found[0].startswith("file:///") and found[0].endswith("/work/"), found)

    def test_an_engine_that_fails(self):
        self.write("report.pdf", OLD)
        result = self.report(env={"STAND_IN_ENGINE": "fail:the paper is out"})
        self.assertEqual(4, result.code, result)
        self.assertRegex(result.err, "^rgen: report.pdf: the converter made no file; (vellum: )?"
                         f"{ENGINE} made no PDF: the paper is out; "
                         'try "vellum --check"\n$')
        self.assertEqual(OLD, self.read("report.pdf"))
        self.assertEqual(sorted([*self.before, "report.pdf"]), self.names())

    def test_an_engine_that_takes_too_long(self):
        result = self.report(env={"STAND_IN_ENGINE": "hang", "VELLUM_TIMEOUT": "1"})
        self.assertEqual(4, result.code, result)
        self.assertIn("still busy after 1 s", result.err)
        self.assertEqual(self.before, self.names())

    def interrupt(self, does, waits_for):
        """The process of vellum is found by the path in its command line."""
        running = self.start_report(output=native(self.folder / "report.pdf"),
                                    env={"STAND_IN_ENGINE": does})
        self.wait_until_it_hangs(running, waits_for)
        running.interrupt()
        result = running.finish()
        self.assertEqual(130, result.code, result)
        self.expect_no_processes()

    def test_an_interruption(self):
        for does, waits_for in (("hang", "hangs"), ("stuck", "hangs"), ("child", "child")):
            with self.subTest(does=does):
                self.interrupt(does, waits_for)
                self.assertEqual(self.before, self.names())
                self.expect_no_staged_pages()
                for path in self.logs.iterdir():
                    path.unlink()

    def test_an_interruption_leaves_the_older_report(self):
        self.write("report.pdf", OLD)
        self.interrupt("stuck", "hangs")
        self.assertEqual(OLD, self.read("report.pdf"))
        self.assertEqual(sorted([*self.before, "report.pdf"]), self.names())


class WithoutEngine(ChainCase):

    def test_rgen_shows_the_reason(self):
        result = self.report()
        self.assertEqual(4, result.code, result)
        self.assertRegex(result.err, "^rgen: report.pdf: the converter made no file; (vellum: )?"
                         "no PDF engine was found; install chromium-headless-shell, or name an "
                         "engine with VELLUM_ENGINE\n$")
        self.assertEqual(self.before, self.names())


@windows_only
class OnWindows(ChainCase):

    def test_a_folder_beside_vellum(self):
        self.put_engine_beside()
        self.expect_report(self.report())
        self.assertEqual(FIRST_ENGINE, self.log().program)

    def test_a_registered_browser(self):
        browser = self.put_program(STAND_IN, self.base_folder / "browser", "chrome")
        key = f"HKCU\\{APP_PATHS}\\chrome.exe"
        added = self.start("add", key, "/ve", "/d", native(browser), "/f", program="reg").finish()
        self.addCleanup(lambda: self.start("delete", key, "/f", program="reg").finish())
        self.assertEqual(0, added.code, added)
        self.expect_report(self.report())
        self.assertEqual(browser, path_here(self.log().words[0]))

    def test_vellum_beside_rgen(self):
        for path in PROGRAM.parent.iterdir():
            if path == PROGRAM or path.name.startswith("strata_repgenlib"):
                shutil.copy(path, self.programs)
        self.put_engine_beside()
        result = self.start("report", "-d", "case", "-f", "pdf", "-q", "-o", "report.pdf", *SET,
                            program=self.programs / PROGRAM.name, env=search_path()).finish()
        self.expect_report(result)


@linux_only
@unittest.skipIf(REAL is None or shutil.which("pdftotext") is None,
                 f"{ENGINE} or pdftotext is not installed")
class WithRealEngine(ChainCase):

    def environment(self, changes=None):
        return super().environment({**search_path(self.programs, Path(REAL or "/").parent),
                                    "STAND_IN_ENGINE_LOG": None, **(changes or {})})

    def words(self, name):
        command = ["pdftotext", self.folder / name, "-"]
        return " ".join(subprocess.check_output(command, text=True).split())

    def test_a_report(self):
        self.expect_report(self.report())
        self.assertEqual("Größe & слово", self.words("report.pdf"))

    def test_the_sample(self):
        for arguments in (["init", "sample"],
                          ["persist", "set", "-d", "sample", "--data",
                           "sample/acquisition-lab.json"],
                          ["report", "-d", "sample", "--data", "sample/acquisition.json", "--lang",
                           "de", "-o", "Bericht.pdf"]):
            result = self.start(*arguments, program=PROGRAM).finish()
            self.assertEqual(0, result.code, result)
        content = self.read("Bericht.pdf")
        self.assertTrue(content.startswith(b"%PDF-"))
        self.assertIn("Tarnholm", self.words("Bericht.pdf"))

    def test_a_batch(self):
        self.write("batch.ndjson", "".join(f'{{"output": "{n}.pdf", "set": {{"A": "Wort {n}"}}}}\n'
                                           for n in range(3)))
        result = self.start("report", "-d", "case", "--batch", "batch.ndjson", "-q",
                            program=PROGRAM).finish()
        self.assertEqual(0, result.code, result)
        for number in range(3):
            self.assertEqual(f"Wort {number}", self.words(f"{number}.pdf"))

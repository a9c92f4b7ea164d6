"""The sample report type: rgen makes the reports that a host in C makes from the same data.

SPDX-License-Identifier: MIT
"""

import shutil
import unittest

from cli_case import EXAMPLE, CliCase

LANGUAGES = ("en", "de", "ru")
with_example = unittest.skipUnless(EXAMPLE, "this build was configured without the examples")


class Sample(CliCase):
    # The C host reads its arguments in the code page of Windows.
    folder_name = "rgen sample "
    has_data_dir = False

    def setUp(self):
        super().setUp()
        self.expect_done(self.rgen("init", "case", "-q"))
        self.expect_done(self.rgen("persist", "set", "-q", "-d", "case", "--data",
                                   "case/acquisition-lab.json"))

    def sample_report(self, output, language="en", data="case/acquisition.json"):
        choice = [] if language == "en" else ["--lang", language]
        result = self.report("--data", data, *choice, output=output)
        self.expect_notes(result)
        return self.read(output)

    @with_example
    def test_the_reports_are_those_of_the_host_in_c(self):
        shutil.copytree(self.folder / "case", self.folder / "host")
        (self.folder / "host/.rgen/acquisition_data.xml").unlink()
        result = self.start("host", "host", program=EXAMPLE).finish()
        self.assertEqual(0, result.code, result)
        for language in LANGUAGES:
            for ending in ("html", "txt"):
                with self.subTest(language=language, ending=ending):
                    expected = self.read(f"host/acquisition-{language}.{ending}")
                    self.assertEqual(expected, self.sample_report(f"own.{ending}", language))

    @with_example
    def test_both_store_the_same_persistent_data(self):
        expected = self.rgen("persist", "get", "-d", "case").text
        self.assertEqual(10, len(expected.splitlines()))
        self.assertEqual(0, self.start("case", "case", program=EXAMPLE).finish().code)
        self.assertEqual(expected, self.rgen("persist", "get", "-d", "case").text)

    def test_simulated_input_gives_the_same_reports(self):
        self.expect_notes(self.rgen("simulate", "-o", "sim.xml", "--data",
                                    "case/acquisition.json"))
        for language in LANGUAGES:
            for ending in ("html", "txt"):
                with self.subTest(language=language, ending=ending):
                    expected = self.sample_report(f"direct.{ending}", language)
                    simulated = self.sample_report(f"simulated.{ending}", language, "sim.xml")
                    self.assertEqual(expected, simulated)

    def test_standard_output_and_bytes_give_the_same_report(self):
        expected = self.sample_report("file.html", "ru")
        common = ("--data", "case/acquisition.json", "--lang", "ru", "-f", "html", "-q")
        result = self.report(*common, output="-")
        self.assertEqual((0, expected), (result.code, result.out))
        self.expect_done(self.report(*common, "--mode", "bytes", output="bytes.html"))
        self.assertEqual(expected, self.read("bytes.html"))

    def test_a_batch_in_three_languages(self):
        expected = {language: self.sample_report(f"{language}.html", language)
                    for language in LANGUAGES}
        self.write("batch.ndjson", '{"output": "b-en.html"}\n'
                                   '{"output": "b-de.html", "lang": "de"}\n'
                                   '{"output": "b-ru.html", "lang": "ru"}\n')
        self.expect_done(self.rgen("report", "-d", "case", "--data", "case/acquisition.json",
                                   "--batch", "batch.ndjson"))
        self.assertEqual(expected, {language: self.read(f"b-{language}.html")
                                    for language in LANGUAGES})

"""Paths: blanks, umlauts and Cyrillic everywhere, native and relative ones.

SPDX-License-Identifier: MIT
"""

from cli_case import (CliCase, from_native, linux_only, native, windows_only)
from cli_templates import catalogue, marked

PLACE = "Fälle für Größe/дела и случаи"


class Paths(CliCase):
    """Data directory, data, catalogue and reports are in folders with blanks, umlauts and Cyrillic
    letters, inside the case's own folder, which has such a name as well."""

    has_data_dir = False

    def setUp(self):
        super().setUp()
        self.make_data_dir(PLACE)
        self.write(f"{PLACE}/Сектор ö.bin", b"\x01\xab")
        self.write(f"{PLACE}/данные ü.json", '{"Größe": "ж & ä", "B:bytes": "@Сектор ö.bin"}')
        self.expected = {"Größe": "ж & ä", "B": "01 AB "}

    def path(self, name, is_native):
        return native(self.folder / PLACE / name) if is_native else f"{PLACE}/{name}"

    def test_reports(self):
        for is_native in (False, True):
            with self.subTest(is_native=is_native):
                output = self.path("Отчёт ß.txt", is_native)
                result = self.rgen("report", "-d", self.path("", is_native), "-o", output,
                                   "--data", self.path("данные ü.json", is_native))
                self.expect_done(result)
                size = len(self.read(f"{PLACE}/Отчёт ß.txt"))
                self.assertEqual([f"rgen: {output}: {size} bytes"], result.messages)
                self.assertEqual(self.expected, self.listed(self.read(f"{PLACE}/Отчёт ß.txt")))
                (self.folder / PLACE / "Отчёт ß.txt").unlink()

    def test_the_document_has_the_path_as_it_was_given(self):
        output = self.path("Отчёт ß.txt", True)
        result = self.rgen("report", "-d", self.path("", True), "-o", output, "--set", "A=1",
                           "--json", "-q")
        self.assertEqual(output, result.document["output"])

    def test_every_other_file(self):
        for is_native in (False, True):
            directory = ["-d", self.path("", is_native)]
            dump, simulated = (self.path(name, is_native) for name in ("ä ж.xml", "ß я.xml"))
            data = ["--data", self.path("данные ü.json", is_native)]
            self.expect_done(self.rgen("dump", "-o", dump, *data))
            self.expect_done(self.rgen("simulate", "-o", simulated, *data))
            result = self.rgen("report", *directory, "-o", "-", "-f", "txt", "--data", simulated)
            self.assertEqual(self.expected, self.listed(result.out))
            self.expect_done(self.rgen("persist", "replace", *directory, *data))
            self.assertEqual("ж & ä\n", self.rgen("persist", "get", *directory, "Größe").text)
            self.expect_done(self.rgen("types", *directory))
            self.assertIn("ä ж.xml", {path.name for path in (self.folder / PLACE).iterdir()})

    def test_catalogues(self):
        self.write(f"{PLACE}/.rgen/templates/txt/acquisition.xsl", marked("Name"))
        self.write(f"{PLACE}/ру сский.po", catalogue({"Name": "Имя"}))
        for is_native in (False, True):
            result = self.rgen("report", "-d", self.path("", is_native), "-o", "-", "-f", "txt",
                               "--set", "A=1", "--lang", self.path("ру сский.po", is_native))
            self.expect_done(result)
            self.assertEqual("Имя\n", result.text)

    def test_batches(self):
        self.write(f"{PLACE}/пакет ä.ndjson",
                   f'{{"output": "{PLACE}/Отчёт 1.txt", "data": "{PLACE}/данные ü.json"}}\n')
        for is_native in (False, True):
            self.expect_done(self.rgen("report", "-d", self.path("", is_native), "--batch",
                                       self.path("пакет ä.ndjson", is_native)))
            self.assertEqual(self.expected, self.listed(self.read(f"{PLACE}/Отчёт 1.txt")))

    def test_messages_name_paths_as_they_were_given(self):
        for is_native in (False, True):
            missing = self.path("нет ö.json", is_native)
            result = self.rgen("report", "-d", self.path("", is_native), "-o", "a.txt", "--data",
                               missing)
            self.assertEqual(2, result.code, result)
            self.assertIn(f'cannot read "{missing}": ', result.err)

    def test_folders_upwards_and_dots(self):
        (self.folder / PLACE / "sub").mkdir()
        result = self.rgen("report", "-d", "..", "-o", "../up.txt", "--data", "./../данные ü.json",
                           folder=self.folder / PLACE / "sub")
        self.expect_done(result)
        self.assertEqual(self.expected, self.listed(self.read(f"{PLACE}/up.txt")))

    def test_names_that_look_like_options(self):
        self.write_json("-data.json", {"A": "1"})
        self.expect_done(self.rgen("report", f"--data-dir={PLACE}", "--output=-out.txt",
                                   "--data=-data.json"))
        self.assertEqual({"A": "1"}, self.listed(self.read("-out.txt")))

    @windows_only
    def test_both_separators(self):
        output = PLACE.replace("/", "\\") + "\\a/../b.txt"
        (self.folder / PLACE / "a").mkdir()
        self.expect_done(self.rgen("report", "-d", PLACE.replace("/", "\\"), "-o", output, "--set",
                                   "A=1"))
        self.assertEqual(b"[A=1]\n", self.read(f"{PLACE}/b.txt"))
        self.assertTrue(from_native(output, self.folder).exists())

    @linux_only
    def test_signs_that_only_linux_takes_in_names(self):
        name = 'a\\b "c": <d>|?*.txt'
        self.expect_done(self.rgen("report", "-d", PLACE, "-o", name, "--set", "A=1"))
        self.assertEqual(b"[A=1]\n", self.read(name))

"""The commands that create and check a data directory: init, types, doctor.

SPDX-License-Identifier: MIT
"""

import shutil

from cli_case import (CONVERTER_FOLDER, SOURCE_FOLDER, CliCase, linux_only, search_path,
                      unprivileged)
from cli_templates import GUID, LISTING, OTHER_GUID, catalogue

SAMPLE_GUID = "5a0c6f1e-3b74-4e59-9d21-7c8e0f6a41b2"
SAMPLE_FILES = [".rgen/config.xml", ".rgen/templates/html/acquisition.xsl",
                ".rgen/templates/pdf/acquisition.xsl", ".rgen/templates/txt/acquisition.xsl",
                ".rgen/translations/acquisition-de.po", ".rgen/translations/acquisition-ru.po",
                "acquisition-lab.json", "acquisition.json"]


class Init(CliCase):
    has_data_dir = False

    def files(self):
        return [name for name in self.names() if (self.folder / name).is_file()]

    def test_the_sample(self):
        result = self.rgen("init", "Fälle и дела")
        self.expect_done(result)
        self.assertEqual([f"Fälle и дела/{name}" for name in SAMPLE_FILES], self.files())
        for name in ("html", "txt"):
            path = f"templates/{name}/acquisition.xsl"
            original = (SOURCE_FOLDER / "templates/acquisition" / path).read_bytes()
            self.assertEqual(original, self.read(f"Fälle и дела/.rgen/{path}"))

    def test_the_sample_works_at_once(self):
        self.expect_done(self.rgen("init", "case", "-q"))
        self.expect_notes(self.rgen("persist", "set", "-d", "case", "--data",
                                    "case/acquisition-lab.json"))
        for output, language in (("a.html", []), ("b.txt", ["--lang", "de"]),
                                 ("c.txt", ["--lang", "ru"])):
            result = self.report("--data", "case/acquisition.json", *language, output=output)
            self.expect_notes(result)
        result = self.report("--data", "case/acquisition.json", "--no-convert", output="d.pdf")
        self.expect_notes(result)
        self.assertIn(b"<html", self.read("d.pdf"))

    def test_a_folder_that_exists(self):
        self.write("case/kept.txt", "kept")
        self.expect_done(self.rgen("init", "case", "--sample", "acquisition"))
        self.assertEqual(b"kept", self.read("case/kept.txt"))
        self.assertIn("case/.rgen/config.xml", self.files())

    def test_the_current_folder_and_folders_on_the_way(self):
        self.expect_done(self.rgen("init", "a/b/c"))
        self.assertIn("a/b/c/acquisition.json", self.files())
        (self.folder / "here").mkdir()
        self.expect_done(self.rgen("init", ".", folder=self.folder / "here"))
        self.assertIn("here/.rgen/config.xml", self.files())

    def test_nothing_is_overwritten(self):
        for name in ("acquisition.json", ".rgen/config.xml"):
            with self.subTest(name=name):
                self.write(f"case/{name}", "kept")
                before = self.contents()
                self.expect_error(self.rgen("init", "case"), 2,
                                  f'rgen: "case/{name}" exists; nothing was written')
                self.assertEqual(before, self.contents())
                shutil.rmtree(self.folder / "case")

    def test_twice(self):
        self.expect_done(self.rgen("init", "case"))
        before = self.contents()
        result = self.rgen("init", "case")
        self.expect_error_like(result, 2, '^rgen: "case/.+" exists; nothing was written$')
        self.assertEqual(before, self.contents())

    def test_an_unknown_sample(self):
        result = self.rgen("init", "case", "--sample", "acquisiton")
        self.assertEqual((2, b"", 1), (result.code, result.out, len(result.messages)), result)
        self.assertIn('did you mean "acquisition"?', result.err)
        self.assertEqual([], self.names())

    def test_the_document(self):
        document = self.rgen("init", "case", "--json").document
        self.assertEqual((True, "case"), (document["ok"], document["folder"]))
        self.assertEqual(len(SAMPLE_FILES), len(document["files"]))
        for name in document["files"]:
            self.assertTrue((self.folder / name).is_file() or
                            (self.folder / "case" / name).is_file(), name)
        self.assertTrue(all(command.startswith("rgen ") for command in document["next"]))

    def test_a_file_in_the_place_of_the_folder(self):
        self.write("case", "a file")
        result = self.rgen("init", "case")
        self.assertIn(result.code, (2, 4, 5), result)
        self.assertEqual((b"", 1), (result.out, len(result.messages)), result)
        self.assertEqual(["case"], self.names())

    @linux_only
    def test_a_folder_that_may_not_be_written(self):
        (self.folder / "locked").mkdir(mode=0o555)
        result = self.rgen("init", "locked/case", prefix=unprivileged())
        self.assertIn(result.code, (4, 5), result)
        self.assertEqual((b"", 1), (result.out, len(result.messages)), result)
        self.assertEqual(["locked"], self.names())


class Types(CliCase):

    def make_two_types(self):
        self.make_data_dir("case", types=[("beta.xsl", GUID, "b.xml"),
                                          ("alpha.xslt", OTHER_GUID, "a.xml")],
                           templates={"txt/beta.xsl": LISTING, "html/beta.xsl": LISTING,
                                      "pdf/alpha.xslt": LISTING})
        for name in ("beta-de.po", "beta-ru.po"):
            self.write("case/.rgen/translations/" + name, catalogue({}))

    def test_a_line_for_each_type(self):
        self.make_two_types()
        result = self.rgen("types", "-d", "case")
        self.assertEqual((0, ""), (result.code, result.err))
        lines = {name: next(line for line in result.text.splitlines() if guid in line)
                 for name, guid in (("beta", GUID), ("alpha", OTHER_GUID))}
        for part in ("beta", "html", "txt", "de", "ru"):
            self.assertRegex(lines["beta"], rf"\b{part}\b")
        self.assertNotRegex(lines["beta"], r"\bpdf\b")
        for part in ("alpha", "pdf"):
            self.assertRegex(lines["alpha"], rf"\b{part}\b")
        self.assertNotRegex(lines["alpha"], r"\b(html|txt|de|ru)\b")

    def test_the_document(self):
        self.make_two_types()
        document = self.rgen("types", "-d", "case", "--json").document
        self.assertTrue(document["ok"])
        self.assertIsInstance(document["dataDir"], str)
        types = {entry["name"]: entry for entry in document["types"]}
        self.assertEqual({"name": "beta", "guid": GUID, "template": "beta.xsl",
                          "persistentData": "b.xml", "formats": ["html", "txt"],
                          "languages": ["de", "ru"]}, types["beta"])
        self.assertEqual((["pdf"], []), (types["alpha"]["formats"], types["alpha"]["languages"]))

    def test_the_current_folder(self):
        result = self.rgen("types", folder=self.folder / "case")
        self.assertIn(GUID, result.text)

    def test_no_data_directory(self):
        self.expect_error(self.rgen("types", "-d", "nowhere"), 5,
                          'rgen: the folder "nowhere" does not exist; make it with: rgen init '
                          '"nowhere"')
        result = self.rgen("types")
        self.assertEqual((5, b"", 1), (result.code, result.out, len(result.messages)), result)

    def test_a_configuration_that_is_none(self):
        self.write("case/.rgen/config.xml", "nonsense")
        result = self.rgen("types", "-d", "case")
        self.assertEqual((b"", 1), (result.out, len(result.err.splitlines())), result)
        self.assertIn('case/.rgen/config.xml', result.err)

    @linux_only
    def test_a_data_directory_without_rights(self):
        self.forbid("case/.rgen")
        result = self.rgen("types", "-d", "case", prefix=unprivileged())
        self.assertEqual((5, b"", 1), (result.code, result.out, len(result.messages)), result)


class Doctor(CliCase):

    def doctor(self, *args, code, **settings):
        result = self.rgen("doctor", *args, **settings)
        self.assertEqual((code, ""), (result.code, result.err), result)
        lines = result.text.splitlines()
        for line in lines:
            self.assertRegex(line, r"^\s*(ok|note|FAIL)\b")
        self.assertEqual(code == 5, any(line.lstrip().startswith("FAIL") for line in lines))
        return result

    def with_converter(self):
        return {"env": search_path(CONVERTER_FOLDER)}

    def test_a_data_directory_that_works(self):
        self.rgen("init", "whole")
        text = self.doctor("-d", "whole", code=0, **self.with_converter()).text
        self.assertIn("acquisition", text)
        self.assertIn("vellum", text)
        self.assertRegex(text, r"(?m)^\s*ok\b.*librar")

    def test_the_current_folder_is_looked_at_when_it_has_a_data_directory(self):
        self.assertIn("acquisition", self.doctor(code=0, folder=self.folder / "case",
                                                 **self.with_converter()).text)
        self.assertNotIn("acquisition", self.doctor(code=0, **self.with_converter()).text)

    def test_a_missing_data_directory(self):
        self.assertIn("nowhere", self.doctor("-d", "nowhere", code=5,
                                             **self.with_converter()).text)

    def test_a_broken_configuration(self):
        self.write("case/.rgen/config.xml", "nonsense")
        self.doctor("-d", "case", code=5, **self.with_converter())

    def test_a_report_type_without_templates(self):
        shutil.rmtree(self.folder / "case/.rgen/templates")
        self.doctor("-d", "case", code=5, **self.with_converter())

    def test_nothing_is_changed(self):
        before = self.contents()
        self.doctor("-d", "case", code=0, **self.with_converter())
        self.assertEqual(before, self.contents())

    def test_the_document(self):
        result = self.rgen("doctor", "-d", "case", "--json", **self.with_converter())
        self.assertEqual((0, ""), (result.code, result.err))
        document = result.document
        self.assertTrue(document["ok"])
        for check in document["checks"]:
            self.assertIn(check["result"], ("ok", "note", "FAIL"))
            self.assertTrue(check["name"] and check["text"])

    def test_the_document_of_a_failure(self):
        result = self.rgen("doctor", "-d", "nowhere", "--json", **self.with_converter())
        document = result.document
        self.assertEqual((5, False, 5), (result.code, document["ok"],
                                         document["error"]["exitCode"]))
        self.assertIn("FAIL", [check["result"] for check in document["checks"]])

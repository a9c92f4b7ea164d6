"""The documents of --json: members, in success and failure; messages stay on standard error.

SPDX-License-Identifier: MIT
"""

from cli_case import CliCase
from cli_converter import WHOLE_PDF, ConversionCase
from cli_templates import FAILING, GUID


class Success(CliCase):

    def document(self, *args, **settings):
        result = self.rgen(*args, "--json", **settings)
        self.assertEqual(0, result.code, result)
        document = result.document
        self.assertIs(True, document["ok"])
        self.assertNotIn("error", document)
        return document

    def test_report(self):
        document = self.document("report", "-d", "case", "-o", "ä ж.txt", "--set", "A=1",
                                 "--set", "B=1", "--set", "A=2")
        self.assertEqual({
            "ok": True, "output": "ä ж.txt", "format": "txt", "mode": "file", "bytes": 12,
            "type": {"guid": GUID, "name": "acquisition"}, "values": 2, "untranslated": [],
            "notes": ['"A" is given more than once; --set counts'],
        }, {name: value for name, value in document.items()
            if name not in ("timing", "data")})
        self.assertNotIn("timing", document)
        self.assertNotIn("data", document)

    def test_report_modes(self):
        for mode in ("bytes", "delete-on-close"):
            document = self.document("report", "-d", "case", "-o", "a.txt", "--set", "A=1",
                                     "--mode", mode)
            self.assertEqual(mode, document["mode"])

    def test_times_of_a_report(self):
        timing = self.document("report", "-d", "case", "-o", "a.txt", "--set", "A=1",
                               "--timing")["timing"]
        self.assertEqual({"input", "generate", "verify", "total"}, set(timing))
        self.assertTrue(all(value >= 0 for value in timing.values()))

    def test_persistent_data(self):
        stored = self.document("persist", "set", "-d", "case", "A=ä & ж", "B=1")
        self.assertEqual((2, []), (stored["stored"], stored["notes"]))
        self.assertEqual(GUID, stored["type"]["guid"])
        read = self.document("persist", "get", "-d", "case")
        self.assertEqual({"A": "ä & ж", "B": "1"}, read["values"])
        self.assertEqual(GUID, read["type"]["guid"])
        self.assertEqual({"B": "1"}, self.document("persist", "get", "-d", "case", "B")["values"])
        self.assertEqual(1, self.document("persist", "unset", "-d", "case", "A")["stored"])
        self.assertEqual(1, self.document("persist", "replace", "-d", "case", "C=1")["stored"])

    def test_dump_and_simulate(self):
        for command in ("dump", "simulate"):
            document = self.document(command, "-o", "a.xml", "--set", "A=1", "--set", "B=2")
            self.assertEqual(("a.xml", 2, []),
                             (document["output"], document["values"], document["notes"]))

    def test_signs_that_need_escapes(self):
        self.write_json("data.json", {'q"\\': "a\tb\nc \U0001f600 </x>"})
        document = self.document("report", "-d", "case", "-o", "a.txt", "--data", "data.json",
                                 "--show-data")
        self.assertEqual(('q"\\', "a\tb\nc \U0001f600 </x>"),
                         (document["data"][0]["name"], document["data"][0]["text"]))

    def test_quiet_has_the_notes_in_the_document_alone(self):
        result = self.report("--set", "A=1", "--set", "A=2", "--json", "-q")
        self.assertEqual("", result.err)
        self.assertEqual(1, len(result.document["notes"]))


class Failure(CliCase):

    def failure(self, code, *args, **settings):
        """The error of the document; the message is on standard error as well."""
        result = self.rgen(*args, "--json", **settings)
        document = result.document
        self.assertEqual((code, False), (result.code, document["ok"]), result)
        error = document["error"]
        self.assertEqual(code, error["exitCode"])
        self.assertIsInstance(error["hint"], str)
        self.assertTrue(error["message"])
        # The lines of a diagnosis begin with a place or are indented.
        errors = [line for line in result.messages if line.startswith("rgen")]
        self.assertEqual(1, len(errors), result)
        self.assertIn(error["message"], errors[0])
        return error

    def test_the_library_refuses(self):
        self.put_template(FAILING)
        error = self.failure(1, "report", "-d", "case", "-o", "a.txt", "--set", "A=1")
        self.assertEqual(("0xC0020002", "RGEN_E_XSLT_APPLY", "Cannot apply xslt template to xml"),
                         (error["status"], error["statusName"], error["statusText"]))

    def test_arguments(self):
        for arguments in (["reprot"], ["report", "--zzzz"], ["report", "-d", "case"],
                          ["report", "-d", "case", "-o", "a.doc", "--set", "A=1"],
                          ["report", "-d", "case", "-o", "a.txt", "--set", "abc"],
                          ["report", "-d", "case", "-o", "a.txt", "--data", "missing.json"],
                          ["report", "-d", "case", "-o", "a.txt", "-t", "acquisiton"],
                          ["persist", "get", "-d", "case", "Q"], ["explain", "nonsense"],
                          ["init", "case/.rgen/templates/..", "--sample", "x"]):
            with self.subTest(arguments=arguments):
                error = self.failure(2, *arguments)
                self.assertNotIn("status", error)

    def test_a_broken_data_file(self):
        self.write("data.json", '{\n "A": "x",\n "Ä:int": 1.5}')
        error = self.failure(2, "report", "-d", "case", "-o", "a.txt", "--data", "data.json")
        self.assertIn("data.json:3:11: ", error["message"])

    def test_surroundings(self):
        for arguments in (["report", "-o", "a.txt"], ["persist", "get"], ["types"]):
            error = self.failure(5, *arguments, "-d", "nowhere")
            self.assertIn("nowhere", error["message"])
            self.assertIn("rgen init", error["hint"])

    def test_the_document_stands_alone_with_other_options(self):
        error = self.failure(2, "report", "-d", "case", "-o", "a.txt", "--data", "missing.json",
                             "--show-data", "--timing")
        self.assertIn("missing.json", error["message"])


class Conversions(ConversionCase):

    def test_a_file_that_cannot_be_verified(self):
        result = self.convert("--set", "A=1", "--json").finish(b"no pdf")
        document = result.document
        self.assertEqual((4, False, 4),
                         (result.code, document["ok"], document["error"]["exitCode"]), result)

    def test_a_whole_file(self):
        document = self.convert("--set", "A=1", "--json").finish(WHOLE_PDF).document
        self.assertEqual((True, "pdf", len(WHOLE_PDF), "report.pdf"),
                         tuple(document[name] for name in ("ok", "format", "bytes", "output")))


class TextsThatSteerATerminal(CliCase):

    def test_they_are_written_as_references(self):
        letters = "\x7f\u0080\u009b\u061c\u200e\u2028\u202e\u2066"
        result = self.rgen("report", "-d", "case", "--json", "--show-data", "-f", "txt", "-q", "-o",
                           "o.txt", "--set", f"A=Größe {letters} \U0001f600")
        self.expect_done(result)
        for letter in letters:
            self.assertNotIn(letter, result.text)
            self.assertIn(f"\\u{ord(letter):04x}", result.text)
        self.assertIn("Größe", result.text)
        self.assertEqual(f"Größe {letters} \U0001f600", result.document["data"][0]["text"])

"""Texts from outside in messages cannot control the terminal, forge a line or change the direction.

SPDX-License-Identifier: MIT
"""

import json
import os
import pty
import re
import threading

from cli_case import linux_only, read_terminal
from cli_converter import ConversionCase
from cli_templates import GUID, configuration, marked, simulated_input

FORGED = "rgen: note: forged"
EVIL = f"x\n{FORGED}\r\x1b[2J\x07\u009b31m\u0085\u2028\u202ey\u2066\x7f"
STEERING = re.compile("[\x00-\x09\x0b-\x1f\x7f-\x9f\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069]")
# XML allows no other control characters.
EVIL_XML = f"x&#10;{FORGED}&#13;&#x85;&#x9b;31m&#x2028;&#x202e;y"


class Messages(ConversionCase):

    def expect_harmless(self, result, says_something=True):
        """Every line comes from rgen and contains no control character."""
        self.assertIsNone(STEERING.search(result.err), repr(result.err))
        for line in result.err.splitlines():
            self.assertRegex(line, "^rgen[ :]")
            self.assertFalse(line.startswith(FORGED), result.err)
        self.expect_plain(result.err)
        self.assertEqual(says_something, bool(result.err), result)

    def test_arguments(self):
        for arguments in (["report", "-d", "case", "-o", "r.txt", "--set", f"A:int={EVIL}"],
                          ["report", "-d", "case", "-o", "r.txt", "--set", f"A:{EVIL}=1"],
                          ["report", "-d", "case", "-o", "r.txt", "--set", EVIL],
                          ["report", "-d", "case", "-o", f"{EVIL}/r.txt", "--set", "A=1"],
                          ["report", "-d", "case", "-o", EVIL, "--set", "A=1"],
                          ["report", "-d", "case", "-o", "r.txt", "--set", "A=1", "-f", EVIL],
                          ["report", "-d", "case", "-o", "r.txt", "--set", "A=1", "-t", EVIL],
                          ["report", "-d", "case", "-o", "r.txt", "--set", "A=1", "--lang", EVIL],
                          ["report", "-d", "case", "-o", "r.txt", "--set", "A=1", "--mode", EVIL],
                          ["report", "-d", EVIL, "-o", "r.txt", "--set", "A=1"],
                          ["report", "-d", "case", "-o", "r.txt", "--data", EVIL],
                          ["report", "-d", "case", "--batch", EVIL],
                          ["report", f"--{EVIL}"], ["report", EVIL], [EVIL], ["explain", EVIL],
                          ["completion", EVIL], ["init", "--sample", EVIL, "new"],
                          ["persist", "get", "-d", "case", EVIL],
                          ["persist", "unset", "-d", "case", EVIL],
                          ["dump", "-o", f"{EVIL}/d.xml", "--set", "A=1"],
                          ["simulate", "-o", f"{EVIL}/s.xml", "--set", "A=1"]):
            with self.subTest(arguments=arguments):
                result = self.rgen(*arguments)
                self.assertNotEqual(0, result.code, result)
                self.expect_harmless(result)

    @linux_only
    def test_names_of_reports_that_are_made(self):
        """On Linux a file name may contain all of this."""
        result = self.report("--set", "A=1", "-f", "txt", output=EVIL)
        self.assertEqual(0, result.code, result)
        self.expect_harmless(result)
        self.assertEqual(b"[A=1]\n", self.read(EVIL))

    def test_json_data_files(self):
        for member, value in ((f"A:{EVIL}", 1), ("A:bytes", f"@{EVIL}"), ("A:bytes", EVIL),
                              ("A:size", EVIL), (f"{EVIL}:size", "x"), (EVIL, True),
                              ("A:datetime", EVIL)):
            with self.subTest(member=member, value=value):
                self.write_json("data.json", {member: value})
                result = self.report("--data", "data.json")
                self.assertEqual(2, result.code, result)
                self.expect_harmless(result)
        self.write("data.json", '{"A": \x1b[2J\u009b}')
        self.expect_harmless(self.report("--data", "data.json"))
        self.write("data.json", b'{"A": "\xff\x9b\xc3"}')
        self.expect_harmless(self.report("--data", "data.json"))

    def test_names_that_are_given_twice(self):
        name = json.dumps(EVIL + ":text")
        self.write("data.json", f'{{{name}: "1", {name}: "2"}}')
        result = self.report("--data", "data.json")
        self.assertEqual((0, True), (result.code, bool(result.notes)), result)
        self.expect_harmless(result)

    def test_batches(self):
        lines = [{"output": "a.txt", EVIL: "x"}, {"output": "b.txt", "set": {f"A:{EVIL}": 1}},
                 {"output": "c.txt", "type": EVIL, "set": {"A": "1"}},
                 {"output": "d.txt", "data": EVIL}, {"output": "e.txt", "format": EVIL},
                 {"output": f"{EVIL}/f.txt", "set": {"A": "1"}}, {"output": "g.txt", "lang": EVIL},
                 {"output": "h.txt", "pair": {EVIL: 1}}, {"output": "i.txt", "mode": EVIL}]
        self.write("batch.ndjson", "".join(json.dumps(line) + "\n" for line in lines)
                   + '{"output": \x1b[2J\u009b}\n')
        result = self.rgen("report", "-d", "case", "--batch", "batch.ndjson")
        self.assertEqual((1, 11), (result.code, len(result.messages)), result)
        self.expect_harmless(result)
        document = self.rgen("report", "-d", "case", "--batch", "batch.ndjson", "--json").document
        self.assertEqual(len(lines) + 1, document["failed"])

    def test_names_in_simulated_input(self):
        for kind, hint in (("string", "0"), (EVIL_XML, "0"), ("int64", EVIL_XML)):
            with self.subTest(kind=kind, hint=hint):
                self.write("data.xml", simulated_input((EVIL_XML, kind, hint, "1"),
                                                       (EVIL_XML, kind, hint, "2"),
                                                       ("", EVIL_XML, hint, "3")))
                self.expect_harmless(self.report("--data", "data.xml"))
        self.write("data.xml", f"<{FORGED}\x1b[2J\u009b>")
        self.expect_harmless(self.report("--data", "data.xml"))

    def test_catalogues(self):
        self.put_template(marked("Name", "Other"))
        for text in (f'msgid "Name"\nmsgstr "x"\n\x1b[2J\u009b31m\u202e "y"\n',
                     'msgid "Name\\q\x1b[2J\u009b"\nmsgstr "x"\n', '\x1b]0;title\x07\u009b\n',
                     'msgid "\u009b\x1b[2J'):
            with self.subTest(text=text):
                self.write("de.po", text)
                self.expect_harmless(self.report("--set", "A=1", "--lang", "de.po"))

    def test_texts_without_a_translation(self):
        self.put_template(marked("Na\u009bme\u202e", "Other"))
        self.write("de.po", 'msgid "A"\nmsgstr "B"\n')
        result = self.report("--set", "A=1", "--lang", "de.po")
        self.assertEqual((0, 1), (result.code, len(result.notes)), result)
        self.expect_harmless(result)

    def test_configurations(self):
        self.write("case/.rgen/config.xml", configuration(
            [(EVIL_XML + ".xsl", GUID, "a.xml"), (EVIL_XML + "2.xsl", "2" + GUID[1:], "b.xml")]))
        for arguments in (["report", "-d", "case", "-o", "r.txt", "--set", "A=1"],
                          ["report", "-d", "case", "-o", "r.txt", "--set", "A=1", "-t", GUID]):
            self.expect_harmless(self.rgen(*arguments))
        for command in ("types", "doctor"):
            listing = self.rgen(command, "-d", "case").text
            self.assertIsNone(STEERING.search(listing.replace("\t", " ")), repr(listing))
            self.assertFalse(any(line.startswith(FORGED) for line in listing.splitlines()), listing)

    def test_the_converter(self):
        for error in (f"vellum: {EVIL}".encode(), b"vellum: \xff\xfe\x9b\xc2\x9b", b"\x1b[2J"):
            with self.subTest(error=error):
                result = self.convert("--set", "A=1").finish(error=error)
                self.assertEqual(4, result.code, result)
                self.expect_harmless(result)

    def test_values_that_are_shown(self):
        self.write_json("data.json", {f"{EVIL}:text": EVIL, "B": "b"})
        result = self.report("--data", "data.json", "--show-data")
        self.assertEqual(0, result.code, result)
        self.assertIsNone(STEERING.search(result.text), repr(result.text))
        self.assertEqual(3, len(result.text.splitlines()), result)
        result = self.rgen("report", "-d", "case", "-o", "-", "-f", "txt", "--data", "data.json",
                           "--show-data")
        self.assertIsNone(STEERING.search(result.err), repr(result.err))

    def test_documents_keep_the_texts(self):
        self.write_json("data.json", {f"A:{EVIL}": 1})
        document = self.report("--data", "data.json", "--json").document
        self.assertFalse(document["ok"])
        name = json.dumps(EVIL + ":text")
        self.write("data.json", f'{{{name}: "1", {name}: "2"}}')
        self.assertTrue(self.report("--data", "data.json", "--json").document["ok"])

    def test_the_result_reads_well(self):
        """Letters of every script stay; escapes can be recognised."""
        self.write_json("data.json", {"A:Größe ж 漢 🙂\t\x1b\u009b\u202e": 1})
        self.expect_error_like(self.report("--data", "data.json"), 2,
                               r"Größe ж 漢 🙂\\t\\x1b\\u009b\\u202e")

    @linux_only
    def test_a_terminal_gets_no_raw_values(self):
        self.assertEqual(0, self.rgen("persist", "set", "-d", "case", "A=x\u009b31m\u202e").code)
        self.assertEqual("A=x\u009b31m\u202e\n", self.rgen("persist", "get", "-d", "case").text)
        terminal, side = pty.openpty()
        shown = []
        reader = threading.Thread(target=read_terminal, args=(terminal, shown))
        reader.start()
        running = self.start("persist", "get", "-d", "case", env={"TERM": "xterm"}, stdout=side)
        running.finish()
        reader.join()
        os.close(terminal)
        self.assertEqual("A=x\\u009b31m\\u202e\r\n", b"".join(shown).decode("utf-8"))

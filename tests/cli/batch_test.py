"""Batches: many reports by one run.

SPDX-License-Identifier: MIT
"""

import json
import os
import pty
import re
import threading

from cli_case import IS_A_FOLDER, NO_SUCH_FILE, CliCase, linux_only, read_terminal
from cli_templates import FAILING, GUID, LISTING, OTHER_GUID, catalogue, marked

EMPTY = ("Resulting intput dataset is empty (0xC0000007 RGEN_E_EMPTY_INPUT); give values with "
         "--data, --set or --pair")


class BatchCase(CliCase):

    def write_batch(self, *lines):
        """Lines are objects or texts."""
        self.write("batch.ndjson", "".join(
            (line if isinstance(line, str) else json.dumps(line, ensure_ascii=False)) + "\n"
            for line in lines))

    def batch(self, *args, **settings):
        return self.rgen("report", "-d", "case", "--batch", "batch.ndjson", *args, **settings)

    def listing(self, name):
        return self.listed(self.read(name))


class ManyReports(BatchCase):

    def setUp(self):
        super().setUp()
        self.failing = {17, 50, 100}
        self.lines = [{"output": f"item-{number:03}.txt",
                       **({} if number in self.failing else {"set": {"Item": f"{number}"}})}
                      for number in range(1, 101)]
        self.write_batch(*self.lines)

    def test_a_hundred_of_which_three_fail(self):
        self.write("item-050.txt", "older")
        result = self.batch()
        self.assertEqual((1, b""), (result.code, result.out))
        self.assertEqual([f"rgen: batch.ndjson:{number}: item-{number:03}.txt: {EMPTY}"
                          for number in sorted(self.failing)]
                         + ["rgen: 100 reports: 97 done, 3 failed"], result.messages)
        self.assertEqual(b"older", self.read("item-050.txt"))
        for number in set(range(1, 101)) - self.failing:
            self.assertEqual({"Item": str(number)}, self.listing(f"item-{number:03}.txt"))
        self.assertNotIn("item-017.txt", self.names())

    def test_quiet_says_the_failures(self):
        result = self.batch("--quiet")
        self.assertEqual((1, b""), (result.code, result.out))
        self.assertEqual([f"rgen: batch.ndjson:{number}: item-{number:03}.txt: {EMPTY}"
                          for number in sorted(self.failing)],
                         [line for line in result.messages if ".txt: " in line])

    def test_the_document(self):
        result = self.batch("--json", "-q")
        document = result.document
        self.assertEqual((1, False, 97, 3), (result.code, document["ok"], document["done"],
                                             document["failed"]))
        reports = document["reports"]
        self.assertEqual(list(range(1, 101)), [report["line"] for report in reports])
        self.assertEqual(sorted(self.failing),
                         [report["line"] for report in reports if not report["ok"]])
        self.assertEqual("item-001.txt", reports[0]["output"])
        self.assertEqual("RGEN_E_EMPTY_INPUT", reports[16]["error"]["statusName"])

    def shown_on_terminal(self, *args, **changes):
        """What is shown when standard error is a terminal."""
        terminal, side = pty.openpty()
        shown = []
        reader = threading.Thread(target=read_terminal, args=(terminal, shown))
        reader.start()
        running = self.start("report", "-d", "case", "--batch", "batch.ndjson", *args,
                             env={"TERM": "xterm", **changes}, stderr=os.dup(side))
        os.close(side)
        result = running.finish()
        reader.join()
        os.close(terminal)
        self.assertEqual((1, b""), (result.code, result.out))
        return b"".join(shown).decode("utf-8")

    @linux_only
    def test_a_terminal_shows_progress(self):
        shown = self.shown_on_terminal()
        self.assertIn("100 reports: 97 done, 3 failed", shown)
        self.assertIn("item-099.txt", shown)

    @linux_only
    def test_a_quiet_terminal_shows_the_failures(self):
        shown = self.shown_on_terminal("--quiet", NO_COLOR="1")
        self.assertNotIn("item-099", shown)
        self.assertIn("rgen: batch.ndjson:100: item-100.txt: ", shown)

    @linux_only
    def test_a_terminal_without_colour(self):
        shown = self.shown_on_terminal(NO_COLOR="1")
        self.assertIn("100 reports: 97 done, 3 failed", shown)
        self.assertNotRegex(shown, r"\x1b\[[0-9;]*m")

    def test_elsewhere_there_is_no_progress(self):
        result = self.batch()
        self.assertEqual(4, len(result.err.splitlines()), result)
        self.assertNotIn("\r", result.err)


class Lines(BatchCase):

    def test_success(self):
        self.write_batch({"output": "a.txt", "set": {"A": "1"}},
                         "", {"output": "b.html", "set": {"A": "1"}}, "   ")
        result = self.batch()
        self.expect_done(result)
        self.assertEqual(["rgen: 2 reports: 2 done, 0 failed"], result.messages)

    def test_one_report(self):
        self.write_batch({"output": "a.txt", "set": {"A": "1"}})
        self.assertEqual(["rgen: 1 report: 1 done, 0 failed"], self.batch().messages)

    def test_every_member(self):
        self.make_data_dir("case", types=[("alpha.xsl", GUID, "a.xml"),
                                          ("beta.xsl", OTHER_GUID, "b.xml")],
                           templates={"txt/alpha.xsl": LISTING, "txt/beta.xsl": marked("Name"),
                                      "html/alpha.xsl": LISTING})
        self.write("de.po", catalogue({"Name": "Größe"}))
        self.write_json("one.json", {"A": "1", "B": "1"})
        self.write_json("two.json", {"B": "2"})
        self.write_batch(
            {"output": "a.txt", "type": "alpha", "data": "one.json"},
            {"output": "b.out", "type": GUID, "format": "txt", "data": ["one.json", "two.json"]},
            {"output": "c.txt", "type": "beta", "lang": "de.po", "set": {"A": "1"}},
            {"output": "d.txt", "type": "alpha", "mode": "bytes",
             "set": {"Size:size": 500107862016, "T": "a & b"}, "pair": {"P:x": "p & q"}},
            {"output": "Größe и.html", "type": "alpha", "set": {"A": "ж"}, "base": "x"})
        result = self.batch()
        self.expect_done(result)
        self.assertEqual({"A": "1", "B": "1"}, self.listing("a.txt"))
        self.assertEqual({"A": "1", "B": "2"}, self.listing("b.out"))
        self.assertEqual("Größe\n", self.text_of("c.txt"))
        self.assertEqual({"Size": "500107862016", "T": "a & b", "P:x": "p & q"},
                         self.listing("d.txt"))
        self.assertIn("ж", self.text_of("Größe и.html"))

    def test_data_replaces_and_settings_add(self):
        self.write_json("common.json", {"A": "common"})
        self.write_json("own.json", {"B": "own"})
        self.write_batch({"output": "a.txt"}, {"output": "b.txt", "data": "own.json"},
                         {"output": "c.txt", "set": {"S": "line", "T": "line"}},
                         {"output": "d.txt", "pair": {"P": "line", "Q": "line"}})
        result = self.batch("--data", "common.json", "--set", "S=all", "--pair", "P=all")
        self.expect_done(result)
        self.assertEqual({"A": "common", "S": "all", "P": "all"}, self.listing("a.txt"))
        self.assertEqual({"B": "own", "S": "all", "P": "all"}, self.listing("b.txt"))
        self.assertEqual({"A": "common", "S": "line", "T": "line", "P": "all"},
                         self.listing("c.txt"))
        self.assertEqual({"A": "common", "S": "all", "P": "line", "Q": "line"},
                         self.listing("d.txt"))

    def test_a_language_of_a_line_replaces_the_common_one(self):
        self.put_template(marked("Name"))
        self.write("de.po", catalogue({"Name": "deutsch"}))
        self.write("ru.po", catalogue({"Name": "русский"}))
        self.write_batch({"output": "a.txt"}, {"output": "b.txt", "lang": "ru.po"})
        self.expect_done(self.batch("--set", "A=1", "--lang", "de.po"))
        self.assertEqual(("deutsch\n", "русский\n"), (self.text_of("a.txt"), self.text_of("b.txt")))

    def test_standard_input(self):
        result = self.rgen("report", "-d", "case", "--batch", "-",
                           stdin='{"output": "ä.txt", "set": {"A": "ж"}}\r\n'.encode())
        self.expect_done(result)
        self.assertEqual({"A": "ж"}, self.listing("ä.txt"))

    def test_paths_count_from_the_current_folder(self):
        self.write_json("data.json", {"A": "1"})
        self.write("sub/batch.ndjson", '{"output": "a.txt", "data": "data.json"}\n')
        self.expect_done(self.rgen("report", "-d", "case", "--batch", "sub/batch.ndjson"))
        self.assertEqual({"A": "1"}, self.listing("a.txt"))


class FailingLines(BatchCase):

    def expect_one_failure(self, line, pattern):
        """The pattern matches the message after the line's position and its output, if there is one."""
        self.write_batch({"output": "a.txt", "set": {"A": "1"}}, line,
                         {"output": "c.txt", "set": {"A": "1"}})
        result = self.batch()
        self.assertEqual((1, b""), (result.code, result.out), result)
        self.assertEqual(2, len(result.messages), result)
        self.assertRegex(result.messages[0],
                         r"^rgen: batch\.ndjson:2: (\S*b\.\w+: )?" + pattern)
        self.assertEqual("rgen: 3 reports: 2 done, 1 failed", result.messages[1])
        self.assertEqual({"A": "1"}, self.listing("a.txt"))
        self.assertEqual({"A": "1"}, self.listing("c.txt"))

    def test_a_missing_data_file(self):
        self.expect_one_failure({"output": "b.txt", "data": "missing.json"},
                                f'cannot read "missing.json": {NO_SUCH_FILE}; ')

    def test_a_broken_data_file(self):
        self.write("broken.json", '{\n"A:int": true}')
        self.expect_one_failure({"output": "b.txt", "data": "broken.json"},
                                r'broken\.json:2:10: "A": "true" is not a whole number')

    def test_an_unknown_type(self):
        self.expect_one_failure({"output": "b.txt", "type": "acquisiton", "set": {"A": "1"}},
                                'there is no report type "acquisiton"')

    def test_an_unknown_format(self):
        self.expect_one_failure({"output": "b.doc", "set": {"A": "1"}}, '.*the format of "b.doc"')

    def test_a_missing_folder(self):
        self.expect_one_failure({"output": "missing/b.txt", "set": {"A": "1"}},
                                r"Cannot create output file \(0xC000000C "
                                r'RGEN_E_CREATE_OUTPUT\); the folder "missing" does not exist$')

    def test_a_bad_value(self):
        self.expect_one_failure({"output": "b.txt", "set": {"N:size": "12x"}}, ".*12x")

    def test_batch_files_that_cannot_be_read(self):
        for name, reason in (("missing.ndjson", NO_SUCH_FILE), ("case", IS_A_FOLDER)):
            result = self.rgen("report", "-d", "case", "--batch", name)
            self.expect_error_like(
                result, 2, f'^rgen: cannot read "{name}": {reason}; check the path given to '
                "--batch$")

    def test_lines_that_are_no_objects(self):
        for line in ('{"output": }', "[1]", '"text"'):
            with self.subTest(line=line):
                self.write_batch({"output": "a.txt", "set": {"A": "1"}}, line)
                result = self.batch()
                self.assertIn(result.code, (1, 2), result)
                self.assertRegex(result.err, r"(?m)^rgen: batch\.ndjson:2:")
                self.assertEqual(b"", result.out)

    def test_members_that_do_not_exist(self):
        self.write_batch({"output": "a.txt", "sett": {"A": "1"}})
        result = self.batch("--set", "A=1")
        self.assertIn(result.code, (1, 2), result)
        self.assertRegex(result.err, r'(?m)^rgen: batch\.ndjson:1:.*"sett".*"set"')

    def test_standard_output_has_room_for_one_report(self):
        self.write_batch({"output": "-", "set": {"A": "1"}}, {"set": {"A": "1"}})
        result = self.batch()
        self.assertEqual((1, b""), (result.code, result.out))
        self.assertEqual(["rgen: batch.ndjson:1: a batch cannot write to standard output; name a file in "
                          '"output"',
                          'rgen: batch.ndjson:2: "output" is missing; name the file to write',
                          "rgen: 2 reports: 0 done, 2 failed"], result.messages)

    def test_a_template_that_fails_for_each_line_is_said_once(self):
        self.put_template(FAILING)
        self.write_batch(*({"output": f"{number}.txt", "set": {"A": "1"}}
                           for number in range(500)))
        result = self.batch()
        self.assertEqual((1, b"", 1), (result.code, result.out, result.err.count("0xC002000")),
                         result)
        self.assertRegex(result.messages[0], r"^rgen: batch\.ndjson:1: 0\.txt: .*0xC002000")
        self.assertEqual(1, result.err.count('unknown function "no-such-function"'), result)
        self.assertEqual(["rgen: the same for 499 more lines",
                          "rgen: 500 reports: 0 done, 500 failed"], result.messages[-2:])
        self.assertEqual(500, len(self.batch("--json").document["reports"]))

    def test_a_data_file_that_does_not_exist(self):
        self.write_batch({"output": "a.txt", "data": "b.json"}, {"output": "b.txt"})
        result = self.batch("--data", "c.json")
        self.assertRegex(result.messages[0], r'; check "data" in this line$')
        self.assertRegex(result.messages[1], r"; check the path given to --data$")

    def test_a_comma_too_many(self):
        self.write("batch.ndjson", '{"output": "a.txt", "set": {"A": "1",}}\n')
        self.assertRegex(self.batch().messages[0], r"^rgen: batch\.ndjson:1:38: not JSON: .*; "
                         "remove the last comma$")

    def test_a_batch_in_utf_16(self):
        self.write("batch.ndjson", '{"output": "a.txt"}\n'.encode("utf-16"))
        self.expect_error(self.batch(), 2,
                          "rgen: batch.ndjson: the file is UTF-16; save it as UTF-8")

    def test_batches_without_a_report(self):
        for content in ("", "\n \r\n\t\n", "\ufeff"):
            with self.subTest(content=content):
                self.write("batch.ndjson", content)
                self.expect_error(self.batch(), 2, "rgen: batch.ndjson: there is no report in it; "
                                  "write one JSON object in each line")
                document = self.batch("--json").document
                self.assertEqual((False, 2), (document["ok"], document["error"]["exitCode"]))
        self.expect_error(self.rgen("report", "-d", "case", "--batch", "-", stdin=b""), 2,
                          "rgen: standard input: there is no report in it; write one JSON object in "
                          "each line")

    def test_names_that_end_early(self):
        """The name is not cut at the zero: no file of another name appears."""
        for member in ("output", "data", "lang", "type", "base"):
            with self.subTest(member=member):
                self.write_json("q", {"A": "1"})
                self.write_batch({"output": "a.txt", "set": {"A": "1"}},
                                 {"output": "b.txt", "set": {"A": "1"}, member: "q\0.txt"})
                before = self.contents()
                result = self.batch()
                self.assertIn(result.code, (1, 2), result)
                self.assertRegex(result.messages[0], r"^rgen: batch\.ndjson:2: .*(zero character|"
                                 "Invalid argument|cannot read)")
                if member == "output":
                    self.assertEqual((2, before), (result.code, self.contents()))
                self.assertNotIn("b.txt", self.names())


class OutputsThatAreInputs(BatchCase):
    """Nothing is written then, whichever line reads the file and under any name."""

    def expect_refusal(self, *lines, line=1, output="item.json", args=()):
        self.write_batch(*lines)
        before = self.contents()
        result = self.batch(*args)
        self.expect_error_like(
            result, 2, rf'^rgen: batch\.ndjson:{line}: .*{re.escape(output)}: reports are made from '
            'this file, ".+"; name another output$')
        self.assertEqual(before, self.contents())

    def setUp(self):
        super().setUp()
        self.write_json("item.json", {"A": "1"})
        self.write("de.po", catalogue({"A": "B"}))
        self.good = {"output": "good.txt", "set": {"A": "1"}}

    def line(self, output="item.json", **members):
        return {"output": output, "format": "txt", "data": "item.json", **members}

    def test_its_own_data_file(self):
        for mode in ("file", "bytes"):
            for output in ("item.json", "./item.json", "case/../item.json"):
                self.expect_refusal(self.good, self.line(output, mode=mode), line=2, output=output)

    def test_one_of_several_data_files(self):
        self.write_json("other.json", {"A": "1"})
        self.expect_refusal(self.line(data=["other.json", "item.json"]))

    def test_the_data_file_of_another_line(self):
        other = {"output": "item.json", "format": "txt", "set": {"A": "1"}}
        self.expect_refusal(other, self.line("b.txt"))
        self.expect_refusal(self.line("b.txt"), other, line=2)

    def test_the_data_file_of_the_command_line(self):
        self.expect_refusal({"output": "item.json", "format": "txt"}, args=("--data", "item.json"))

    def test_a_data_file_that_does_not_exist_yet(self):
        self.expect_refusal({"output": "new.json", "format": "txt", "set": {"A": "1"}},
                            self.line("b.txt", data="new.json"), output="new.json")

    def test_the_batch_file(self):
        self.expect_refusal(self.line("batch.ndjson"), output="batch.ndjson")

    def test_a_catalogue(self):
        self.expect_refusal(self.line("de.po", lang="de.po"), output="de.po")

    def test_files_of_the_data_directory(self):
        self.write("case/.rgen/translations/de.po", catalogue({"A": "B"}))
        self.write("case/.rgen/acquisition_data.xml", "<data/>")
        for name in ("config.xml", "templates/txt/acquisition.xsl", "acquisition_data.xml",
                     "translations/de.po"):
            output = "case/.rgen/" + name
            self.expect_refusal(self.line(output), output=output)

    def test_other_names_of_a_data_file(self):
        os.link(self.folder / "item.json", self.folder / "hard.json")
        (self.folder / "soft.json").symlink_to("item.json")
        for name in ("hard.json", "soft.json"):
            self.expect_refusal(self.line(name), output=name)

    def test_bytes_that_a_value_comes_from(self):
        self.write("dump.bin", "bytes")
        self.write_json("item.json", {"A:bytes": "@dump.bin"})
        self.expect_refusal(self.good, self.line("dump.bin"), line=2, output="dump.bin")

    def test_single_reports(self):
        before = self.contents()
        for args, output in ((("--data", "item.json"), "item.json"),
                             (("--set", "A=1", "--lang", "de.po"), "de.po"),
                             (("--set", "A=1"), "case/.rgen/config.xml")):
            result = self.report(*args, "-f", "txt", output=output)
            self.expect_error_like(result, 2, f"^rgen: {re.escape(output)}: reports are made from "
                                   'this file, ".+"; name another output$')
        self.assertEqual(before, self.contents())

    def test_an_older_report_is_no_input(self):
        for _ in range(2):
            self.write_batch(self.line("a.txt"), self.line("b.txt"))
            self.expect_done(self.batch())

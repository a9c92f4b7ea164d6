"""The files of a batch: inputs and outputs of its lines, under any name or link.

SPDX-License-Identifier: MIT
"""

import json
import os
import subprocess

from batch_test import BatchCase
from cli_case import linux_only, windows_only


class MembersOfDataFiles(BatchCase):
    """A file that "@FILE" names in a data file is no output of any line."""

    def setUp(self):
        super().setUp()
        self.write("sub/sector.bin", "BYTES")
        self.write_json("sub/data.json", {"S:bytes": "@sector.bin"})

    def expect_refusal(self, *lines, line, output, args=()):
        self.write_batch(*lines)
        before = self.contents()
        result = self.batch("-f", "txt", *args)
        self.expect_error_like(result, 2, rf"^rgen: batch\.ndjson:{line}: {output}: reports are "
                               'made from this file, ".+"; name another output$')
        self.assertEqual(before, self.contents())

    def other(self, output="sub/sector.bin"):
        return {"output": output, "set": {"A": "first"}}

    def test_before_and_after_the_line_that_reads_it(self):
        reading = {"output": "o2.txt", "data": "sub/data.json"}
        self.expect_refusal(self.other(), reading, line=1, output="sub/sector.bin")
        self.expect_refusal(reading, self.other(), line=2, output="sub/sector.bin")
        self.expect_refusal(reading, {**reading, "output": "o3.txt"}, self.other(), line=3,
                            output="sub/sector.bin")

    def test_its_own_line(self):
        self.expect_refusal({"output": "sub/sector.bin", "data": "sub/data.json"}, line=1,
                            output="sub/sector.bin")

    def test_of_the_command_line(self):
        self.expect_refusal(self.other(), line=1, output="sub/sector.bin",
                            args=("--data", "sub/data.json"))
        self.expect_refusal(self.other(), line=1, output="sub/sector.bin",
                            args=("--set", "S:bytes=@sub/sector.bin"))

    def test_of_the_values_of_a_line(self):
        self.expect_refusal(self.other(), {"output": "o2.txt", "set": {"S:bytes": "@sub/sector.bin"}},
                            line=1, output="sub/sector.bin")

    @linux_only
    def test_other_names(self):
        (self.folder / "soft.bin").symlink_to("sub/sector.bin")
        os.link(self.folder / "sub/sector.bin", self.folder / "hard.bin")
        (self.folder / "linked").symlink_to("sub")
        (self.folder / "data link.json").symlink_to("sub/data.json")
        for output in ("soft.bin", "hard.bin", "linked/sector.bin"):
            for data in ("sub/data.json", "linked/data.json"):
                reading = {"output": "o2.txt", "data": data}
                self.expect_refusal(self.other(output), reading, line=1, output=output)
                self.expect_refusal(reading, self.other(output), line=2, output=output)
        # "@FILE" is resolved against the folder of the path in the line, not of the link's target.
        self.write("sector.bin", "other")
        self.expect_refusal(self.other("sector.bin"), {"output": "o", "data": "data link.json"},
                            line=1, output="sector.bin")

    def test_a_member_through_a_link(self):
        self.write_json("sub/data.json", {"S:bytes": "@../link.bin"})
        (self.folder / "link.bin").symlink_to("sub/sector.bin")
        for output in ("link.bin", "sub/sector.bin"):
            self.expect_refusal(self.other(output), {"output": "o2.txt", "data": "sub/data.json"},
                                line=1, output=output)

    def test_a_data_file_with_a_mistake_fails_its_line_only(self):
        self.write("bad.json", '{"A:bytes": "@sub/sector.bin", "B:int": true}')
        self.write_batch({"output": "a.txt", "data": "bad.json"}, self.other("b.txt"))
        result = self.batch("-f", "txt")
        self.assertEqual(1, result.code, result)
        self.assertEqual({"A": "first"}, self.listing("b.txt"))


@linux_only
class Pipes(BatchCase):
    """A pipe can be read only once, so it is not opened before its line is run."""

    def feed(self, content):
        os.mkfifo(self.folder / "pipe")
        writer = subprocess.Popen(["/bin/sh", "-c", 'printf %s "$0" > pipe', content],
                                  cwd=self.folder)
        self.addCleanup(writer.wait)
        self.addCleanup(writer.kill)

    def expect_bytes(self, line):
        self.write_batch({"output": "pipe.txt", **line})
        self.expect_done(self.batch())
        self.assertEqual(["S"], list(self.listing("pipe.txt")))
        self.assertRegex(self.text_of("pipe.txt"), "41 *42")
        (self.folder / "pipe").unlink()

    def test_bytes_of_a_line(self):
        self.feed("AB")
        self.expect_bytes({"set": {"S:bytes": "@pipe"}})

    def test_bytes_of_a_data_file(self):
        self.write_json("data.json", {"S:bytes": "@pipe"})
        self.feed("AB")
        self.expect_bytes({"data": "data.json"})

    def test_a_data_file(self):
        self.feed(json.dumps({"S:bytes": "41 42"}))
        self.expect_bytes({"data": "pipe"})

    def test_bytes_of_the_command_line(self):
        self.feed("AB")
        self.write_batch({"output": "pipe.txt"})
        self.expect_done(self.batch("--set", "S:bytes=@pipe"))
        (self.folder / "pipe").unlink()


class OneOutputOfTwoLines(BatchCase):

    def expect_second_fails(self, *outputs):
        self.write_batch(*({"output": output, "set": {"A": str(number)}}
                           for number, output in enumerate(outputs)))
        result = self.batch("-f", "txt")
        self.assertEqual((1, b""), (result.code, result.out), result)
        self.assertRegex(result.messages[0], r"^rgen: batch\.ndjson:2: .+: an earlier line writes "
                         "the same file; name another output$")
        self.assertEqual({"A": "0"}, self.listing(outputs[0]))

    def test_the_same_name(self):
        self.expect_second_fails("a.txt", "a.txt")
        self.expect_second_fails("a.txt", "./a.txt")
        self.expect_second_fails("a.txt", "case/../a.txt")

    def test_a_link_that_the_first_report_replaces(self):
        self.write("target.txt", "kept")
        for target in ("target.txt", "missing.txt"):
            (self.folder / "link.txt").symlink_to(target)
            self.expect_second_fails("link.txt", "link.txt")
            self.assertFalse((self.folder / "link.txt").is_symlink())
            (self.folder / "link.txt").unlink()
        self.assertEqual(b"kept", self.read("target.txt"))

    def test_a_folder_by_two_names(self):
        (self.folder / "folder").mkdir()
        (self.folder / "other").symlink_to("folder")
        self.expect_second_fails("folder/a.txt", "other/a.txt")

    def test_links_to_one_file_are_two_outputs(self):
        self.write("target.txt", "kept")
        outputs = ("one.txt", "two.txt", "target.txt")
        for name in outputs[:2]:
            (self.folder / name).symlink_to("target.txt")
        self.write_batch(*({"output": name, "set": {"A": name}} for name in outputs))
        self.expect_done(self.batch())
        for name in outputs:
            self.assertEqual({"A": name}, self.listing(name))

    @windows_only
    def test_names_without_letter_case(self):
        self.expect_second_fails("größe.txt", "GRÖSSE.txt".replace("SS", "ß"))
        self.expect_second_fails("a.txt", "A.TXT")
        self.expect_second_fails("b.txt", "b.txt. .")

    @linux_only
    def test_names_that_differ_in_letter_case(self):
        self.write_batch({"output": "a.txt", "set": {"A": "1"}},
                         {"output": "A.txt", "set": {"A": "2"}})
        self.expect_done(self.batch())


class MembersThatAreGivenTwice(BatchCase):

    def test_members_of_the_line(self):
        for member, value in (("output", '"k2.txt"'), ("set", '{"A": "2"}'), ("data", '"x.json"')):
            self.write("batch.ndjson", '{"output": "k1.txt", "set": {"A": "1"}, "data": [], '
                                       f'"{member}": {value}}}\n')
            result = self.batch()
            self.assertEqual(1, result.code, result)
            self.assertEqual(f'rgen: batch.ndjson:1: "{member}" is given more than once; keep one '
                             "of them", result.messages[0])
            self.assertNotIn("k1.txt", self.names())

    def test_values_are_noted_as_those_of_a_data_file(self):
        for member in ("set", "pair"):
            self.write("batch.ndjson",
                       f'{{"output": "k.txt", "{member}": {{"A": "1", "A": "2"}}}}\n')
            result = self.batch()
            self.expect_notes(result, 'batch.ndjson:1: "A" is given more than once; '
                              f'"{member}" counts')
            self.assertEqual("2", self.listing("k.txt")["A"])

    def test_one_name_in_two_members_is_given_once_in_each(self):
        self.write("batch.ndjson", '{"output": "k.txt", "set": {"A": "1"}, "pair": {"A": "2"}}\n')
        self.expect_notes(self.batch())


class Nested(BatchCase):
    """Objects and lists in a line have the names that they have in a data file."""

    def test_names(self):
        self.write_batch({"output": "a.txt", "set": {
            "Err": [{"Address:address": "0x10"}, {"Address": True}], "Row:address": [[7], 8], "N": 1.5,
            "Left": None, "Note": ["a", None, "c"]}, "pair": {"P:x": ["p & q", {"R": "r"}], "Z": None}})
        self.expect_done(self.batch())
        self.assertEqual({"Err.1.Address": "0x10", "Err.2.Address": "true", "N": "1.5", "Note.1": "a",
                          "Note.3": "c", "P:x.1": "p & q", "P:x.2.R": "r", "Row.1.1": "0x7",
                          "Row.2": "0x8"}, self.listing("a.txt"))

    def test_repeated_names_in_a_list(self):
        self.write("batch.ndjson", '{"output": "k.txt", "set": {"E": [{"A": 1, "A": 2}, {"A": 3}]}}\n')
        result = self.batch()
        self.expect_notes(result, 'batch.ndjson:1: "E.1.A" is given more than once; "set" counts')
        self.assertEqual({"E.1.A": "2", "E.2.A": "3"}, self.listing("k.txt"))

    def test_errors_name_the_value(self):
        rows = {'"set": {"E": [{"A:size": "x"}]}': '"E.1.A": "x" is not a whole number',
                '"set": {"E:size": [{}]}': '"E.1": an object takes no hint; write "size" after .*',
                '"set": {"E": {"B": {"": 1}}}': '"": a name is empty; name every value',
                '"set": {"E": [{"A:siez": 1}]}': '"A:siez": there is no hint "siez"; did you mean .*',
                '"set": {"A": ' + 40 * "[" + 40 * "]" + "}": '"A.*": more than 32 levels of objects .*',
                '"pair": {"P": [1]}': '"P.1": a text is expected; write it in quotes .*'}
        for members, message in rows.items():
            with self.subTest(members=members):
                self.write("batch.ndjson", '{"output": "k.txt", ' + members + "}\n")
                result = self.batch()
                self.assertEqual(1, result.code, result)
                self.assertRegex(result.messages[0], rf"^rgen: batch\.ndjson:1: {message}$")


class Numbers(BatchCase):

    def test_numbers_that_are_no_64_bit_integers(self):
        for digits in ("99999999999999999999", "18446744073709551615", "-9223372036854775809"):
            self.expect_failure(digits, f'.*{digits}"? does not fit into 64 bits')
        for digits in ("1e5", "1.5E2", "1e400"):
            self.expect_failure(digits, f".*{digits}.*")

    def expect_failure(self, digits, pattern):
        with self.subTest(digits=digits):
            self.write("batch.ndjson", f'{{"output": "k.txt", "set": {{"A": {digits}}}}}\n')
            result = self.batch()
            self.assertEqual(1, result.code, result)
            self.assertRegex(result.messages[0], r"^rgen: batch\.ndjson:1:" + pattern)

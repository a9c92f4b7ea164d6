"""Data files: JSON with its errors, simulated input, files that cannot be read.

SPDX-License-Identifier: MIT
"""

from cli_case import (IS_A_FOLDER, NO_ACCESS, NO_SUCH_FILE, CliCase, linux_only, unprivileged)
from cli_templates import simulated_input


class JsonFiles(CliCase):

    def expect_values(self, expected, content, *args):
        self.write("data.json", content)
        self.assertEqual(expected, self.values("--data", "data.json", *args))

    def test_every_kind_of_value(self):
        self.write("folder/sector0.bin", b"\x00\x55\xaa")
        self.write("folder/data.json", """{
          "Device.Model": "Tarnholm TH500-S7",
          "Device.Sectors": 976773168,
          "Negative": -5,
          "Device.Capacity:size": 500107862016,
          "Report.Created:datetime": "2026-03-09T16:05:00Z",
          "Seconds:time": 1773044047,
          "Speed.010.Position:address": "0x4a817c800",
          "Count:INT": "0x1F",
          "a:b:text": "colon",
          "Sector.First:bytes": "@sector0.bin",
          "Typed:bytes": "01 AB"
        }""")
        self.assertEqual({
            "Device.Model": "Tarnholm TH500-S7", "Device.Sectors": "976773168", "Negative": "-5",
            "Device.Capacity": "500107862016", "Report.Created": " 9.03.2026 12:05:00",
            "Seconds": "04:14:07", "Speed.010.Position": "0x4a817c800", "Count": "31",
            "a:b": "colon", "Sector.First": "00 55 AA ", "Typed": "01 AB ",
        }, self.values("--data", "folder/data.json"))

    def test_escapes(self):
        self.expect_values({"A\u00e4": 'q"\\/\U0001f600'},
                           '{"A\\u00e4": "q\\"\\\\\\/\\ud83d\\ude00"}')

    def test_the_edges_of_numbers(self):
        self.expect_values({"Most": "9223372036854775807", "Least": "-9223372036854775808",
                            "Address": "0xffffffffffffffff"},
                           '{"Most": 9223372036854775807, "Least": -9223372036854775808, '
                           '"Address:address": 18446744073709551615}')

    def test_a_byte_order_mark_and_windows_line_ends(self):
        self.expect_values({"Ä": "ж", "B": "1"}, '\ufeff{\r\n  "Ä": "ж",\r\n  "B": 1\r\n}\r\n')

    def test_a_value_of_five_megabytes(self):
        text = "äж" + "0123456789" * 500_000
        self.write_json("data.json", {"Long": text})
        self.assertEqual({"Long": text}, self.values("--data", "data.json"))

    def test_standard_input(self):
        values = self.values("--data", "-", stdin='{"Ä": "ж", "N": 5}'.encode())
        self.assertEqual({"Ä": "ж", "N": "5"}, values)

    def test_objects_and_lists(self):
        self.expect_values({
            "Device.Model": "Tarnholm TH500-S7", "Device.Capacity": "500107862016",
            "Err.1.Address": "0x186a8e0000", "Err.1.Sectors": "8",
            "Err.2.Address": "0x18f2000000", "Err.2.Sectors": "24",
            "Log.Offsets.1": "0x1000", "Log.Offsets.2": "0x2000",
            "Note.1": "Checked twice", "Note.3": "Sent back"}, """{
          "Device": {"Model": "Tarnholm TH500-S7", "Capacity:size": 500107862016},
          "Err": [
            {"Address:address": "0x186a8e0000", "Sectors": 8},
            {"Address:address": "0x18f2000000", "Sectors": 24}
          ],
          "Log.Offsets:address": [4096, 8192],
          "Note": ["Checked twice", null, "Sent back"]
        }""")

    def test_lists_in_lists_share_their_hint(self):
        self.expect_values({"Row.1.1": "0x7", "Row.1.2": "0x8", "Row.2.1": "0x9", "Z.a.1": "1"},
                           '{"Row:address": [[7, 8], [9]], "Z": {"a": [1]}}')

    def test_empty_objects_and_lists_are_no_values(self):
        self.expect_values({"Z": "1"}, '{"A": {}, "B": [], "C": [[], {}], "D": null, "Z": 1}')

    def test_numbers_that_do_not_begin_at_1(self):
        self.expect_values({"Err.10.Address": "16"}, '{"Err": {"10": {"Address": 16}}}')

    def test_fractions_and_truth_values_are_texts(self):
        self.expect_values({"A": "12.50", "B": "-0.0", "C": "true", "D": "false", "E.1": "1.5",
                            "F": "true", "G": "0.1"},
                           '{"A": 12.50, "B": -0.0, "C": true, "D": false, "E": [1.5], '
                           '"F:text": true, "G:text": 0.1}')

    def test_31_levels_in_the_outermost_object(self):
        self.expect_values({"A" + 31 * ".1": "x"}, '{"A": ' + 31 * "[" + '"x"' + 31 * "]" + "}")

    def test_of_a_nested_name_that_occurs_twice_the_last_counts(self):
        self.write("data.json", '{"A": {"B": 1}, "A.B": 2, "C": [1, 2], "C": [3]}')
        result = self.report("--data", "data.json")
        self.expect_notes(result, '"A.B" is given more than once; data.json counts',
                          '"C.1" is given more than once; data.json counts')
        self.assertEqual({"A.B": "2", "C.1": "3", "C.2": "2"}, self.listed(self.read("report.txt")))

    def test_bytes_in_a_list_of_files(self):
        self.write("one.bin", b"\x01")
        self.expect_values({"S.1": "01 ", "S.2": "AB CD "}, '{"S:bytes": ["@one.bin", "AB CD"]}')

    def test_of_a_name_that_occurs_twice_the_last_counts(self):
        self.write("data.json", '{"A": "first", "B": "b", "A:int": 2}')
        result = self.report("--data", "data.json")
        self.expect_notes(result, '"A" is given more than once; data.json counts')
        self.assertEqual({"A": "2", "B": "b"}, self.listed(self.read("report.txt")))


class JsonErrors(CliCase):

    def expect_refusal(self, content, place, message, *, is_pattern=False):
        self.write("data.json", content)
        before = self.contents()
        result = self.report("--data", "data.json")
        start = f"rgen: data.json:{place}: "
        if is_pattern:
            self.expect_error_like(result, 2, "^" + start + message)
        else:
            self.expect_error(result, 2, start + message)
        self.assertEqual(before, self.contents())

    def test_values_that_are_none(self):
        rows = {
            "1.5e3": "1.5e3 has an exponent",
            "5E-1": "5E-1 has an exponent",
            "18446744073709551616": "18446744073709551616 does not fit into 64 bits",
            "9223372036854775808": "9223372036854775808 does not fit into 64 bits",
        }
        for value, message in rows.items():
            with self.subTest(value=value):
                self.expect_refusal('{\n  "Name": "x",\n  "Device.Size": ' + value + "\n}\n", "3:18",
                                    f'"Device.Size": {message}; write it in quotes to hand it over as '
                                    "text")

    def test_columns_count_characters(self):
        self.expect_refusal('{"Größe": "ж", "B:int": 1.5}', "1:25",
                            '"B": "1.5" is not a whole number')
        self.expect_refusal('{\r\n"\U0001f600:int": true}', "2:10",
                            '"\U0001f600": "true" is not a whole number')

    def test_a_byte_order_mark_is_no_column(self):
        self.expect_refusal('\ufeff{"A:int": true}', "1:11", '"A": "true" is not a whole number')

    def test_something_else_than_an_object(self):
        for content in ("[1, 2]", '"text"', "5"):
            with self.subTest(content=content):
                self.expect_refusal(content, "1:1",
                                    'a JSON object is expected; write { "NAME": "TEXT", ... }')

    def test_text_that_is_not_json(self):
        rows = [('{"A": }', "1:7"), ('{\n  "A": "x",\n  "Ä": }\n', "3:8"),
                ('{\r\n  "ж": "ж",\r\n  "Ä": }', "3:8"), ('{"A": 1}\n}', "2:1")]
        for content, place in rows:
            with self.subTest(content=content):
                self.expect_refusal(content, place, "not JSON: .+; .+$", is_pattern=True)

    def test_text_that_ends_early(self):
        for content in ("", "\n\n", '{"A": "x', '{\n"A": 1'):
            with self.subTest(content=content):
                self.write("data.json", content)
                result = self.report("--data", "data.json")
                self.expect_error_like(result, 2, r"^rgen: data\.json:\d+:\d+: not JSON: ")

    def test_bytes_that_are_not_utf8(self):
        self.write("data.json", b'{\n  "A": "\xff"}')
        self.expect_error_like(self.report("--data", "data.json"), 2, r"^rgen: data\.json:2:\d+: ")

    def test_hints(self):
        self.expect_refusal('{\n  "Name": "x",\n    "Size:siez": 5\n}', "3:5",
                            'there is no hint "siez" in "Size:siez"; did you mean "size"?')

    def test_texts_that_their_hint_does_not_take(self):
        for member in ('"Size:size": "12x"', '"T:time": "yesterday"', '"B:bytes": "0G"'):
            with self.subTest(member=member):
                self.write("data.json", "{\n  " + member + "\n}")
                result = self.report("--data", "data.json")
                self.expect_error_like(result, 2, r"^rgen: data\.json:2:\d+: ")

    def test_deeply_nested_lists_and_objects(self):
        advice = 'more than 32 levels of objects and lists; write flat names: "A.1.B"'
        self.expect_refusal('{"A": ' + "[" * 200_000, "1:38", '"A' + 19 * ".1" + f'....": {advice}')
        self.expect_refusal('{"A": ' * 200_000, "1:193", '"A' + 19 * ".A" + f'....": {advice}')

    def test_names_that_are_empty_at_every_level(self):
        rows = {'{"": 1}': "1:2", '{"A": {"": 1}}': "1:8", '{"A": [{":int": 1}]}': "1:9"}
        for content, place in rows.items():
            with self.subTest(content=content):
                self.expect_refusal(content, place, 'a name is empty in ".*"; name every value',
                                    is_pattern=True)

    def test_objects_take_no_hint(self):
        self.expect_refusal('{"Err:address": [16, {"A": 1}]}', "1:22",
                            '"Err.2": an object takes no hint; write "address" after the names of its '
                            "members")
        self.expect_refusal('{"Err:size": {}}', "1:14", '"Err": an object takes no hint; write "size" '
                            "after the names of its members")

    def test_errors_in_lists_name_the_value(self):
        self.expect_refusal('{"Err": [{"Address:address": "0x10"},\n  {"Address:address": "x"}]}',
                            "2:23", '"Err.2.Address": "x" is not a whole number')
        self.expect_refusal('{"Row:size": [[1], [2, 3.5]]}', "1:24",
                            '"Row.2.2": "3.5" is not a whole number')

    def test_a_comma_too_many(self):
        self.expect_refusal('{"A": "1",\n}', "2:1", "not JSON: .+; remove the comma in line 1$",
                            is_pattern=True)
        self.expect_refusal('{"A": [1, 2 , ]\n}', "1:15", "not JSON: .+; remove the comma in line 1$",
                            is_pattern=True)

    def test_utf_16(self):
        for encoding in ("utf-16", "utf-16-le", "utf-16-be"):
            with self.subTest(encoding=encoding):
                self.write("data.json", '{"A": "1"}'.encode(encoding))
                self.expect_error(self.report("--data", "data.json"), 2,
                                  "rgen: data.json: the file is UTF-16; save it as UTF-8")

    def test_texts_of_files(self):
        self.write("texts/notes.txt", "\ufeff1 < 2 & 3\r\n@x\r\n")
        self.write("texts/data.json", '{"Notes:text@": "notes.txt", "At": "@x"}')
        self.assertEqual({"Notes": "1 < 2 & 3\n@x", "At": "@x", "B": "1 < 2 & 3\n@x"},
                         {name: text.replace("\r\n", "\n") for name, text in self.values(
                             "--data", "texts/data.json",
                             "--set", "B:text@=texts/notes.txt").items()})

    def test_files_that_hold_no_text(self):
        for content in (b"\xff\xfea\0", b"\xe4"):
            with self.subTest(content=content):
                self.write("notes.txt", content)
                self.expect_error(
                    self.report("--set", "A:text@=notes.txt"), 2,
                    'rgen: --set "A:text@=notes.txt": "notes.txt" is not UTF-8, or holds a zero '
                    "character; save it as UTF-8")
        result = self.report("--set", "A:text@=nowhere.txt")
        self.expect_error_like(result, 2, r'cannot read "nowhere\.txt": .*; check the path given '
                               r"with text@$")

    def test_the_file_of_a_text_is_never_replaced(self):
        self.write("notes.txt", "a")
        result = self.report("--set", "A:text@=notes.txt", output="notes.txt")
        self.assertEqual((2, b"a"), (result.code, self.read("notes.txt")), result)

    def test_a_number_where_a_text_is_wanted(self):
        self.write("data.json", '{"A:bytes": 5}')
        self.expect_error_like(self.report("--data", "data.json"), 2, r"^rgen: data\.json:1:\d+: ")

    def test_standard_input(self):
        result = self.rgen("report", "-d", "case", "-o", "a.txt", "--data", "-",
                           stdin=b'{\n"A:int": true}')
        self.expect_error_like(result, 2, r'^rgen: .*:2:10: "A": "true" is not')


class UnreadableFiles(CliCase):

    def expect_refusal(self, name, reason, **settings):
        result = self.report("--data", name, **settings)
        self.expect_error_like(
            result, 2, f'^rgen: cannot read "{name}": {reason}; check the path given to --data$')

    def test_missing_files_and_folders(self):
        self.expect_refusal("missing.json", NO_SUCH_FILE)
        self.expect_refusal("missing/data.json", NO_SUCH_FILE)
        self.expect_refusal("case", IS_A_FOLDER)

    def test_bytes_beside_a_data_file_that_are_missing(self):
        self.write("folder/data.json", '{"A:bytes": "@missing.bin"}')
        result = self.report("--data", "folder/data.json")
        self.expect_error_like(
            result, 2, f'cannot read ".*missing.bin": {NO_SUCH_FILE}; check the path behind @$')

    @linux_only
    def test_a_file_without_rights(self):
        self.write_json("data.json", {"A": "1"})
        self.forbid("data.json")
        self.expect_refusal("data.json", NO_ACCESS, prefix=unprivileged())


class SimulatedInput(CliCase):

    def test_values_and_skipped_properties(self):
        self.write("sim.xml", simulated_input(
            ("Text", "string", "Generic", "a &lt; b"), ("Size", "int64", "Size", "12"),
            ("Bytes", "byte_array", "Dump", "0x01, 0xAB"), ("Bad.One", "int64", "Siez", "1"),
            ("Bad.Two", "float", "Generic", "1.5")))
        result = self.report("--data", "sim.xml")
        self.expect_notes(
            result, "sim.xml: 2 properties are skipped by the library: Bad.One, Bad.Two")
        self.assertEqual({"Text": "a < b", "Size": "12", "Bytes": "01 AB "},
                         self.listed(self.read("report.txt")))

    def test_nothing_but_the_document_is_on_standard_output(self):
        self.write("sim.xml", simulated_input(("A", "string", "Generic", "x"),
                                              ("B", "byte_array", "Dump", "nonsense")))
        result = self.report("-f", "txt", "--data", "sim.xml", output="-")
        self.expect_done(result)
        self.assertEqual(b"[A=x]\n", result.out)
        self.assertIn("B", "".join(result.notes))

    def test_a_plain_ampersand_is_not_lost_in_silence(self):
        self.write("sim.xml", simulated_input(("A", "string", "Generic", "AT&amp;T"),
                                              ("B", "string", "Generic", "AT&amp;amp;T")))
        result = self.report("--data", "sim.xml")
        self.expect_done(result)
        values = self.listed(self.read("report.txt"))
        self.assertEqual("AT&T", values["B"])
        self.assertTrue(values["A"] == "AT&T" or '"A"' in "".join(result.notes), result)

    def test_json_and_simulated_input_together(self):
        self.write("sim.xml", simulated_input(("A", "string", "Generic", "x"),
                                              ("B", "string", "Generic", "x")))
        self.write_json("data.json", {"B": "json", "C": "json"})
        self.assertEqual({"A": "x", "B": "json", "C": "json"},
                         self.values("--data", "sim.xml", "--data", "data.json"))

    def test_files_without_any_value(self):
        for content in ("<data/>", "<data><prop", "< nonsense"):
            with self.subTest(content=content):
                self.write("sim.xml", content)
                result = self.report("--data", "sim.xml", "--set", "A=1")
                self.assertEqual((2, b""), (result.code, result.out), result)
                self.assertIn("sim.xml", result.err)
                self.assertNotIn("report.txt", self.names())

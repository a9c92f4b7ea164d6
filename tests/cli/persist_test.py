"""Persistent data: get, set, unset, replace, what the library drops, failures.

SPDX-License-Identifier: MIT
"""

import json

from cli_case import NO_ACCESS, PersistCase, linux_only, unprivileged, with_small_files
from cli_templates import GUID, LISTING, OTHER_GUID

STORE = "case/.rgen/acquisition_data.xml"


class Reading(PersistCase):

    def test_all_values_sorted_by_name(self):
        self.store("Lab.Name=Brackwater & Söhne", "Case.Number=2026-0117", "Ж=я", "a=b=c")
        result = self.persist("get")
        self.assertEqual((0, ""), (result.code, result.err))
        self.assertEqual("Case.Number=2026-0117\nLab.Name=Brackwater & Söhne\na=b=c\nЖ=я\n",
                         result.text)

    def test_some_values(self):
        self.store("A=1", "B=2", "C=3")
        self.assertEqual("2\n", self.persist("get", "B").text)
        self.assertEqual("A=1\nC=3\n", self.persist("get", "C", "A").text)

    def test_nothing_is_there_yet(self):
        result = self.persist("get")
        self.expect_notes(result, "there is no persistent data yet")
        self.assertEqual(b"", result.out)
        self.assertEqual({}, self.stored())

    def test_names_that_do_not_exist(self):
        self.store("Lab.Name=x")
        for command in ("get", "unset"):
            for name, advice in (("Lab.Nmae", 'did you mean "Lab.Name"?'),
                                 ("Q", '"rgen persist get" lists the names')):
                with self.subTest(command=command, name=name):
                    self.expect_error(self.persist(command, name), 2,
                                      f'rgen: persistent data has no "{name}"; {advice}')
        self.assertEqual({"Lab.Name": "x"}, self.stored())


class Writing(PersistCase):

    def test_set_adds_and_changes(self):
        self.store("A=1", "B=1")
        result = self.persist("set", "B=2", "C:size=0x10")
        self.expect_done(result)
        self.assertEqual(["rgen: 3 values stored"], result.messages)
        self.assertEqual(b"", result.out)
        self.assertEqual({"A": "1", "B": "2", "C": "16"}, self.stored())

    def test_unset_removes(self):
        self.store("A=1", "B=1", "C=1", "D=1")
        result = self.persist("unset", "A", "C")
        self.assertEqual((0, ["rgen: 2 values stored"]), (result.code, result.messages))
        self.assertEqual({"B": "1", "D": "1"}, self.stored())

    def test_unset_of_the_last_value(self):
        self.store("A=1")
        self.expect_done(self.persist("unset", "A"))
        self.assertEqual({}, self.stored())
        self.expect_done(self.persist("set", "B=1", "C=2"))
        self.assertEqual({"B": "1", "C": "2"}, self.stored())

    def test_unset_changes_nothing_when_one_name_is_missing(self):
        self.store("A=1", "B=1")
        before = self.contents()
        self.assertEqual(2, self.persist("unset", "A", "Q").code)
        self.assertEqual(before, self.contents())

    def test_replace_leaves_exactly_the_given_values(self):
        self.store("A=1", "B=1")
        result = self.persist("replace", "C=1", "D=2")
        self.assertEqual((0, ["rgen: 2 values stored"]), (result.code, result.messages))
        self.assertEqual({"C": "1", "D": "2"}, self.stored())

    def test_values_from_files(self):
        self.write_json("data.json", {"A": "file", "B:size": 5, "T:datetime": 0})
        result = self.persist("set", "--data", "data.json", "A=line", "Ü:text=a:b")
        self.assertEqual((0, ["rgen: 4 values stored"]), (result.code, result.messages))
        self.assertEqual({"A": "line", "B": "5", "T": "31.12.1969 19:00:00", "Ü": "a:b"},
                         self.stored())
        self.expect_done(self.persist("replace", "--data", "-", stdin=b'{"Z": 1}'))
        self.assertEqual({"Z": "1"}, self.stored())

    def test_stored_values_are_in_reports(self):
        self.store("Lab=Größe & Co", "B=1")
        self.assertEqual({"Lab": "Größe & Co", "B": "2"}, self.values("--set", "B=2"))

    def test_the_report_type_chooses_the_store(self):
        self.make_data_dir("case", types=[("alpha.xsl", GUID, "a.xml"),
                                          ("beta.xsl", OTHER_GUID, "b.xml")],
                           templates={"txt/alpha.xsl": LISTING})
        self.expect_done(self.persist("set", "-t", "alpha", "A=alpha"))
        self.expect_done(self.persist("set", "-t", OTHER_GUID, "A=beta"))
        self.assertEqual(["alpha\n", "beta\n"],
                         [self.persist("get", "-t", name, "A").text for name in (GUID, "beta")])

    def test_a_value_that_cannot_be_read(self):
        self.store("A=1")
        before = self.contents()
        for command in ("set", "replace"):
            for value in ("abc", "N:size=12x", "N:siez=1"):
                result = self.persist(command, "B=1", value)
                self.assertEqual((2, b"", 1), (result.code, result.out, len(result.messages)))
        self.assertEqual(before, self.contents())

    def test_quiet(self):
        result = self.persist("set", "-q", "A= x ", "B=\x01")
        self.assertEqual((0, b"", ""), (result.code, result.out, result.err))


class Ampersands(PersistCase):
    texts = {"A": "AT&T", "B": "a & b", "C": "&amp;", "D": "&#8364;", "E": "<&>", "F": "&amp;amp;"}

    def test_what_was_set_is_shown_and_reported(self):
        self.store(*(f"{name}={text}" for name, text in self.texts.items()))
        self.assertEqual(self.texts, self.stored())
        self.assertEqual("AT&T\n", self.persist("get", "A").text)
        self.assertEqual(self.texts, self.values())

    def test_set_again_and_again(self):
        self.store("A=AT&T", "B=1")
        for number in range(3):
            self.expect_notes(self.persist("set", f"B={number}"))
        self.assertEqual({"A": "AT&T", "B": "2"}, self.stored())
        self.expect_done(self.persist("unset", "B"))
        self.assertEqual({"A": "AT&T"}, self.values())

    def test_from_a_data_file(self):
        self.write_json("data.json", self.texts)
        self.expect_done(self.persist("set", "--data", "data.json"))
        self.assertEqual(self.texts, self.stored())
        self.assertEqual(self.texts, self.values())

    def test_raw_texts_are_read_twice(self):
        self.expect_done(self.persist("set", "--raw", "A=AT&amp;amp;T", "Euro=&#8364;"))
        self.assertEqual({"A": "AT&T", "Euro": "€"}, self.values())
        self.assertEqual({"A": "AT&T", "Euro": "€"}, self.stored())

    def test_a_raw_text_that_loses_something_is_noted(self):
        result = self.persist("set", "--raw", "A=AT&T", "B=1")
        self.assertEqual(0, result.code, result)
        self.assertIn('"A": with --raw a plain "&" is lost; write "&amp;amp;"', result.notes)


class WhatTheLibraryDoesNotKeep(PersistCase):

    def test_edges_stay(self):
        texts = {"Name": " x ", "Inside": "a  b", "Lines": "\n\ta\r\n", "Blank": " "}
        self.expect_notes(self.persist("set", *(f"{name}={text}" for name, text in texts.items())))
        self.assertEqual(texts, self.stored())
        self.expect_notes(self.persist("set", "More=1"))
        self.assertEqual({**texts, "More": "1"}, self.stored())

    def test_edges_of_raw_texts_are_cut(self):
        result = self.persist("set", "--raw", "Name= x ", "Inside=a  b")
        self.expect_notes(result, '"Name": the library stored "x" instead of " x "')
        self.assertEqual({"Name": "x", "Inside": "a  b"}, self.stored())

    def test_edges_of_names_are_cut(self):
        result = self.persist("set", " Name =x", "Other=1")
        self.expect_done(result)
        self.assertEqual(1, len(result.notes), result)
        self.assertIn('" Name "', result.notes[0])
        self.assertEqual({"Name": "x", "Other": "1"}, self.stored())

    def test_set_takes_no_empty_text(self):
        """It would remove the existing value; unset is the command for that."""
        self.store("Empty=old", "Full=1")
        self.write("nothing", "")
        before = self.contents()
        for value in ("Empty=", "Empty:bytes=", "Empty:bytes=@nothing", " Empty ="):
            with self.subTest(value=value):
                self.expect_error_like(
                    self.persist("set", "More=2", value), 2,
                    '^(rgen: note: .*)?rgen: "Empty": persistent data keeps no empty text; remove '
                    'the value with: rgen persist unset "Empty"$')
                self.assertEqual(before, self.contents())
        self.expect_error_like(self.persist("set", "--raw", "Empty=&#32;&#9;"), 2, "unset")
        self.write_json("data.json", {"Empty": "", "More": 2})
        self.expect_error_like(self.persist("set", "--data", "data.json"), 2, "unset")
        self.expect_done(self.persist("unset", "Empty"))
        self.assertEqual({"Full": "1"}, self.stored())

    def test_replace_drops_empty_texts(self):
        self.store("Empty=old")
        result = self.persist("replace", "Empty=", "Full=1", "More=2")
        self.expect_notes(result, '"Empty": the library stores no value without a text')
        self.assertEqual(["rgen: 2 values stored"], result.messages)
        self.assertEqual({"Full": "1", "More": "2"}, self.stored())

    def test_long_texts_are_cut_in_the_note(self):
        result = self.persist("set", "--raw", "Name=" + "ж" * 60 + " ", "B=1")
        text = "ж" * 40
        self.assertEqual(1, len(result.notes), result)
        self.assertRegex(result.notes[0], f'^"Name": the library stored "ж{{37,40}}\\.\\.\\." '
                                          f'instead of "ж{{37,40}}\\.\\.\\."$')
        self.assertNotIn(text + "ж", result.notes[0])

    def test_notes_are_in_the_document(self):
        document = json.loads(self.persist("set", "--json", "-q", "--raw", "A= x ", "B=1").text)
        self.assertEqual(2, document["stored"])
        self.assertEqual(['"A": the library stored "x" instead of " x "'], document["notes"])


class WhatTheLibraryCannotKeep(PersistCase):

    def test_noncharacters_are_replaced(self):
        self.store("Other=AT&T")
        for raw in ((), ("--raw",)):
            result = self.persist("set", *raw, "A=\ufffex\uffff", "N\ufffe=1", "B=\uffef")
            self.expect_notes(result, '"A": the text contains U+FFFE at byte 0; such characters are '
                              "stored as U+FFFD",
                              '"N\ufffe": the library stored it as "N\ufffd"')
            self.assertEqual({"A": "\ufffdx\ufffd", "B": "\uffef", "N\ufffd": "1",
                              "Other": "AT&T"}, self.stored())

    def test_texts_that_are_too_long(self):
        self.write_json("data.json", {"A": "&" + "x" * 9_999_995, "B": "1"})
        self.expect_done(self.persist("replace", "--data", "data.json"))
        before = self.contents()
        self.write("bytes", b"\0" * 3_333_334)
        rows = (({"A": "&" + "x" * 9_999_996}, "the text is too long for persistent data: 10000001 of "
                 "10000000 bytes; shorten it"),
                ({"A:bytes": "@bytes"}, "a byte array is too long for persistent data; shorten it"))
        for data, message in rows:
            self.write_json("data.json", data)
            before = self.contents()
            for command in ("set", "replace"):
                self.expect_error(self.persist(command, "--data", "data.json"), 2,
                                  f'rgen: "A": {message}')
                self.assertEqual(before, self.contents())

    def test_names_that_are_too_long(self):
        self.write_json("data.json", {'"' * 1_000_000: "a", "B": "1"})
        self.expect_done(self.persist("replace", "--data", "data.json"))
        self.assertEqual(2, len(self.stored()))
        self.write_json("data.json", {"n" * 1_000_001: "a"})
        self.expect_error_like(
            self.persist("replace", "--data", "data.json"), 2,
            'the name is too long for persistent data: 1000001 of 1000000 bytes; shorten it$')


class Failures(PersistCase):

    def test_a_file_that_cannot_be_read_is_left_alone(self):
        for content in ("", "no XML at all", "<data><prop"):
            self.write(STORE, content)
            before = self.contents()
            for arguments in (("get",), ("set", "A=1"), ("unset", "A")):
                with self.subTest(content=content, arguments=arguments):
                    result = self.persist(*arguments)
                    self.assertIn(result.code, (1, 2), result)
                    self.assertEqual((b"", 1), (result.out, len(result.messages)), result)
                    self.assertEqual(before, self.contents())

    def test_replace_puts_a_good_file_in_its_place(self):
        self.write(STORE, "no XML at all")
        self.expect_done(self.persist("replace", "A=1", "B=2"))
        self.assertEqual({"A": "1", "B": "2"}, self.stored())

    def test_a_folder_in_the_place_of_the_file(self):
        self.write(STORE + "/file", "kept")
        before = self.contents()
        for arguments in (("set", "A=1"), ("replace", "A=1")):
            result = self.persist(*arguments)
            self.assertNotEqual(0, result.code)
            self.assertEqual((b"", 1), (result.out, len(result.messages)), result)
            self.assertEqual(before, self.contents())

    @linux_only
    def test_a_data_directory_that_may_not_be_written(self):
        self.store("A=1", "B=2")
        before = self.contents()
        (self.folder / "case/.rgen").chmod(0o555)
        self.addCleanup((self.folder / "case/.rgen").chmod, 0o755)
        for arguments in (("set", "A=9"), ("unset", "A"), ("replace", "C=1")):
            with self.subTest(arguments=arguments):
                result = self.persist(*arguments, prefix=unprivileged())
                self.assertIn(result.code, (1, 5), result)
                self.assertEqual((b"", 1), (result.out, len(result.messages)), result)
                self.assertEqual(before, self.contents())

    @linux_only
    def test_a_file_that_cannot_be_written_whole(self):
        self.store("A=AT&T", "B=2")
        before = self.contents()
        for arguments in (("set", "C=" + "x" * 5000), ("replace", "C=" + "x" * 5000)):
            with self.subTest(arguments=arguments[0]):
                result = self.persist(*arguments, prefix=with_small_files(1000))
                self.assertEqual(4, result.code, result)
                self.assertEqual((b"", 1), (result.out, len(result.messages)), result)
                self.assertEqual(before, self.contents())

    @linux_only
    def test_a_file_without_rights(self):
        self.store("A=1")
        self.forbid(STORE)
        for arguments in (("get",), ("set", "A=9"), ("unset", "A")):
            result = self.persist(*arguments, prefix=unprivileged())
            self.expect_error(result, 5, f'rgen: cannot read "{STORE}": {NO_ACCESS}; check its '
                              'rights')
        result = self.report("--set", "B=1", prefix=unprivileged())
        self.expect_error(result, 5, f'rgen: cannot read "{STORE}": {NO_ACCESS}; check its rights')
        result = self.rgen("doctor", "-d", "case", prefix=unprivileged())
        self.assertIn(f'FAIL  acquisition, persistent data: cannot read "{STORE}": {NO_ACCESS}',
                      result.text)

    def test_no_data_directory(self):
        for command in ("get", "set", "unset", "replace"):
            values = [] if command == "get" else ["A=1"]
            self.expect_error(self.rgen("persist", command, "-d", "nowhere", *values), 5,
                              'rgen: the folder "nowhere" does not exist; make it with: rgen '
                              'init "nowhere"')

"""Reports, persistent data, dumps and simulated input through the Python package.

SPDX-License-Identifier: MIT
"""

import contextlib
import ctypes
import itertools
import os
import unittest
import uuid
from unittest import mock

from binding_case import CONFIG, LIBRARY, TYPE, BindingCase, value_of
from strata_repgenlib import (ArgumentError, Generator, Handle, Hint, Hinted, Markup, Request,
                              Status, UnknownReportTypeError, results)

TEXTS = ("a & b", "&amp;", "&#65;", "&lt;b&gt; <b>", "&;", "&", "\u00e4 \u043e \U0001f600", "]]>",
         "a;b")
EDGES = (" ", "\t x \n", "x\n", "a\r\nb", "&\n&", " &amp; ", "&#x41;")


class Reports(BindingCase):
    def test_texts_stand_in_reports_as_they_are(self):
        for text in TEXTS:
            with self.subTest(text=text):
                self.assertEqual(f"[{text}]", self.report_of(text))
                pairs = Request(TYPE, pairs=[("v", "old"), ("v", text)])
                self.assertEqual(f"[{text}]", self.own.generate_bytes(pairs).decode())

    def test_markup_is_read_by_the_library(self):
        self.assertEqual("[A & B]", self.report_of(Markup("&#65; &amp; B")))

    def test_a_file_is_written_and_its_path_given(self):
        path = self.folder / "\u043e.html"
        self.assertEqual(path, self.own.generate_file(Request(TYPE, values={"v": 1}), path))
        self.assertEqual(b"[1]", path.read_bytes())
        self.own.generate_file(Request(uuid.UUID(TYPE), values={"v": 2}), str(path))
        self.assertEqual(b"[2]", path.read_bytes())

    def test_an_open_report_vanishes_with_its_file(self):
        path = self.folder / "report.html"
        with self.own.open_report(Request(TYPE, values={"v": "x" * 100000}), path) as file:
            self.assertFalse(path.exists())
            self.assertEqual(b"[" + b"x" * 100000 + b"]", file.read())
            number = file.fileno()
        with self.assertRaises(OSError):
            os.fstat(number)

    def test_entries_that_can_be_read_once_are_there_for_every_report(self):
        request = Request(TYPE, values=iter([("v", 1)]), pairs=zip(["w"], ["x"]))
        for _ in range(2):
            self.assertEqual(b"[1]", self.own.generate_bytes(request))
        self.assertEqual([("w", "x")], request.pairs)

    def test_contents_of_more_than_2_gib_are_read(self):
        with mock.patch.object(results, "_GREATEST_INT", 2), \
                mock.patch.object(ctypes, "string_at", side_effect=AssertionError):
            self.assertEqual(b"[xyz]", self.own.generate_bytes(Request(TYPE, values={"v": "xyz"})))

    def test_a_dump_holds_the_display_texts(self):
        path = self.folder / "dump.xml"
        self.own.dump({"a": "x & y", "b": Hinted(255, Hint.ADDRESS)}, path)
        xml = path.read_text()
        self.assertIn('name="a">x &amp; y</property>', xml)
        self.assertIn('name="b">0xff</property>', xml)
        self.own.dump({}, path)
        self.assertNotIn("property ", path.read_text())

    def test_simulated_input_comes_back_as_values(self):
        path = self.folder / "input.xml"
        path.write_text("<data><properties><property name='s' type='string' hint='Size'>x &amp; y"
                        "</property><property name='i' type='int64' hint='Size'>5</property>"
                        "<property name='n' type='int64' hint='Generic'>-6</property>"
                        "<property name='b' type='byte_array' hint='Dump'>0x01, 0xAB</property>"
                        "<property name='z' type='real' hint='Dump'>1</property>"
                        "</properties></data>")
        values = self.own.simulated_input(path)
        self.assertEqual({"s": "x & y", "i": Hinted(5, Hint.SIZE), "n": -6, "b": b"\x01\xab"},
                         values)
        self.assertEqual("[x & y]", self.report_of(values["s"]))
        self.assertEqual({}, self.own.simulated_input(self.folder / "missing.xml"))


class ReportTypes(BindingCase):
    OTHER = "11111111-2222-3333-4444-555555555555"

    def configure(self, *types):
        entries = "".join(f'<type guid="{guid}"><persistDataFile>x.xml</persistDataFile>'
                          f"<{tag}>{template}</{tag}></type>" for guid, tag, template in types)
        (self.folder / ".rgen/config.xml").write_text(
            f"<config><reportTypes>{entries}</reportTypes></config>")

    def report_as(self, report_type):
        return self.own.generate_bytes(Request(report_type, values={"v": 1}))

    def test_a_guid_or_a_name_chooses_one(self):
        for report_type in (TYPE, TYPE.upper(), f"{{{TYPE}}}", uuid.UUID(TYPE), "report", None):
            self.assertEqual(b"[1]", self.report_as(report_type), report_type)
            self.own.set_persistent_data(report_type, {"a": "b"})
            self.own.cancel(report_type)
            self.assertEqual({"a": "b"}, self.own.persistent_data(report_type))

    def test_they_are_read_as_the_library_reads_them(self):
        self.configure((TYPE, "reportTypeFile", " report.xsl "), ("no guid", "reportTypeFile", "x"),
                       (f"{{{self.OTHER}}}", "reportTypeFile", "braces.xsl"),
                       (self.OTHER, "REPORTTYPEFILE", "an.other.xsl"),
                       (self.OTHER, "reportTypeFile", ""))
        self.assertEqual([("an.other", uuid.UUID(self.OTHER), "an.other.xsl"),
                          ("report", uuid.UUID(TYPE), "report.xsl")], self.own.report_types())
        self.assertEqual(b"[1]", self.report_as("report"))

    def test_unknown_and_ambiguous_names_are_errors(self):
        self.configure((TYPE, "reportTypeFile", "report.xsl"),
                       (self.OTHER, "reportTypeFile", "report.txt"))
        for report_type, message in (("report", "names 2 report types"),
                                     (None, "has 2 report types"),
                                     ("repor", 'did you mean "report"')):
            with self.assertRaisesRegex(UnknownReportTypeError, message) as raised:
                self.report_as(report_type)
            self.assertEqual(Status.RGEN_E_GUID_NOT_IN_CONFIG, raised.exception.status)
            self.assertIsInstance(raised.exception, LookupError)
        with self.assertRaises(TypeError):
            self.report_as(5)
        (self.folder / ".rgen/config.xml").write_text("<config>")
        with self.assertRaisesRegex(ValueError, "config.xml cannot be read"):
            self.report_as("report")
        (self.folder / ".rgen/config.xml").unlink()
        with self.assertRaises(FileNotFoundError):
            self.report_as(None)
        (self.folder / ".rgen/config.xml").write_text(CONFIG)


class PersistentData(BindingCase):
    def test_it_comes_back_as_it_was_and_reports_show_it(self):
        texts = {f"n{index}": text for index, text in enumerate(TEXTS + EDGES)}
        self.own.set_persistent_data(TYPE, texts)
        self.assertEqual(texts, self.own.persistent_data(TYPE))
        for name, text in texts.items():
            self.put_template("[" + value_of(name) + "]")
            self.assertEqual(f"[{text}]", self.report_of("other"))

    def test_markup_is_read_twice(self):
        self.own.set_persistent_data(TYPE, {"a": Markup("&amp;#65;"), "b": Markup("&#65;")})
        self.assertEqual({"a": "A", "b": "A"}, self.own.persistent_data(TYPE))

    def test_what_the_store_cannot_hold_does_no_harm_to_other_entries(self):
        lost = ["\ufffe", "\uffff", "\x01", Markup("\ufffe"), Markup("&#xFFFE;"), Markup("&#65535;"),
                Markup("&#xD800;"), Markup("&#00065534;"), Markup("&#1;")]
        texts = {f"a{index}": text for index, text in enumerate(lost)}
        kept = {f"k{index}": " Smith & Sons <b> \ufffc\U0001f600" for index in range(50)}
        self.own.set_persistent_data(TYPE, {**texts, **kept, "name\uffff": "\x02"})
        self.assertEqual({**{name: "\ufffd" for name in (*texts, "name\ufffd")}, **kept},
                         self.own.persistent_data(TYPE))

    def test_markup_with_unknown_references_is_refused(self):
        self.own.set_persistent_data(TYPE, {"a": "kept"})
        for content in ("&foo;", "&f oo;", "&nbsp;", "&AMP;", "&1;", "&;", "& amp;", "a & b; c",
                        "&&amp;", "&lt;&foo;", "&a&lt;", "&<b>;", "&amp&#65;"):
            with self.subTest(content=content), \
                    self.assertRaisesRegex(ArgumentError, 'value "a": '):
                self.own.set_persistent_data(TYPE, {"a": Markup(content)})
        self.assertEqual({"a": "kept"}, self.own.persistent_data(TYPE))

    def test_no_markup_that_is_taken_does_harm(self):
        """All short sequences of pieces: they are refused, or leave the other entries alone."""
        pieces = ("&", "amp", ";", "#", "x", "D800", "65", "<", "\x01", "\ufffe", "a")
        kept = {f"k{index}": "Smith & Sons <b>" for index in range(10)}
        taken = {}
        for number, parts in enumerate(itertools.chain.from_iterable(
                itertools.product(pieces, repeat=length) for length in (1, 2, 3))):
            markup = Markup("".join(parts))
            with contextlib.suppress(ArgumentError):
                self.own.set_persistent_data(TYPE, {"a": markup})
                taken[f"a{number}"] = markup
        self.assertGreater(len(taken), 1000)
        self.own.set_persistent_data(TYPE, {**taken, **kept, "z": Markup("&amp;amp;")})
        stored = self.own.persistent_data(TYPE)
        self.assertEqual({**kept, "z": "&"}, {name: stored[name] for name in (*kept, "z")})

    def test_texts_that_the_store_would_cut_are_refused(self):
        limit = 10_000_000
        longest = "x" * (limit - 5) + "&"
        self.own.set_persistent_data(TYPE, {"a": longest})
        self.assertTrue(longest == self.own.persistent_data(TYPE)["a"])
        for name, text in (("a", "x" + longest), ("a", "x" * (limit + 1)),
                           ("a", "\x01" * (limit // 3 + 1)), ("a", Markup("x" * (limit + 1))),
                           ("x" * (limit // 10 + 1), "x"), ("a", bytes(limit // 3 + 1))):
            with self.assertRaisesRegex(ArgumentError, "too long for persistent data"):
                self.own.set_persistent_data(TYPE, {name: text})
        self.assertEqual(1, len(self.own.persistent_data(TYPE)))

    def test_values_are_stored_as_display_texts(self):
        self.own.set_persistent_data(TYPE, {"a": Hinted(255, Hint.ADDRESS), "b": "x & y",
                                            "list": [1, True], "handle": Handle(1)})
        self.assertEqual({"a": "0xff", "b": "x & y", "list.1": "1", "list.2": "true"},
                         self.own.persistent_data(TYPE))
        self.own.set_persistent_data(TYPE, {})
        self.assertEqual({}, self.own.persistent_data(TYPE))

    def test_another_folder_has_other_data(self):
        self.own.set_persistent_data(TYPE, {"a": "b"})
        other = self.folder / "other"
        (other / ".rgen").mkdir(parents=True)
        (other / ".rgen/config.xml").write_text((self.folder / ".rgen/config.xml").read_text())
        with Generator(other, library=LIBRARY) as generator:
            generator.set_persistent_data(TYPE, {"a": "c"})
            self.assertEqual({"a": "c"}, generator.persistent_data(TYPE))
            generator.set_folder(self.folder)
            self.assertEqual({"a": "b"}, generator.persistent_data(TYPE))
            self.assertEqual(self.folder, generator.folder)


if __name__ == "__main__":
    unittest.main()

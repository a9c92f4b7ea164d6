"""Kinds of values, and the names that objects and lists make, as docs/values.md says.

SPDX-License-Identifier: MIT
"""

import collections
import datetime
import decimal
import enum
import os
import pathlib
import time
import types
import unittest
import uuid
from unittest import mock

from binding_case import TYPE, BindingCase, value_of
from strata_repgenlib import ArgumentError, Handle, Hint, Hinted, Markup, Request, packing
from strata_repgenlib.nesting import flat

UTC = datetime.timezone.utc
MOMENT = datetime.datetime(2000, 2, 29, 3, 4, 5, 999999, UTC)


class Table:
    """A table of records, as a DataFrame is."""

    def __init__(self, *records):
        self.records = records

    def to_dict(self, orient):
        assert orient == "records"
        return list(self.records)


class Series:
    def to_dict(self):
        return {}


class Index:
    def __index__(self):
        return 7


class NotATime(datetime.datetime):
    """As the NaT of pandas."""

    def __ne__(self, other):
        return True

    def __eq__(self, other):
        return False

    __hash__ = None


class Names(unittest.TestCase):
    def test_objects_and_lists_make_flat_names(self):
        for values, expected in (
                ({"Device": {"Model": "x"}}, {"Device.Model": "x"}),
                ({"Note": ["a", "b"]}, {"Note.1": "a", "Note.2": "b"}),
                ({"Err": [{"Address": 16}, {"Address": 32}]},
                 {"Err.1.Address": 16, "Err.2.Address": 32}),
                ({"Row": [[7, 8], [9]]}, {"Row.1.1": 7, "Row.1.2": 8, "Row.2.1": 9}),
                ({"Err": {10: {"Address": 1}, "15": {"Address": 2}}},
                 {"Err.10.Address": 1, "Err.15.Address": 2}),
                ({"a": (1, 2), "b": range(3, 5), "c": collections.deque([6])},
                 {"a.1": 1, "a.2": 2, "b.1": 3, "b.2": 4, "c.1": 6}),
                ({"a": {}, "b": []}, {}),
                ({"Device.Model": "x", "text": "abc", "bytes": b"ab"},
                 {"Device.Model": "x", "text": "abc", "bytes": b"ab"}),
                ({"Err": Table({"Address": 1}, {"Address": 2})},
                 {"Err.1.Address": 1, "Err.2.Address": 2}),
                (types.MappingProxyType({"a": types.MappingProxyType({"b": 1})}), {"a.b": 1}),
                ([("a", [1]), ("b", 2)], {"a.1": 1, "b": 2})):
            with self.subTest(values=values):
                self.assertEqual(expected, flat(values))

    def test_the_last_of_several_entries_of_one_name_counts(self):
        self.assertEqual({"a.1": 3, "b": 4}, flat([("a", [1]), ("b", 2), ("a.1", 3), ("b", 4)]))
        found = flat({"a": {"1": 1}, "b": [2], "a.1": 3})
        self.assertEqual([("b.1", 2), ("a.1", 3)], list(found.items()))

    def test_names_that_are_none_are_refused_with_their_place(self):
        for values, kind, message in (
                ({1.5: 1}, TypeError, "a name must be a str, not 1.5"),
                ({"a": [{True: 1}]}, TypeError, 'a name in "a.1" must be a str, not True'),
                ({"": 1}, ValueError, "the name of a value is empty"),
                ({"a": {"b": {"": 1}}}, ValueError, 'a name in "a.b" is empty')):
            with self.subTest(values=values), self.assertRaisesRegex(kind, message):
                flat(values)

    def test_depth_has_a_limit_so_that_a_list_in_itself_is_an_error(self):
        deep = []
        deep.append(deep)
        with self.assertRaisesRegex(ValueError, r'value "a\.1\.1.*32 levels'):
            flat({"a": deep})
        value = 1
        for _ in range(31):
            value = [value]
        self.assertEqual({"a" + 31 * ".1": 1}, flat({"a": value}))
        with self.assertRaises(ValueError):
            flat({"a": [value]})


class Kinds(BindingCase):
    def setUp(self):
        super().setUp()
        patch = mock.patch.dict(os.environ, TZ="EST5EDT")
        patch.start()
        time.tzset()
        self.addCleanup(time.tzset)
        self.addCleanup(patch.stop)

    def test_values_are_shown_by_their_kind(self):
        rows = (
            (255, "255"), (-1, "-1"), (Hinted(255, Hint.ADDRESS), "0xff"),
            ((1 << 63) - 1, "9223372036854775807"), (-(1 << 63), "-9223372036854775808"),
            (Hinted((1 << 64) - 1, Hint.ADDRESS), "0xffffffffffffffff"),
            (Hinted(5, Hint.SIZE), "5"), (Index(), "7"), (enum.IntEnum("E", "A").A, "1"),
            (True, "true"), (False, "false"),
            (1.0, "1.0"), (0.1, "0.1"), (-1e22, "-10000000000000000000000"), (1e-7, "0.0000001"),
            (decimal.Decimal("1.50"), "1.50"), (decimal.Decimal("1E+3"), "1000"),
            (MOMENT, "28.02.2000 22:04:05"),
            (MOMENT.astimezone().replace(tzinfo=None), "28.02.2000 22:04:05"),
            (Hinted(MOMENT, Hint.TIME), "22:04:05"), (datetime.date(2000, 2, 29), "29.02.2000"),
            (Hinted(0, Hint.TIME), "19:00:00"), (Hinted(32535215999, Hint.DATE), "31.12.3000"),
            (datetime.time(8, 14, 7, 5), "08:14:07"), (datetime.time(), "00:00:00"),
            (datetime.timedelta(days=1, seconds=1), "86401"),
            (datetime.timedelta(microseconds=-1500000), "-1.5"),
            (datetime.timedelta(microseconds=1), "0.000001"),
            (pathlib.PurePosixPath("/a & b"), "/a & b"), (Markup("&#65; &amp; B"), "A & B"),
            (b"\x01\xab", "01 AB "), (bytearray(b"\0"), "00 "), (memoryview(b"axb")[::2], "61 62 "),
            (b"", ""), ("", ""), (Handle(3), ""), (Handle((1 << 64) - 1), ""))
        for value, text in rows:
            with self.subTest(value=value):
                request = Request(TYPE, values={"v": value, "other": 1})
                self.assertEqual(f"[{text}]", self.own.generate_bytes(request).decode())

    def test_times_of_day_are_shown_in_every_zone(self):
        for zone in ("UTC0", "AAA-14", "BBB12", "Pacific/Apia"):
            os.environ["TZ"] = zone
            time.tzset()
            self.assertEqual("[23:59:59]", self.report_of(datetime.time(23, 59, 59)), zone)

    def test_what_is_missing_is_left_out_and_keeps_its_number(self):
        self.put_template("|".join(value_of(f"v.{number}") for number in range(1, 6)))
        missing = [None, float("nan"), decimal.Decimal("nan"), NotATime(2000, 1, 1)]
        self.assertEqual("||||x", self.report_of([*missing, "x"]))
        self.assertEqual([], packing.packed_values({"a": missing}).names)

    def test_times_that_a_report_cannot_show_are_refused(self):
        for value in (datetime.datetime(1969, 1, 1), datetime.date(1969, 12, 30),
                      datetime.datetime(3001, 1, 2), datetime.datetime.max, datetime.datetime.min,
                      Hinted(-1, Hint.TIME), Hinted(32535216000, Hint.DATE_TIME)):
            with self.subTest(value=value), \
                    self.assertRaisesRegex(ValueError, 'value "v": .*from 1970 to 3000'):
                self.report_of(value)
        with self.assertRaisesRegex(ValueError, 'value "v": a time with a zone needs a date'):
            self.report_of(datetime.time(1, tzinfo=UTC))

    def test_what_is_no_value_is_refused_with_its_name(self):
        for value, kind in ((object(), TypeError), (uuid.UUID(TYPE), TypeError), ({1}, TypeError),
                            (Hinted(1.5, Hint.SIZE), TypeError),
                            (Hinted(True, Hint.SIZE), TypeError), (Hinted(1, 77), ValueError),
                            (1 << 63, OverflowError), (-(1 << 63) - 1, OverflowError),
                            (Hinted(1 << 64, Hint.ADDRESS), OverflowError),
                            (float("inf"), ValueError), (Series(), TypeError),
                            ("a\0b", ArgumentError), ("\ud800", UnicodeEncodeError),
                            (Markup("\0"), ArgumentError)):
            for values, name in (({"v": value}, "v"), ({"a": 1, "b": [{"c": value}]}, "b.1.c")):
                with self.subTest(value=value), self.assertRaisesRegex(kind, f'value "{name}"'):
                    self.own.generate_bytes(Request(TYPE, values=values))
        with self.assertRaises(TypeError):
            Handle(None)
        with self.assertRaises(OverflowError):
            Handle(1 << 64)
        self.assertEqual("[1]", self.report_of(1))

    def test_the_library_names_a_wrong_value_too(self):
        values = {"skipped": None, "fine": 1, "bad": "a\0b"}
        with self.assertRaises(ArgumentError) as raised:
            self.own.generate_bytes(Request(TYPE, values=values))
        self.assertEqual('value "bad"', raised.exception.argument)
        with self.assertRaises(ArgumentError) as raised:
            self.own.set_persistent_data(TYPE, {"fine": "x", "bad": Markup("&foo;")})
        self.assertEqual('value "bad"', raised.exception.argument)
        with self.assertRaisesRegex(ArgumentError, r"a\\0b|a name|zero"):
            self.own.generate_bytes(Request(TYPE, values={"a\0b": 1}))

    def test_pairs_are_texts(self):
        for pairs, kind in (({"p": 1}, TypeError), ({"a": "x", "p": "a\0b"}, ArgumentError),
                            ({"p\0": "x"}, ArgumentError), ({"p": Markup("\0")}, ArgumentError)):
            with self.assertRaisesRegex(kind, 'pair "p'):
                self.own.generate_bytes(Request(TYPE, values={"v": 1}, pairs=pairs))

    def test_many_values_arrive_unchanged(self):
        texts = {f"n{number}": f"{number} ä & \U0001f600" for number in range(60000)}
        texts["v"] = "last"
        self.put_template("[" + value_of("n59999") + value_of("v") + "]")
        report = self.own.generate_bytes(Request(TYPE, values=texts))
        self.assertEqual("[59999 ä & \U0001f600last]", report.decode())


if __name__ == "__main__":
    unittest.main()

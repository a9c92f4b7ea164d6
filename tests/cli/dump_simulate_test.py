"""Raw input dumps and simulated input.

SPDX-License-Identifier: MIT
"""

import os
import xml.etree.ElementTree as ET
from pathlib import Path

from cli_case import LAUNCHER, ON_WINDOWS, CliCase, linux_only, unprivileged, wait_for
from cli_templates import simulated_input

TEXTS = {"A": "AT&T", "B": "a & b", "C": "&amp;", "D": "&#8364;", "E": "<&>", "Ä": "ж"}
TYPED = ["--set", "Text=x", "--set", "Int:int=-5", "--set", "Size:size=500107862016",
         "--set", "Speed:speed=7", "--set", "Address:address=0xffffffffffffffff",
         "--set", "Time:time=0", "--set", "Date:date=0", "--set", "Both:datetime=1773044047",
         "--set", "Bytes:bytes=0001AB"]
SHOWN = {"Text": "x", "Int": "-5", "Size": "500107862016", "Speed": "7",
         "Address": "0xffffffffffffffff", "Time": "19:00:00", "Date": "31.12.1969",
         "Both": " 9.03.2026 04:14:07", "Bytes": "00 01 AB "}


def properties(content):
    """The properties of a dump or of simulated input: name to text."""
    return {node.get("name"): node.text for node in ET.fromstring(content).iter("property")}


class FileCase(CliCase):
    command = None

    def make(self, *args, output="out.xml", **settings):
        return self.rgen(self.command, "-o", output, *args, **settings)

    def expect_pipe_stays(self):
        """A pipe is written to or refused, but never replaced by a file."""
        pipe = self.folder / "pipe.xml"
        os.mkfifo(pipe)
        reader = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, reader)
        self.make("--set", "A=1", output="pipe.xml")
        self.assertTrue(pipe.is_fifo())

    def expect_output_alone(self, result):
        self.expect_done(result)
        self.assertEqual(["case"], [name for name in self.names() if not name.startswith("case/")])


class Dump(FileCase):
    has_data_dir = False
    command = "dump"

    def test_names_and_texts_as_the_report_shows_them(self):
        result = self.make(*TYPED)
        self.expect_done(result)
        self.assertEqual(["rgen: out.xml: 9 values"], result.messages)
        self.assertEqual(b"", result.out)
        self.assertEqual(SHOWN, properties(self.read("out.xml")))

    def test_ampersands(self):
        self.write_json("data.json", TEXTS)
        self.expect_notes(self.make("--data", "data.json"))
        self.assertEqual(TEXTS, properties(self.read("out.xml")))

    def test_raw_texts(self):
        result = self.make("--raw", "--set", "A=&#8364;", "--set", "B=AT&T")
        self.expect_notes(result, '"B": with --raw a plain "&" is lost; write "&amp;"')
        self.assertEqual("€", properties(self.read("out.xml"))["A"])

    def test_standard_output_has_the_bytes_of_the_file(self):
        self.write_json("data.json", TEXTS)
        self.expect_done(self.make("--data", "data.json", *TYPED))
        result = self.make("--data", "data.json", *TYPED, output="-")
        self.expect_done(result)
        self.assertEqual(self.read("out.xml"), result.out)
        self.assertEqual(["data.json", "out.xml"], self.names())

    def test_quiet(self):
        result = self.make("--set", "A=1", "-q")
        self.assertEqual((0, b"", ""), (result.code, result.out, result.err))

    def test_nothing_is_left_in_the_temporary_folder(self):
        temporary_files = WindowsTemporaryFiles()
        self.assertEqual({"A": "1"}, properties(self.make("--set", "A=1", output="-").out))
        temporary_files.expect_no_new_one()

    def test_a_missing_folder(self):
        result = self.make("--set", "A=1", output="missing/out.xml")
        self.assertIn(result.code, (1, 4), result)
        self.assertEqual((b"", 1), (result.out, len(result.messages)), result)
        self.assertEqual([], self.names())

    def test_a_folder_in_the_place_of_the_file(self):
        self.write("out.xml/file", "kept")
        before = self.contents()
        result = self.make("--set", "A=1")
        self.assertIn(result.code, (1, 4), result)
        self.assertEqual((b"", 1), (result.out, len(result.messages)), result)
        self.assertEqual(before, self.contents())

    @linux_only
    def test_a_pipe_is_not_replaced(self):
        self.expect_pipe_stays()

    @linux_only
    def test_a_folder_that_may_not_be_written(self):
        self.write("locked/out.xml", "older")
        (self.folder / "locked").chmod(0o555)
        self.addCleanup((self.folder / "locked").chmod, 0o755)
        result = self.make("--set", "A=1", output="locked/out.xml", prefix=unprivileged())
        self.assertIn(result.code, (1, 4, 5), result)
        self.assertEqual((b"", 1), (result.out, len(result.messages)), result)
        self.assertEqual(b"older", self.read("locked/out.xml"))


class WindowsTemporaryFiles:
    """The temporary files of all rgen processes under Wine; none on Linux, where each case has its
    own temporary folder."""

    def __init__(self):
        self.before = self._files()

    @staticmethod
    def _files():
        if not ON_WINDOWS or not LAUNCHER:
            return set()
        users = Path(LAUNCHER[-1]) / "drive_c/users"
        return {path for folder in ("Temp", "AppData/Local/Temp")
                for path in users.glob(f"*/{folder}/*") if "rgen" in path.name}

    def expect_no_new_one(self):
        """New files may belong to other cases that run at the same time; those disappear later."""
        for path in self._files() - self.before:
            wait_for(path, is_gone=True)


class Simulate(FileCase):
    command = "simulate"

    def test_types_and_hints(self):
        result = self.make(*TYPED)
        self.expect_done(result)
        self.assertEqual(["rgen: out.xml: 9 values"], result.messages)
        nodes = {node.get("name"): node for node in
                 ET.fromstring(self.read("out.xml")).iter("property")}
        self.assertEqual({name: node.get("type") for name, node in nodes.items()},
                         {"Text": "string", "Bytes": "byte_array",
                          **dict.fromkeys(("Int", "Size", "Speed", "Address", "Time", "Date",
                                           "Both"), "int64")})
        self.assertEqual({name: node.get("hint") for name, node in nodes.items()},
                         {"Text": "Generic", "Int": "Generic", "Size": "Size", "Speed": "Speed",
                          "Address": "Address", "Time": "Time", "Date": "Date",
                          "Both": "DateTime", "Bytes": "Dump"})

    def test_a_report_from_simulated_input_is_the_direct_one(self):
        self.write_json("data.json", TEXTS)
        self.write_json("large.json", {"Long": "ä&<" * 20_000, "Minus:size": -1})
        given = ["--data", "data.json", "--data", "large.json", *TYPED]
        self.expect_notes(self.make(*given))
        direct = self.values(*given)
        self.assertEqual(direct, self.values("--data", "out.xml"))
        self.assertEqual({**TEXTS, **SHOWN}, {name: text for name, text in direct.items()
                                              if name not in ("Long", "Minus")})

    def test_simulated_input_of_simulated_input(self):
        self.write_json("data.json", TEXTS)
        self.expect_done(self.make("--data", "data.json", *TYPED))
        self.expect_done(self.make("--data", "out.xml", output="again.xml"))
        self.assertEqual(self.read("out.xml"), self.read("again.xml"))

    def test_ampersands(self):
        self.write_json("data.json", TEXTS)
        self.expect_done(self.make("--data", "data.json"))
        self.assertEqual(TEXTS, self.values("--data", "out.xml"))

    def test_what_cannot_be_carried(self):
        result = self.make("--set", "Name= x ", "--set", "Empty=", "--set", "Good=1")
        self.expect_done(result)
        self.assertEqual({'"Name": simulated input carries "x" instead of " x "',
                          '"Empty": simulated input carries no value without a text'},
                         set(result.notes))
        self.assertEqual({"Name": "x", "Good": "1"}, self.values("--data", "out.xml"))

    def test_standard_output_has_the_bytes_of_the_file(self):
        self.expect_done(self.make(*TYPED))
        expected = self.read("out.xml")
        (self.folder / "out.xml").unlink()
        result = self.make(*TYPED, output="-")
        self.expect_output_alone(result)
        self.assertEqual(expected, result.out)

    def test_nothing_is_left_in_the_temporary_folder(self):
        temporary_files = WindowsTemporaryFiles()
        result = self.make("--set", "A=ж", "-q", output="-")
        self.assertEqual((0, "", {"A": "ж"}), (result.code, result.err, properties(result.out)))
        temporary_files.expect_no_new_one()

    def test_raw_texts(self):
        self.expect_done(self.make("--raw", "--set", "A=&#8364;&amp;"))
        self.assertEqual({"A": "€&"}, self.values("--data", "out.xml"))

    def test_skipped_properties_of_the_input_are_named(self):
        self.write("sim.xml", simulated_input(("A", "string", "Generic", "x"),
                                              ("Bad.One", "int64", "Siez", "1"),
                                              ("Bad.Two", "int64", "Siez", "1")))
        result = self.make("--data", "sim.xml")
        self.expect_notes(
            result, "sim.xml: 2 properties are skipped by the library: Bad.One, Bad.Two")
        self.assertEqual(["rgen: out.xml: 1 value"], result.messages)

    @linux_only
    def test_a_pipe_is_not_replaced(self):
        self.expect_pipe_stays()

    def test_an_older_file_is_replaced(self):
        self.write("out.xml", "older" * 10_000)
        self.expect_done(self.make("--set", "A=1"))
        self.assertEqual({"A": "1"}, properties(self.read("out.xml")))

    def test_a_missing_folder(self):
        result = self.make("--set", "A=1", output="missing/out.xml")
        self.assertIn(result.code, (1, 4), result)
        self.assertEqual((b"", 1), (result.out, len(result.messages)), result)
        self.assertNotIn("missing", self.names())

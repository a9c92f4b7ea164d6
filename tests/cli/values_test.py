"""Values from the command line: hints, pairs, precedence, "&", the table of all values.

SPDX-License-Identifier: MIT
"""

from cli_case import ON_WINDOWS, CliCase

# The longest tested argument; the command line of Windows has at most 32 k characters.
LONG_ARGUMENT = 20_000 if ON_WINDOWS else 100_000


def settings(*values):
    """The options --set for some values."""
    return [word for value in values for word in ("--set", value)]


class Hints(CliCase):

    def expect_texts(self, rows):
        """Rows of name, rest of the argument and text in the report; one report shows all."""
        given = settings(*(name + value for name, value, _ in rows))
        self.assertEqual({name: text for name, _, text in rows}, self.values(*given))

    def test_texts(self):
        self.expect_texts([
            ("Plain", "=a text", "a text"),
            ("Hinted", ":text=x", "x"),
            ("Upper", ":TEXT=x", "x"),
            ("At", "=@case", "@case"),
            ("Equals", "=a=b=c", "a=b=c"),
            ("Colon", "=a:b:size=1", "a:b:size=1"),
            ("a:b", ":text=with a colon", "with a colon"),
            ("Looks", "=007", "007"),
            ("Quoted", '=say "a\\b"', 'say "a\\b"'),
            ("Tag", "=<b>&amp;</b>", "<b>&amp;</b>"),
            ("Brackets", "=[a, b]", "[a, b]"),
            ("Braces", '={"a": [1, 2]}', '{"a": [1, 2]}'),
            ("Comma", "=a,b;c", "a,b;c"),
            ("Dash", "=--set", "--set"),
            ("Blanks", "=  x  ", "  x  "),
            ("Lines", "=a\nb", "a\nb"),
            ("Empty", "=", ""),
            ("[0]", "=x", "x"),
        ])

    def test_numbers(self):
        self.expect_texts([
            ("Int", ":int=-12", "-12"),
            ("Hex", ":int=0x1F", "31"),
            ("Generic", ":Generic=5", "5"),
            ("Most", ":int=9223372036854775807", "9223372036854775807"),
            ("Least", ":int=-9223372036854775808", "-9223372036854775808"),
            ("Size", ":size=500107862016", "500107862016"),
            ("Speed", ":SPEED=0x10", "16"),
            ("Address", ":address=0x4A817C800", "0x4a817c800"),
            ("Decimal", ":address=31", "0x1f"),
            ("Half", ":address=0x8000000000000000", "0x8000000000000000"),
            ("Last", ":address=0xffffffffffffffff", "0xffffffffffffffff"),
        ])

    def test_times(self):
        # EST5EDT is UTC-5, in summer UTC-4; summer time begins on 8 March 2026.
        self.expect_texts([
            ("Time", ":time=2026-03-09T08:14:07Z", "04:14:07"),
            ("Date", ":date=2026-03-09T08:14:07Z", " 9.03.2026"),
            ("Both", ":datetime=2026-03-09T08:14:07Z", " 9.03.2026 04:14:07"),
            ("East", ":datetime=2026-03-09T08:14:07+01:00", " 9.03.2026 03:14:07"),
            ("West", ":datetime=2026-03-09T08:14:07-02:30", " 9.03.2026 06:44:07"),
            ("Winter", ":datetime=2026-01-15T12:00:00Z", "15.01.2026 07:00:00"),
            ("Local", ":datetime=2026-03-09T08:14:07", " 9.03.2026 08:14:07"),
            ("LocalWinter", ":datetime=2026-01-15T08:14:07", "15.01.2026 08:14:07"),
            ("Day", ":date=2026-03-09", " 9.03.2026"),
            ("Midnight", ":datetime=2026-03-09", " 9.03.2026 00:00:00"),
            ("Leap", ":date=2024-02-29", "29.02.2024"),
            ("Seconds", ":datetime=1773044047", " 9.03.2026 04:14:07"),
            ("Zero", ":datetime=0", "31.12.1969 19:00:00"),
        ])

    def test_now(self):
        text = self.values("--set", "Now:datetime=now")["Now"]
        self.assertRegex(text, r"^[ 123]\d\.\d\d\.20\d\d \d\d:\d\d:\d\d$")

    def test_bytes(self):
        self.write("sub folder/a file.bin", b"\x00\xff\r\n\x1a")
        self.expect_texts([
            ("Spaced", ":bytes=01 AB FF", "01 AB FF "),
            ("Dense", ":bytes=01abFF", "01 AB FF "),
            ("Colons", ":bytes=00:1a:2B", "00 1A 2B "),
            ("Prefixed", ":bytes=0x01, 0xAB, 0xFF", "01 AB FF "),
            ("Dump", ":Dump=00", "00 "),
            ("File", ":bytes=@sub folder/a file.bin", "00 FF 0D 0A 1A "),
        ])

    def test_names_and_texts_in_any_script(self):
        self.expect_texts([
            ("Gerät", "=Größe 12 µm", "Größe 12 µm"),
            ("Устройство", "=Диск №1", "Диск №1"),
            ("Smile", "=\U0001f600 漢字", "\U0001f600 漢字"),
        ])

    def test_a_long_argument(self):
        text = "ä" + "x" * (LONG_ARGUMENT - 10)
        self.assertEqual({"Long": text}, self.values("--set", f"Long={text}"))


class Precedence(CliCase):

    def test_the_last_setting_counts_and_is_noted(self):
        result = self.report("--set", "A=1", "--set", "B=x", "--set", "A=2")
        self.expect_notes(result, '"A" is given more than once; --set counts')
        self.assertEqual({"A": "2", "B": "x"}, self.listed(self.read("report.txt")))

    def test_settings_win_over_data_and_data_files_over_earlier_ones(self):
        self.write_json("one.json", {"A": "one", "B": "one", "C": "one"})
        self.write_json("two.json", {"B": "two", "C": "two"})
        result = self.report("--set", "C=set", "--data", "one.json", "--data", "two.json")
        self.expect_done(result)
        self.assertEqual({"A": "one", "B": "two", "C": "set"},
                         self.listed(self.read("report.txt")))
        self.assertEqual({'"B" is given more than once; two.json counts',
                          '"C" is given more than once; --set counts'}, set(result.notes))

    def test_values_win_over_pairs_and_pairs_over_persistent_data(self):
        self.expect_done(self.rgen("persist", "set", "-d", "case", "A=p", "B=p", "C=p"))
        values = self.values("--pair", "B=pair", "--pair", "C=pair", "--set", "C=set")
        self.assertEqual({"A": "p", "B": "pair", "C": "set"}, values)

    def test_of_two_pairs_the_last_counts(self):
        result = self.report("--pair", "A=1", "--pair", "A=2")
        self.expect_notes(result, '"A" is given more than once; --pair counts')
        self.assertEqual({"A": "2"}, self.listed(self.read("report.txt")))

    def test_the_name_of_a_pair_may_hold_a_colon(self):
        self.assertEqual({"a:size": "no number"}, self.values("--pair", "a:size=no number"))

    def test_quiet_has_no_notes(self):
        result = self.report("--set", "A=1", "--set", "A=2", "-q")
        self.assertEqual((0, "", b""), (result.code, result.err, result.out))


class Ampersands(CliCase):
    texts = {"A": "AT&T", "B": "a & b", "C": "&amp;", "D": "&#8364;", "E": "<&>"}

    def test_through_settings(self):
        given = settings(*(f"{name}={text}" for name, text in self.texts.items()))
        self.assertEqual(self.texts, self.values(*given))

    def test_through_pairs(self):
        given = [word for name, text in self.texts.items()
                 for word in ("--pair", f"{name}={text}")]
        self.assertEqual(self.texts, self.values(*given))

    def test_through_a_data_file(self):
        self.write_json("data.json", self.texts)
        self.assertEqual(self.texts, self.values("--data", "data.json"))

    def test_raw_texts_are_xml_content(self):
        values = self.values("--raw", *settings("Euro=&#8364;", "And=AT&amp;T", "Less=a<b"))
        self.assertEqual({"Euro": "€", "And": "AT&T", "Less": "a<b"}, values)

    def test_raw_texts_that_lose_something_are_noted(self):
        result = self.report("--raw", "--set", "A=AT&T", "--set", "B=AT&amp;T", "--pair", "C=a & b")
        self.expect_done(result)
        self.assertEqual({f'"{name}": with --raw a plain "&" is lost; write "&amp;"'
                          for name in "AC"}, set(result.notes))
        self.assertNotIn("AT&T", self.listed(self.read("report.txt"))["A"])

    def test_names_are_no_xml_content(self):
        self.assertEqual({"A&B": "x", "C&amp;D": "y"}, self.values("--set", "A&B=x",
                                                                   "--set", "C&amp;D=y"))


class ShownData(CliCase):
    has_data_dir = True

    def setUp(self):
        super().setUp()
        self.write_json("data.json", {"File": "from file", "Both": "lost"})
        self.given = ["--data", "data.json", "--pair", "Pair=from pair", "--set", "Both=kept",
                      "--set", "Size:size=12", "--set", "B:bytes=01AB", "--show-data"]
        self.expect_done(self.rgen("persist", "set", "-d", "case", "Lab=from store"))

    def expect_table(self, table):
        rows = [("File", "data.json", "from file"), ("Pair", "--pair", "from pair"),
                ("Both", "--set", "kept"), ("Size", "--set", "12"), ("B", "--set", "01 AB")]
        for name, source, text in rows:
            line = next(line for line in table.splitlines() if line.startswith(name + " "))
            self.assertIn(source, line)
            self.assertIn(text, line)
        self.assertRegex(table, "(?m)^Size .*size.*12")
        self.assertRegex(table, "(?m)^Lab .*from store")
        self.assertNotIn("lost", table)

    def test_the_table_is_on_standard_output(self):
        result = self.report(*self.given)
        self.expect_done(result)
        self.expect_table(result.text)

    def test_beside_the_report_it_is_on_standard_error(self):
        result = self.report("-f", "txt", *self.given, output="-")
        self.expect_done(result)
        self.expect_table(result.err)
        self.assertEqual({"Both", "File", "Pair", "Size", "B", "Lab"},
                         set(self.listed(result.out)))

    def test_it_is_in_the_document(self):
        result = self.report(*self.given, "--json")
        rows = {row["name"]: row for row in result.document["data"]}
        self.assertEqual({"name": "Size", "source": "--set", "hint": "size", "text": "12"},
                         rows["Size"])
        self.assertEqual({"name": "B", "source": "--set", "hint": "bytes", "text": "01 AB "},
                         rows["B"])
        self.assertEqual(("data.json", "from file"), (rows["File"]["source"], rows["File"]["text"]))
        self.assertEqual("from store", rows["Lab"]["text"])

    def test_times_of_the_steps(self):
        result = self.report("--set", "A=1", "--timing")
        self.expect_done(result)
        self.assertEqual(b"", result.out)
        for step in ("input", "generate", "verify", "total"):
            self.assertRegex(result.err, rf"(?m)^.*\b{step}\b.*\d")

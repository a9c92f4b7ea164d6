"""Rare conditions: ambiguous arguments, closed outputs, limits of size and time.

SPDX-License-Identifier: MIT
"""

import os
import subprocess

from cli_case import PROGRAM, CliCase, linux_only
from cli_templates import LISTING, catalogue, marked

STORE = "case/.rgen/acquisition_data.xml"
TOO_LONG = "x" * 10_500_000


class Words(CliCase):

    def test_operands_that_are_named_like_commands(self):
        self.expect_done(self.rgen("persist", "set", "-d", "case", "report=1", "types=2", "A=3"))
        self.assertEqual("1\n", self.rgen("persist", "get", "-d", "case", "report").text)
        self.expect_done(self.rgen("persist", "unset", "-d", "case", "A", "types"))
        self.assertEqual("report=1\n", self.rgen("persist", "get", "-d", "case").text)
        self.expect_done(self.rgen("init", "report"))
        self.assertIn("report/.rgen/config.xml", self.names())
        self.assertEqual(2, self.rgen("explain", "dump").code)

    def test_no_folder_and_no_file(self):
        self.expect_error(self.rgen("init", ""), 2,
                          'rgen init: DIR is missing; "rgen init --help" shows examples')

    @linux_only
    def test_arguments_that_are_not_utf8(self):
        self.expect_error(self.rgen("report", "-o", os.fsdecode(b"\xff.txt")), 2,
                          "rgen: an argument is not valid UTF-8; write it in UTF-8")

    def test_an_unknown_letter_suggests_nothing(self):
        self.expect_error(self.rgen("report", "-x"), 2,
                          'rgen report: there is no option "-x"; "rgen report --help" lists the '
                          "options")

    @linux_only
    def test_names_of_types_are_no_commands_for_the_shell(self):
        self.make_data_dir("evil", types=[("$(touch ran) x.xsl", "1" * 8 + "-1111-1111-1111-"
                                           + "1" * 12, "a.xml")], templates={})
        script = self.write("completion.bash", self.rgen("completion", "bash").text)
        driver = ('source "$1"; COMP_WORDS=("$2" report -d evil -t ""); COMP_CWORD=5; _rgen; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        offered = subprocess.run(["bash", "-c", driver, "bash", script, PROGRAM], check=True,
                                 cwd=self.folder, capture_output=True, text=True,
                                 env=self.environment({"PATH": "/usr/bin:/bin"})).stdout
        self.assertEqual("\\$\\(touch\\ ran\\)\\ x\n", offered)
        self.assertNotIn("ran", self.names())


class Languages(CliCase):

    def test_a_shared_catalogue_of_a_language_with_a_region(self):
        self.put_template(marked("Name"))
        self.write("case/.rgen/translations/pt-BR.po", catalogue({"Name": "Nome"}))
        self.expect_done(self.report("--set", "A=1", "--lang", "pt-BR"))
        self.assertEqual("Nome", self.text_of("report.txt").strip())
        self.assertEqual(["pt-BR"],
                         self.rgen("types", "-d", "case", "--json").document["types"][0]["languages"])


class Outputs(CliCase):

    def test_nobody_reads(self):
        """Every command that prints ends without a message, as other tools do."""
        given = ["-d", "case", "--set", "A=1"]
        for arguments in (["explain"], ["explain", "--json"], ["--help"], ["report", "--help"],
                          ["--version"], ["types", "-d", "case"], ["doctor", "-d", "case"],
                          ["completion", "bash"], ["persist", "get", "-d", "case"],
                          ["init", "new", "-q"], ["report", *given, "-f", "txt", "-o", "-"],
                          ["report", *given, "-o", "report.txt", "--json", "-q"],
                          ["report", *given, "-o", "report.txt", "--show-data"],
                          ["dump", "--set", "A=1", "-o", "-"],
                          ["simulate", "--set", "A=1", "-o", "-"]):
            with self.subTest(arguments=arguments):
                self.write(STORE, '<data><properties><property name="A">1</property>'
                           "</properties></data>")
                reading, writing = os.pipe()
                os.close(reading)
                result = self.start(*arguments, stdout=writing).finish()
                self.assertEqual((141, ""), (result.code, result.err))

    @linux_only
    def test_standard_output_that_is_full(self):
        for arguments in (["explain"], ["explain", "--json"], ["--help"], ["types", "-d", "case"],
                          ["completion", "bash"]):
            with self.subTest(arguments=arguments):
                full = os.open("/dev/full", os.O_WRONLY)
                result = self.start(*arguments, stdout=full).finish()
                self.assertEqual((4, ["rgen: cannot write standard output: No space left on "
                                      "device; check where it leads to"]),
                                 (result.code, result.messages))

    @linux_only
    def test_streams_that_are_closed(self):
        """No opened file may get their descriptor: output must not be written into a report."""
        closed = ["/bin/sh", "-c", 'exec "$0" "$@" <&- >&- 2>&-']
        self.assertEqual(0, self.report("--set", "A=1", prefix=closed).code)
        self.assertEqual(b"[A=1]\n", self.read("report.txt"))
        self.assertEqual(4, self.rgen("explain", prefix=closed).code)

    @linux_only
    def test_a_failure_that_nobody_reads_keeps_its_code(self):
        full = os.open("/dev/full", os.O_WRONLY)
        result = self.start("types", "-d", "nowhere", "--json", stdout=full).finish()
        self.assertEqual(5, result.code, result)

    @linux_only
    def test_the_rights_of_an_older_report_stay(self):
        self.write("report.txt", "older").chmod(0o600)
        self.expect_done(self.report("--set", "A=1"))
        self.assertEqual(0o600, (self.folder / "report.txt").stat().st_mode & 0o777)

    def test_a_name_as_long_as_they_may_be(self):
        output = "r" * 240 + ".txt"
        self.expect_done(self.report("--set", "A=1", output=output))
        self.assertEqual(b"[A=1]\n", self.read(output))

    def test_the_document_of_a_failure_has_the_data_that_was_shown(self):
        self.put_template("no stylesheet")
        result = self.report("--set", "A=1", "--show-data", "--json")
        self.assertEqual(1, result.code, result)
        self.assertEqual((False, ["A"]), (result.document["ok"],
                                          [row["name"] for row in result.document["data"]]))

    @linux_only
    def test_no_folder_for_temporary_files(self):
        lost = {"TMPDIR": str(self.folder / "nowhere")}
        self.expect_done(self.rgen("dump", "-o", "dump.xml", "--set", "A=1", env=lost))
        self.expect_error_like(self.rgen("dump", "-o", "-", "--set", "A=1", env=lost), 5,
                               "^rgen: cannot make a temporary folder: .+; check the folder that "
                               "TMPDIR names$")
        result = self.rgen("doctor", env=lost)
        self.assertEqual(5, result.code, result)
        self.assertIn("FAIL  report: ", result.text)


class Sizes(CliCase):

    def test_a_text_too_long_to_be_kept_leaves_the_old_data(self):
        self.expect_done(self.rgen("persist", "set", "-d", "case", "A=1"))
        before = self.read(STORE)
        self.write_json("data.json", {"B": TOO_LONG})
        result = self.rgen("persist", "set", "-d", "case", "--data", "data.json")
        self.assertEqual(2, result.code, result)
        self.assertIn("of 10000000 bytes", result.err)
        self.assertEqual(before, self.read(STORE))
        self.assertNotIn(STORE + ".kept", self.names())

    def test_a_text_too_long_for_simulated_input(self):
        self.write_json("data.json", {"A": "1", "B": TOO_LONG, "C": "3"})
        result = self.rgen("simulate", "-o", "sim.xml", "--data", "data.json")
        self.assertEqual(4, result.code, result)
        self.assertIn("simulated input cannot carry", result.err)
        self.assertNotIn("sim.xml", self.names())

    def test_all_texts_are_shown_however_long_one_is(self):
        self.write_json("data.json", {"A": "1", "B": TOO_LONG, "C": "3"})
        result = self.report("--data", "data.json", "--show-data", "--json")
        self.expect_done(result)
        self.assertEqual(["1", TOO_LONG, "3"], [row["text"] for row in result.document["data"]])

    def test_times_that_the_library_cannot_show(self):
        for text in ("1955-03-02", "-1", "32535216000", "9999-01-01T00:00:00Z"):
            with self.subTest(text=text):
                self.expect_error(self.report("--set", f"A:date={text}"), 2,
                                  f'rgen: --set "A:date={text}": "{text}" cannot be shown as a '
                                  "time; the library shows times from 1970 to 3000")
        self.expect_done(self.report("--set", "A:date=32535215999"))

    def test_numbers_beyond_all_limits(self):
        self.write("data.json", '{"A": 1e400}')
        self.expect_error_like(self.report("--data", "data.json"), 2,
                               r"^rgen: data\.json:1:\d+: not JSON: number overflow")
        self.write("batch.ndjson", '{"output": "a.txt", "set": {"A": 1e400}}\n')
        result = self.rgen("report", "-d", "case", "--batch", "batch.ndjson")
        self.assertEqual(1, result.code, result)
        self.assertIn("rgen: batch.ndjson:1:38: not JSON: number overflow", result.err)

    def test_unsigned_addresses_whatever_the_case_of_the_hint(self):
        self.write("data.json", '{"A:Address": 18446744073709551615}')
        self.assertEqual({"A": "0xffffffffffffffff"}, self.values("--data", "data.json"))

    def test_a_message_stays_one_line(self):
        result = self.report("--set", "A:int=x\ny" + "z" * 3000)
        self.assertEqual(2, result.code, result)
        self.assertEqual(1, len(result.messages), result)
        self.assertLess(len(result.messages[0]), 300)


class Persistence(CliCase):

    def test_a_name_with_blanks_changes_the_value_of_the_trimmed_name(self):
        self.expect_done(self.rgen("persist", "set", "-d", "case", "A=old"))
        result = self.rgen("persist", "set", "-d", "case", " A=new")
        self.expect_notes(result, '" A": the library stored it as "A"')
        self.assertEqual("A=new\n", self.rgen("persist", "get", "-d", "case").text)

    def test_the_data_of_a_run_that_was_killed_comes_back(self):
        note = "an earlier run was ended while it wrote; its old data was put back"
        self.expect_done(self.rgen("persist", "set", "-d", "case", "A=old"))
        old = self.read(STORE)
        for rest in (None, b"<data><prop"):
            with self.subTest(rest=rest):
                self.write(STORE + ".kept", old)
                (self.folder / STORE).unlink()
                if rest is not None:
                    self.write(STORE, rest)
                self.expect_notes(self.rgen("persist", "set", "-d", "case", "B=new"), note)
                self.assertEqual("A=old\nB=new\n", self.rgen("persist", "get", "-d", "case").text)
                self.assertNotIn(STORE + ".kept", self.names())

    def test_the_new_data_of_a_run_that_was_killed_late_stays(self):
        self.expect_done(self.rgen("persist", "set", "-d", "case", "A=old"))
        self.write(STORE + ".kept", self.read(STORE))
        self.expect_done(self.rgen("persist", "replace", "-d", "case", "B=new"))
        self.write(STORE + ".kept", b"<data/>")
        self.expect_notes(self.rgen("persist", "set", "-d", "case", "C=3"))
        self.assertEqual("B=new\nC=3\n", self.rgen("persist", "get", "-d", "case").text)
        self.assertNotIn(STORE + ".kept", self.names())

    def test_a_type_that_the_configuration_lacks(self):
        result = self.rgen("persist", "get", "-d", "case", "-t",
                           "99999999-9999-9999-9999-999999999999")
        self.assertEqual(1, result.code, result)
        self.assertIn("RGEN_E_GUID_NOT_IN_CONFIG", result.err)

    def test_a_damaged_file_is_noticed_by_report_and_doctor(self):
        self.put_template(LISTING)
        self.write(STORE, '<data><properties><property name="A">1</property><property name="B">2')
        result = self.report("--set", "C=3")
        self.expect_done(result)
        self.assertIn("is damaged", "".join(result.notes))
        doctor = self.rgen("doctor", "-d", "case")
        self.assertRegex(doctor.text, r"(?m)^FAIL .*persistent data: .* is damaged: line 1")


class Batches(CliCase):

    def batch(self, *lines):
        self.write("batch.ndjson", "".join(line + "\n" for line in lines))
        return self.rgen("report", "-d", "case", "--batch", "batch.ndjson")

    def test_of_two_values_of_one_name_the_later_counts(self):
        result = self.batch('{"output": "a.txt", "set": {"A:text": "old", "A": "new"}}')
        self.expect_notes(result, 'batch.ndjson:1: "A" is given more than once; "set" counts')
        self.assertEqual(b"[A=new]\n", self.read("a.txt"))

    def test_one_file_under_two_names(self):
        result = self.batch('{"output": "a.txt", "set": {"A": 1}}',
                            '{"output": "./a.txt", "set": {"A": 2}}')
        self.assertEqual(1, result.code, result)
        self.assertIn("an earlier line writes the same file", result.err)
        self.assertEqual(b"[A=1]\n", self.read("a.txt"))

    def test_standard_input_cannot_be_the_data_of_many(self):
        self.write("batch.ndjson", "")
        self.expect_error(self.rgen("report", "-d", "case", "--batch", "batch.ndjson", "--data",
                                    "-"), 2,
                          "rgen report: --data - and --batch exclude each other; the lines of the "
                          "batch say it")

"""Help, misspelt commands and options, arguments that cannot be used.

SPDX-License-Identifier: MIT
"""

from cli_case import NO_SUCH_FILE, CliCase
from cli_templates import GUID, LISTING, OTHER_GUID

COMMANDS = [["init"], ["report"], ["persist"], ["persist", "get"], ["persist", "set"],
            ["persist", "unset"], ["persist", "replace"], ["dump"], ["simulate"], ["explain"],
            ["types"], ["doctor"], ["completion"], ["messages"], ["bundle"], ["check"], ["new"],
            ["test"], ["preview"]]

# The options in the help of each command.
OPTIONS = {
    "init": ["--sample"],
    "report": ["--data-dir", "--type", "--set", "--pair", "--data", "--raw", "--output",
               "--format", "--lang", "--mode", "--base", "--no-convert", "--show-data",
               "--timing", "--batch", "--timezone"],
    "messages": ["--data-dir", "--type", "--output", "--merge", "--lang", "--check"],
    "bundle": ["--data-dir", "--output", "--parts", "--check"],
    "persist get": ["--data-dir", "--type"],
    "persist set": ["--data-dir", "--type", "--data", "--raw"],
    "persist unset": ["--data-dir", "--type"],
    "persist replace": ["--data-dir", "--type", "--data", "--raw"],
    "dump": ["--output", "--set", "--data", "--raw"],
    "simulate": ["--output", "--set", "--data", "--raw"],
    "test": ["--data-dir", "--type", "--accept", "--junit"],
    "types": ["--data-dir"],
    "doctor": ["--data-dir"],
}

SHOWS_COMMANDS = '"rgen --help" lists the commands'


class Help(CliCase):
    has_data_dir = False

    def test_every_command_has_help_with_its_options(self):
        for command in COMMANDS:
            name = " ".join(command)
            with self.subTest(command=name):
                result = self.rgen(*command, "--help")
                self.assertEqual((0, ""), (result.code, result.err))
                # "persist" alone is not a command, it has four of them.
                common = [] if name == "persist" else ["--json", "--quiet"]
                for option in ["--help", *common, *OPTIONS.get(name, [])]:
                    self.assertIn(option, result.text)
                self.assertIn(f"rgen {name}", result.text)

    def test_help_has_examples(self):
        for command in COMMANDS:
            with self.subTest(command=" ".join(command)):
                self.assertRegex(self.rgen(*command, "-h").text, "(?i)example")

    def test_the_main_help_lists_the_commands(self):
        result = self.rgen("--help")
        self.assertEqual((0, ""), (result.code, result.err))
        for command in COMMANDS:
            self.assertIn(command[0], result.text)
        self.assertEqual(result.text, self.rgen("-h").text)

    def test_the_help_as_a_document(self):
        document = self.rgen("--help", "--json").document
        self.assertTrue(document["ok"])
        listed = {command["name"]: command for command in document["commands"]}
        self.assertEqual({"", *(" ".join(command) for command in COMMANDS)}, set(listed))
        for name, options in OPTIONS.items():
            self.assertLessEqual({"--help", *options},
                                 {option["names"][-1] for option in listed[name]["options"]})
        self.assertEqual(["persist", "persist get", "persist set", "persist unset",
                          "persist replace"],
                         [command["name"] for command in
                          self.rgen("persist", "--json", "-h").document["commands"]])

    def test_no_arguments_give_the_help_as_an_error(self):
        result = self.rgen()
        self.assertEqual((2, b""), (result.code, result.out))
        self.assertEqual(self.rgen("--help").text.rstrip(), result.err.rstrip())

    def test_help_does_not_need_what_the_command_needs(self):
        self.expect_done(self.rgen("report", "--help"))
        self.expect_done(self.rgen("init", "--help"))


class MisspeltWords(CliCase):
    has_data_dir = False

    def expect_rows(self, rows):
        for arguments, message in rows:
            with self.subTest(arguments=arguments):
                self.expect_error(self.rgen(*arguments), 2, message)

    def test_commands(self):
        self.expect_rows([
            (["reprot"], 'rgen: there is no command "reprot"; did you mean "report"?'),
            (["xyzzy"], f'rgen: there is no command "xyzzy"; {SHOWS_COMMANDS}'),
            (["persist", "gett"], 'rgen persist: there is no command "gett"; did you mean "get"?'),
            (["completion", "bsh"],
             'rgen completion: there is no shell "bsh"; did you mean "bash"?'),
        ])

    def test_options(self):
        self.expect_rows([
            (["report", "--fromat", "html"],
             'rgen report: there is no option "--fromat"; did you mean "--format"?'),
            (["report", "--zzzz"],
             'rgen report: there is no option "--zzzz"; "rgen report --help" lists the options'),
            (["persist", "set", "--dta", "x.json", "A=1"],
             'rgen persist set: there is no option "--dta"; did you mean "--data"?'),
        ])

    def test_formats_and_modes(self):
        self.expect_rows([
            (["report", "-o", "a.html", "-f", "htm"],
             'rgen report: there is no format "htm"; did you mean "html"?'),
            (["report", "-o", "a.html", "--mode", "byte"],
             'rgen report: there is no mode "byte"; did you mean "bytes"?'),
        ])

    def test_hints(self):
        self.expect_rows([
            (["dump", "-o", "a.xml", "--set", "Size:siez=1"],
             'rgen: --set "Size:siez=1": there is no hint "siez"; did you mean "size"? (a name '
             'with a colon is followed by its hint: "Size:siez:text=...")'),
        ])

    def test_statuses(self):
        self.expect_rows([
            (["explain", "XSLT_APLY"],
             'rgen explain: there is no status "XSLT_APLY"; did you mean "RGEN_E_XSLT_APPLY"?'),
            (["explain", "nonsense"],
             'rgen explain: there is no status "nonsense"; "rgen explain" lists all of them'),
        ])


class MissingAndSurplus(CliCase):

    def expect_rows(self, rows):
        before = self.contents()
        for arguments, message in rows:
            with self.subTest(arguments=arguments):
                self.expect_error(self.rgen(*arguments), 2, message)
        self.assertEqual(before, self.contents())

    def test_a_missing_value(self):
        for name in ("--output", "-o"):
            self.expect_rows([(
                ["report", "-d", "case", name],
                'rgen report: --output needs a value; "rgen report --help" shows examples')])

    def test_missing_options_and_arguments(self):
        self.expect_rows([
            (["report", "-d", "case"],
             'rgen report: --output is missing; "rgen report --help" shows examples'),
            (["dump", "--set", "A=1"],
             'rgen dump: --output is missing; "rgen dump --help" shows examples'),
            (["simulate", "--set", "A=1"],
             'rgen simulate: --output is missing; "rgen simulate --help" shows examples'),
            (["persist", "unset", "-d", "case"],
             'rgen persist unset: NAME is missing; "rgen persist unset --help" shows examples'),
            (["persist", "set", "-d", "case"],
             'rgen persist set: NAME=VALUE is missing; "rgen persist set --help" shows examples'),
            (["persist", "replace", "-d", "case"],
             'rgen persist replace: NAME=VALUE is missing; "rgen persist replace --help" shows '
             'examples'),
            (["init"], 'rgen init: DIR is missing; "rgen init --help" shows examples'),
            (["completion"],
             'rgen completion: SHELL is missing; "rgen completion --help" shows examples'),
        ])

    def test_persist_alone_is_not_enough(self):
        result = self.rgen("persist")
        self.assertEqual((2, b""), (result.code, result.out))
        self.assertIn("rgen persist: a command is missing", result.err)

    def test_surplus_arguments(self):
        self.expect_rows([
            (["report", "-d", "case", "-o", "a.html", "stray"],
             'rgen report: "stray" is not expected; "rgen report --help" shows what is'),
            (["types", "-d", "case", "stray"],
             'rgen types: "stray" is not expected; "rgen types --help" shows what is'),
        ])

    def test_a_format_that_the_ending_does_not_tell(self):
        for output in ("report.doc", "report", "-", "html"):
            self.expect_rows([(
                ["report", "-d", "case", "--set", "A=1", "-o", output],
                f'rgen report: the format of "{output}" is not known from its ending; give '
                "--format html, pdf or txt")])

    def test_the_report_and_the_document_cannot_share_standard_output(self):
        result = self.report("-f", "txt", "--json", "--set", "A=1", output="-")
        self.assertEqual(2, result.code, result)
        self.assertEqual(['rgen report: --json and --output - exclude each other; the report '
                          "itself is on standard output"], result.messages)


class BadValues(CliCase):
    has_data_dir = False

    def test_values_that_cannot_be_read(self):
        rows = {
            "abc": "NAME=VALUE is expected",
            "Size:size=12x": '"12x" is not a whole number',
            "Size:size=": '"" is not a whole number',
            "Size:int=1.5": '"1.5" is not a whole number',
            "Size:size=99999999999999999999":
                '"99999999999999999999" does not fit into 64 bits',
            "N:int=9223372036854775808": '"9223372036854775808" does not fit into 64 bits',
            "N:speed=-9223372036854775809": '"-9223372036854775809" does not fit into 64 bits',
            "A:address=0x10000000000000000":
                '"0x10000000000000000" does not fit into 64 bits',
            "T:datetime=yesterday": '"yesterday" is not a time; write seconds since 1970, '
                                    "2026-03-09T08:14:07Z or now",
            "T:date=2026-02-30": '"2026-02-30": there is no 30 February 2026; correct the date',
            "T:date=2027-02-29T10:00:00Z": '"2027-02-29T10:00:00Z": there is no 29 February 2027; '
                                           "correct the date",
            "T:date=2026-13-01": '"2026-13-01": there is no month 13; correct the date',
            "T:datetime=1769000000.5": '"1769000000.5" is not a time; write whole seconds, or '
                                       "2026-03-09T08:14:07Z",
            "S:size=500 GB": '"500 GB" is not a whole number; write bytes: 500000000000',
            "S:size=1.5TiB": '"1.5TiB" is not a whole number; write bytes: 1649267441664',
            "S:size=0.3 B": '"0.3 B" is not a whole number',
            "T:time=2026-03-09T25:00:00Z": '"2026-03-09T25:00:00Z" is not a time; write seconds '
                                           "since 1970, 2026-03-09T08:14:07Z or now",
            "B:bytes=0G": '"0G" is no byte dump; write 01 AB FF, 01:AB:FF or 01ABFF',
            "B:bytes=012": '"012" is no byte dump; write 01 AB FF, 01:AB:FF or 01ABFF',
        }
        for value, reason in rows.items():
            with self.subTest(value=value):
                self.expect_error(self.rgen("dump", "-o", "a.xml", "--set", value), 2,
                                  f'rgen: --set "{value}": {reason}')
        self.assertEqual([], self.names())

    def test_a_file_of_bytes_that_is_missing(self):
        self.expect_error_like(
            self.rgen("dump", "-o", "a.xml", "--set", "B:bytes=@missing.bin"), 2,
            f'^rgen: .*cannot read "missing.bin": {NO_SUCH_FILE}; check the path behind @$')


class ReportTypes(CliCase):

    def report_of(self, data_dir, *args):
        return self.rgen("report", "-d", data_dir, "-o", "a.txt", "--set", "A=1", *args)

    def test_names_that_do_not_exist(self):
        rows = {"acquisiton": 'did you mean "acquisition"?',
                "xyzzy": '"rgen types" lists them'}
        for name, advice in rows.items():
            with self.subTest(name=name):
                self.expect_error(self.report_of("case", "-t", name), 2,
                                  f'rgen: there is no report type "{name}" in '
                                  f'"case/.rgen/config.xml"; {advice}')

    def test_a_name_that_two_types_have(self):
        self.make_data_dir("twins", types=[("twin.xsl", GUID, "a.xml"),
                                           ("twin.xslt", OTHER_GUID, "b.xml")],
                           templates={"txt/twin.xslt": LISTING})
        self.expect_error(self.report_of("twins", "-t", "twin"), 2,
                          'rgen: "twin" names 2 report types in "twins/.rgen/config.xml": '
                          f"twin.xsl ({GUID}), twin.xslt ({OTHER_GUID}); give the GUID")
        self.expect_done(self.report_of("twins", "-t", OTHER_GUID))

    def test_a_choice_that_must_be_made(self):
        self.make_data_dir("two", types=[("alpha.xsl", GUID, "a.xml"),
                                         ("beta.xsl", OTHER_GUID, "b.xml")],
                           templates={"txt/beta.xsl": LISTING})
        self.expect_error(self.report_of("two"), 2,
                          'rgen: "two/.rgen/config.xml" has 2 report types; choose one with '
                          "--type: alpha, beta")
        self.expect_done(self.report_of("two", "-t", "beta"))

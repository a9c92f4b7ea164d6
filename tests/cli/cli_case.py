"""What the suites share: a folder for each case, a started rgen and its results.

The target comes from the environment: besides the variables that program_case.py lists,

RGEN_CLI_CONVERTER  the folder of the stand-in converter
RGEN_CLI_EXAMPLE    the demo host in C; may be missing
RGEN_CLI_KILL_POINT and RGEN_CLI_NO_LOCKS  libraries to be loaded into rgen; may be missing

SPDX-License-Identifier: MIT
"""

import json
import os
import re
import shutil
from pathlib import Path

import cli_templates
from program_case import (IS_A_FOLDER, LAUNCHER, NO_ACCESS, NO_SUCH_FILE, ON_WINDOWS, PROGRAM,
                          SOURCE_FOLDER, ProgramCase, Result, from_native, linux_only, native,
                          search_path, unprivileged, wait_for, windows_only, with_small_files)

CONVERTER_FOLDER = Path(os.environ["RGEN_CLI_CONVERTER"]).resolve()
EXAMPLE = os.environ.get("RGEN_CLI_EXAMPLE")


class CliResult(Result):
    """How a run of rgen ended."""

    @property
    def document(self):
        return json.loads(self.text)

    @property
    def notes(self):
        start = "rgen: note: "
        return [line[len(start):] for line in self.err.splitlines() if line.startswith(start)]

    @property
    def messages(self):
        return [line for line in self.err.splitlines() if not line.startswith("rgen: note: ")]


class CliCase(ProgramCase):
    """A case whose folder holds the data directory "case", unless has_data_dir is false."""

    has_data_dir = True
    result_type = CliResult

    def setUp(self):
        super().setUp()
        if self.has_data_dir:
            self.make_data_dir()

    # ---- Starting programs ----------------------------------------------------------------------

    def start(self, *args, program=PROGRAM, **settings):
        return super().start(*args, program=program, **settings)

    def rgen(self, *args, **settings):
        """Runs rgen to its end; env holds changes of the environment, stdin bytes."""
        return self.start(*args, **settings).finish()

    def report(self, *args, output="report.txt", **settings):
        return self.rgen("report", "-d", "case", "-o", output, *args, **settings)

    def values(self, *args, **settings):
        """The values of a report as the template sees them."""
        result = self.rgen("report", "-d", "case", "-o", "-", "-f", "txt", *args, **settings)
        self.assertEqual(0, result.code, result)
        return self.listed(result.out)

    @staticmethod
    def listed(report):
        """The names and texts of a report that the listing template made."""
        return dict(re.findall(r"\[(.*?)=(.*?)\]\n", report.decode("utf-8"), re.S))

    # ---- Files ----------------------------------------------------------------------------------

    def write_json(self, name, value):
        return self.write(name, json.dumps(value, ensure_ascii=False))

    def make_data_dir(self, name="case", types=None, templates=None):
        """Makes a data directory; templates are given as "FORMAT/FILE": text."""
        self.write(f"{name}/.rgen/config.xml", cli_templates.configuration(
            types or [("acquisition.xsl", cli_templates.GUID, "acquisition_data.xml")]))
        for path, text in (templates or {"txt/acquisition.xsl": cli_templates.LISTING,
                                         "html/acquisition.xsl": cli_templates.PAGE,
                                         "pdf/acquisition.xsl": cli_templates.PAGE}).items():
            self.write(f"{name}/.rgen/templates/{path}", text)

    def put_template(self, text, format_name="txt"):
        self.write(f"case/.rgen/templates/{format_name}/acquisition.xsl", text)

    # ---- Expectations ---------------------------------------------------------------------------

    def expect_done(self, result):
        self.assertEqual(0, result.code, result)
        self.expect_plain(result.err)

    def expect_error(self, result, code, message, *diagnosis):
        """One line says what is wrong, the diagnosis of a template may follow, nothing is on
        standard output, no colour."""
        self.assertEqual(([message, *diagnosis], code, b""),
                         (result.messages, result.code, result.out))
        self.expect_plain(result.err)

    def expect_error_like(self, result, code, pattern):
        self.assertEqual(1, len(result.messages), result)
        self.assertRegex(result.messages[0], pattern)
        self.assertEqual((code, b""), (result.code, result.out))
        self.expect_plain(result.err)

    def expect_notes(self, result, *notes):
        self.expect_done(result)
        self.assertEqual(list(notes), result.notes)


class PersistCase(CliCase):
    """A case about persistent data."""

    def persist(self, command, *args, **settings):
        return self.rgen("persist", command, "-d", "case", *args, **settings)

    def store(self, *values):
        self.expect_done(self.persist("replace", *values))

    def stored(self):
        result = self.persist("get", "--json")
        self.assertEqual(0, result.code, result)
        return result.document["values"]


def copy_program(folder):
    """Copies rgen with its library into a folder; returns the program's path."""
    folder.mkdir(parents=True)
    for path in PROGRAM.parent.iterdir():
        if path.is_file() and (path == PROGRAM or "strata_repgenlib" in path.name):
            shutil.copy(path, folder / path.name)
    return folder / PROGRAM.name


def read_terminal(terminal, shown):
    """Collects what is written until the last program has closed the other end."""
    try:
        while chunk := os.read(terminal, 65536):
            shown.append(chunk)
    except OSError:
        return


def converter_name():
    return "vellum.exe" if ON_WINDOWS else "vellum"

"""Pdf reports with the stand-in converter, which waits until the case creates a file.

SPDX-License-Identifier: MIT
"""

import re
import shlex

from cli_case import CONVERTER_FOLDER, ON_WINDOWS, CliCase, from_native, search_path, wait_for

WHOLE_PDF = b"%PDF-1.7\n1 0 obj\n<<>>\nendobj\ntrailer\n<<>>\n%%EOF\n"


class Conversion:
    """A started rgen whose converter waits."""

    def __init__(self, case, running, number):
        self.case = case
        self.running = running
        self.number = number
        log = case.folder / f"started {number}.log"
        wait_for(log, running)
        self.arguments = self._arguments(log.read_text(encoding="utf-8"))

    @staticmethod
    def _arguments(log):
        """The arguments after the program name."""
        if not ON_WINDOWS:
            return re.findall(r"^argument\t(.*)$", log, re.M)[1:]
        line = re.search(r"^command-line\t(.*)$", log.replace("\r", ""), re.M).group(1)
        return shlex.split(line.replace("\\", "\\\\"))[1:]

    def option(self, name):
        return self.arguments[self.arguments.index(name) + 1]

    @property
    def page(self):
        """The file that the converter is to read."""
        return from_native(self.option("-i"), self.case.folder)

    @property
    def output(self):
        """The file that the converter is to write."""
        return from_native(self.option("-o"), self.case.folder)

    def release(self):
        """Lets the converter continue, and waits for its last step."""
        (self.case.folder / f"go {self.number}").touch()
        wait_for(self.case.folder / f"end {self.number}")

    def finish(self, content=None, error=None):
        """Writes the output of the converter and lets all programs end."""
        if content is not None:
            self.output.write_bytes(content)
        if error is not None:
            self.output.with_name(self.output.name + ".error.txt").write_bytes(error)
        self.release()
        result = self.running.finish()
        self.case.remove_traces(self.number)
        return result


class ConversionCase(CliCase):
    """Cases whose rgen finds the stand-in converter."""

    def setUp(self):
        super().setUp()
        self.started = 0

    def converter_environment(self, *commands):
        self.write("converter.control", "".join("\t".join(words) + "\n" for words in commands))
        return {**search_path(CONVERTER_FOLDER), "STAND_IN_CONTROL": "converter.control"}

    def waiting_converter(self, number):
        """The converter records how it was started, waits, and marks its end."""
        return self.converter_environment(
            ("log", f"started {number}.log"), ("await", f"go {number}"), ("mark", f"end {number}"))

    def convert(self, *args, output="report.pdf", more=None, **settings):
        """Starts a pdf report, or a batch if output is None, and waits for its converter."""
        self.started += 1
        number = self.started
        chosen = ["-o", output] if output else []
        running = self.start("report", "-d", "case", *chosen, *args,
                             env={**self.waiting_converter(number), **(more or {})}, **settings)
        self.addCleanup((self.folder / f"go {number}").touch)
        return Conversion(self, running, number)

    def remove_traces(self, number):
        for name in (f"started {number}.log", f"go {number}", f"end {number}",
                     "converter.control"):
            (self.folder / name).unlink(missing_ok=True)

"""A folder with a data directory and a generator for each case of the Python package.

RGEN_BINDINGS_LIBRARY     the main library; the host library is next to it
RGEN_BINDINGS_BUILD       the build folder, for the wheel, which takes the licences from an installation
RGEN_BINDINGS_COMPILER    the C compiler
RGEN_BINDINGS_CONVERTER   the folder of the stand-in converter
RGEN_BINDINGS_HOSTS       the example hosts in C and C++, separated by colons; empty when not built
RGEN_BINDINGS_LAUNCHER    the words in front of their command

SPDX-License-Identifier: MIT
"""

import os
import tempfile
import time
import unittest
from pathlib import Path
from unittest import mock

from strata_repgenlib import Generator, Request

ROOT = Path(__file__).resolve().parents[3]
LIBRARY = os.environ["RGEN_BINDINGS_LIBRARY"]
COMPILER = os.environ["RGEN_BINDINGS_COMPILER"]
CONVERTER = os.environ["RGEN_BINDINGS_CONVERTER"]

TYPE = "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9"
CONFIG = (f'<config><reportTypes><type guid="{TYPE}"><persistDataFile>data.xml</persistDataFile>'
          '<reportTypeFile>report.xsl</reportTypeFile></type></reportTypes></config>')


def value_of(name):
    return f"<xsl:value-of select=\"/data/properties/property[@name='{name}']\"/>"


def marked(text):
    return f'QT_TRANSLATE_NOOP("QObject", "{text}")'


class BindingCase(unittest.TestCase):
    """The template of html and pdf shows the value "v" between brackets."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="rgen binding \u00e4 ")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        (self.folder / ".rgen").mkdir()
        (self.folder / ".rgen/config.xml").write_text(CONFIG)
        for report_format in ("html", "pdf"):
            self.put_template("[" + value_of("v") + "]", report_format)
        self.own = Generator(self.folder, library=LIBRARY)
        self.addCleanup(self.own.close)

    def put_template(self, body, report_format="html"):
        path = self.folder / ".rgen/templates" / report_format / "report.xsl"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text('<xsl:stylesheet version="1.0" '
                        'xmlns:xsl="http://www.w3.org/1999/XSL/Transform">'
                        '<xsl:output method="text" encoding="UTF-8"/>'
                        f'<xsl:template match="/">{body}</xsl:template></xsl:stylesheet>',
                        encoding="utf-8")

    def report_of(self, value):
        return self.own.generate_bytes(Request(TYPE, "html", {"v": value})).decode()

    def use_converter(self, *commands):
        """The stand-in converter obeys these commands, each a word and its arguments."""
        control = self.folder / "control"
        control.write_text("".join("\t".join(map(str, command)) + "\n" for command in commands))
        path = CONVERTER + os.pathsep + os.environ["PATH"]
        patch = mock.patch.dict(os.environ, {"PATH": path, "STAND_IN_CONTROL": str(control)})
        patch.start()
        self.addCleanup(patch.stop)

    def wait_for(self, path):
        limit = time.monotonic() + 60
        while not path.exists():
            self.assertLess(time.monotonic(), limit, f"{path.name} never came")
            time.sleep(0.01)

    def park_converter(self, *then):
        """The stand-in converter makes the file that is returned, and waits until it is released or
        the case ends."""
        started = self.folder / "started"
        self.addCleanup(self.release_converter)
        self.use_converter(("mark", started), ("await", self.folder / "released"), *then)
        return started

    def release_converter(self):
        (self.folder / "released").write_text("")


def descriptors():
    return sorted(os.listdir("/proc/self/fd"))

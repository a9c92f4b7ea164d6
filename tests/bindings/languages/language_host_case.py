"""What the suites of the hosts in C# and Rust share: a folder with a data directory, templates, and
a converter that does what the case says.

The surroundings come from the environment:

RGEN_BINDING_LIBRARY     the host library, beside which the report library is
RGEN_BINDING_CONVERTER   the folder of the stand-in for the converter

SPDX-License-Identifier: MIT
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
LIBRARY_FOLDER = Path(os.environ["RGEN_BINDING_LIBRARY"]).resolve().parent
CONVERTER_FOLDER = Path(os.environ["RGEN_BINDING_CONVERTER"]).resolve()
# Bounds every run; far above what a working program needs.
LONGEST_RUN = 120

sys.path.insert(0, str(ROOT / "tests" / "cli"))

import cli_templates  # It is in the folder that was added.

WHOLE_PDF = b"%PDF-1.7\n1 0 obj\n<<>>\nendobj\ntrailer\n<<>>\n%%EOF\n"
TYPE = "deadbabe-0000-0000-0000-000000000000"
# Not in the configuration, and without a template.
OTHER_TYPE = cli_templates.OTHER_GUID
LISTING = cli_templates.stylesheet(
    'QT_TRANSLATE_NOOP("QObject", "Values")&#10;QT_TRANSLATE_NOOP("QObject", "End")&#10;'
    + cli_templates.each_property(
        "<xsl:value-of select=\"concat('[', @name, '=', ., ']&#10;')\"/>"))
CONFIGURATION = cli_templates.configuration([
    ("listing.xsl", TYPE, "persistent.xml"),
    ("none.xsl", "11111111-2222-3333-4444-555555555555", "persistent.xml"),
    ("attribute.xsl", "22222222-3333-4444-5555-666666666666", "persistent.xml")])
# The marked text is in an attribute, between single quotes.
ATTRIBUTE = cli_templates.stylesheet(
    "<p lang='QT_TRANSLATE_NOOP(\"QObject\", \"en\")'/>", "html")
CONVERSIONS = {
    "whole": [("copy", "whole.bin", "whole.pdf")],
    "missing": [("write", "missing.pdf.error.txt", "no engine is there")],
    "broken": [("write", "broken.pdf", "%PDF-1.7 and no end")],
    "noted": [("copy", "whole.bin", "noted.pdf"),
              ("write", "noted.pdf.error.txt", "a page about a failure")],
    "waiting": [("log", "started.log"), ("await", "go")],
}


class BindingCase(unittest.TestCase):
    """A case with a folder of its own, which is the current folder of the host."""

    maxDiff = 4000

    def setUp(self):
        base = Path(tempfile.mkdtemp(prefix="host Größe и слово "))
        self.addCleanup(shutil.rmtree, base)
        self.folder = base / "work"
        templates = self.folder / "data" / ".rgen" / "templates"
        for name in ("txt", "html", "pdf"):
            (templates / name).mkdir(parents=True)
        (templates / "txt" / "listing.xsl").write_text(LISTING, encoding="utf-8")
        (templates / "txt" / "attribute.xsl").write_text(ATTRIBUTE, encoding="utf-8")
        for name in ("html", "pdf"):
            (templates / name / "listing.xsl").write_text(cli_templates.PAGE, encoding="utf-8")
        (self.folder / "data" / ".rgen" / "config.xml").write_text(CONFIGURATION, encoding="utf-8")
        (self.folder / "whole.bin").write_bytes(WHOLE_PDF)
        (self.folder / "simulated.xml").write_text(cli_templates.simulated_input(
            ("Text", "string", "Generic", "a &amp; b"), ("Number", "int64", "Size", "12"),
            ("Bytes", "byte_array", "Dump", "0x01, 0xAB")), encoding="utf-8")

    def run_host(self, command, conversion=None, search_path=None):
        """Runs a host; it has to end with code 0 and the line "fine"."""
        env = {"PATH": str(search_path or CONVERTER_FOLDER), "TZ": "EST5EDT", "LC_ALL": "C.UTF-8",
               "LD_LIBRARY_PATH": str(LIBRARY_FOLDER), "HOME": str(self.folder)}
        if conversion:
            control = self.folder / "converter.control"
            control.write_text("".join("\t".join(words) + "\n"
                                       for words in CONVERSIONS[conversion]), encoding="utf-8")
            env["STAND_IN_CONTROL"] = control.name
        outcome = subprocess.run([str(word) for word in command], cwd=self.folder, env=env,
                                 stdin=subprocess.DEVNULL, capture_output=True, text=True,
                                 timeout=LONGEST_RUN, check=False)
        said = outcome.stdout + outcome.stderr
        self.assertEqual((0, "fine"), (outcome.returncode, said.strip().split("\n")[-1]), said)
        return said

    def unprivileged(self):
        """What starts a program that the rights of files bind, even for root."""
        if os.geteuid() != 0:
            return []
        rights = "-dac_override,-dac_read_search"
        return [shutil.which("setpriv"), f"--bounding-set={rights}"]


def readme_code(language):
    """The program text in the README of a language."""
    readme = (ROOT / "bindings" / language / "README.md").read_text(encoding="utf-8")
    return re.search(rf"^```{language}\n(.*?)^```$", readme, re.M | re.S).group(1)


class HostCases:
    """The cases that each host has, by the names that it knows them by."""

    def test_statuses_have_names_and_texts(self):
        self.run_case("statuses")

    def test_values_and_pairs(self):
        self.run_case("values")

    def test_a_wrong_value_is_named(self):
        self.run_case("wrongValues")

    def test_objects_and_lists(self):
        self.run_case("nested")

    def test_texts_come_out_as_they_went_in(self):
        self.run_case("escaping")

    def test_file_and_bytes_are_the_same(self):
        self.run_case("outputs")

    def test_delete_on_close_file(self):
        self.run_case("openFile")

    def test_translator(self):
        self.run_case("translation")

    def test_what_a_translator_throws_leaves_the_call(self):
        self.run_case("throwingTranslator")

    def test_a_translator_that_calls_its_own_generator(self):
        self.run_case("reentered")

    def test_failures(self):
        self.run_case("failures")

    def test_what_the_system_refuses_does_not_end_the_host(self):
        shutil.copytree(self.folder / "data", self.folder / "hidden")
        shutil.copytree(self.folder / "data", self.folder / "sealed")
        (self.folder / "closed").mkdir()
        for name in ("closed", "hidden/.rgen", "sealed/.rgen/templates"):
            (self.folder / name).chmod(0)
            self.addCleanup(os.chmod, self.folder / name, 0o700)
        self.make_odd_data_directories()
        self.run_case("refusals", self.unprivileged())

    def make_odd_data_directories(self):
        """Data directories that are none, links in a circle, and a link to a good one."""
        for name in ("file", "fifo", "link", "circle", "circled configuration"):
            (self.folder / f"with {name}").mkdir()
        for name in ("circled template", "circled data", "long template"):
            shutil.copytree(self.folder / "data", self.folder / f"with {name}")
        (self.folder / "with file" / ".rgen").touch()
        os.mkfifo(self.folder / "with fifo" / ".rgen")
        (self.folder / "with link" / ".rgen").symlink_to("nowhere")
        (self.folder / "with circle" / ".rgen").symlink_to(".rgen")
        (self.folder / "with circled configuration" / ".rgen").mkdir()
        (self.folder / "with circled configuration" / ".rgen" / "config.xml").symlink_to(
            "config.xml")
        (self.folder / "circle.txt").symlink_to("circle.txt")
        template = self.folder / "with circled template" / ".rgen/templates/txt/listing.xsl"
        template.unlink()
        template.symlink_to(template.name)
        persistent = self.folder / "with circled data" / ".rgen/persistent.xml"
        persistent.symlink_to(persistent.name)
        configuration = self.folder / "with long template" / ".rgen/config.xml"
        configuration.write_text(CONFIGURATION.replace("listing.xsl", "t" * 300 + ".xsl"),
                                 encoding="utf-8")
        (self.folder / "linked").mkdir()
        (self.folder / "linked" / ".rgen").symlink_to("../data/.rgen")

    def test_persistent_data_comes_back(self):
        self.run_case("persistentData")

    def test_persistent_texts_that_the_library_would_cut(self):
        self.run_case("persistentLimits")

    def test_dump_and_simulated_input(self):
        self.run_case("dumpAndSimulation")

    def test_nothing_is_left_behind(self):
        self.run_case("memory")

    def test_threads(self):
        self.run_case("threads")

    def test_jobs(self):
        self.run_case("jobs")

    def test_a_host_ends_although_it_never_freed_its_generator(self):
        self.run_case("abandonedGenerator")

    def test_a_job_uses_the_translator_of_its_start(self):
        self.run_case("jobTranslators")

    def test_whole_pdf(self):
        self.run_case("wholePdf", conversion="whole")

    def test_missing_pdf(self):
        self.run_case("missingPdf", conversion="missing")

    def test_broken_pdf(self):
        self.run_case("brokenPdf", conversion="broken")

    def test_pdf_about_a_failure(self):
        self.run_case("notedPdf", conversion="noted")

    def test_pdf_where_an_earlier_one_failed(self):
        self.run_case("notedBefore", conversion="whole")

    def test_no_converter(self):
        self.run_case("noConverter", search_path=self.folder)

    def test_cancelled_and_disposed_while_the_converter_runs(self):
        self.addCleanup((self.folder / "go").touch)
        self.run_case("cancellation", conversion="waiting")

    def test_a_job_is_cancelled_alone(self):
        self.addCleanup((self.folder / "go").touch)
        self.run_case("cancelledJob", conversion="waiting")


CASE_NAMES = set(re.findall(r'run_case\("(\w+)"', Path(__file__).read_text(encoding="utf-8")))

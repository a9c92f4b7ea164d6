"""Ctrl-C during a conversion and in a batch.

The stand-in converter says that it runs, then the case interrupts rgen; under Wine the signal
becomes a Ctrl-C of the console.

SPDX-License-Identifier: MIT
"""

import json
import os
import signal
import time

from cli_case import linux_only, wait_for
from cli_converter import WHOLE_PDF, ConversionCase
from cli_templates import stylesheet
from program_case import LONGEST_WAIT


# Creates a marker file, then counts for longer than any test waits.
ENDLESS = stylesheet(
    '<xsl:document href="running" method="text">x</xsl:document>'
    + '<xsl:for-each select="//property">' * 6 + '<xsl:if test="position() = 0">x</xsl:if>'
    + "</xsl:for-each>" * 6)


STUCK = "rgen: a template runs and cannot be interrupted; once more ends rgen"


def wait_for_message(running, message):
    """Waits until the program has written it to standard error."""
    limit = time.monotonic() + LONGEST_WAIT
    while message.encode() not in os.pread(running.err.fileno(), 65536, 0):
        if running.process.poll() is not None or time.monotonic() > limit:
            raise AssertionError(f"no message: {running.finish()}")
        time.sleep(0.002)


class Interruption(ConversionCase):

    def interrupt(self, conversion):
        """Interrupts; the removed page tells the converter to end, and rgen waits for it."""
        page = conversion.page
        self.assertTrue(page.exists())
        conversion.running.interrupt()
        wait_for(page, conversion.running, is_gone=True)
        conversion.release()
        result = conversion.running.finish()
        self.remove_traces(conversion.number)
        return result

    def test_a_conversion(self):
        self.write("report.pdf", "older")
        before = self.contents()
        result = self.interrupt(self.convert("--set", "A=1"))
        self.expect_error(result, 130, "rgen: interrupted")
        self.assertEqual(before, self.contents())

    def test_a_conversion_without_an_older_report(self):
        before = self.contents()
        result = self.interrupt(self.convert("--set", "A=1", "--quiet"))
        self.assertEqual(130, result.code, result)
        self.assertEqual(before, self.contents())

    def test_a_converter_that_had_begun_its_file(self):
        self.write("report.pdf", "older")
        before = self.contents()
        conversion = self.convert("--set", "A=1")
        conversion.output.write_bytes(WHOLE_PDF[:-10])
        result = self.interrupt(conversion)
        self.assertEqual(130, result.code, result)
        self.assertEqual(before, self.contents())

    def test_the_document_says_it(self):
        result = self.interrupt(self.convert("--set", "A=1", "--json"))
        self.assertEqual(130, result.code, result)
        self.assertEqual((False, 130), (result.document["ok"],
                                        result.document["error"]["exitCode"]))

    def test_a_batch(self):
        self.write("second.pdf", "older")
        lines = [{"output": "first.txt"}, {"output": "second.pdf"}, {"output": "third.txt"}]
        self.write("batch.ndjson", "".join(json.dumps(line) + "\n" for line in lines))
        before = self.contents()
        given = ("--set", "A=1", "--batch", "batch.ndjson")
        result = self.interrupt(self.convert(*given, output=None))
        self.assertEqual((130, b""), (result.code, result.out), result)
        self.assertEqual(["rgen: 1 of 3 done, 1 interrupted, 1 not begun",
                          "rgen: interrupted"], result.messages)
        after = self.contents()
        self.assertEqual(b"[A=1]\n", after.pop("first.txt"))
        self.assertEqual(before, after)

    def test_the_document_of_a_batch_counts_what_was_not_begun(self):
        self.write("batch.ndjson", "".join(
            json.dumps({"output": f"{number}." + ("pdf" if number == 2 else "txt")}) + "\n"
            for number in range(1, 8)))
        result = self.interrupt(self.convert("--set", "A=1", "--batch", "batch.ndjson", "--json",
                                             output=None))
        document = result.document
        self.assertEqual((130, False, 1, 0, 5), (result.code, document["ok"], document["done"],
                                                 document["failed"], document["notBegun"]))

    def start_endless(self):
        """Starts a report whose template runs for longer than any test."""
        self.put_template(ENDLESS)
        self.write("report.txt", "older")
        self.write_json("data.json", {f"Name {number}": "x" for number in range(1000)})
        before = self.contents()
        running = self.start("report", "-d", "case", "-o", "report.txt", "--data", "data.json")
        wait_for(self.folder / "running", running)
        return running, before

    def expect_only(self, before, result):
        self.assertEqual((130, b""), (result.code, result.out), result)
        (self.folder / "running").unlink()
        self.assertEqual(before, self.contents())

    def test_a_template_cannot_be_interrupted_and_the_first_interrupt_says_so(self):
        running, before = self.start_endless()
        running.interrupt()
        wait_for_message(running, STUCK)
        result = running.interrupt_until_it_ends()
        self.expect_only(before, result)
        self.assertEqual([STUCK, "rgen: interrupted"], result.messages)

    @linux_only
    def test_a_request_to_end_ends_a_template_at_once(self):
        for name in (signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=name):
                running, before = self.start_endless()
                running.process.send_signal(name)
                result = running.finish()
                self.expect_only(before, result)
                self.assertEqual(["rgen: interrupted"], result.messages)

    def test_other_runs_are_not_concerned(self):
        waiting = self.convert("--set", "A=1")
        result = self.interrupt(self.convert("--set", "A=1", output="other.pdf"))
        self.assertEqual(130, result.code, result)
        self.expect_done(waiting.finish(WHOLE_PDF))
        self.assertEqual(WHOLE_PDF, self.read("report.pdf"))


@linux_only
class PipesThatNobodyEmpties(ConversionCase):
    """The first interrupt ends a run whose reader or writer at the other end does nothing."""

    def setUp(self):
        super().setUp()
        self.write_json("large.json", {"A": "x" * 1_000_000})

    def expect_end(self, running, reader):
        """The run has begun to write and cannot finish."""
        self.assertEqual(b"[", os.read(reader, 1))
        running.interrupt()
        result = running.finish()
        self.assertEqual((130, 1), (result.code, result.err.count("interrupted")), result)
        os.close(reader)

    def test_standard_output(self):
        reader, writer = os.pipe()
        running = self.start("report", "-d", "case", "-f", "txt", "-o", "-", "--data", "large.json",
                             stdout=writer)
        self.expect_end(running, reader)

    def pipe(self):
        os.mkfifo(self.folder / "pipe")
        self.addCleanup((self.folder / "pipe").unlink)

    def test_a_pipe_with_a_name(self):
        self.pipe()
        running = self.start("report", "-d", "case", "-f", "txt", "-o", "pipe", "--mode", "bytes",
                             "--data", "large.json")
        self.expect_end(running, os.open(self.folder / "pipe", os.O_RDONLY))

    def test_a_line_of_a_batch(self):
        self.pipe()
        self.write("batch.ndjson", json.dumps({"output": "pipe", "mode": "bytes"}) + "\n")
        running = self.start("report", "-d", "case", "-f", "txt", "--batch", "batch.ndjson",
                             "--data", "large.json")
        self.expect_end(running, os.open(self.folder / "pipe", os.O_RDONLY))

    def test_data_of_a_batch(self):
        self.pipe()
        self.write("batch.ndjson", '{"output": "a.txt", "data": "pipe"}\n')
        running = self.start("report", "-d", "case", "--batch", "batch.ndjson")
        writer = os.open(self.folder / "pipe", os.O_WRONLY)
        running.interrupt()
        result = running.finish()
        self.assertEqual((130, b""), (result.code, result.out), result)
        os.close(writer)
        self.assertNotIn("a.txt", self.names())

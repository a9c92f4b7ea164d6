"""A kill, a signal, a deleted page or a timeout at each point of a conversion: an interposer library
(LD_PRELOAD) makes it happen before each system call in turn.

RGEN_VELLUM_INTERPOSER  that library (interposer_posix.cpp), if the build supports it

SPDX-License-Identifier: MIT
"""

import os
import unittest
from pathlib import Path

from vellum_case import OLD, PAGE, VellumCase

INTERPOSER = os.environ.get("RGEN_VELLUM_INTERPOSER")
# A conversion makes more system calls than this.
LEAST_CALLS = 25


@unittest.skipUnless(INTERPOSER, "LD_PRELOAD needs Linux and a build without a sanitizer")
class MomentCase(VellumCase):

    def run_with(self, does, at, does_engine="pdf", **settings):
        """Runs a conversion; returns its result and the calls before the event."""
        self.write("report.pdf", OLD)
        log = self.base_folder / "calls"
        log.unlink(missing_ok=True)
        result = self.convert(does=does_engine, env={
            "LD_PRELOAD": str(Path(INTERPOSER).resolve()), "INTERPOSER_DOES": does, "INTERPOSER_AT": str(at),
            "INTERPOSER_PAGE": str(self.folder / "page.html"), "INTERPOSER_LOG": str(log)}, **settings)
        calls = log.read_text().splitlines() if log.exists() else []
        for path in self.logs.iterdir():
            path.unlink()
        return result, calls

    def each_moment(self, does, expect):
        """Makes it happen before each call, until a run has fewer calls; `expect` checks each result."""
        at = 0
        while True:
            at += 1
            result, calls = self.run_with(does, at)
            if len(calls) < at:
                self.assertGreater(at, LEAST_CALLS)
                self.expect_pdf()
                return
            with self.subTest(at=at, call=calls[at - 1]):
                expect(result, calls, at)


class Killed(MomentCase):

    def test_nothing_is_left(self):
        def expect(result, *_):
            self.assertEqual(-9, result.code)
            self.expect_no_processes()
            self.assertEqual(["page.html", "report.pdf"], self.names())
            self.assertEqual([], list(self.system_temp.iterdir()))

        self.each_moment("kill", expect)


class KilledWithChildren(MomentCase):

    def test_no_process_is_left(self):
        """By themselves, the engine and its child would run longer than the case waits for their end."""
        for at in range(1, LEAST_CALLS):
            result, _ = self.run_with("kill", at, does_engine="child")
            self.assertEqual(-9, result.code)
            self.expect_no_processes()
            self.assertEqual([], list(self.system_temp.iterdir()))


class Cancelled(MomentCase):

    def expect_no_delivery(self, does, *codes):
        """After the last check, a cancellation is too late: only the renaming follows."""
        def expect(result, calls, at):
            self.assertNotIn("delivered", calls)
            if result.code == 0:
                names = [call.split()[1] for call in calls]
                self.assertIn("rename", names[:at])
            else:
                self.assertIn(result.code, codes)
                self.assertEqual(OLD, self.read("report.pdf"))
                self.assertNotIn("report.pdf.error.txt", self.names())
            self.expect_no_processes()
            self.assertEqual([], list(self.system_temp.iterdir()))

        self.each_moment(does, expect)

    def test_the_page_disappears(self):
        self.expect_no_delivery("remove", 3, 8)

    def test_a_signal(self):
        self.expect_no_delivery("signal", 8)


class Late(MomentCase):

    def test_before_the_engine(self):
        """The time limit counts from the start of the program."""
        page = PAGE + "<!---->" * 50_000
        for at in range(2, 15):
            result, calls = self.run_with("late", at, page=page)
            self.assertEqual(at, len(calls))
            self.assertEqual(6, result.code, result)
            self.assertIn("the work on the page was still busy after", result.err)
            self.assertFalse(self.engine_ran)
            self.assertEqual(OLD, self.read("report.pdf"))

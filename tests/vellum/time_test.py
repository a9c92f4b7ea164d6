"""Engines that do not end: the deadline, a page that disappears (which cancels), signals.

No case measures time. An engine that hangs is there until it is ended, or ends itself long after
the case has given up.

SPDX-License-Identifier: MIT
"""

import signal

from program_case import linux_only
from vellum_case import ENGINE, OLD, STAND_IN, VellumCase

BUSY = f"{ENGINE} was still busy after 1 s; set VELLUM_TIMEOUT to give it more time"


class Deadline(VellumCase):

    def expect_time_up(self, does):
        self.write("report.pdf", OLD)
        result = self.convert(does=does, env={"VELLUM_TIMEOUT": "1"})
        self.expect_error(result, 6, BUSY)
        self.expect_no_processes()
        self.assertEqual(f"vellum: {BUSY}\n", self.error_text())
        self.assertEqual(OLD, self.read("report.pdf"))
        self.assertEqual(["page.html", "report.pdf", "report.pdf.error.txt"], self.names())

    def test_an_engine_that_hangs(self):
        self.expect_time_up("hang")

    def test_an_engine_with_a_child(self):
        self.expect_time_up("child")

    def test_an_engine_that_hangs_in_the_middle_of_its_file(self):
        self.expect_time_up("stuck")

    def test_values_that_are_no_time(self):
        for text in ("", "0", "-5", "soon", "999999999999999999999"):
            with self.subTest(text=text):
                self.expect_done(self.convert(env={"VELLUM_TIMEOUT": text}))

    def test_the_next_conversion_is_not_concerned(self):
        self.expect_time_up("hang")
        self.expect_done(self.convert())
        self.assertEqual(["page.html", "report.pdf"], self.names())


class Lingering(VellumCase):

    def test_a_complete_pdf_is_delivered(self):
        self.write("report.pdf.error.txt", "vellum: something older\n")
        self.expect_done(self.convert(does="linger"))
        self.expect_no_processes()
        self.expect_pdf()
        self.assertEqual(["page.html", "report.pdf"], self.names())


class Cancellation(VellumCase):

    def start_hanging(self, does="hang", waits_for="hangs"):
        self.write("report.pdf", OLD)
        running = self.start_conversion(does=does)
        self.wait_until_it_hangs(running, waits_for)
        return running

    def expect_cancelled(self, result, *names):
        self.expect_error(result, 8, "cancelled")
        self.expect_no_processes()
        self.assertEqual(OLD, self.read("report.pdf"))
        self.assertEqual([*names, "report.pdf"], self.names())

    def test_the_page_disappears(self):
        running = self.start_hanging()
        (self.folder / "page.html").unlink()
        self.expect_cancelled(running.finish())

    def test_the_page_is_renamed(self):
        running = self.start_hanging()
        (self.folder / "page.html").rename(self.folder / "other.html")
        self.expect_cancelled(running.finish(), "other.html")

    def test_a_file_that_was_begun(self):
        running = self.start_hanging("stuck")
        (self.folder / "page.html").unlink()
        self.expect_cancelled(running.finish())

    def test_an_engine_with_a_child(self):
        running = self.start_hanging("child", "child")
        self.assertGreaterEqual(len(self.processes()), 2)
        (self.folder / "page.html").unlink()
        self.expect_cancelled(running.finish())

    def test_no_error_page(self):
        self.write("report.pdf", OLD)
        running = self.start_conversion(does="hang", env={"VELLUM_ON_ERROR": "page"})
        self.wait_until_it_hangs(running)
        (self.folder / "page.html").unlink()
        self.expect_cancelled(running.finish())

    @linux_only
    def test_signals(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            with self.subTest(number=number):
                running = self.start_hanging("child", "child")
                running.process.send_signal(number)
                self.expect_cancelled(running.finish(), "page.html")
                for path in self.logs.iterdir():
                    path.unlink()


class SuddenEnd(VellumCase):

    @linux_only
    def test_an_engine_that_a_script_starts_ends_with_vellum(self):
        script = self.write("script.sh", f'#!/bin/sh\n"{STAND_IN}" "$@"\n')
        script.chmod(0o755)
        running = self.start_conversion("--engine", "./script.sh", does="hang")
        self.wait_until_it_hangs(running)
        running.process.kill()
        running.finish()
        self.expect_no_processes()
        self.expect_staged_page_and_remove_it()

    def expect_staged_page_and_remove_it(self):
        """Nobody is left who could remove it."""
        folder = self.log().page_path.parent
        for path in sorted(folder.rglob("*"), reverse=True):
            path.rmdir() if path.is_dir() else path.unlink()
        folder.rmdir()
        self.log().pdf_path.unlink(missing_ok=True)

    def test_the_engine_ends_with_vellum(self):
        running = self.start_conversion(does="hang")
        self.wait_until_it_hangs(running)
        running.process.kill()
        running.finish()
        self.expect_no_processes()
        self.expect_staged_page_and_remove_it()

"""Engines that do not exit: time limit, a deleted page (which cancels), signals.

No case measures time. An engine that hangs is there until it is ended, or ends itself long after
the case has given up.

SPDX-License-Identifier: MIT
"""

import signal

from program_case import linux_only, wait_for
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


class Memory(VellumCase):

    def expect_too_much(self, **settings):
        self.write("report.pdf", OLD)
        result = self.convert(env={"VELLUM_MEMORY": "64"}, **settings)
        message = f"{ENGINE} took more than 64 MiB of memory; set VELLUM_MEMORY to give it more"
        self.expect_error(result, 9, message)
        self.expect_no_processes()
        self.assertEqual(f"vellum: {message}\n", self.error_text())
        self.assertEqual(OLD, self.read("report.pdf"))
        self.assertEqual(["page.html", "report.pdf", "report.pdf.error.txt"], self.names())

    def test_an_engine_that_takes_more(self):
        self.expect_too_much(does="swell")

    def test_a_child_of_an_engine_that_takes_more(self):
        self.expect_too_much(does="swell child")

    def test_an_engine_that_takes_less(self):
        for text in ("1000", "", "0", "-5", "plenty", "999999999999999999999"):
            with self.subTest(text=text):
                self.expect_done(self.convert(env={"VELLUM_MEMORY": text}))


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
        self.expect_nothing_left()

    def expect_nothing_left(self):
        """The copy of the page and the temporary PDF are removed, too, after a moment."""
        wait_for(self.log().page_path.parent, is_gone=True)
        wait_for(self.log().pdf_path, is_gone=True)
        self.assertEqual([], [name for name in self.names() if "part" in name])

    def test_the_engine_ends_with_vellum(self):
        for does in ("hang", "stuck"):
            running = self.start_conversion(does=does)
            self.wait_until_it_hangs(running)
            self.assertTrue(self.log().page_path.exists())
            running.process.kill()
            running.finish()
            self.expect_no_processes()
            self.expect_nothing_left()
            for path in self.logs.iterdir():
                path.unlink()

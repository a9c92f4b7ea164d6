"""Ctrl-C at any moment through the Python package.

SPDX-License-Identifier: MIT
"""

import asyncio
import os
import signal
import subprocess
import sys
import threading
import unittest
from concurrent.futures import ThreadPoolExecutor
from unittest import mock

from binding_case import LIBRARY, ROOT, TYPE, BindingCase, descriptors, marked
from strata_repgenlib import Generator, Request, calls

HOST = """
import sys
from strata_repgenlib import Generator, Request
with Generator(sys.argv[1], library=sys.argv[2]) as generator:
    try:
        generator.generate_file(Request(sys.argv[3], "pdf", {"v": 1}), sys.argv[1] + "/report.pdf")
    except KeyboardInterrupt:
        print("interrupted")
"""


def interrupted_after(microseconds, function, *arguments):
    """Calls a function, during which the handler of Ctrl-C runs, unless it ends before."""
    try:
        try:
            signal.setitimer(signal.ITIMER_REAL, microseconds / 1e6)
            function(*arguments)
        finally:
            signal.setitimer(signal.ITIMER_REAL, 0)
            # Handles a signal that has come. Python itself may do it later, outside of this
            # function.
            signal.pthread_sigmask(signal.SIG_BLOCK, ())
    except KeyboardInterrupt:
        pass


class Interrupts(BindingCase):
    """Ctrl-C, which Python handles on its main thread."""

    def setUp(self):
        super().setUp()
        # A shell may have started this process with the signal ignored, and so its children.
        self.addCleanup(signal.signal, signal.SIGINT,
                        signal.signal(signal.SIGINT, signal.default_int_handler))

    def interrupt(self):
        signal.pthread_kill(threading.main_thread().ident, signal.SIGINT)

    def test_it_ends_the_report_of_the_main_thread_and_no_other(self):
        output, page = self.folder / "other.pdf", Request(TYPE, "pdf", {"v": 1})
        started = self.park_converter(("write", output, "%PDF-1.7 %%EOF"))
        with ThreadPoolExecutor(2) as pool:
            other = pool.submit(self.own.generate_file, page, output)
            self.wait_for(started)
            started.unlink()
            # Its converter goes on after it, and must not write the file of the other one.
            self.park_converter()
            pool.submit(lambda: (self.wait_for(started), self.interrupt()))
            with self.assertRaises(KeyboardInterrupt):
                self.own.generate_file(page, self.folder / "report.pdf")
            self.release_converter()
            self.assertEqual(output, other.result())
        self.assertEqual([], [run for run in calls.running.values()])

    def test_a_second_one_does_not_wait_for_a_template(self):
        self.put_template(marked("a"))
        entered, left = threading.Event(), threading.Event()
        self.own.set_translator(lambda text: entered.set() or str(left.wait(60)))

        def interrupt_twice():
            entered.wait(60)
            self.interrupt()
            # The first one has been handled when the job is cancelled.
            while not cancelled.wait(0.01):
                pass
            self.interrupt()

        cancelled = threading.Event()
        cancel = calls.JobRun.cancel
        with mock.patch.object(calls.JobRun, "cancel",
                               lambda run: (cancel(run), cancelled.set())), \
                ThreadPoolExecutor(1) as pool:
            pool.submit(interrupt_twice)
            with self.assertRaises(KeyboardInterrupt):
                self.own.generate_bytes(Request(TYPE, values={"v": 1}))
        self.assertEqual(1, len(calls._abandoned))
        self.own.close()
        left.set()
        calls._free_abandoned(-1)
        self.assertEqual(({}, []), (calls.running, calls._abandoned))

    def test_the_main_thread_frees_what_a_second_one_left(self):
        library, request = mock.Mock(), Request(TYPE, values={"v": 1})
        with mock.patch.object(calls, "_abandoned", [(library, None, mock.Mock())]), \
                ThreadPoolExecutor(1) as pool:
            pool.submit(asyncio.run, self.own.generate_bytes_async(request)).result()
            library.rgenh_freeJob.assert_not_called()
            self.own.generate_bytes(request)
            library.rgenh_freeJob.assert_called_once()

    def test_an_open_report_that_nobody_takes_is_closed(self):
        self.put_template(marked("a"))
        before = descriptors()
        self.own.set_translator(lambda text: self.interrupt() or text)
        with self.assertRaises(KeyboardInterrupt):
            self.own.open_report(Request(TYPE, values={"v": 1}), self.folder / "report.html")
        self.assertEqual(before, descriptors())

    def test_one_while_a_translator_is_removed_leaves_it_to_no_later_report(self):
        self.put_template(marked("a"))
        self.own.set_translator(str.upper)
        self.assertEqual("A", self.report_of(1))
        self.own.set_translator(None)
        with mock.patch.object(self.own.library, "rgenh_setTranslator",
                               side_effect=KeyboardInterrupt), \
                self.assertRaises(KeyboardInterrupt):
            self.report_of(1)
        self.assertEqual("a", self.report_of(1))

    def test_at_any_moment_it_leaks_nothing_and_closing_ends(self):
        # Python's logging would keep its lock if it were interrupted while it looks up for the first
        # time whether a message is wanted.
        self.report_of(1)
        before = descriptors()
        request = Request(TYPE, values={"v": 1})
        self.own.set_persistent_data(TYPE, {"a": "b"})
        self.addCleanup(signal.signal, signal.SIGALRM,
                        signal.signal(signal.SIGALRM, signal.default_int_handler))
        for function in (lambda own: own.generate_bytes(request),
                         lambda own: own.open_report(request, self.folder / "r.html").close(),
                         lambda own: own.set_persistent_data(TYPE, {"a": "b"}),
                         lambda own: own.persistent_data(TYPE), lambda own: own.cancel()):
            with Generator(self.folder, library=LIBRARY) as own:
                for microseconds in range(1, 400):
                    interrupted_after(microseconds, function, own)
            self.assertEqual(before, descriptors())
            self.assertEqual({}, calls.running)
            self.assertEqual({}, {key: job for jobs in own._jobs.values()
                                  for key, job in jobs.items()})
        self.assertEqual("[1]", self.report_of(1))

    def test_ctrl_c_ends_a_waiting_host(self):
        started = self.park_converter()
        environment = {**os.environ, "PYTHONPATH": str(ROOT / "bindings/python")}
        host = subprocess.Popen([sys.executable, "-c", HOST, self.folder, LIBRARY, TYPE],
                                env=environment, stdout=subprocess.PIPE, text=True)
        self.wait_for(started)
        host.send_signal(signal.SIGINT)
        output = host.communicate(timeout=60)[0]
        self.assertEqual((0, "interrupted\n"), (host.returncode, output))


if __name__ == "__main__":
    unittest.main()

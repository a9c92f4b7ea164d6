"""Reports in an event loop: they are cancelled with their task, and nothing blocks the loop.

SPDX-License-Identifier: MIT
"""

import asyncio
import contextvars
import logging
import os
import subprocess
import sys
import threading
import time
import unittest
from unittest import mock

from binding_case import LIBRARY, ROOT, TYPE, BindingCase, descriptors, marked, value_of
from strata_repgenlib import Cancelled, Generator, Request, StatusError, calls

ONE = {"v": 1}

# The loop ends while a report waits for its converter, and the process after it.
HOST = """
import asyncio, sys
from strata_repgenlib import Generator, Request
generator = Generator(sys.argv[1], library=sys.argv[2])

async def main():
    report = asyncio.ensure_future(generator.generate_file_async(
        Request(sys.argv[3], "pdf", {"v": 1}), sys.argv[1] + "/report.pdf"))
    while not (generator.folder / "started").exists():
        await asyncio.sleep(0.01)

asyncio.run(main())
print("ended")
"""


class Async(BindingCase, unittest.IsolatedAsyncioTestCase):
    async def until(self, condition):
        for _ in range(6000):
            if condition():
                return
            await asyncio.sleep(0.01)
        self.fail("it never came")

    def start_pdf(self, name="report.pdf"):
        return asyncio.ensure_future(
            self.own.generate_file_async(Request(TYPE, "pdf", ONE), self.folder / name))

    async def test_they_are_the_same_as_others(self):
        request, before = Request(TYPE, values={"v": "a & b"}), None
        for _ in range(2):
            self.assertEqual(b"[a & b]", await self.own.generate_bytes_async(request))
            path = await self.own.generate_file_async(request, self.folder / "r.html")
            self.assertEqual(b"[a & b]", path.read_bytes())
            with await self.own.open_report_async(request, self.folder / "gone") as file:
                self.assertEqual(b"[a & b]", file.read())
            before = before or descriptors()
        self.assertEqual(before, descriptors())

    async def test_many_run_at_once_on_one_generator(self):
        reports = await asyncio.gather(*(
            self.own.generate_bytes_async(Request(TYPE, values={"v": number}))
            for number in range(100)))
        self.assertEqual([b"[%d]" % number for number in range(100)], reports)

    async def test_one_that_ends_before_its_start_returns_is_whole(self):
        def store_and_wait(slot, *arguments):
            store(slot, *arguments)
            while calls.running or calls.ending:
                time.sleep(0.01)
            stored.append(bool(slot))

        store, stored = calls.store, []
        with mock.patch.object(calls, "store", store_and_wait):
            report = self.own.generate_bytes_async(Request(TYPE, values=ONE))
            self.assertEqual(b"[1]", await report)
        self.assertEqual([True], stored)

    async def test_failures_are_exceptions(self):
        with self.assertRaises(StatusError):
            await self.own.generate_bytes_async(Request(TYPE))
        with self.assertRaisesRegex(TypeError, 'value "v"'):
            await self.own.generate_bytes_async(Request(TYPE, values={"v": object()}))

    async def test_translators_have_the_context_of_their_own_report(self):
        self.put_template(marked("a") + value_of("v"))
        language = contextvars.ContextVar("language")
        self.own.set_translator(lambda text: language.get())

        async def report(number):
            language.set(f"language {number} ")
            return await self.own.generate_bytes_async(Request(TYPE, values={"v": number}))

        reports = await asyncio.gather(*(report(number) for number in range(20)))
        self.assertEqual([b"language %d %d" % (number, number) for number in range(20)], reports)

    async def test_what_a_translator_raises_leaves_its_own_report_only(self):
        self.put_template(marked("a"))
        number = contextvars.ContextVar("number")

        def translate(text):
            raise (StopIteration if number.get() == 3 else LookupError)(number.get())

        async def report(value):
            number.set(value)
            try:
                await self.own.generate_bytes_async(Request(TYPE, values=ONE))
            except (LookupError, RuntimeError) as error:
                return str(error)

        self.own.set_translator(translate)
        outcomes = await asyncio.gather(*(report(value) for value in range(5)))
        self.assertEqual(["0", "1", "2", "a translator raised StopIteration(3)", "4"], outcomes)

    async def test_the_loop_runs_while_a_template_does(self):
        self.put_template(marked("a"))
        left = threading.Event()
        self.own.set_translator(lambda text: str(left.wait(60)))
        report = asyncio.ensure_future(self.own.generate_bytes_async(Request(TYPE, values=ONE)))
        await self.until(lambda: calls.running)
        left.set()
        self.assertEqual(b"True", await report)

    async def test_cancelling_a_task_cancels_its_report_and_no_other(self):
        output = self.folder / "other.pdf"
        started = self.park_converter(("write", output, "%PDF-1.7 %%EOF"))
        other = self.start_pdf("other.pdf")
        await self.until(started.exists)
        started.unlink()
        # Its converter goes on after it, and must not write the file of the other one.
        self.park_converter()
        report = self.start_pdf()
        await self.until(started.exists)
        report.cancel()
        with self.assertRaises(asyncio.CancelledError):
            await report
        self.assertFalse(other.done())
        await self.until(lambda: len(calls.running) == 1)
        self.release_converter()
        self.assertEqual(output, await other)

    async def test_a_task_that_is_cancelled_at_once_has_no_report(self):
        report = asyncio.ensure_future(self.own.generate_bytes_async(Request(TYPE, values=ONE)))
        await asyncio.sleep(0)
        report.cancel()
        with self.assertRaises(asyncio.CancelledError):
            await report
        await self.own.aclose()
        self.assertEqual({}, calls.running)

    async def test_closing_does_not_wait_and_closing_asynchronously_does(self):
        started = self.park_converter()
        with Generator(self.folder, library=LIBRARY) as generator:
            report = asyncio.ensure_future(generator.generate_file_async(
                Request(TYPE, "pdf", ONE), self.folder / "report.pdf"))
            await self.until(started.exists)
            report.cancel()
            with self.assertRaises(asyncio.CancelledError):
                await report
        del generator
        await self.until(lambda: not calls.running)
        started.unlink()
        async with Generator(self.folder, library=LIBRARY) as generator:
            report = asyncio.ensure_future(generator.generate_file_async(
                Request(TYPE, "pdf", ONE), self.folder / "report.pdf"))
            await self.until(started.exists)
            report.cancel()
        self.assertEqual({}, calls.running)

    async def test_cancel_of_the_generator_concerns_them_too(self):
        started = self.park_converter()
        report = self.start_pdf()
        await self.until(started.exists)
        await asyncio.to_thread(self.own.cancel, TYPE)
        with self.assertRaises(Cancelled):
            await report

    async def test_each_report_is_logged_at_debug_level_only(self):
        with self.assertLogs("strata_repgenlib", logging.DEBUG) as logs:
            await self.own.generate_bytes_async(Request("report", values=ONE))
            self.own.generate_file(Request("report", values=ONE), self.folder / "x.html")
        self.assertRegex(logs.output[0], r"DEBUG:.*html report of type report: [\d.]+ ms")
        self.assertRegex(logs.output[1], r"DEBUG:.*html report of type report to .*x\.html: ")

    def test_a_process_ends_although_a_report_still_runs(self):
        self.park_converter()
        run = subprocess.run([sys.executable, "-X", "dev", "-c", HOST, self.folder, LIBRARY, TYPE],
                             env={**os.environ, "PYTHONPATH": str(ROOT / "bindings/python")},
                             capture_output=True, text=True, check=False)
        self.assertEqual((0, "ended\n", ""), (run.returncode, run.stdout, run.stderr))


if __name__ == "__main__":
    unittest.main()

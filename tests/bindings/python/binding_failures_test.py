"""Failures through the Python package: each is an exception, the process lives, and nothing leaks.

SPDX-License-Identifier: MIT
"""

import asyncio
import errno
import os
import subprocess
import sys
import unittest
from concurrent.futures import ThreadPoolExecutor

import strata_repgenlib
from binding_case import LIBRARY, ROOT, TYPE, BindingCase, descriptors
from strata_repgenlib import (AccessDeniedError, ConversionError, FileSystemError, Generator,
                              ReportError, Request, Status, StatusError)

ONE = {"v": 1}
LONG = "x" * 300


class Statuses(BindingCase):
    def expect_status(self, status, function, *arguments):
        with self.assertRaises(StatusError) as raised:
            function(*arguments)
        self.assertEqual(status, raised.exception.status)
        self.assertEqual(status.name, raised.exception.name)
        return raised.exception

    def test_an_error_says_all_of_it(self):
        path = str(self.folder / "report.txt")
        error = self.expect_status(Status.RGEN_E_TEMPLATE_NOT_FOUND, self.own.generate_file,
                                   Request(TYPE, "txt", ONE), path)
        self.assertEqual(f"{path}: Template is not found in folder "
                         "(0xC0000009 RGEN_E_TEMPLATE_NOT_FOUND)", str(error))
        self.assertEqual("Template is not found in folder", error.text)
        self.assertEqual(error.text, self.own.status_text(error.status))
        self.assertEqual((path, ""), (error.path, error.argument))
        self.assertIn("put the template into the folder", error.hint)

    def test_every_operation_raises_its_status(self):
        unknown = "ffffffff-0000-0000-0000-000000000000"
        missing = self.folder / "missing/file"
        own = self.own
        self.expect_status(Status.RGEN_E_EMPTY_INPUT, own.generate_bytes, Request(TYPE))
        self.expect_status(Status.RGEN_E_GUID_NOT_IN_CONFIG, own.generate_bytes,
                           Request(unknown, values=ONE))
        for function in (own.generate_file, own.open_report):
            self.expect_status(Status.RGEN_E_CREATE_OUTPUT, function, Request(TYPE, values=ONE),
                               missing)
        self.expect_status(Status.RGEN_E_OPEN_PERSIST, own.persistent_data, TYPE)
        self.expect_status(Status.RGEN_E_GUID_NOT_IN_CONFIG, own.set_persistent_data, unknown,
                           {"a": "b"})
        self.expect_status(Status.RGEN_E_DIR_NOT_FOUND, own.set_folder, missing)
        self.expect_status(Status.RGEN_E_CREATE_PERSIST, own.dump, ONE, missing)


class FileSystem(BindingCase):
    """Failures that leave functions of rgen.h as exceptions."""

    def setUp(self):
        super().setUp()
        (self.folder / "circle").symlink_to("circle")

    def expect(self, kind, function, *arguments):
        before = descriptors()
        with self.assertRaises(kind) as raised:
            function(*arguments)
        self.assertIsInstance(raised.exception, (ReportError, ValueError))
        self.assertEqual(before, descriptors())
        return raised.exception

    def expect_all(self, kind):
        """Every way to make a report fails, also on another thread and in an event loop."""
        for generate in (self.own.generate_bytes, in_thread(self.own.generate_bytes),
                         in_loop(self.own.generate_bytes_async)):
            self.expect(kind, generate, Request(TYPE, values=ONE))

    def rename(self, element, name):
        path = self.folder / ".rgen/config.xml"
        text = path.read_text()
        start = text.index(f"<{element}>") + len(element) + 2
        path.write_text(text[:start] + name + text[text.index(f"</{element}>"):])

    def test_a_template_name_of_300_bytes(self):
        self.rename("reportTypeFile", LONG)
        self.expect_all(FileSystemError)

    def test_a_persistent_file_name_of_300_bytes(self):
        self.rename("persistDataFile", LONG)
        self.expect(StatusError, self.own.persistent_data, TYPE)
        error = self.expect(FileSystemError, self.own.set_persistent_data, TYPE, ONE)
        self.assertEqual(errno.ENAMETOOLONG, error.errno)
        self.assertIn(LONG, error.filename)
        self.assertEqual("[1]", self.report_of(1))

    def test_a_circular_link_as_template(self):
        path = self.folder / ".rgen/templates/html/report.xsl"
        path.unlink()
        path.symlink_to(path.name)
        self.expect_all(ReportError)

    def test_a_circular_link_as_persistent_file(self):
        path = self.folder / ".rgen/data.xml"
        path.symlink_to(path.name)
        self.expect(ReportError, self.own.persistent_data, TYPE)
        self.expect(ReportError, self.own.set_persistent_data, TYPE, ONE)
        self.assertEqual("[1]", self.report_of(1))

    def test_paths_that_the_file_system_refuses(self):
        for name in (LONG, "circle", "x/" * 2500 + "x"):
            path = self.folder / name
            with self.subTest(name=name[:10]):
                for function in (self.own.generate_file, in_thread(self.own.generate_file),
                                 in_loop(self.own.generate_file_async), self.own.open_report):
                    self.expect(ReportError, function, Request(TYPE, values=ONE), path)
                self.expect(ReportError, self.own.dump, ONE, path)
                self.expect(FileSystemError, self.own.simulated_input, path)
                self.expect(FileSystemError, self.own.set_folder, path)
                self.expect(FileSystemError, lambda: Generator(path, library=LIBRARY))
        self.assertEqual("[1]", self.report_of(1))

    def test_a_format_that_is_no_name_of_a_folder(self):
        for text in (LONG + LONG[:100], "x" * 5000):
            self.expect(FileSystemError, self.own.generate_bytes, Request(TYPE, text, ONE))

    def test_a_pdf_whose_page_beside_it_has_too_long_a_name(self):
        self.expect(StatusError, self.own.generate_file, Request(TYPE, "pdf", ONE),
                    self.folder / ("x" * 252))

    def test_data_directories_that_are_none(self):
        for number, make in enumerate((lambda path: path.write_text(""), os.mkfifo,
                                       lambda path: path.symlink_to("nothing"),
                                       lambda path: path.symlink_to(".rgen"))):
            folder = self.folder / str(number)
            folder.mkdir()
            make(folder / ".rgen")
            self.own.set_folder(folder)
            self.expect_all(ReportError)
            self.expect(ReportError, self.own.persistent_data, TYPE)

    def test_a_folder_that_goes_away(self):
        gone = self.folder / "gone"
        gone.mkdir()
        self.own.set_folder(gone)
        gone.rmdir()
        self.expect_all(ReportError)
        self.expect(ReportError, self.own.persistent_data, TYPE)
        self.expect(ReportError, self.own.set_persistent_data, TYPE, {})

    def test_a_relative_folder_stays_the_same(self):
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)
        self.own.set_folder(".")
        gone = self.folder / "gone"
        gone.mkdir()
        os.chdir(gone)
        gone.rmdir()
        self.assertEqual("[1]", self.report_of(1))
        with self.assertRaises(FileNotFoundError):
            self.own.set_folder(".")

    def test_rights_that_change(self):
        if os.geteuid() == 0:
            self.addCleanup(os.seteuid, 0)
            self.folder.chmod(0o755)
            os.seteuid(65534)
        templates = self.folder / ".rgen/templates"
        for path, mode in ((templates, 0o755), (self.folder / ".rgen", 0o755)):
            self.assertEqual("[1]", self.report_of(1))
            self.as_owner(path.chmod, 0)
            error = self.expect(AccessDeniedError, self.own.generate_bytes,
                                Request(TYPE, values=ONE))
            self.assertIsInstance(error, PermissionError)
            self.assertEqual(errno.EACCES, error.errno)
            self.expect_all(PermissionError)
            self.as_owner(path.chmod, mode)

    def as_owner(self, function, *arguments):
        user = os.geteuid()
        os.seteuid(os.getuid())
        function(*arguments)
        os.seteuid(user)


class Arguments(BindingCase):
    def expect(self, kind, function, *arguments):
        with self.assertRaises(kind):
            function(*arguments)
        self.assertEqual("[1]", self.report_of(1))

    def test_texts_that_are_no_utf_8_or_would_be_cut(self):
        own = self.own
        for kind, text in ((UnicodeEncodeError, "\ud800"), (ValueError, "a\0b")):
            for request in (Request(TYPE, values={"v": text}), Request(TYPE, values={text: 1}),
                            Request(TYPE, pairs={"v": text}), Request(TYPE, text, ONE),
                            Request(text, values=ONE),
                            Request(TYPE, values=ONE, converter_base=text)):
                with self.subTest(request=request):
                    self.expect(kind, own.generate_bytes, request)
            self.expect(kind, own.generate_file, Request(TYPE, values=ONE), text)
            for function, arguments in ((own.set_folder, (text,)), (own.dump, (ONE, text)),
                                        (own.simulated_input, (text,)),
                                        (own.set_persistent_data, (TYPE, {text: "x"}))):
                self.expect(kind, function, *arguments)

    def test_names_that_the_converter_cannot_take(self):
        for path, base in (('a".pdf', ""), ("a.pdf", '"')):
            request = Request(TYPE, "pdf", ONE, converter_base=base)
            self.expect(ValueError, self.own.generate_file, request, self.folder / path)
        self.expect(ValueError, self.own.generate_file, Request(TYPE, values=ONE), "")
        self.expect(TypeError, self.own.generate_file, Request(TYPE, values=ONE), 5)

    def test_a_closed_generator(self):
        self.own.close()
        self.own.close()
        for function, arguments in ((self.own.generate_bytes, (Request(TYPE, values=ONE),)),
                                    (self.own.cancel, ()), (self.own.persistent_data, (TYPE,)),
                                    (self.own.set_translator, (None,)),
                                    (self.own.set_folder, (self.folder,))):
            with self.assertRaisesRegex(ValueError, "closed"):
                function(*arguments)

    def test_errors_have_one_base_and_a_fitting_built_in_one(self):
        kinds = [kind for name, kind in vars(strata_repgenlib).items() if name.endswith("Error")]
        self.assertEqual(14, len(kinds) + 1, "with Cancelled")
        for kind in kinds:
            self.assertTrue(issubclass(kind, ReportError))
            self.assertTrue(kind.__doc__)


MEMORY_HOST = """
import resource, sys, threading
from strata_repgenlib import Generator, ReportError, Request

def main():
    generator = Generator(sys.argv[1], library=sys.argv[2])
    # One long text, so that large blocks fail: Python itself may hang without small ones.
    request = Request(sys.argv[3], values={"n0": "x" * (20 << 20)})
    length = len(generator.generate_bytes(Request(sys.argv[3], values={"a": 1})))
    used = int(open("/proc/self/statm").read().split()[0]) * 4096
    failures = set()
    for room in range(8 << 20, 240 << 20, 4 << 20):
        resource.setrlimit(resource.RLIMIT_AS, (used + room, resource.RLIM_INFINITY))
        try:
            # The library leaves out values for which it has no memory.
            generator.generate_bytes(request)
        except (MemoryError, ReportError):
            failures.add("failed")
    resource.setrlimit(resource.RLIMIT_AS, (resource.RLIM_INFINITY, resource.RLIM_INFINITY))
    assert len(generator.generate_bytes(request)) == length
    print(*failures, "whole")

thread = threading.Thread(target=main)
thread.start()
thread.join()
"""


class Memory(BindingCase):
    def test_exhausted_memory_is_an_exception_and_later_reports_are_whole(self):
        run = subprocess.run([sys.executable, "-c", MEMORY_HOST, self.folder, LIBRARY, TYPE],
                             env={**os.environ, "PYTHONPATH": str(ROOT / "bindings/python"),
                                  "MALLOC_ARENA_MAX": "1"},
                             capture_output=True, text=True, check=False)
        self.assertEqual(0, run.returncode, run.stderr)
        self.assertEqual("failed whole\n", run.stdout)


def in_thread(function):
    def call(*arguments):
        with ThreadPoolExecutor(1) as pool:
            return pool.submit(function, *arguments).result()
    return call


def in_loop(function):
    def call(*arguments):
        return asyncio.run(function(*arguments))
    return call


class Conversions(BindingCase):
    WHOLE = "%PDF-1.7 x %%EOF"

    def convert(self, *commands):
        output = self.folder / "report.pdf"
        self.use_converter(*((word, str(output) + ending, text) for word, ending, text in commands))
        self.own.generate_file(Request(TYPE, "pdf", ONE), output)

    def expect_problem(self, problem, *commands):
        with self.assertRaisesRegex(ConversionError, problem) as raised:
            self.convert(*commands)
        self.assertIn(str(self.folder / "report.pdf"), str(raised.exception))
        self.assertEqual(Status.RGEN_E_EXTERNAL_FAILED, raised.exception.status)

    def test_a_whole_pdf_is_taken(self):
        self.convert(("write", "", self.WHOLE))
        self.assertEqual(self.WHOLE, (self.folder / "report.pdf").read_text())

    def test_a_missing_or_partial_pdf_is_not(self):
        self.expect_problem("made no file")
        for part in ("", "%PDF-1.7 x", "%%EOF", " %PDF-1.7 %%EOF"):
            self.expect_problem("pdf", ("write", "", part))

    def test_the_reason_is_the_converters_text(self):
        note = ("write", ".error.txt", "no engine")
        self.expect_problem("no engine", note)
        self.expect_problem("no engine", note, ("write", "", self.WHOLE))

    def test_the_reason_of_an_earlier_failure_is_forgotten(self):
        note = self.folder / "report.pdf.error.txt"
        note.write_text("earlier")
        self.convert(("write", "", self.WHOLE))
        self.assertFalse(note.exists())

    def test_a_folder_is_no_pdf(self):
        (self.folder / "report.pdf").mkdir()
        (self.folder / "report.pdf/full").mkdir()
        with self.assertRaises((ConversionError, StatusError)):
            self.convert()

    def test_without_conversion_the_page_is_the_report(self):
        path = self.folder / "report.pdf"
        self.own.generate_file(Request(TYPE, "pdf", ONE, convert=False), path)
        self.assertEqual("[1]", path.read_text())


if __name__ == "__main__":
    unittest.main()

"""Failures through the Python package: statuses, what is refused beforehand, conversions.

SPDX-License-Identifier: MIT
"""

import datetime
import os
import tempfile
import unittest
from pathlib import Path

from binding_case import LIBRARY, TYPE, BindingCase
from strata_repgenlib import (ConversionError, Generator, Handle, Hint, Hinted, Request, Status,
                              StatusError)
from strata_repgenlib.errors import verify_pdf

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
        for function in (own.set_persistent_data, own.set_persistent_values):
            self.expect_status(Status.RGEN_E_GUID_NOT_IN_CONFIG, function, unknown, {"a": "b"})
        self.expect_status(Status.RGEN_E_CREATE_PERSIST, own.dump, ONE, missing)


class Refused(BindingCase):
    """Most of these would end the process inside the library."""

    def expect_refused(self, kind, function, *arguments):
        with self.assertRaises(kind):
            function(*arguments)
        self.assertEqual("[1]", self.report_of(1))

    def test_texts_that_are_no_utf_8_or_would_be_cut(self):
        for kind, text in ((UnicodeEncodeError, "\ud800"), (ValueError, "a\0b")):
            for request in (Request(TYPE, values={"v": text}), Request(TYPE, values={text: 1}),
                            Request(TYPE, pairs={"v": text}), Request(TYPE, text, ONE),
                            Request(TYPE, values=ONE, converter_base=text)):
                with self.subTest(request=request):
                    self.expect_refused(kind, self.own.generate_bytes, request)
            self.expect_refused(kind, self.own.generate_file, Request(TYPE, values=ONE), text)
            self.expect_refused(kind, self.own.set_folder, text)
            self.expect_refused(kind, self.own.dump, ONE, text)
            self.expect_refused(kind, self.own.simulated_input, text)

    def test_what_is_no_value(self):
        for value in (True, None, 1.5, [1], Hinted(1.5, Hint.SIZE), Hinted(True, Hint.SIZE)):
            with self.subTest(value=value):
                self.expect_refused(TypeError, self.report_of, value)
        for value in (1 << 63, -(1 << 63) - 1, Hinted(1 << 64, Hint.ADDRESS)):
            self.expect_refused(OverflowError, self.report_of, value)
        self.expect_refused(ValueError, self.report_of, Hinted(1, 77))
        for kind, number in ((TypeError, "x"), (TypeError, None), (OverflowError, 1 << 64)):
            self.expect_refused(kind, Handle, number)
        self.expect_refused(ValueError, self.own.generate_bytes, Request("no guid", values=ONE))
        self.expect_refused(TypeError, self.own.generate_bytes, Request(TYPE, pairs={"v": 1}))
        self.expect_refused(TypeError, self.own.generate_file, Request(TYPE, values=ONE), 5)

    def test_moments_before_1970_are_numbers_like_others(self):
        moment = datetime.datetime(1969, 12, 31, 23, 59, 59, 500000, datetime.timezone.utc)
        self.assertEqual("[ERROR: BAD TIME_T INPUT]", self.report_of(moment))

    def test_paths_that_the_file_system_refuses(self):
        (self.folder / "circle").symlink_to("circle")
        for name in (LONG, "circle"):
            path = self.folder / name
            self.expect_refused(OSError, self.own.generate_file, Request(TYPE, values=ONE), path)
            self.expect_refused(OSError, self.own.open_report, Request(TYPE, values=ONE), path)
            self.expect_refused(OSError, self.own.dump, ONE, path)
            self.expect_refused(OSError, self.own.simulated_input, path)
            self.expect_refused(OSError, self.own.set_folder, path)
        self.expect_refused(OSError, self.own.generate_bytes, Request(TYPE, LONG, ONE))
        # The output itself fits, the page beside it does not.
        self.expect_refused(OSError, self.own.generate_file, Request(TYPE, "pdf", ONE),
                            self.folder / ("x" * 252))

    def test_names_that_the_converter_cannot_take(self):
        for path, base in (('a".pdf', ""), ("a.pdf", '"')):
            request = Request(TYPE, "pdf", ONE, converter_base=base)
            self.expect_refused(ValueError, self.own.generate_file, request, self.folder / path)
        self.expect_refused(ValueError, self.own.generate_file, Request(TYPE, values=ONE), "")

    def test_folders_that_are_none(self):
        file = self.folder / "file"
        file.write_text("")
        for kind, path in ((NotADirectoryError, file), (FileNotFoundError, self.folder / "none"),
                           (NotADirectoryError, file / "none")):
            with self.assertRaises(OSError if path.parent == file else kind):
                Generator(path, library=LIBRARY)

    def test_data_directories_that_are_none(self):
        for make in (lambda path: path.write_text(""), os.mkfifo,
                     lambda path: path.symlink_to("nothing")):
            folder = Path(tempfile.mkdtemp(dir=self.folder))
            self.own.set_folder(folder)
            make(folder / ".rgen")
            for function, argument in ((self.own.generate_bytes, Request(TYPE, values=ONE)),
                                       (self.own.persistent_data, TYPE),
                                       (self.own.set_folder, folder)):
                with self.assertRaises(NotADirectoryError):
                    function(argument)

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

    def test_a_folder_that_goes_away(self):
        gone = self.folder / "gone"
        gone.mkdir()
        self.own.set_folder(gone)
        gone.rmdir()
        for function, arguments in ((self.own.generate_bytes, (Request(TYPE, values=ONE),)),
                                    (self.own.persistent_data, (TYPE,)),
                                    (self.own.set_persistent_data, (TYPE, {})),
                                    (self.own.set_persistent_values, (TYPE, {}))):
            with self.assertRaises(FileNotFoundError):
                function(*arguments)

    def test_folders_without_rights(self):
        bare = self.folder / "bare"
        bare.mkdir()
        self.own.set_folder(bare)
        self.folder.chmod(0o755)
        bare.chmod(0o555)
        is_root = os.geteuid() == 0
        if is_root:
            os.seteuid(65534)
        try:
            with self.assertRaises(PermissionError):
                self.own.generate_bytes(Request(TYPE, values=ONE))
            with self.assertRaises(PermissionError):
                self.own.set_folder(bare)
        finally:
            if is_root:
                os.seteuid(0)
        bare.chmod(0o755)

    def test_a_closed_generator(self):
        self.own.close()
        self.own.close()
        with self.assertRaises(ValueError):
            self.own.generate_bytes(Request(TYPE, values=ONE))
        with self.assertRaises(ValueError):
            self.own.cancel()


class Conversions(BindingCase):
    WHOLE = "%PDF-1.7 x %%EOF"

    def convert(self, *commands):
        output = self.folder / "report.pdf"
        self.use_converter(*((word, str(output) + ending, text) for word, ending, text in commands))
        self.own.generate_file(Request(TYPE, "pdf", ONE), output)

    def expect_problem(self, problem, reason, *commands):
        with self.assertRaises(ConversionError) as raised:
            self.convert(*commands)
        self.assertEqual((problem, reason), (raised.exception.problem, raised.exception.reason))
        expected = f"{self.folder / 'report.pdf'}: {problem}" + (f": {reason}" if reason else "")
        self.assertEqual(expected, str(raised.exception))

    def test_a_whole_pdf_is_taken(self):
        self.convert(("write", "", self.WHOLE))
        self.assertEqual(self.WHOLE, (self.folder / "report.pdf").read_text())

    def test_a_missing_or_partial_pdf_is_not(self):
        self.expect_problem("the converter made no file", "")
        for part in ("", "%PDF-1.7 x", "%%EOF", " %PDF-1.7 %%EOF"):
            self.expect_problem("the converter's file is not a whole pdf", "", ("write", "", part))

    def test_the_reason_is_the_converters_text(self):
        note = ("write", ".error.txt", "no engine")
        self.expect_problem("the converter made no file", "no engine", note)
        self.expect_problem("the converter failed", "no engine", note, ("write", "", self.WHOLE))

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
        with self.assertRaises(ConversionError):
            verify_pdf(str(self.folder / "report.pdf"))

    def test_without_conversion_the_page_is_the_report(self):
        path = self.folder / "report.pdf"
        self.own.generate_file(Request(TYPE, "pdf", ONE, convert=False), path)
        self.assertEqual("[1]", path.read_text())


if __name__ == "__main__":
    unittest.main()

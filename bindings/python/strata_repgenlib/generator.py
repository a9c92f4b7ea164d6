"""The generator: reports, persistent data, dumps and simulated input.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import ctypes
import os
import sys
import threading
from pathlib import Path
from types import TracebackType
from typing import IO, Any, Callable, Optional, Type, Union

from . import library as c
from .calls import Calls, Raised, Translate, Translation, interruptible
from .checks import StrPath, as_absolute, as_path, check_data_dir, check_folder, check_output, probe
from .errors import Cancelled, StatusError, forget_reason, verify_pdf
from .records import (Target, bytes_of, fill_pairs, fill_values, guid_record, input_record, owned,
                      text_of, value_of)
from .status import Status
from .texts import encoded, without_references
from .values import Entries, ReportType, Request, Text, Value

_NO_DATA = (Status.RGEN_E_NO_PERSIST_VALUES, Status.RGEN_E_NO_VALID_PERSIST_VALUES)


class Generator:
    """Makes reports from the templates of one data directory, "<folder>/.rgen".

    It is a context manager; `close` or the end of the block frees it. Every method may be called
    from any thread, several at once. Methods raise StatusError for failures that the library
    reports, OSError and ValueError for failures that would end the process inside the library (see
    README.md), and exceptions of the translator.

    `folder` must exist. `translate` is as in `set_translator`. `library` is a result of
    `load_library`, or a path for it.
    """

    def __init__(self, folder: StrPath, *, translate: Optional[Translate] = None,
                 library: Union[c.Library, StrPath, None] = None) -> None:
        self._handle: Optional[int] = None
        self._calls = Calls()
        self._raised = Raised()
        self._settings = threading.Lock()
        self._translation: Optional[Translation] = None
        self.library = library if isinstance(library, c.Library) else c.load_library(library)
        self._handle = self.library.rgen_newReportGenerator()
        if not self._handle:
            raise MemoryError("the library has no memory for a generator")
        self._folder = ""
        self.set_folder(folder)
        if translate is not None:
            self.set_translator(translate)

    def __enter__(self) -> Generator:
        return self

    def __exit__(self, _type: Optional[Type[BaseException]], _value: Optional[BaseException],
                 _traceback: Optional[TracebackType]) -> None:
        self.close()

    def __del__(self) -> None:
        # A constructor that failed early may have set no handle.
        if getattr(self, "_handle", None):
            self.close()

    def close(self) -> None:
        """Waits for running calls and frees the generator. Must not be called by a translator."""
        if self._calls.close():
            self.library.rgen_freeReportGenerator(self._handle)
            self._handle = None

    @property
    def folder(self) -> Path:
        """The folder that contains the data directory."""
        return Path(self._folder)

    def set_folder(self, folder: StrPath) -> None:
        """Uses the data directory of another folder, which must exist. A relative path is resolved
        against the current folder at the time of this call."""
        path = as_absolute(as_path(folder, "the folder"))
        check_folder(path)
        with self._calls.one():
            self._check(self.library.rgen_setDataDirPath(self._handle, encoded(path, "a path")),
                        path)
        self._folder = path

    def set_translator(self, translate: Optional[Translate], *, markup: bool = False) -> None:
        """Sets the function that translates the marked texts of templates; None for none.

        Its argument is the text as written in the template; it returns a str. "&", "<", ">" and "'"
        in the result are escaped, each unless the original text contains it. An "&" that starts no
        reference of XML is always escaped, and so is "]]>" unless the translation has a CDATA
        section. "{" and "}" are not escaped: in attributes of the template they enclose an XPath
        expression. With `markup` the translation becomes part of the template without escapes;
        ValueError for a reference that XML does not define. In both forms characters that XML does
        not allow become U+FFFD, and a text that is returned unchanged stays as it is. The function
        runs on the generating threads, one at a time, and must not call this generator. When it
        raises an exception, this and all further texts of the report stay as they are, and the
        generating method raises the exception after the report.
        """
        used = Translation(translate or _unchanged, markup or translate is None, self._raised)
        with self._calls.one(), self._settings:
            self.library.rgen_setTranslateFunction(self._handle, used.function, None)
            self._translation = used

    def generate_file(self, request: Request, path: StrPath) -> Path:
        """Writes a report to a file, replacing an older one, and returns its path.

        For "pdf" the converter runs, unless the request disables it; ConversionError if it made no
        complete pdf. "<path>.error.txt" of an earlier conversion is removed first.
        """
        output = as_path(path, "the output path")
        is_converted = request.format == "pdf" and request.convert
        check_output(output, is_converted, request.converter_base)
        if is_converted:
            forget_reason(output)
        self._generate(request, c.OUTPUT_FILE, output, _nothing)
        if is_converted:
            verify_pdf(output)
        return Path(output)

    def generate_bytes(self, request: Request) -> bytes:
        """Returns a report as bytes, without any conversion."""
        report: bytes = self._generate(request, c.OUTPUT_BYTES, "", _result_bytes)
        return report

    def open_report(self, request: Request, path: StrPath) -> IO[bytes]:
        """Opens a report as a file that vanishes when it is closed, without any conversion.

        On Linux the file is open for reading and writing, with the file offset at its start, and
        its name is already removed. On Windows it is open for writing only, with the offset at the
        end of the report; the path should be ASCII.
        """
        output = as_path(path, "the output path")
        check_output(output, False, "")
        file: IO[bytes] = self._generate(request, c.OUTPUT_DELETE_ON_CLOSE, output, _result_file)
        return file

    def cancel(self, report_type: Optional[ReportType] = None) -> None:
        """Requests the generations of a report type, or all of this generator, to stop: they raise
        Cancelled unless they are past their last check. Call it on another thread than the
        generating one; it waits while a template runs."""
        guid = None if report_type is None else ctypes.byref(guid_record(report_type))
        with self._calls.one():
            self.library.rgen_cancel(self._handle, guid)

    def persistent_data(self, report_type: ReportType) -> dict[str, str]:
        """The persistent data of a report type, as reports show it and as `set_persistent_data` got
        it, except: entries without a name or text, and white space at the edges of names, are not
        stored; control characters (other than tab, carriage return and line feed), U+FFFE and
        U+FFFF are returned as U+FFFD.

        StatusError with RGEN_E_OPEN_PERSIST if nothing was stored yet or the file cannot be read.
        """
        check_data_dir(self._folder)
        guid = guid_record(report_type)
        record = c.RgenCAnsiStringPairSet()
        with self._calls.one(), owned(self.library.rgen_freeRgenCAnsiStringSet, record):
            status = self.library.rgen_getPersistentData(self._handle, ctypes.byref(guid),
                                                         ctypes.byref(record))
            if status in _NO_DATA:
                return {}
            self._check(status, str(report_type))
            if record.count == 0:
                raise MemoryError("the library has no memory for the persistent data")
            texts = getattr(record, "values")
            return {text_of(record.keys[i]): without_references(text_of(texts[i]))
                    for i in range(record.count)}

    def set_persistent_data(self, report_type: ReportType, texts: Entries[Text]) -> None:
        """Replaces the persistent data of a report type by names and texts; no merging.

        ValueError for texts that the library would truncate: more than 10,000,000 bytes ("&" and
        each white space at an edge count as five), for a name more than 1,000,000. Also ValueError
        for a Markup with a reference that XML does not define, which would damage other entries.
        Characters that XML does not allow become U+FFFD.
        """
        check_data_dir(self._folder)
        guid = guid_record(report_type)
        record = c.RgenCAnsiStringPairSet()
        with self._calls.one(), owned(self.library.rgen_freeRgenCAnsiStringSet, record):
            fill_pairs(self.library, texts, Target.STORE, record)
            self._check(self.library.rgen_setPersistentDataFromAnsiStringPairSet(
                self._handle, ctypes.byref(guid), ctypes.byref(record)), str(report_type))

    def set_persistent_values(self, report_type: ReportType, values: Entries[Value]) -> None:
        """Replaces the persistent data by the display texts of typed values; handles are left
        out."""
        check_data_dir(self._folder)
        guid = guid_record(report_type)
        record = c.RgenCVariantSet()
        with self._calls.one(), owned(self.library.rgen_freeRgenCVariantSet, record):
            fill_values(self.library, values, Target.STORE, record)
            self._check(self.library.rgen_setPersistentDataFromCVariantSet(
                self._handle, ctypes.byref(guid), ctypes.byref(record)), str(report_type))

    def dump(self, values: Entries[Value], path: StrPath) -> None:
        """Writes values as an XML file of names and display texts; replaces an existing file."""
        output = as_path(path, "the path of the dump")
        probe(output)
        record = c.RgenCInputParams()
        with self._calls.one(), owned(self.library.rgen_freeRgenCInputParams, record):
            fill_values(self.library, values, Target.REPORT, record.variants)
            self._check(self.library.rgen_dumpRawInputDataToFile(
                self._handle, ctypes.byref(record), encoded(output, "a path")), output)

    def simulated_input(self, path: StrPath) -> dict[str, Value]:
        """Reads typed values from an XML file; none when it is missing, cannot be read or has no
        valid property. An invalid byte dump in it makes the library print one line."""
        source = as_path(path, "the path of the input")
        probe(source)
        record = c.RgenCVariantSet()
        with self._calls.one(), owned(self.library.rgen_freeRgenCVariantSet, record):
            self.library.rgen_getSimulatedRawDataFromFile(
                self._handle, encoded(source, "a path"), ctypes.byref(record))
            items = (record.items[i] for i in range(record.count))
            return {text_of(item.name): value_of(item) for item in items
                    if item.type != c.TYPE_EMPTY}

    def status_text(self, status: int) -> str:
        """The library's description of a status, in English."""
        with self._calls.one():
            return self._description(status)

    def _description(self, status: int) -> str:
        text: bytes = self.library.rgen_getStatusCodeDescription(self._handle, status)
        return text.decode("utf-8")

    def _check(self, status: int, subject: str) -> None:
        """Raises the exception of a failed status. For use inside a call."""
        if status < 0:
            kind = Cancelled if status == Status.RGEN_CANCELED else StatusError
            raise kind(subject, status, self._description(status))

    def _generate(self, request: Request, mode: int, output: str,
                  result_of: Callable[[c.RgenCVariant], Any]) -> Any:
        check_data_dir(self._folder, request.format)

        def call() -> Any:
            with self._calls.one(), \
                    input_record(self.library, request, mode, output.encode()) as record, \
                    owned(self.library.rgen_freeRgenCVariant, c.RgenCVariant()) as result:
                status = self.library.rgen_generateReport(self._handle, ctypes.byref(record),
                                                          ctypes.byref(result))
                exception = self._raised.take()
                if exception is None:
                    self._check(status, output or str(request.type))
                    return result_of(result)
                if result.type == c.TYPE_HANDLE:
                    _result_file(result).close()
                raise exception

        return interruptible(call, lambda: self.cancel(request.type))


def _unchanged(text: str) -> str:
    return text


def _nothing(_result: c.RgenCVariant) -> None:
    return None


def _result_bytes(result: c.RgenCVariant) -> bytes:
    return bytes_of(result.value.byteArrayValue) if result.type == c.TYPE_BYTE_ARRAY else b""


def _result_file(result: c.RgenCVariant) -> IO[bytes]:
    """The open file; made before the call ends, so that an abandoned one is closed."""
    if result.type != c.TYPE_HANDLE:
        raise MemoryError("the library has no memory for the result")
    # ctypes returns None for a null pointer, which here is descriptor 0.
    handle: int = result.value.handleValue or 0
    if sys.platform == "win32":
        import msvcrt
        return os.fdopen(msvcrt.open_osfhandle(handle, os.O_WRONLY), "wb")
    os.lseek(handle, 0, os.SEEK_SET)
    return os.fdopen(handle, "r+b")

"""The generator: reports, persistent data, dumps and simulated input.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import asyncio
import ctypes
import logging
import os
import time
from ctypes import byref, c_void_p
from functools import partial
from itertools import repeat
from pathlib import Path
from types import TracebackType
from typing import IO, Any, Callable, Optional, Type, Union

from . import native
from .calls import AsyncRun, DirectRun, JobRun, Slots, Translate, each, is_main_thread, running
from .calls import store
from .errors import failure_of
from .handles import Handles
from .loading import Library, StrPath, load_library
from .packing import PackedRequest, encoded, packed_values
from .report_types import ReportTypeInfo, guid_of, read_report_types
from .results import (Convert, nothing, outcome_of, report_bytes, report_file, text_of, value_of)
from .values import ReportType, Request, Value, Values

_log = logging.getLogger("strata_repgenlib")
_log.addHandler(logging.NullHandler())


class Generator:
    """Makes reports from the templates of one data directory, "<folder>/.rgen".

    It is a context manager; `close` or the end of the block frees it. Every method may be called
    from any thread, several at once. What fails in the library is a ReportError.

    `folder` must exist. `translate` is as in `set_translator`. `library` is a result of
    `load_library`, or a path for it.

    >>> request = Request("acquisition", "txt", {"Device": {"Model": "TH500"}})
    >>> with Generator("case") as generator:
    ...     b"TH500" in generator.generate_bytes(request)
    True
    """

    def __init__(self, folder: StrPath, *, translate: Optional[Translate] = None,
                 library: Union[Library, StrPath, None] = None) -> None:
        self.library = library if isinstance(library, Library) else load_library(library)
        self._handles = Handles(self.library)
        # The running jobs by report type, for `cancel`.
        self._jobs: dict[bytes, Slots] = {}
        self._futures: set[asyncio.Future[Any]] = set()
        self._folder = ""
        self.set_folder(folder)
        if translate is not None:
            self.set_translator(translate)

    def __enter__(self) -> Generator:
        return self

    def __exit__(self, _type: Optional[Type[BaseException]], _value: Optional[BaseException],
                 _traceback: Optional[TracebackType]) -> None:
        self.close()

    async def __aenter__(self) -> Generator:
        return self

    async def __aexit__(self, _type: Optional[Type[BaseException]], _value: Optional[BaseException],
                        _traceback: Optional[TracebackType]) -> None:
        await self.aclose()

    def __del__(self) -> None:
        # A constructor that failed early has no handles.
        if hasattr(self, "_handles"):
            self._handles.close()

    def close(self) -> None:
        """Waits for the running calls of other threads and frees the generator; asynchronous
        reports go on. Must not be called by a translator."""
        self._handles.close()

    async def aclose(self) -> None:
        """Waits until the asynchronous reports of this event loop have ended, cancelled ones too,
        and closes the generator, without blocking the loop."""
        loop = asyncio.get_running_loop()
        while waiting := [future for future in self._futures if future.get_loop() is loop]:
            await asyncio.wait(waiting)
        await asyncio.to_thread(self.close)

    @property
    def folder(self) -> Path:
        """The folder that contains the data directory."""
        return Path(self._folder)

    def set_folder(self, folder: StrPath) -> None:
        """Uses the data directory of another folder, which must exist. A relative path is resolved
        against the current folder at the time of this call."""
        path = _absolute(_path(folder, "the folder"))
        with self._handles.turn():
            self._handles.require_open()
            self._handles.set_folder(path)
            self._folder = path

    def report_types(self) -> list[ReportTypeInfo]:
        """The usable report types of the data directory, sorted by name.

        >>> [one.name for one in Generator("case").report_types()]
        ['acquisition']
        """
        return read_report_types(self._folder)

    def set_translator(self, translate: Optional[Translate], *, markup: bool = False) -> None:
        """Sets the function that translates the marked texts of templates; None for none.

        Its argument is the text as written in the template; it returns a str, which is escaped:
        "&", "<", ">" and "'" are, each unless the original text contains it, the last two also
        unless it contains "<". "{" and "}" are not: in attributes of the template they enclose an
        XPath expression. With `markup` the translation
        becomes part of the template without escapes; it must contain no reference that XML does not
        know. In both forms characters that XML does not allow become U+FFFD, and a text that is
        returned unchanged stays as it is.

        The function runs on the generating threads, one at a time, with the context variables of
        the caller. It must not call this generator: ReenteredError. When it raises an exception,
        this and all further texts of the report stay as they are, and the generating method raises
        the exception after the report. Reports that have started keep the previous function.
        """
        with self._handles.turn():
            self._handles.require_open()
            self._handles.set_translator(translate, markup)

    def generate_file(self, request: Request, path: StrPath) -> Path:
        """Writes a report to a file, replacing an older one, and returns its path.

        For "pdf" the converter runs, unless the request disables it; ConversionError if it made no
        complete pdf.
        """
        output = _path(path, "the output path")
        self._generate(request, native.OUTPUT_FILE, output, nothing)
        return Path(output)

    def generate_bytes(self, request: Request) -> bytes:
        """Returns a report as bytes, without any conversion."""
        report: bytes = self._generate(request, native.OUTPUT_BYTES, "", report_bytes)
        return report

    def open_report(self, request: Request, path: StrPath) -> IO[bytes]:
        """Opens a report as a file that vanishes when it is closed, without any conversion.

        On Linux the file is open for reading and writing, with the file offset at its start, and
        its name is already removed. On Windows it is open for writing only, with the offset at the
        end of the report; the path should be ASCII.
        """
        output = _path(path, "the output path")
        file: IO[bytes] = self._generate(request, native.OUTPUT_DELETE_ON_CLOSE, output,
                                         report_file)
        return file

    async def generate_file_async(self, request: Request, path: StrPath) -> Path:
        """As `generate_file`, without blocking the event loop. The report is cancelled with its
        task, which does not wait for its end; `aclose` does."""
        output = _path(path, "the output path")
        await self._generate_async(request, native.OUTPUT_FILE, output, nothing)
        return Path(output)

    async def generate_bytes_async(self, request: Request) -> bytes:
        """As `generate_bytes`, without blocking the event loop; see `generate_file_async`.

        >>> async def report():
        ...     async with Generator("case") as generator:
        ...         return await generator.generate_bytes_async(Request(None, "txt", {"Note": "x"}))
        >>> len(asyncio.run(report())) > 100
        True
        """
        report: bytes = await self._generate_async(request, native.OUTPUT_BYTES, "", report_bytes)
        return report

    async def open_report_async(self, request: Request, path: StrPath) -> IO[bytes]:
        """As `open_report`, without blocking the event loop; see `generate_file_async`."""
        output = _path(path, "the output path")
        file: IO[bytes] = await self._generate_async(request, native.OUTPUT_DELETE_ON_CLOSE, output,
                                                     report_file)
        return file

    def cancel(self, report_type: Optional[ReportType] = None) -> None:
        """Asks the reports of a report type, or all of this generator, to stop: they raise
        Cancelled unless they are past their last check. May wait while a template runs. A single
        report is cancelled by Ctrl-C on the main thread, or with its task of asyncio."""
        guid = None if report_type is None else self._guid(report_type)
        with self._handles.turn():
            self._handles.require_open()
            chosen = (tuple(self._jobs.values()) if guid is None
                      else (self._jobs.get(bytes(guid), {}),))
            for slots in chosen:
                each(self.library.rgenh_cancelJob, slots.values(), repeat(None))
            error = native.new_error()
            self._handles.check(self.library.rgenh_cancel(
                self._handles.direct, guid and byref(guid), byref(error)), error)

    def persistent_data(self, report_type: Optional[ReportType] = None) -> dict[str, str]:
        """The persistent data of a report type, as reports show it and as `set_persistent_data` got
        it, except: entries without a name or text, and white space at the edges of names, are not
        stored; characters that XML does not allow are returned as U+FFFD.

        StatusError with RGEN_E_OPEN_PERSIST if nothing was stored yet or the file cannot be read.
        """
        guid, pairs, error = self._guid(report_type), native.RgenCAnsiStringPairSet(), _new_error()
        pointer = byref(pairs)
        with self._handles.turn():
            self._handles.require_open()
            try:
                self._handles.check(self.library.rgenh_getPersistentTexts(
                    self._handles.direct, byref(guid), pointer, byref(error)), error)
                texts = getattr(pairs, "values")
                return {text_of(pairs.keys[i]): text_of(texts[i]) for i in range(pairs.count)}
            finally:
                self.library.rgen_freeRgenCAnsiStringSet(pointer)

    def set_persistent_data(self, report_type: Optional[ReportType], values: Values) -> None:
        """Replaces the persistent data of a report type by values, as reports show them; no
        merging. Handles are left out.

        ArgumentError for texts that cannot be stored: more than 10,000,000 bytes ("&" and white
        space at an edge count as five), and Markup with a reference that XML does not know, which
        would damage other entries. Characters that XML does not allow become U+FFFD.
        """
        packed, guid, error = packed_values(values), self._guid(report_type), _new_error()
        with self._handles.turn():
            self._handles.require_open()
            self._handles.check(self.library.rgenh_setPersistentValues(
                self._handles.direct, byref(guid), packed.address, packed.count, byref(error)),
                error, tuple(packed.names))

    def dump(self, values: Values, path: StrPath) -> None:
        """Writes values as an XML file of names and display texts; replaces an existing file."""
        output = encoded(_path(path, "the path of the dump"), "the path of the dump")
        packed = PackedRequest(Request(values=values), native.RgenGuid(), native.OUTPUT_BYTES, b"")
        request, error = c_void_p(), _new_error()
        with self._handles.turn():
            self._handles.require_open()
            try:
                self._new_request(request, packed)
                self._handles.check(self.library.rgenh_dumpRawInputDataToFile(
                    self._handles.direct, self.library.rgenh_getRequestInput(request), output,
                    byref(error)), error)
            finally:
                self.library.rgenh_freeRequest(request)

    def simulated_input(self, path: StrPath) -> dict[str, Value]:
        """Reads typed values from an XML file; none when it is missing, cannot be read or has no
        valid property. An invalid byte dump in it makes the library print one line."""
        source = encoded(_path(path, "the path of the input"), "the path of the input")
        values, error = native.RgenCVariantSet(), _new_error()
        pointer = byref(values)
        with self._handles.turn():
            self._handles.require_open()
            try:
                self._handles.check(self.library.rgenh_getSimulatedRawDataFromFile(
                    self._handles.direct, source, pointer, byref(error)), error)
                items = (values.items[i] for i in range(values.count))
                return {text_of(item.name): value_of(item) for item in items
                        if item.type != native.TYPE_EMPTY}
            finally:
                self.library.rgen_freeRgenCVariantSet(pointer)

    def status_text(self, status: int) -> str:
        """The library's description of a status, in English.

        >>> Generator("case").status_text(Status.RGEN_E_EMPTY_INPUT)
        'Resulting intput dataset is empty'
        """
        text: bytes = self.library.rgenh_getStatusText(status)
        return text.decode()

    def _guid(self, report_type: Optional[ReportType]) -> native.RgenGuid:
        return guid_of(self.library, self._folder, report_type)

    def _packed(self, request: Request, mode: int, path: str) -> PackedRequest:
        return PackedRequest(request, self._guid(request.type), mode,
                             encoded(path, "the output path"))

    def _new_request(self, request: c_void_p, packed: PackedRequest) -> None:
        """Stores a new request in the slot, which the caller frees in any case."""
        error = _new_error()
        store(request, self.library.rgenh_newRequest, byref(packed.parts), byref(error))
        if not request:
            raise failure_of(self.library, error, packed.values.names, packed.pairs.names)

    def _generate(self, request: Request, mode: int, path: str, convert: Convert) -> Any:
        packed, record, start = self._packed(request, mode, path), c_void_p(), time.perf_counter()
        with self._handles.turn():
            self._handles.require_open()
            try:
                self._new_request(record, packed)
                generate = self._by_job if is_main_thread() else self._directly
                outcome = generate(record, packed, convert)
            finally:
                self.library.rgenh_freeRequest(record)
        _log.debug("%s report of type %s%s: %.3f ms", request.format, request.type,
                   f" to {path}" if path else "", 1000 * (time.perf_counter() - start))
        return outcome

    def _directly(self, request: c_void_p, _packed: PackedRequest, convert: Convert) -> Any:
        call = partial(self.library.rgenh_generateReport, self._handles.direct,
                       self.library.rgenh_getRequestInput(request))
        with DirectRun() as run:
            run.translation = self._handles.translation
            return outcome_of(self.library, call, run, convert)

    def _by_job(self, request: c_void_p, packed: PackedRequest, convert: Convert) -> Any:
        """On the main thread, where Ctrl-C may come between any two steps."""
        run = JobRun(self.library, self._jobs.setdefault(packed.guid, {}))
        try:
            self._handles.start(run, request)
            run.wait()
            return outcome_of(self.library, partial(self.library.rgenh_takeJobResult, run.job), run,
                              convert)
        finally:
            try:
                run.slots.pop(run.key, None)
            finally:
                try:
                    running.pop(run.registered, None)
                finally:
                    self.library.rgenh_freeJob(run.job)

    async def _generate_async(self, request: Request, mode: int, path: str,
                              convert: Convert) -> Any:
        packed, start = self._packed(request, mode, path), time.perf_counter()

        def take(run: AsyncRun) -> Any:
            return outcome_of(self.library, partial(self.library.rgenh_takeJobResult, run.job), run,
                              convert)

        run = AsyncRun(self.library, self._jobs.setdefault(packed.guid, {}), take)
        self._start_async(run, packed)
        try:
            outcome = await asyncio.shield(run.future)
        except asyncio.CancelledError:
            run.cancel()
            raise
        _log.debug("%s report of type %s%s: %.3f ms", request.format, request.type,
                   f" to {path}" if path else "", 1000 * (time.perf_counter() - start))
        return outcome

    def _start_async(self, run: AsyncRun, packed: PackedRequest) -> None:
        request = c_void_p()
        with self._handles.turn():
            self._handles.require_open()
            try:
                self._new_request(request, packed)
                self._handles.start(run, request)
            except BaseException:
                if not run.job:
                    run.slots.pop(run.key, None)
                    running.pop(run.key, None)
                raise
            finally:
                self.library.rgenh_freeRequest(request)
        self._futures.add(run.future)
        run.future.add_done_callback(self._futures.discard)


def _new_error() -> native.RgenhError:
    return native.new_error()


def _path(path: StrPath, what: str) -> str:
    """The path as a str; ValueError for an empty one, and the exceptions of `encoded`."""
    text = os.fspath(path)
    encoded(text, what)
    if not text:
        raise ValueError(f"{what} is empty")
    return text


def _absolute(path: str) -> str:
    """An absolute path, which stays valid if the current folder changes later. OSError if the
    current folder does not exist any more."""
    if os.path.isabs(path):
        return path
    # On Linux ".." after a link is not the folder that contains the link.
    return os.path.abspath(path) if os.name == "nt" else os.path.join(os.getcwd(), path)

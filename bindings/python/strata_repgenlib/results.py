"""What the library returns, as values of Python.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import ctypes
import os
import sys
from typing import IO, Any, Callable, Union

from . import native
from .calls import Run
from .errors import failure_of
from .loading import Library
from .values import Hint, Hinted

Convert = Callable[[native.RgenCVariant], Any]

# The greatest number of bytes that ctypes.string_at copies: it takes a C int.
_GREATEST_INT = (1 << 31) - 1

if sys.platform == "win32":
    import msvcrt
    _close = ctypes.windll.kernel32.CloseHandle
    _close.argtypes = [ctypes.c_void_p]
else:
    _close = os.close


def outcome_of(library: Library, call: Callable[[Any, Any], int], run: Run,
               convert: Convert) -> Any:
    """Makes a call that fills a result, and converts it; raises what the translator of the run
    raised, or the failure of the call."""
    result, error = native.RgenCVariant(), native.new_error()
    pointer = ctypes.byref(result)
    try:
        status = call(pointer, ctypes.byref(error))
        if run.exception is not None:
            raise run.exception
        if status < 0:
            raise failure_of(library, error)
        return convert(result)
    finally:
        run.exception = None
        try:
            if result.type == native.TYPE_HANDLE:
                _close(result.value.handleValue or 0)
        finally:
            library.rgen_freeRgenCVariant(pointer)


def nothing(_result: native.RgenCVariant) -> None:
    """For reports that are files."""


def report_bytes(result: native.RgenCVariant) -> bytes:
    return _bytes_of(result.value.byteArrayValue) if result.type == native.TYPE_BYTE_ARRAY else b""


def report_file(result: native.RgenCVariant) -> IO[bytes]:
    """The open file. On Linux its descriptor is a copy, made together with the file object: the
    caller closes the original one."""
    # ctypes returns None for a null pointer, which here is descriptor 0.
    handle: int = result.value.handleValue or 0
    if sys.platform == "win32":
        descriptor = msvcrt.open_osfhandle(handle, os.O_WRONLY)
        result.type = native.TYPE_EMPTY
        return open(descriptor, "wb")
    os.lseek(handle, 0, os.SEEK_SET)
    file: IO[bytes] = next(map(open, map(os.dup, (handle,)), ("r+b",)))
    return file


def _bytes_at(address: int, size: int) -> bytes:
    if size <= _GREATEST_INT:
        return ctypes.string_at(address, size)
    return bytes((ctypes.c_char * size).from_address(address))


def text_of(record: native.RgenAnsiString) -> str:
    return _bytes_at(record.data, record.length).decode("utf-8", "surrogateescape")


def _bytes_of(record: native.RgenByteArray) -> bytes:
    return _bytes_at(record.data, record.size)


def value_of(record: native.RgenCVariant) -> Union[str, bytes, int, Hinted]:
    """A value that the library returned; integers keep their hint unless it is the generic one."""
    if record.type == native.TYPE_STRING:
        return text_of(record.value.stringValue)
    if record.type == native.TYPE_BYTE_ARRAY:
        return _bytes_of(record.value.byteArrayValue)
    number: int = record.value.int64Value
    return number if record.hint == Hint.GENERIC else Hinted(number, Hint(record.hint))

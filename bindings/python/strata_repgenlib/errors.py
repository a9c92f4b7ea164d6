"""The statuses of the library and the exceptions of this package.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import enum
import os
from contextlib import suppress

_WRAP = 1 << 32


class Status(enum.IntEnum):
    """The outcomes of the library's operations, under their names in C; negative is failure."""

    RGEN_OK = 0
    RGEN_E_BAD_PARAMETER = 0xC0000001 - _WRAP
    RGEN_E_DIR_NOT_FOUND = 0xC0000002 - _WRAP
    RGEN_E_CREATE_DIR = 0xC0000003 - _WRAP
    RGEN_E_CREATE_CONFIG = 0xC0000004 - _WRAP
    RGEN_E_OPEN_CONFIG = 0xC0000005 - _WRAP
    RGEN_E_OPEN_PERSIST = 0xC0000006 - _WRAP
    RGEN_E_EMPTY_INPUT = 0xC0000007 - _WRAP
    RGEN_E_GUID_NOT_IN_CONFIG = 0xC0000008 - _WRAP
    RGEN_E_TEMPLATE_NOT_FOUND = 0xC0000009 - _WRAP
    RGEN_E_UNKNOWN_FORMAT = 0xC000000A - _WRAP
    RGEN_E_OVERWRITE_OUTPUT = 0xC000000B - _WRAP
    RGEN_E_CREATE_OUTPUT = 0xC000000C - _WRAP
    RGEN_E_WRITE_OUTPUT = 0xC000000D - _WRAP
    RGEN_E_UNKNOWN_OUTPUT_MODE = 0xC000000E - _WRAP
    RGEN_E_WRITE_ALL_OUTPUT = 0xC000000F - _WRAP
    RGEN_E_DELETE_PERSIST = 0xC0000010 - _WRAP
    RGEN_E_CREATE_PERSIST = 0xC0000011 - _WRAP
    RGEN_E_RUN_EXTERNAL = 0xC0000012 - _WRAP
    RGEN_E_EXTERNAL_FAILED = 0xC0000013 - _WRAP
    RGEN_E_OPEN_SIMULATION = 0xC0000014 - _WRAP
    RGEN_E_DELETE_DUMP = 0xC0000015 - _WRAP
    RGEN_E_XPATH_DOCUMENT = 0xC0010001 - _WRAP
    RGEN_E_XPATH_CONTEXT = 0xC0010002 - _WRAP
    RGEN_E_XPATH_SEARCH = 0xC0010003 - _WRAP
    RGEN_E_NO_PERSIST_IN_CONFIG = 0xC0010004 - _WRAP
    RGEN_E_XPATH_NOT_NODE = 0xC0010005 - _WRAP
    RGEN_E_XPATH_NODE_EMPTY = 0xC0010006 - _WRAP
    RGEN_E_NO_TYPE_MAP = 0xC0010007 - _WRAP
    RGEN_E_NO_VALID_TYPE_MAP = 0xC0010008 - _WRAP
    RGEN_E_NO_PERSIST_VALUES = 0xC0010009 - _WRAP
    RGEN_E_NO_VALID_PERSIST_VALUES = 0xC001000A - _WRAP
    RGEN_E_XSLT_PARSE = 0xC0020001 - _WRAP
    RGEN_E_XSLT_APPLY = 0xC0020002 - _WRAP
    RGEN_E_XSLT_RESULT = 0xC0020003 - _WRAP
    RGEN_E_UNKNOWN = 0xC000FFFF - _WRAP
    RGEN_CANCELED = 0x80000001 - _WRAP


def status_name(status: int) -> str:
    """The symbolic name of a status, "RGEN_E_BAD_PARAMETER"; empty for a number without one."""
    try:
        return Status(status).name
    except ValueError:
        return ""


class StatusError(RuntimeError):
    """A failure that the library reported.

    `status` is the number (compare it with Status), `name` its symbolic name, `text` the library's
    description, `subject` what the call was about.
    """

    def __init__(self, subject: str, status: int, text: str) -> None:
        self.subject = subject
        self.status = status
        self.name = status_name(status)
        self.text = text
        super().__init__(subject, status, text)

    def __str__(self) -> str:
        number = f"0x{self.status & (_WRAP - 1):08X}"
        return f"{self.subject}: {self.text} ({' '.join(filter(None, (number, self.name)))})"


class Cancelled(StatusError):
    """Somebody cancelled the generation."""


class ConversionError(RuntimeError):
    """The library reported success, but the converter made no pdf, or not a whole one.

    `path` is the file that was asked for, `reason` the text of "<path>.error.txt", empty when the
    converter left none.
    """

    def __init__(self, path: str, problem: str, reason: str) -> None:
        self.path = path
        self.problem = problem
        self.reason = reason
        super().__init__(path, problem, reason)

    def __str__(self) -> str:
        return ": ".join(filter(None, (self.path, self.problem, self.reason)))


class LibraryNotFoundError(OSError):
    """The shared library is at none of the places, or cannot be loaded from them."""


def forget_reason(path: str) -> None:
    """Removes the text of an earlier failure, which would be taken for one of this conversion. What
    cannot be removed stays."""
    with suppress(OSError):
        os.remove(path + ".error.txt")


def verify_pdf(path: str) -> None:
    """Checks what the converter made of a successful generation: exit codes tell nothing."""
    reason = None
    if os.path.isfile(path + ".error.txt"):
        with open(path + ".error.txt", encoding="utf-8", errors="replace") as file:
            reason = file.read(65536).strip()
    if not os.path.exists(path):
        raise ConversionError(path, "the converter made no file", reason or "")
    if not _is_whole_pdf(path):
        raise ConversionError(path, "the converter's file is not a whole pdf", reason or "")
    # A page about its failure is no report; an older text was removed before the conversion.
    if reason is not None:
        raise ConversionError(path, "the converter failed", reason)


def _is_whole_pdf(path: str) -> bool:
    if not os.path.isfile(path):
        return False
    with open(path, "rb") as file:
        start = file.read(5)
        file.seek(max(0, os.path.getsize(path) - 1024))
        return start == b"%PDF-" and b"%%EOF" in file.read()

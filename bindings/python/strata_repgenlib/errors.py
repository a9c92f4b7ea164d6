"""The exceptions of this package.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import os
from contextlib import suppress

from .status import Status


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
        number = f"0x{self.status & 0xFFFFFFFF:08X}"
        return f"{self.subject}: {self.text} ({' '.join(filter(None, (number, self.name)))})"


class Cancelled(StatusError):
    """The generation was cancelled."""


class ConversionError(RuntimeError):
    """The library reported success, but the converter made no pdf, or not a complete one.

    `path` is the requested file, `reason` the text of "<path>.error.txt", empty when the
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
    """The shared library was not found, or cannot be loaded."""


def forget_reason(path: str) -> None:
    """Removes the text of an earlier failure, so that it is not mistaken for a new one. A file that
    cannot be removed stays."""
    with suppress(OSError):
        os.remove(path + ".error.txt")


def verify_pdf(path: str) -> None:
    """Checks the pdf of a successful generation: the library ignores the converter's exit code."""
    reason = None
    if os.path.isfile(path + ".error.txt"):
        with open(path + ".error.txt", encoding="utf-8", errors="replace") as file:
            reason = file.read(65536).strip()
    if not os.path.exists(path):
        raise ConversionError(path, "the converter made no file", reason or "")
    if not _is_whole_pdf(path):
        raise ConversionError(path, "the converter's file is not a whole pdf", reason or "")
    # The pdf is then a page about the failure; an older text was removed before the conversion.
    if reason is not None:
        raise ConversionError(path, "the converter failed", reason)


def _is_whole_pdf(path: str) -> bool:
    if not os.path.isfile(path):
        return False
    with open(path, "rb") as file:
        start = file.read(5)
        file.seek(max(0, os.path.getsize(path) - 1024))
        return start == b"%PDF-" and b"%%EOF" in file.read()

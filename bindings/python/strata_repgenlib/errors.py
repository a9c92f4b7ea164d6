"""The exceptions of the package. All derive from ReportError, and from the built-in exception that
fits.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import sys
from typing import TYPE_CHECKING, Sequence

from . import native
from .status import Status

if TYPE_CHECKING:
    from .loading import Library


class ReportError(Exception):
    """A failure of the library; the base of all exceptions of this package.

    status    its status, a negative number; see Status
    name      the name of the status, "RGEN_E_EMPTY_INPUT"; empty for a number without one
    text      the library's description of the status
    path      the path that the failure is about; empty if there is none
    argument  the value or argument that is wrong, 'value "Started"'; empty if none is
    hint      what to do about it, one sentence; may be empty
    """

    status: int = Status.RGEN_E_UNKNOWN
    name: str = "RGEN_E_UNKNOWN"
    text: str = ""
    path: str = ""
    argument: str = ""
    hint: str = ""


class StatusError(ReportError, RuntimeError):
    """The library returned a negative status."""


class Cancelled(StatusError):
    """The report was cancelled."""


class ConversionError(ReportError, RuntimeError):
    """The converter made no pdf, or not a complete one."""


class FileSystemError(ReportError, OSError):
    """The file system refused; `errno`, `strerror` and `filename` are those of OSError."""

    def __str__(self) -> str:
        return str(self.strerror)


class AccessDeniedError(FileSystemError, PermissionError):
    """The file system refused for lack of rights."""


class EncodingError(ReportError, ValueError):
    """A path or another text is not valid UTF-8."""


class ArgumentError(ReportError, ValueError):
    """A value or argument is wrong, such as a text with a zero byte."""


class OutOfMemoryError(ReportError, MemoryError):
    """Memory or threads are exhausted."""


class ReenteredError(ReportError, RuntimeError):
    """A translator called its own generator."""


class TranslatorError(ReportError, ValueError):
    """A translation cannot be used."""


class UnknownReportTypeError(ReportError, LookupError):
    """The data directory has no report type of this name, or several."""


class LibraryNotFoundError(ReportError, OSError):
    """The shared libraries were not found, or cannot be loaded."""


class LibraryVersionError(LibraryNotFoundError):
    """The loaded libraries have another version than this package."""


_KINDS: dict[int, type[ReportError]] = {
    native.ERROR_STATUS: StatusError, native.ERROR_MEMORY: OutOfMemoryError,
    native.ERROR_ENCODING: EncodingError, native.ERROR_FILE_SYSTEM: FileSystemError,
    native.ERROR_REENTERED: ReenteredError, native.ERROR_CONVERSION: ConversionError,
    native.ERROR_ARGUMENT: ArgumentError, native.ERROR_CALLBACK: TranslatorError}


# The next step of the status is about a status that the library has returned.
_HINTS: dict[int, str] = {
    native.ERROR_MEMORY: "Make smaller reports, or fewer at the same time.",
    native.ERROR_ENCODING: "Pass valid UTF-8.",
    native.ERROR_FILE_SYSTEM: "Check the path and the rights to it.",
    native.ERROR_REENTERED: "Use another generator in the translator.",
    native.ERROR_ARGUMENT: "Correct the value.",
    native.ERROR_CALLBACK: "Correct the translation."}


def _file_system_error(number: int, message: str, path: str) -> ReportError:
    # Python derives errno from the number of Windows, and the class of OSError itself only.
    known = (OSError(None, message, path, number) if sys.platform == "win32"
             else OSError(number, message, path))
    kind = AccessDeniedError if isinstance(known, PermissionError) else FileSystemError
    if sys.platform == "win32":
        return kind(None, message, path or None, number)
    return kind(number, message, path or None)


def described(library: Library, failure: ReportError, status: int,
              kind: int = native.ERROR_STATUS) -> ReportError:
    """The exception with the texts of its status and kind."""
    failure.status = status
    failure.name = library.rgenh_getStatusName(status).decode()
    failure.text = library.rgenh_getStatusText(status).decode()
    failure.hint = _HINTS.get(kind) or library.rgenh_getStatusNextStep(status).decode()
    return failure


def failure_of(library: Library, error: native.RgenhError,
               names: Sequence[str] = (), pairs: Sequence[str] = ()) -> ReportError:
    """The exception for an error record; with the names of the values and pairs of the call."""
    message = error.message.decode("utf-8", "replace")
    path = error.path.decode("utf-8", "surrogateescape")
    what, entries = ("pair", pairs) if error.entryIsPair else ("value", names)
    argument = f'{what} "{entries[error.entry]}"' if error.entry < len(entries) else ""
    if argument:
        message = f"{argument}: {message}"
    if error.kind == native.ERROR_FILE_SYSTEM:
        failure = _file_system_error(error.systemError, message, path)
    elif error.status == Status.RGEN_CANCELED:
        failure = Cancelled(message)
    else:
        failure = _KINDS.get(error.kind, ReportError)(message)
    failure.path, failure.argument = path, argument
    return described(library, failure, error.status, error.kind)

"""Reports from typed values through XSLT templates: strata_repgenlib for Python.

    from strata_repgenlib import Generator, Hint, Hinted, Request

    with Generator("reports") as generator:
        request = Request("disk", "html",
                          {"Device": "Disk 1 & 2", "Capacity": Hinted(500107862016, Hint.SIZE),
                           "Err": [{"Address": Hinted(4096, Hint.ADDRESS)}]})
        generator.generate_file(request, "report.html")

Failures of the library are exceptions that derive from ReportError.

SPDX-License-Identifier: MIT
"""

from .errors import (AccessDeniedError, ArgumentError, Cancelled, ConversionError, EncodingError,
                     FileSystemError, LibraryNotFoundError, LibraryVersionError, OutOfMemoryError,
                     ReenteredError, ReportError, StatusError, TranslatorError,
                     UnknownReportTypeError)
from .generator import Generator
from .loading import Library, load_library
from .report_types import ReportTypeInfo
from .status import Status
from .values import Handle, Hint, Hinted, Markup, Request, Value, Values
from .version import __version__

__all__ = ["AccessDeniedError", "ArgumentError", "Cancelled", "ConversionError", "EncodingError",
           "FileSystemError", "Generator", "Handle", "Hint", "Hinted", "Library",
           "LibraryNotFoundError", "LibraryVersionError", "Markup", "OutOfMemoryError",
           "ReenteredError", "ReportError", "ReportTypeInfo", "Request", "Status", "StatusError",
           "TranslatorError", "UnknownReportTypeError", "Value", "Values", "__version__",
           "load_library"]

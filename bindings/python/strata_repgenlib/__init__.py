"""Reports from typed values through XSLT templates: strata_repgenlib for Python.

    from strata_repgenlib import Generator, Hint, Hinted, Request

    with Generator("reports") as generator:
        request = Request("5a0c6f1e-3b74-4e59-9d21-7c8e0f6a41b2", "html",
                          {"Device": "Disk 1 & 2", "Capacity": Hinted(500107862016, Hint.SIZE)})
        generator.generate_file(request, "report.html")

SPDX-License-Identifier: MIT
"""

from .errors import Cancelled, ConversionError, LibraryNotFoundError, StatusError
from .generator import Generator
from .library import Library, load_library
from .status import Status
from .values import Handle, Hint, Hinted, Markup, Request, Value
from .version import __version__

__all__ = ["Cancelled", "ConversionError", "Generator", "Handle", "Hint", "Hinted", "Library",
           "LibraryNotFoundError", "Markup", "Request", "Status", "StatusError", "Value",
           "__version__", "load_library"]

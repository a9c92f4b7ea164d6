"""Values, hints and requests.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import datetime
import decimal
import enum
import os
import uuid
from dataclasses import dataclass
from typing import Any, Iterable, Iterator, Mapping, Optional, Protocol, Sequence, Tuple, Union


class Hint(enum.IntEnum):
    """How an integer is shown in a report."""

    UNINITIALIZED = 0  # Same as GENERIC.
    GENERIC = 1  # Signed decimal.
    TIME = 2  # Seconds since 1970 UTC, as local "23:59:59".
    DATE = 3  # Same, local date " 1.01.1970".
    DATE_TIME = 4  # Same, " 1.01.1970 23:59:59".
    SIZE = 5  # Signed decimal.
    ADDRESS = 6  # "0x" and lower-case hexadecimal digits.
    SPEED = 7  # Signed decimal.
    DUMP = 8  # Of byte arrays that the library returns.


@dataclass(frozen=True)
class Hinted:
    """An integer or moment with a hint.

    >>> Hinted(4096, Hint.ADDRESS).number
    4096
    """

    number: Union[int, datetime.date]
    hint: Hint


@dataclass(frozen=True)
class Markup:
    """A text that is XML content already: Markup("&#8364;") is a euro sign, a plain "&" is lost.

    Persistent data refuses a reference that XML does not know.
    """

    content: str


@dataclass(frozen=True)
class Handle:
    """A handle or descriptor. Reports, dumps and persistent data omit it; it is not closed."""

    number: int

    def __post_init__(self) -> None:
        if not isinstance(self.number, int) or isinstance(self.number, bool):
            raise TypeError(f"a handle must be an int, not {self.number!r}")
        if not -(1 << 63) <= self.number < 1 << 64:
            raise OverflowError(f"{self.number} does not fit into 64 bits")


class Records(Protocol):
    """A table of records, such as a DataFrame."""

    def to_dict(self, orient: Any) -> Any: ...


# A value without others inside; docs/values.md describes all of them.
Plain = Union[str, Markup, int, bool, float, decimal.Decimal, Hinted, datetime.datetime,
              datetime.date, datetime.time, datetime.timedelta, bytes, bytearray, memoryview,
              "os.PathLike[str]", Handle, None]
# A mapping or list may contain values of all kinds, also others of its kind.
Value = Union[Plain, Mapping[Any, Any], Sequence[Any], Records]
Values = Union[Mapping[str, Any], Iterable[Tuple[str, Any]]]

Text = Union[str, Markup]
Texts = Union[Mapping[str, Text], Iterable[Tuple[str, Text]]]
ReportType = Union[uuid.UUID, str]


@dataclass
class Request:
    """The input of a report; it can be reused, also by several threads at once.

    >>> Request("acquisition", "txt", {"Device": {"Model": "TH500"}, "Note": ["one", "two"]}).format
    'txt'
    """

    # The report type: its GUID, or its name, the file name of its template without the ending. May
    # be None if the data directory has only one.
    type: Optional[ReportType] = None
    # "html", "pdf" or "txt"; also names the template's folder.
    format: str = "html"
    # Values by name; they override pairs and persistent data of the same name. A mapping, or pairs
    # of a name and a value; later ones override earlier ones of the same name.
    values: Values = ()
    # Texts by name; they override persistent data of the same name.
    pairs: Texts = ()
    # False: a "pdf" report is written as the template made it, without the converter.
    convert: bool = True
    # Passed to the converter as its base. It must not contain a double quote.
    converter_base: str = ""

    def __post_init__(self) -> None:
        # An iterator would be exhausted after the first report.
        if isinstance(self.values, Iterator):
            self.values = list(self.values)
        if isinstance(self.pairs, Iterator):
            self.pairs = list(self.pairs)

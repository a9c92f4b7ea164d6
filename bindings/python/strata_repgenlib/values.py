"""Values, hints and requests.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import datetime
import enum
import uuid
from dataclasses import dataclass
from typing import Iterable, Iterator, Mapping, Tuple, TypeVar, Union


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
    """An integer or moment with a hint: Hinted(4096, Hint.ADDRESS), Hinted(now, Hint.TIME)."""

    number: Union[int, datetime.datetime]
    hint: Hint


@dataclass(frozen=True)
class Markup:
    """A text that is XML content already: Markup("&#8364;") is a euro sign, a plain "&" is lost.

    In persistent data such a text is decoded twice before a report shows it; a reference that XML
    does not know is refused there.
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


# A text, a text as XML content, a number, seconds with a hint, a date and time, a date, bytes, a
# handle. A bool is none: it has no display of its own.
Value = Union[str, Markup, int, Hinted, datetime.datetime, datetime.date, bytes, bytearray,
              memoryview, Handle]
Text = Union[str, Markup]

Item = TypeVar("Item", covariant=True)
Entries = Union[Mapping[str, Item], Iterable[Tuple[str, Item]]]
ReportType = Union[uuid.UUID, str]


@dataclass
class Request:
    """The input of a report; it can be reused, also by several threads at once."""

    # The GUID of the report type.
    type: ReportType
    # "html", "pdf" or "txt"; also names the template's folder.
    format: str = "html"
    # Typed values; they override pairs and persistent data of the same name. A mapping, or pairs of
    # a name and a value; later ones override earlier ones of the same name.
    values: Entries[Value] = ()
    # Name/text pairs; they override persistent data of the same name.
    pairs: Entries[Text] = ()
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


def as_guid(report_type: ReportType) -> uuid.UUID:
    """A GUID from a UUID or its text; ValueError for another text."""
    return report_type if isinstance(report_type, uuid.UUID) else uuid.UUID(report_type)


def as_dict(entries: Entries[Item]) -> dict[str, Item]:
    return dict(entries)


def as_integer(number: Union[int, datetime.date], hint: Hint) -> int:
    """The signed 64-bit number for the library; OverflowError if it does not fit."""
    if isinstance(number, datetime.datetime):
        seconds = int(number.timestamp() // 1)
    elif isinstance(number, datetime.date):
        seconds = int(datetime.datetime.combine(number, datetime.time()).timestamp() // 1)
    elif isinstance(number, int) and not isinstance(number, bool):
        seconds = number
    else:
        raise TypeError(f"{number!r} is no integer and no moment")
    if hint == Hint.ADDRESS and 1 << 63 <= seconds < 1 << 64:
        return seconds - (1 << 64)
    if not -(1 << 63) <= seconds < 1 << 63:
        raise OverflowError(f"{seconds} does not fit into 64 bits")
    return seconds

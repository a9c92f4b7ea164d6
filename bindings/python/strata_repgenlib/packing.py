"""Turns values into the packed arrays that the library reads: one block with all names and
contents, and one array of records.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import array
import ctypes
import datetime
import decimal
import math
import operator
import os
from itertools import accumulate
from typing import Any, Callable, Optional, Union

from . import native
from .nesting import flat
from .values import Handle, Hint, Hinted, Markup, Request, Texts, Values

_MASK = (1 << 64) - 1
# The last second that a report can show: the year 3000.
_LATEST = 32535215999
_FIELDS = 7  # Of RgenhValue, eight bytes each.
# Plain numbers: members of an enumeration cost more than the packing of a value.
_STRING, _INT64, _GENERIC = native.TYPE_STRING, native.TYPE_INT64, int(Hint.GENERIC)
_ADDRESS = int(Hint.ADDRESS)
_LEAST, _GREATEST = -(1 << 63), (1 << 63) - 1
_TIMES = (Hint.TIME, Hint.DATE, Hint.DATE_TIME)

# Type, hint, number and content of a value.
Content = Union[bytes, bytearray, memoryview]
Packed = tuple[int, int, int, Content]


def _text(value: str) -> Packed:
    return _STRING, _GENERIC, 0, value.encode()


def _number(value: int, hint: int = _GENERIC) -> Packed:
    if not _LEAST <= value <= (_MASK if hint == _ADDRESS else _GREATEST):
        raise OverflowError(f"{value} does not fit into 64 bits")
    return _INT64, hint, value & _MASK, b""


def _seconds(moment: datetime.date) -> int:
    if not isinstance(moment, datetime.datetime):
        moment = datetime.datetime.combine(moment, datetime.time())
    try:
        return math.floor(moment.timestamp())
    except (OverflowError, ValueError, OSError):
        return -1  # Far outside of what can be shown.


def _time(value: datetime.date, hint: int) -> Packed:
    seconds = _seconds(value)
    if not 0 <= seconds <= _LATEST:
        raise ValueError(f"a report shows times from 1970 to 3000 only, not {value}")
    return _number(seconds, hint)


def _time_of_day(value: datetime.time) -> Packed:
    if value.tzinfo is not None:
        raise ValueError("a time with a zone needs a date: use Hinted(datetime, Hint.TIME)")
    # No zone is more than a day away from UTC, so that this is never before 1970.
    return _time(datetime.datetime.combine(datetime.date(1970, 1, 3), value), Hint.TIME)


def _duration(value: datetime.timedelta) -> Packed:
    if value.microseconds == 0:
        return _number(value.days * 86400 + value.seconds)
    total = value // datetime.timedelta(microseconds=1)
    whole, part = divmod(abs(total), 1_000_000)
    return _text(f"{'-' if total < 0 else ''}{whole}.{part:06}".rstrip("0"))


def _fraction(value: Union[float, decimal.Decimal]) -> Optional[Packed]:
    exact = value if isinstance(value, decimal.Decimal) else decimal.Decimal(float.__repr__(value))
    if exact.is_nan():
        return None
    if exact.is_infinite():
        raise ValueError("an infinite number cannot be shown")
    return _text(format(exact, "f"))


def _hinted(value: Hinted) -> Packed:
    number, hint = value.number, Hint(value.hint)
    if isinstance(number, datetime.date):
        return _time(number, hint)
    if isinstance(number, bool) or not isinstance(number, int):
        raise TypeError(f"a hint needs an integer or a moment, not {number!r}")
    if hint in _TIMES and not 0 <= number <= _LATEST:
        raise ValueError(f"a report shows times from 1970 to 3000 only, not {number} seconds")
    return _number(number, hint)


def _bytes(value: Content) -> Packed:
    content = value if isinstance(value, bytes) else bytes(value)
    return native.TYPE_BYTE_ARRAY, Hint.DUMP, 0, content


def _handle(value: Handle) -> Packed:
    return native.TYPE_HANDLE, _GENERIC, value.number & _MASK, b""


# The first class that a value is an instance of; a bool is an int, a datetime a date.
_PACKERS: dict[type, Callable[[Any], Optional[Packed]]] = {
    str: _text,
    bool: lambda value: _text("true" if value else "false"),
    int: _number,
    float: _fraction,
    decimal.Decimal: _fraction,
    Hinted: _hinted,
    Markup: lambda value: (native.TYPE_MARKUP, _GENERIC, 0, value.content.encode()),
    datetime.datetime: lambda value: _time(value, Hint.DATE_TIME),
    datetime.date: lambda value: _time(value, Hint.DATE),
    datetime.time: _time_of_day,
    datetime.timedelta: _duration,
    bytes: _bytes,
    bytearray: _bytes,
    memoryview: _bytes,
    os.PathLike: lambda value: _text(os.fsdecode(value)),
    Handle: _handle,
    type(None): lambda value: None,
}


def _packed_as_subclass(value: Any) -> Optional[Packed]:
    for kind, pack in _PACKERS.items():
        if isinstance(value, kind):
            # The NaT of pandas is a datetime that is not equal to itself.
            return pack(value) if value == value else None
    if hasattr(value, "__index__"):
        return _number(operator.index(value))
    raise TypeError(f"{type(value).__name__} is no kind of value: {value!r:.80}")


def named(error: Exception, name: str) -> Exception:
    """The same exception with the name of the value in its message."""
    if isinstance(error, UnicodeEncodeError):
        return UnicodeEncodeError(error.encoding, error.object, error.start, error.end,
                                  f'{error.reason} (value "{name}")')
    return type(error)(f'value "{name}": {error}')


class PackedValues:
    """An array of RgenhValue for a call of the library; it must live until the call returns."""

    __slots__ = ("names", "count", "address", "_block", "_records")

    def __init__(self, by_name: dict[str, Any]) -> None:
        self.names: list[str] = []
        self.count = 0
        self.address: Optional[int] = None
        if by_name:
            self._pack(by_name)

    def _pack(self, by_name: dict[str, Any]) -> None:
        contents: list[Content] = []
        fields: list[int] = []
        add, extend = contents.append, fields.extend
        left_out: set[str] = set()
        name = ""
        try:
            for name, value in by_name.items():
                packer = _PACKERS.get(type(value))
                record = packer(value) if packer else _packed_as_subclass(value)
                if record is None:
                    left_out.add(name)
                    continue
                kind, hint, number, content = record
                encoded_name = name.encode()
                add(encoded_name)
                add(content)
                # The addresses follow when the block has its place.
                extend((0, len(encoded_name), kind, hint, number, 0, len(content)))
        except (TypeError, ValueError, OverflowError) as error:
            raise named(error, name) from None
        self.names = [name for name in by_name if name not in left_out]
        self.count = len(self.names)
        self._block = b"".join(contents)
        self._records = array.array("Q", fields)
        self._set_addresses()
        self.address = self._records.buffer_info()[0] if self.names else None

    def _set_addresses(self) -> None:
        records = self._records
        base = ctypes.cast(ctypes.c_char_p(self._block), ctypes.c_void_p).value or 0
        sizes = array.array("Q", bytes(16 * self.count))
        sizes[0::2], sizes[1::2] = records[1::_FIELDS], records[6::_FIELDS]
        starts = array.array("Q", accumulate(sizes, initial=base))
        records[0::_FIELDS], records[5::_FIELDS] = starts[:-1:2], starts[1::2]


def packed_values(values: Values) -> PackedValues:
    return PackedValues(flat(values))


def _packed_pairs(pairs: Texts) -> PackedValues:
    by_name = dict(pairs) if pairs else {}
    for name, text in by_name.items():
        if not isinstance(text, (str, Markup)):
            raise TypeError(f'pair "{name}": a text must be a str or Markup, not {text!r:.80}')
    return PackedValues(by_name)


def encoded(text: str, what: str) -> bytes:
    """The text in UTF-8. UnicodeEncodeError for lone surrogates; ValueError for a zero byte, at
    which the library would end the text."""
    if not isinstance(text, str):
        raise TypeError(f"{what} must be a str, not {type(text).__name__}")
    if "\0" in text:
        raise ValueError(f"{what} contains a zero byte: {text!r:.80}")
    return text.encode()


class PackedRequest:
    """RgenhRequestParts with all that it points to."""

    def __init__(self, request: Request, guid: native.RgenGuid, mode: int, path: bytes) -> None:
        self.guid = bytes(guid)
        self.values = packed_values(request.values)
        self.pairs = _packed_pairs(request.pairs)
        self._texts = (encoded(request.format, "the format"), path,
                       encoded(request.converter_base, "the converter base"))
        self.parts = native.RgenhRequestParts(
            ctypes.sizeof(native.RgenhRequestParts), None, guid, *self._texts, mode,
            0 if request.convert else 1, self.values.address, self.values.count,
            self.pairs.address, self.pairs.count)

"""Records of the library, filled from values and read back, with owners that free them.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import ctypes
import datetime
import enum
from contextlib import contextmanager
from typing import Any, Callable, Iterator, Union

from . import library as c
from .texts import (LONGEST_STORED, LONGEST_STORED_NAME, checked_markup, decoded, encoded, escaped,
                    escaped_twice, require_storable, storable, without_references)
from .values import (Entries, Handle, Hint, Hinted, Markup, ReportType, Request, Text, Value,
                     as_dict, as_guid, as_integer)

# The greatest number of bytes that ctypes.string_at copies: it takes a C int.
_GREATEST_INT = (1 << 31) - 1


class Target(enum.Enum):
    """Where texts go: to a report, which decodes them once, or to the persistent data."""

    REPORT = enum.auto()
    STORE = enum.auto()


@contextmanager
def owned(free: Callable[[Any], None], record: Any) -> Iterator[Any]:
    """A record that is freed at the end of the block."""
    try:
        yield record
    finally:
        free(ctypes.byref(record))


def guid_record(report_type: ReportType) -> c.RgenGuid:
    return c.RgenGuid.from_buffer_copy(as_guid(report_type).bytes_le)


def _require(is_there: object) -> None:
    if not is_there:
        raise MemoryError("the library has no memory for a record")


def _fill_text(library: c.Library, content: bytes, record: c.RgenAnsiString) -> None:
    _require(library.rgen_createRgenAnsiString(content, ctypes.byref(record)))


def _key(name: str, target: Target) -> bytes:
    key = encoded(name, "a name")
    if target is Target.STORE:
        key = storable(name).encode()
        require_storable(len(key), LONGEST_STORED_NAME, "a name")
    return key


def _content(text: Text, target: Target) -> bytes:
    plain = text.content if isinstance(text, Markup) else text
    # Checked before escaping, which needs a str.
    content = encoded(plain, "a text")
    if target is Target.STORE:
        return _stored_content(text)
    return content if isinstance(text, Markup) else escaped(plain).encode()


def _stored_content(text: Text) -> bytes:
    """The limit applies to the text after the first of two decodings, where "&" is "&amp;"."""
    content = (checked_markup(text.content, "a text") if isinstance(text, Markup)
               else escaped_twice(storable(text)))
    encoded_content = content.encode()
    if len(encoded_content) > LONGEST_STORED:
        read = without_references(content).encode("utf-8", "surrogatepass")
        require_storable(len(read), LONGEST_STORED, "a text")
    return encoded_content


def _fill_number(library: c.Library, name: bytes, number: Union[int, datetime.date], hint: Hint,
                 record: c.RgenCVariant) -> None:
    library.rgen_createRgenCVariantInt64(name, as_integer(number, hint), hint, ctypes.byref(record))


def _fill_bytes(library: c.Library, name: bytes, content: bytes, target: Target,
                record: c.RgenCVariant) -> None:
    if target is Target.STORE:
        # A persistent byte is stored as "AB ".
        require_storable(3 * len(content), LONGEST_STORED, "the display of bytes")
    library.rgen_createRgenCVariantByteArray(name, content, len(content), Hint.DUMP,
                                             ctypes.byref(record))
    _require(record.value.byteArrayValue.data or not content)


def fill_value(library: c.Library, name: str, value: Value, target: Target,
               record: c.RgenCVariant) -> None:
    """Fills an empty record; TypeError for an object that is no value. The create functions return
    1 even when memory for a name is exhausted, so the buffers are checked."""
    key = _key(name, target)
    filled = ctypes.byref(record)
    if isinstance(value, (str, Markup)):
        library.rgen_createRgenCVariantString(key, _content(value, target), Hint.GENERIC, filled)
        _require(record.value.stringValue.data)
    elif isinstance(value, (bytes, bytearray, memoryview)):
        _fill_bytes(library, key, bytes(value), target, record)
    elif isinstance(value, Handle):
        library.rgen_createRgenCVariantHandle(key, value.number, Hint.GENERIC, filled)
    elif isinstance(value, Hinted):
        _fill_number(library, key, value.number, Hint(value.hint), record)
    elif isinstance(value, datetime.datetime):
        _fill_number(library, key, value, Hint.DATE_TIME, record)
    elif isinstance(value, datetime.date):
        _fill_number(library, key, value, Hint.DATE, record)
    else:
        _fill_number(library, key, value, Hint.GENERIC, record)
    _require(record.name.data)


def fill_values(library: c.Library, values: Entries[Value], target: Target,
                record: c.RgenCVariantSet) -> None:
    """Fills an empty set, with an array even for no values: the dump requires one."""
    by_name = as_dict(values)
    _require(library.rgen_createRgenCVariantSet(ctypes.byref(record), max(1, len(by_name))))
    items = record.items
    for index, (name, value) in enumerate(by_name.items()):
        fill_value(library, name, value, target, items[index])
    record.count = len(by_name)


def fill_pairs(library: c.Library, pairs: Entries[Text], target: Target,
               record: c.RgenCAnsiStringPairSet) -> None:
    by_name = as_dict(pairs)
    if not by_name:
        return
    _require(library.rgen_createRgenCAnsiStringpairSet(ctypes.byref(record), len(by_name)))
    keys, texts = record.keys, getattr(record, "values")
    for index, (name, text) in enumerate(by_name.items()):
        _fill_text(library, _key(name, target), keys[index])
        _fill_text(library, _content(text, target), texts[index])


@contextmanager
def input_record(library: c.Library, request: Request, mode: int,
                 output: bytes) -> Iterator[c.RgenCInputParams]:
    """The record of a request, freed at the end of the block."""
    with owned(library.rgen_freeRgenCInputParams, c.RgenCInputParams()) as record:
        fill_values(library, request.values, Target.REPORT, record.variants)
        fill_pairs(library, request.pairs, Target.REPORT, record.pairs)
        record.templateGuid = guid_record(request.type)
        record.outputMode = mode
        record.skipExternalConversion = 0 if request.convert else 1
        _fill_text(library, encoded(request.format, "a format"), record.outputFormat)
        _fill_text(library, output, record.outputPath)
        _fill_text(library, encoded(request.converter_base, "a converter base"),
                   record.converterBaseArg)
        yield record


def _bytes_at(address: int, size: int) -> bytes:
    _require(address)
    if size <= _GREATEST_INT:
        return ctypes.string_at(address, size)
    return bytes((ctypes.c_char * size).from_address(address))


def text_of(record: c.RgenAnsiString) -> str:
    return decoded(_bytes_at(record.data, record.length))


def bytes_of(record: c.RgenByteArray) -> bytes:
    return _bytes_at(record.data, record.size)


def value_of(record: c.RgenCVariant) -> Value:
    """A value that the library returned; integers keep their hint unless it is the generic one."""
    if record.type == c.TYPE_STRING:
        return text_of(record.value.stringValue)
    if record.type == c.TYPE_BYTE_ARRAY:
        return bytes_of(record.value.byteArrayValue)
    number: int = record.value.int64Value
    return number if record.hint == Hint.GENERIC else Hinted(number, Hint(record.hint))

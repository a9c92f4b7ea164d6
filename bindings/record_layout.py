"""Sizes and offsets of the records on the systems that the library runs on.

Both are x64 and use the same layout for these records: numbers are at multiples of their size, a
pointer has eight bytes. A test compares the figures with those of the C compiler.

SPDX-License-Identifier: MIT
"""

from dataclasses import dataclass

from header_reader import CType, Header, HeaderError, Record

SIZES = {"char": 1, "uint8_t": 1, "uint16_t": 2, "int32_t": 4, "uint32_t": 4, "int64_t": 8,
         "uint64_t": 8}
POINTER_SIZE = 8


@dataclass(frozen=True)
class Layout:
    """The size and alignment of a record, and the offsets of its fields."""

    size: int
    alignment: int
    offsets: dict[str, int]


def rounded_up(number: int, step: int) -> int:
    return (number + step - 1) // step * step


def size_and_alignment(kind: CType, known: dict[str, Layout], header: Header) -> tuple[int, int]:
    count = 1 if kind.length is None else kind.length
    base = header.aliases.get(kind.base, kind.base)
    if kind.pointer:
        return POINTER_SIZE, POINTER_SIZE
    if base in known:
        return known[base].size * count, known[base].alignment
    if base in SIZES:
        return SIZES[base] * count, SIZES[base]
    raise HeaderError(f"the size of {kind.base} is not known")


def layout_of(record: Record, known: dict[str, Layout], header: Header) -> Layout:
    end, widest, offsets = 0, 1, {}
    for member in record.fields:
        size, alignment = size_and_alignment(member.type, known, header)
        start = 0 if record.is_union else rounded_up(end, alignment)
        offsets[member.name] = start
        end = max(end, start + size)
        widest = max(widest, alignment)
    return Layout(rounded_up(end, widest), widest, offsets)


def layouts(header: Header) -> dict[str, Layout]:
    """The layout of every record by its name."""
    known: dict[str, Layout] = {}
    for record in header.records:
        known[record.name] = layout_of(record, known, header)
    return known

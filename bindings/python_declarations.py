"""Writes the statuses for Python.

SPDX-License-Identifier: MIT
"""

from declaration_text import wrapped
from header_reader import Header, summary

HEAD = '''"""The statuses of the library.

Written by bindings/generate_declarations.py from the public headers; do not edit.

SPDX-License-Identifier: MIT
"""

import enum


class Status(enum.IntEnum):
    """The outcomes of the library's operations, by their names in C; negative is failure."""

'''


def python_text(header: Header) -> str:
    lines = []
    for status in header.statuses:
        number = f"0x{status.value & 0xFFFFFFFF:08X}"
        value = number if status.value >= 0 else f"{number} - (1 << 32)"
        lines += [*wrapped(summary(status.doc), "    # "), f"    {status.name} = {value}"]
    return HEAD + "\n".join(lines) + "\n"

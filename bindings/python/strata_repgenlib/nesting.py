"""Flat names of values inside objects and lists, by the rules of docs/values.md.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

from collections.abc import Iterable, Mapping, Sequence
from typing import Any, Iterator

from .values import Hinted, Values

_DEEPEST = 32
# Sequences that are values themselves.
_TEXTS_AND_BYTES = (str, bytes, bytearray, memoryview)
_KEYS = (str, int)
_PLAIN_NAMES = {str}
# The usual kinds without others inside; the check of all other kinds is slower.
_PLAIN_KINDS = {str, int, bytes, bool, float, Hinted}


def flat(values: Values) -> dict[str, Any]:
    """Values by their full names; objects and lists become several.

    >>> flat({"Err": [{"Address": 16}, {"Address": 32}], "Device": {"Model": "TH500"}})
    {'Err.1.Address': 16, 'Err.2.Address': 32, 'Device.Model': 'TH500'}
    """
    by_name: dict[str, Any] = values if type(values) is dict else dict(values)
    if {*map(type, by_name)} <= _PLAIN_NAMES and "" not in by_name:
        kinds = {*map(type, by_name.values())}
        if kinds <= _PLAIN_KINDS or not any(map(_is_nested, kinds)):
            return by_name
    found: dict[str, Any] = {}
    for name, value in _members("", by_name, 1):
        # The last of several values of one name is also the last one in order.
        found.pop(name, None)
        found[name] = value
    return found


def _is_nested(kind: type) -> bool:
    """Tells whether values of this class have others inside."""
    if issubclass(kind, _TEXTS_AND_BYTES):
        return False
    return issubclass(kind, (Mapping, Sequence)) or hasattr(kind, "to_dict")


def _members(prefix: str, values: Mapping[Any, Any], depth: int) -> Iterator[tuple[str, Any]]:
    for key, value in values.items():
        if not isinstance(key, _KEYS) or isinstance(key, bool):
            raise TypeError(f'a name in "{prefix[:-1]}" must be a str, not {key!r}' if prefix
                            else f"a name must be a str, not {key!r}")
        if key == "":
            raise ValueError(f'a name in "{prefix[:-1]}" is empty' if prefix
                             else "the name of a value is empty")
        yield from _entries(f"{prefix}{key}", value, depth)


def _entries(name: str, value: Any, depth: int) -> Iterator[tuple[str, Any]]:
    if not _is_nested(type(value)):
        yield name, value
        return
    if depth >= _DEEPEST:
        raise ValueError(f'value "{name}": more than {_DEEPEST} levels of objects and lists')
    if isinstance(value, Mapping):
        yield from _members(name + ".", value, depth + 1)
        return
    for number, entry in enumerate(_list_of(name, value), 1):
        yield from _entries(f"{name}.{number}", entry, depth + 1)


def _list_of(name: str, value: Any) -> Iterable[Any]:
    if isinstance(value, Sequence):
        return value
    try:
        return list(value.to_dict("records"))
    except Exception as error:
        raise TypeError(f'value "{name}": {type(value).__name__}.to_dict("records") failed: '
                        f"{error}") from error

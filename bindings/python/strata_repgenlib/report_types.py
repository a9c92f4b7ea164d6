"""The report types of a data directory, by GUID or by name, as the command-line tool finds them.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import ctypes
import difflib
import os
import re
import uuid
from pathlib import PurePath
from typing import NamedTuple, Optional
from xml.etree import ElementTree

from . import native
from .errors import UnknownReportTypeError, described
from .loading import Library
from .packing import encoded
from .status import Status
from .values import ReportType

# The library does not accept braces in config.xml.
_GUID = re.compile("[0-9a-fA-F]{8}(-[0-9a-fA-F]{4}){3}-[0-9a-fA-F]{12}")


class ReportTypeInfo(NamedTuple):
    """A report type of a data directory: its name is the file name of its template, without the
    ending."""

    name: str
    guid: uuid.UUID
    template: str


def _child_text(element: ElementTree.Element, name: str) -> str:
    """The text of the last child with this name in any letter case."""
    found = [child for child in element if child.tag.lower() == name.lower()]
    return "".join(found[-1].itertext()).strip() if found else ""


def _entries(path: str) -> dict[uuid.UUID, dict[str, str]]:
    """The last usable file names of each GUID."""
    by_guid: dict[uuid.UUID, dict[str, str]] = {}
    root = ElementTree.parse(path).getroot()
    for element in root.findall("reportTypes/type") if root.tag == "config" else ():
        written = element.get("guid", "")
        if not _GUID.fullmatch(written):
            continue
        names = {name: _child_text(element, name) for name in ("persistDataFile", "reportTypeFile")}
        known = by_guid.setdefault(uuid.UUID(written), {})
        known.update((name, text) for name, text in names.items() if text)
    return by_guid


def read_report_types(folder: str) -> list[ReportTypeInfo]:
    """The usable report types, sorted by name. OSError or ValueError if config.xml cannot be
    read."""
    path = os.path.join(folder, ".rgen", "config.xml")
    try:
        entries = _entries(path)
    except ElementTree.ParseError as error:
        raise ValueError(f"{path} cannot be read: {error}") from error
    return sorted(ReportTypeInfo(PurePath(names["reportTypeFile"]).stem, guid,
                                 names["reportTypeFile"])
                  for guid, names in entries.items() if len(names) == 2)


def _chosen(library: Library, folder: str, name: Optional[str]) -> uuid.UUID:
    types = read_report_types(folder)
    found = [one for one in types if name is None or one.name == name]
    if len(found) == 1:
        return found[0].guid
    config = os.path.join(folder, ".rgen", "config.xml")
    if name is None:
        problem = f"{config} has {len(types)} report types; name one"
    elif found:
        problem = f'"{name}" names {len(found)} report types in {config}; use the GUID'
    else:
        near = difflib.get_close_matches(name, [one.name for one in types], 1)
        problem = f'there is no report type "{name}" in {config}' + \
            (f'; did you mean "{near[0]}"?' if near else "")
    failure = UnknownReportTypeError(problem)
    failure.path, failure.argument = config, "the report type"
    raise described(library, failure, Status.RGEN_E_GUID_NOT_IN_CONFIG)


def guid_of(library: Library, folder: str, report_type: Optional[ReportType]) -> native.RgenGuid:
    """The GUID of a report type; config.xml is read for names and None only."""
    guid = native.RgenGuid()
    if isinstance(report_type, str):
        text = encoded(report_type, "the report type")
        if library.rgenh_parseGuid(text, len(text), ctypes.byref(guid), None) >= 0:
            return guid
    if not isinstance(report_type, uuid.UUID):
        if report_type is not None and not isinstance(report_type, str):
            raise TypeError(f"a report type must be a UUID or a str, not {report_type!r}")
        report_type = _chosen(library, folder, report_type)
    return native.RgenGuid.from_buffer_copy(report_type.bytes_le)

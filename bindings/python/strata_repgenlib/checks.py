"""Checks before calls of the library: failures without a status would end the process, as C++
exceptions of the library. The checks raise Python's own exceptions instead.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import errno
import os
from typing import Union

from .texts import encoded

StrPath = Union[str, "os.PathLike[str]"]


def as_path(path: StrPath, what: str) -> str:
    """The path as a str; ValueError for an empty one, and the exceptions of `encoded`."""
    text = os.fspath(path)
    encoded(text, what)
    if not text:
        raise ValueError(f"{what} is empty")
    return text


def as_absolute(path: str) -> str:
    """An absolute path, which stays valid if the current folder changes later. OSError if the
    current folder does not exist any more."""
    if os.path.isabs(path):
        return path
    # On Linux ".." after a link is not the folder that contains the link.
    return os.path.abspath(path) if os.name == "nt" else os.path.join(os.getcwd(), path)


def probe(path: str) -> bool:
    """True if the path exists, by the same query as the library's. Other failures (no rights, a
    name that is too long, a loop of links) are raised as an OSError."""
    try:
        os.stat(path)
    except (FileNotFoundError, NotADirectoryError):
        return False
    return True


def check_folder(folder: str) -> None:
    """Checks that the folder exists, and that the data directory in it exists or can be made."""
    if not os.path.isdir(folder):
        exists = probe(folder)
        code = errno.ENOTDIR if exists else errno.ENOENT
        raise OSError(code, os.strerror(code), folder)
    effective = os.access in os.supports_effective_ids
    data_dir = os.path.join(folder, ".rgen")
    is_there = probe(data_dir)
    # A dangling link counts: it prevents making a folder with that name.
    if os.path.lexists(data_dir) and not os.path.isdir(data_dir):
        raise NotADirectoryError(errno.ENOTDIR, os.strerror(errno.ENOTDIR), data_dir)
    needed = os.X_OK if is_there else os.W_OK | os.X_OK
    if not os.access(folder, needed, effective_ids=effective):
        raise PermissionError(errno.EACCES, os.strerror(errno.EACCES), folder)


def check_data_dir(folder: str, report_format: str = "") -> None:
    """The same, and checks that the file system accepts the paths in the data directory."""
    check_folder(folder)
    data_dir = os.path.join(folder, ".rgen")
    probe(os.path.join(data_dir, "config.xml"))
    if report_format:
        encoded(report_format, "a format")
        probe(os.path.join(data_dir, "templates", report_format, "template"))


def check_output(path: str, is_converted: bool, converter_base: str) -> None:
    """Checks that the file system accepts the output path and those that a conversion adds."""
    probe(path)
    if not is_converted:
        return
    for name, text in (("the path of a pdf", path), ("the converter base", converter_base)):
        if '"' in text:
            raise ValueError(f"{name} must not contain a double quote: {text}")
    for ending in (".html", ".error.txt"):
        probe(path + ending)

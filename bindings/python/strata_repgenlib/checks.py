"""What is looked at before the library is called: failures that it has no status for would leave it
as C++ exceptions and end the process. Here they are raised as Python's own exceptions.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import errno
import os
from typing import Union

from .texts import encoded

StrPath = Union[str, "os.PathLike[str]"]


def as_path(path: StrPath, what: str) -> str:
    """The path as a str; ValueError for an empty one, and as `encoded`."""
    text = os.fspath(path)
    encoded(text, what)
    if not text:
        raise ValueError(f"{what} is empty")
    return text


def as_absolute(path: str) -> str:
    """The path, which names the same file when the current folder is another one later. OSError
    when the current folder is gone."""
    if os.path.isabs(path):
        return path
    # On Linux ".." after a link is not what stands before it.
    return os.path.abspath(path) if os.name == "nt" else os.path.join(os.getcwd(), path)


def probe(path: str) -> bool:
    """Asks the file system for a path as the library will: whether it is there. What is wrong
    beyond that (no rights, a name too long, a circle of links) is raised as an OSError."""
    try:
        os.stat(path)
    except (FileNotFoundError, NotADirectoryError):
        return False
    return True


def check_folder(folder: str) -> None:
    """The folder above the data directory is there, and the data directory is or can be made."""
    if not os.path.isdir(folder):
        exists = probe(folder)
        code = errno.ENOTDIR if exists else errno.ENOENT
        raise OSError(code, os.strerror(code), folder)
    effective = os.access in os.supports_effective_ids
    data_dir = os.path.join(folder, ".rgen")
    is_there = probe(data_dir)
    # A link to nothing is there as well, for whoever wants to make a folder of that name.
    if os.path.lexists(data_dir) and not os.path.isdir(data_dir):
        raise NotADirectoryError(errno.ENOTDIR, os.strerror(errno.ENOTDIR), data_dir)
    needed = os.X_OK if is_there else os.W_OK | os.X_OK
    if not os.access(folder, needed, effective_ids=effective):
        raise PermissionError(errno.EACCES, os.strerror(errno.EACCES), folder)


def check_data_dir(folder: str, report_format: str = "") -> None:
    """The same, and the files in the data directory that the library asks for can be asked for."""
    check_folder(folder)
    data_dir = os.path.join(folder, ".rgen")
    probe(os.path.join(data_dir, "config.xml"))
    if report_format:
        encoded(report_format, "a format")
        probe(os.path.join(data_dir, "templates", report_format, "template"))


def check_output(path: str, is_converted: bool, converter_base: str) -> None:
    """The output file can be asked for, and so can its neighbours during a conversion."""
    probe(path)
    if not is_converted:
        return
    for name, text in (("the path of a pdf", path), ("the converter base", converter_base)):
        if '"' in text:
            raise ValueError(f"{name} must not contain a double quote: {text}")
    for ending in (".html", ".error.txt"):
        probe(path + ending)

"""How the libraries are found, loaded and checked.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import ctypes
import os
import sys
from contextlib import ExitStack
from pathlib import Path
from typing import Any, Iterator, Optional, Union

from . import native
from .errors import LibraryNotFoundError, LibraryVersionError
from .version import __version__

StrPath = Union[str, "os.PathLike[str]"]

# Names the folder with the libraries; no other place is searched then.
VARIABLE = "STRATA_REPGENLIB_DIR"

_IS_WINDOWS = sys.platform == "win32"
# The main library and the host library, which needs it.
NAMES = (("strata_repgenlib.dll", "strata_repgenlib_host.dll") if _IS_WINDOWS
          else ("libstrata_repgenlib.so.0", "libstrata_repgenlib_host.so.0"))


class Library:
    """The loaded libraries. Their functions are attributes with their names in C."""

    def __init__(self, folder: str) -> None:
        """Loads both from one folder; from the folders of the system for an empty text."""
        paths = [os.path.join(folder, name) for name in NAMES]
        with ExitStack() as stack:
            if sys.platform == "win32" and folder:
                stack.enter_context(os.add_dll_directory(os.path.abspath(folder)))
            # The host library finds the main library among those that are loaded already.
            main = ctypes.CDLL(paths[0])
            self._add(ctypes.CDLL(paths[1]), native.LONG)
            self._add(ctypes.PyDLL(paths[1]), native.QUICK)
        self._add(main, native.MAIN)
        versions = native.RgenhVersions(size=ctypes.sizeof(native.RgenhVersions))
        self.rgenh_getVersions(ctypes.byref(versions), None)
        self.path = versions.libraryPath.decode("utf-8", "surrogateescape")
        self.host_path = versions.hostPath.decode("utf-8", "surrogateescape")
        for version, path in ((versions.library, self.path), (versions.host, self.host_path)):
            _require_version(version.decode(), path)

    def __getattr__(self, name: str) -> Any:
        raise AttributeError(f"the libraries have no function {name}")

    def _add(self, library: ctypes.CDLL, functions: native.Functions) -> None:
        for name, (result, arguments) in functions.items():
            function = getattr(library, name)
            function.restype = result
            function.argtypes = arguments
            setattr(self, name, function)


def _require_version(version: str, path: str) -> None:
    if version != __version__:
        raise LibraryVersionError(
            f"{path} has the version {version}, but this package is for {__version__}; set "
            f"{VARIABLE} to the folder of the libraries of version {__version__}")


def _folders(package: Path) -> Iterator[Path]:
    """The folder of the package; and those for libraries in the installation, if the package is
    PREFIX/share/strata_repgenlib/bindings/python/strata_repgenlib."""
    yield package
    if list(package.parts[-5:-1]) == ["share", "strata_repgenlib", "bindings", "python"]:
        prefix = package.parents[4]
        yield prefix / ("bin" if _IS_WINDOWS else "lib")
        if not _IS_WINDOWS:
            yield from sorted(prefix.glob("lib/*-linux-gnu"))
            yield prefix / "lib64"


def _along_path() -> Iterator[str]:
    """Windows does not search PATH for a DLL that is loaded this way."""
    for folder in os.get_exec_path():
        if os.path.isabs(folder.strip('"')):
            yield folder.strip('"')


def places(package: Path) -> Iterator[str]:
    """The folders that are tried, in this order; the empty text is the system's own search."""
    given = os.environ.get(VARIABLE)
    if given:
        yield given
        return
    found = map(str, _folders(package))
    for folder in (*found, *(_along_path() if _IS_WINDOWS else ())):
        if all(os.path.isfile(os.path.join(folder, name)) for name in NAMES):
            yield folder
    if not _IS_WINDOWS:
        yield ""


_loaded: dict[str, Library] = {}


def load_library(path: Optional[StrPath] = None) -> Library:
    """Loads the libraries from a folder; `path` may also be one of the files. Without a path the
    first of these places is used: the folder in STRATA_REPGENLIB_DIR (no other one is tried then),
    the folder of the package, the installation that contains the package, the system's folders.

    LibraryNotFoundError lists what was tried; LibraryVersionError if the loaded libraries have
    another version than the package. Loading from the same folder again returns the same object.
    """
    if path is None:
        folders = list(places(Path(__file__).resolve().parent))
    else:
        folders = [os.path.dirname(path) if os.path.isfile(path) else os.fspath(path)]
    tried = []
    for folder in folders:
        try:
            # Another thread may have loaded it meanwhile.
            return _loaded.get(folder) or _loaded.setdefault(folder, Library(folder))
        except LibraryNotFoundError:
            raise
        except (OSError, AttributeError) as error:
            tried.append(f"{folder or 'the folders of the system'}: {error}")
    raise LibraryNotFoundError(
        f"strata_repgenlib and strata_repgenlib_host cannot be loaded; set {VARIABLE} to their "
        "folder. Tried: " + ("; ".join(tried) or "no place has them"))

"""The shared library: its records, its functions, and how it is found.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import ctypes
import os
import sys
from ctypes import POINTER, c_char_p, c_int32, c_int64, c_uint8, c_uint16, c_uint32, c_uint64
from ctypes import c_void_p
from pathlib import Path
from typing import Any, Iterator, Optional, Union

from .errors import LibraryNotFoundError


class RgenGuid(ctypes.Structure):
    _fields_ = [("data1", c_uint32), ("data2", c_uint16), ("data3", c_uint16),
                ("data4", c_uint8 * 8)]


class RgenAnsiString(ctypes.Structure):
    _fields_ = [("length", c_uint32), ("data", c_void_p)]


class RgenByteArray(ctypes.Structure):
    _fields_ = [("size", c_uint32), ("data", c_void_p)]


class RgenCVariantValue(ctypes.Union):
    _fields_ = [("int64Value", c_int64), ("stringValue", RgenAnsiString),
                ("byteArrayValue", RgenByteArray), ("handleValue", c_void_p)]


class RgenCVariant(ctypes.Structure):
    _fields_ = [("name", RgenAnsiString), ("value", RgenCVariantValue), ("type", c_uint64),
                ("hint", c_uint64)]


# "items" and "values" would hide methods of a mapping; a record has no such methods.
class RgenCVariantSet(ctypes.Structure):
    _fields_ = [("items", POINTER(RgenCVariant)), ("count", c_uint64)]


class RgenCAnsiStringPairSet(ctypes.Structure):
    _fields_ = [("keys", POINTER(RgenAnsiString)), ("values", POINTER(RgenAnsiString)),
                ("count", c_uint64)]


class RgenCInputParams(ctypes.Structure):
    _fields_ = [("variants", RgenCVariantSet), ("pairs", RgenCAnsiStringPairSet),
                ("templateGuid", RgenGuid), ("outputMode", c_uint64),
                ("skipExternalConversion", c_uint64), ("outputFormat", RgenAnsiString),
                ("outputPath", RgenAnsiString), ("converterBaseArg", RgenAnsiString)]


TYPE_EMPTY, TYPE_INT64, TYPE_STRING, TYPE_BYTE_ARRAY, TYPE_HANDLE = range(5)
OUTPUT_FILE, OUTPUT_DELETE_ON_CLOSE, OUTPUT_BYTES = range(3)

# The result is an address, so that ctypes neither frees nor copies the text.
TranslateFunction = ctypes.CFUNCTYPE(c_void_p, c_void_p, c_void_p)

_GENERATOR = c_void_p
_GUID = POINTER(RgenGuid)
_TEXT = POINTER(RgenAnsiString)
_BYTES = POINTER(RgenByteArray)
_VALUE = POINTER(RgenCVariant)
_VALUES = POINTER(RgenCVariantSet)
_PAIRS = POINTER(RgenCAnsiStringPairSet)
_INPUT = POINTER(RgenCInputParams)

# The result and the arguments of each function.
FUNCTIONS: dict[str, tuple[Any, list[Any]]] = {
    "rgen_newReportGenerator": (c_void_p, []),
    "rgen_freeReportGenerator": (None, [_GENERATOR]),
    "rgen_setDataDirPath": (c_int32, [_GENERATOR, c_char_p]),
    "rgen_setTranslateFunction": (None, [_GENERATOR, TranslateFunction, c_void_p]),
    "rgen_cancel": (None, [_GENERATOR, _GUID]),
    "rgen_generateReport": (c_int32, [_GENERATOR, _INPUT, _VALUE]),
    "rgen_getPersistentData": (c_int32, [_GENERATOR, _GUID, _PAIRS]),
    "rgen_setPersistentDataFromAnsiStringPairSet": (c_int32, [_GENERATOR, _GUID, _PAIRS]),
    "rgen_setPersistentDataFromCVariantSet": (c_int32, [_GENERATOR, _GUID, _VALUES]),
    "rgen_dumpRawInputDataToFile": (c_int32, [_GENERATOR, _INPUT, c_char_p]),
    "rgen_getSimulatedRawDataFromFile": (c_int32, [_GENERATOR, c_char_p, _VALUES]),
    "rgen_getStatusCodeDescription": (c_char_p, [_GENERATOR, c_int32]),
    "rgen_createRgenAnsiString": (c_int32, [c_char_p, _TEXT]),
    "rgen_createRgenByteArray": (c_int32, [c_char_p, c_uint64, _BYTES]),
    "rgen_createRgenCAnsiStringpairSet": (c_int32, [_PAIRS, c_uint64]),
    "rgen_createRgenCVariantSet": (c_int32, [_VALUES, c_uint64]),
    "rgen_createRgenCVariantInt64": (c_int32, [c_char_p, c_int64, c_uint64, _VALUE]),
    "rgen_createRgenCVariantHandle": (c_int32, [c_char_p, c_void_p, c_uint64, _VALUE]),
    "rgen_createRgenCVariantString": (c_int32, [c_char_p, c_char_p, c_uint64, _VALUE]),
    "rgen_createRgenCVariantByteArray": (c_int32, [c_char_p, c_char_p, c_uint64, c_uint64, _VALUE]),
    "rgen_freeRgenAnsiString": (None, [_TEXT]),
    "rgen_freeRgenByteArray": (None, [_BYTES]),
    "rgen_freeRgenCVariant": (None, [_VALUE]),
    "rgen_freeRgenCVariantSet": (None, [_VALUES]),
    "rgen_freeRgenCAnsiStringSet": (None, [_PAIRS]),
    "rgen_freeRgenCInputParams": (None, [_INPUT]),
}


class Library:
    """The loaded library. Its functions are attributes with their names in C; they release Python's
    global lock while they run."""

    def __init__(self, path: str) -> None:
        self.path = path
        self._library = ctypes.CDLL(path)
        for name, (result, arguments) in FUNCTIONS.items():
            function = getattr(self._library, name)
            function.restype = result
            function.argtypes = arguments
            setattr(self, name, function)

    def __getattr__(self, name: str) -> Any:
        raise AttributeError(f"the library has no function {name}")


_IS_WINDOWS = sys.platform == "win32"
_NAMES = (["strata_repgenlib.dll"] if _IS_WINDOWS
          else ["libstrata_repgenlib.so.0", "libstrata_repgenlib.so"])


def _folders(package: Path) -> Iterator[Path]:
    """The folders to search: that of the package; and those for libraries in the installation, if
    the package is PREFIX/share/strata_repgenlib/bindings/python/strata_repgenlib."""
    yield package
    if list(package.parts[-5:-1]) == ["share", "strata_repgenlib", "bindings", "python"]:
        prefix = package.parents[4]
        yield prefix / ("bin" if _IS_WINDOWS else "lib")
        if not _IS_WINDOWS:
            yield from sorted(prefix.glob("lib/*-linux-gnu"))
            yield prefix / "lib64"


def _along_path(name: str) -> Iterator[str]:
    """The files of this name on PATH. Windows does not search PATH for a DLL that is loaded this
    way, and shutil.which finds programs only. Relative folders are ignored."""
    for folder in os.get_exec_path():
        path = os.path.join(folder.strip('"'), name)
        if os.path.isabs(path) and os.path.isfile(path):
            yield path


def _candidates(package: Path) -> Iterator[str]:
    for folder in _folders(package):
        for name in _NAMES:
            if (folder / name).is_file():
                yield str(folder / name)
    for name in _NAMES:
        if _IS_WINDOWS:
            yield from _along_path(name)
        else:
            yield name


_loaded: dict[str, Library] = {}


def _load(path: str) -> Library:
    if path not in _loaded:
        if sys.platform == "win32" and os.path.dirname(path):
            with os.add_dll_directory(os.path.dirname(os.path.abspath(path))):
                _loaded[path] = Library(path)
        else:
            _loaded[path] = Library(path)
    return _loaded[path]


def load_library(path: Optional[Union[str, os.PathLike[str]]] = None) -> Library:
    """Loads the library from a path, which may also be its folder. Without a path it searches the
    folder of the package, the installation that contains the package, and the system's folders.

    LibraryNotFoundError lists the paths that were tried. Loading the same file again returns the
    same object.
    """
    tried = []
    if path is None:
        candidates = list(_candidates(Path(__file__).resolve().parent))
    elif os.path.isdir(path):
        candidates = [os.path.join(path, name) for name in _NAMES]
    else:
        candidates = [os.fspath(path)]
    for candidate in candidates:
        try:
            return _load(candidate)
        except (OSError, AttributeError) as error:
            tried.append(f"{candidate}: {error}")
    raise LibraryNotFoundError("strata_repgenlib cannot be loaded; give its path as Generator(..., "
                               "library=PATH). Tried: " + ("; ".join(tried) or "no place has it"))

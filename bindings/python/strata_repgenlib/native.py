"""The libraries as C declares them: records, constants and functions of rgen.h and rgen_host.h.

Written by hand; a test compares all of it with the C compiler.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import ctypes
from ctypes import POINTER, c_char, c_char_p, c_int32, c_int64, c_uint8, c_uint16, c_uint32
from ctypes import c_uint64, c_void_p
from typing import Any

TYPE_EMPTY, TYPE_INT64, TYPE_STRING, TYPE_BYTE_ARRAY, TYPE_HANDLE, TYPE_MARKUP = range(6)
OUTPUT_FILE, OUTPUT_DELETE_ON_CLOSE, OUTPUT_BYTES = range(3)
PLAIN, MARKUP = range(2)
(ERROR_NONE, ERROR_STATUS, ERROR_MEMORY, ERROR_ENCODING, ERROR_FILE_SYSTEM, ERROR_REENTERED,
 ERROR_CONVERSION, ERROR_ARGUMENT, ERROR_CALLBACK, ERROR_UNKNOWN) = range(10)
NULL_TERMINATED = NO_ENTRY = (1 << 64) - 1
PATH_SIZE, MESSAGE_SIZE, VERSION_SIZE = 4096, 2048, 32


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


class RgenCVariantSet(ctypes.Structure):
    _fields_ = [("items", POINTER(RgenCVariant)), ("count", c_uint64)]


class RgenCAnsiStringPairSet(ctypes.Structure):
    _fields_ = [("keys", POINTER(RgenAnsiString)), ("values", POINTER(RgenAnsiString)),
                ("count", c_uint64)]


class RgenhError(ctypes.Structure):
    _fields_ = [("size", c_uint64), ("kind", c_int32), ("status", c_int32),
                ("systemError", c_int64), ("argument", c_int32), ("entryIsPair", c_int32),
                ("entry", c_uint64), ("path", c_char * PATH_SIZE),
                ("message", c_char * MESSAGE_SIZE)]


# Requests have packed arrays of them (packing.py); the record is for their layout.
class RgenhValue(ctypes.Structure):
    _fields_ = [("name", c_void_p), ("nameSize", c_uint64), ("type", c_uint64), ("hint", c_uint64),
                ("number", c_int64), ("data", c_void_p), ("size", c_uint64)]


class RgenhRequestParts(ctypes.Structure):
    _fields_ = [("size", c_uint64), ("reportType", c_char_p), ("templateGuid", RgenGuid),
                ("format", c_char_p), ("outputPath", c_char_p), ("converterBase", c_char_p),
                ("outputMode", c_uint64), ("skipExternalConversion", c_uint64),
                ("values", c_void_p), ("valueCount", c_uint64),
                ("pairs", c_void_p), ("pairCount", c_uint64)]


class RgenhVersions(ctypes.Structure):
    _fields_ = [("size", c_uint64), ("library", c_char * VERSION_SIZE),
                ("host", c_char * VERSION_SIZE), ("libraryPath", c_char * PATH_SIZE),
                ("hostPath", c_char * PATH_SIZE)]


# Results of callbacks are addresses, so that ctypes neither frees nor copies the text.
TranslateFunction = ctypes.CFUNCTYPE(c_void_p, c_void_p, c_void_p)
JobEndFunction = ctypes.CFUNCTYPE(None, c_void_p, c_void_p)
JobEnd = Any  # An instance of it.
NO_TRANSLATOR: Any = ctypes.cast(c_void_p(), TranslateFunction)
NO_JOB_END: JobEnd = ctypes.cast(c_void_p(), JobEndFunction)

_HANDLE = c_void_p  # A generator, a request, a job, a record of a request.
_STATUS = c_int32
_ERROR = POINTER(RgenhError)
_GUID = POINTER(RgenGuid)
_VALUE = POINTER(RgenCVariant)
_VALUES = POINTER(RgenCVariantSet)
_PAIRS = POINTER(RgenCAnsiStringPairSet)

Functions = dict[str, tuple[Any, list[Any]]]

# The result and the arguments of each function. These take a few microseconds at most and call
# nobody back: they keep Python's global lock.
QUICK: Functions = {
    "rgenh_newReportGenerator": (_HANDLE, [_ERROR]),
    "rgenh_getRequestInput": (_HANDLE, [_HANDLE]),
    "rgenh_startReport": (_HANDLE, [_HANDLE, _HANDLE, JobEndFunction, c_void_p, _ERROR]),
    "rgenh_cancelJob": (_STATUS, [_HANDLE, _ERROR]),
    "rgenh_parseGuid": (_STATUS, [c_char_p, c_uint64, _GUID, _ERROR]),
    "rgenh_getStatusText": (c_char_p, [_STATUS]),
    "rgenh_getStatusName": (c_char_p, [_STATUS]),
    "rgenh_getStatusNextStep": (c_char_p, [_STATUS]),
    "rgenh_getVersions": (_STATUS, [POINTER(RgenhVersions), _ERROR]),
}

# These release it: other threads of Python run, and translators can.
LONG: Functions = {
    "rgenh_freeReportGenerator": (_STATUS, [_HANDLE, _ERROR]),
    "rgenh_setDataDirPath": (_STATUS, [_HANDLE, c_char_p, _ERROR]),
    "rgenh_setTranslator": (_STATUS, [_HANDLE, TranslateFunction, c_void_p, c_uint64, _ERROR]),
    "rgenh_cancel": (_STATUS, [_HANDLE, _GUID, _ERROR]),
    "rgenh_newRequest": (_HANDLE, [POINTER(RgenhRequestParts), _ERROR]),
    "rgenh_freeRequest": (None, [_HANDLE]),
    "rgenh_generateReport": (_STATUS, [_HANDLE, _HANDLE, _VALUE, _ERROR]),
    "rgenh_waitForJob": (c_int32, [_HANDLE, c_int64, _ERROR]),
    "rgenh_takeJobResult": (_STATUS, [_HANDLE, _VALUE, _ERROR]),
    "rgenh_freeJob": (None, [_HANDLE]),
    "rgenh_getPersistentTexts": (_STATUS, [_HANDLE, _GUID, _PAIRS, _ERROR]),
    "rgenh_setPersistentValues": (_STATUS, [_HANDLE, _GUID, c_void_p, c_uint64, _ERROR]),
    "rgenh_dumpRawInputDataToFile": (_STATUS, [_HANDLE, _HANDLE, c_char_p, _ERROR]),
    "rgenh_getSimulatedRawDataFromFile": (c_int32, [_HANDLE, c_char_p, _VALUES, _ERROR]),
}

# Functions of the main library.
MAIN: Functions = {
    "rgen_freeRgenCVariant": (None, [_VALUE]),
    "rgen_freeRgenCVariantSet": (None, [_VALUES]),
    "rgen_freeRgenCAnsiStringSet": (None, [_PAIRS]),
}


def new_error() -> RgenhError:
    return RgenhError(size=ctypes.sizeof(RgenhError))

"""Tells what the Python package declares of the C interface, in the lines of layout_test.py.

Usage: python_layout.py FOLDER     the folder of native.py and status.py

SPDX-License-Identifier: MIT
"""

import ctypes
import importlib.util
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
HEADERS = ROOT / "include" / "strata_repgenlib"
sys.path.insert(0, str(ROOT / "tests" / "abi"))

from public_constants import constants_of  # It is in the folder that was added.


def module_of(path):
    """The module of a file, without its package, which would load the libraries."""
    spec = importlib.util.spec_from_file_location(path.stem, path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def tell_records(native):
    for name, record in vars(native).items():
        if not name.startswith("Rgen"):
            continue
        print(f"sizeof({name})={ctypes.sizeof(record)}")
        for field, *_ in record._fields_:
            print(f"offsetof({name}, {field})={getattr(record, field).offset}")


def tell_constants(native):
    """The package leaves out the prefix."""
    headers = [HEADERS / name for name in ("rgen.h", "rgen_host.h")]
    known = {name.split()[1] for name in constants_of(headers)}
    for name, number in vars(native).items():
        if name.isupper() and isinstance(number, int):
            full = {f"RGEN_{name}", f"RGENH_{name}"} & known
            print(f"{full.pop() if full else name}={number}")


def main():
    folder = Path(sys.argv[1])
    native = module_of(folder / "native.py")
    tell_records(native)
    tell_constants(native)
    for status in module_of(folder / "status.py").Status:
        print(f"{status.name}={status.value}")
    for functions in (native.QUICK, native.LONG, native.MAIN):
        for name, (_, parameters) in functions.items():
            print(f"parameters({name})={len(parameters)}")


if __name__ == "__main__":
    main()

"""The hand-written declarations against the C compiler: records, constants, functions, statuses.

SPDX-License-Identifier: MIT
"""

import ctypes
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from binding_case import COMPILER, LIBRARY, ROOT
from project_files import without_comments
from strata_repgenlib import Hint, Status, load_library, native

HEADERS = ("rgen.h", "rgen_host.h")
CODE = "".join(without_comments((ROOT / "include/strata_repgenlib" / name).read_text())
               for name in HEADERS)
RECORDS = [record for record in vars(native).values() if isinstance(record, type)
           and issubclass(record, (ctypes.Structure, ctypes.Union))]
FUNCTIONS = {**native.QUICK, **native.LONG, **native.MAIN}
NUMBERS = {"int32_t": ctypes.c_int32, "int64_t": ctypes.c_int64, "uint64_t": ctypes.c_uint64,
           "RgenStatus": ctypes.c_int32}
CONSTANTS = {
    **{f"RGEN_HINT_{hint.name}": hint.value for hint in Hint},
    **{f"RGEN_TYPE_{name}": getattr(native, f"TYPE_{name}")
       for name in ("EMPTY", "INT64", "STRING", "BYTE_ARRAY", "HANDLE")},
    "RGENH_TYPE_MARKUP": native.TYPE_MARKUP,
    **{f"RGEN_{name}": getattr(native, name)
       for name in ("OUTPUT_FILE", "OUTPUT_DELETE_ON_CLOSE", "OUTPUT_BYTES")},
    **{f"RGENH_{name}": value for name, value in vars(native).items()
       if name in ("PLAIN", "MARKUP", "NULL_TERMINATED", "NO_ENTRY", "PATH_SIZE", "MESSAGE_SIZE",
                   "VERSION_SIZE") or name.startswith("ERROR_")},
    **{status.name: status.value for status in Status},
}


def compiled(lines):
    """What a C program with these statements prints: lines of a name and a number."""
    with tempfile.TemporaryDirectory() as folder:
        source, program = Path(folder) / "layout.c", Path(folder) / "layout"
        source.write_text("#include <stddef.h>\n#include <stdio.h>\n"
                          '#include "strata_repgenlib/rgen_host.h"\nint main(void) {\n'
                          + "\n".join(lines) + "\n}\n")
        subprocess.run([COMPILER, "-std=gnu11", "-Werror", "-I", ROOT / "include", source, "-o",
                        program], check=True)
        printed = subprocess.check_output([program], text=True)
    return {name: int(number) for name, number in (line.split() for line in printed.splitlines())}


def printing(name, expression):
    return f'printf("{name} %lld\\n", (long long)({expression}));'


class Layout(unittest.TestCase):
    def test_records_have_the_sizes_and_members_of_c(self):
        expected, lines = {}, []
        for record in RECORDS:
            name = record.__name__
            expected[name] = ctypes.sizeof(record)
            lines.append(printing(name, f"sizeof({name})"))
            for member, _ in record._fields_:
                place = getattr(record, member)
                expected[f"{name}.{member}"] = place.offset
                lines.append(printing(f"{name}.{member}", f"offsetof({name}, {member})"))
                expected[f"{name}.{member}.size"] = place.size
                lines.append(printing(f"{name}.{member}.size", f"sizeof((({name}*)0)->{member})"))
        self.assertEqual(expected, compiled(lines))
        self.assertEqual(11, len(RECORDS))

    def test_records_lack_no_member(self):
        for record in RECORDS:
            body = re.search(r"typedef \w+ %s \{(.*?)\}" % record.__name__, CODE, re.S).group(1)
            members = re.findall(r"(\w+)(?:\[\w+\])?;", body)
            self.assertEqual(members, [member for member, _ in record._fields_])

    def test_constants_are_those_of_c(self):
        signed = {name: value - (1 << 64) if value >= 1 << 63 else value
                  for name, value in CONSTANTS.items()}
        self.assertEqual(signed, compiled([printing(name, name) for name in CONSTANTS]))

    def test_no_constant_is_missing(self):
        status_header = (ROOT / "include/strata_repgenlib/rgen_status.h").read_text()
        stated = re.findall(r"#define (RGEN_\w+) RGEN_STATUS\(0x", status_header)
        stated += re.findall(r"\b(RGEN_HINT_\w+|RGEN_TYPE_\w+|RGENH_ERROR_\w+) = ", CODE)
        self.assertEqual(set(), set(stated) - set(CONSTANTS))
        self.assertEqual(len(Status), len([name for name in stated if "_E_" in name]) + 2)

    def test_functions_have_the_results_and_numbers_of_arguments_of_c(self):
        expected, lines = {}, []
        for name, (result, arguments) in FUNCTIONS.items():
            call = f"{name}({', '.join('0' * len(arguments))})"
            lines.append(f"(void)sizeof({call});")
            if result is not None:
                expected[name] = ctypes.sizeof(result)
                lines.append(printing(name, f"sizeof({call})"))
        self.assertEqual(expected, compiled(lines))

    def test_arguments_have_the_numbers_of_bits_of_c(self):
        for name, (_, arguments) in FUNCTIONS.items():
            stated = re.search(r"\b" + name + r"\s*\((.*?)\)", CODE, re.S).group(1)
            for argument, kind in zip(stated.split(","), arguments):
                words = argument.split()
                number = NUMBERS.get(words[0]) if "*" not in argument else None
                if number:
                    self.assertIs(number, kind, (name, argument))
                else:
                    self.assertEqual(8, ctypes.sizeof(kind), (name, argument))

    def test_statuses_have_the_names_of_the_library(self):
        library = load_library(LIBRARY)
        for status in Status:
            self.assertEqual(status.name, library.rgenh_getStatusName(status).decode())

    def test_functions_that_keep_the_global_lock_call_nobody_back(self):
        callers = [name for name, (_, arguments) in native.QUICK.items()
                   if native.TranslateFunction in arguments]
        self.assertEqual([], callers)


if __name__ == "__main__":
    unittest.main()

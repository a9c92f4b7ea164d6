"""The comparison of binary interfaces notices every kind of change.

Each case builds a small library out of a changed copy of the headers, with empty functions, and
compares it with what is committed, as check_abi.py does with the real one.

SPDX-License-Identifier: MIT
"""

import contextlib
import io
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import check_abi
from header_reader import read_headers

FUNCTIONS_END = "RGEN_API void RGEN_CALL rgen_freeRgenCInputParams(RgenCInputParams* input);"
FREE_BYTES = "RGEN_API void RGEN_CALL rgen_freeRgenByteArray(RgenByteArray* record);"
CANCEL = ("RGEN_API void RGEN_CALL rgen_cancel(RgenReportGenerator* generator, "
          "const RgenGuid* guid);")
SIZE = "    uint32_t size;"
LENGTH = "    uint32_t length;"
MODE = "    uint64_t outputMode;\n"
MODE_COMMENT = ("    /** One of RgenOutputMode; any other value results in "
                "RGEN_E_UNKNOWN_OUTPUT_MODE. */\n")
SONAME = "libstrata_repgenlib.so.0"


def stub_source(header):
    """A definition of every function, which does nothing."""
    lines = ['#include "strata_repgenlib/rgen.h"']
    for function in header.functions:
        parameters = ", ".join(item.type.declare(item.name) for item in function.parameters)
        is_void = function.result.base == "void" and not function.result.pointer
        lines.append(f"{function.result.declare('RGEN_CALL ' + function.name)}"
                     f"({parameters or 'void'}) {{ {'' if is_void else 'return 0;'} }}")
    return "\n".join(lines) + "\n"


class AbiWatch(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def build(self, include, soname, more, *flags):
        source, library = self.folder / "stub.c", self.folder / "libstub.so"
        source.write_text(stub_source(read_headers(include / "strata_repgenlib")) + more)
        subprocess.run(["gcc", "-shared", "-fPIC", "-w", f"-Wl,-soname,{soname}",
                        f"-I{include}", *(flags or ["-g"]), source, "-o", library], check=True)
        return library

    def changed_headers(self, *changes):
        """The folder of headers that have the first text of each pair replaced by the second."""
        include = self.folder / "include"
        shutil.copytree(check_abi.ROOT / "include" / "strata_repgenlib",
                        include / "strata_repgenlib")
        for old, new in changes:
            self.assertEqual(1, sum(self.replace(path, old, new)
                                    for path in include.rglob("rgen*.h")), old)
        return include

    def verdict(self, *changes, soname=SONAME, flags=(), more=""):
        """Of a library with changed headers, whose source holds more."""
        include = self.changed_headers(*changes)
        return check_abi.compare(self.build(include, soname, more, *flags), include)

    @staticmethod
    def replace(path, old, new):
        text = path.read_text()
        path.write_text(text.replace(old, new))
        return text.count(old)

    def expect(self, verdict, is_compatible, *words):
        text = "\n".join(verdict.lines)
        for word in words:
            self.assertIn(word, text)
        self.assertEqual(is_compatible, verdict.is_compatible, text)

    def test_nothing_changed(self):
        self.assertEqual([], self.verdict().lines)

    def test_a_higher_optimisation_and_version_change_nothing(self):
        changes = ("#define RGEN_VERSION_PATCH 0", "#define RGEN_VERSION_PATCH 7")
        self.assertEqual([], self.verdict(changes, flags=["-g", "-O3"]).lines)

    def test_a_library_without_debug_information_is_refused(self):
        with self.assertRaisesRegex(check_abi.DumpError, "debug information"):
            self.verdict(flags=["-O2"])

    def test_removed_function(self):
        self.expect(self.verdict((FREE_BYTES, "typedef struct RgenNone RgenNone;")), False,
                    "1 Removed", "rgen_freeRgenByteArray")

    def test_renamed_function(self):
        renamed = FREE_BYTES.replace("ByteArray(", "Bytes(")
        self.expect(self.verdict((FREE_BYTES, renamed)), False, "1 Removed", "1 Added",
                    "rgen_freeRgenBytes")

    def test_added_function(self):
        added = FUNCTIONS_END + "\n/** More. */\nRGEN_API void RGEN_CALL rgen_more(void);"
        self.expect(self.verdict((FUNCTIONS_END, added)), True, "1 Added", "rgen_more")

    def test_exports_that_no_header_declares(self):
        verdict = self.verdict(more="int stray(int number) { return number; }\nint loose = 1;\n")
        self.expect(verdict, True, "stray", "loose")

    def test_changed_parameter(self):
        self.expect(self.verdict((CANCEL, CANCEL.replace("const RgenGuid* guid", "uint64_t guid"))),
                    False, "rgen_cancel", "parameter 2")

    def test_parameter_that_is_no_longer_const(self):
        self.expect(self.verdict((CANCEL, CANCEL.replace("const ", ""))), False, "rgen_cancel")

    def test_added_parameter(self):
        more = CANCEL.replace("guid)", "guid, uint64_t more)")
        self.expect(self.verdict((CANCEL, more)), False, "rgen_cancel", "parameter 3")

    def test_changed_result(self):
        number = FREE_BYTES.replace("void", "int32_t")
        self.expect(self.verdict((FREE_BYTES, number)), False, "return type changed")

    def test_widened_field(self):
        self.expect(self.verdict((SIZE, SIZE.replace("32", "64"))), False, "RgenByteArray", "size")

    def test_signed_field(self):
        self.expect(self.verdict((LENGTH, "    int32_t length;")), False, "length")

    def test_renamed_field(self):
        self.expect(self.verdict((LENGTH, "    uint32_t bytes;")), False, "length", "bytes")

    def test_moved_field(self):
        moved = "    RgenCVariantSet variants;\n"
        self.expect(self.verdict((MODE_COMMENT, ""), (MODE, ""), (moved, MODE + moved)), False,
                    "outputMode", "offset changed")

    def test_added_field(self):
        added = "    RgenAnsiString converterBaseArg;\n    uint64_t more;"
        self.expect(self.verdict(("    RgenAnsiString converterBaseArg;", added)), False,
                    "RgenCInputParams", "size changed")

    def test_callback_with_another_parameter(self):
        self.expect(self.verdict(("(const char* text, void* context);",
                                  "(const char* text, uint32_t context);")), False,
                    "RgenTranslateFunction")

    def test_changed_enumerator(self):
        self.expect(self.verdict(("RGEN_HINT_DUMP = 8", "RGEN_HINT_DUMP = 9")), False,
                    "RgenHint RGEN_HINT_DUMP from 8 to 9")

    def test_changed_status(self):
        self.expect(self.verdict(("RGEN_CANCELED RGEN_STATUS(0x80000001U)",
                                  "RGEN_CANCELED RGEN_STATUS(0x80000002U)")), False,
                    "RGEN_CANCELED from 0x80000001 to 0x80000002")

    def test_removed_and_added_status(self):
        old = "#define RGEN_E_UNKNOWN RGEN_STATUS(0xC000FFFFU)"
        verdict = self.verdict((old, old.replace("_UNKNOWN", "_OTHER")))
        self.expect(verdict, False, "removed: RgenStatus RGEN_E_UNKNOWN",
                    "added: RgenStatus RGEN_E_OTHER")

    def test_added_status(self):
        old = "#define RGEN_E_UNKNOWN RGEN_STATUS(0xC000FFFFU)"
        self.expect(self.verdict((old, old + "\n#define RGEN_E_MORE RGEN_STATUS(0xC000FFFEU)")),
                    True, "added: RgenStatus RGEN_E_MORE = 0xC000FFFE")

    def test_other_soname(self):
        self.expect(self.verdict(soname="libstrata_repgenlib.so.1"), False, "SONAME")

    def test_a_change_fails_with_advice_until_it_is_accepted(self):
        include = self.changed_headers((SIZE, SIZE.replace("32", "64")),
                                       ("RGEN_HINT_DUMP = 8", "RGEN_HINT_DUMP = 9"))
        library = self.build(include, SONAME, "")
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            self.assertEqual(1, check_abi.check(library, include))
        for word in ("INCOMPATIBLE", "RgenByteArray", "RGEN_HINT_DUMP from 8 to 9", "--accept"):
            self.assertIn(word, printed.getvalue())
        with (mock.patch.object(check_abi, "DUMP", self.folder / "accepted.abi"),
              mock.patch.object(check_abi, "CONSTANTS", self.folder / "accepted.txt"),
              contextlib.redirect_stdout(printed)):
            check_abi.accept(library, include)
            self.assertEqual(0, check_abi.check(library, include))


if __name__ == "__main__":
    unittest.main()

"""The comparison of binary interfaces notices every kind of change.

Each case builds a small library out of a changed copy of the headers, with empty functions, and
compares it with what is committed, as check_abi.py does with the real ones.

SPDX-License-Identifier: MIT
"""

import contextlib
import dataclasses
import io
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import check_abi
from check_abi import FIRST, HOST
from public_constants import HeaderError, constants_of, prototypes

FUNCTIONS_END = "RGEN_API void RGEN_CALL rgen_freeRgenCInputParams(RgenCInputParams* input);"
FREE_BYTES = "RGEN_API void RGEN_CALL rgen_freeRgenByteArray(RgenByteArray* record);"
CANCEL = ("RGEN_API void RGEN_CALL rgen_cancel(RgenReportGenerator* generator, "
          "const RgenGuid* guid);")
SIZE = "    uint32_t size;"
LENGTH = "    uint32_t length;"
MODE = "    uint64_t outputMode;\n"
MODE_COMMENT = ("    /** One of RgenOutputMode; any other value results in "
                "RGEN_E_UNKNOWN_OUTPUT_MODE. */\n")
ERROR_END = "    char message[RGENH_MESSAGE_SIZE];\n"
ERROR_MIDDLE = "    int64_t systemError;\n"
MORE = "    uint64_t more;\n"


def stub_source(headers):
    """A definition of every function of the headers, which does nothing."""
    lines = [f'#include "strata_repgenlib/{header.name}"' for header in headers]
    for header in headers:
        for prototype in prototypes(header):
            result = "" if prototype.startswith("void RGEN_CALL") else "return 0;"
            lines.append(f"{prototype} {{ {result} }}")
    return "\n".join(lines) + "\n"


class InterfaceCase(unittest.TestCase):
    """Cases about one library."""

    interface = FIRST

    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def build(self, include, soname, more, *flags):
        source, library = self.folder / "stub.c", self.folder / "libstub.so"
        source.write_text(stub_source(self.interface.header_paths(include)) + more)
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
                                    for path in self.interface.header_paths(include)), old)
        return include

    def verdict(self, *changes, soname=None, flags=(), more=""):
        """Of a library with changed headers, whose source holds more."""
        include = self.changed_headers(*changes)
        soname = soname or f"lib{self.interface.name}.so.0"
        return check_abi.compare(self.interface, self.build(include, soname, more, *flags), include)

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


class AbiWatch(InterfaceCase):

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
        library = self.build(include, "libstrata_repgenlib.so.0", "")
        printed = io.StringIO()
        accepted = dataclasses.replace(FIRST, dump=self.folder / "accepted.abi",
                                       constants=self.folder / "accepted.txt")
        with contextlib.redirect_stdout(printed):
            self.assertEqual(1, check_abi.check(FIRST, library, include))
            check_abi.accept(accepted, library, include)
            self.assertEqual(0, check_abi.check(accepted, library, include))
        for word in ("INCOMPATIBLE", "RgenByteArray", "RGEN_HINT_DUMP from 8 to 9", "--accept"):
            self.assertIn(word, printed.getvalue())


class HostWatch(InterfaceCase):

    interface = HOST

    def test_nothing_changed(self):
        self.assertEqual([], self.verdict().lines)

    def test_removed_and_added_function(self):
        removed = "RGENH_API void RGEN_CALL rgenh_freeJob(RgenhJob* job) RGENH_NOEXCEPT;"
        self.expect(self.verdict((removed, removed.replace("freeJob", "endJob"))), False,
                    "1 Removed", "1 Added", "rgenh_endJob")

    def test_changed_parameter_of_a_callback(self):
        self.expect(self.verdict(("(RgenhJob* job, void* context);",
                                  "(uint64_t job, void* context);")), False, "RgenhJobEndFunction")

    def test_records_with_a_size_may_grow_at_their_ends(self):
        for old, record in ((ERROR_END, "RgenhError"), ("    uint64_t pairCount;\n",
                                                        "RgenhRequestParts"),
                            ("    char hostPath[RGENH_PATH_SIZE];\n", "RgenhVersions")):
            with self.subTest(record):
                verdict = self.verdict((old, f"{old}    char more[17];\n    uint64_t last;\n"))
                self.assertEqual([f"record grown at its end: {record} by more, last"], verdict.lines)
                self.assertTrue(verdict.is_compatible)
                shutil.rmtree(self.folder / "include")

    def test_a_record_that_grows_before_its_end(self):
        self.expect(self.verdict((ERROR_MIDDLE, MORE + ERROR_MIDDLE)), False, "RgenhError", "more")

    def test_a_field_that_replaces_another_one_while_the_record_grows(self):
        changes = ((ERROR_MIDDLE, "    uint64_t systemError;\n"), (ERROR_END, ERROR_END + MORE))
        self.expect(self.verdict(*changes), False, "RgenhError", "systemError")

    def test_elements_of_arrays_must_not_grow(self):
        last = "    /** Bytes of data; for a text possibly RGENH_NULL_TERMINATED. */\n    uint64_t size;\n"
        self.expect(self.verdict((last, last + MORE)), False, "RgenhValue", "size changed")

    def test_changed_constants(self):
        verdict = self.verdict(("RGENH_ERROR_MEMORY = 2", "RGENH_ERROR_MEMORY = 12"),
                               ("#define RGENH_TYPE_MARKUP 5", "#define RGENH_TYPE_MARKUP 6"))
        self.expect(verdict, False, "RgenhErrorKind RGENH_ERROR_MEMORY from 2 to 12",
                    "macro RGENH_TYPE_MARKUP from 5 to 6")

    def test_constants_of_an_unknown_form_are_refused(self):
        for old, new in (("#define RGENH_TYPE_MARKUP 5", "#define RGENH_TYPE_MARKUP (4 + 1)"),
                         ("RGENH_ERROR_NONE = 0", "RGENH_ERROR_NONE"),
                         ("RGENH_ERROR_NONE = 0", "RGENH_ERROR_NONE = -1")):
            with self.subTest(new):
                include = self.changed_headers((old, new))
                with self.assertRaisesRegex(HeaderError, "not a constant"):
                    constants_of(HOST.header_paths(include))
                shutil.rmtree(include)

    def test_other_soname(self):
        self.expect(self.verdict(soname="libstrata_repgenlib_host.so.1"), False, "SONAME")

    def test_a_library_that_is_neither_is_refused(self):
        with self.assertRaisesRegex(check_abi.DumpError, "is none of"):
            check_abi.interface_of(Path("build/libother.so"))
        self.assertIs(HOST, check_abi.interface_of(Path("libstrata_repgenlib_host.so.0.2")))


if __name__ == "__main__":
    unittest.main()

"""The generated declarations: up to date, complete, and the same as what the C compiler sees.

SPDX-License-Identifier: MIT
"""

import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
BINDINGS = ROOT / "bindings"
HEADERS = ROOT / "include" / "strata_repgenlib"
sys.path.insert(0, str(BINDINGS))

import generate_declarations  # It is in the folder that was added.
from header_reader import HeaderError, read_headers
from record_layout import layouts

HEADER = read_headers(HEADERS)
GENERATED = {path.suffix: text for path, text in generate_declarations.generated_files().items()}
FUNCTIONS = 26
STATUSES = 37
PROBE_HEAD = """#include <stddef.h>
#include <stdio.h>
#include "strata_repgenlib/rgen.h"
"""


def probe_figures():
    """What the probe has to print: sizes, offsets, values."""
    figures = {}
    for name, layout in layouts(HEADER).items():
        figures[f"sizeof({name})"] = layout.size
        for field, offset in layout.offsets.items():
            figures[f"offsetof({name}, {field})"] = offset
    constants = list(HEADER.statuses)
    for enumeration in HEADER.enumerations:
        constants += enumeration.constants
    figures.update({constant.name: constant.value for constant in constants})
    figures.update({f"RGEN_VERSION_{part}": number for part, number in HEADER.version.items()})
    return figures


def parameter_text(function):
    return ", ".join(item.type.declare(item.name) for item in function.parameters) or "void"


def probe_source():
    """A C program that declares every function and field once more and prints the figures. The
    compiler refuses a second declaration that differs from the header's."""
    lines = [PROBE_HEAD]
    for function in HEADER.functions:
        result = function.result.declare(f"RGEN_CALL {function.name}")
        lines.append(f"{result}({parameter_text(function)});")
    for callback in HEADER.callbacks:
        result = callback.result.declare(f"(RGEN_CALL* {callback.name})")
        lines.append(f"typedef {result}({parameter_text(callback)});")
    for record in HEADER.records:
        kind = "union" if record.is_union else "struct"
        fields = " ".join(field.type.declare(field.name) + ";" for field in record.fields)
        lines.append(f"{kind} Own{record.name} {{ {fields} }};")
        same = "; ".join(f"(void)(&own->{field.name} == &its->{field.name})"
                         for field in record.fields)
        lines.append(f"void compare{record.name}({kind} Own{record.name}* own, "
                     f"{record.name}* its) {{ {same}; }}")
    lines.append("int main(void) {")
    lines += [f'    printf("%s=%lld\\n", "{text}", (long long)({text}));'
              for text in probe_figures()]
    return "\n".join([*lines, "    return 0;", "}", ""])


class GeneratedFiles(unittest.TestCase):
    def test_they_are_up_to_date(self):
        script = BINDINGS / "generate_declarations.py"
        outcome = subprocess.run([sys.executable, script, "--check"], capture_output=True,
                                 text=True, check=False)
        self.assertEqual((0, ""), (outcome.returncode, outcome.stdout), outcome.stdout)

    def test_each_has_every_function(self):
        self.assertEqual(FUNCTIONS, len(HEADER.functions))
        names = {function.name for function in HEADER.functions}
        self.assertEqual(names, set(re.findall(r"extern \S+ (rgen_\w+)\(", GENERATED[".cs"])))
        self.assertEqual(names, set(re.findall(r"pub fn (rgen_\w+)\(", GENERATED[".rs"])))

    def test_each_has_every_status(self):
        self.assertEqual(STATUSES, len(HEADER.statuses))
        values = {status.name: status.value & 0xFFFFFFFF for status in HEADER.statuses}
        csharp = re.findall(r"const int (RGEN_\w+) = unchecked\(\(int\)(0x\w+)\)", GENERATED[".cs"])
        rust = re.findall(r"const (RGEN_\w+): RgenStatus = (0x[0-9A-F]{8}|0)", GENERATED[".rs"])
        self.assertEqual(values, {name: int(number, 0) for name, number in csharp})
        self.assertEqual(values, {name: int(number, 0) for name, number in rust})

    def test_each_has_every_record_and_constant(self):
        for record in HEADER.records:
            self.assertIn(f"public struct {record.name}\n", GENERATED[".cs"])
            kind = "union" if record.is_union else "struct"
            self.assertIn(f"pub {kind} {record.name} {{\n", GENERATED[".rs"])
        for enumeration in HEADER.enumerations:
            for constant in enumeration.constants:
                self.assertIn(f"        {constant.name} = {constant.value},\n", GENERATED[".cs"])
                self.assertIn(f"pub const {constant.name}: u64 = {constant.value};",
                              GENERATED[".rs"])

    def test_the_crate_has_the_version_of_the_header(self):
        manifest = (BINDINGS / "rust" / "Cargo.toml").read_text(encoding="utf-8")
        self.assertEqual([HEADER.version_text], re.findall(r'^version = "(.*)"$', manifest, re.M))


class CompilerView(unittest.TestCase):
    def test_sizes_offsets_values_and_signatures_are_those_of_the_compiler(self):
        folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, folder)
        source, program = folder / "probe.c", folder / "probe"
        source.write_text(probe_source(), encoding="ascii")
        subprocess.run(["gcc", "-std=c11", "-Wall", "-Wextra", "-Werror", f"-I{ROOT / 'include'}",
                        source, "-o", program], check=True)
        printed = subprocess.run([program], check=True, capture_output=True, text=True).stdout
        found = dict(line.rsplit("=", 1) for line in printed.splitlines())
        self.assertEqual(probe_figures(), {text: int(number) for text, number in found.items()})


class StrictReader(unittest.TestCase):
    """Forms that the headers do not use today are errors that name their place."""

    CHANGES = {
        "typedef int32_t RgenStatus;": "typedef long RgenStatus;",
        "    uint8_t data4[8];": "    uint8_t data4[SIZE];",
        "    uint32_t data1;": "    double data1;",
        "    uint16_t data2;": "    uint16_t data2 : 4;",
        "    RgenAnsiString* keys;": "    RgenAnsiString** keys;",
        "    int64_t int64Value;": "    struct { int64_t inner; } int64Value;",
        "    RGEN_TYPE_INT64 = 1,": "    RGEN_TYPE_INT64,",
        "#define RGEN_VERSION_MINOR 1": "#define RGEN_VERSION_MINOR (1)",
        "#define RGEN_OK RGEN_STATUS(0x00000000U)": "#define RGEN_OK 0",
        "#include <stdint.h>\n\n#include": "#include <stddef.h>\n\n#include",
        "#define RGEN_CALL __cdecl": "#define RGEN_CALL __stdcall",
        "RGEN_API void RGEN_CALL rgen_freeRgenByteArray(": "static void rgen_freeRgenByteArray(",
        "rgen_freeRgenCVariant(RgenCVariant* record);": "rgen_freeRgenCVariant(RgenCVariant*);",
        "void* context);\n\n/* ----": "void* context, ...);\n\n/* ----",
        "#endif\n\n/* ---- Types": "#endif\n\nint rgenNumber;\n/* ---- Types",
    }

    def test_an_unknown_form_is_an_error(self):
        for old, new in self.CHANGES.items():
            with self.subTest(new), tempfile.TemporaryDirectory() as name:
                changed = 0
                for path in HEADERS.glob("*.h"):
                    text = path.read_text(encoding="ascii")
                    changed += text.count(old)
                    Path(name, path.name).write_text(text.replace(old, new), encoding="ascii")
                self.assertEqual(1, changed)
                with self.assertRaisesRegex(HeaderError, r"^rgen(_status)?\.h:\d+: "):
                    read_headers(Path(name))


if __name__ == "__main__":
    unittest.main()

"""The import library for Microsoft-compatible linkers: clang for that target and lld make a host
with it, without a C runtime, which runs in the folder of the DLL.

SPDX-License-Identifier: MIT
"""

import os
import re
import shutil

from installed_case import HERE, InstalledCase
from program_case import SOURCE_FOLDER, windows_only

SOURCE = HERE / "other_linker/freestanding_host.c"
TOOLS_VERSION = os.environ["RGEN_PACKAGE_CLANG_VERSION"]
TARGET = "x86_64-pc-windows-msvc"
CLANG = [f"clang-{TOOLS_VERSION}", f"--target={TARGET}", "-ffreestanding", "-Wall", "-Wextra",
         "-Wpedantic", "-Werror"]
LLD = f"lld-link-{TOOLS_VERSION}"


@windows_only
class OtherLinker(InstalledCase):

    def compile(self, *options):
        self.tool(*CLANG, f"-I{self.prefix / 'include'}", *options)

    def test_a_host_is_linked_and_runs(self):
        self.compile("-std=c99", "-c", SOURCE, "-o", self.folder / "host.obj")
        program = self.folder / "host.exe"
        self.tool(LLD, "/entry:start", "/subsystem:console", "/nodefaultlib", f"/out:{program}",
                  self.folder / "host.obj", self.library_folder / "strata_repgenlib.lib")
        shutil.copy(self.prefix / "bin/strata_repgenlib.dll", self.folder)
        self.assertEqual("", self.output_of(program, code=42))

    def test_cmake_chooses_the_library_for_that_compiler(self):
        options = {"CMAKE_SYSTEM_NAME": "Windows", "CMAKE_C_COMPILER": CLANG[0],
                   "CMAKE_C_COMPILER_TARGET": TARGET, "CMAKE_PREFIX_PATH": self.prefix,
                   "CMAKE_RC_COMPILER": f"llvm-rc-{TOOLS_VERSION}",
                   "CMAKE_TRY_COMPILE_TARGET_TYPE": "STATIC_LIBRARY",
                   "CMAKE_C_STANDARD_LIBRARIES": ""}
        folder = self.folder / "build"
        self.tool("cmake", "-S", SOURCE.parent, "-B", folder, "-GNinja",
                  *(f"-D{name}={value}" for name, value in options.items()))
        commands = self.tool("cmake", "--build", folder, "--verbose")
        self.assertIn("/lib/strata_repgenlib.lib", commands)
        self.assertEqual("", self.output_of(folder / "freestanding_host.exe", code=42))

    def test_the_header_is_c_and_cpp_for_that_compiler(self):
        source = self.write("plain.c", '#include "strata_repgenlib/rgen.h"\n')
        for language, standards in (("c", ("c99", "c11")), ("c++", ("c++11", "c++17", "c++20"))):
            for standard in standards:
                self.compile("-x", language, f"-std={standard}", "-fsyntax-only", source)

    def test_the_library_has_the_short_format_and_every_export(self):
        library = self.library_folder / "strata_repgenlib.lib"
        listed = self.tool(f"llvm-readobj-{TOOLS_VERSION}", "--coff-imports", "--file-headers",
                           library)
        definitions = (SOURCE_FOLDER / "src/api/exports.def").read_text()
        exports = re.findall(r"^    (\w+)$", definitions, re.M)
        self.assertEqual(26, len(exports))
        self.assertEqual(sorted(exports), sorted(re.findall(r"^Symbol: (rgen_\w+)$", listed, re.M)))
        self.assertEqual(26, listed.count("Format: COFF-import-file"))
        self.assertEqual(definitions,
                         (self.library_folder / "strata_repgenlib.def").read_text())

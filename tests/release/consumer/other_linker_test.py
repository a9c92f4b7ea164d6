"""The import libraries for Microsoft-compatible linkers: clang for that target and lld make hosts
with them, without a C runtime, which run in the folder of the DLLs.

SPDX-License-Identifier: MIT
"""

import os
import re
import shutil

from installed_case import HERE, InstalledCase
from program_case import SOURCE_FOLDER, windows_only

FOLDER = HERE / "other_linker"
# The source of a host, and the libraries that it needs.
HOSTS = {"freestanding_host.c": ["strata_repgenlib"],
         "freestanding_caller.c": ["strata_repgenlib_host", "strata_repgenlib"],
         "freestanding_failures.cpp": ["strata_repgenlib_host", "strata_repgenlib"]}
LANGUAGES = {".c": ["-std=c99"], ".cpp": ["-std=c++17", "-fno-exceptions", "-fno-rtti"]}
# The list of exports of each library, its prefix and the number of exports.
EXPORTS = {"strata_repgenlib": ("src/api/exports.def", "rgen_", 26),
           "strata_repgenlib_host": ("host/api/exports.def", "rgenh_", 36)}
TOOLS_VERSION = os.environ["RGEN_PACKAGE_CLANG_VERSION"]
TARGET = "x86_64-pc-windows-msvc"
CLANG = [f"clang-{TOOLS_VERSION}", f"--target={TARGET}", "-ffreestanding", "-Wall", "-Wextra",
         "-Wpedantic", "-Werror"]
LLD = f"lld-link-{TOOLS_VERSION}"
# Debian has no standard library for Microsoft's compiler. These options make one of libc++ and the C
# headers of MinGW; names, layouts and exceptions are still those of Microsoft's compiler.
STANDARD_LIBRARY = ["-fms-extensions", "-fno-ms-compatibility", "-fmsc-version=0", "-fgnuc-version=12.1",
                    "-D__MINGW32__", "-D__MINGW64__", "-D_UCRT", "-D_LIBCPP_ABI_FORCE_MICROSOFT",
                    "-D_LIBCPP_NO_VCRUNTIME", "-nostdinc++", "-nostdlibinc", "-Xclang", "-fexceptions",
                    "-Xclang", "-fcxx-exceptions",
                    "-isystem", f"/usr/lib/llvm-{TOOLS_VERSION}/include/c++/v1",
                    "-isystem", "/usr/x86_64-w64-mingw32/include"]


@windows_only
class OtherLinker(InstalledCase):

    def compile(self, *options):
        self.tool(*CLANG, f"-I{self.prefix / 'include'}", *options)

    def test_hosts_are_linked_and_run(self):
        for name, libraries in HOSTS.items():
            with self.subTest(name):
                source = FOLDER / name
                self.compile(*LANGUAGES[source.suffix], "-c", source, "-o", self.folder / "host.obj")
                program = self.folder / f"{source.stem}.exe"
                self.tool(LLD, "/entry:start", "/subsystem:console", "/nodefaultlib",
                          f"/out:{program}", self.folder / "host.obj",
                          *(self.library_folder / f"{library}.lib" for library in libraries))
                for library in libraries:
                    shutil.copy(self.prefix / f"bin/{library}.dll", self.folder)
                self.assertEqual("", self.output_of(program, code=42))

    def test_cmake_chooses_the_libraries_for_that_compiler(self):
        options = {"CMAKE_SYSTEM_NAME": "Windows", "CMAKE_C_COMPILER": CLANG[0],
                   "CMAKE_C_COMPILER_TARGET": TARGET, "CMAKE_PREFIX_PATH": self.prefix,
                   "CMAKE_CXX_COMPILER": CLANG[0].replace("clang", "clang++"),
                   "CMAKE_CXX_COMPILER_TARGET": TARGET,
                   "CMAKE_RC_COMPILER": f"llvm-rc-{TOOLS_VERSION}",
                   "CMAKE_TRY_COMPILE_TARGET_TYPE": "STATIC_LIBRARY",
                   "CMAKE_C_STANDARD_LIBRARIES": "", "CMAKE_CXX_STANDARD_LIBRARIES": ""}
        folder = self.folder / "build"
        self.tool("cmake", "-S", FOLDER, "-B", folder, "-GNinja",
                  *(f"-D{name}={value}" for name, value in options.items()))
        commands = self.tool("cmake", "--build", folder, "--verbose")
        for name in HOSTS:
            program = (folder / name).with_suffix(".exe")
            self.assertEqual("", self.output_of(program, code=42))
        for library in EXPORTS:
            self.assertIn(f"/lib/{library}.lib", commands)

    def test_the_headers_are_c_and_cpp_for_that_compiler(self):
        source = self.write("plain.c", '#include "strata_repgenlib/rgen_host.h"\n')
        for language, standards in (("c", ("c99", "c11")), ("c++", ("c++11", "c++17", "c++20"))):
            for standard in standards:
                self.compile("-x", language, f"-std={standard}", "-fsyntax-only", source)

    def test_the_cpp_header_compiles_for_that_compiler(self):
        examples = self.prefix / "share/strata_repgenlib/examples"
        sources = [SOURCE_FOLDER / "tests/abi/wrapper_compiles.cpp", *sorted(examples.glob("*.cpp"))]
        for standard in ("c++17", "c++20"):
            for source in sources:
                with self.subTest(source=source.name, standard=standard):
                    compiled = self.folder / "host.obj"
                    self.tool(CLANG[0], f"--target={TARGET}", "-Wall", "-Wextra", "-Wpedantic",
                              "-Werror", *STANDARD_LIBRARY, f"-std={standard}",
                              f"-I{self.prefix / 'include'}", f"-I{examples}", "-c", source, "-o",
                              compiled)
                    names = self.tool(f"llvm-nm-{TOOLS_VERSION}", compiled)
                    self.assertIn("repgen@strata@@", names)

    def test_the_libraries_have_the_short_format_and_every_export(self):
        for name, (path, prefix, count) in EXPORTS.items():
            listed = self.tool(f"llvm-readobj-{TOOLS_VERSION}", "--coff-imports", "--file-headers",
                               self.library_folder / f"{name}.lib")
            definitions = (SOURCE_FOLDER / path).read_text()
            exports = re.findall(r"^    (\w+)$", definitions, re.M)
            self.assertEqual(count, len(exports))
            self.assertEqual(sorted(exports),
                             sorted(re.findall(rf"^Symbol: ({prefix}\w+)$", listed, re.M)))
            self.assertEqual(count, listed.count("Format: COFF-import-file"))
            self.assertEqual(definitions, (self.library_folder / f"{name}.def").read_text())

"""Compiles blocks of C, C++, C# and Rust: whole sources, or parts of a function.

SPDX-License-Identifier: MIT
"""

PRELUDES = {
    "c": "#include <stdio.h>\n#include <string.h>\n"
         "#include <strata_repgenlib/rgen_host.h>\n",
    "cpp": "#include <iostream>\n#include <string>\n#include <vector>\n"
           "#include <strata_repgenlib/rgen.hpp>\n",
    "csharp": "using System;\nusing StrataRepgenlib;\n",
    "rust": "use std::time::SystemTime;\nuse strata_repgenlib::*;\n",
}
FUNCTIONS = {
    "c": "void page_block({0});\nvoid page_block({0}) {{\n{1}}}\n",
    "cpp": "void page_block({0});\nvoid page_block({0}) {{\n{1}}}\n",
    "csharp": "public static class PageBlock {{ public static void Run({0}) {{\n{1}}} }}\n",
    "rust": "pub fn run({0}) -> Result<(), Box<dyn std::error::Error>> {{\n{1}Ok(())\n}}\n",
}
RUST = ["rustc", "--edition", "2021", "--crate-type", "lib", "--emit=metadata"]


def source_of(block):
    if "inside" not in block.marks:
        return block.text
    function = FUNCTIONS[block.language].format(block.marks["inside"], block.text)
    return PRELUDES[block.language] + function


def native_commands(compiler, source, surroundings):
    includes = [f"-I{folder}" for folder in surroundings.includes]
    return [[*compiler, "-Wall", "-Wextra", "-Werror", "-Wno-unused", "-fsyntax-only", *includes,
             source]]


def commands_for(language, source, surroundings):
    """The commands that compile the source."""
    if language == "c":
        return native_commands(["gcc", "-xc", "-std=c99"], source, surroundings)
    if language == "cpp":
        return native_commands(["g++", "-xc++", "-std=c++17"], source, surroundings)
    if language == "csharp":
        wrapper = sorted((surroundings.bindings / "csharp").glob("*.cs"))
        return [["mcs", "-target:library", f"-out:{source.with_suffix('.dll')}", *wrapper, source]]
    crate = source.with_name("libstrata_repgenlib.rmeta")
    main = surroundings.bindings / "rust/src/lib.rs"
    return [[*RUST, "--crate-name", "strata_repgenlib", "-o", crate, main],
            [*RUST, "--extern", f"strata_repgenlib={crate}", "-o", source.with_suffix(".rmeta"),
             source]]

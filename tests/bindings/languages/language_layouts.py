"""What each language declares of the C interface, as lines for layout_test.py.

SPDX-License-Identifier: MIT
"""

import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from language_host_case import LIBRARY_FOLDER, ROOT

FOLDER = Path(__file__).resolve().parent
CSHARP = ROOT / "bindings" / "csharp"
RUST = ROOT / "bindings" / "rust" / "src" / "rgen_native.rs"
RUST_COMPILER = "/usr/bin/rustc"

RUST_RECORD = re.compile(r"pub (?:struct|union) (\w+) \{\n(.*?)\n\}", re.S)
RUST_FIELD = re.compile(r"^    pub ([\w#]+): ", re.M)
RUST_FUNCTION = re.compile(r"pub fn (\w+)\(([^)]*)\)")
RUST_CONSTANT = re.compile(r"^pub const (\w+): (?:u64|i32|usize|RgenStatus) = ", re.M)


def output_of(command, **settings):
    return subprocess.run(command, check=True, capture_output=True, text=True,
                          **settings).stdout.splitlines()


def csharp_lines():
    """By reflection: records, DllImports and constants of the compiled sources."""
    with tempfile.TemporaryDirectory() as folder:
        program = Path(folder, "layout.exe")
        subprocess.run(["mcs", "-warnaserror", "-langversion:7.2", f"-out:{program}",
                        FOLDER / "csharp_layout.cs", *sorted(CSHARP.glob("*.cs"))], check=True)
        return output_of([shutil.which("mono"), program])


def rust_probe(text):
    """A program that prints the figures of the declarations in a source text. Rust has no
    reflection: their names are those that the text declares in its own form."""
    lines = []
    for record, body in RUST_RECORD.findall(text):
        fields = RUST_FIELD.findall(body)
        if not fields:
            continue
        lines.append(f'println!("sizeof({record})={{}}", std::mem::size_of::<{record}>());')
        lines.append(f"let record = std::mem::MaybeUninit::<{record}>::uninit();")
        lines.append("let start = record.as_ptr();")
        for field in fields:
            name = field.removeprefix("r#")
            lines.append(f"let place = unsafe {{ std::ptr::addr_of!((*start).{field}) }} as usize;")
            lines.append(f'println!("offsetof({record}, {name})={{}}", place - start as usize);')
    for constant in RUST_CONSTANT.findall(text):
        lines.append(f'println!("{constant}={{}}", {constant});')
    for function, parameters in RUST_FUNCTION.findall(text):
        lines.append(f'println!("parameters({function})={parameters.count(":")}");')
    body = "\n    ".join(lines)
    return ("#![allow(dead_code)]\n"
            f'#[path = "{RUST}"]\nmod rgen_native;\nuse rgen_native::*;\n'
            f"fn main() {{\n    {body}\n}}\n")


def rust_lines():
    with tempfile.TemporaryDirectory() as folder:
        source, program = Path(folder, "layout.rs"), Path(folder, "layout")
        source.write_text(rust_probe(RUST.read_text(encoding="utf-8")), encoding="utf-8")
        subprocess.run([RUST_COMPILER, "--edition", "2021", "-D", "warnings", "-L", LIBRARY_FOLDER,
                        "-o", program, source], check=True)
        return output_of([program], env={"LD_LIBRARY_PATH": str(LIBRARY_FOLDER)})


def python_lines():
    """In a process of its own: the package has modules with common names."""
    return output_of([sys.executable, FOLDER / "python_layout.py",
                      ROOT / "bindings" / "python" / "strata_repgenlib"])

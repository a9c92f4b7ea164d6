"""The crate for Rust: compiled by Debian's rustc, and by a newer one where there is one, with the
real library.

SPDX-License-Identifier: MIT
"""

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from language_host_case import (CASE_NAMES, LIBRARY_FOLDER, ROOT, BindingCase, HostCases,
                                readme_code)

FOLDER = Path(__file__).resolve().parent
CRATE = ROOT / "bindings" / "rust"
DEBIAN_COMPILER = "/usr/bin/rustc"
README_PROGRAM = """use std::collections::HashMap;
use std::time::SystemTime;
use strata_repgenlib::{Generator, Hint, Request, Value};
fn main() -> Result<(), Box<dyn std::error::Error>> {
    let catalogue: HashMap<String, String> = HashMap::new();
%s
    Ok(())
}
"""


def rustc(compiler, *arguments):
    command = [compiler, "--edition", "2021", "-D", "warnings", "-L", LIBRARY_FOLDER, *arguments]
    subprocess.run(command, check=True)


def build_crate(compiler, folder, *arguments):
    output = folder / "libstrata_repgenlib.rlib"
    rustc(compiler, "--crate-name", "strata_repgenlib", "--crate-type", "lib", "-o", output,
          *arguments, CRATE / "src" / "lib.rs")
    return output


def build_serde(folder):
    """Debian has the sources of crates, which Cargo would compile in this way."""
    source, = Path("/usr/share/cargo/registry").glob("serde-1.*/src/lib.rs")
    output = folder / "libserde.rlib"
    subprocess.run([DEBIAN_COMPILER, "--crate-name", "serde", "--crate-type", "lib",
                    "--cap-lints", "allow", "--cfg", 'feature="std"', "-o", output, source],
                   check=True)
    return output


class RustHost(HostCases, BindingCase):
    @classmethod
    def setUpClass(cls):
        cls.built = Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.built)
        cls.crate = build_crate(DEBIAN_COMPILER, cls.built)
        cls.program = cls.built / "host"
        rustc(DEBIAN_COMPILER, "--extern", f"strata_repgenlib={cls.crate}", "-o", cls.program,
              FOLDER / "rust_host.rs")

    def run_case(self, name, prefix=(), **settings):
        return self.run_host([*prefix, self.program, name], **settings)

    def test_the_program_of_the_readme_compiles(self):
        source = self.folder / "readme.rs"
        source.write_text(README_PROGRAM % readme_code("rust"), encoding="utf-8")
        rustc(DEBIAN_COMPILER, "--extern", f"strata_repgenlib={self.crate}", "-o",
              self.folder / "readme", source)

    def test_every_case_of_the_host_is_run(self):
        text = (FOLDER / "rust_host.rs").read_text(encoding="utf-8")
        self.assertEqual(CASE_NAMES, set(re.findall(r'^ +"(\w+)" => ', text, re.M)))


class Compilers(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def test_the_oldest_and_the_newest_compiler(self):
        """Where there is one compiler only, it is both. A program links the crate."""
        for compiler in {shutil.which("rustc"), DEBIAN_COMPILER}:
            with self.subTest(compiler):
                crate = build_crate(compiler, self.folder)
                rustc(compiler, "--extern", f"strata_repgenlib={crate}", "-o",
                      self.folder / "host", FOLDER / "rust_host.rs")

    def test_the_programs_of_the_documentation(self):
        crate = build_crate(DEBIAN_COMPILER, self.folder)
        subprocess.run(["/usr/bin/rustdoc", "--test", "--edition", "2021", "-L", LIBRARY_FOLDER,
                        "--crate-name", "strata_repgenlib", "--extern",
                        f"strata_repgenlib={crate}", CRATE / "src" / "lib.rs"], check=True,
                       stdout=subprocess.DEVNULL,
                       env={**os.environ, "LD_LIBRARY_PATH": str(LIBRARY_FOLDER)})

    def test_values_that_serde_serializes(self):
        serde = build_serde(self.folder)
        crate = build_crate(DEBIAN_COMPILER, self.folder, "--cfg", 'feature="serde"',
                            "--extern", f"serde={serde}")
        program = self.folder / "serde_host"
        rustc(DEBIAN_COMPILER, "--extern", f"serde={serde}", "--extern",
              f"strata_repgenlib={crate}", "-L", self.folder, "-o", program,
              FOLDER / "rust_serde.rs")
        subprocess.run([program], check=True, env={"LD_LIBRARY_PATH": str(LIBRARY_FOLDER)})

    def test_the_build_program_finds_the_library(self):
        program = self.folder / "build"
        rustc(DEBIAN_COMPILER, "-o", program, CRATE / "build.rs")
        printed = subprocess.run([program], capture_output=True, text=True, check=True,
                                 env={"STRATA_REPGENLIB_DIR": "/some where"}).stdout
        self.assertIn("cargo:rustc-link-search=native=/some where\n", printed)
        crate = self.folder / "share" / "strata_repgenlib" / "bindings" / "rust"
        library = self.folder / "lib" / "libstrata_repgenlib.so"
        for folder in (crate, library.parent):
            folder.mkdir(parents=True)
        library.touch()
        printed = subprocess.run([program], capture_output=True, text=True, check=True,
                                 env={**os.environ, "CARGO_MANIFEST_DIR": str(crate)}).stdout
        self.assertIn(f"cargo:rustc-link-search=native={library.parent}\n", printed)

    def test_declarations_need_no_standard_library(self):
        source = self.folder / "bare.rs"
        source.write_text("#![no_std]\n#![allow(dead_code)]\n"
                          f'#[path = "{CRATE / "src" / "rgen_native.rs"}"]\n'
                          "pub mod rgen_native;\n", encoding="utf-8")
        rustc(DEBIAN_COMPILER, "--crate-type", "lib", "-o", self.folder / "bare.rlib", source)


if __name__ == "__main__":
    unittest.main()

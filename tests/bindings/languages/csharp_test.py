"""The declarations and the generator for C#: compiled by mcs, run by Mono, with the real library.

SPDX-License-Identifier: MIT
"""

import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from language_host_case import CASE_NAMES, ROOT, BindingCase, HostCases, readme_code

FOLDER = Path(__file__).resolve().parent
SOURCES = sorted((ROOT / "bindings" / "csharp").glob("*.cs"))
HOST_SOURCES = sorted(FOLDER.glob("csharp_host*.cs"))


README_PROGRAM = """using System;
using System.Collections.Generic;
using StrataRepgenlib;
public static class Program
{
    private static readonly Dictionary<string, string> catalogue = new Dictionary<string, string>();
    public static void Main()
    {
%s
    }
}
"""


def compile_sources(*arguments):
    # C# 7.2 is the nearest level to that of .NET Framework 4.7 that this compiler knows.
    subprocess.run(["mcs", "-warnaserror", "-langversion:7.2", *arguments], check=True)


class CSharpHost(HostCases, BindingCase):
    @classmethod
    def setUpClass(cls):
        cls.built = Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.built)
        cls.library = library = cls.built / "StrataRepgenlib.dll"
        cls.program = cls.built / "host.exe"
        compile_sources("-target:library", f"-out:{library}", *SOURCES)
        compile_sources(f"-reference:{library}", f"-out:{cls.program}", *HOST_SOURCES)

    def run_case(self, name, prefix=(), **settings):
        return self.run_host([*prefix, shutil.which("mono"), self.program, name], **settings)

    def test_every_case_of_the_host_is_run(self):
        text = (FOLDER / "csharp_host.cs").read_text(encoding="utf-8")
        self.assertEqual(CASE_NAMES, set(re.findall(r'^ +\["(\w+)"\] =', text, re.M)))

    def test_the_program_of_the_readme_compiles(self):
        source = self.folder / "readme.cs"
        source.write_text(README_PROGRAM % readme_code("csharp"), encoding="utf-8")
        compile_sources(f"-reference:{self.library}", f"-out:{self.folder / 'readme.exe'}", source)


if __name__ == "__main__":
    unittest.main()

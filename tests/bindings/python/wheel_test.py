"""A wheel with both libraries, built without a network, makes reports in a new environment. It contains
the licences of the parts that are linked into the libraries.

SPDX-License-Identifier: MIT
"""

import json
import os
import shutil
import subprocess
import tempfile
import unittest
import zipfile
from email.parser import Parser
from pathlib import Path

from binding_case import LIBRARY, ROOT

PYTHON = "/usr/bin/python3"  # Debian's, which has the packages that build wheels.

HOST = """
from strata_repgenlib import Generator, Request
with Generator("case") as generator:
    request = Request("acquisition", "txt", {"Device": {"Model": "TH500"}})
    assert b"TH500" in generator.generate_bytes(request)
    print(generator.library.path, generator.library.host_path, sep="\\n")
"""

DOCUMENTS = "share/doc/strata_repgenlib"
LIBRARY_DIR = "STRATA_REPGENLIB_DIR"


def linked_licences():
    """The licences of what is linked into the libraries for Linux, by packaging/parts.json."""
    parts = json.loads((ROOT / "packaging/parts.json").read_text(encoding="utf-8"))["parts"]
    rows = {(part["licence_file"], part["licence"]) for part in parts
            if "linux" in part.get("systems", ["linux"]) and "licence_file" in part
            and part["id"] not in ("cli11", "cpp-httplib", "nlohmann-json")}
    words = {word for _, licence in rows for word in licence.split(" AND ")}
    return {name for name, _ in rows}, words


class Wheel(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="rgen prefix ")
        cls.addClassCleanup(folder.cleanup)
        cls.prefix = Path(folder.name).resolve()
        subprocess.run(["cmake", "--install", os.environ["RGEN_BINDINGS_BUILD"], "--component",
                        "library", "--prefix", cls.prefix], check=True, capture_output=True)
        # Only of the tools.
        (cls.prefix / DOCUMENTS / "licences/cli11.txt").write_text("another licence")
        cls.library_folder = next(cls.prefix.rglob(Path(LIBRARY).name)).parent

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="rgen wheel ")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name).resolve()
        shutil.copytree(ROOT / "bindings/python", self.folder / "source",
                        ignore=shutil.ignore_patterns("__pycache__", "build", "*.egg-info"))
        shutil.copytree(ROOT / "templates/acquisition", self.folder / "case/.rgen")

    def run_in_folder(self, *command, **environment):
        inherited = {name: value for name, value in os.environ.items()
                     if not name.startswith(("PYTHON", "STRATA", "LD_"))}
        run = subprocess.run(command, cwd=self.folder, env={**inherited, **environment},
                             capture_output=True, text=True, check=False)
        return run.returncode, run.stdout + run.stderr

    def run_build(self, *options, libraries):
        return self.run_in_folder(PYTHON, "-m", "build", "--no-isolation", *options, "source",
                                  **{LIBRARY_DIR: str(libraries)})

    def build(self, *options, libraries=None):
        code, output = self.run_build(*options, libraries=libraries or self.library_folder)
        self.assertEqual(0, code, output)
        return next(self.folder.glob("source/dist/*.whl"))

    @staticmethod
    def licences_of(wheel):
        """The licences in the folder of the metadata, and the fields of these."""
        with zipfile.ZipFile(wheel) as archive:
            folder = next(name for name in archive.namelist() if name.endswith("/METADATA"))[:-8]
            texts = {name.removeprefix(folder + "licenses/"): archive.read(name)
                     for name in archive.namelist() if name.startswith(folder + "licenses/")}
            fields = Parser().parsestr(archive.read(folder + "METADATA").decode("utf-8"))
        return texts, fields

    def test_it_is_built_installed_and_used(self):
        wheel = self.build()
        self.assertRegex(wheel.name, r"^strata_repgenlib-[\d.]+-py3-none-linux_x86_64\.whl$")
        names = zipfile.ZipFile(wheel).namelist()
        for name in ("libstrata_repgenlib.so.0", "libstrata_repgenlib_host.so.0", "py.typed"):
            self.assertIn(f"strata_repgenlib/{name}", names)
        self.assertEqual(0, self.run_in_folder(PYTHON, "-m", "venv", "venv")[0])
        python = str(self.folder / "venv/bin/python")
        code, output = self.run_in_folder(python, "-m", "pip", "install", "--no-index", wheel)
        self.assertEqual(0, code, output)
        code, output = self.run_in_folder(python, "-c", HOST)
        self.assertEqual(0, code, output)
        site = next(self.folder.glob("venv/lib/python3*/site-packages")) / "strata_repgenlib"
        self.assertEqual(f"{site / 'libstrata_repgenlib.so.0'}\n"
                         f"{site / 'libstrata_repgenlib_host.so.0'}\n", output)

    def test_it_contains_the_licences_of_the_linked_parts(self):
        texts, fields = self.licences_of(self.build("--wheel"))
        names, words = linked_licences()
        self.assertEqual({"LICENSE", "licences/GPL-3.txt", "licences/LGPL-2.1.txt",
                          *(f"licences/{name}" for name in names)}, set(texts))
        for name, text in texts.items():
            self.assertEqual((self.prefix / DOCUMENTS / name).read_bytes(), text, name)
        self.assertEqual("2.4", fields["Metadata-Version"])
        self.assertEqual(set(texts), set(fields.get_all("License-File")))
        self.assertEqual(len(texts), len(fields.get_all("License-File")))
        self.assertEqual(words, set(fields["License-Expression"].split(" AND ")))
        self.assertIsNone(fields["License"])
        self.assertIn("# strata_repgenlib for Python", fields.get_payload())

    def test_the_licences_of_debians_package_are_found(self):
        root = self.folder / "usr"
        libraries = root / "lib/x86_64-linux-gnu"
        documents = root / "share/doc/strata-repgenlib"
        shutil.copytree(self.library_folder, libraries)
        shutil.copytree(self.prefix / DOCUMENTS, documents)
        (documents / "LICENSE").rename(documents / "copyright")
        for name in ("GPL-3.txt", "LGPL-2.1.txt"):
            (documents / "licences" / name).unlink()
        texts, _ = self.licences_of(self.build("--wheel", libraries=libraries))
        for name, text in texts.items():
            self.assertEqual((self.prefix / DOCUMENTS / name).read_bytes(), text, name)

    def expect_refusal(self, message, libraries):
        code, output = self.run_build("--wheel", libraries=libraries)
        self.assertNotEqual(0, code)
        self.assertIn(message, output)

    def test_without_the_libraries_it_is_refused(self):
        self.expect_refusal("set STRATA_REPGENLIB_DIR to their folder", "/nowhere")

    def test_without_the_licences_it_is_refused(self):
        self.expect_refusal("the licences of the libraries are not found", Path(LIBRARY).parent)
        prefix = self.folder / "prefix"
        shutil.copytree(self.prefix, prefix)
        (prefix / DOCUMENTS / "licences/libxml2.txt").unlink()
        self.expect_refusal("libxml2.txt is missing; the wheel needs the licences",
                            prefix / self.library_folder.relative_to(self.prefix))


if __name__ == "__main__":
    unittest.main()

"""Builds a wheel that holds both shared libraries, so that it needs no installation of them, and the
licences of the parts that are linked into them.

The libraries are found as the package finds them: in the folder that STRATA_REPGENLIB_DIR names, or
in the installation that contains this folder. The licences are in the same installation.

SPDX-License-Identifier: MIT
"""

import shutil
import sys
from pathlib import Path

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py
from wheel.bdist_wheel import bdist_wheel

ROOT = Path(__file__).resolve().parent
sys.path.insert(0, str(ROOT))

from strata_repgenlib import loading  # It is in the folder that was added.

IS_WINDOWS = sys.platform == "win32"
# Where an installation has them; Debian's package has its own name.
DOCUMENTS = ("share/doc/strata_repgenlib", "share/doc/strata-repgenlib")
# In Debian's package, copyright contains LICENSE, and the long licences are those of the system.
DEBIAN_NAMES = {"LICENSE": "copyright", "GPL-3.txt": "/usr/share/common-licenses/GPL-3",
                "LGPL-2.1.txt": "/usr/share/common-licenses/LGPL-2.1"}
LICENCES = ["LICENSE", "licences/boost-filesystem.txt", "licences/gcc-runtime.txt",
            "licences/libxml2.txt", "licences/libxslt.txt", "licences/GPL-3.txt",
            *(["licences/mingw-w64.txt"] if IS_WINDOWS else
              ["licences/c-library.txt", "licences/LGPL-2.1.txt"])]
EXPRESSION = ("MIT AND ISC AND BSL-1.0 AND GPL-3.0-or-later WITH GCC-exception-3.1 AND "
              + ("ZPL-2.1 AND BSD-3-Clause" if IS_WINDOWS else "LGPL-2.1-or-later"))


def libraries():
    for folder in filter(None, loading.places(ROOT / "strata_repgenlib")):
        found = [Path(folder) / name for name in loading.NAMES]
        if all(path.is_file() for path in found):
            return found
    sys.exit(f"{' and '.join(loading.NAMES)} are not found; set {loading.VARIABLE} to their folder")


def licences():
    """The files with the licences, by their names in the wheel."""
    prefixes = libraries()[0].resolve().parents[1:3]
    places = [prefix / documents for prefix in prefixes for documents in DOCUMENTS]
    documents = next((place for place in places if (place / "licences").is_dir()), None)
    if documents is None:
        sys.exit(f"the licences of the libraries are not found; set {loading.VARIABLE} to the folder "
                 "of the libraries in a whole installation")
    found = {}
    for name in LICENCES:
        choices = [documents / name, documents / DEBIAN_NAMES.get(Path(name).name, name)]
        found[name] = next((path for path in choices if path.is_file()), None)
        if found[name] is None:
            sys.exit(f"{choices[0]} is missing; the wheel needs the licences of all linked parts")
    return found


def declare_licences(metadata):
    """Adds the licences of the wheel to the fields of its metadata, as version 2.4 of these says."""
    fields, _, description = metadata.read_text(encoding="utf-8").partition("\n\n")
    replaced = ("Metadata-Version:", "License:", "License-Expression:", "License-File:")
    kept = [line for line in fields.splitlines() if not line.startswith(replaced)]
    lines = ["Metadata-Version: 2.4", *kept, f"License-Expression: {EXPRESSION}",
             *(f"License-File: {name}" for name in LICENCES)]
    metadata.write_text("\n".join(lines) + "\n\n" + description, encoding="utf-8")


class BuildWithLibraries(build_py):
    def run(self):
        super().run()
        for path in libraries():
            shutil.copy(path, Path(self.build_lib) / "strata_repgenlib" / path.name)


class WithLibraries(Distribution):
    """A distribution for one system only."""

    def has_ext_modules(self):
        return True


class PlatformWheel(bdist_wheel):
    """For every Python 3, with the licences."""

    def get_tag(self):
        return ("py3", "none", super().get_tag()[2])

    def egg2dist(self, egginfo_path, distinfo_path):
        """Completes the folder of the metadata; its files are listed and packed afterwards."""
        super().egg2dist(egginfo_path, distinfo_path)
        for name, path in licences().items():
            target = Path(distinfo_path) / "licenses" / name
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(path, target)
        declare_licences(Path(distinfo_path) / "METADATA")


setup(distclass=WithLibraries,
      cmdclass={"build_py": BuildWithLibraries, "bdist_wheel": PlatformWheel})

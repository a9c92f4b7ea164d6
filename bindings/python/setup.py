"""Builds a wheel that holds both shared libraries, so that it needs no installation of them.

They are found as the package finds them: in the folder that STRATA_REPGENLIB_DIR names, or in the
installation that contains this folder.

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


def libraries():
    for folder in filter(None, loading.places(ROOT / "strata_repgenlib")):
        found = [Path(folder) / name for name in loading.NAMES]
        if all(path.is_file() for path in found):
            return found
    sys.exit(f"{' and '.join(loading.NAMES)} are not found; set {loading.VARIABLE} to their folder")


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
    """For every Python 3."""

    def get_tag(self):
        return ("py3", "none", super().get_tag()[2])


setup(distclass=WithLibraries,
      cmdclass={"build_py": BuildWithLibraries, "bdist_wheel": PlatformWheel})

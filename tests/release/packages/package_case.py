"""Shared by the suites: the packages of the build, made once, and an unpacked archive.

The target comes from the environment: besides the variables that program_case.py lists,

RGEN_PACKAGE_BUILD         the build folder
RGEN_PACKAGE_CONFIGURATION the configuration of the build, "RelWithDebInfo"
RGEN_PACKAGE_VERSION       the version of the library
RGEN_PACKAGE_THIRD_PARTY   the folder of the third-party libraries

SPDX-License-Identifier: MIT
"""

import atexit
import functools
import os
import shutil
import subprocess
import tarfile
import tempfile
import zipfile
from pathlib import Path

from program_case import ON_WINDOWS, SOURCE_FOLDER, ProgramCase

BUILD_FOLDER = Path(os.environ["RGEN_PACKAGE_BUILD"])
CONFIGURATION = os.environ["RGEN_PACKAGE_CONFIGURATION"].lower()
VERSION = os.environ["RGEN_PACKAGE_VERSION"]
THIRD_PARTY = Path(os.environ["RGEN_PACKAGE_THIRD_PARTY"])
SYSTEM = "windows" if ON_WINDOWS else "linux"
NAME = f"strata_repgenlib-{VERSION}-{SYSTEM}-x64"
ARCHIVE = f"{NAME}.zip" if ON_WINDOWS else f"{NAME}.tar.gz"
DEBIAN_PACKAGE = f"strata-repgenlib_{VERSION}_amd64.deb"
SBOM_ENDINGS = ("cdx.json", "spdx.json")
# The time stored in the packages of these tests.
EPOCH = 1_700_000_000


@functools.cache
def scratch():
    """A folder that is removed after the tests."""
    folder = Path(tempfile.mkdtemp(prefix="rgen-packages-"))
    atexit.register(shutil.rmtree, folder)
    return folder


@functools.cache
def packages(place="first", zone="EST5EDT", mask=0o022):
    """The folder with the packages, which CPack makes in a separate folder."""
    folder = scratch() / place
    env = {**os.environ, "SOURCE_DATE_EPOCH": str(EPOCH), "TZ": zone}
    outcome = subprocess.run(
        ["cpack", "--config", BUILD_FOLDER / "CPackConfig.cmake", "-B", folder], env=env,
        umask=mask, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
        text=True, check=False)
    if outcome.returncode != 0:
        raise AssertionError(f"CPack fails: {outcome.stdout}")
    shutil.rmtree(folder / "_CPack_Packages")
    return folder


@functools.cache
def unpacked():
    """The folder of the archive, unpacked at another place than it was made."""
    place = scratch() / "unpacked elsewhere"
    if ON_WINDOWS:
        with zipfile.ZipFile(packages() / ARCHIVE) as archive:
            archive.extractall(place)
    else:
        with tarfile.open(packages() / ARCHIVE) as archive:
            archive.extractall(place)
    return place / NAME


def expected_files():
    """The paths in an archive: those of an installation, from its lists, and some more."""
    names = {f"share/doc/strata_repgenlib/sbom/strata_repgenlib.{ending}"
             for ending in SBOM_ENDINGS} | {"LICENSE", "README.md"}
    for kind in ("everywhere", f"on_{SYSTEM}"):
        text = (SOURCE_FOLDER / f"tests/release/consumer/installed_{kind}.txt").read_text(encoding="utf-8")
        for line in text.splitlines():
            if line and not line.startswith("#"):
                names.add(line.replace("{version}", VERSION).replace("{major}", VERSION[0])
                          .replace("{configuration}", CONFIGURATION))
    return names


def root_command(user=None):
    """The words before a command that needs root rights. Raises AssertionError if there are none:
    such cases must not be skipped silently."""
    if (os.geteuid() if user is None else user) == 0:
        return []
    try:
        subprocess.run(["sudo", "-n", "true"], check=True, capture_output=True)
    except (OSError, subprocess.CalledProcessError) as error:
        raise AssertionError("this case takes root rights, and \"sudo -n\" has none; run the "
                             "tests as root, or let sudo work without a password") from error
    kept = [f"{name}={os.environ[name]}" for name in ("RGEN_CACHE_DIR", "RGEN_DEBIAN_MIRROR")
            if name in os.environ]
    return ["sudo", "-n", "env", "PATH=/usr/sbin:/usr/bin:/sbin:/bin", *kept]


class PackageCase(ProgramCase):
    """A case with a separate folder."""

    folder_name = "rgen-package-"

    def tool(self, *command, **settings):
        """The output of a tool, which must succeed."""
        outcome = subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL,
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                 check=False, **settings)
        self.assertEqual(0, outcome.returncode, f"{command}: {outcome.stdout}")
        return outcome.stdout

    def expect_report(self, program):
        """Checks that a program rgen makes the sample report."""
        for words in (["init", "case", "--quiet"],
                      ["report", "-d", "case", "--data", "case/acquisition.json", "-o", "page.html",
                       "--quiet"]):
            result = self.start(*words, program=program).finish()
            self.assertEqual((0, ""), (result.code, result.err), result)
        self.assertIn(b"<html", self.read("page.html"))

"""Executes the fenced blocks of all pages against an installed tree.

Usage: check_examples.py CMAKE BUILD_FOLDER [PAGE...]

SPDX-License-Identifier: MIT
"""

import os
import shutil
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

import block_runner
import markdown_page

ROOT = Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tests/structure"))

from project_files import finish, problem  # In tests/structure.

KEPT_VARIABLES = ("PATH", "HOME", "LANG", "USER", "CARGO_HOME", "RUSTUP_HOME")


@dataclass
class Surroundings:
    environment: dict
    includes: list
    bindings: Path
    build_folder: Path


def windows_package(folder):
    """Makes the part of the Windows package that cross compilers need; returns its folder."""
    shutil.copytree(ROOT / "include", folder / "include")
    (folder / "lib").mkdir()
    for source, library in (("src", "strata_repgenlib"), ("host", "strata_repgenlib_host")):
        subprocess.run(["x86_64-w64-mingw32-dlltool", "-d", ROOT / source / "api/exports.def",
                        "-l", folder / f"lib/lib{library}.dll.a"], check=True)
    return folder


def installed(cmake, build_folder, prefix):
    """Installs the build; returns what blocks need to use it."""
    subprocess.run([cmake, "--install", str(build_folder), "--prefix", str(prefix)], check=True,
                   stdout=subprocess.DEVNULL)
    library = next(prefix.rglob("libstrata_repgenlib.so")).parent
    share = prefix / "share/strata_repgenlib"
    environment = {name: os.environ[name] for name in KEPT_VARIABLES if name in os.environ}
    environment.update(
        PATH=f"{prefix}/bin:{environment['PATH']}", LC_ALL="C.UTF-8", TZ="EST5EDT",
        STRATA=str(prefix), STRATA_WINDOWS=str(windows_package(prefix.with_name("windows"))),
        PKG_CONFIG_PATH=str(library / "pkgconfig"), CMAKE_PREFIX_PATH=str(prefix),
        LD_LIBRARY_PATH=str(library), PYTHONPATH=str(share / "bindings/python"),
        PYTHONDONTWRITEBYTECODE="1")
    return Surroundings(environment, [prefix / "include"], share / "bindings",
                        Path(build_folder).resolve())


def run_page(path, base, surroundings):
    folder = base / path.relative_to(ROOT).as_posix().replace("/", "-") / "work"
    folder.mkdir(parents=True)
    return block_runner.PageRunner(markdown_page.read_page(path), folder, surroundings).problems()


def main():
    cmake, build_folder, *names = sys.argv[1:]
    pages = [ROOT / name for name in names] or markdown_page.project_pages(ROOT)
    with tempfile.TemporaryDirectory(prefix="rgen-documents-") as temporary:
        base = Path(temporary)
        surroundings = installed(cmake, build_folder, base / "installed")
        with ThreadPoolExecutor(2) as workers:
            for found in workers.map(lambda path: run_page(path, base, surroundings), pages):
                for text in found:
                    problem(text.replace(f"{ROOT}/", ""))
    finish("examples")


if __name__ == "__main__":
    main()

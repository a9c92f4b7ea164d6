"""Makes the packages of one system from an installed tree: for Windows a zip archive, for Linux
a compressed tar archive and a Debian package. Each contains its software bill of materials; a copy
is written next to it. CPack runs this; from the same tree it makes the same bytes.

SPDX-License-Identifier: MIT
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import debian_package
from components import MissingFact, Subject, archive_subject, binaries_of
from deterministic_archive import set_modes_and_times, write_tar_gz, write_zip
from linked_parts import UnknownPart
from make_sbom import SOURCE, write_sbom
from packaging_tools import ToolFailure, run_tool

DOCUMENTS = "share/doc/strata_repgenlib"
# Where the targets of the README's links are in an archive. Other links become plain text.
LINK_TARGETS = {"docs/": f"{DOCUMENTS}/docs/", "bindings/": "share/strata_repgenlib/bindings/",
                "CHANGELOG.md": f"{DOCUMENTS}/CHANGELOG.md", "include/": "include/"}


class NoTime(Exception):
    """The time of the release is unknown."""


def release_time() -> int:
    """SOURCE_DATE_EPOCH if it is set, else the time of the last commit."""
    given = os.environ.get("SOURCE_DATE_EPOCH")
    if given is None:
        log = subprocess.run(["git", "-C", str(SOURCE), "log", "-1", "--format=%ct"], text=True,
                             capture_output=True)
        given = log.stdout.strip()
    if not given.isdigit():
        raise NoTime("the time of the release is unknown, since SOURCE_DATE_EPOCH is not a number "
                     "of seconds and the sources are no git clone; set SOURCE_DATE_EPOCH")
    return int(given)


def top_readme(text: str) -> str:
    """The README for the top of an archive, with links to the files in the archive."""
    def moved(match: re.Match[str]) -> str:
        label, target = match.groups()
        for old, new in LINK_TARGETS.items():
            if target.startswith(old):
                return f"[{label}]({new}{target.removeprefix(old)})"
        return match.group() if "://" in target or target.startswith("#") else label

    return re.sub(r"\[([^\[\]]*)\]\(([^()\s]+)\)", moved, text)


class Packager:
    """The options, and the steps for both systems."""

    def __init__(self, options: argparse.Namespace) -> None:
        self.system: str = options.system
        self.version: str = options.version
        self.build: Path = options.build.resolve()
        self.third_party: Path = options.third_party.resolve()
        self.tree: Path = options.tree
        self.output: Path = options.output
        self.strip: str = options.strip
        self.epoch = release_time()
        self.name = f"strata_repgenlib-{self.version}-{self.system}-x64"

    def strip_binaries(self) -> None:
        """Removes symbols and line numbers. In Windows binaries the tool also stores a time."""
        for path in binaries_of(self.system, self.version).values():
            run_tool(self.strip, str(self.tree / path), epoch=self.epoch)

    def add_sbom(self, tree: Path, documents: str, subject: Subject, name: str) -> None:
        """Writes the bill of materials into a complete tree, and copies next to the package."""
        folder = tree / documents / "sbom"
        write_sbom(subject, self.epoch, self.build, self.third_party, tree, folder)
        for path in sorted(folder.iterdir()):
            kind = path.name.split(".", 1)[1]
            shutil.copyfile(path, self.output / f"{name}.{kind}")

    def make_archive(self) -> None:
        """Adds README and licence at the top of the tree, and packs it."""
        readme = (SOURCE / "README.md").read_text(encoding="utf-8")
        (self.tree / "README.md").write_text(top_readme(readme), encoding="utf-8")
        shutil.copyfile(SOURCE / "LICENSE", self.tree / "LICENSE")
        self.add_sbom(self.tree, DOCUMENTS, archive_subject(self.version, self.system), self.name)
        set_modes_and_times(self.tree, self.epoch)
        if self.system == "windows":
            write_zip(self.tree, self.output / f"{self.name}.zip")
        else:
            write_tar_gz(self.tree, self.output / f"{self.name}.tar.gz")

    def make_debian_package(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder) / "root"
            usr = debian_package.copy_tree(self.tree, root)
            name = debian_package.package_name(self.version)
            debian_package.remove_run_paths(usr, SOURCE, self.version)
            debian_package.write_documents(usr, SOURCE, self.version, self.epoch)
            subject = Subject(debian_package.PACKAGE, debian_package.package_title(self.version),
                              self.version, self.system, "usr/")
            self.add_sbom(root, f"usr/share/doc/{debian_package.PACKAGE}", subject, name)
            debian_package.build_package(root, self.version, self.output, self.epoch)


def main() -> None:
    parser = argparse.ArgumentParser(description="Makes the packages of one system.")
    parser.add_argument("--system", choices=["linux", "windows"], required=True)
    parser.add_argument("--version", required=True)
    for folder in ("--build", "--third-party", "--tree", "--output"):
        parser.add_argument(folder, type=Path, required=True)
    parser.add_argument("--strip", required=True, help="the program that strips binaries")
    try:
        packager = Packager(parser.parse_args())
        packager.output.mkdir(parents=True, exist_ok=True)
        packager.strip_binaries()
        if packager.system == "linux":
            packager.make_debian_package()
        packager.make_archive()
    except (UnknownPart, MissingFact, NoTime, ToolFailure, OSError) as error:
        sys.exit(f"make_packages: {error}")


if __name__ == "__main__":
    main()

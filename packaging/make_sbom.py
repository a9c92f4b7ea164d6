"""Writes the software bill of materials of an installed tree, as SPDX and as CycloneDX, from what
was really linked: the linker's maps, the compiler's dependency records and the binaries.

Usage: make_sbom.py --system linux|windows --version V --epoch SECONDS --build DIR --third-party DIR
                    --tree DIR --output DIR   (a folder of the tree)

SPDX-License-Identifier: MIT
"""

import argparse
import sys
from pathlib import Path

from components import MissingFact, Subject, archive_subject, collect
from linked_parts import Build, UnknownPart, read_table
from packaging_tools import RELEASE_NAME
from sbom_documents import cyclone_document, spdx_document

SOURCE = Path(__file__).resolve().parent.parent
TABLE = SOURCE / "packaging" / "parts.json"


def write_sbom(subject: Subject, epoch: int, build: Path, third_party: Path, tree: Path,
               output: Path) -> None:
    """Writes the documents about TREE to OUTPUT, a folder in it with no other files."""
    folders = {"third_party": str(third_party), "headers": str(build / "third_party_headers")}
    table = read_table(TABLE, subject.system, folders)
    documents = {kind: output / f"{RELEASE_NAME}.{kind}.json" for kind in ("spdx", "cdx")}
    materials = collect(Build(build, SOURCE, table), tree, third_party, subject, epoch, documents)
    output.mkdir(parents=True, exist_ok=True)
    documents["spdx"].write_text(spdx_document(materials), encoding="utf-8")
    documents["cdx"].write_text(cyclone_document(materials), encoding="utf-8")


def main() -> None:
    parser = argparse.ArgumentParser(description="Writes the software bill of materials of a tree.")
    parser.add_argument("--system", choices=["linux", "windows"], required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--epoch", type=int, required=True)
    for folder in ("--build", "--third-party", "--tree", "--output"):
        parser.add_argument(folder, type=Path, required=True)
    options = parser.parse_args()
    try:
        write_sbom(archive_subject(options.version, options.system), options.epoch,
                   options.build.resolve(), options.third_party.resolve(), options.tree.resolve(),
                   options.output.resolve())
    except (UnknownPart, MissingFact, OSError) as error:
        sys.exit(f"make_sbom: {error}")


if __name__ == "__main__":
    main()

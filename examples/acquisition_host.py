"""The acquisition report as html and txt in three languages: what acquisition_report.c does in C,
with the Python package. Values and translations come from the files of the sample.

Usage: acquisition_host.py DATA_DIR OUTPUT_DIR
  DATA_DIR    folder that holds a copy of templates/acquisition named .rgen
  OUTPUT_DIR  existing folder for acquisition-{en,de,ru}.{html,txt}

Python finds the package by PYTHONPATH=bindings/python, or when it is installed.

SPDX-License-Identifier: MIT
"""

import json
import re
import sys
from datetime import datetime, timezone
from pathlib import Path

from strata_repgenlib import Generator, Hint, Hinted, Request

ACQUISITION = "5a0c6f1e-3b74-4e59-9d21-7c8e0f6a41b2"


def value_of(content, kind):
    """A value of the sample. Its name contains its kind: "Device.Capacity:size"."""
    if kind == "datetime":
        return datetime.strptime(content, "%Y-%m-%dT%H:%M:%SZ").replace(tzinfo=timezone.utc)
    if kind == "bytes":
        return bytes.fromhex(content)
    if kind == "address":
        return Hinted(int(content, 16) if isinstance(content, str) else content, Hint.ADDRESS)
    return Hinted(content, Hint[kind.upper()]) if kind else content


def read_values(path):
    values = {}
    for key, content in json.loads(path.read_text(encoding="utf-8")).items():
        name, _, kind = key.partition(":")
        values[name] = value_of(content, kind)
    return values


def read_translations(path):
    """The entries of a PO file with one line for each text, as in the sample."""
    entries = re.findall(r'^msgid "(.+)"\nmsgstr "(.+)"$', path.read_text(encoding="utf-8"), re.M)
    return dict(entries)


def make_reports(folder, output):
    sample, translations = folder / ".rgen/sample", folder / ".rgen/translations"
    with Generator(folder) as generator:
        generator.set_persistent_data(ACQUISITION, read_values(sample / "acquisition-lab.json"))
        request = Request(ACQUISITION, values=read_values(sample / "acquisition.json"))
        for language in ("en", "de", "ru"):
            if language != "en":
                texts = read_translations(translations / f"acquisition-{language}.po")
                generator.set_translator(texts.__getitem__)
            for request.format in ("html", "txt"):
                path = output / f"acquisition-{language}.{request.format}"
                print(generator.generate_file(request, path))
                if path.read_bytes() != generator.generate_bytes(request):
                    sys.exit(f"{path}: the bytes differ")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    make_reports(Path(sys.argv[1]), Path(sys.argv[2]))

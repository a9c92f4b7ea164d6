"""The version resources of the Windows binaries, and the manifests of the programs among them.

Usage: check_windows_resources.py VERSION WINDRES BINARY...

SPDX-License-Identifier: MIT
"""

import re
import subprocess
import sys
from pathlib import Path

from project_files import ROOT, finish, problem


def check_version_resource(binary, version, windres):
    """The numbers and the texts say the version, and whose they are."""
    name = Path(binary).name
    command = [windres, "--input", binary, "--output-format", "rc"]
    text = subprocess.run(command, capture_output=True, text=True, check=False).stdout
    for field in ("FILEVERSION", "PRODUCTVERSION"):
        numbers = re.search(field + r"\s+(\d+),\s*(\d+),\s*(\d+)", text)
        found = ".".join(numbers.groups()) if numbers else "nothing"
        if found != version:
            problem(f"{name}: the {field} of the version resource says {found} instead of {version}")
    values = dict(re.findall(r'VALUE "(\w+)", "([^"]*?)(?:\\0)*"', text))
    expected = {"FileVersion": version, "ProductVersion": version, "OriginalFilename": name,
                "InternalName": Path(binary).stem, "ProductName": "strata_repgenlib"}
    for field, wanted in expected.items():
        if values.get(field) != wanted:
            problem(f"{name}: the {field} is {values.get(field)!r} instead of {wanted!r}")
    if not values.get("FileDescription"):
        problem(f"{name}: the version resource has no description")


def check_manifest(binary):
    """The manifest is the project's, which allows long paths."""
    manifest = (ROOT / "cmake/program.manifest").read_bytes()
    if manifest not in Path(binary).read_bytes():
        problem(f"{Path(binary).name}: does not hold cmake/program.manifest")
    if b">true</longPathAware>" not in manifest:
        problem("cmake/program.manifest does not allow long paths")


for resource_owner in sys.argv[3:]:
    check_version_resource(resource_owner, *sys.argv[1:3])
    if resource_owner.endswith(".exe"):
        check_manifest(resource_owner)
finish("Windows resources")

# SPDX-License-Identifier: MIT
"""The versions of the peers and their runtimes."""

import json
import re
import subprocess

from peer_list import FOLDER, PYTHON, ROOT


def first_line(*command):
    ended = subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL,
                           capture_output=True, text=True, check=False)
    return (ended.stdout or ended.stderr).strip().split("\n")[0]


def package_version(package):
    return first_line("dpkg-query", "-W", "-f", "${Version}", package)


def library_version():
    header = (ROOT / "include/strata_repgenlib/rgen.h").read_text(encoding="utf-8")
    return ".".join(re.findall(r"^#define RGEN_VERSION_\w+ (\d+)", header, flags=re.M))


def third_party_versions():
    """The versions of the XML libraries in the library and the baseline."""
    folder = first_line(ROOT / "scripts/dependencies", "--print-prefix", "linux")
    with open(f"{folder}/versions.env", encoding="utf-8") as file:
        found = dict(re.findall(r"^(\w+)_VERSION=(.*)$", file.read(), flags=re.M))
    return f"libxml2 {found['LIBXML2']}, libxslt {found['LIBXSLT']}"


def module_version(name):
    package = FOLDER / "node/node_modules" / name.lower() / "package.json"
    return json.loads(package.read_text(encoding="utf-8"))["version"]


def runtime_of(peer):
    """The interpreter or virtual machine of a peer."""
    if peer.start[0] == PYTHON:
        return first_line(PYTHON, "--version")
    if peer.start[0] == "node":
        return f"Node {first_line('node', '--version')}"
    if peer.start[0] == "java":
        return first_line("java", "--version")
    return ""


def version_of(peer):
    if peer.start[0] == "node":
        return module_version(peer.name)
    version = package_version(peer.packages[0])
    if peer.name in {"lxml", "xsltproc"}:
        version += (f" (libxml2 {package_version('libxml2')}, "
                    f"libxslt {package_version('libxslt1.1')})")
    return version


def versions(peers):
    """The versions by the names of the peers."""
    found = {}
    for peer in peers:
        if peer.packages:
            found[peer.name] = ", ".join(filter(None, [version_of(peer), runtime_of(peer)]))
    found["strata_repgenlib"] = f"{library_version()} ({third_party_versions()})"
    if any(peer.name == "baseline" for peer in peers):
        found["baseline"] = third_party_versions()
    return found

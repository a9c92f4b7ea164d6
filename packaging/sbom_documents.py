"""The software bill of materials of a package, as SPDX 2.3 and as CycloneDX 1.5, both in JSON. The
same materials make the same bytes: times come from the release, identifiers from the content.

SPDX-License-Identifier: MIT
"""

import hashlib
import json
import uuid
from datetime import datetime, timezone
from typing import Any

from components import Binary, Component, Materials, PackagedFile

LICENCE = "MIT"
MAKER = "strata_repgenlib maintainers"
TOOL = "make_sbom"
# The namespace of the documents' identifiers, which are made from their content.
NAMESPACE = uuid.uuid5(uuid.NAMESPACE_OID, "strata_repgenlib")


def time_of(materials: Materials) -> str:
    moment = datetime.fromtimestamp(materials.epoch, timezone.utc)
    return moment.strftime("%Y-%m-%dT%H:%M:%SZ")


def content_id(document: dict[str, Any]) -> str:
    return f"urn:uuid:{uuid.uuid5(NAMESPACE, json.dumps(document, sort_keys=True))}"


def as_text(document: dict[str, Any]) -> str:
    return json.dumps(document, indent=2, ensure_ascii=False) + "\n"


def loaded_files(materials: Materials, binary: Binary) -> list[str]:
    """The libraries of the package that a binary loads."""
    return [other.path for other in materials.binaries if other.target in binary.links.own]


# ---- SPDX ---------------------------------------------------------------------------------------

def spdx_part_id(part_id: str) -> str:
    return f"SPDXRef-Part-{part_id}"


def spdx_file_id(path: str) -> str:
    """A readable identifier, different for each path."""
    words = "".join(c if c.isascii() and c.isalnum() or c in ".-" else "-" for c in path)
    return f"SPDXRef-File-{words}-{hashlib.sha256(path.encode()).hexdigest()[:8]}"


def spdx_part(component: Component) -> dict[str, Any]:
    part = component.part
    entry: dict[str, Any] = {
        "SPDXID": spdx_part_id(part.id), "name": part.name, "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False, "licenseConcluded": part.licence, "licenseDeclared": part.licence,
        "copyrightText": "NOASSERTION", "supplier": "NOASSERTION"}
    notes = []
    if component.version:
        entry["versionInfo"] = component.version
    if component.archives:
        entry["packageFileName"] = component.archives[0][1]
        entry["checksums"] = [{"algorithm": "SHA256", "checksumValue": component.archives[0][0]}]
        notes += [f"{name}: SHA-256 {checksum}" for checksum, name in component.archives[1:]]
    if part.changed:
        notes.append(f"Changed: {part.changed}")
    if notes:
        entry["sourceInfo"] = " ".join(notes)
    if component.purl:
        entry["externalRefs"] = [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                                  "referenceLocator": component.purl}]
    return entry


def spdx_file(file: PackagedFile, binaries: set[str]) -> dict[str, Any]:
    return {"SPDXID": spdx_file_id(file.path), "fileName": f"./{file.path}",
            "fileTypes": ["BINARY" if file.path in binaries else "OTHER"],
            "copyrightText": "NOASSERTION", "licenseConcluded": "NOASSERTION",
            "licenseInfoInFiles": ["NOASSERTION"],
            "checksums": [{"algorithm": "SHA1", "checksumValue": file.sha1},
                          {"algorithm": "SHA256", "checksumValue": file.sha256}]}


def verification_code(files: list[PackagedFile]) -> str:
    """SPDX's checksum of a package: that of the sorted checksums of its files."""
    return hashlib.sha1("".join(sorted(file.sha1 for file in files)).encode()).hexdigest()


def spdx_relationships(materials: Materials, product: str) -> list[dict[str, str]]:
    rows = [("SPDXRef-DOCUMENT", "DESCRIBES", product)]
    rows += [(product, "CONTAINS", spdx_file_id(file.path)) for file in materials.files]
    for binary in materials.binaries:
        this = spdx_file_id(binary.path)
        rows += [(this, "STATIC_LINK", spdx_part_id(part)) for part in sorted(binary.links.inside)]
        rows += [(this, "DYNAMIC_LINK", spdx_part_id(part)) for part in sorted(binary.links.loaded)]
        rows += [(this, "DYNAMIC_LINK", spdx_file_id(path))
                 for path in loaded_files(materials, binary)]
    return [{"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
            for one, kind, other in rows]


def spdx_document(materials: Materials) -> str:
    product = "SPDXRef-Package-strata-repgenlib"
    subject = materials.subject
    code = {"packageVerificationCodeValue": verification_code(materials.files),
            "packageVerificationCodeExcludedFiles": [f"./{path}" for path in materials.excluded]}
    own = {"SPDXID": product, "name": subject.name, "versionInfo": subject.version,
           "downloadLocation": "NOASSERTION", "filesAnalyzed": True,
           "packageVerificationCode": code, "licenseConcluded": LICENCE,
           "licenseDeclared": LICENCE, "licenseInfoFromFiles": ["NOASSERTION"],
           "copyrightText": "NOASSERTION", "supplier": f"Organization: {MAKER}",
           "primaryPackagePurpose": "LIBRARY"}
    binaries = {binary.path for binary in materials.binaries}
    document: dict[str, Any] = {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": subject.title,
        "creationInfo": {"created": time_of(materials),
                         "creators": [f"Organization: {MAKER}",
                                      f"Tool: {TOOL}-{subject.version}"]},
        "packages": [own] + [spdx_part(component) for component in materials.components],
        "files": [spdx_file(file, binaries) for file in materials.files],
        "relationships": spdx_relationships(materials, product)}
    return as_text({**document, "documentNamespace": content_id(document)})


# ---- CycloneDX ----------------------------------------------------------------------------------

def cyclone_part(component: Component) -> dict[str, Any]:
    part = component.part
    entry: dict[str, Any] = {"type": "library", "bom-ref": f"part:{part.id}", "name": part.name}
    if component.version:
        entry["version"] = component.version
    if part.licence != "NOASSERTION":
        entry["licenses"] = [{"expression": part.licence}]
    if component.purl:
        entry["purl"] = component.purl
    if part.changed:
        entry["pedigree"] = {"notes": f"Changed: {part.changed}"}
    if component.archives:
        entry["components"] = [
            {"type": "file", "bom-ref": f"archive:{name}", "name": name,
             "hashes": [{"alg": "SHA-256", "content": checksum}]}
            for checksum, name in component.archives]
    return entry


def cyclone_binary(binary: Binary) -> dict[str, Any]:
    def linked(kind: str, parts: set[str]) -> list[dict[str, str]]:
        return [{"name": f"strata_repgenlib:{kind}", "value": part} for part in sorted(parts)]

    return {"type": "file", "bom-ref": f"file:{binary.path}", "name": binary.path,
            "hashes": [{"alg": "SHA-1", "content": binary.sha1},
                       {"alg": "SHA-256", "content": binary.sha256}],
            "properties": linked("static-link", binary.links.inside) +
            linked("dynamic-link", binary.links.loaded)}


def cyclone_document(materials: Materials) -> str:
    subject = materials.subject
    product = f"product:{subject.name}"
    binaries = materials.binaries
    depends = [{"ref": product, "dependsOn": [f"file:{binary.path}" for binary in binaries]}]
    for binary in binaries:
        parts = sorted(binary.links.inside | binary.links.loaded)
        depends.append({"ref": f"file:{binary.path}",
                        "dependsOn": [f"file:{path}" for path in loaded_files(materials, binary)] +
                        [f"part:{name}" for name in parts]})
    document: dict[str, Any] = {
        "bomFormat": "CycloneDX", "specVersion": "1.5", "version": 1,
        "metadata": {"timestamp": time_of(materials),
                     "tools": {"components": [{"type": "application", "name": TOOL,
                                               "version": subject.version}]},
                     "component": {"type": "library", "bom-ref": product, "name": subject.name,
                                   "version": subject.version, "supplier": {"name": MAKER},
                                   "licenses": [{"expression": LICENCE}]}},
        "components": [cyclone_binary(binary) for binary in binaries] +
        [cyclone_part(component) for component in materials.components],
        "dependencies": depends}
    return as_text({**document, "serialNumber": content_id(document)})

"""The bills of materials: they have the fields that their formats require and list exactly the
parts that were linked; a linked file of an unknown part is an error.

SPDX-License-Identifier: MIT
"""

import hashlib
import json
import re
import shutil
import subprocess
import tempfile
from pathlib import Path

import components
from components import MissingFact, binaries_of, check_owners, own_libraries
from linked_parts import Build, UnknownPart, map_inputs, read_table
from make_sbom import write_sbom
from package_case import (BUILD_FOLDER, DEBIAN_PACKAGE, EPOCH, NAME, SBOM_ENDINGS, SYSTEM,
                          THIRD_PARTY, VERSION, PackageCase, packages, unpacked)
from program_case import ON_WINDOWS, SOURCE_FOLDER, linux_only

TABLE = SOURCE_FOLDER / "packaging/parts.json"
FOLDERS = {"third_party": str(THIRD_PARTY), "headers": str(BUILD_FOLDER / "third_party_headers")}
# The parts inside each binary, and those that all of them load.
RUNTIME = {"gcc-runtime", "libstdcxx-inside", "mingw-w64" if ON_WINDOWS else "c-library"}
INSIDE = {"strata_repgenlib": {"libxml2", "libxslt", "boost-filesystem"} | RUNTIME,
          "strata_repgenlib_host": {"boost-filesystem"} | RUNTIME,
          "rgen": {"libxml2", "libxslt", "cli11", "nlohmann-json", "cpp-httplib"} | RUNTIME,
          "vellum": RUNTIME}
LOADED = {"windows"} if ON_WINDOWS else {"c-library-shared", "libgcc", "libstdcxx"}
TIME = "2023-11-14T22:13:20Z"
# A licence expression of SPDX.
LICENCES = re.compile(r"NOASSERTION|[A-Za-z0-9.-]+( (AND|WITH) [A-Za-z0-9.-]+)*")


COMMON_LICENCES = Path("/usr/share/common-licenses")


def document(ending, name=NAME):
    text = (packages() / f"{name}.{ending}").read_text(encoding="utf-8")
    return json.loads(text)


def common_licences(part):
    """The names that Debian gives the long licences of a part."""
    return {f"{kind}-{number}" for kind, number in
            re.findall(r"\b(L?GPL)-(\d(?:\.[1-9])?)(?:\.0)?-or-later", part.licence)}


def file_id(path):
    words = re.sub(r"[^A-Za-z0-9.-]", "-", path)
    return f"SPDXRef-File-{words}-{hashlib.sha256(path.encode()).hexdigest()[:8]}"


def loaded_libraries(target):
    """The paths of the package's own libraries that a binary names, as the system's tool reads it."""
    paths = binaries_of(SYSTEM, VERSION)
    text = subprocess.run(["objdump", "-p", unpacked() / paths[target]], capture_output=True,
                          text=True, check=True).stdout
    names = re.findall(r"(?:NEEDED|DLL Name:)\s+(\S*strata\S*)", text)
    return {path for path in paths.values() for name in names
            if Path(path).name in (name, f"{name.rpartition('.')[0]}.{VERSION}")}


def packaged_files(tree):
    """The files of an unpacked package that its documents must list."""
    return {f"./{path.relative_to(tree).as_posix()}" for path in tree.rglob("*")
            if path.is_file() and not path.is_symlink() and path.parent.name != "sbom"}


class Spdx(PackageCase):

    def setUp(self):
        super().setUp()
        self.document = document("spdx.json")
        self.parts = {entry["SPDXID"].removeprefix("SPDXRef-Part-"): entry
                      for entry in self.document["packages"] if "-Part-" in entry["SPDXID"]}

    def related(self, kind):
        """The related elements of each element, for one kind of relationship."""
        pairs = {}
        for row in self.document["relationships"]:
            if row["relationshipType"] == kind:
                pairs.setdefault(row["spdxElementId"], set()).add(row["relatedSpdxElement"])
        return pairs

    def test_it_has_what_the_format_demands(self):
        for name, value in {"spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0",
                            "SPDXID": "SPDXRef-DOCUMENT", "name": NAME}.items():
            self.assertEqual(value, self.document[name])
        self.assertRegex(self.document["documentNamespace"], r"^urn:uuid:[0-9a-f-]{36}$")
        self.assertEqual(TIME, self.document["creationInfo"]["created"])
        for creator in self.document["creationInfo"]["creators"]:
            self.assertRegex(creator, r"^(Tool|Organization): \S")
        for entry in self.document["packages"]:
            for name in ("name", "SPDXID", "downloadLocation", "licenseConcluded",
                         "licenseDeclared", "copyrightText"):
                self.assertTrue(entry[name], (entry, name))
            self.assertTrue(LICENCES.fullmatch(entry["licenseConcluded"]), entry)

    def test_identifiers_are_unique_and_relationships_lead_to_them(self):
        entries = self.document["packages"] + self.document["files"]
        ids = [entry["SPDXID"] for entry in entries]
        self.assertEqual(len(ids), len(set(ids)))
        for name in ids:
            self.assertRegex(name, r"^SPDXRef-[A-Za-z0-9.-]+$")
        for row in self.document["relationships"]:
            for end in ("spdxElementId", "relatedSpdxElement"):
                self.assertIn(row[end], [*ids, "SPDXRef-DOCUMENT"])

    def expect_files(self, whole, tree):
        """Checks the files of a tree, their checksums and the verification code."""
        self.assertEqual(packaged_files(tree), {entry["fileName"] for entry in whole["files"]})
        for entry in whole["files"]:
            content = (tree / entry["fileName"]).read_bytes()
            sums = {row["algorithm"]: row["checksumValue"] for row in entry["checksums"]}
            self.assertEqual({"SHA1": hashlib.sha1(content).hexdigest(),
                              "SHA256": hashlib.sha256(content).hexdigest()}, sums)
        product = whole["packages"][0]
        self.assertIs(True, product["filesAnalyzed"])
        code = product["packageVerificationCode"]
        sums = sorted(hashlib.sha1((tree / name).read_bytes()).hexdigest()
                      for name in packaged_files(tree))
        self.assertEqual(hashlib.sha1("".join(sums).encode()).hexdigest(),
                         code["packageVerificationCodeValue"])
        left_out = {f"./{path.relative_to(tree).as_posix()}" for path in tree.rglob("sbom/*")}
        self.assertEqual(2, len(left_out))
        self.assertEqual(left_out, set(code["packageVerificationCodeExcludedFiles"]))

    def test_all_files_are_listed_with_their_checksums(self):
        self.expect_files(self.document, unpacked())
        kinds = {entry["fileName"]: entry["fileTypes"] for entry in self.document["files"]}
        self.assertEqual({f"./{path}" for path in binaries_of(SYSTEM, VERSION).values()},
                         {name for name, kind in kinds.items() if kind == ["BINARY"]})

    def test_documents_that_are_there_already_do_not_count(self):
        tree = self.folder / "tree"
        shutil.copytree(unpacked(), tree, symlinks=True)
        folder = tree / "share/doc/strata_repgenlib/sbom"
        before = {path.name: path.read_bytes() for path in folder.iterdir()}
        write_sbom(components.archive_subject(VERSION, SYSTEM), EPOCH, BUILD_FOLDER, THIRD_PARTY,
                   tree, folder)
        self.assertEqual(before, {path.name: path.read_bytes() for path in folder.iterdir()})

    @linux_only
    def test_the_debian_package_has_documents_about_itself(self):
        whole = document("spdx.json", DEBIAN_PACKAGE)
        self.assertEqual("strata-repgenlib", whole["packages"][0]["name"])
        self.assertEqual(DEBIAN_PACKAGE.removesuffix(".deb"), whole["name"])
        with tempfile.TemporaryDirectory() as folder:
            self.tool("dpkg-deb", "--extract", packages() / DEBIAN_PACKAGE, folder)
            self.expect_files(whole, Path(folder))
        other = document("cdx.json", DEBIAN_PACKAGE)
        self.assertEqual("strata-repgenlib", other["metadata"]["component"]["name"])
        names = {entry["name"] for entry in other["components"]}
        self.assertLessEqual({"usr/bin/rgen", "usr/bin/vellum"}, names)
        self.assertIn("./usr/bin/rgen", {entry["fileName"] for entry in whole["files"]})

    def test_each_binary_has_exactly_its_parts(self):
        contained, = self.related("CONTAINS").values()
        self.assertEqual({entry["SPDXID"] for entry in self.document["files"]}, contained)
        for target, path in binaries_of(SYSTEM, VERSION).items():
            name = file_id(path)
            inside = {f"SPDXRef-Part-{part}" for part in INSIDE[target]}
            self.assertEqual(inside, self.related("STATIC_LINK")[name], target)
            loaded = {f"SPDXRef-Part-{part}" for part in LOADED}
            loaded.update(map(file_id, loaded_libraries(target)))
            self.assertEqual(loaded, self.related("DYNAMIC_LINK")[name], target)
        self.assertEqual(set().union(LOADED, *INSIDE.values()), set(self.parts))

    def test_the_libraries_that_binaries_load_are_found(self):
        paths = binaries_of(SYSTEM, VERSION)
        self.assertEqual({paths["strata_repgenlib"]}, loaded_libraries("strata_repgenlib_host"))
        self.assertTrue(loaded_libraries("rgen"))
        for target in ("strata_repgenlib", "vellum"):
            self.assertEqual(set(), loaded_libraries(target))

    def test_versions_and_sources_are_those_that_were_built(self):
        versions = (THIRD_PARTY / "versions.env").read_text(encoding="ascii")
        sums = (THIRD_PARTY / "sources.txt").read_text(encoding="ascii")
        for part, source in (("libxml2", "libxml2"), ("libxslt", "libxslt"),
                             ("boost-filesystem", "boost")):
            entry = self.parts[part]
            self.assertIn(f"{source.upper()}_VERSION={entry['versionInfo']}\n", versions)
            checksum = entry["checksums"][0]["checksumValue"]
            self.assertIn(f"{source} {checksum} {entry['packageFileName']}\n", sums)
        for name, entry in self.parts.items():
            if name != "windows":
                locator = entry["externalRefs"][0]["referenceLocator"]
                self.assertRegex(locator, r"^pkg:deb/debian/[A-Za-z0-9.%+-]+@[\w.%~+-]+\?arch=")

    def test_every_part_inside_has_its_licence_in_the_package_and_no_other(self):
        table = read_table(TABLE, SYSTEM, FOLDERS)
        inside = set().union(*INSIDE.values())
        parts = [part for part in table.parts if part.id in inside]
        expected = {part.licence_file for part in parts} | {
            f"{name}.txt" for part in parts for name in common_licences(part)}
        folder = unpacked() / "share/doc/strata_repgenlib/licences"
        self.assertEqual(expected, {path.name for path in folder.iterdir()})
        for path in folder.iterdir():
            self.assertGreater(len(path.read_text(encoding="utf-8")), 1000, path)

    def test_licences_that_texts_refer_to_are_beside_them_and_exceptions_in_them(self):
        folder = unpacked() / "share/doc/strata_repgenlib/licences"
        references = 0
        for part in read_table(TABLE, SYSTEM, FOLDERS).parts:
            if not part.licence_file:
                continue
            text = (folder / part.licence_file).read_text(encoding="utf-8")
            self.assertEqual("GCC-exception" in part.licence,
                             "GCC RUNTIME LIBRARY EXCEPTION" in text, part.id)
            for name in common_licences(part):
                references += 1
                self.assertIn(f"{COMMON_LICENCES}/{name}'", text)
                self.assertEqual((COMMON_LICENCES / name).read_bytes(),
                                 (folder / f"{name}.txt").read_bytes())
        self.assertGreater(references, 1)

    def test_parts_from_the_compiler_name_the_packages_that_own_them(self):
        owners = {"gcc-runtime": "gcc-mingw-w64-x86-64-posix",
                  "libstdcxx-inside": "g%2B%2B-mingw-w64-x86-64-posix"} if ON_WINDOWS else {
                      "gcc-runtime": "libgcc-12-dev", "libstdcxx-inside": "libstdc%2B%2B-12-dev",
                      "c-library": "libc6-dev"}
        for part, package in owners.items():
            locator = self.parts[part]["externalRefs"][0]["referenceLocator"]
            self.assertIn(f"pkg:deb/debian/{package}@", locator)


class CycloneDx(PackageCase):

    def test_it_has_what_the_format_demands(self):
        whole = document("cdx.json")
        self.assertEqual(("CycloneDX", "1.5", 1),
                         (whole["bomFormat"], whole["specVersion"], whole["version"]))
        self.assertRegex(whole["serialNumber"], r"^urn:uuid:[0-9a-f-]{36}$")
        self.assertEqual(TIME, whole["metadata"]["timestamp"])
        self.assertEqual(VERSION, whole["metadata"]["component"]["version"])
        for entry in whole["components"]:
            self.assertIn(entry["type"], ("file", "library"))
            self.assertTrue(entry["name"] and entry["bom-ref"])
            for licence in entry.get("licenses", []):
                self.assertTrue(LICENCES.fullmatch(licence["expression"]), licence)

    def test_it_says_the_same_as_the_other_document(self):
        whole, other = document("cdx.json"), document("spdx.json")
        parts = {entry["bom-ref"].removeprefix("part:"): entry for entry in whole["components"]
                 if entry["type"] == "library"}
        for entry in other["packages"][1:]:
            part = parts.pop(entry["SPDXID"].removeprefix("SPDXRef-Part-"))
            self.assertEqual((entry["name"], entry.get("versionInfo")),
                             (part["name"], part.get("version")))
        self.assertEqual({}, parts)
        depends = {row["ref"]: set(row["dependsOn"]) for row in whole["dependencies"]}
        for target, path in binaries_of(SYSTEM, VERSION).items():
            expected = {f"part:{part}" for part in INSIDE[target] | LOADED}
            expected.update(f"file:{name}" for name in loaded_libraries(target))
            self.assertEqual(expected, depends[f"file:{path}"], target)
            checksums = [row["content"] for entry in whole["components"] if entry["name"] == path
                         for row in entry["hashes"] if row["alg"] == "SHA-256"]
            content = (unpacked() / path).read_bytes()
            self.assertEqual([hashlib.sha256(content).hexdigest()], checksums)


class LinkedParts(PackageCase):
    """The table of parts, with changed maps of the build."""

    def setUp(self):
        super().setUp()
        self.table = read_table(TABLE, SYSTEM, FOLDERS)
        self.build = Build(BUILD_FOLDER, SOURCE_FOLDER, self.table)

    def links(self, target, change=lambda text: text):
        """The links of a binary, after a function has changed its map."""
        text = (BUILD_FOLDER / "maps" / f"{target}.map").read_text(encoding="utf-8")
        self.write(f"maps/{target}.map", change(text))
        self.build.maps = self.folder / "maps"
        return self.build.links(target, unpacked() / binaries_of(SYSTEM, VERSION)[target],
                                own_libraries(SYSTEM, VERSION))

    def test_the_patches_of_each_part_are_named(self):
        patches = sorted((SOURCE_FOLDER / "cmake/third_party").glob("*.patch"))
        self.assertEqual(3, len(patches))
        for path in patches:
            part = next(part for part in self.table.parts if path.name.startswith(f"{part.id}-"))
            self.assertRegex(part.changed, rf"(^|\. ){re.escape(path.name)}: ")
            for ending in SBOM_ENDINGS:
                self.assertIn(f"Changed: {part.changed}", json.dumps(document(ending)))

    def test_an_archive_that_gives_no_member_disappears(self):
        def without_archive(text):
            return re.sub(r"^\S*libxml2\.a\(.*\n(?:  +.*\n)?", "", text, flags=re.M)

        self.assertIn("libxml2", self.links("rgen").inside)
        # Without headers, the library is recognised only by its archive.
        self.build.headers = {path: [header for header in headers if "libxml" not in header]
                              for path, headers in self.build.headers.items()}
        self.assertNotIn("libxml2", self.links("rgen", without_archive).inside)

    def test_an_unknown_archive_is_an_error(self):
        def with_archive(text):
            return text.replace("\n\n", "\n\n/somewhere/lib/libunknown.a(part.o)\n      (symbol)\n",
                                1)

        with self.assertRaisesRegex(UnknownPart, r"^/somewhere/lib/libunknown\.a went into vellum, "
                                                 r"but packaging/parts\.json has no part"):
            self.links("vellum", with_archive)

    def test_a_third_party_archive_below_the_sources_is_no_own_one(self):
        table = read_table(TABLE, SYSTEM, {**FOLDERS, "third_party": f"{SOURCE_FOLDER}/cache/libs"})
        build = Build(BUILD_FOLDER, SOURCE_FOLDER, table)
        self.assertFalse(build.own("archives", f"{SOURCE_FOLDER}/cache/libs/lib/libxml2.a"))
        self.assertFalse(build.own("headers", f"{SOURCE_FOLDER}/cache/libs/include/libxml/tree.h"))
        self.assertTrue(build.own("archives", f"{BUILD_FOLDER}/lib/libcore.a"))
        self.build = build
        text = f"\n\n{SOURCE_FOLDER}/cache/libs/lib/libxml2.a(part.o)\n      (symbol)\n"
        self.assertIn("libxml2", self.links("vellum", lambda whole: whole.replace(
            "\n\n", text, 1)).inside)

    def test_a_file_of_another_package_is_an_error(self):
        part = next(part for part in self.table.parts if part.id == "gcc-runtime")
        binary = components.Binary("bin/rgen", "", "", "rgen", self.links("rgen"))
        check_owners([part], [binary])
        part.package = "libc6-dev"
        with self.assertRaisesRegex(MissingFact, r"^/usr/lib/gcc/\S+ was linked as a file of GCC "
                                                 r"runtime libraries, but belongs to the Debian "
                                                 r"package \S+ and not to libc6-dev; correct"):
            check_owners([part], [binary])
        self.write("libgcc.a", "")
        binary.links.files = {"gcc-runtime": {str(self.folder / "libgcc.a")}}
        with self.assertRaisesRegex(MissingFact, r"libgcc\.a .* belongs to no Debian package"):
            check_owners([part], [binary])

    def test_an_unknown_object_is_an_error(self):
        with self.assertRaisesRegex(UnknownPart, r"^/somewhere/unknown\.o went into vellum"):
            self.links("vellum", lambda text: text + "\nLOAD /somewhere/unknown.o\n")

    def test_an_unknown_header_library_is_an_error(self):
        path = next(path for path in self.build.headers if "/vellum.dir/program/main_" in path)
        self.build.headers[path].append("/usr/include/unknown/library.hpp")
        with self.assertRaisesRegex(UnknownPart, r"^/usr/include/unknown/library\.hpp went into"):
            self.links("vellum")

    def test_what_link_time_optimisation_leaves_behind_is_no_part(self):
        text = ("Archive member included\n\n/x/liba.a(one.o)\n    user.o (symbol)\n"
                "/x/libb.a(two.o)  user.o (symbol)\n\nMemory Configuration\n\n"
                "LOAD user.o\nLOAD /tmp/ccAb12Cd.ltrans0.ltrans.o\n"
                "LOAD /tmp/ccAb12Cd.debug.temp.o\n"
                "LOAD /x/liba.a\nLOAD /x/libc.so\n /x/libd.a(three.o)\n")
        self.assertEqual(({"/x/liba.a", "/x/libb.a"}, {"user.o"}), map_inputs(text))

    @linux_only
    def test_an_unknown_library_that_is_loaded_is_an_error(self):
        self.table.parts = [part for part in self.table.parts if part.id != "libstdcxx"]
        with self.assertRaisesRegex(UnknownPart, r"^libstdc\+\+\.so\.6 went into vellum"):
            self.links("vellum")

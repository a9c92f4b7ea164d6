"""Makes the Debian package from the installed tree of a Linux build: one package with the library,
its tools and the development files. docs/building.md says why CPack does not make it.

SPDX-License-Identifier: MIT
"""

import gzip
import hashlib
import shutil
import tempfile
from datetime import datetime, timezone
from email.utils import format_datetime
from pathlib import Path

from components import LIBRARIES
from deterministic_archive import set_modes_and_times
from packaging_tools import run_tool

PACKAGE = "strata-repgenlib"
MAINTAINER = "strata_repgenlib maintainers <maintainers@strata-repgenlib.example>"
DISTRIBUTION = "bookworm"
DESCRIPTION = """report generator library with a C interface, and its tools
 strata_repgenlib merges named, typed values with stored ones, applies an XSLT
 template to them and delivers a report as HTML, text or PDF. It is a shared
 library with a C interface for applications in any language.
 .
 The package contains the library, the host library with calls that never
 throw, their headers, bindings and examples, the
 command-line host rgen, and vellum, the converter that makes PDF files with a
 browser or WeasyPrint.
"""
CONTROL = """Package: {package}
Version: {version}
Architecture: amd64
Maintainer: {maintainer}
Installed-Size: {size}
Depends: {depends}
Recommends: chromium-headless-shell | chromium | weasyprint
Section: devel
Priority: optional
Description: {description}"""
CHANGELOG = """{package} ({version}) {distribution}; urgency=medium

  * Release {version}; CHANGELOG.md in this folder lists what is new.

 -- {maintainer}  {date}
"""
# Debian's names of these folders.
MOVED = {"share/doc/strata_repgenlib": f"share/doc/{PACKAGE}",
         "share/zsh/site-functions": "share/zsh/vendor-completions"}
# Texts that refer to licences which every Debian has; the copyright file repeats the other texts.
LONG_LICENCES = {"gcc-runtime.txt", "c-library.txt"}
# Licences that are in /usr/share/common-licenses of every system.
COMMON_LICENCES = ["GPL-3.txt", "LGPL-2.1.txt"]


def write_gzip(path: Path, content: bytes) -> None:
    with path.open("wb") as file, gzip.GzipFile("", "wb", 9, file, mtime=0) as packed:
        packed.write(content)


def copy_tree(tree: Path, root: Path) -> Path:
    """Copies the installed tree to the package's /usr, with Debian's names of folders."""
    usr = root / "usr"
    shutil.copytree(tree, usr, symlinks=True)
    for old, new in MOVED.items():
        (usr / new).parent.mkdir(parents=True, exist_ok=True)
        (usr / old).rename(usr / new)
    for name in COMMON_LICENCES:
        (usr / "share/doc" / PACKAGE / "licences" / name).unlink()
    return usr


def remove_run_paths(usr: Path, source: Path, version: str) -> None:
    """Removes the folders where binaries look for the libraries: here these are in a system folder."""
    for name in ("bin/rgen", f"lib/libstrata_repgenlib_host.so.{version}"):
        run_tool("cmake", f"-DBINARY={usr}/{name}", "-P",
                 str(source / "packaging/remove_runpath.cmake"))


def copyright_text(doc: Path) -> str:
    """The licence of the package, and those of its parts that are not on every Debian."""
    texts = ["This package is strata_repgenlib. Its own files are under this licence:\n",
             (doc / "LICENSE").read_text(encoding="utf-8"),
             f"The binaries contain other parts, which /usr/share/doc/{PACKAGE}/sbom lists. Their\n"
             f"licences are in /usr/share/doc/{PACKAGE}/licences, which refers to the texts in\n"
             "/usr/share/common-licenses (GPL-3, LGPL-2.1) for the runtime of the compiler and of\n"
             "the C library. The texts of the others follow.\n"]
    for path in sorted((doc / "licences").iterdir()):
        if path.name not in LONG_LICENCES:
            texts.append(f"---- {path.stem} ----\n\n" + path.read_text(encoding="utf-8"))
    return "\n".join(texts)


def write_documents(usr: Path, source: Path, version: str, epoch: int) -> None:
    """Writes what Debian requires: copyright, changelog, compressed manual pages."""
    doc = usr / "share/doc" / PACKAGE
    (doc / "copyright").write_text(copyright_text(doc), encoding="utf-8")
    (doc / "LICENSE").unlink()
    overrides = usr / "share/lintian/overrides"
    overrides.mkdir(parents=True)
    shutil.copyfile(source / "packaging/lintian-overrides", overrides / PACKAGE)
    date = format_datetime(datetime.fromtimestamp(epoch, timezone.utc))
    changelog = CHANGELOG.format(package=PACKAGE, version=version, distribution=DISTRIBUTION,
                                 maintainer=MAINTAINER, date=date)
    write_gzip(doc / "changelog.gz", changelog.encode())
    for page in sorted((usr / "share/man").rglob("*.1")):
        write_gzip(page.with_name(page.name + ".gz"), page.read_bytes())
        page.unlink()


def dependencies(root: Path, version: str) -> str:
    """The packages that the binaries need, from dpkg-shlibdeps."""
    with tempfile.TemporaryDirectory() as folder:
        work = Path(folder)
        (work / "debian").mkdir()
        (work / "debian/control").write_text(f"Source: {PACKAGE}\n\nPackage: {PACKAGE}\n"
                                             "Architecture: amd64\n", encoding="ascii")
        usr = root / "usr"
        output = run_tool("dpkg-shlibdeps", "-O", f"-S{root}", f"-x{PACKAGE}", f"-l{usr}/lib",
                     f"{usr}/bin/rgen", f"{usr}/bin/vellum",
                     *(f"{usr}/lib/lib{name}.so.{version}" for name in LIBRARIES), cwd=work)
    return output.strip().removeprefix("shlibs:Depends=")


def write_control(root: Path, version: str) -> None:
    control = root / "DEBIAN"
    files = sorted(path for path in (root / "usr").rglob("*")
                   if path.is_file() and not path.is_symlink())
    control.mkdir()
    major = version.split(".")[0]
    lines = [f"lib{name} {major} {PACKAGE} (>= {version})\n" for name in LIBRARIES]
    (control / "shlibs").write_text("".join(lines), encoding="ascii")
    (control / "triggers").write_text("activate-noawait ldconfig\n", encoding="ascii")
    sums = [f"{hashlib.md5(path.read_bytes()).hexdigest()}  {path.relative_to(root)}\n"
            for path in files]
    (control / "md5sums").write_text("".join(sums), encoding="utf-8")
    size = sum((path.stat().st_size + 1023) // 1024 for path in files)
    (control / "control").write_text(
        CONTROL.format(package=PACKAGE, version=version, maintainer=MAINTAINER, size=size,
                       depends=dependencies(root, version), description=DESCRIPTION),
        encoding="utf-8")


def package_title(version: str) -> str:
    return f"{PACKAGE}_{version}_amd64"


def package_name(version: str) -> str:
    return f"{package_title(version)}.deb"


def build_package(root: Path, version: str, output: Path, epoch: int) -> None:
    """Packs ROOT, which contains the complete /usr."""
    write_control(root, version)
    set_modes_and_times(root, epoch)
    # One thread: with several the compressed bytes differ.
    run_tool("dpkg-deb", "--root-owner-group", "--threads-max=1", "-Zxz", "--build", str(root),
        str(output / package_name(version)), epoch=epoch)

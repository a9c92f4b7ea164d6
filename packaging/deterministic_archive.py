"""Archives that hold nothing of the machine that made them: the entries are sorted, belong to
root, have the time of the release and one of two modes.

SPDX-License-Identifier: MIT
"""

import gzip
import os
import stat
import tarfile
import zipfile
from datetime import datetime, timezone
from pathlib import Path

# The first moment that a zip archive can express.
ZIP_START = 315532800


def mode_of(path: Path) -> int:
    """The mode of a file or folder, whatever mode mask it was made under: programs may run."""
    if path.is_dir():
        return 0o755
    runs = path.stat().st_mode & stat.S_IXUSR and ".so" not in path.name
    return 0o755 if runs else 0o644


def set_modes_and_times(tree: Path, epoch: int) -> None:
    """Gives the files of a tree the modes and the time that the archives have."""
    for path in [tree, *tree.rglob("*")]:
        if not path.is_symlink():
            path.chmod(mode_of(path))
        os.utime(path, (epoch, epoch), follow_symlinks=False)


def entries(tree: Path) -> list[Path]:
    return sorted(tree.rglob("*"), key=lambda path: path.relative_to(tree).as_posix())


def tar_entry(path: Path, name: str, epoch: int) -> tarfile.TarInfo:
    entry = tarfile.TarInfo(name)
    entry.mtime = epoch
    entry.uname = entry.gname = "root"
    if path.is_symlink():
        entry.type, entry.linkname, entry.mode = tarfile.SYMTYPE, str(path.readlink()), 0o777
    elif path.is_dir():
        entry.type, entry.mode = tarfile.DIRTYPE, 0o755
    else:
        entry.size, entry.mode = path.stat().st_size, mode_of(path)
    return entry


def write_tar_gz(tree: Path, top: str, archive: Path, epoch: int) -> None:
    """Writes TREE as the folder TOP of a compressed tar archive."""
    with archive.open("wb") as file, \
            gzip.GzipFile("", "wb", 9, file, mtime=epoch) as packed, \
            tarfile.open(fileobj=packed, mode="w", format=tarfile.GNU_FORMAT) as tar:
        for path in [tree, *entries(tree)]:
            name = "/".join([top, *path.relative_to(tree).parts])
            entry = tar_entry(path, name, epoch)
            if entry.isreg():
                with path.open("rb") as content:
                    tar.addfile(entry, content)
            else:
                tar.addfile(entry)


def write_zip(tree: Path, top: str, archive: Path, epoch: int) -> None:
    """Writes TREE as the folder TOP of a zip archive; symbolic links are not expected."""
    moment = datetime.fromtimestamp(max(epoch, ZIP_START), timezone.utc)
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as packed:
        for path in [tree, *entries(tree)]:
            name = "/".join([top, *path.relative_to(tree).parts])
            kind = stat.S_IFDIR if path.is_dir() else stat.S_IFREG
            entry = zipfile.ZipInfo(name + "/" * path.is_dir(), moment.timetuple()[:6])
            entry.create_system = 3
            entry.external_attr = (kind | mode_of(path)) << 16 | 0x10 * path.is_dir()
            entry.compress_type = zipfile.ZIP_STORED if path.is_dir() else zipfile.ZIP_DEFLATED
            packed.writestr(entry, b"" if path.is_dir() else path.read_bytes())

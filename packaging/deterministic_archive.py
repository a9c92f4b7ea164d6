"""Archives with nothing of the machine that made them: the entries are sorted, belong to root, and
have the time of the release and one of two modes.

SPDX-License-Identifier: MIT
"""

import os
import stat
from pathlib import Path

from packaging_tools import run_tool


def mode_of(path: Path) -> int:
    """The mode of a file or folder, independent of the builder's umask."""
    if path.is_dir():
        return 0o755
    is_program = path.stat().st_mode & stat.S_IXUSR and ".so" not in path.name
    return 0o755 if is_program else 0o644


def set_modes_and_times(tree: Path, epoch: int) -> None:
    """Sets the modes and times that the files of a tree have in archives."""
    for path in [tree, *tree.rglob("*")]:
        if not path.is_symlink():
            path.chmod(mode_of(path))
        os.utime(path, (epoch, epoch), follow_symlinks=False)


def entry_names(tree: Path) -> str:
    """The folder itself and everything in it, a line each."""
    paths = sorted(path.relative_to(tree.parent).as_posix() for path in [tree, *tree.rglob("*")])
    return "".join(f"{path}\n" for path in paths)


def write_tar_gz(tree: Path, archive: Path) -> None:
    """Packs a folder whose modes and times are set."""
    run_tool("tar", "--create", f"--file={archive}", "--use-compress-program=gzip -9 --no-name",
             "--format=gnu", "--owner=root:0", "--group=root:0", f"--directory={tree.parent}",
             "--no-recursion", "--verbatim-files-from", "--files-from=-", text=entry_names(tree))


def write_zip(tree: Path, archive: Path) -> None:
    """Packs a folder whose modes and times are set. Zip archives store local time, here UTC."""
    archive.unlink(missing_ok=True)
    run_tool("zip", "-q", "-9", "-X", str(archive), "-@", cwd=tree.parent, text=entry_names(tree))

"""File systems with little room, for cases about full disks.

SPDX-License-Identifier: MIT
"""

import os
import shutil
import subprocess
import unittest

BLOCK = 4096


def mount(kind, folder, size):
    """Mounts a new file system of that kind at the folder; returns what unmounts it."""
    needed = [shutil.which(name) for name in ("mount", "umount", "mkfs.ext4")]
    if os.geteuid() != 0 or None in needed:
        raise unittest.SkipTest("only root may mount a small disk, with mount and mkfs.ext4")
    folder.mkdir()
    words = ["-t", "tmpfs", "-o", f"size={size}", "none"]
    if kind == "ext4":
        image = folder.with_name(folder.name + ".img")
        with open(image, "wb") as file:
            file.truncate(size)
        run(needed[2], "-q", "-m", "0", "-O", "^has_journal", "-b", BLOCK, image)
        words = ["-o", "loop", image]
    run(needed[0], *words, folder)
    return lambda: subprocess.run([needed[1], folder], check=True)


def run(*words):
    try:
        subprocess.run([str(word) for word in words], check=True, capture_output=True, text=True)
    except subprocess.CalledProcessError as error:
        raise unittest.SkipTest(f"{words[0]} is not allowed here: {error.stderr.strip()}") from error


def fill(folder, free):
    """Leaves about so many bytes free."""
    os.sync()
    facts = os.statvfs(folder)
    with open(folder / "filler", "wb") as file:
        file.write(bytes(facts.f_bavail * facts.f_frsize - free))
    os.sync()

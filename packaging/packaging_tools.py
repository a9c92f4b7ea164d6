"""Runs the programs that packaging uses, and the name that all its files share.

SPDX-License-Identifier: MIT
"""

import os
import subprocess
from pathlib import Path


RELEASE_NAME = "strata_repgenlib"


class ToolFailure(Exception):
    """A program failed."""


def run_tool(*command: str, cwd: Path | None = None, epoch: int = 0, text: str = "") -> str:
    """Runs a program with a text as its input and SOURCE_DATE_EPOCH set; returns its output."""
    environment = {**os.environ, "SOURCE_DATE_EPOCH": str(epoch), "LC_ALL": "C.UTF-8", "TZ": "UTC"}
    try:
        result = subprocess.run(command, cwd=cwd, env=environment, input=text, text=True,
                                capture_output=True)
    except OSError as error:
        raise ToolFailure(f"{command[0]} cannot be started: {error}") from error
    if result.returncode:
        raise ToolFailure(f"{' '.join(command)} failed: {result.stderr.strip()}")
    return result.stdout

"""The formatting of every C and C++ file, by the project's .clang-format.

Usage: check_format.py CLANG_FORMAT

SPDX-License-Identifier: MIT
"""

import re
import shutil
import subprocess
import sys

from project_files import ROOT, code_files, finish, problem, relative

if shutil.which(sys.argv[1]) is None:
    sys.exit(f"{sys.argv[1]} is missing; run: scripts/setup test")
names = [relative(path) for path in code_files()]
run = subprocess.run([sys.argv[1], "--dry-run", "-Werror", "--style=file", *names], cwd=ROOT,
                     capture_output=True, text=True, check=False)
for name in sorted(set(re.findall(r"^(\S+?):\d+:\d+: error", run.stderr, flags=re.M))):
    problem(f"{name}: run clang-format -i on it")
if run.returncode != 0 and "error" not in run.stderr:
    problem(f"clang-format failed: {run.stderr}")
finish(f"format of {len(names)} files")

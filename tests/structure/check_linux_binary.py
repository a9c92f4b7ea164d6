"""A shared library on Linux: its SONAME, what it needs, the oldest C and C++ libraries that it runs
on, no folder of the building machine inside, no thread-local variables, and what it destroys at the
end of a process.

Usage: check_linux_binary.py BINARY SONAME OTHER FOLDER...
OTHER is the SONAME of the library that it needs and finds in its own folder, or "alone".

SPDX-License-Identifier: MIT
"""

import re
import subprocess
import sys
from pathlib import Path

from linux_binary import NEEDED, check_hardening, check_symbol_versions, readelf, run_paths
from project_files import finish, problem


def check_dynamic_section(binary, soname, other):
    text = readelf("--dynamic", binary)
    if f"Library soname: [{soname}]" not in text:
        problem(f"the SONAME is not {soname}")
    needed = set(re.findall(r"Shared library: \[([^\]]+)\]", text))
    for library in sorted(needed - NEEDED - {other}):
        problem(f"needs {library}")
    if other != "alone" and other not in needed:
        problem(f"does not need {other}")
    if run_paths(binary) != ([] if other == "alone" else ["$ORIGIN"]):
        problem(f"has the run path {run_paths(binary)}")
    if "(TEXTREL)" in text:
        problem("has text relocations")
    if "BIND_NOW" not in text and "NOW" not in text:
        problem("is not bound at start")
    if re.search(r"GNU_STACK.*RWE", readelf("--program-headers", binary)):
        problem("asks for an executable stack")


# The functions that register something to be destroyed, and why that does no harm to a host that calls
# the library in an exit function.
DESTROYED = {
    r"rgen_newReportGenerator|.*sharedXmlParserContext.*":
        "the reference of the process to the XML libraries; nothing reads it, it is only counted",
    r"_GLOBAL__sub_I.*path\.cpp":
        "Boost.Filesystem's locale for the characters of paths, which is not used on Linux",
    r"_ZN5rgenh15reportException.*":
        "Boost.Filesystem's empty path, which holds no memory and can be read after its end",
}


def check_thread_storage(binary):
    if re.search(r"^\s*TLS\s", readelf("--program-headers", binary), re.M):
        problem("has thread-local variables: without memory for them, a thread's first use of a "
                "library that was loaded at run time ends the process")


def check_destroyed_objects(binary):
    code = subprocess.check_output(["objdump", "--disassemble", "--no-show-raw-insn", binary],
                                   text=True)
    found = set()
    for function in re.split(r"\n\n", code):
        name = re.match(r"[0-9a-f]+ <(.*)>:", function.lstrip())
        if name and re.search(r"(call|jmp)\s.*<(__cxa_atexit|__cxa_thread_atexit_impl|atexit|"
                              r"__cxa_thread_atexit)@plt>", function):
            found.add(name.group(1))
    for name in sorted(found):
        if not any(re.fullmatch(pattern, name) for pattern in DESTROYED):
            problem(f"{name} makes a static object that is destroyed at the end of the process, when "
                    "exit functions of a host may still need it")
    if not found:
        problem("no function registers anything to be destroyed: is the search right?")


def check_folders(binary, folders):
    content = Path(binary).read_bytes()
    for folder in folders:
        if folder and folder.encode() in content:
            problem(f"contains the folder {folder}")


check_dynamic_section(*sys.argv[1:4])
check_symbol_versions(sys.argv[1])
check_hardening(sys.argv[1])
check_folders(sys.argv[1], sys.argv[4:])
check_thread_storage(sys.argv[1])
check_destroyed_objects(sys.argv[1])
finish(Path(sys.argv[1]).name)

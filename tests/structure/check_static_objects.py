"""Static objects of the libraries' own sources that are destroyed at the end of the process: none but
those that are named here. Hosts call the library in exit functions and in the destructors of their
global objects, which come later.

Usage: check_static_objects.py OBJDUMP OBJECT...

SPDX-License-Identifier: MIT
"""

import re
import subprocess
import sys
from pathlib import Path

from project_files import finish, problem

# Each with the reason why its end does no harm.
ALLOWED = {
    "parser_context.cpp": "the reference of the process to the XML libraries is only counted",
    "platform_windows.cpp": "the slot of the thread's pointer; Windows ends a DLL after its users",
}
REGISTERING = {"__cxa_atexit", "__cxa_thread_atexit", "atexit", "__emutls_get_address"}
# Made by a header of Boost in each source that includes it; on Windows it has an end. Only the
# conversion of Boost's error categories locks it, which the library does not use.
MUTEX_OF_BOOST = "stdcat_mx_holder"


def sections(objdump, file):
    """For each section of the code, the names that it refers to."""
    text = subprocess.check_output([objdump, "--reloc", file], text=True)
    for section in text.split("RELOCATION RECORDS FOR ")[1:]:
        head, _, rows = section.partition("\n")
        if head.startswith("[.text"):
            yield [re.split(r"[-+]0x", row.split()[-1])[0] for row in rows.splitlines()
                   if re.match(r"[0-9a-f]{16} ", row)]


def registrations(objdump, file):
    count = 0
    for names in sections(objdump, file):
        own = sum(name in REGISTERING for name in names)
        of_boost = own and any(MUTEX_OF_BOOST in name for name in names)
        count += own - (1 if of_boost else 0)
    return count


objdump, *objects = sys.argv[1:]
seen = set()
for path in objects:
    source = Path(path).stem
    if registrations(objdump, path) == 0:
        continue
    seen.add(source)
    if source not in ALLOWED:
        problem(f"{source} makes a static object that is destroyed, or a thread-local variable")
if "parser_context.cpp" not in seen:
    problem("parser_context.cpp registers nothing: is the search right?")
finish("static objects")

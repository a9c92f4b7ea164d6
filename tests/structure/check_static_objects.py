"""Static objects of the library's own sources that are destroyed at the end of the process: none but
those that are named here. Hosts call the library in exit functions and in the destructors of their
global objects, which come later.

Usage: check_static_objects.py NM OBJECT...

SPDX-License-Identifier: MIT
"""

import subprocess
import sys
from pathlib import Path

from project_files import finish, problem

# Each with the reason why its end does no harm.
ALLOWED = {
    "xml_parser_context.cpp": "the reference of the process to the XML libraries is only counted",
    "platform_windows.cpp": "the slot of the thread's pointer; Windows ends a DLL after its users",
}
REGISTERING = {"__cxa_atexit", "__cxa_thread_atexit", "atexit", "__emutls_get_address"}


def undefined_names(nm, file):
    text = subprocess.check_output([nm, "--undefined-only", "--format=just-symbols", file], text=True)
    return set(text.split())


nm, *objects = sys.argv[1:]
seen = set()
for path in objects:
    source = Path(path).stem
    if not REGISTERING & undefined_names(nm, path):
        continue
    seen.add(source)
    if source not in ALLOWED:
        problem(f"{source} makes a static object that is destroyed, or a thread-local variable")
if "xml_parser_context.cpp" not in seen:
    problem("xml_parser_context.cpp registers nothing: is the search right?")
finish("static objects")

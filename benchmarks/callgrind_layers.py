#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Counts the instructions of the library's own layers in a callgrind file.

Usage: callgrind_layers.py FILE [REPORTS]

Prints the instructions of one report by layer, and the functions of the own layers that need most
of them. The layers:

    xml       source files of libxml2 and libxslt, and the allocator that the library gives to them
    system    the C library, the loader and other parts of the system
    harness   the benchmark program
    own       everything else: the library's sources, the C++ library, Boost

The cost of the own layers is their instructions and those of the system functions that they call
(malloc, memcpy and so on, with everything that these call). File functions are not counted: they
are the input and output of the report. Code of the XML libraries that was inlined into the library
counts
for the XML libraries; functions that the allocator calls count for the allocator.
"""

import re
import sys
from collections import Counter
from pathlib import Path

XML_FILES = re.compile(r"(^|/)third_party/lib(xml2|xslt)/")
ALLOCATOR_FILES = re.compile(r"(^|/)src/(memory/|store/xml/(memory|work))")
SYSTEM_OBJECTS = re.compile(r"(^|/)(lib(c|m|pthread|dl|rt)[.-]|ld-linux|linux-vdso|\[vdso\])|^$")
HARNESS_OBJECTS = re.compile(r"(^|/)benchmark_[a-z]+$")
FILE_FUNCTIONS = re.compile(
    r"^(_*(open|openat|creat|read|pread|readv|write|pwrite|writev|close|l?seek|llseek"
    r"|stat|fstat|lstat|fstatat|newfstatat|statx|statfs|fstatfs|[fl]?xstat"
    r"|unlink|unlinkat|remove|rename|mkdir|mkdirat|rmdir|access|faccessat|readlink|getcwd|chmod"
    r"|opendir|readdir|closedir|fcntl|ioctl|fsync|ftruncate|getpid|syscall"
    r"|mmap|munmap|fopen|fdopen|fclose|fread|fwrite|fflush|fseeko?|ftello?|fileno)(64)?(_nocancel)?"
    r"|_IO_(file_)?\w+|__(fx|x|lx)stat(64)?)(@.*)?$")


class Function:
    """A function, identified by binary and name."""

    def __init__(self, binary, file, name):
        self.name = name
        self.layer = layer_of_function(binary, file)
        self.is_allocator = bool(ALLOCATOR_FILES.search(file))

    @property
    def is_file_function(self):
        return self.layer == "system" and bool(FILE_FUNCTIONS.match(self.name))


def layer_of_function(binary, file):
    if SYSTEM_OBJECTS.search(binary):
        return "system"
    if HARNESS_OBJECTS.search(binary):
        return "harness"
    return "xml" if is_xml_file(file) else "own"


def is_xml_file(file):
    return bool(XML_FILES.search(file) or ALLOCATOR_FILES.search(file))


class CallgrindFile:
    """The costs of a callgrind file by layer."""

    def __init__(self, path):
        self.layers = Counter()
        self.calls_to_system = Counter()
        self.own_functions = Counter()
        self.called_by_allocator = Counter()
        self._names = {"ob": {}, "fl": {}, "fn": {}}
        self._functions = {}
        self._binary = self._file = self._line_file = ""
        self._function = None
        self._callee = {}
        self._files = {}
        lines = Path(path).read_text(encoding="utf-8", errors="replace").splitlines()
        # First pass: the file of each function, since a call may come before its function.
        self._read(lines, self._note_function, lambda cost: None, lambda cost: None)
        self._read(lines, self._enter_function, self._add_cost, self._add_call)

    @property
    def own(self):
        """The cost of the own layers with the system functions that they call."""
        return (self.layers["own"] + sum(self.calls_to_system.values())
                - sum(self.called_by_allocator.values()))

    @property
    def total(self):
        return sum(self.layers.values())

    # ---- Reading --------------------------------------------------------------------------------

    def _name(self, kind, text):
        """The name in "(7) name", or the one that was given before for "(7)"."""
        match = re.match(r"\((\d+)\)(?: (.*))?$", text)
        if match is None:
            return text
        if match.group(2) is not None:
            self._names[kind][match.group(1)] = match.group(2)
        return self._names[kind][match.group(1)]

    def _read(self, lines, enter, add_cost, add_call):
        is_call = False
        for line in lines:
            if re.match(r"[0-9+*-]", line):
                cost = int(line.split()[1]) if " " in line else 0
                (add_call if is_call else add_cost)(cost)
                is_call = False
                continue
            key, separator, value = line.partition("=")
            if not separator:
                continue
            is_call = key == "calls"
            self._read_name(key, value, enter)

    def _read_name(self, key, value, enter):
        if key == "ob":
            self._binary = self._name("ob", value)
        elif key == "fl":
            self._file = self._line_file = self._name("fl", value)
        elif key in ("fi", "fe"):
            self._line_file = self._name("fl", value)
        elif key == "fn":
            self._line_file = self._file
            enter(self._name("fn", value))
        elif key == "cob":
            self._callee["binary"] = self._name("ob", value)
        elif key in ("cfi", "cfl"):
            self._callee["file"] = self._name("fl", value)
        elif key == "cfn":
            self._callee["name"] = self._name("fn", value)

    def _note_function(self, name):
        self._callee = {}
        self._files.setdefault((self._binary, name), self._file)

    def _enter_function(self, name):
        self._callee = {}
        self._function = self._function_of(self._binary, self._file, name)

    def _function_of(self, binary, file, name):
        key = (binary, name)
        if key not in self._functions:
            self._functions[key] = Function(binary, self._files.get(key, file), name)
        return self._functions[key]

    # ---- Adding up ------------------------------------------------------------------------------

    def _layer_of_line(self):
        layer = self._function.layer
        return "xml" if layer == "own" and is_xml_file(self._line_file) else layer

    def _add_cost(self, cost):
        layer = self._layer_of_line()
        self.layers[layer] += cost
        if layer == "own":
            self.own_functions[self._function.name] += cost

    def _add_call(self, cost):
        callee = self._function_of(self._callee.get("binary", self._binary),
                                   self._callee.get("file", self._file), self._callee["name"])
        self._callee = {}
        if self._function.is_allocator and callee.layer == "own":
            self.called_by_allocator[callee.name] += cost
        if self._layer_of_line() != "own" or callee.layer != "system":
            return
        if not callee.is_file_function:
            self.calls_to_system[callee.name] += cost
            self.own_functions[self._function.name] += cost


def main():
    costs = CallgrindFile(sys.argv[1])
    reports = int(sys.argv[2]) if len(sys.argv) > 2 else 1
    for title, counts in (("layers", costs.layers), ("system calls of the own layers",
                                                     costs.calls_to_system),
                          ("own functions called by the allocator", costs.called_by_allocator),
                          ("functions of the own layers", costs.own_functions)):
        print(f"{title}:")
        for name, cost in counts.most_common(25):
            print(f"  {cost / reports:14,.0f}  {name[:100]}")
    print(f"total {costs.total / reports:,.0f}, own layers with their system functions "
          f"{costs.own / reports:,.0f}")


if __name__ == "__main__":
    main()

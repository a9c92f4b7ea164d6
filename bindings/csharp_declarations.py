"""Writes the declarations for C#: safe code, only blittable records, C# 7.3.

SPDX-License-Identifier: MIT
"""

from typing import Iterator

from declaration_text import wrapped
from header_reader import Constant, CType, Enumeration, Function, Header, Member, Record, summary
from record_layout import Layout, layouts

NUMBERS = {"uint8_t": "byte", "uint16_t": "ushort", "int32_t": "int", "uint32_t": "uint",
           "int64_t": "long", "uint64_t": "ulong", "void": "void"}

HEAD = """// The C interface of strata_repgenlib as C# sees it.
// Written by bindings/generate_declarations.py from the public headers; do not edit.
//
// SPDX-License-Identifier: MIT
using System;
using System.Runtime.InteropServices;

namespace StrataRepgenlib
{
"""

IMPORT = "[DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]"

NATIVE_DOC = """The functions and status values of the library, letter for letter. The header
rgen.h documents the contract: ownership, null rules, threads, exceptions. Texts are passed as
null-terminated UTF-8 bytes and returned as pointers to such bytes; nothing is converted or freed
automatically."""


def doc_lines(text: str, indent: str) -> Iterator[str]:
    if text:
        safe = text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
        yield from wrapped(f"<summary>{safe}</summary>", f"{indent}/// ")


def value_type(kind: CType, header: Header) -> str:
    """The type of a field: every pointer is an IntPtr."""
    if kind.pointer or kind.base in {item.name for item in header.callbacks}:
        return "IntPtr"
    base = header.aliases.get(kind.base, kind.base)
    return NUMBERS.get(base, base)


def parameter_type(kind: CType, header: Header, takes_null: bool) -> str:
    """Bytes are passed as arrays, records by reference, callbacks as delegates."""
    if kind.pointer and kind.const and kind.base in ("char", "uint8_t"):
        return "byte[]"
    is_record = kind.base in {record.name for record in header.records}
    if kind.pointer and is_record and not (takes_null and kind.const):
        return "ref " + kind.base
    if kind.base in {item.name for item in header.callbacks}:
        return kind.base
    return value_type(kind, header)


def parameter_list(parameters: tuple[Member, ...], header: Header, takes_null: bool) -> str:
    return ", ".join(f"{parameter_type(item.type, header, takes_null)} {item.name}"
                     for item in parameters)


def enumeration_lines(enumeration: Enumeration) -> Iterator[str]:
    yield from doc_lines(summary(enumeration.doc), "    ")
    yield f"    public enum {enumeration.name} : ulong"
    yield "    {"
    for constant in enumeration.constants:
        yield from doc_lines(summary(constant.doc), "        ")
        yield f"        {constant.name} = {constant.value},"
    yield "    }"
    yield ""


def field_names(member: Member) -> list[str]:
    """An array in a record becomes several fields, so that no unsafe code is needed."""
    if member.type.length is None:
        return [member.name]
    return [f"{member.name}_{index}" for index in range(member.type.length)]


def record_lines(record: Record, layout: Layout, header: Header) -> Iterator[str]:
    yield from doc_lines(summary(record.doc), "    ")
    kind = "Explicit" if record.is_union else "Sequential"
    yield f"    [StructLayout(LayoutKind.{kind})]"
    yield f"    public struct {record.name}"
    yield "    {"
    for member in record.fields:
        yield from doc_lines(summary(member.doc), "        ")
        if record.is_union:
            yield f"        [FieldOffset({layout.offsets[member.name]})]"
        for name in field_names(member):
            yield f"        public {value_type(member.type, header)} {name};"
    yield "    }"
    yield ""


def callback_lines(callback: Function, header: Header) -> Iterator[str]:
    yield from doc_lines(summary(callback.doc), "    ")
    parameters = ", ".join(f"{value_type(item.type, header)} {item.name}"
                           for item in callback.parameters)
    yield "    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]"
    result = value_type(callback.result, header)
    yield f"    public delegate {result} {callback.name}({parameters});"
    yield ""


def function_lines(function: Function, header: Header) -> Iterator[str]:
    """A function, with a second overload for IntPtr if it reads a record, which may be null."""
    result = value_type(function.result, header)
    reads_record = any(parameter_type(item.type, header, True)
                       != parameter_type(item.type, header, False) for item in function.parameters)
    for takes_null in (False, True) if reads_record else (False,):
        more = " Takes IntPtr.Zero for null." if takes_null else ""
        yield from doc_lines(summary(function.doc) + more, "        ")
        yield f"        {IMPORT}"
        parameters = parameter_list(function.parameters, header, takes_null)
        yield from wrapped(f"public static extern {result} {function.name}({parameters});",
                           "        ", "            ")
        yield ""


def status_lines(statuses: list[Constant]) -> Iterator[str]:
    for status in statuses:
        yield from doc_lines(summary(status.doc), "        ")
        number = f"0x{status.value & 0xFFFFFFFF:08X}"
        yield f"        public const int {status.name} = unchecked((int){number});"
    yield ""
    yield "        /// <summary>The symbolic name of a status, null for other numbers.</summary>"
    yield "        public static string StatusName(int status)"
    yield "        {"
    yield "            switch (status)"
    yield "            {"
    for status in statuses:
        yield f'                case {status.name}: return "{status.name}";'
    yield "                default: return null;"
    yield "            }"
    yield "        }"
    yield ""


def layout_check_lines(header: Header) -> Iterator[str]:
    known = layouts(header)
    yield "        /// <summary>Compares every size and offset with the library's; throws an"
    yield "        /// InvalidOperationException that names the first one that differs.</summary>"
    yield "        public static void CheckLayout()"
    yield "        {"
    yield '            Require("pointer", IntPtr.Size, 8);'
    for record in header.records:
        yield f"            Check{record.name}();"
    yield "        }"
    for record in header.records:
        name, layout = record.name, known[record.name]
        yield ""
        yield f"        private static void Check{name}()"
        yield "        {"
        yield f"            Type record = typeof({name});"
        yield f'            Require("{name}", Marshal.SizeOf(record), {layout.size});'
        for member in record.fields:
            first, offset = field_names(member)[0], layout.offsets[member.name]
            yield f'            RequireOffset(record, "{first}", {offset});'
        yield "        }"
    yield ""
    yield "        private static void RequireOffset(Type record, string field, int wanted)"
    yield "        {"
    yield "            int found = Marshal.OffsetOf(record, field).ToInt32();"
    yield '            Require(record.Name + "." + field, found, wanted);'
    yield "        }"
    yield ""
    yield "        private static void Require(string what, int found, int wanted)"
    yield "        {"
    yield "            if (found == wanted) return;"
    yield "            throw new InvalidOperationException("
    yield '                what + ": " + found + " bytes where the library has " + wanted);'
    yield "        }"


def native_lines(header: Header) -> Iterator[str]:
    yield from doc_lines(" ".join(NATIVE_DOC.split()), "    ")
    yield "    public static class RgenNative"
    yield "    {"
    yield "        /// <summary>The name by which the runtime looks for the library.</summary>"
    yield '        public const string Library = "strata_repgenlib";'
    yield ""
    yield "        /// <summary>The version of the header that this file was made from.</summary>"
    yield f'        public const string HeaderVersion = "{header.version_text}";'
    yield ""
    yield from status_lines(header.statuses)
    for function in header.functions:
        yield from function_lines(function, header)
    yield from layout_check_lines(header)
    yield "    }"


def csharp_text(header: Header) -> str:
    known = layouts(header)
    lines: list[str] = []
    for enumeration in header.enumerations:
        lines += enumeration_lines(enumeration)
    for record in header.records:
        lines += record_lines(record, known[record.name], header)
    for callback in header.callbacks:
        lines += callback_lines(callback, header)
    lines += native_lines(header)
    return HEAD + "\n".join(lines) + "\n}\n"

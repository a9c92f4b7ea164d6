"""Writes the declarations for Rust: no standard library needed, Rust 1.63.

SPDX-License-Identifier: MIT
"""

from typing import Iterator

from declaration_text import WIDTH, wrapped
from header_reader import CType, Enumeration, Function, Header, Record, summary
from record_layout import Layout, layouts

NUMBERS = {"char": "CChar", "uint8_t": "u8", "uint16_t": "u16", "int32_t": "i32", "uint32_t": "u32",
           "int64_t": "i64", "uint64_t": "u64", "void": "c_void"}

HEAD = """// The C interface of strata_repgenlib as Rust sees it, letter for letter.
// Written by bindings/generate_declarations.py from the public headers; do not edit.
//
// SPDX-License-Identifier: MIT

//! The functions, records and constants of the library. The header rgen.h documents the
//! contract: ownership, null rules, threads, exceptions. The module needs `core` only.
#![allow(non_snake_case)]

use core::ffi::c_void;

/// A `char` of C on x64, where it has a sign.
pub type CChar = i8;

"""


def rust_type(kind: CType) -> str:
    base = NUMBERS.get(kind.base, kind.base)
    if kind.pointer:
        return ("*const " if kind.const else "*mut ") + base
    return base if kind.length is None else f"[{base}; {kind.length}]"


def doc_lines(text: str, indent: str = "") -> Iterator[str]:
    if text:
        # Brackets would be links.
        yield from wrapped(text.replace("[", "\\[").replace("]", "\\]"), f"{indent}/// ")


def constant_lines(header: Header) -> Iterator[str]:
    yield "/// The version of the header that these declarations were made from."
    yield f'pub const HEADER_VERSION: &str = "{header.version_text}";'
    yield ""
    for name, base in header.aliases.items():
        yield "/// Zero or positive is success, negative is failure."
        yield f"pub type {name} = {NUMBERS[base]};"
        yield ""
    for status in header.statuses:
        yield from doc_lines(summary(status.doc))
        number = f"0x{status.value & 0xFFFFFFFF:08X}"
        cast = f"{number}_u32 as RgenStatus" if status.value < 0 else str(status.value)
        yield f"pub const {status.name}: RgenStatus = {cast};"
    yield ""


def status_name_lines(header: Header) -> Iterator[str]:
    yield "/// The symbolic name of a status."
    yield "pub fn status_name(status: RgenStatus) -> Option<&'static str> {"
    yield "    Some(match status {"
    for status in header.statuses:
        yield f'        {status.name} => "{status.name}",'
    yield "        _ => return None,"
    yield "    })"
    yield "}"
    yield ""


def enumeration_lines(enumeration: Enumeration) -> Iterator[str]:
    for constant in enumeration.constants:
        own = summary(constant.doc)
        group = f"A value of `{enumeration.name}`."
        yield from doc_lines(f"{group} {own}" if own else group)
        yield f"pub const {constant.name}: u64 = {constant.value};"
    yield ""


def record_lines(record: Record) -> Iterator[str]:
    yield from doc_lines(summary(record.doc))
    yield "#[repr(C)]"
    yield "#[derive(Clone, Copy)]"
    yield f"pub {'union' if record.is_union else 'struct'} {record.name} {{"
    for member in record.fields:
        yield from doc_lines(summary(member.doc), "    ")
        name = "r#type" if member.name == "type" else member.name
        yield f"    pub {name}: {rust_type(member.type)},"
    yield "}"
    yield ""


def opaque_lines(record: Record) -> Iterator[str]:
    yield from doc_lines(summary(record.doc))
    yield "#[repr(C)]"
    yield f"pub struct {record.name} {{"
    yield "    _private: [u8; 0],"
    yield "}"
    yield ""


def callback_lines(callback: Function) -> Iterator[str]:
    yield from doc_lines(summary(callback.doc) + " `None` is a null pointer.")
    parameters = ", ".join(f"{item.name}: {rust_type(item.type)}" for item in callback.parameters)
    result = rust_type(callback.result)
    yield f"pub type {callback.name} ="
    yield f'    Option<unsafe extern "C" fn({parameters}) -> {result}>;'
    yield ""


def function_lines(function: Function) -> Iterator[str]:
    yield from doc_lines(summary(function.doc), "    ")
    is_void = function.result.base == "void" and not function.result.pointer
    result = "" if is_void else f" -> {rust_type(function.result)}"
    parameters = [f"{item.name}: {rust_type(item.type)}" for item in function.parameters]
    call = f"    pub fn {function.name}({', '.join(parameters)})"
    if len(f"{call}{result};") <= WIDTH:
        yield f"{call}{result};"
        return
    yield f"    pub fn {function.name}("
    yield from (f"        {parameter}," for parameter in parameters)
    yield f"    ){result};"


def library_lines(header: Header) -> Iterator[str]:
    yield "#[rustfmt::skip]"
    yield '#[link(name = "strata_repgenlib")]'
    yield 'extern "C" {'
    for function in header.functions:
        yield from function_lines(function)
    yield "}"
    yield ""


def layout_lines(record: Record, layout: Layout) -> Iterator[str]:
    yield ""
    yield "    #[test]"
    yield "    #[allow(non_snake_case)]"
    yield f"    fn layout_of_{record.name}() {{"
    yield f"        let record = MaybeUninit::<{record.name}>::uninit();"
    yield "        let start = record.as_ptr();"
    yield f"        assert_eq!(size_of::<{record.name}>(), {layout.size});"
    yield f"        assert_eq!(align_of::<{record.name}>(), {layout.alignment});"
    for member in record.fields:
        name = "r#type" if member.name == "type" else member.name
        yield f"        let field = unsafe {{ addr_of!((*start).{name}) }} as usize;"
        yield f"        assert_eq!(field - start as usize, {layout.offsets[member.name]});"
    yield "    }"


def size_lines(header: Header) -> Iterator[str]:
    yield "// The compiler refuses another layout."
    known = layouts(header)
    for record in header.records:
        size = known[record.name].size
        yield f"const _: () = assert!(core::mem::size_of::<{record.name}>() == {size});"
    yield ""


def layout_test_lines(header: Header) -> Iterator[str]:
    yield "#[cfg(test)]"
    yield "mod layout_tests {"
    yield "    use super::*;"
    yield "    use core::mem::{align_of, size_of, MaybeUninit};"
    yield "    use core::ptr::addr_of;"
    known = layouts(header)
    for record in header.records:
        yield from layout_lines(record, known[record.name])
    yield "}"


def rust_text(header: Header) -> str:
    lines = [*constant_lines(header), *status_name_lines(header)]
    for enumeration in header.enumerations:
        lines += enumeration_lines(enumeration)
    for opaque in header.opaque:
        lines += opaque_lines(opaque)
    for record in header.records:
        lines += record_lines(record)
    for callback in header.callbacks:
        lines += callback_lines(callback)
    lines += [*library_lines(header), *size_lines(header), *layout_test_lines(header)]
    return HEAD + "\n".join(lines) + "\n"

"""Reads the public headers for the programs that write declarations in other languages.

The reader knows only the few forms of C that the headers use. Any other form is a HeaderError, so
that no declaration is skipped silently.

SPDX-License-Identifier: MIT
"""

import re
from dataclasses import dataclass, field
from pathlib import Path
from typing import NoReturn, Optional

HEADER_NAMES = ("rgen_status.h", "rgen.h")
PRIMITIVES = ("void", "char", "uint8_t", "uint16_t", "int32_t", "uint32_t", "int64_t", "uint64_t")

# The conditional parts of the headers, word for word: the declarations rely on their content.
KNOWN_BLOCKS = (
    """#if defined(_WIN32)
#define RGEN_CALL __cdecl
#if defined(RGEN_BUILDING)
#define RGEN_API __declspec(dllexport)
#else
#define RGEN_API __declspec(dllimport)
#endif
#else
#define RGEN_CALL
#define RGEN_API __attribute__((visibility("default")))
#endif
""",
    """/**
 * The status with an unsigned number, as a constant of type RgenStatus; in C++ without a C cast.
 * The preprocessor, which knows no types, cannot compare statuses.
 */
#ifdef __cplusplus
#define RGEN_STATUS(number) (static_cast<RgenStatus>(number))
#else
#define RGEN_STATUS(number) ((RgenStatus)(number))
#endif
""",
    '#ifdef __cplusplus\nextern "C" {\n#endif\n',
    "#ifdef __cplusplus\n}\n#endif\n",
)
KNOWN_DIRECTIVES = re.compile(r'#include <stdint\.h>|#include "strata_repgenlib/rgen_status\.h"'
                              r"|#(?:ifndef|define) STRATA_REPGENLIB_RGEN(?:_STATUS)?_H|#endif")
VERSION = re.compile(r"#define RGEN_VERSION_(MAJOR|MINOR|PATCH) (\d+)")
STATUS = re.compile(r"#define (RGEN_(?:OK|CANCELED|E_[A-Z_]+)) RGEN_STATUS\((0x[0-9A-F]{8})U\)")
PAGE_COMMENT = re.compile(r"[@\\](?:file|name|mainpage|page|defgroup|addtogroup|\{|\})")
TOKEN = re.compile(r"(?P<comment>/\*.*?\*/)|(?P<directive>^#[^\n]*)|(?P<word>[A-Za-z_]\w*)"
                   r"|(?P<number>\d+)|(?P<mark>[(){}\[\];,=*])|(?P<blank>\s+)|(?P<unknown>.)",
                   re.S | re.M)


class HeaderError(Exception):
    """The headers contain a form that the reader does not know."""


@dataclass(frozen=True)
class CType:
    """A type of the headers: a base name with at most one pointer or array length."""

    base: str
    const: bool = False
    pointer: bool = False
    length: Optional[int] = None

    def declare(self, name: str) -> str:
        """The C declaration of a variable."""
        text = ("const " if self.const else "") + self.base + ("*" if self.pointer else "")
        return f"{text} {name}" + (f"[{self.length}]" if self.length is not None else "")


@dataclass(frozen=True)
class Member:
    """A field of a record or a parameter of a function."""

    name: str
    type: CType
    doc: str = ""


@dataclass(frozen=True)
class Constant:
    name: str
    value: int
    doc: str = ""


@dataclass(frozen=True)
class Enumeration:
    name: str
    constants: tuple[Constant, ...]
    doc: str


@dataclass(frozen=True)
class Record:
    """A struct or a union; one without fields is opaque."""

    name: str
    is_union: bool
    fields: tuple[Member, ...]
    doc: str


@dataclass(frozen=True)
class Function:
    """An exported function, or the type of a callback."""

    name: str
    result: CType
    parameters: tuple[Member, ...]
    doc: str


@dataclass
class Header:
    """All declarations of the headers, in their order."""

    version: dict[str, int] = field(default_factory=dict)
    statuses: list[Constant] = field(default_factory=list)
    aliases: dict[str, str] = field(default_factory=dict)
    records: list[Record] = field(default_factory=list)
    opaque: list[Record] = field(default_factory=list)
    enumerations: list[Enumeration] = field(default_factory=list)
    callbacks: list[Function] = field(default_factory=list)
    functions: list[Function] = field(default_factory=list)

    @property
    def version_text(self) -> str:
        return ".".join(str(self.version[part]) for part in ("MAJOR", "MINOR", "PATCH"))

    def names_of_types(self) -> set[str]:
        named = [*self.records, *self.opaque, *self.callbacks]
        return {*PRIMITIVES, *self.aliases, *(item.name for item in named)}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    line: int


def comment_text(comment: str) -> str:
    """The words of a doc comment, one line each, without the marks."""
    lines = comment.removeprefix("/**<").removeprefix("/**").removesuffix("*/").split("\n")
    return "\n".join(re.sub(r"^\s*\* ?", "", line).rstrip() for line in lines).strip()


def is_plain(comment: str) -> bool:
    """True for comments that do not belong to a declaration: of a file, a page or a group."""
    return not comment.startswith("/**") or bool(PAGE_COMMENT.search(comment))


def tokens_of(text: str, name: str) -> list[Token]:
    for block in KNOWN_BLOCKS:
        # Blank lines replace a known block, so that line numbers stay the same.
        text = text.replace(block, "\n" * block.count("\n"), 1)
    tokens = []
    for match in TOKEN.finditer(text):
        kind = str(match.lastgroup)
        line = text.count("\n", 0, match.start()) + 1
        if kind == "unknown":
            raise HeaderError(f"{name}:{line}: unknown character {match.group()!r}")
        if kind != "blank" and not (kind == "comment" and is_plain(match.group())):
            tokens.append(Token(kind, match.group(), line))
    return tokens


class Reader:
    """One pass over the tokens of one header."""

    def __init__(self, path: Path, header: Header) -> None:
        self.name = path.name
        self.header = header
        self.tokens = tokens_of(path.read_text(encoding="ascii"), path.name)
        self.at = 0

    def fail(self, wanted: str) -> NoReturn:
        token = self.peek()
        raise HeaderError(f"{self.name}:{token.line}: {wanted} is expected, not {token.text!r}; "
                          "teach bindings/header_reader.py the new form")

    def peek(self) -> Token:
        end = Token("end", "the end", self.tokens[-1].line if self.tokens else 1)
        return self.tokens[self.at] if self.at < len(self.tokens) else end

    def accept(self, text: str) -> bool:
        found = self.peek().text == text
        self.at += found
        return found

    def require(self, *texts: str) -> None:
        for text in texts:
            if not self.accept(text):
                self.fail(f'"{text}"')

    def take(self, kind: str, wanted: str) -> str:
        token = self.peek()
        if token.kind != kind:
            self.fail(wanted)
        self.at += 1
        return token.text

    def doc(self, mark: str = "/**") -> str:
        """The doc comment at the current token, or an empty text."""
        token = self.peek()
        is_trailing = token.text.startswith("/**<")
        if token.kind != "comment" or is_trailing != (mark == "/**<"):
            return ""
        self.at += 1
        return comment_text(token.text)

    # ---- Types ------------------------------------------------------------------------------

    def read_type(self) -> CType:
        is_const = self.accept("const")
        base = self.take("word", "a type")
        if base not in self.header.names_of_types():
            self.at -= 1
            self.fail("a known type")
        return CType(base, is_const, self.accept("*"))

    def read_member(self) -> Member:
        doc = self.doc()
        member_type = self.read_type()
        name = self.take("word", "a name")
        if self.accept("["):
            length = int(self.take("number", "a number"))
            self.require("]")
            member_type = CType(member_type.base, member_type.const, member_type.pointer, length)
        is_nothing = member_type.base == "void" and not member_type.pointer
        if is_nothing or (member_type.pointer and member_type.length is not None):
            self.fail("a type that a record or a call can hold")
        return Member(name, member_type, doc)

    def read_parameters(self) -> tuple[Member, ...]:
        self.require("(")
        if self.accept("void"):
            if self.accept(")"):
                return ()
            self.at -= 1
        parameters = [self.read_member()]
        while self.accept(","):
            parameters.append(self.read_member())
        self.require(")")
        for parameter in parameters:
            if parameter.type.length is not None:
                self.fail("a parameter that is no array")
        return tuple(parameters)

    # ---- Declarations -----------------------------------------------------------------------

    def read_record(self, is_union: bool, doc: str) -> None:
        name = self.take("word", "a name")
        members = []
        if self.accept("{"):
            while not self.accept("}"):
                members.append(self.read_member())
                self.require(";")
            if not members:
                self.fail("a record with fields")
        self.require(name, ";")
        record = Record(name, is_union, tuple(members), doc)
        (self.header.records if members else self.header.opaque).append(record)

    def read_callback(self, doc: str) -> None:
        result = self.read_type()
        self.require("(", "RGEN_CALL", "*")
        name = self.take("word", "a name")
        self.require(")")
        parameters = self.read_parameters()
        self.require(";")
        self.header.callbacks.append(Function(name, result, parameters, doc))

    def read_typedef(self, doc: str) -> None:
        if self.accept("struct"):
            self.read_record(False, doc)
        elif self.accept("union"):
            self.read_record(True, doc)
        elif self.accept("int32_t"):
            self.header.aliases[self.take("word", "a name")] = "int32_t"
            self.require(";")
        else:
            self.read_callback(doc)

    def read_enumeration(self, doc: str) -> None:
        name = self.take("word", "a name")
        self.require("{")
        constants = []
        while not self.accept("}"):
            constant = self.take("word", "a name")
            self.require("=")
            value = int(self.take("number", "a number"))
            is_last = not self.accept(",")
            constants.append(Constant(constant, value, self.doc("/**<")))
            if is_last and self.peek().text != "}":
                self.fail('"}"')
        self.require(";")
        self.header.enumerations.append(Enumeration(name, tuple(constants), doc))

    def read_function(self, doc: str) -> None:
        result = self.read_type()
        self.require("RGEN_CALL")
        name = self.take("word", "a name")
        parameters = self.read_parameters()
        self.require(";")
        if not doc:
            self.fail(f"a doc comment of {name}")
        self.header.functions.append(Function(name, result, parameters, doc))

    def read_directive(self, doc: str) -> None:
        text = self.take("directive", "a directive")
        version, status = VERSION.fullmatch(text), STATUS.fullmatch(text)
        if version:
            self.header.version[version.group(1)] = int(version.group(2))
        elif status:
            number = int(status.group(2), 16)
            signed = number - (1 << 32) if number >= 1 << 31 else number
            self.header.statuses.append(Constant(status.group(1), signed, doc))
        elif not KNOWN_DIRECTIVES.fullmatch(text):
            self.at -= 1
            self.fail("a known directive")

    def read_all(self) -> None:
        while self.at < len(self.tokens):
            doc = self.doc()
            if self.accept("typedef"):
                self.read_typedef(doc)
            elif self.accept("enum"):
                self.read_enumeration(doc)
            elif self.accept("RGEN_API"):
                self.read_function(doc)
            else:
                self.read_directive(doc)


def summary(doc: str) -> str:
    """The first paragraph of a comment as one line."""
    paragraph = re.split(r"\n\s*\n|\n@", doc.strip())[0]
    return " ".join(paragraph.split())


def read_headers(folder: Path) -> Header:
    """All declarations of the headers in a folder; raises HeaderError."""
    header = Header()
    for name in HEADER_NAMES:
        Reader(folder / name, header).read_all()
    if set(header.version) != {"MAJOR", "MINOR", "PATCH"}:
        raise HeaderError("rgen.h: the version is not complete")
    return header

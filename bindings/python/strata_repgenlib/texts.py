"""Converts texts to the XML content that the library reads, and back.

SPDX-License-Identifier: MIT
"""

from __future__ import annotations

import re

_NAMED = {"amp": "&", "lt": "<", "gt": ">", "quot": '"', "apos": "'"}
_REFERENCE = re.compile(r"&(amp|lt|gt|quot|apos|#[0-9]{1,8}|#x[0-9a-fA-F]{1,7});")
_NUMBER = re.compile(r"&#(?:x([0-9a-fA-F]+)|([0-9]+));")
# "&", with the whole reference if it starts one.
_AMPERSAND = re.compile(r"&((?:#[0-9]+|#x[0-9a-fA-F]+|[^#&;< \t\r\n][^&;< \t\r\n]*);)?")
# For the library a name extends to the next ";", with any characters in between.
_UNKNOWN = re.compile(r"&(?!#|(?:amp|lt|gt|quot|apos);)[^;]*;")
_EDGES = re.compile(r"\A[ \t\r\n]+|[ \t\r\n]+\Z")


def escaped(text: str) -> str:
    """The XML content that a report shows as this text."""
    return text.replace("&", "&amp;")


def escaped_twice(text: str) -> str:
    """The same for persistent data, which is decoded twice. The library also removes white space at
    the edges unless it is written as references."""
    def references(match: re.Match[str]) -> str:
        return "".join(f"&#{ord(letter)};" for letter in match[0])

    return escaped(_EDGES.sub(references, escaped(text)))


# Characters that XML does not allow. The surrogates are bytes of a template that are not UTF-8.
_UNSTORABLE = re.compile("[\x01-\x08\x0b\x0c\x0e-\x1f\udc80-\udcff\ufffe\uffff]")

# The library truncates longer persistent texts, without an error.
LONGEST_STORED = 10_000_000
# It loses longer persistent names. The limit is for the file, where a letter takes up to six bytes.
LONGEST_STORED_NAME = 1_000_000


def storable(text: str) -> str:
    """Replaces characters that XML does not allow by U+FFFD: a single one in the persistent data
    file or in a template would make the library lose all references after it."""
    return _UNSTORABLE.sub("\ufffd", text)


def _held_markup(content: str) -> str:
    """The same for markup, whose references may stand for such a character."""
    def meant(match: re.Match[str]) -> str:
        # Eight digits are enough for every character; Python limits the digits that int() reads.
        digits = (match[1] or match[2]).lstrip("0")[:8]
        number = int(digits or "0", 16 if match[1] else 10)
        is_character = number <= 0x10FFFF and not 0xD800 <= number <= 0xDFFF
        is_kept = number and is_character and storable(chr(number)) == chr(number)
        return match[0] if is_kept else "&#xFFFD;"

    return _NUMBER.sub(meant, storable(content))


def checked_markup(content: str, what: str) -> str:
    """The same; ValueError for a reference that XML does not define, which would do the same
    damage."""
    held = _held_markup(content)
    unknown = _UNKNOWN.search(held, 0, held.rfind(";") + 1)
    if unknown:
        raise ValueError(f"{what} holds the unknown reference {unknown[0][:80]!r}")
    return held


def require_storable(length: int, longest: int, what: str) -> None:
    if length > longest:
        raise ValueError(f"{what} is too long for persistent data: {length:,} of {longest:,} bytes")


def as_markup(original: str, translation: str) -> str:
    """Escapes a translation, which becomes part of a template: characters of markup count as markup
    only if the original text contains them, and nothing may damage the rest of the template."""
    def reference(match: re.Match[str]) -> str:
        if not match[1]:
            return "&amp;"
        is_known = match[1][0] == "#" or match[1][:-1] in _NAMED
        return match[0] if is_known else "&amp;" + match[1]

    if "&" not in original:
        translation = escaped(translation)
    translation = _held_markup(_AMPERSAND.sub(reference, translation))
    if "<" not in original:
        translation = translation.replace("<", "&lt;")
    if ">" not in original:
        translation = translation.replace(">", "&gt;")
    # The end of a CDATA section in the translation stays.
    if "<![CDATA[" not in translation:
        translation = translation.replace("]]>", "]]&gt;")
    # In an attribute, the quotes of a marked text require that apostrophes enclose the value.
    if "'" not in original:
        translation = translation.replace("'", "&#39;")
    return translation


def without_references(content: str) -> str:
    """The text of XML content; an "&" that starts no reference stays."""
    def meant(match: re.Match[str]) -> str:
        name = match[1]
        if name in _NAMED:
            return _NAMED[name]
        number = int(name[2:], 16) if name.startswith("#x") else int(name[1:])
        is_character = 0 < number <= 0x10FFFF and not 0xD800 <= number <= 0xDFFF
        return chr(number) if is_character else match[0]

    return _REFERENCE.sub(meant, content)


def encoded(text: str, what: str) -> bytes:
    """The text in UTF-8. UnicodeEncodeError for lone surrogates; ValueError for a zero byte, at
    which the library would truncate the text."""
    if not isinstance(text, str):
        raise TypeError(f"{what} must be a str, not {type(text).__name__}")
    if "\0" in text:
        raise ValueError(f"{what} holds a zero byte: {text!r}")
    return text.encode("utf-8")


def decoded(content: bytes) -> str:
    """Bytes of the library as a text; bytes that are not UTF-8 become surrogates."""
    return content.decode("utf-8", "surrogateescape")

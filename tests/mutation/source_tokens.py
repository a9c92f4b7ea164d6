"""C++ text as tokens and statements, as far as making faults needs it.

SPDX-License-Identifier: MIT
"""

import re
from dataclasses import dataclass

PATTERN = re.compile(r"""
    (?P<skip>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#[^\n]*)
  | (?P<text>"(?:\\.|[^"\\\n])*")
  | (?P<character>'(?:\\.|[^'\\\n])')
  | (?P<number>\b(?:0x[0-9A-Fa-f]+|\d[\d.]*)[uUlLfF]*\b)
  | (?P<name>[A-Za-z_]\w*)
  | (?P<sign><<=|>>=|->|::|\+\+|--|<=|>=|==|!=|&&|\|\||\+=|-=|\*=|/=|\|=|&=|<<|\[\[|\]\]|.)
    """, re.X | re.S | re.M)
OPENING = {"(": ")", "{": "}", "[": "]"}
BLOCK_WORDS = {"else", "do", "try"}
TYPE_WORDS = {"namespace", "struct", "class", "enum", "union", "using", "friend", "template",
              "static_assert", "typedef", "case", "default", "public", "private", "protected",
              "extern", "break", "continue", "throw"}
CONTROL_WORDS = {"if", "for", "while", "switch", "catch"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


def code_tokens(text):
    """The tokens without comments, blanks and lines of the preprocessor. ">>" comes as two tokens
    unless blanks are around it."""
    tokens = []
    for match in PATTERN.finditer(text):
        if match.lastgroup != "skip":
            tokens.append(Token(match.lastgroup, match.group(), match.start(), match.end()))
    joined = []
    for token in tokens:
        previous = joined[-1] if joined else None
        if token.text == ">" and previous and previous.text == ">" \
                and previous.end == token.start and text[previous.start - 1] == " " \
                and text[token.end:token.end + 1] == " ":
            joined[-1] = Token("sign", ">>", previous.start, token.end)
        else:
            joined.append(token)
    return joined


def matching(tokens, index):
    """The index of the bracket that closes the one at `index`."""
    closing = OPENING[tokens[index].text]
    depth = 0
    for place in range(index, len(tokens)):
        if tokens[place].text == tokens[index].text:
            depth += 1
        elif tokens[place].text == closing:
            depth -= 1
            if depth == 0:
                return place
    raise ValueError(f"no bracket closes the one at {tokens[index].start}")


def opens_code(tokens, start, brace):
    """Whether the brace begins a function's body or a block in one."""
    words = [token.text for token in tokens[start:brace]]
    if not words:
        return True
    if words[0] in {"namespace", "struct", "class", "enum", "union"}:
        return False
    if words[-1] in BLOCK_WORDS | {"const", "noexcept", "override", ")"}:
        return True
    # A constructor's list of members ends in a closing bracket, too.
    return "(" in words and words[-1] == "}" and ":" in words


def statements(tokens):
    """Pairs of the first and the last token of each simple statement in a function's body that can
    be left out, and of each return."""
    yield from _statements(tokens, 0, len(tokens), False)


def _statements(tokens, index, end, in_code):
    start = index
    while index < end:
        text = tokens[index].text
        if text == "(" or text == "[":
            closing = matching(tokens, index)
            # The body of a lambda among the arguments.
            yield from _lambda_bodies(tokens, index + 1, closing)
            index = closing + 1
            if start < index - 1 and tokens[start].text in CONTROL_WORDS and text == "(":
                start = index
            continue
        if text == "{":
            closing = matching(tokens, index)
            code = opens_code(tokens, start, index)
            if code or tokens[start].text in {"namespace", "struct", "class"}:
                yield from _statements(tokens, index + 1, closing, code)
                start = closing + 1
            index = closing + 1
            continue
        if text == ";":
            if in_code and _can_go(tokens, start, index):
                yield start, index
            start = index + 1
        elif text == ":" and tokens[start].text in {"case", "default", "public", "private"}:
            start = index + 1
        elif text in BLOCK_WORDS and index == start:
            start = index + 1
        index += 1


def _lambda_bodies(tokens, index, end):
    while index < end:
        if tokens[index].text == "{" and tokens[index - 1].text == ")":
            closing = matching(tokens, index)
            yield from _statements(tokens, index + 1, closing, True)
            index = closing
        index += 1


def _can_go(tokens, start, last):
    words = [token.text for token in tokens[start:last]]
    if not words or words[0] in TYPE_WORDS | CONTROL_WORDS:
        return False
    if words[0] == "return":
        return len(words) > 1
    if _declares(tokens, start, last) and "lock_guard" not in words:
        return False
    return "(" in words or words[0] == "delete" or \
        any(word in {"=", "+=", "-=", "|=", "&=", "++", "--"} for word in words)


def _declares(tokens, start, last):
    """Whether the statement makes a variable with a value: without it nothing compiles."""
    if tokens[start].text in {"const", "constexpr", "static", "auto", "thread_local"}:
        return True
    for index in range(start + 2, last):
        if tokens[index].text == "=":
            return tokens[index - 1].kind == "name" and \
                (tokens[index - 2].kind == "name" or tokens[index - 2].text in {"*", "&", ">"})
        if tokens[index].text in OPENING:
            return False
    return False

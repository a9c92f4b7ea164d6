// The tokens of an XPath 1.0 expression with their places. Nothing is refused here; a character
// that begins no token is one of its own.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

enum class TokenKind {
    /// A name test: "property", "svg:*".
    Name,
    /// The name of a function or node type; "(" follows.
    Function,
    NodeType,
    /// "ancestor" before "::".
    Axis,
    /// "$name".
    Variable,
    /// With its quotes; without the second one when it is missing.
    Literal,
    Number,
    /// "and", "or", "div", "mod", "*" between operands, and all operators of signs except "/".
    Operator,
    /// "/", "//".
    Slash,
    /// "(", ")", "[", "]", ",", "@", "::", ".", "..", the name test "*".
    Sign,
    /// A character without a meaning in XPath 1.0: "&", "{", ";".
    Unknown
};

struct Token {
    TokenKind kind = TokenKind::Unknown;
    std::size_t offset = 0;
    std::string_view text;

    std::size_t end() const { return offset + text.size(); }
    bool is(std::string_view other) const { return text == other; }
};

std::vector<Token> tokensOf(std::string_view expression);

/// The text of a literal without its quotes.
std::string_view literalText(const Token& literal);

/// Tokens [begin, end) by their indices.
struct TokenRange {
    std::size_t begin = 0;
    std::size_t end = 0;

    std::size_t size() const { return end - begin; }
};

/// The index of the bracket that closes the one at `opening`, or the number of tokens.
std::size_t closingBracket(const std::vector<Token>& tokens, std::size_t opening);

/// The arguments of a call; `function` is the index of its name. A missing ")" ends the last one.
std::vector<TokenRange> argumentsOf(const std::vector<Token>& tokens, std::size_t function);

/// A part of an attribute value template: the expression between "{" and "}".
struct EmbeddedExpression {
    std::size_t offset = 0;
    std::string_view text;
};

/// A brace of an attribute value template that has no counterpart.
struct UnmatchedBrace {
    std::size_t offset = 0;
    char brace = '{';
};

struct ValueTemplate {
    std::vector<EmbeddedExpression> expressions;
    std::vector<UnmatchedBrace> unmatched;
};

/// Reads an attribute value template as the library does.
ValueTemplate readValueTemplate(std::string_view text);

}  // namespace cli

// SPDX-License-Identifier: MIT
#include "templates/xpath_foreign.h"

#include <array>

namespace cli {
namespace {

struct ForeignSign {
    /// One to three tokens without blanks between them.
    std::string_view sign;
    std::string_view what;
    std::string_view advice;
};

constexpr std::string_view noOperator = "is not an operator";
constexpr std::string_view noMeaning = "has no meaning in XPath";
constexpr std::string_view notInXPath1 = "is not in XPath 1.0";
constexpr std::string_view plainQuotes = "write ' or \"";
constexpr std::string_view noBraces = "only attributes of output elements have braces; remove them";

/// The longer ones first.
constexpr std::array signs = {
    ForeignSign{"===", noOperator, "write \"=\""},
    ForeignSign{"!==", noOperator, "write \"!=\""},
    ForeignSign{"==", noOperator, "write \"=\""},
    ForeignSign{"&&", noOperator, "write \"and\""},
    ForeignSign{"||", noOperator, "write \"or\", or concat() for texts"},
    ForeignSign{"<>", noOperator, "write \"!=\""},
    ForeignSign{"=>", noOperator, "write \">=\""},
    ForeignSign{"=<", noOperator, "write \"<=\""},
    ForeignSign{":=", noOperator, "write \"=\" to compare, xsl:variable to assign"},
    ForeignSign{"++", noOperator, "write \"+ 1\""},
    ForeignSign{"&", noOperator, "write \"and\""},
    ForeignSign{"!", noOperator, "write not(...)"},
    ForeignSign{"%", noOperator, "write \"mod\""},
    ForeignSign{"?", noOperator, "use xsl:choose"},
    ForeignSign{"~", noOperator, "use contains() or starts-with()"},
    ForeignSign{"^", noOperator, "multiply"},
    ForeignSign{"{", noMeaning, noBraces},
    ForeignSign{"}", noMeaning, noBraces},
    ForeignSign{";", noMeaning, "remove it"},
    ForeignSign{"\\", noMeaning, "write \"/\" in a path, \"div\" to divide"},
    ForeignSign{"`", noMeaning, plainQuotes},
    ForeignSign{"\u2018", noMeaning, plainQuotes},
    ForeignSign{"\u2019", noMeaning, plainQuotes},
    ForeignSign{"\u201c", noMeaning, plainQuotes},
    ForeignSign{"\u201d", noMeaning, plainQuotes},
    ForeignSign{"\u201e", noMeaning, plainQuotes},
    ForeignSign{"\u00ab", noMeaning, plainQuotes},
    ForeignSign{"\u00bb", noMeaning, plainQuotes},
    ForeignSign{"\u2013", noOperator, "write \"-\""},
    ForeignSign{"\u2212", noOperator, "write \"-\""},
    ForeignSign{"\u2260", noOperator, "write \"!=\""},
    ForeignSign{"\u2264", noOperator, "write \"<=\""},
    ForeignSign{"\u2265", noOperator, "write \">=\""},
    ForeignSign{"\u00a0", noMeaning, "this blank is a no-break space; write a plain one"},
    ForeignSign{"#", noMeaning, "remove it"},
};

struct ForeignWord {
    std::string_view word;
    std::string_view advice;
};

/// Between operands.
constexpr std::array operatorWords = {
    ForeignWord{"eq", "write \"=\""},
    ForeignWord{"ne", "write \"!=\""},
    ForeignWord{"lt", "write \"&lt;\""},
    ForeignWord{"gt", "write \"&gt;\""},
    ForeignWord{"le", "write \"&lt;=\""},
    ForeignWord{"ge", "write \"&gt;=\""},
    ForeignWord{"is", "compare generate-id() of both"},
    ForeignWord{"idiv", "write floor(A div B)"},
    ForeignWord{"union", "write \"|\""},
    ForeignWord{"to", "use a template that calls itself"},
    ForeignWord{"intersect", "use a predicate"},
    ForeignWord{"except", "use a predicate"},
    ForeignWord{"then", "use xsl:choose"},
    ForeignWord{"else", "use xsl:choose"},
    ForeignWord{"return", "use xsl:for-each"},
    ForeignWord{"in", "use xsl:for-each"},
    ForeignWord{"satisfies", "use a predicate"},
    ForeignWord{"instance", "use number() or string()"},
    ForeignWord{"cast", "use number() or string()"},
    ForeignWord{"castable", "use number() or string()"},
    ForeignWord{"treat", "use number() or string()"},
    ForeignWord{"AND", "write it in small letters"},
    ForeignWord{"OR", "write it in small letters"},
    ForeignWord{"DIV", "write it in small letters"},
    ForeignWord{"MOD", "write it in small letters"},
};

/// Before a variable.
constexpr std::array clauseWords = {
    ForeignWord{"for", "use xsl:for-each"},
    ForeignWord{"some", "use a predicate"},
    ForeignWord{"every", "use a predicate and not()"},
    ForeignWord{"let", "use xsl:variable"},
};

SyntaxMistake mistakeAbout(std::size_t offset, std::string_view text, std::string_view what,
                           std::string_view advice) {
    return {offset, text.size(), "\"" + std::string(text) + "\" " + std::string(what),
            std::string(advice)};
}

/// The tokens from `first` on that touch each other and spell `sign`.
bool spell(const std::vector<Token>& tokens, std::size_t first, std::string_view sign) {
    std::string_view rest = sign;
    for (std::size_t i = first; !rest.empty(); ++i) {
        if (i >= tokens.size() || tokens[i].kind == TokenKind::Literal) return false;
        if (i > first && tokens[i].offset != tokens[i - 1].end()) return false;
        if (rest.substr(0, tokens[i].text.size()) != tokens[i].text) return false;
        rest.remove_prefix(tokens[i].text.size());
    }
    return true;
}

std::optional<SyntaxMistake> foreignSign(const std::vector<Token>& tokens, std::size_t i) {
    const TokenKind kind = tokens[i].kind;
    if (kind != TokenKind::Operator && kind != TokenKind::Unknown) return std::nullopt;
    for (const auto& [sign, what, advice] : signs) {
        if (spell(tokens, i, sign)) return mistakeAbout(tokens[i].offset, sign, what, advice);
    }
    return std::nullopt;
}

bool endsOperand(const Token& token) {
    switch (token.kind) {
        case TokenKind::Name:
        case TokenKind::Variable:
        case TokenKind::Literal:
        case TokenKind::Number:
            return true;
        case TokenKind::Sign:
            return token.is(")") || token.is("]") || token.is(".") || token.is("..") ||
                   token.is("*");
        default:
            return false;
    }
}

template <typename Words>
std::optional<SyntaxMistake> foundIn(const Words& words, const Token& token) {
    for (const auto& [word, advice] : words) {
        if (token.is(word)) return mistakeAbout(token.offset, word, notInXPath1, advice);
    }
    return std::nullopt;
}

std::optional<SyntaxMistake> foreignWord(const std::vector<Token>& tokens, std::size_t i) {
    const Token& token = tokens[i];
    if (token.kind == TokenKind::Function && token.is("if")) {
        const std::size_t end = closingBracket(tokens, i + 1);
        const bool isCondition = end + 1 < tokens.size() && tokens[end + 1].is("then");
        if (isCondition) return mistakeAbout(token.offset, "if", notInXPath1, "use xsl:choose");
    }
    const bool isWord = token.kind == TokenKind::Name || token.kind == TokenKind::Function;
    if (!isWord) return std::nullopt;
    const bool isAfterOperand = i > 0 && endsOperand(tokens[i - 1]);
    if (isAfterOperand) return foundIn(operatorWords, token);
    const bool isBeforeVariable =
        i + 1 < tokens.size() && tokens[i + 1].kind == TokenKind::Variable;
    return isBeforeVariable ? foundIn(clauseWords, token) : std::nullopt;
}

}  // namespace

std::optional<SyntaxMistake> foreignSyntax(const std::vector<Token>& tokens) {
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (auto mistake = foreignSign(tokens, i)) return mistake;
        if (auto mistake = foreignWord(tokens, i)) return mistake;
    }
    return std::nullopt;
}

}  // namespace cli

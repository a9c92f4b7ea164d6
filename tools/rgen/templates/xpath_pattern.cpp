// Predicates of a pattern are expressions, so only the tokens outside of them are looked at.
//
// SPDX-License-Identifier: MIT
#include "templates/xpath_pattern.h"

#include <string>

namespace cli {
namespace {

SyntaxMistake about(const Token& token, const std::string& what, const std::string& advice) {
    return {token.offset, token.text.size(), what, advice};
}

std::string quoted(const Token& token) {
    return "\"" + std::string(token.text) + "\"";
}

std::optional<SyntaxMistake> brokenCall(const std::vector<Token>& tokens, std::size_t i) {
    const Token& token = tokens[i];
    if (!token.is("key") && !token.is("id"))
        return about(token, "a pattern cannot call " + quoted(token),
                     "write the condition in a predicate: property[...]");
    if (i > 0 && !tokens[i - 1].is("|"))
        return about(token, quoted(token) + " can only begin a pattern", {});
    for (const TokenRange& argument : argumentsOf(tokens, i)) {
        if (argument.size() != 1 || tokens[argument.begin].kind != TokenKind::Literal)
            return about(token, "arguments of " + quoted(token) + " in a pattern must be texts",
                         "write the condition in a predicate: property[...]");
    }
    return std::nullopt;
}

std::optional<SyntaxMistake> brokenAt(const std::vector<Token>& tokens, std::size_t i) {
    const Token& token = tokens[i];
    const std::string condition = "write the condition in a predicate: property[...]";
    switch (token.kind) {
        case TokenKind::Function:
            return brokenCall(tokens, i);
        case TokenKind::Axis:
            if (token.is("child") || token.is("attribute")) return std::nullopt;
            return about(token, "a pattern has only the axes child and attribute", condition);
        case TokenKind::Variable:
        case TokenKind::Number:
        case TokenKind::Literal:
            return about(token, "a pattern cannot contain " + quoted(token), condition);
        case TokenKind::Operator:
            if (token.is("|")) return std::nullopt;
            return about(token, quoted(token) + " cannot join patterns",
                         "write \"|\" between alternatives, conditions in a predicate");
        case TokenKind::Sign:
            if (token.is(".") || token.is(".."))
                return about(token, "a pattern has no step " + quoted(token),
                             "write the name of the node, or \"*\"");
            if (token.is("("))
                return about(token, "a pattern has no brackets", "write the whole alternatives");
            return std::nullopt;
        default:
            return std::nullopt;
    }
}

}  // namespace

std::optional<SyntaxMistake> brokenPatternRule(const std::vector<Token>& tokens) {
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].is("[") && tokens[i].kind == TokenKind::Sign) {
            i = closingBracket(tokens, i);
            continue;
        }
        if (auto mistake = brokenAt(tokens, i)) return mistake;
        const bool isCall =
            tokens[i].kind == TokenKind::Function || tokens[i].kind == TokenKind::NodeType;
        if (isCall) i = closingBracket(tokens, i + 1);
    }
    return std::nullopt;
}

}  // namespace cli

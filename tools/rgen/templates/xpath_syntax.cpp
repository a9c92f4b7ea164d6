// Looks for what is not XPath 1.0 at all first (other languages, later versions), then reads the
// tokens in turn and stops at the first one that cannot follow. The rules of patterns come last.
//
// SPDX-License-Identifier: MIT
#include "templates/xpath_syntax.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "templates/xpath_foreign.h"
#include "templates/xpath_pattern.h"
#include "templates/xpath_sequence.h"
#include "templates/xpath_tokens.h"

namespace cli {
namespace {

std::optional<SyntaxMistake> openText(const std::vector<Token>& tokens) {
    if (tokens.empty() || tokens.back().kind != TokenKind::Literal) return std::nullopt;
    const Token& last = tokens.back();
    const bool isClosed = last.text.size() > 1 && last.text.back() == last.text.front();
    if (isClosed) return std::nullopt;
    const std::string quote(1, last.text.front());
    const std::string other = quote == "'" ? "double" : "single";
    return SyntaxMistake{last.offset, last.text.size(),
                         "the text that begins with " + quote + " does not end",
                         "a text that contains " + quote + " is written in " + other + " quotes"};
}

SyntaxMistake forbiddenVariable(const std::vector<Token>& tokens, ExpressionKind kind) {
    const auto variable = std::find_if(tokens.begin(), tokens.end(), [](const Token& token) {
        return token.kind == TokenKind::Variable;
    });
    const Token& token = variable == tokens.end() ? tokens.front() : *variable;
    const bool isPattern = kind == ExpressionKind::Pattern;
    return {token.offset, token.text.size(),
            std::string(isPattern ? "match of xsl:template" : "xsl:key") + " cannot use variables",
            isPattern ? "compare with xsl:if or xsl:choose inside the template"
                      : "write the value itself"};
}

SyntaxMistake whereTheParserStopped(std::string_view expression, const CompileVerdict& verdict) {
    const std::size_t at = std::min(verdict.stoppedAt, expression.size());
    const std::string_view rest = expression.substr(at);
    const std::vector<Token> tokens = tokensOf(rest);
    if (tokens.empty()) return {0, expression.size(), "it is not complete", {}};
    return {at + tokens[0].offset,
            tokens[0].text.size(),
            "\"" + std::string(tokens[0].text) + "\" cannot follow here",
            {}};
}

}  // namespace

SyntaxMistake explainRefusal(std::string_view expression, ExpressionKind kind,
                             const CompileVerdict& verdict) {
    const std::vector<Token> tokens = tokensOf(expression);
    if (tokens.empty())
        return {0, expression.size(), "it is empty", "write \".\" for the node itself"};
    if (verdict.isTooDeep)
        return {0, expression.size(), "it has too many brackets inside each other", {}};
    if (verdict.isForbiddenVariable) return forbiddenVariable(tokens, kind);
    if (const auto mistake = foreignSyntax(tokens)) return *mistake;
    if (const auto mistake = openText(tokens)) return *mistake;
    if (const auto mistake = firstTokenOutOfPlace(tokens)) return *mistake;
    const bool isPattern = kind == ExpressionKind::Pattern;
    if (const auto mistake = isPattern ? brokenPatternRule(tokens) : std::nullopt) return *mistake;
    return whereTheParserStopped(expression, verdict);
}

}  // namespace cli

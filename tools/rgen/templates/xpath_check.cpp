// The XPath parser decides whether an expression is one; only then its names and paths are
// checked.
//
// SPDX-License-Identifier: MIT
#include "templates/xpath_check.h"

#include <algorithm>

#include "templates/xpath_compile.h"
#include "templates/xpath_names.h"
#include "templates/xpath_paths.h"
#include "templates/xpath_syntax.h"
#include "templates/xpath_tokens.h"

namespace cli {
namespace {

/// One of the expressions of an attribute, which is the whole of it except in value templates.
struct Part {
    std::size_t offset;
    std::string_view text;
};

std::vector<Part> partsOf(std::string_view expression, ExpressionKind kind) {
    if (kind != ExpressionKind::ValueTemplate) return {{0, expression}};
    std::vector<Part> parts;
    for (const EmbeddedExpression& embedded : readValueTemplate(expression).expressions)
        parts.push_back({embedded.offset, embedded.text});
    return parts;
}

ExpressionProblem refusal(std::string_view expression, ExpressionKind kind,
                          const CompileVerdict& verdict) {
    const SyntaxMistake mistake = explainRefusal(
        expression, kind == ExpressionKind::ValueTemplate ? ExpressionKind::Expression : kind,
        verdict);
    std::string advice = mistake.advice;
    if (advice.empty() && kind == ExpressionKind::ValueTemplate)
        advice = "a brace that is no expression is written \"{{\" or \"}}\"";
    return {Severity::Error,
            mistake.offset,
            mistake.length,
            "bad-expression",
            "bad XPath " + shownExpression(expression, mistake.offset) + ": " + mistake.what,
            advice};
}

bool comesBefore(const ExpressionProblem& one, const ExpressionProblem& other) {
    return one.offset < other.offset;
}

std::vector<ExpressionProblem> checkPart(std::string_view expression, ExpressionKind kind,
                                         const ExpressionNames& names) {
    const bool isEmbedded = kind == ExpressionKind::ValueTemplate;
    const CompileVerdict verdict = compileExpression(
        expression, isEmbedded ? ExpressionKind::Expression : kind, names.variablesAllowed);
    if (!verdict.isAccepted) return {refusal(expression, kind, verdict)};
    const std::vector<Token> tokens = tokensOf(expression);
    std::vector<ExpressionProblem> problems = checkNames(expression, tokens, names);
    if (names.onlyDataDocument) {
        for (ExpressionProblem& problem : pathsThatMatchNothing(expression, tokens))
            problems.push_back(std::move(problem));
    }
    std::stable_sort(problems.begin(), problems.end(), comesBefore);
    return problems;
}

std::vector<ExpressionProblem> unmatchedBraces(std::string_view text) {
    std::vector<ExpressionProblem> problems;
    for (const UnmatchedBrace& unmatched : readValueTemplate(text).unmatched) {
        const bool opens = unmatched.brace == '{';
        problems.push_back({Severity::Error, unmatched.offset, 1, "unmatched-brace",
                            opens ? "\"{\" in an attribute begins an expression"
                                  : "\"}\" in an attribute ends no expression",
                            opens ? "write \"{{\"" : "write \"}}\""});
    }
    return problems;
}

ExpressionProblem emptyBraces(std::size_t offset) {
    return {Severity::Warning,
            offset - 1,
            2,
            "empty-expression",
            "\"{}\" in an attribute is an expression without content, which writes nothing",
            "write \"{{}}\""};
}

/// Calls `visit` with the tokens of each expression and the index of each call in it.
template <typename Visit>
void forEachToken(std::string_view expression, ExpressionKind kind, Visit visit) {
    for (const Part& part : partsOf(expression, kind)) {
        const std::vector<Token> tokens = tokensOf(part.text);
        for (std::size_t i = 0; i < tokens.size(); ++i)
            visit(tokens, i);
    }
}

bool isCallOf(const Token& token, std::string_view function) {
    return token.kind == TokenKind::Function && token.is(function);
}

/// The first arguments of a function; an empty text for one that is computed.
std::vector<std::string> firstArguments(std::string_view expression, ExpressionKind kind,
                                        std::string_view function) {
    std::vector<std::string> found;
    forEachToken(expression, kind, [&](const std::vector<Token>& tokens, std::size_t i) {
        if (!isCallOf(tokens[i], function)) return;
        const Token* const argument = textArgument(tokens, i, 0);
        found.emplace_back(argument != nullptr ? literalText(*argument) : std::string_view());
    });
    return found;
}

}  // namespace

std::vector<ExpressionProblem> checkExpression(std::string_view expression, ExpressionKind kind,
                                               const ExpressionNames& names) {
    std::vector<ExpressionProblem> problems;
    if (kind == ExpressionKind::ValueTemplate) problems = unmatchedBraces(expression);
    for (const Part& part : partsOf(expression, kind)) {
        // The library skips "{}", but not braces with a blank between them.
        if (kind == ExpressionKind::ValueTemplate && part.text.empty()) {
            problems.push_back(emptyBraces(part.offset));
            continue;
        }
        for (ExpressionProblem& problem : checkPart(part.text, kind, names)) {
            problem.offset += part.offset;
            problems.push_back(std::move(problem));
        }
    }
    std::stable_sort(problems.begin(), problems.end(), comesBefore);
    return problems;
}

bool usesOtherDocuments(std::string_view expression, ExpressionKind kind) {
    bool found = false;
    forEachToken(expression, kind, [&found](const std::vector<Token>& tokens, std::size_t i) {
        const std::string_view name = tokens[i].text;
        const std::size_t colon = name.find(':');
        const bool isNodeSet =
            colon != std::string_view::npos && name.substr(colon + 1) == "node-set";
        found =
            found || (tokens[i].kind == TokenKind::Function && (name == "document" || isNodeSet));
    });
    return found;
}

std::vector<std::string> guardedFunctionsOf(std::string_view expression, ExpressionKind kind) {
    return firstArguments(expression, kind, "function-available");
}

std::vector<std::string> keysUsedBy(std::string_view expression, ExpressionKind kind) {
    return firstArguments(expression, kind, "key");
}

std::vector<std::string> variablesUsedBy(std::string_view expression, ExpressionKind kind) {
    std::vector<std::string> found;
    forEachToken(expression, kind, [&found](const std::vector<Token>& tokens, std::size_t i) {
        if (tokens[i].kind == TokenKind::Variable) found.emplace_back(tokens[i].text.substr(1));
    });
    return found;
}

}  // namespace cli

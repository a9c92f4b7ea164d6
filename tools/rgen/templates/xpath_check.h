// What is wrong with one XPath expression of a template, decided by the same XPath parser as in the
// library.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "templates/finding.h"

namespace cli {

enum class ExpressionKind {
    /// select, test, use of xsl:key, value of xsl:number.
    Expression,
    /// match of xsl:template, count and from of xsl:number.
    Pattern,
    /// match of xsl:key, which the library reads as an expression after "//".
    KeyPattern,
    /// An attribute value template: text with expressions in braces.
    ValueTemplate
};

/// Offset and length in bytes of the expression.
struct ExpressionProblem {
    Severity severity = Severity::Error;
    std::size_t offset = 0;
    std::size_t length = 0;
    std::string code;
    std::string what;
    std::string advice;
};

/// The names that an expression can use at its place in the template. They are compared as they are
/// written, with their prefixes.
struct ExpressionNames {
    /// Variables and parameters that are visible there.
    std::vector<std::string> variables;
    /// Not in xsl:key and in the match of xsl:template.
    bool variablesAllowed = true;
    /// Namespaces by their prefixes.
    std::map<std::string, std::string> prefixes;
    std::vector<std::string> keys;
    /// Of xsl:decimal-format; the one without a name is not in the list.
    std::vector<std::string> decimalFormats;
    /// Functions, as they are written, for which the template asks with function-available().
    std::set<std::string> guardedFunctions;
    /// Whether paths are compared with the data document: false when the template reads other
    /// documents (usesOtherDocuments) anywhere, since its patterns may match their nodes.
    bool onlyDataDocument = true;
};

/// In the order of their places. An expression that the library refuses has at least one error of
/// the code "bad-expression", one that it accepts has none.
std::vector<ExpressionProblem> checkExpression(std::string_view expression, ExpressionKind kind,
                                               const ExpressionNames& names);

/// Whether the expression calls document() or a node-set().
bool usesOtherDocuments(std::string_view expression, ExpressionKind kind);

/// The functions in the expression's calls of function-available().
std::vector<std::string> guardedFunctionsOf(std::string_view expression, ExpressionKind kind);

/// The keys that the expression uses, as they are written; an empty text for one that is computed.
std::vector<std::string> keysUsedBy(std::string_view expression, ExpressionKind kind);

/// The variables that the expression uses, without "$".
std::vector<std::string> variablesUsedBy(std::string_view expression, ExpressionKind kind);

}  // namespace cli

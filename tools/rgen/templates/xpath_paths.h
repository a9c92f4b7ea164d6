// Paths that select nothing in any data document: elements and attributes that it never has.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

#include "templates/xpath_check.h"
#include "templates/xpath_tokens.h"

namespace cli {

/// Warnings for the paths of an expression that the parser has accepted. Only names count: paths
/// like "comment()" belong to templates for all documents.
std::vector<ExpressionProblem> pathsThatMatchNothing(std::string_view expression,
                                                     const std::vector<Token>& tokens);

}  // namespace cli

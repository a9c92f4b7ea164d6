// The names in an XPath expression that the parser has accepted: functions, variables, prefixes,
// keys, decimal formats.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "templates/xpath_check.h"
#include "templates/xpath_tokens.h"

namespace cli {

/// In the order of their places.
std::vector<ExpressionProblem> checkNames(std::string_view expression,
                                          const std::vector<Token>& tokens,
                                          const ExpressionNames& names);

/// The expression in quotes for a message, shortened around the place when it is long.
std::string shownExpression(std::string_view expression, std::size_t place);

/// An argument of a call, counted from 0, when it is a text; otherwise null.
const Token* textArgument(const std::vector<Token>& tokens, std::size_t function,
                          std::size_t argument);

}  // namespace cli

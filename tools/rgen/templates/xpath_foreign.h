// Constructs of other languages and of later versions of XPath in an XPath 1.0 expression.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "templates/xpath_mistake.h"
#include "templates/xpath_tokens.h"

namespace cli {

/// Only for an expression that the parser has refused.
std::optional<SyntaxMistake> foreignSyntax(const std::vector<Token>& tokens);

}  // namespace cli

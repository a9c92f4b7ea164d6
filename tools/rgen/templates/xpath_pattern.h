// What an XPath expression may contain and a pattern may not.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "templates/xpath_mistake.h"
#include "templates/xpath_tokens.h"

namespace cli {

/// Only for a pattern that the parser has refused.
std::optional<SyntaxMistake> brokenPatternRule(const std::vector<Token>& tokens);

}  // namespace cli

// Reads the tokens of an XPath expression in turn: which one cannot follow those before it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "templates/xpath_mistake.h"
#include "templates/xpath_tokens.h"

namespace cli {

/// Nothing for an expression whose tokens follow each other as they may. Names are not checked.
std::optional<SyntaxMistake> firstTokenOutOfPlace(const std::vector<Token>& tokens);

}  // namespace cli

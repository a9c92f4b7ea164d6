// Why the XPath parser refuses an expression, in words.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "templates/xpath_check.h"
#include "templates/xpath_compile.h"
#include "templates/xpath_mistake.h"

namespace cli {

/// The first mistake of an expression that the parser has refused.
SyntaxMistake explainRefusal(std::string_view expression, ExpressionKind kind,
                             const CompileVerdict& verdict);

}  // namespace cli

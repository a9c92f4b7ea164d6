// What kind of value a template expects, guessed from the way in which it uses the value.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "templates/xpath_values.h"
#include "templates/xslt_expressions.h"

namespace cli {

/// "int", "size", "datetime", "bytes", "address"; empty for a text.
std::string hintOfUse(const TemplateExpression& expression, const ValueRequest& request);

}  // namespace cli

// The expressions of a stylesheet, and what is wrong with them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "templates/template_tree.h"
#include "templates/xpath_check.h"
#include "templates/xslt_names.h"

namespace cli {

/// An attribute that holds an expression, a pattern or an attribute value template.
struct TemplateExpression {
    xmlNode* element = nullptr;
    std::string attribute;
    ExpressionKind kind = ExpressionKind::Expression;
    std::string text;
    /// The variables and parameters that are visible there.
    std::vector<std::string> variables;
};

/// All of them, in document order.
std::vector<TemplateExpression> expressionsOf(const TemplateTree& tree, const XsltNames& names);

Findings expressionFindings(const TemplateTree& tree, const XsltNames& names,
                            const std::vector<TemplateExpression>& expressions);

}  // namespace cli

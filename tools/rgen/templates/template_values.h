// The values that a template asks for, with their places.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "templates/finding.h"
#include "templates/key_names.h"
#include "templates/template_tree.h"
#include "templates/xpath_values.h"
#include "templates/xslt_expressions.h"

namespace cli {

struct ValueUse {
    ValueRequest request;
    const TemplateExpression* expression = nullptr;
    /// The hint that the use suggests: "size", "datetime", "int"; empty for a text.
    std::string hint;
    TextPosition position;
};

/// The xsl:key elements of a template.
KeyDeclarations keyDeclarations(const XsltNames& names);

/// All of them, in document order. `expressions` must outlive the result.
std::vector<ValueUse> valueUses(const TemplateTree& tree, const XsltNames& names,
                                const std::vector<TemplateExpression>& expressions);

/// Names that the template asks for and `values` lacks: warnings where a similar value exists that
/// the template does not use, otherwise notes.
Findings missingValues(const TemplateTree& tree, const std::vector<ValueUse>& uses,
                       const KeyDeclarations& keys, const std::vector<std::string>& values);

/// Those of `values` for which the template never asks.
std::vector<std::string> unusedValues(const std::vector<ValueUse>& uses,
                                      const std::vector<std::string>& values);

}  // namespace cli

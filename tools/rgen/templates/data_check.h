// What goes wrong in a template when it runs with certain data: failures, messages, "NaN" and empty
// texts, values that it asks for in vain and values that it does not use.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "templates/finding.h"
#include "templates/template_run.h"
#include "templates/template_tree.h"
#include "templates/xslt_expressions.h"
#include "templates/xslt_names.h"

namespace cli {

/// What a run says about the template: why it failed, and its messages as notes.
Findings runFindings(const TemplateTree& tree, const TemplateRun& run);

/// The same for a run with this data document, and what the page lacks.
Findings dataFindings(const TemplateTree& tree, const XsltNames& names,
                      const std::vector<TemplateExpression>& expressions,
                      const std::string& dataDocument);

}  // namespace cli

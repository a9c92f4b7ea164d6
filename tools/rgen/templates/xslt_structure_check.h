// Elements and attributes that XSLT does not know, or not where they are.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "templates/finding.h"
#include "templates/template_tree.h"

namespace cli {

/// Unknown and misplaced elements, attributes and their values in a stylesheet.
Findings structureFindings(const TemplateTree& tree);

}  // namespace cli

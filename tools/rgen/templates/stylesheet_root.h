// Whether a template is a stylesheet at all.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "templates/finding.h"
#include "templates/template_tree.h"

namespace cli {

/// Whether the root element is a stylesheet, or a literal element that serves as one.
bool isStylesheet(const TemplateTree& tree);

/// Why it is none.
Finding notAStylesheet(const TemplateTree& tree);

}  // namespace cli

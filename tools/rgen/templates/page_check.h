// What makes an html page hard to read for people and programs: missing languages, titles, texts of
// pictures, heads of tables.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/tree.h>

#include <string>

#include "templates/finding.h"
#include "templates/template_tree.h"

namespace cli {

/// For the html elements that a stylesheet writes.
Findings pageFindings(const TemplateTree& tree);

}  // namespace cli

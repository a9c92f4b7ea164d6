// What a stylesheet declares: templates, modes, parameters, keys, attribute sets.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "templates/template_tree.h"

namespace cli {

struct XsltNames {
    /// The xsl:template elements with a name; the first of several with the same.
    std::map<std::string, xmlNode*> namedTemplates;
    /// All xsl:template elements.
    std::vector<xmlNode*> templates;
    /// The modes of templates; "" is the mode without a name.
    std::set<std::string> modes;
    /// The parameters that templates of a mode take.
    std::map<std::string, std::set<std::string>> parametersOfModes;
    /// The xsl:key elements.
    std::multimap<std::string, xmlNode*> keys;
    std::set<std::string> attributeSets;
    std::set<std::string> decimalFormats;
    /// The xsl:variable and xsl:param elements at the top level.
    std::map<std::string, xmlNode*> globals;
};

XsltNames collectNames(const TemplateTree& tree);

/// The names of the parameters that an xsl:template takes.
std::vector<std::string> parametersOf(xmlNode* xsltTemplate);

/// Names that are used but not declared, declared twice, or declared and never used.
Findings nameFindings(const TemplateTree& tree, const XsltNames& names);

}  // namespace cli

// SPDX-License-Identifier: MIT
#include "templates/stylesheet_root.h"

#include "templates/xslt_vocabulary.h"

namespace cli {
namespace {

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

bool hasXsltVersion(const xmlNode* node) {
    for (const xmlAttr* one = node->properties; one != nullptr; one = one->next) {
        if (one->ns != nullptr && nameOf(one->ns->href) == xsltNamespace &&
            nameOf(one->name) == "version")
            return true;
    }
    return false;
}

}  // namespace

bool isStylesheet(const TemplateTree& tree) {
    const xmlNode* root = tree.root();
    return isXsltElement(root, "stylesheet") || isXsltElement(root, "transform") ||
           (root != nullptr && !isXsltElement(root) && hasXsltVersion(root));
}

Finding notAStylesheet(const TemplateTree& tree) {
    const xmlNode* root = tree.root();
    const std::string name = nameOf(root->name);
    Finding finding;
    finding.code = "not-a-stylesheet";
    const bool isNamedLikeOne = name == "stylesheet" || name == "transform";
    if (!isNamedLikeOne || isXsltElement(root)) {
        finding.what = "this is not a stylesheet: the root element is " +
                       quoted((isXsltElement(root) ? "xsl:" + name : name));
        finding.advice = stylesheetStart;
    } else if (root->ns == nullptr) {
        finding.what = "this is not a stylesheet: " + quoted(name) + " has no namespace";
        finding.advice = stylesheetStart;
    } else {
        finding.what =
            "this is not a stylesheet: the namespace is " + quoted(nameOf(root->ns->href));
        finding.advice = "write " + quoted(xsltNamespace);
    }
    return tree.atElement(root, std::move(finding));
}

}  // namespace cli

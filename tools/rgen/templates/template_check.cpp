// The checks from the text to the meaning: a text that is not well-formed is no tree, and a tree
// that is not a stylesheet has no expressions.
//
// SPDX-License-Identifier: MIT
#include "templates/template_check.h"

#include "templates/data_check.h"
#include "templates/page_check.h"
#include "templates/stylesheet_root.h"
#include "templates/template_tree.h"
#include "templates/xslt_expressions.h"
#include "templates/xslt_names.h"
#include "templates/xslt_structure_check.h"

namespace cli {
namespace {

bool writesText(const TemplateTree& tree) {
    for (const xmlNode* node = elementFrom(tree.root()->children); node != nullptr;
         node = elementFrom(node->next)) {
        if (isXsltElement(node, "output") && attributeText(node, "method") == "text") return true;
    }
    return false;
}

Findings stylesheetFindings(const TemplateTree& tree, const CheckedUse& use) {
    Findings findings = structureFindings(tree);
    const XsltNames names = collectNames(tree);
    findings.add(nameFindings(tree, names));
    const std::vector<TemplateExpression> expressions = expressionsOf(tree, names);
    findings.add(expressionFindings(tree, names, expressions));
    if (use.format != "txt" && !writesText(tree)) findings.add(pageFindings(tree));
    // What the processor says comes last: its messages say less than the checks'.
    if (findings.count(Severity::Error) > 0) return findings;
    if (use.dataDocument) {
        findings.add(dataFindings(tree, names, expressions, *use.dataDocument));
    } else {
        findings.add(runFindings(tree, compileTemplate(tree.text().text())));
    }
    return findings;
}

}  // namespace

Findings checkTemplate(const TemplateText& text, const CheckedUse& use) {
    const TemplateTree tree(text);
    Findings findings = tree.textFindings();
    if (tree.root() != nullptr) {
        if (isStylesheet(tree)) {
            findings.add(stylesheetFindings(tree, use));
        } else {
            findings.add(notAStylesheet(tree));
        }
    }
    findings.sort();
    return findings;
}

}  // namespace cli

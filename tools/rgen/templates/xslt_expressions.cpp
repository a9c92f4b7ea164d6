// SPDX-License-Identifier: MIT
#include "templates/xslt_expressions.h"

#include <algorithm>
#include <set>

#include "base/suggestion.h"
#include "templates/xslt_vocabulary.h"

namespace cli {
namespace {

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

ExpressionKind kindOf(const xmlNode* element, XsltValue value) {
    if (value == XsltValue::Pattern)
        return isXsltElement(element, "key") ? ExpressionKind::KeyPattern : ExpressionKind::Pattern;
    return value == XsltValue::Expression ? ExpressionKind::Expression
                                          : ExpressionKind::ValueTemplate;
}

bool holdsExpression(XsltValue value) {
    return value == XsltValue::Expression || value == XsltValue::Pattern ||
           value == XsltValue::ValueTemplate || value == XsltValue::ChoiceTemplate;
}

bool isVariable(const xmlNode* node) {
    return isXsltElement(node, "variable") || isXsltElement(node, "param");
}

class Collector {
public:
    Collector(const TemplateTree& tree, const XsltNames& names) : tree_(tree) {
        for (const auto& [name, node] : names.globals)
            visible_.push_back(name);
        globals_ = visible_.size();
    }

    std::vector<TemplateExpression> collect() {
        visit(tree_.root());
        return std::move(expressions_);
    }

private:
    void visit(xmlNode* node) {
        collectAttributes(node);
        const std::size_t before = visible_.size();
        for (xmlNode* child = elementFrom(node->children); child != nullptr;
             child = elementFrom(child->next)) {
            visit(child);
            // A definition is visible from its next sibling on. Those at the top level are
            // visible everywhere.
            if (isVariable(child) && node != tree_.root())
                visible_.push_back(attributeText(child, "name"));
        }
        visible_.resize(std::max(before, globals_));
    }

    void collectAttributes(xmlNode* node) {
        const bool isXslt = isXsltElement(node);
        const XsltElement* known = isXslt ? findXsltElement(nameOf(node->name)) : nullptr;
        for (const xmlAttr* one = node->properties; one != nullptr; one = one->next) {
            const std::string name = writtenName(one);
            if (isXslt) {
                const XsltAttribute* attribute = known != nullptr ? known->find(name) : nullptr;
                if (attribute != nullptr && holdsExpression(attribute->kind))
                    add(node, one, name, kindOf(node, attribute->kind));
            } else if (one->ns == nullptr || nameOf(one->ns->href) != xsltNamespace) {
                add(node, one, name, ExpressionKind::ValueTemplate);
            }
        }
    }

    static std::string writtenName(const xmlAttr* attribute) {
        const std::string local = nameOf(attribute->name);
        const bool hasPrefix = attribute->ns != nullptr && attribute->ns->prefix != nullptr;
        return hasPrefix ? nameOf(attribute->ns->prefix) + ":" + local : local;
    }

    void add(xmlNode* node, const xmlAttr* attribute, const std::string& name,
             ExpressionKind kind) {
        const XmlPtr<xmlChar> value(xmlNodeListGetString(node->doc, attribute->children, 1));
        TemplateExpression expression{node, name, kind, plainText(value), visible_};
        const bool hasNone = kind == ExpressionKind::ValueTemplate &&
                             expression.text.find_first_of("{}") == std::string::npos;
        if (!hasNone) expressions_.push_back(std::move(expression));
    }

    const TemplateTree& tree_;
    std::vector<std::string> visible_;
    std::size_t globals_ = 0;
    std::vector<TemplateExpression> expressions_;
};

std::map<std::string, std::string> prefixesAt(const xmlNode* element) {
    std::map<std::string, std::string> prefixes;
    for (const xmlNode* node = element; node != nullptr && node->type == XML_ELEMENT_NODE;
         node = node->parent) {
        for (const xmlNs* one = node->nsDef; one != nullptr; one = one->next) {
            if (one->prefix != nullptr && one->href != nullptr)
                prefixes.emplace(nameOf(one->prefix), nameOf(one->href));
        }
    }
    return prefixes;
}

class ExpressionCheck {
public:
    ExpressionCheck(const TemplateTree& tree, const XsltNames& declared,
                    const std::vector<TemplateExpression>& expressions)
        : tree_(tree), expressions_(expressions) {
        for (const auto& [name, node] : declared.keys)
            names_.keys.push_back(name);
        names_.decimalFormats.assign(declared.decimalFormats.begin(),
                                     declared.decimalFormats.end());
        for (const TemplateExpression& one : expressions) {
            if (usesOtherDocuments(one.text, one.kind)) names_.onlyDataDocument = false;
            for (const std::string& function : guardedFunctionsOf(one.text, one.kind))
                names_.guardedFunctions.insert(function);
        }
    }

    Findings check() {
        for (const TemplateExpression& one : expressions_)
            checkOne(one);
        return std::move(findings_);
    }

private:
    void checkOne(const TemplateExpression& one) {
        names_.variables = one.variables;
        names_.variablesAllowed =
            !isXsltElement(one.element, "key") && !isXsltElement(one.element, "template");
        names_.prefixes = prefixesAt(one.element);
        for (const ExpressionProblem& problem : checkExpression(one.text, one.kind, names_)) {
            Finding finding;
            finding.severity = problem.severity;
            finding.code = problem.code;
            finding.what = problem.what;
            finding.advice = problem.advice;
            findings_.add(tree_.atValue(one.element, one.attribute,
                                        {problem.offset, problem.offset + problem.length},
                                        std::move(finding)));
        }
    }

    const TemplateTree& tree_;
    const std::vector<TemplateExpression>& expressions_;
    ExpressionNames names_;
    Findings findings_;
};

/// Keys whose name is never an argument of key(). Nothing is said when one is computed.
Findings unusedKeys(const TemplateTree& tree, const XsltNames& names,
                    const std::vector<TemplateExpression>& expressions) {
    std::set<std::string> used;
    for (const TemplateExpression& one : expressions) {
        for (const std::string& key : keysUsedBy(one.text, one.kind))
            used.insert(key);
    }
    Findings findings;
    if (used.count("") != 0) return findings;
    for (const auto& [name, node] : names.keys) {
        if (used.count(name) != 0) continue;
        Finding finding;
        finding.severity = Severity::Warning;
        finding.code = "unused-key";
        finding.what = "xsl:key " + quoted(name) + " is never used";
        finding.advice = "remove it";
        findings.add(tree.atElement(node, std::move(finding)));
    }
    return findings;
}

}  // namespace

std::vector<TemplateExpression> expressionsOf(const TemplateTree& tree, const XsltNames& names) {
    return Collector(tree, names).collect();
}

Findings expressionFindings(const TemplateTree& tree, const XsltNames& names,
                            const std::vector<TemplateExpression>& expressions) {
    Findings findings = ExpressionCheck(tree, names, expressions).check();
    findings.add(unusedKeys(tree, names, expressions));
    return findings;
}

}  // namespace cli

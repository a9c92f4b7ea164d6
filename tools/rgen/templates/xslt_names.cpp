// SPDX-License-Identifier: MIT
#include "templates/xslt_names.h"

#include <algorithm>
#include <sstream>

#include "base/suggestion.h"
#include "templates/xslt_vocabulary.h"

namespace cli {
namespace {

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

template <typename Map>
std::vector<std::string> keysOfMap(const Map& map) {
    std::vector<std::string> keys;
    for (const auto& entry : map)
        keys.push_back(entry.first);
    return keys;
}

void collectTemplate(xmlNode* node, XsltNames& names) {
    names.templates.push_back(node);
    if (plainAttribute(node, "name") != nullptr)
        names.namedTemplates.emplace(attributeText(node, "name"), node);
    if (plainAttribute(node, "match") == nullptr) return;
    const std::string mode = attributeText(node, "mode");
    names.modes.insert(mode);
    for (const std::string& parameter : parametersOf(node))
        names.parametersOfModes[mode].insert(parameter);
}

class NameCheck {
public:
    NameCheck(const TemplateTree& tree, const XsltNames& names) : tree_(tree), names_(names) {}

    Findings check() {
        checkTwice();
        visit(tree_.root());
        return std::move(findings_);
    }

private:
    void add(Finding at, Severity severity, const char* code, std::string what,
             std::string advice) {
        at.severity = severity;
        at.code = code;
        at.what = std::move(what);
        at.advice = std::move(advice);
        findings_.add(std::move(at));
    }

    Finding placeOfValue(const xmlNode* node, const std::string& attribute) const {
        const std::size_t size = attributeText(node, attribute).size();
        return tree_.atValue(node, attribute, {0, size}, {});
    }

    void checkTwice() {
        std::map<std::string, const xmlNode*> seen;
        for (const xmlNode* node : names_.templates) {
            const std::string name = attributeText(node, "name");
            if (name.empty()) continue;
            const auto [first, isNew] = seen.emplace(name, node);
            if (isNew) continue;
            add(placeOfValue(node, "name"), Severity::Error, "declared-twice",
                "template " + quoted(name) + " is declared twice",
                "the other one is in line " + std::to_string(tree_.lineOf(first->second)));
        }
    }

    void visit(const xmlNode* node) {
        if (isXsltElement(node, "call-template")) checkCall(node);
        if (isXsltElement(node, "apply-templates")) checkApply(node);
        if (isXsltElement(node)) checkAttributeSets(node, "use-attribute-sets");
        for (const xmlNode* child = elementFrom(node->children); child != nullptr;
             child = elementFrom(child->next)) {
            visit(child);
        }
    }

    void checkCall(const xmlNode* node) {
        if (plainAttribute(node, "name") == nullptr) return;
        const std::string name = attributeText(node, "name");
        const auto called = names_.namedTemplates.find(name);
        if (called == names_.namedTemplates.end()) return reportUnknownTemplate(node, name);
        const std::vector<std::string> known = parametersOf(called->second);
        for (const xmlNode* child = elementFrom(node->children); child != nullptr;
             child = elementFrom(child->next)) {
            if (isXsltElement(child, "with-param")) checkParameter(child, name, known);
        }
    }

    void reportUnknownTemplate(const xmlNode* node, const std::string& name) {
        const std::string nearest = nearestWord(name, keysOfMap(names_.namedTemplates));
        std::string advice = "add <xsl:template name=" + quoted(name) + ">";
        if (!nearest.empty()) {
            const std::size_t line = tree_.lineOf(names_.namedTemplates.at(nearest));
            advice = "did you mean " + quoted(nearest) + " (line " + std::to_string(line) + ")?";
        }
        add(placeOfValue(node, "name"), Severity::Error, "unknown-template",
            "there is no template " + quoted(name), advice);
    }

    void checkParameter(const xmlNode* node, const std::string& templateName,
                        const std::vector<std::string>& known) {
        const std::string name = attributeText(node, "name");
        if (std::find(known.begin(), known.end(), name) != known.end()) return;
        add(placeOfValue(node, "name"), Severity::Error, "unknown-parameter",
            "template " + quoted(templateName) + " takes no parameter " + quoted(name),
            didYouMean(name, known, "add <xsl:param name=" + quoted(name) + "/> to it"));
    }

    void checkApply(const xmlNode* node) {
        const std::string mode = attributeText(node, "mode");
        if (!mode.empty() && names_.modes.count(mode) == 0) {
            std::vector<std::string> known(names_.modes.begin(), names_.modes.end());
            known.erase(std::remove(known.begin(), known.end(), ""), known.end());
            add(placeOfValue(node, "mode"), Severity::Error, "unknown-mode",
                "no template has the mode " + quoted(mode),
                didYouMean(mode, known, "add one, or remove the mode"));
            return;
        }
        checkApplyParameters(node, mode);
    }

    void checkApplyParameters(const xmlNode* node, const std::string& mode) {
        const auto found = names_.parametersOfModes.find(mode);
        std::vector<std::string> known;
        if (found != names_.parametersOfModes.end())
            known.assign(found->second.begin(), found->second.end());
        for (const xmlNode* child = elementFrom(node->children); child != nullptr;
             child = elementFrom(child->next)) {
            const std::string name = attributeText(child, "name");
            const bool isKnown = std::find(known.begin(), known.end(), name) != known.end();
            if (!isXsltElement(child, "with-param") || isKnown) continue;
            const std::string where = mode.empty() ? "" : " with mode " + quoted(mode);
            add(placeOfValue(child, "name"), Severity::Error, "unknown-parameter",
                "no template" + where + " takes a parameter " + quoted(name),
                didYouMean(name, known, "add <xsl:param name=" + quoted(name) + "/> to one"));
        }
    }

    void checkAttributeSets(const xmlNode* node, const char* attribute) {
        std::istringstream words(attributeText(node, attribute));
        const std::vector<std::string> known(names_.attributeSets.begin(),
                                             names_.attributeSets.end());
        for (std::string name; words >> name;) {
            if (names_.attributeSets.count(name) != 0) continue;
            add(placeOfValue(node, attribute), Severity::Error, "unknown-attribute-set",
                "there is no xsl:attribute-set " + quoted(name),
                didYouMean(name, known, "add one"));
        }
    }

    const TemplateTree& tree_;
    const XsltNames& names_;
    Findings findings_;
};

}  // namespace

std::vector<std::string> parametersOf(xmlNode* xsltTemplate) {
    std::vector<std::string> parameters;
    for (xmlNode* child = elementFrom(xsltTemplate->children); child != nullptr;
         child = elementFrom(child->next)) {
        if (isXsltElement(child, "param")) parameters.push_back(attributeText(child, "name"));
    }
    return parameters;
}

XsltNames collectNames(const TemplateTree& tree) {
    XsltNames names;
    for (xmlNode* node = elementFrom(tree.root()->children); node != nullptr;
         node = elementFrom(node->next)) {
        const std::string name = attributeText(node, "name");
        if (isXsltElement(node, "template")) collectTemplate(node, names);
        if (isXsltElement(node, "key")) names.keys.emplace(name, node);
        if (isXsltElement(node, "attribute-set")) names.attributeSets.insert(name);
        if (isXsltElement(node, "decimal-format") && !name.empty())
            names.decimalFormats.insert(name);
        if (isXsltElement(node, "variable") || isXsltElement(node, "param"))
            names.globals.emplace(name, node);
    }
    return names;
}

Findings nameFindings(const TemplateTree& tree, const XsltNames& names) {
    return NameCheck(tree, names).check();
}

}  // namespace cli

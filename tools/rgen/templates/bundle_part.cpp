// SPDX-License-Identifier: MIT
#include "templates/bundle_part.h"

#include <algorithm>

#include "templates/xslt_markup.h"

namespace cli {
namespace {

Finding errorOf(const char* code, std::string what, std::string advice) {
    Finding finding;
    finding.code = code;
    finding.what = std::move(what);
    finding.advice = std::move(advice);
    return finding;
}

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

}  // namespace

BundlePart::BundlePart(TemplateText text)
    : text_(std::move(text)),
      markup_(scanMarkup(text_.text())),
      prefix_(xsltPrefix(text_.text(), markup_)) {}

bool BundlePart::isXslt(const MarkupElement& element, const char* localName) const {
    return element.name == prefix_ + localName;
}

std::string BundlePart::attribute(const MarkupElement& element, std::string_view name) const {
    return valueOf(text_.text(), element, name);
}

Findings BundlePart::findings() const {
    Findings findings;
    for (const MarkupProblem& problem : markup_.problems) {
        findings.add(text_.at(problem.range.begin, problem.range.end,
                              errorOf(problem.code.c_str(), problem.what, problem.advice)));
    }
    if (!findings.empty()) return findings;
    if (markup_.elements.empty() ||
        (!isXslt(root(), "stylesheet") && !isXslt(root(), "transform"))) {
        findings.add(text_.at(0, 0,
                              errorOf("not-a-part", "this is not a stylesheet",
                                      "put the templates into an xsl:stylesheet")));
        return findings;
    }
    addMisplaced(findings);
    return findings;
}

void BundlePart::addMisplaced(Findings& findings) const {
    if (markup_.doctype.size() > 0) {
        findings.add(text_.at(markup_.doctype.begin, markup_.doctype.begin,
                              errorOf("bundle-doctype", "a bundle has no document type",
                                      "write characters instead of entities")));
    }
    for (const MarkupElement& element : markup_.elements) {
        const TextRange name = element.nameRange;
        if (isXslt(element, "import")) {
            findings.add(text_.at(name.begin, name.end,
                                  errorOf("bundle-import", "xsl:import cannot be bundled",
                                          "write xsl:include, and rename what both files have")));
        } else if (isXslt(element, "include") && element.parent != 0) {
            findings.add(text_.at(name.begin, name.end,
                                  errorOf("misplaced-include", "xsl:include inside of a template",
                                          "move it to the children of the root element")));
        }
    }
}

std::vector<const MarkupElement*> BundlePart::includes() const {
    std::vector<const MarkupElement*> found;
    for (const MarkupElement& element : markup_.elements) {
        if (isXslt(element, "include")) found.push_back(&element);
    }
    return found;
}

TextRange BundlePart::rangeOf(const MarkupElement& element) {
    return {element.startTag.begin, std::max(element.startTag.end, element.endTag.end)};
}

TextRange BundlePart::body() const {
    return {root().startTag.end, std::max(root().startTag.end, root().endTag.begin)};
}

Definition BundlePart::definitionOf(const MarkupElement& element,
                                    const std::string& localName) const {
    Definition definition;
    definition.place = element.nameRange;
    const std::string name = attribute(element, "name");
    if (localName == "template" && name.empty()) {
        const std::string mode = attribute(element, "mode");
        const std::string priority = attribute(element, "priority");
        definition.name = "template for " + quoted(attribute(element, "match")) +
                          (mode.empty() ? "" : " in mode " + quoted(mode)) +
                          (priority.empty() ? "" : " with priority " + priority);
        return definition;
    }
    const bool isVariable = localName == "variable" || localName == "param";
    definition.name = (isVariable ? "variable" : localName) + " " + quoted(name);
    const bool mayRepeat = localName == "key" || localName == "decimal-format";
    for (const MarkupAttribute& one : element.attributes) {
        if (mayRepeat) definition.content += one.name + "=" + attribute(element, one.name) + "\n";
    }
    return definition;
}

std::vector<Definition> BundlePart::definitions() const {
    std::vector<Definition> found;
    for (const MarkupElement& element : markup_.elements) {
        if (element.parent != 0) continue;
        for (const char* localName : {"template", "variable", "param", "key", "decimal-format"}) {
            if (isXslt(element, localName)) found.push_back(definitionOf(element, localName));
        }
        if (isXslt(element, "output")) {
            Definition output;
            output.name = "xsl:output";
            output.place = element.nameRange;
            found.push_back(std::move(output));
        }
    }
    return found;
}

}  // namespace cli

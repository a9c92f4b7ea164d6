// Translations may contain elements of their own, so elements are compared by their places in the
// template's file and not by their order.
//
// SPDX-License-Identifier: MIT
#include "report/test_coverage.h"

#include <utility>

#include "data/xml_nodes.h"
#include "templates/template_files.h"
#include "templates/xpath_values.h"
#include "templates/xslt_expressions.h"
#include "templates/xslt_names.h"

namespace cli {
namespace {

std::set<std::string> valueNames(const std::string& document) {
    std::set<std::string> names;
    const XmlPtr<xmlDoc> parsed(
        xmlReadMemory(document.data(), static_cast<int>(document.size()), nullptr, "UTF-8",
                      XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    const xmlNode* root = parsed ? xmlDocGetRootElement(parsed.get()) : nullptr;
    const xmlNode* list = root != nullptr ? elementFrom(root->children) : nullptr;
    for (const xmlNode* node = list != nullptr ? elementFrom(list->children) : nullptr;
         node != nullptr; node = elementFrom(node->next)) {
        names.insert(attributeText(node, "name"));
    }
    return names;
}

Finding noteOf(const char* code, std::string what) {
    Finding finding;
    finding.severity = Severity::Note;
    finding.code = code;
    finding.what = std::move(what);
    return finding;
}

std::string describedTemplate(const xmlNode* node) {
    const std::string name = attributeText(node, "name");
    if (!name.empty()) return "template \"" + name + "\"";
    const std::string mode = attributeText(node, "mode");
    return "the template for \"" + attributeText(node, "match") + "\"" +
           (mode.empty() ? "" : " in mode \"" + mode + "\"");
}

KeyDeclarations keysOf(const XsltNames& names) {
    KeyDeclarations keys;
    for (const auto& [name, node] : names.keys)
        keys.emplace(name,
                     KeyDeclaration{attributeText(node, "match"), attributeText(node, "use")});
    return keys;
}

/// The offset of the start tag in the template's file.
std::size_t placeOf(const TemplateTree& tree, const xmlNode* node) {
    const MarkupElement* markup = tree.markupOf(node);
    return markup == nullptr ? noElement : tree.text().originalOffset(markup->startTag.begin);
}

const xmlNode* templateAround(const xmlNode* node) {
    while (node != nullptr && !isXsltElement(node, "template"))
        node = node->parent;
    return node;
}

}  // namespace

void TestCoverage::Reached::add(const Reached& other) {
    templates.insert(other.templates.begin(), other.templates.end());
    values.insert(other.values.begin(), other.values.end());
    for (const auto& [place, isWritten] : other.texts)
        texts[place] = texts[place] || isWritten;
}

void TestCoverage::add(const GoldenRun& run, const std::string& format) {
    const TemplateText text = run.templateText(format);
    const std::string document = run.document();
    const TemplateRun made = runTemplate(text.text(), document);
    const Markup markup = scanMarkup(text.text());
    const auto place = [&](std::size_t element) {
        return element < markup.elements.size()
                   ? text.originalOffset(markup.elements[element].startTag.begin)
                   : noElement;
    };
    Reached reached;
    reached.values = valueNames(document);
    for (const std::size_t element : made.reachedTemplates)
        reached.templates.insert(place(element));
    for (const auto& [element, texts] : made.texts)
        reached.texts[place(element)] = texts.empty < texts.all;
    formats_[format].add(reached);
}

Findings TestCoverage::findingsOf(const TemplateText& text, const Reached& reached) {
    Findings findings;
    const TemplateTree tree(text);
    if (tree.root() == nullptr) return findings;
    const XsltNames names = collectNames(tree);
    for (const xmlNode* node : names.templates) {
        if (reached.templates.count(placeOf(tree, node)) != 0) continue;
        findings.add(tree.atElement(
            node, noteOf("untested-template", "no test reaches " + describedTemplate(node))));
    }
    const KeyDeclarations keys = keysOf(names);
    std::set<std::string> missing;
    for (const TemplateExpression& one : expressionsOf(tree, names)) {
        for (const ValueRequest& request : valueRequests(one.text, one.kind, keys)) {
            const bool isNew = request.kind == ValueRequest::Kind::Name &&
                               reached.values.count(request.name) == 0 &&
                               missing.insert(request.name).second;
            if (!isNew) continue;
            findings.add(tree.atValue(
                one.element, one.attribute, {request.offset, request.offset + request.length},
                noteOf("untested-value", "no test has a value \"" + request.name + "\"")));
        }
        const bool isShown = one.attribute == "select" && isXsltElement(one.element, "value-of");
        const xmlNode* around = isShown ? templateAround(one.element) : nullptr;
        if (around == nullptr || reached.templates.count(placeOf(tree, around)) == 0) continue;
        const auto texts = reached.texts.find(placeOf(tree, one.element));
        if (texts != reached.texts.end() && texts->second) continue;
        findings.add(
            tree.atElement(one.element, noteOf("untested-text", "no test shows a text here")));
    }
    return findings;
}

Findings TestCoverage::findings(const DataDirectory& directory, const ReportType& type) const {
    Findings all;
    for (const TemplateFile& file : templatesOf(directory, type)) {
        Reached reached;
        std::vector<std::string> formats = file.sameFormats;
        formats.insert(formats.begin(), file.format);
        bool isTested = false;
        for (const std::string& format : formats) {
            const auto found = formats_.find(format);
            if (found == formats_.end()) continue;
            isTested = true;
            reached.add(found->second);
        }
        const TemplateText text = TemplateText::read(file.path, "check the template");
        if (isTested) {
            all.add(findingsOf(text, reached));
        } else {
            all.add(text.atOriginal(
                0, 0, noteOf("untested-format", "no test makes a report in " + file.format)));
        }
    }
    all.sort();
    return all;
}

}  // namespace cli

// SPDX-License-Identifier: MIT
#include "templates/template_tree.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <algorithm>
#include <cstring>

#include "base/text_functions.h"
#include "templates/xslt_vocabulary.h"

namespace cli {
namespace {

bool isName(const xmlChar* name, const char* expected) {
    return name != nullptr && std::strcmp(reinterpret_cast<const char*>(name), expected) == 0;
}

/// "prefix:name" or "name", as it is written.
std::string writtenName(const xmlNode* element) {
    const std::string local = nameOf(element->name);
    const bool hasPrefix = element->ns != nullptr && element->ns->prefix != nullptr;
    return hasPrefix ? nameOf(element->ns->prefix) + ":" + local : local;
}

Finding errorOf(const MarkupProblem& problem) {
    Finding finding;
    finding.code = problem.code;
    finding.what = problem.what;
    finding.advice = problem.advice;
    return finding;
}

std::string withoutLineBreaks(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.pop_back();
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

}  // namespace

TemplateTree::TemplateTree(const TemplateText& text)
    : text_(text), markup_(scanMarkup(text.text())) {
    parse();
    std::size_t next = 0;
    if (root() != nullptr) placeElements(root(), next);
}

void TemplateTree::parse() {
    const XmlPtr<xmlParserCtxt> parser(xmlNewParserCtxt());
    if (!parser) throw std::bad_alloc();
    const auto note = [](void* kept, const xmlError* error) {
        if (error->level < XML_ERR_ERROR) return;
        ParserMistake mistake;
        mistake.line = error->line > 0 ? static_cast<std::size_t>(error->line) : 1;
        mistake.column = error->int2 > 0 ? static_cast<std::size_t>(error->int2) : 1;
        mistake.text = withoutLineBreaks(error->message != nullptr ? error->message : "");
        static_cast<TemplateTree*>(kept)->mistakes_.push_back(std::move(mistake));
    };
    xmlCtxtSetErrorHandler(parser.get(), note, this);
    document_.reset(xmlCtxtReadMemory(parser.get(), text_.text().data(),
                                      static_cast<int>(text_.text().size()), nullptr, "UTF-8",
                                      XML_PARSE_NONET | XML_PARSE_NOWARNING));
}

xmlNode* TemplateTree::root() const {
    return document_ ? xmlDocGetRootElement(document_.get()) : nullptr;
}

/// Stops at the first difference: elements of entities are in no tag of the text.
void TemplateTree::placeElements(xmlNode* element, std::size_t& next) {
    if (next >= markup_.elements.size() || markup_.elements[next].name != writtenName(element)) {
        next = markup_.elements.size();
        return;
    }
    elements_[element] = next++;
    order_.push_back(element);
    for (xmlNode* child = elementFrom(element->children); child != nullptr;
         child = elementFrom(child->next)) {
        placeElements(child, next);
    }
}

Findings TemplateTree::textFindings() const {
    Findings findings;
    for (const MarkupProblem& problem : markup_.problems)
        findings.add(text_.at(problem.range.begin, problem.range.end, errorOf(problem)));
    addMarkerFindings(findings);
    if (root() != nullptr || !markup_.problems.empty()) return findings;
    const LineIndex lines(text_.text());
    const std::size_t offset =
        mistakes_.empty()
            ? 0
            : std::min(lines.offsetOfLine(mistakes_[0].line) + mistakes_[0].column - 1,
                       text_.text().size());
    findings.add(text_.at(offset, offset, parserFinding()));
    return findings;
}

Finding TemplateTree::parserFinding() const {
    Finding finding;
    finding.code = "not-well-formed";
    finding.what = "not well-formed";
    finding.advice = mistakes_.empty() ? "remove what is not XML" : mistakes_[0].text;
    if (!markup_.elements.empty()) return finding;
    finding.what = "the file has no element";
    finding.advice = stylesheetStart;
    return finding;
}

bool TemplateTree::isInComment(std::size_t originalOffset) const {
    const auto contains = [this, originalOffset](const TextRange& comment) {
        return originalOffset >= text_.originalOffset(comment.begin) &&
               originalOffset < text_.originalOffset(comment.end);
    };
    return std::any_of(markup_.comments.begin(), markup_.comments.end(), contains);
}

void TemplateTree::addMarkerFindings(Findings& findings) const {
    for (const UnmatchedMarker& marker : findUnmatchedMarkers(text_.original())) {
        if (isInComment(marker.begin)) continue;
        Finding finding;
        finding.code = "unmatched-marker";
        finding.what = marker.what;
        finding.advice = marker.advice;
        findings.add(text_.atOriginal(marker.begin, marker.end, std::move(finding)));
    }
}

const xmlNode* TemplateTree::element(std::size_t index) const {
    return index < order_.size() ? order_[index] : nullptr;
}

const MarkupElement* TemplateTree::markupOf(const xmlNode* element) const {
    const auto found = elements_.find(element);
    return found == elements_.end() ? nullptr : &markup_.elements[found->second];
}

std::size_t TemplateTree::lineOf(const xmlNode* element) const {
    const MarkupElement* markup = markupOf(element);
    if (markup == nullptr) return static_cast<std::size_t>(std::max(1L, xmlGetLineNo(element)));
    return text_.lines().position(text_.originalOffset(markup->startTag.begin)).line;
}

Finding TemplateTree::atElement(const xmlNode* element, Finding finding) const {
    const MarkupElement* markup = markupOf(element);
    if (markup != nullptr)
        return text_.at(markup->startTag.begin, markup->nameRange.end, std::move(finding));
    const LineIndex lines(text_.text());
    const std::size_t offset = lines.offsetOfLine(lineOf(element));
    return text_.at(offset, offset, std::move(finding));
}

Finding TemplateTree::atText(const xmlNode* text, Finding finding) const {
    const xmlNode* before = text->prev;
    while (before != nullptr && before->type != XML_ELEMENT_NODE)
        before = before->prev;
    const MarkupElement* markup = markupOf(before != nullptr ? before : text->parent);
    if (markup == nullptr) return atElement(text->parent, std::move(finding));
    const bool isAfterEnd = before != nullptr && markup->endTag.size() > 0;
    const std::size_t after = isAfterEnd ? markup->endTag.end : markup->startTag.end;
    const std::size_t begin =
        std::min(text_.text().find_first_not_of(" \t\r\n", after), text_.text().size());
    return text_.at(begin, begin, std::move(finding));
}

Finding TemplateTree::atAttribute(const xmlNode* element, const std::string& name,
                                  Finding finding) const {
    const MarkupElement* markup = markupOf(element);
    const MarkupAttribute* attribute = markup != nullptr ? markup->find(name) : nullptr;
    if (attribute == nullptr) return atElement(element, std::move(finding));
    return text_.at(attribute->nameRange.begin, attribute->nameRange.end, std::move(finding));
}

Finding TemplateTree::atValue(const xmlNode* element, const std::string& name, TextRange part,
                              Finding finding) const {
    const MarkupElement* markup = markupOf(element);
    const MarkupAttribute* attribute = markup != nullptr ? markup->find(name) : nullptr;
    if (attribute == nullptr) return atElement(element, std::move(finding));
    const AttributeValue value(text_.text(), attribute->valueRange);
    return text_.at(value.offset(part.begin), value.offset(part.end), std::move(finding));
}

const xmlAttr* plainAttribute(const xmlNode* element, const std::string& name) {
    for (const xmlAttr* one = element->properties; one != nullptr; one = one->next) {
        if (one->ns == nullptr && isName(one->name, name.c_str())) return one;
    }
    return nullptr;
}

std::string attributeText(const xmlNode* element, const std::string& name) {
    const XmlPtr<xmlChar> value(xmlGetNoNsProp(element, xmlText(name.c_str())));
    return plainText(value);
}

bool isXsltElement(const xmlNode* node) {
    return node != nullptr && node->type == XML_ELEMENT_NODE && node->ns != nullptr &&
           isName(node->ns->href, xsltNamespace);
}

bool isXsltElement(const xmlNode* node, const char* localName) {
    return isXsltElement(node) && isName(node->name, localName);
}

xmlNode* elementFrom(xmlNode* node) {
    while (node != nullptr && node->type != XML_ELEMENT_NODE)
        node = node->next;
    return node;
}

}  // namespace cli

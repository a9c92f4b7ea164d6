// A well-formed template as a tree, each element with its place in the text.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/tree.h>

#include <map>
#include <string>
#include <vector>

#include "data/xml_nodes.h"
#include "templates/finding.h"
#include "templates/markup_scanner.h"
#include "templates/template_text.h"

namespace cli {

class TemplateTree {
public:
    /// `text` must outlive the tree.
    explicit TemplateTree(const TemplateText& text);

    const TemplateText& text() const { return text_; }
    const Markup& markup() const { return markup_; }

    /// The root element; null when the text is not well-formed.
    xmlNode* root() const;

    /// What the markup and the parser say about the text: not well-formed parts, unmatched markers.
    Findings textFindings() const;

    /// The element with this index in document order, or null.
    const xmlNode* element(std::size_t index) const;

    /// The tags of an element; null for one that comes from an entity.
    const MarkupElement* markupOf(const xmlNode* element) const;

    /// The finding at the start tag's name.
    Finding atElement(const xmlNode* element, Finding finding) const;
    /// The finding at a text node, after the white space with which it begins.
    Finding atText(const xmlNode* text, Finding finding) const;
    /// The finding at the name of an attribute.
    Finding atAttribute(const xmlNode* element, const std::string& name, Finding finding) const;
    /// The finding at a part of an attribute's value, in bytes of the value.
    Finding atValue(const xmlNode* element, const std::string& name, TextRange part,
                    Finding finding) const;
    /// The line of an element in the template's own file.
    std::size_t lineOf(const xmlNode* element) const;

private:
    struct ParserMistake {
        std::size_t line = 0;
        std::size_t column = 0;
        std::string text;
    };

    void parse();
    void placeElements(xmlNode* element, std::size_t& next);
    void addMarkerFindings(Findings& findings) const;
    Finding parserFinding() const;
    bool isInComment(std::size_t originalOffset) const;

    const TemplateText& text_;
    Markup markup_;
    XmlPtr<xmlDoc> document_;
    std::vector<ParserMistake> mistakes_;
    std::map<const xmlNode*, std::size_t> elements_;
    std::vector<const xmlNode*> order_;
};

/// The text of an attribute without a namespace; null when it is absent.
const xmlAttr* plainAttribute(const xmlNode* element, const std::string& name);
std::string attributeText(const xmlNode* element, const std::string& name);

bool isXsltElement(const xmlNode* node);
bool isXsltElement(const xmlNode* node, const char* localName);

/// The next element among the siblings from `node` on, or null.
xmlNode* elementFrom(xmlNode* node);

}  // namespace cli

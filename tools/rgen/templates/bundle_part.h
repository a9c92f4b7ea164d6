// One file of a bundle: the parts that it includes and what it defines.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "templates/finding.h"
#include "templates/markup_scanner.h"
#include "templates/template_text.h"

namespace cli {

/// What may be defined only once in a bundle.
struct Definition {
    /// "template \"rows\"".
    std::string name;
    /// Definitions of one name may be repeated when this is the same and not empty.
    std::string content;
    TextRange place;
};

class BundlePart {
public:
    /// `text` is the file without translations.
    explicit BundlePart(TemplateText text);

    const TemplateText& text() const { return text_; }
    const Markup& markup() const { return markup_; }
    const MarkupElement& root() const { return markup_.elements[0]; }

    /// Why the file cannot be a part; empty when it can.
    Findings findings() const;

    /// The xsl:include elements below the root, in their order. Only for files without findings.
    std::vector<const MarkupElement*> includes() const;
    /// The whole element in the text.
    static TextRange rangeOf(const MarkupElement& element);
    /// What is between the tags of the root.
    TextRange body() const;

    std::string attribute(const MarkupElement& element, std::string_view name) const;
    std::vector<Definition> definitions() const;

private:
    bool isXslt(const MarkupElement& element, const char* localName) const;
    void addMisplaced(Findings& findings) const;
    Definition definitionOf(const MarkupElement& element, const std::string& localName) const;

    TemplateText text_;
    Markup markup_;
    std::string prefix_;
};

}  // namespace cli

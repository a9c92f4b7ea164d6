// The places of tags, attributes and comments in an XML text, and what keeps it from being
// well-formed. The XML parser keeps only the line in which a tag ends, and repairs silently what is
// wrong.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// [begin, end) in bytes.
struct TextRange {
    std::size_t begin = 0;
    std::size_t end = 0;

    std::size_t size() const { return end - begin; }
    bool contains(std::size_t offset) const { return offset >= begin && offset < end; }
};

struct MarkupAttribute {
    /// As it is written, with its prefix.
    std::string name;
    TextRange nameRange;
    /// Without the quotes.
    TextRange valueRange;
    char quote = '"';
};

constexpr std::size_t noElement = static_cast<std::size_t>(-1);

struct MarkupElement {
    /// As it is written, with its prefix.
    std::string name;
    TextRange nameRange;
    /// From "<" to after ">".
    TextRange startTag;
    /// Empty for an element that is closed in its start tag or not at all.
    TextRange endTag;
    std::vector<MarkupAttribute> attributes;
    /// An index in Markup::elements, or noElement for the root.
    std::size_t parent = noElement;

    /// The attribute with this name, or null.
    const MarkupAttribute* find(std::string_view attribute) const;
};

struct MarkupProblem {
    TextRange range;
    /// "unclosed-element".
    std::string code;
    std::string what;
    std::string advice;
};

struct Markup {
    /// In document order.
    std::vector<MarkupElement> elements;
    std::vector<TextRange> comments;
    std::vector<TextRange> cdataSections;
    /// With the "<?" and the "?>"; the XML declaration is one of them.
    std::vector<TextRange> instructions;
    /// The document type declaration; empty when there is none.
    TextRange doctype;
    /// In the order of their places.
    std::vector<MarkupProblem> problems;
};

Markup scanMarkup(std::string_view text);

/// The value of an attribute with its references replaced, and where each of its bytes comes from.
class AttributeValue {
public:
    AttributeValue(std::string_view text, TextRange valueRange);

    const std::string& text() const { return text_; }
    /// The offset in the document of a byte of text(), or of its end.
    std::size_t offset(std::size_t at) const;

private:
    std::string text_;
    std::vector<std::size_t> offsets_;
};

}  // namespace cli

// The start tags of an HTML page, as far as a converter has to know them. Every function takes time
// in proportion to the page, whatever is in it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "page/checkpoint.h"

namespace vellum {

/// Where an attribute is in a page, and what follows its value.
struct AttributePlace {
    std::size_t name = 0;
    std::size_t nameEnd = 0;
    std::size_t value = 0;
    std::size_t valueEnd = 0;
    std::size_t end = 0;
};

struct HtmlAttribute {
    /// In lower case.
    std::string name;
    /// With character references replaced.
    std::string value;
};

struct HtmlTag {
    /// In lower case.
    std::string name;
    /// Those that a converter looks at, the first of each name: charset, content, href, http-equiv,
    /// name, rel, src.
    std::vector<HtmlAttribute> attributes;
    /// Place of "<" and of what follows the ">".
    std::size_t start = 0;
    std::size_t end = 0;

    /// The value of the attribute of this name; empty when there is none.
    std::string attribute(std::string_view wanted) const;
    bool hasAttribute(std::string_view wanted) const;
};

/// Shows all start tags in order until `visit` returns false. Comments, end tags and the contents
/// of script, style, title and textarea elements are passed over.
void visitStartTags(const std::string& page, Checkpoint& checkpoint,
                    const std::function<bool(const HtmlTag&)>& visit);

/// Tells whether a "<" with a letter is at `at`: only there a parser begins a start tag.
bool isTagStart(const std::string& page, std::size_t at);

/// The end of the name of a tag that starts at `at`.
std::size_t endOfTagName(const std::string& page, std::size_t at);

/// The place of the next attribute of a tag from `at` on, a place in the tag outside of attributes;
/// that of the ">", or the size of the page, when there is none.
std::size_t nextAttribute(const std::string& page, std::size_t at);

/// The attribute that begins at `at`. The way a parser reads it depends on nothing before.
AttributePlace attributeAt(const std::string& page, std::size_t at);

/// "&amp;", "&quot;", "&lt;", "&gt;" and numbers below 128; that is all that addresses need.
std::string withoutReferences(std::string_view text);

/// The place behind the document type and what may precede it: white space, comments, an XML
/// declaration. 0 without a document type.
std::size_t endOfDocumentType(const std::string& page);

std::string lowerCase(std::string_view text);

/// Without white space at its edges.
std::string trimmed(const std::string& text);

}  // namespace vellum

// A scanner for the start tags of an HTML page. Every function takes linear time for any input.
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

/// Offsets of an attribute in a page; `end` is after the closing quote, if there is one.
struct AttributePosition {
    std::size_t name = 0;
    std::size_t nameEnd = 0;
    std::size_t value = 0;
    std::size_t valueEnd = 0;
    std::size_t end = 0;
};

struct HtmlAttribute {
    /// In lower case.
    std::string name;
    /// With character references decoded.
    std::string value;
};

struct HtmlTag {
    /// In lower case.
    std::string name;
    /// The first one of each of these names: charset, content, href, http-equiv, name, rel, src.
    /// Others are left out.
    std::vector<HtmlAttribute> attributes;
    /// Offset of the "<" and the offset after the ">".
    std::size_t start = 0;
    std::size_t end = 0;

    /// The value of this attribute; empty when there is none.
    std::string attribute(std::string_view wanted) const;
    bool hasAttribute(std::string_view wanted) const;
};

/// Passes all start tags in order to `visit` until it returns false. Skips comments, end tags and
/// the contents of script, style, title and textarea elements.
void visitStartTags(const std::string& page, Checkpoint& checkpoint,
                    const std::function<bool(const HtmlTag&)>& visit);

/// Returns whether `at` is the offset of a "<" with a letter after it, which starts a tag.
bool isTagStart(const std::string& page, std::size_t at);

/// The offset after the name of the tag that starts at `at`.
std::size_t endOfTagName(const std::string& page, std::size_t at);

/// The offset of the next attribute of a tag, searched from `at`, which must be inside the tag and
/// outside of its attributes. Without one, the offset of the ">" or the size of the page.
std::size_t nextAttribute(const std::string& page, std::size_t at);

/// The attribute that starts at `at`. How a parser reads it does not depend on anything before.
AttributePosition attributeAt(const std::string& page, std::size_t at);

/// The text with its character references decoded: "&amp;", "&quot;", "&lt;", "&gt;" and ASCII
/// numbers, which is all that URLs need. Others stay as they are.
std::string decodeReferences(std::string_view text);

/// The offset after the document type, which may follow white space, comments and an XML
/// declaration; 0 without a document type.
std::size_t endOfDocumentType(const std::string& page);

}  // namespace vellum

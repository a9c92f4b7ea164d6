// The start tags of an HTML page, as far as a converter has to know them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vellum {

struct HtmlAttribute {
    /// In lower case.
    std::string name;
    /// With character references replaced.
    std::string value;
    /// The value was written with references.
    bool hasReference = false;
};

struct HtmlTag {
    /// In lower case.
    std::string name;
    std::vector<HtmlAttribute> attributes;
    /// Place of "<" and of what follows the ">".
    std::size_t start = 0;
    std::size_t end = 0;

    /// The value of the first attribute of this name; empty when there is none.
    std::string attribute(const std::string& wanted) const;
    bool hasAttribute(const std::string& wanted) const;
};

/// All start tags in order. Comments, end tags and the contents of script, style, title and
/// textarea elements are passed over.
std::vector<HtmlTag> startTags(const std::string& page);

/// Everything that begins like a start tag and has a "rel" or "http-equiv" attribute, also where it
/// is text. Raises a Failure for a page that is made to take for ever.
std::vector<HtmlTag> possibleTags(const std::string& page);

/// The place behind the document type and what may stand in front of it: a byte order mark, white
/// space, comments, an XML declaration. Without a document type the place behind the mark.
std::size_t endOfDocumentType(const std::string& page);

std::string lowerCase(std::string text);

/// Without white space at its edges.
std::string trimmed(const std::string& text);

}  // namespace vellum

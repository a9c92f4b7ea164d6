// Where in a template a marker is: what the text that replaces it must not contain depends on that.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "templates/markup_scanner.h"

namespace cli {

enum class MarkerContext {
    /// Between tags.
    Content,
    /// Inside a quoted string between the tags of <style> or <script>.
    CodeString,
    Comment,
    CdataSection,
    /// An attribute whose value is neither XPath nor contains expressions.
    PlainAttribute,
    /// An attribute that may contain expressions in "{" and "}", outside of these.
    ValueTemplate,
    /// A quoted string in XPath.
    XPathString,
    /// XPath, outside of its strings.
    XPath
};

struct MarkerPlace {
    MarkerContext context = MarkerContext::Content;
    /// The attribute that contains the marker, or null.
    const MarkupAttribute* attribute = nullptr;
    /// The quote that ends the string of XPath, or of a style sheet.
    char stringQuote = '\0';
};

/// The place of the byte at `offset` of a template's text.
MarkerPlace markerPlace(std::string_view text, const Markup& markup, std::size_t offset);

}  // namespace cli

// The elements and attributes of XSLT 1.0 as far as the library's libxslt knows them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

constexpr const char* xsltNamespace = "http://www.w3.org/1999/XSL/Transform";

/// The advice to begin a template with its root element.
constexpr const char* stylesheetStart =
    "begin with <xsl:stylesheet version=\"1.0\" "
    "xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">";

/// What the value of an attribute is.
enum class XsltValue {
    Text,
    /// An XPath expression.
    Expression,
    /// A match pattern.
    Pattern,
    /// A text with expressions in "{" and "}".
    ValueTemplate,
    /// A name that may have a prefix.
    QualifiedName,
    /// One of XsltAttribute::choices.
    Choice,
    /// The same, but expressions in "{" and "}" are possible.
    ChoiceTemplate
};

struct XsltAttribute {
    const char* name;
    XsltValue kind = XsltValue::Text;
    bool isRequired = false;
    std::vector<std::string> choices;
};

/// What an element may contain.
enum class XsltContent {
    Nothing,
    TextOnly,
    /// Literal elements, text and instructions.
    Sequence,
    /// Only the elements in XsltElement::children.
    Children
};

struct XsltElement {
    const char* name;
    std::vector<XsltAttribute> attributes;
    XsltContent content = XsltContent::Nothing;
    /// Elements that may stand in it in addition to, or instead of, a sequence.
    std::vector<std::string> children;
    bool isTopLevel = false;
    bool isInstruction = false;

    const XsltAttribute* find(std::string_view attribute) const;
};

/// The element with this local name, or null.
const XsltElement* findXsltElement(std::string_view name);

std::vector<std::string> xsltElementNames();

/// What to write instead of an element of a newer XSLT, or of one that has no effect here; empty
/// when there is nothing to say.
std::string alternativeFor(std::string_view name);

}  // namespace cli

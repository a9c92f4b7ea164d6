// Trimmed texts from XML nodes, as strings that are not in libxml2's memory.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>

#include "store/xml/handles.h"

namespace rgen {

/// `text` without white space at its start and end; empty for null. Does not free `text`.
std::string trimmedXmlText(const xmlChar* text);

/// The same, as a view into `text`.
std::string_view trimmedView(const xmlChar* text);

/// The text with A to Z in lower case, independent of the locale.
std::string toLowerCopy(std::string text);

/// The trimmed value of an attribute; empty when `node` is not an element or has no such attribute.
std::string attributeText(xmlNode* node, const char* attributeName);

/// The text of the element's children with entities substituted; null when there is none.
XmlPtr<xmlChar> childrenText(xmlNode* node);

/// The trimmed text of the element's children; empty when there is none.
std::string nodeText(xmlNode* node);

}  // namespace rgen

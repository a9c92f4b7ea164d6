// Texts from XML nodes: always trimmed, and freed at once on the library's side of libxml2.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>

#include "store/xml/handles.h"

namespace rgen {

/// `text` without white space at its edges; empty for null. The caller still frees `text`.
std::string trimmedXmlText(const xmlChar* text);

/// The same as a part of `text`.
std::string_view trimmedView(const xmlChar* text);

/// The text with A to Z in lower case, in every locale.
std::string toLowerCopy(std::string text);

/// The trimmed value of an attribute; empty when the node is no element or has no such attribute.
std::string attributeText(xmlNode* node, const char* attributeName);

/// The text of the element's children with entities substituted; null when there is none.
XmlPtr<xmlChar> childrenText(xmlNode* node);

/// The trimmed text of the element's children; empty when there is none.
std::string nodeText(xmlNode* node);

}  // namespace rgen

// Texts from XML nodes. Trims the six ASCII white-space characters only: under a host's locale, the
// last byte of a UTF-8 text could count as white space.
//
// SPDX-License-Identifier: MIT
#include "store/xml/text.h"

#include <algorithm>

#include "ascii.h"

namespace rgen {

std::string_view trimmedView(const xmlChar* text) {
    if (text == nullptr) return {};
    std::string_view rest = reinterpret_cast<const char*>(text);
    while (!rest.empty() && isWhiteSpace(rest.front()))
        rest.remove_prefix(1);
    while (!rest.empty() && isWhiteSpace(rest.back()))
        rest.remove_suffix(1);
    return rest;
}

std::string trimmedXmlText(const xmlChar* text) {
    return std::string(trimmedView(text));
}

std::string toLowerCopy(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), toLowerAscii);
    return text;
}

std::string attributeText(xmlNode* node, const char* attributeName) {
    if (node->type != XML_ELEMENT_NODE) return {};
    const XmlPtr<xmlChar> value(xmlGetProp(node, xmlText(attributeName)));
    return trimmedXmlText(value.get());
}

XmlPtr<xmlChar> childrenText(xmlNode* node) {
    constexpr int substituteEntities = 1;
    return XmlPtr<xmlChar>(xmlNodeListGetString(node->doc, node->children, substituteEntities));
}

std::string nodeText(xmlNode* node) {
    return trimmedXmlText(childrenText(node).get());
}

}  // namespace rgen

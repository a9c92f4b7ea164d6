// Reads in recovery mode like the library, so that both get the same from a damaged file.
//
// SPDX-License-Identifier: MIT
#include "data/xml_nodes.h"

#include <limits>

#include "base/command_error.h"
#include "base/input_file.h"
#include "base/text_functions.h"

namespace cli {

const xmlChar* xmlText(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

std::string plainText(const XmlPtr<xmlChar>& text) {
    return text ? reinterpret_cast<const char*>(text.get()) : "";
}

std::string nameOf(const xmlChar* name) {
    return reinterpret_cast<const char*>(name);
}

std::string attribute(xmlNode* element, const char* name) {
    return trimmed(plainText(XmlPtr<xmlChar>(xmlGetNoNsProp(element, xmlText(name)))));
}

std::string textInside(xmlNode* element) {
    return plainText(XmlPtr<xmlChar>(xmlNodeListGetString(element->doc, element->children, 1)));
}

std::string readXml(const std::string& path) {
    std::string content = readInputFile(path, "check the path");
    if (content.size() <= static_cast<std::size_t>(std::numeric_limits<int>::max())) return content;
    throw usageError("\"" + path + "\" is too large", "XML files hold at most 2 GiB");
}

XmlPtr<xmlDoc> readDocument(const std::string& path) {
    // Messages of libxml2 are discarded: its result is checked instead.
    const std::string content = readXml(path);
    return XmlPtr<xmlDoc>(xmlReadMemory(
        content.data(), static_cast<int>(content.size()), nullptr, "UTF-8",
        XML_PARSE_RECOVER | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE));
}

}  // namespace cli

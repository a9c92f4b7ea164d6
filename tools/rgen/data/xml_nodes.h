// Basics of reading XML files with libxml2: smart pointers, texts, documents.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>
#include <string>

namespace cli {

struct XmlFree {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    void operator()(xmlChar* text) const { xmlFree(text); }
    void operator()(xmlBuffer* buffer) const { xmlBufferFree(buffer); }
    void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
};
template <typename T>
using XmlPtr = std::unique_ptr<T, XmlFree>;

const xmlChar* xmlText(const char* text);
std::string plainText(const XmlPtr<xmlChar>& text);

/// The name of an element or attribute.
std::string nameOf(const xmlChar* name);

/// The trimmed text of an attribute, empty when there is none.
std::string attribute(xmlNode* element, const char* name);

std::string textInside(xmlNode* element);

/// The bytes of a file, at most 2 GiB. Throws a CommandError.
std::string readXml(const std::string& path);

/// A file read with recovery; null when nothing of it can be read.
XmlPtr<xmlDoc> readDocument(const std::string& path);

}  // namespace cli

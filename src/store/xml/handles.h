// Owning pointers for libxml2 and libxslt: each pointer is in an XmlPtr from the line that creates
// it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/tree.h>
#include <libxml/xpath.h>
#include <libxslt/transform.h>
#include <libxslt/xsltInternals.h>

#include <memory>

namespace rgen {

struct XmlDeleter {
    void operator()(xmlChar* text) const { xmlFree(text); }
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    void operator()(xmlNode* node) const { xmlFreeNode(node); }
    void operator()(xmlXPathContext* context) const { xmlXPathFreeContext(context); }
    void operator()(xmlXPathObject* object) const { xmlXPathFreeObject(object); }
    void operator()(xsltStylesheet* stylesheet) const { xsltFreeStylesheet(stylesheet); }
    void operator()(xsltTransformContext* context) const { xsltFreeTransformContext(context); }
};

template <typename T>
using XmlPtr = std::unique_ptr<T, XmlDeleter>;

/// Text as the character type of libxml2.
inline const xmlChar* xmlText(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

}  // namespace rgen

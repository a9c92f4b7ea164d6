// Selects nodes with XPath.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "status.h"
#include "store/xml/handles.h"

namespace rgen {

/// The nodes that an expression selects, in document order. The document must outlive the object.
class XPathQuery {
public:
    /// Evaluates `expression` in `document`; call it once. Failures: RGEN_E_XPATH_CONTEXT,
    /// RGEN_E_XPATH_SEARCH, and `noNodesStatus` when no node is selected.
    Status select(xmlDoc* document, const char* expression, Status noNodesStatus);

    /// Calls `visit`(xmlNode*) for every selected element and skips other nodes.
    template <typename Visitor>
    void forEachElement(Visitor visit) const {
        const xmlNodeSet& nodes = *result_->nodesetval;
        for (int i = 0; i < nodes.nodeNr; ++i) {
            if (nodes.nodeTab[i]->type == XML_ELEMENT_NODE) visit(nodes.nodeTab[i]);
        }
    }

private:
    // Declared in this order so that the result is freed before its context.
    XmlPtr<xmlXPathContext> context_;
    XmlPtr<xmlXPathObject> result_;
};

}  // namespace rgen

// The one XPath pattern of the library: make a context, evaluate, require a node set with nodes.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "status.h"
#include "store/xml/handles.h"

namespace rgen {

/// The elements that an expression selects, in document order. The object keeps what libxml2 needs
/// for them; the document must outlive it.
class XPathQuery {
public:
    /// `expression` selects in `document`. Failures: RGEN_E_XPATH_CONTEXT, RGEN_E_XPATH_SEARCH, and
    /// `noNodesStatus` when nothing is selected. Called once on each object.
    Status select(xmlDoc* document, const char* expression, Status noNodesStatus);

    /// Calls `visit`(xmlNode*) for every selected element. Other nodes are passed over.
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

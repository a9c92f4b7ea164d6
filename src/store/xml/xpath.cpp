// XPathQuery. The type of the result need not be checked: only a node set has nodes.
//
// SPDX-License-Identifier: MIT
#include "store/xml/xpath.h"

namespace rgen {
namespace {

bool hasNodes(const xmlXPathObject& result) {
    const xmlNodeSet* nodes = result.nodesetval;
    return nodes != nullptr && nodes->nodeNr > 0 && nodes->nodeTab != nullptr;
}

}  // namespace

Status XPathQuery::select(xmlDoc* document, const char* expression, Status noNodesStatus) {
    context_.reset(xmlXPathNewContext(document));
    if (!context_) return RGEN_E_XPATH_CONTEXT;
    result_.reset(xmlXPathEvalExpression(xmlText(expression), context_.get()));
    if (!result_) return RGEN_E_XPATH_SEARCH;
    return hasNodes(*result_) ? RGEN_OK : noNodesStatus;
}

}  // namespace rgen

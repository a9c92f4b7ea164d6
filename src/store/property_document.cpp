// The property document. Door: buildPropertyDocument. Texts are handed over as XML content, so that
// a reference in one is read as a reference; names are plain text.
//
// SPDX-License-Identifier: MIT
#include "store/property_document.h"

namespace rgen {

XmlPtr<xmlDoc> buildPropertyDocument(const PropertyMap& properties) {
    XmlPtr<xmlDoc> document(xmlNewDoc(xmlText("1.0")));
    XmlPtr<xmlNode> root(xmlNewNode(nullptr, xmlText("data")));
    if (!document || !root) return document;
    xmlDocSetRootElement(document.get(), root.get());
    xmlNode* list = xmlNewChild(root.release(), nullptr, xmlText("properties"), nullptr);
    for (const auto& [name, text] : properties) {
        // On purpose: the text is not escaped, "&" starts a reference in it.
        xmlNode* property = xmlNewChild(list, nullptr, xmlText("property"), xmlText(text.c_str()));
        // On purpose: a property for which memory is exhausted is left out without a failure.
        if (property != nullptr) xmlNewProp(property, xmlText("name"), xmlText(name.c_str()));
    }
    return document;
}

}  // namespace rgen

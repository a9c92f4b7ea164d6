// The property document. Door: buildPropertyDocument. Texts are handed over as XML content, so that
// a reference in one is read as a reference; names are plain text.
//
// SPDX-License-Identifier: MIT
#include "store/xml/property_document.h"

namespace rgen {
namespace {

/// libxml2 takes whatever stands between "&" and ";" for the name of a reference, which a report
/// shows as nothing, and writes the name to a file as it stands. On purpose: a reference with
/// markup in its name goes, since in a file the markup would become elements.
void dropReferencesWithMarkup(xmlNode* property) {
    xmlNode* next = nullptr;
    for (xmlNode* child = property->children; child != nullptr; child = next) {
        next = child->next;
        if (child->type != XML_ENTITY_REF_NODE || xmlStrchr(child->name, '<') == nullptr) continue;
        xmlUnlinkNode(child);
        const XmlPtr<xmlNode> reference(child);
    }
}

}  // namespace

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
        if (property == nullptr) continue;
        dropReferencesWithMarkup(property);
        xmlNewProp(property, xmlText("name"), xmlText(name.c_str()));
    }
    return document;
}

}  // namespace rgen

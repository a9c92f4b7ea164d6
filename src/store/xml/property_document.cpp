// The property document. Entry point: buildPropertyDocument. Texts are passed as XML content, so
// that references in them are parsed; names are plain text.
//
// SPDX-License-Identifier: MIT
#include "store/xml/property_document.h"

namespace rgen {
namespace {

/// libxml2 takes any text between "&" and ";" for the name of a reference. A report shows nothing
/// for it, but a saved file would contain the name. On purpose: a reference with markup in its name
/// is removed, since in the file the markup would become elements.
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
        // On purpose: the text is not escaped; "&" starts a reference.
        xmlNode* property = xmlNewChild(list, nullptr, xmlText("property"), xmlText(text.c_str()));
        // On purpose: a property for which there is no memory is left out without a failure.
        if (property == nullptr) continue;
        dropReferencesWithMarkup(property);
        xmlNewProp(property, xmlText("name"), xmlText(name.c_str()));
    }
    return document;
}

}  // namespace rgen

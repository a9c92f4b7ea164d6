// Reads only the elements that the library reads.
//
// SPDX-License-Identifier: MIT
#include "data/xml_documents.h"

#include <libxml/xmlsave.h>

#include <limits>
#include <memory>
#include <optional>

#include "base/command_error.h"
#include "base/text_functions.h"
#include "base/xml_text.h"
#include "data/xml_nodes.h"

namespace cli {
namespace {

/// Children of `parent` with this name, letter case as written.
std::vector<xmlNode*> elements(xmlNode* parent, const char* name) {
    std::vector<xmlNode*> found;
    for (xmlNode* child = parent == nullptr ? nullptr : parent->children; child != nullptr;
         child = child->next) {
        if (child->type == XML_ELEMENT_NODE && child->ns == nullptr &&
            xmlStrEqual(child->name, xmlText(name)) != 0) {
            found.push_back(child);
        }
    }
    return found;
}

/// The elements "root/list/entry".
std::vector<xmlNode*> entries(xmlDoc* document, const char* root, const char* list,
                              const char* entry) {
    std::vector<xmlNode*> all;
    xmlNode* top = document == nullptr ? nullptr : xmlDocGetRootElement(document);
    if (top == nullptr || xmlStrEqual(top->name, xmlText(root)) == 0) return all;
    for (xmlNode* folder : elements(top, list)) {
        for (xmlNode* element : elements(folder, entry))
            all.push_back(element);
    }
    return all;
}

/// The trimmed text of the last child with this name in any letter case; nothing when there is none
/// or it is empty.
std::optional<std::string> childText(xmlNode* parent, const char* name) {
    xmlNode* last = nullptr;
    for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
        if (xmlStrcasecmp(child->name, xmlText(name)) == 0) last = child;
    }
    if (last == nullptr || last->children == nullptr) return std::nullopt;
    return trimmed(textInside(last));
}

std::string byteList(const std::vector<std::uint8_t>& bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty()) text += ", ";
        text += {'0', 'x', digits[byte >> 4U], digits[byte & 0x0FU]};
    }
    return text;
}

const char* libraryHintName(repgen::Hint hint) {
    static constexpr const char* names[] = {"",     "Generic", "Time",  "Date", "DateTime",
                                            "Size", "Address", "Speed", "Dump"};
    return names[static_cast<std::size_t>(hint)];
}

void addProperty(xmlNode* list, const Value& value) {
    const repgen::Value& content = value.content;
    const bool isText = value.isText();
    const bool isNumber = content.type() == repgen::ValueType::Integer;
    const std::string text = isText     ? contentOf(content.markedText())
                             : isNumber ? std::to_string(content.integer())
                                        : byteList(content.bytes());
    // The text is XML content; as text of a property it is escaped again.
    xmlNode* property = xmlNewTextChild(list, nullptr, xmlText("property"), xmlText(text.c_str()));
    if (property == nullptr) throw std::bad_alloc();
    const char* const type = isText ? "string" : isNumber ? "int64" : "byte_array";
    xmlNewProp(property, xmlText("name"), xmlText(value.name.c_str()));
    xmlNewProp(property, xmlText("type"), xmlText(type));
    xmlNewProp(property, xmlText("hint"), xmlText(libraryHintName(content.hint())));
}

}  // namespace

std::vector<ConfiguredType> readConfiguration(const std::string& path) {
    const XmlPtr<xmlDoc> document = readDocument(path);
    if (!document) {
        throw CommandError(ExitCode::Environment, "\"" + path + "\" cannot be read as XML",
                           "correct it, or make another data directory with rgen init");
    }
    // If a GUID occurs twice, the last usable value is used, separately for each of the two names.
    std::map<std::string, ConfiguredType> types;
    for (xmlNode* element : entries(document.get(), "config", "reportTypes", "type")) {
        const std::string written = attribute(element, "guid");
        const auto guid = repgen::Guid::parse(written);
        const std::optional<std::string> persistDataFile = childText(element, "persistDataFile");
        const std::optional<std::string> reportTypeFile = childText(element, "reportTypeFile");
        // The library does not accept braces.
        const bool isGuid = guid && written.size() == RGENH_GUID_TEXT_SIZE - 1;
        if (!isGuid || !persistDataFile || !reportTypeFile) continue;
        ConfiguredType& type = types[guid->text()];
        type.guid = guid->text();
        if (!persistDataFile->empty()) type.persistDataFile = *persistDataFile;
        if (!reportTypeFile->empty()) type.reportTypeFile = *reportTypeFile;
    }
    std::vector<ConfiguredType> all;
    for (const auto& [guid, type] : types) {
        const bool isUsable = !type.persistDataFile.empty() && !type.reportTypeFile.empty();
        if (isUsable) all.push_back(type);
    }
    return all;
}

std::vector<std::string> propertyNames(const std::string& path) {
    const XmlPtr<xmlDoc> document = readDocument(path);
    std::vector<std::string> names;
    for (xmlNode* element : entries(document.get(), "data", "properties", "property"))
        names.push_back(attribute(element, "name"));
    return names;
}

std::string mistakeInContent(const std::string& content) {
    if (content.find_first_of("<>&") == std::string::npos) return {};
    const std::string document = "<r>" + content + "</r>";
    if (document.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return "it is too large";
    }
    const std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxt*)> context(xmlNewParserCtxt(),
                                                                           xmlFreeParserCtxt);
    if (!context) throw std::bad_alloc();
    // An undeclared prefix is not such a mistake: libxml2 still returns a document.
    constexpr int options =
        XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET | XML_PARSE_HUGE;
    const XmlPtr<xmlDoc> read(xmlCtxtReadMemory(context.get(), document.data(),
                                                static_cast<int>(document.size()), nullptr, "UTF-8",
                                                options));
    if (read) return {};
    const xmlError* const error = xmlCtxtGetLastError(context.get());
    const bool isKnown = error != nullptr && error->message != nullptr;
    return isKnown ? trimmed(error->message) : "it is no XML";
}

std::string damageOf(const std::string& path) {
    // Without XML_PARSE_HUGE, like the library: a file that is too large for it counts as damaged.
    const std::string content = readXml(path);
    const std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxt*)> context(xmlNewParserCtxt(),
                                                                           xmlFreeParserCtxt);
    if (!context) throw std::bad_alloc();
    std::string damage;
    // The parser keeps the last mistake, which often only follows from the first one.
    const auto keepFirst = [](void* kept, const xmlError* error) {
        auto& first = *static_cast<std::string*>(kept);
        if (error->level < XML_ERR_FATAL || error->message == nullptr || !first.empty()) return;
        first = "line " + std::to_string(error->line) + ": " + trimmed(error->message);
    };
    xmlCtxtSetErrorHandler(context.get(), keepFirst, &damage);
    const XmlPtr<xmlDoc> document(xmlCtxtReadMemory(context.get(), content.data(),
                                                    static_cast<int>(content.size()), nullptr,
                                                    "UTF-8", XML_PARSE_NOWARNING));
    if (document) return {};
    return damage.empty() ? "it is no XML" : damage;
}

std::map<std::string, std::string> readDump(const std::string& path) {
    const XmlPtr<xmlDoc> document = readDocument(path);
    std::map<std::string, std::string> texts;
    for (xmlNode* element : entries(document.get(), "data", "properties", "property")) {
        // Names are not trimmed: rgen wrote them.
        const XmlPtr<xmlChar> name(xmlGetProp(element, xmlText("name")));
        texts[plainText(name)] = textInside(element);
    }
    return texts;
}

std::string simulatedInputDocument(const std::map<std::string, Value>& values) {
    const XmlPtr<xmlDoc> document(xmlNewDoc(xmlText("1.0")));
    if (!document) throw std::bad_alloc();
    xmlNode* root = xmlNewDocNode(document.get(), nullptr, xmlText("data"), nullptr);
    xmlDocSetRootElement(document.get(), root);
    xmlNode* list = xmlNewChild(root, nullptr, xmlText("properties"), nullptr);
    for (const auto& [name, value] : values)
        addProperty(list, value);
    xmlChar* bytes = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(document.get(), &bytes, &size, "UTF-8", 1);
    const XmlPtr<xmlChar> owner(bytes);
    if (!owner) throw std::bad_alloc();
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

}  // namespace cli

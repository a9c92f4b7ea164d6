// Report-type lookup. Both file names have a table of their own, so that of several entries for one
// GUID the last usable name wins, each on its own.
//
// SPDX-License-Identifier: MIT
#include "store/report_type_map.h"

#include <utility>

#include "store/xml_text.h"
#include "store/xpath_query.h"

namespace rgen {
namespace {

/// The two file names of one `type` element; null where an element is missing or has no text.
struct FileNameTexts {
    XmlPtr<xmlChar> persistDataFile;
    XmlPtr<xmlChar> reportTypeFile;
};

FileNameTexts readFileNames(xmlNode* typeElement) {
    FileNameTexts texts;
    // On purpose: children of every kind are looked at, and a repeated element replaces the
    // earlier.
    for (xmlNode* child = typeElement->children; child != nullptr; child = child->next) {
        if (xmlStrcasecmp(child->name, xmlText("persistDataFile")) == 0) {
            texts.persistDataFile = childrenText(child);
        } else if (xmlStrcasecmp(child->name, xmlText("reportTypeFile")) == 0) {
            texts.reportTypeFile = childrenText(child);
        }
    }
    return texts;
}

void storeUnlessEmpty(FileNameTable& table, const std::string& guid, const xmlChar* text) {
    std::string fileName = trimmedXmlText(text);
    if (!fileName.empty()) table[guid] = std::move(fileName);
}

struct ReportTypeTables {
    FileNameTable persistDataFiles;
    FileNameTable reportTypeFiles;

    void add(xmlNode* typeElement) {
        const std::string guid = toLowerCopy(attributeText(typeElement, "guid"));
        if (!isGuidText(guid)) return;
        const FileNameTexts texts = readFileNames(typeElement);
        if (!texts.persistDataFile || !texts.reportTypeFile) return;
        storeUnlessEmpty(persistDataFiles, guid, texts.persistDataFile.get());
        storeUnlessEmpty(reportTypeFiles, guid, texts.reportTypeFile.get());
    }
};

}  // namespace

Status findFileName(const FileNameTable& table, const std::string& guid, std::string& fileName) {
    const auto found = table.find(guid);
    if (found == table.end()) return RGEN_E_GUID_NOT_IN_CONFIG;
    fileName = found->second;
    // On purpose: a safeguard that no configuration triggers, since empty names enter no table.
    return fileName.empty() ? RGEN_E_XPATH_NODE_EMPTY : RGEN_OK;
}

Status lookupReportType(ReportGenerator& /*generator*/, xmlDoc* configuration, const Guid& guid,
                        ReportTypeEntry& entry) {
    XPathQuery query;
    const Status selected =
        query.select(configuration, "/config/reportTypes/type[@guid]", RGEN_E_NO_TYPE_MAP);
    if (failed(selected)) return selected;
    ReportTypeTables tables;
    query.forEachElement([&tables](xmlNode* element) { tables.add(element); });
    if (tables.persistDataFiles.empty() || tables.reportTypeFiles.empty()) {
        return RGEN_E_NO_VALID_TYPE_MAP;
    }
    const std::string key = formatGuid(guid);
    const Status found = findFileName(tables.persistDataFiles, key, entry.persistDataFile);
    if (failed(found)) return found;
    return findFileName(tables.reportTypeFiles, key, entry.reportTypeFile);
}

}  // namespace rgen

// Report-type lookup. Each of the two file names has its own table, so that with several entries
// for one GUID the last usable name is found separately for each. A configuration may contain
// thousands of entries: those of other GUIDs are read only until a usable one is found.
//
// SPDX-License-Identifier: MIT
#include "store/report_type_map.h"

#include <algorithm>
#include <string_view>

#include "ascii.h"
#include "store/xml/text.h"
#include "store/xml/xpath.h"

namespace rgen {
namespace {

/// The two file names of one `type` element; null if the element is missing or has no text.
struct FileNameTexts {
    XmlPtr<xmlChar> persistDataFile;
    XmlPtr<xmlChar> reportTypeFile;
};

FileNameTexts readFileNames(xmlNode* typeElement) {
    FileNameTexts texts;
    // On purpose: children of every kind are checked, and a repeated element replaces the earlier
    // one.
    for (xmlNode* child = typeElement->children; child != nullptr; child = child->next) {
        if (xmlStrcasecmp(child->name, xmlText("persistDataFile")) == 0) {
            texts.persistDataFile = childrenText(child);
        } else if (xmlStrcasecmp(child->name, xmlText("reportTypeFile")) == 0) {
            texts.reportTypeFile = childrenText(child);
        }
    }
    return texts;
}

/// One of the two file names. The table contains only that of the requested GUID; for other GUIDs
/// `anyUsable` records that one exists.
struct FileNames {
    FileNameTable table;
    bool anyUsable = false;

    /// `guid` is empty for a report type that was not requested.
    void add(const std::string& guid, const xmlChar* text) {
        const std::string_view fileName = trimmedView(text);
        if (fileName.empty()) return;
        anyUsable = true;
        if (!guid.empty()) table[guid] = fileName;
    }
};

bool equalsInLowerCase(std::string_view text, std::string_view lowerCaseText) {
    return std::equal(text.begin(), text.end(), lowerCaseText.begin(), lowerCaseText.end(),
                      [](char left, char right) { return toLowerAscii(left) == right; });
}

struct ReportTypes {
    FileNames persistDataFiles;
    FileNames reportTypeFiles;

    void add(xmlNode* typeElement, const std::string& requestedGuid) {
        const XmlPtr<xmlChar> attribute(xmlGetProp(typeElement, xmlText("guid")));
        const std::string_view guid = trimmedView(attribute.get());
        const bool isRequested = equalsInLowerCase(guid, requestedGuid);
        if (!isRequested && (areUsable() || !isGuidText(toLowerCopy(std::string(guid))))) return;
        const FileNameTexts texts = readFileNames(typeElement);
        if (!texts.persistDataFile || !texts.reportTypeFile) return;
        const std::string key = isRequested ? requestedGuid : std::string();
        persistDataFiles.add(key, texts.persistDataFile.get());
        reportTypeFiles.add(key, texts.reportTypeFile.get());
    }

    bool areUsable() const { return persistDataFiles.anyUsable && reportTypeFiles.anyUsable; }
};

}  // namespace

Status findFileName(const FileNameTable& table, const std::string& guid, std::string& fileName) {
    const auto found = table.find(guid);
    if (found == table.end()) return RGEN_E_GUID_NOT_IN_CONFIG;
    fileName = found->second;
    // On purpose: a safeguard that no configuration triggers, since add() skips empty names.
    return fileName.empty() ? RGEN_E_XPATH_NODE_EMPTY : RGEN_OK;
}

Status lookupReportType(ReportGenerator& /*generator*/, xmlDoc* configuration, const Guid& guid,
                        ReportTypeEntry& entry) {
    XPathQuery query;
    const Status selected =
        query.select(configuration, "/config/reportTypes/type[@guid]", RGEN_E_NO_TYPE_MAP);
    if (failed(selected)) return selected;
    const std::string key = formatGuid(guid);
    ReportTypes types;
    query.forEachElement([&](xmlNode* element) { types.add(element, key); });
    if (!types.areUsable()) return RGEN_E_NO_VALID_TYPE_MAP;
    const Status found = findFileName(types.persistDataFiles.table, key, entry.persistDataFile);
    if (failed(found)) return found;
    return findFileName(types.reportTypeFiles.table, key, entry.reportTypeFile);
}

}  // namespace rgen

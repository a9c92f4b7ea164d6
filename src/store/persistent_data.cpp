// Persistent data. Nothing is cached: each operation reads or writes the file. A write removes the
// old file first; there is no temporary file and no rename.
//
// SPDX-License-Identifier: MIT
#include "store/persistent_data.h"

#include <utility>

#include "store/base/file_system.h"
#include "store/data_directory.h"
#include "store/xml/file.h"
#include "store/xml/parser_context.h"
#include "store/xml/text.h"
#include "store/xml/xpath.h"
#include "variant/hinted_convertors.h"

namespace rgen {
namespace {

void addProperty(xmlNode* element, PropertyMap& properties) {
    const std::string name = attributeText(element, "name");
    if (name.empty()) return;
    std::string text = nodeText(element);
    if (!text.empty()) properties[name] = std::move(text);
}

}  // namespace

Status readPersistentData(ReportGenerator& generator, const std::string& fileName,
                          PropertyMap& properties) {
    properties.clear();
    const std::string path = dataDirPathOf(generator) + fileName;
    const XmlSilence silence;
    const XmlPtr<xmlDoc> document = readXmlFile(path);
    if (!document) return RGEN_E_OPEN_PERSIST;
    XPathQuery query;
    const Status selected =
        query.select(document.get(), "/data/properties/property[@name]", RGEN_E_NO_PERSIST_VALUES);
    if (failed(selected)) return selected;
    query.forEachElement([&properties](xmlNode* element) { addProperty(element, properties); });
    return properties.empty() ? RGEN_E_NO_VALID_PERSIST_VALUES : RGEN_OK;
}

Status writePersistentData(ReportGenerator& generator, const std::string& fileName,
                           const PropertyMap& properties) {
    const std::string path = dataDirPathOf(generator) + fileName;
    // On purpose: the old file is removed before the new one is written, and not restored on
    // failure.
    if (!makeRoomForFile(path)) return RGEN_E_DELETE_PERSIST;
    const XmlSilence silence;
    const XmlPtr<xmlDoc> document = buildPropertyDocument(properties);
    return saveXmlFile(path, document.get()) ? RGEN_OK : RGEN_E_CREATE_PERSIST;
}

Status getPersistentData(ReportGenerator& generator, const Guid& guid, PropertyMap& properties) {
    ReportTypeEntry entry;
    const Status loaded = loadReportType(generator, guid, entry);
    if (failed(loaded)) return loaded;
    return readPersistentData(generator, entry.persistDataFile, properties);
}

Status setPersistentDataFromPairs(ReportGenerator& generator, const Guid& guid,
                                  const PropertyMap& properties) {
    ReportTypeEntry entry;
    const Status loaded = loadReportType(generator, guid, entry);
    if (failed(loaded)) return loaded;
    return writePersistentData(generator, entry.persistDataFile, properties);
}

Status setPersistentDataFromValues(ReportGenerator& generator, const Guid& guid,
                                   const VariantMap& values) {
    PropertyMap properties;
    ValueTexts texts;
    for (const auto& [name, value] : values)
        properties[name] = texts.of(value);
    return setPersistentDataFromPairs(generator, guid, properties);
}

}  // namespace rgen

// The raw input dump. It contains no types and hints, so it cannot be read as simulated input,
// whose file format has the same elements but more attributes.
//
// SPDX-License-Identifier: MIT
#include "variant/raw_dump.h"

#include "store/base/file_system.h"
#include "store/xml/file.h"
#include "store/xml/parser_context.h"
#include "store/xml/property_document.h"
#include "variant/hinted_convertors.h"

namespace rgen {

Status writeRawInputDump(ReportGenerator& /*generator*/, const VariantMap& values,
                         const std::string& path) {
    PropertyMap properties;
    ValueTexts texts;
    for (const auto& [name, value] : values)
        properties[name] = texts.of(value);
    if (!makeRoomForFile(path)) return RGEN_E_DELETE_DUMP;
    const XmlSilence silence;
    const XmlPtr<xmlDoc> document = buildPropertyDocument(properties);
    // On purpose: the dump shares its failure status with the persistent data store.
    return saveXmlFile(path, document.get()) ? RGEN_OK : RGEN_E_CREATE_PERSIST;
}

}  // namespace rgen

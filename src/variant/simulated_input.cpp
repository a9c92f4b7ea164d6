// Simulated input. The file is written by users and programs of the host, so invalid properties are
// skipped and the others are still read.
//
// SPDX-License-Identifier: MIT
#include "variant/simulated_input.h"

#include <cstdlib>
#include <utility>

#include "store/base/file_system.h"
#include "store/xml/file.h"
#include "store/xml/parser_context.h"
#include "store/xml/text.h"
#include "store/xml/xpath.h"
#include "variant/byte_dump.h"

namespace rgen {
namespace {

void addValue(xmlNode* element, VariantMap& values) {
    const std::string name = attributeText(element, "name");
    const VariantHint hint = hintFromName(attributeText(element, "hint"));
    const std::string canonicalName = canonicalTypeName(attributeText(element, "type"));
    if (name.empty() || hint == VariantHint::Uninitialized || canonicalName.empty()) return;
    const std::string text = nodeText(element);
    Variant value;
    if (!text.empty() && parseVariant(text, canonicalName, hint, value)) {
        values[name] = std::move(value);
    }
}

}  // namespace

Status readSimulatedRawInput(ReportGenerator& /*generator*/, const char* path, VariantMap& values) {
    if (path == nullptr || !pathExists(path)) return RGEN_E_OPEN_SIMULATION;
    values.clear();
    const XmlSilence silence;
    const XmlPtr<xmlDoc> document = readXmlFile(path);
    if (!document) return RGEN_E_OPEN_SIMULATION;
    XPathQuery query;
    // On purpose: without any property the status is that of the persistent data reader.
    const Status selected =
        query.select(document.get(), "/data/properties/property[@name and (@type) and (@hint)]",
                     RGEN_E_NO_PERSIST_VALUES);
    if (failed(selected)) return selected;
    query.forEachElement([&values](xmlNode* element) { addValue(element, values); });
    return RGEN_OK;
}

bool parseVariant(const std::string& text, const std::string& canonicalName, VariantHint hint,
                  Variant& variant) {
    if (!isKnownHint(hint)) return false;
    if (canonicalName == "std::string") {
        variant = Variant(text, hint);
        return true;
    }
    if (canonicalName == "int64_t") {
        // On purpose: reading stops at the first character that is not part of a number.
        variant = Variant(std::int64_t{std::strtoll(text.c_str(), nullptr, 10)}, hint);
        return true;
    }
    if (canonicalName != "std::vector<uint8_t>") return false;
    ByteVector bytes;
    if (!parseByteDump(text, bytes)) return false;
    variant = Variant(std::move(bytes), hint);
    return true;
}

}  // namespace rgen

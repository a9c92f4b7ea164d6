// Bytes as a persistent data file: read, read again, stored and read back, and put into a report.
//
// SPDX-License-Identifier: MIT
#include "fuzz_support.h"
#include "fuzz_targets.h"

namespace rgen_fuzz {
namespace {

// One line for each property.
const char* const lineTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"/\">"
    "<xsl:for-each select=\"data/properties/property\">*</xsl:for-each>"
    "</xsl:template></xsl:stylesheet>";

const Generator& generator() {
    static const Generator instance = [] {
        writeWorkFile("persistent/.rgen/templates/txt/test_stylesheet.xsl", lineTemplate);
        return Generator("persistent");
    }();
    return instance;
}

// A report has the persistent properties and nothing else.
void checkReport(const TextMap& pairs) {
    std::string report;
    const RgenStatus status = generateBytes(generator(), {}, "txt", report);
    requireOneOf(status, {pairs.empty() ? RGEN_E_EMPTY_INPUT : RGEN_OK}, "rgen_generateReport");
    require(report == std::string(pairs.size(), '*'), "the report has other properties", report);
}

}  // namespace

void fuzzPersistent(const std::string& input) {
    const Generator& target = generator();
    writeWorkFile("persistent/.rgen/persist_data.xml", input);
    TextMap pairs;
    const RgenStatus status = readPersistentData(target, pairs);
    requireOneOf(
        status,
        {RGEN_OK, RGEN_E_OPEN_PERSIST, RGEN_E_NO_PERSIST_VALUES, RGEN_E_NO_VALID_PERSIST_VALUES},
        "rgen_getPersistentData");
    TextMap again;
    require(readPersistentData(target, again) == status && again == pairs,
            "the same file was read in two ways");
    checkReport(pairs);
    requireStableStorage(target, pairs);
}

}  // namespace rgen_fuzz

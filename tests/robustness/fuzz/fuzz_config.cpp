// Bytes as config.xml: every reader of it must return a documented status, and all the same one.
//
// SPDX-License-Identifier: MIT
#include <boost/filesystem/exception.hpp>
#include <stdexcept>

#include "fuzz_support.h"
#include "fuzz_targets.h"

namespace rgen_fuzz {
namespace {

const char* const persistentData =
    "<data><properties><property name=\"n\">text</property></properties></data>";
const char* const reportTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"/\">ok</xsl:template></xsl:stylesheet>";

// The files that the default configuration names, and one more pair.
const Generator& generator() {
    static const Generator instance = [] {
        writeWorkFile("config/.rgen/persist_data.xml", persistentData);
        writeWorkFile("config/.rgen/p.xml", persistentData);
        writeWorkFile("config/.rgen/templates/txt/test_stylesheet.xsl", reportTemplate);
        writeWorkFile("config/.rgen/templates/txt/t.xsl", reportTemplate);
        return Generator("config");
    }();
    return instance;
}

// Names that the file system refuses (too long, or no valid UTF-8, as a reference to a surrogate
// makes them) are thrown as exceptions; all others end with a status.
template <typename Call>
bool throws(const Call& call) {
    try {
        call();
        return false;
    } catch (const boost::filesystem::filesystem_error&) {
        return true;
    } catch (const std::range_error&) {
        return true;
    }
}

void requireSameConfiguration(RgenStatus read, RgenStatus made) {
    for (const RgenStatus status : {RGEN_E_OPEN_CONFIG, RGEN_E_GUID_NOT_IN_CONFIG,
                                    RGEN_E_NO_TYPE_MAP, RGEN_E_NO_VALID_TYPE_MAP}) {
        require((read == status) == (made == status), "the configuration was read in two ways");
    }
}

}  // namespace

void fuzzConfig(const std::string& input) {
    // File names may lead out of the data directory; the target stays in its folder.
    if (input.find("..") != std::string::npos) return;
    const Generator& target = generator();
    writeWorkFile("config/.rgen/config.xml", input);
    TextMap pairs;
    RgenStatus read = RGEN_OK;
    const bool readThrows = throws([&] { read = readPersistentData(target, pairs); });
    requireOneOf(read,
                 {RGEN_OK, RGEN_E_OPEN_CONFIG, RGEN_E_GUID_NOT_IN_CONFIG, RGEN_E_NO_TYPE_MAP,
                  RGEN_E_NO_VALID_TYPE_MAP, RGEN_E_OPEN_PERSIST, RGEN_E_NO_PERSIST_VALUES,
                  RGEN_E_NO_VALID_PERSIST_VALUES},
                 "rgen_getPersistentData");

    ValueSet values;
    values.addString("n", "v");
    std::string report;
    RgenStatus made = RGEN_OK;
    const bool madeRaises =
        throws([&] { made = generateBytes(target, values.record(), "txt", report); });
    requireOneOf(made,
                 {RGEN_OK, RGEN_E_OPEN_CONFIG, RGEN_E_GUID_NOT_IN_CONFIG, RGEN_E_NO_TYPE_MAP,
                  RGEN_E_NO_VALID_TYPE_MAP, RGEN_E_TEMPLATE_NOT_FOUND, RGEN_E_XSLT_PARSE,
                  RGEN_E_XSLT_APPLY, RGEN_E_XSLT_RESULT},
                 "rgen_generateReport");
    if (!readThrows && !madeRaises) requireSameConfiguration(read, made);
    require(readWorkFile("config/.rgen/config.xml") == input, "config.xml was rewritten");
}

}  // namespace rgen_fuzz

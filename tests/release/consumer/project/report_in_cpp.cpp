// A host in C++17: it writes a template of its own and prints the report, which arrives as bytes.
// The argument is an empty folder for the data directory.
//
// SPDX-License-Identifier: MIT
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string_view>

#include "strata_repgenlib/rgen.h"

namespace {

constexpr const char* const sheet =
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
    "<xsl:output method='text'/><xsl:template match='/'>"
    "<xsl:for-each select='//property'><xsl:value-of select='@name'/>=<xsl:value-of select='.'/>"
    "</xsl:for-each></xsl:template></xsl:stylesheet>\n";

/// The names are those of the configuration that the library makes on its own.
void writeTemplate(const std::filesystem::path& folder) {
    const std::filesystem::path templates = folder / ".rgen" / "templates" / "txt";
    std::filesystem::create_directories(templates);
    std::ofstream(templates / "test_stylesheet.xsl") << sheet;
}

RgenStatus printReport(RgenReportGenerator* generator) {
    RgenCInputParams input = {};
    RgenCVariant report = {};
    input.templateGuid = RgenGuid{0xDEADBABE, 0, 0, {}};
    input.outputMode = RGEN_OUTPUT_BYTES;
    rgen_createRgenCVariantSet(&input.variants, 1);
    rgen_createRgenCVariantInt64("Capacity", 500107862016, RGEN_HINT_SIZE, input.variants.items);
    rgen_createRgenAnsiString("txt", &input.outputFormat);
    const RgenStatus status = rgen_generateReport(generator, &input, &report);
    if (status >= 0) {
        const RgenByteArray& bytes = report.value.byteArrayValue;
        std::cout << std::string_view(reinterpret_cast<const char*>(bytes.data), bytes.size)
                  << '\n';
    }
    rgen_freeRgenCVariant(&report);
    rgen_freeRgenCInputParams(&input);
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const std::unique_ptr<RgenReportGenerator, decltype(&rgen_freeReportGenerator)> generator(
        rgen_newReportGenerator(), rgen_freeReportGenerator);
    writeTemplate(argv[1]);
    RgenStatus status = rgen_setDataDirPath(generator.get(), argv[1]);
    if (status >= 0) status = printReport(generator.get());
    std::cout << rgen_getStatusCodeDescription(generator.get(), status) << '\n';
    return status < 0;
}

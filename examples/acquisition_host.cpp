// The acquisition report as html and txt in three languages: what acquisition_report.c does in C,
// with the C++ header. Usage and files are the same.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <fstream>
#include <iostream>

#include "acquisition_values.h"

extern "C" {
#include "acquisition_texts.h"
}

namespace repgen = strata::repgen;
namespace fs = std::filesystem;

namespace {

/// Generates a report as a file, then in memory, and compares the bytes.
void makeReport(repgen::Generator& generator, const repgen::Request& request,
                const fs::path& output) {
    generator.generateFile(request, output);
    std::ifstream file(output, std::ios::binary);
    const std::string written{std::istreambuf_iterator<char>(file), {}};
    const repgen::Bytes bytes = generator.generateBytes(request);
    if (!std::equal(bytes.begin(), bytes.end(), written.begin(), written.end(),
                    [](std::uint8_t byte, char letter) { return byte == std::uint8_t(letter); })) {
        throw std::runtime_error(repgen::Path(output).utf8() + ": the bytes differ");
    }
    std::cout << repgen::Path(output).utf8() << "\n";
}

void makeReports(const fs::path& dataDir, const fs::path& outputDir) {
    repgen::Generator generator(dataDir);
    generator.setPersistentData(acquisitionType, laboratoryData());
    repgen::Request request{acquisitionType, "", acquisitionValues(), acquisitionRemarks()};
    for (const AcquisitionLanguage& language : acquisitionLanguages) {
        AcquisitionTranslator table = {&language, 0};
        generator.setTranslator(
            [&table](const std::string& text) -> std::string {
                return translateAcquisitionText(text.c_str(), &table);
            },
            repgen::TextForm::Markup);
        for (const char* format : {"html", "txt"}) {
            request.format = format;
            makeReport(generator, request,
                       outputDir / ("acquisition-" + std::string(language.code) + "." + format));
        }
        // The translator must not outlive the objects that it refers to.
        generator.clearTranslator();
        if (table.missing > 0) throw std::runtime_error("some texts have no translation");
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: acquisition_host DATA_DIR OUTPUT_DIR\n"
                     "  DATA_DIR    folder that holds a copy of templates/acquisition named .rgen\n"
                     "  OUTPUT_DIR  existing folder for acquisition-{en,de,ru}.{html,txt}\n";
        return 2;
    }
    try {
        makeReports(argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::cerr << "acquisition_host: " << error.what() << "\n";
        return 1;
    }
    return 0;
}

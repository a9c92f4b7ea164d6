// A host that writes the same thing over and over, until it has done so ROUNDS times or is killed.
// Usage: writing_host KIND FOLDER [ROUNDS]
//
//   config    removes config.xml and has it made anew
//   persist   replaces persistent data
//   file, handle, bytes, pdf   makes a report: modes 0, 1 and 2, and mode 0 with the converter
//   dump      replaces a dump
//
// Every round writes texts of one letter. After each, the file "progress" in the folder grows by
// one byte. Exit codes: 0 all rounds done, 3 a status that no documented outcome explains, 4 an
// exception, 5 a wrong result.
//
// SPDX-License-Identifier: MIT
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/test_platform.h"

namespace {

constexpr int unexpectedStatus = 3;
constexpr int exceptionLeft = 4;
constexpr int wrongResult = 5;

// The default configuration's report type.
const RgenGuid guid = {0xDEADBABEU, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};

class WritingHost {
public:
    WritingHost(const char* kind, const char* folder)
        : kind_(kind), folder_(folder), generator_(rgen_newReportGenerator()) {
        rgen_setDataDirPath(generator_, folder);
    }
    ~WritingHost() { rgen_freeReportGenerator(generator_); }
    WritingHost(const WritingHost&) = delete;
    WritingHost& operator=(const WritingHost&) = delete;

    // One round; returns 0 or the exit code of the failure.
    int write(unsigned long round) {
        const std::string text(kind_ == "persist" ? 400 : 60000,
                               static_cast<char>('a' + round % 26));
        if (kind_ == "config") return makeConfiguration();
        if (kind_ == "persist") return replaceData(text);
        if (kind_ == "dump") return replaceDump(text);
        if (kind_ == "handle") return report(text, RGEN_OUTPUT_DELETE_ON_CLOSE, "html");
        if (kind_ == "bytes") return report(text, RGEN_OUTPUT_BYTES, "html");
        return report(text, RGEN_OUTPUT_FILE, kind_ == "pdf" ? "pdf" : "html");
    }

private:
    int makeConfiguration() {
        std::remove((folder_ + "/.rgen/config.xml").c_str());
        RgenCAnsiStringPairSet pairs{};
        const RgenStatus status = rgen_getPersistentData(generator_, &guid, &pairs);
        rgen_freeRgenCAnsiStringSet(&pairs);
        switch (status) {
            case RGEN_OK:
            // Another host is about to write the file, or has just removed it.
            case RGEN_E_CREATE_CONFIG:
            case RGEN_E_OPEN_CONFIG:
            case RGEN_E_NO_TYPE_MAP:
            case RGEN_E_NO_VALID_TYPE_MAP:
                return 0;
            default:
                return unexpectedStatus;
        }
    }

    int replaceData(const std::string& text) {
        constexpr int properties = 60;
        RgenCVariantSet values{};
        rgen_createRgenCVariantSet(&values, properties);
        for (int index = 0; index < properties; ++index) {
            rgen_createRgenCVariantString(("p" + std::to_string(index)).c_str(), text.c_str(),
                                          RGEN_HINT_GENERIC, &values.items[index]);
        }
        const RgenStatus status = rgen_setPersistentDataFromCVariantSet(generator_, &guid, &values);
        rgen_freeRgenCVariantSet(&values);
        return status == RGEN_OK ? 0 : unexpectedStatus;
    }

    void fill(RgenCInputParams& input, const std::string& text) {
        input.templateGuid = guid;
        rgen_createRgenCVariantSet(&input.variants, 1);
        rgen_createRgenCVariantString("v", text.c_str(), RGEN_HINT_GENERIC,
                                      &input.variants.items[0]);
    }

    int replaceDump(const std::string& text) {
        RgenCInputParams input{};
        fill(input, text);
        const RgenStatus status =
            rgen_dumpRawInputDataToFile(generator_, &input, (folder_ + "/dump.xml").c_str());
        rgen_freeRgenCInputParams(&input);
        return status == RGEN_OK ? 0 : unexpectedStatus;
    }

    int report(const std::string& text, std::uint64_t mode, const char* format) {
        RgenCInputParams input{};
        RgenCVariant result{};
        fill(input, text);
        input.outputMode = mode;
        rgen_createRgenAnsiString(format, &input.outputFormat);
        rgen_createRgenAnsiString((folder_ + "/report." + format).c_str(), &input.outputPath);
        const RgenStatus status = rgen_generateReport(generator_, &input, &result);
        bool right = true;
        if (status == RGEN_OK && mode == RGEN_OUTPUT_DELETE_ON_CLOSE)
            right = rgen_test::closesOnBytes(result.value.handleValue, text);
        if (status == RGEN_OK && mode == RGEN_OUTPUT_BYTES)
            right = result.value.byteArrayValue.size == text.size();
        rgen_freeRgenCVariant(&result);
        rgen_freeRgenCInputParams(&input);
        if (status != RGEN_OK) return unexpectedStatus;
        return right ? 0 : wrongResult;
    }

    std::string kind_;
    std::string folder_;
    RgenReportGenerator* generator_;
};

}  // namespace

int main(int argc, char** argv) try {
    if (argc < 3) return EXIT_FAILURE;
    const unsigned long rounds = argc > 3 ? std::strtoul(argv[3], nullptr, 10) : ~0UL;
    WritingHost host(argv[1], argv[2]);
    std::ofstream progress(std::string(argv[2]) + "/progress", std::ios::binary | std::ios::app);
    for (unsigned long round = 0; round < rounds; ++round) {
        const int result = host.write(round);
        if (result != 0) return result;
        progress << '.' << std::flush;
    }
    return EXIT_SUCCESS;
} catch (const std::exception&) {
    return exceptionLeft;
}

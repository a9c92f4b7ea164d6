// A host that uses the library at each moment while it ends: in exit functions that were registered
// before and after the first use, in the destructor of an ordinary global object, in the end of the
// program and of a library. Its own data needs no destructor. Each moment
// writes a line into the file "moments" of the folder.
//
// Arguments: folder, use, library, late library ("-" for none). The use is one of "held" (the
// global object has a generator from main), "freed" (all are freed in main) and "unused" (main
// calls nothing).
//
// SPDX-License-Identifier: MIT
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "robustness/ending/ending_library.h"
#include "support/every_status.h"

namespace rgen_test {
namespace {

constexpr std::size_t statusCount = sizeof everyStatus / sizeof *everyStatus;

constexpr std::size_t longestPath = 4096;

EndingLibrary library;
char folder[longestPath];
const char* texts[statusCount];

void pathOf(const char* name, char (&path)[longestPath]) {
    std::snprintf(path, longestPath, "%.4000s/%.60s", folder, name);
}

void note(const char* moment, const char* problem) {
    char path[longestPath];
    pathOf("moments", path);
    std::FILE* file = std::fopen(path, "ab");
    if (file == nullptr) std::abort();
    std::fprintf(file, "%s: %s\n", moment, problem == nullptr ? "right" : problem);
    std::fclose(file);
}

const char* describeAll(RgenReportGenerator* generator) {
    for (std::size_t i = 0; i < statusCount; ++i) {
        const char* text = library.describe(generator, everyStatus[i].status);
        if (std::strcmp(text, "Undescribed error") == 0) return "a status has no description";
        if (texts[i] != nullptr && texts[i] != text) return "a description has moved";
        texts[i] = text;
    }
    const bool isFixed =
        std::strcmp(library.describe(nullptr, RGEN_OK), "bad function parameter") == 0 &&
        std::strcmp(library.describe(generator, 5), "Unknown code.") == 0;
    return isFixed ? nullptr : "a fixed text is wrong";
}

// The file has one value of each kind that is no number, and a number for each hint, its own.
bool isRight(const RgenCVariant& value) {
    if (value.name.data == nullptr) return false;
    if (std::strcmp(value.name.data, "text") == 0)
        return value.type == RGEN_TYPE_STRING &&
               std::strcmp(value.value.stringValue.data, "a text") == 0;
    if (std::strcmp(value.name.data, "bytes") == 0)
        return value.type == RGEN_TYPE_BYTE_ARRAY && value.value.byteArrayValue.size == 2;
    return value.type == RGEN_TYPE_INT64 &&
           static_cast<std::uint64_t>(value.value.int64Value) == value.hint;
}

const char* readSimulatedInput(RgenReportGenerator* generator) {
    char path[longestPath];
    pathOf("in.xml", path);
    RgenCVariantSet set = {};
    if (library.simulate(generator, path, &set) != 1) return "no simulated input";
    const char* problem = set.count == 9 ? nullptr : "simulated input lacks values";
    for (std::uint64_t i = 0; i < set.count; ++i) {
        if (!isRight(set.items[i])) problem = "a simulated value is wrong";
    }
    library.freeValues(&set);
    return problem;
}

const char* makeReport(RgenReportGenerator* generator) {
    RgenCInputParams input = {};
    library.createValues(&input.variants, 1);
    library.createNumber("size", 255, RGEN_HINT_ADDRESS, &input.variants.items[0]);
    library.createText("html", &input.outputFormat);
    input.templateGuid.data1 = 0xDEADBABEU;
    input.outputMode = RGEN_OUTPUT_BYTES;
    RgenCVariant result = {};
    const RgenStatus status = library.generate(generator, &input, &result);
    const bool isRight = status == RGEN_OK && result.value.byteArrayValue.size == 4 &&
                         std::memcmp(result.value.byteArrayValue.data, "0xff", 4) == 0;
    library.freeValue(&result);
    library.freeInput(&input);
    return isRight ? nullptr : "the report is wrong";
}

const char* storePair(RgenReportGenerator* generator) {
    RgenGuid guid = {};
    guid.data1 = 0xDEADBABEU;
    RgenCAnsiStringPairSet pairs = {};
    library.createPairs(&pairs, 1);
    library.createText("name", &pairs.keys[0]);
    library.createText("text", &pairs.values[0]);
    const RgenStatus stored = library.setPersistentData(generator, &guid, &pairs);
    library.freePairs(&pairs);
    const RgenStatus read = library.getPersistentData(generator, &guid, &pairs);
    const bool isRight = stored == RGEN_OK && read == RGEN_OK && pairs.count == 1 &&
                         std::strcmp(pairs.values[0].data, "text") == 0;
    library.freePairs(&pairs);
    return isRight ? nullptr : "persistent data is wrong";
}

const char* useGenerator(RgenReportGenerator* generator) {
    if (generator == nullptr) return "no generator";
    const char* problem = nullptr;
    if (library.setDataDirPath(generator, folder) != RGEN_OK) problem = "no data directory";
    for (const auto& use : {describeAll, readSimulatedInput, makeReport, storePair}) {
        if (problem == nullptr) problem = use(generator);
    }
    library.freeGenerator(generator);
    return problem;
}

// Two generators one after the other: with the first one's end no handle may be left.
void useAt(const char* moment) {
    if (library.describe == nullptr) return;
    const char* problem = useGenerator(library.newGenerator());
    note(moment, problem != nullptr ? problem : useGenerator(library.newGenerator()));
}

class OrdinaryObject {
public:
    OrdinaryObject() = default;
    ~OrdinaryObject() {
        if (generator != nullptr) note("held generator", useGenerator(generator));
        useAt("destructor");
    }
    OrdinaryObject(const OrdinaryObject&) = delete;
    OrdinaryObject& operator=(const OrdinaryObject&) = delete;

    RgenReportGenerator* generator = nullptr;
};

OrdinaryObject ordinaryObject;

[[gnu::destructor]] void endProgram() {
    useAt("end of the program");
}

}  // namespace
}  // namespace rgen_test

int main(int count, char** arguments) {
    using namespace rgen_test;
    std::atexit([] { useAt("exit function registered first"); });
    if (count != 5) return 2;
    std::snprintf(folder, sizeof folder, "%s", arguments[1]);
    const char* late = arguments[4];
    if (std::strcmp(late, "-") != 0 && !loadLateLibrary(late, [] { useAt("end of a library"); })) {
        return 3;
    }
    if (!openLibrary(arguments[3], library)) return 4;
    if (std::strcmp(arguments[2], "unused") != 0) useAt("main");
    if (std::strcmp(arguments[2], "held") == 0) ordinaryObject.generator = library.newGenerator();
    std::atexit([] { useAt("exit function registered last"); });
    return 0;
}

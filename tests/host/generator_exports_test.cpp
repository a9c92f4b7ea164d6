// Null arguments of the generator exports, the lifetime of handles, the translate setter, cancel.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::InputParams;
using rgen_test::PairSet;
using rgen_test::Result;
using rgen_test::statusHex;
using rgen_test::TempFolder;
using rgen_test::VariantSet;

const char* const markedTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"/\">"
    "QT_TRANSLATE_NOOP(\"QObject\", \"hello\")</xsl:template></xsl:stylesheet>";

const char* RGEN_CALL withPrefix(const char* text, void* context) {
    static thread_local std::string translated;
    const char* prefix = context == nullptr ? "null" : static_cast<const char*>(context);
    translated = std::string(prefix) + ":" + text;
    return translated.c_str();
}

const char* RGEN_CALL inBrackets(const char* text, void*) {
    static thread_local std::string translated;
    translated = std::string("[") + text + "]";
    return translated.c_str();
}

// A generator with one report type whose report is the translation of "hello".
class MarkedReport {
public:
    MarkedReport() : generator_(folder_.path()) {
        rgen_test::writeFile(folder_.dataFile("templates/html/test_stylesheet.xsl"),
                             markedTemplate);
    }
    RgenReportGenerator* generator() const { return generator_.get(); }
    std::string text() const {
        InputParams input;
        input.variants().addInt64("n", 1);
        Result result;
        EXPECT_EQ(statusHex(RGEN_OK),
                  statusHex(rgen_generateReport(generator(), input.get(), result.get())));
        return result.bytes();
    }

private:
    TempFolder folder_;
    Generator generator_;
};

// ---- Handles --------------------------------------------------------------------------------

TEST(NewReportGenerator, GivesHandlesOfTheirOwn) {
    const Generator first;
    const Generator second;
    EXPECT_NE(first.get(), second.get());
}

TEST(NewReportGenerator, AGeneratorOutlivesAnother) {
    const TempFolder folder;
    const Generator kept(folder.path());
    { const Generator ended(folder.path()); }
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST),
              statusHex(rgen_test::persistentData(kept, rgen_test::defaultGuid()).status));
}

TEST(NewReportGenerator, ManyThreadsMayCreateAtOnce) {
    std::atomic<int> waiting{8};
    std::atomic<int> missing{0};
    std::vector<std::thread> threads;
    for (int index = 0; index < 8; ++index) {
        threads.emplace_back([&] {
            --waiting;
            while (waiting > 0) {
                std::this_thread::yield();
            }
            RgenReportGenerator* generator = rgen_newReportGenerator();
            missing += generator == nullptr ? 1 : 0;
            rgen_freeReportGenerator(generator);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, missing);
}

TEST(FreeReportGenerator, NullDoesNothing) {
    rgen_freeReportGenerator(nullptr);
}

TEST(FreeReportGenerator, LeavesTheFilesAlone) {
    const TempFolder folder;
    {
        const Generator generator(folder.path());
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_test::storePairs(
                                          generator, rgen_test::defaultGuid(), {{"a", "b"}})));
    }
    EXPECT_EQ((std::vector<std::string>{"config.xml", "persist_data.xml"}),
              rgen_test::namesIn(folder.dataDir()));
}

// ---- Null arguments -------------------------------------------------------------------------

TEST(NullArguments, SetDataDirPath) {
    const TempFolder folder;
    const Generator generator;
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
              statusHex(rgen_setDataDirPath(nullptr, folder.path().c_str())));
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
              statusHex(rgen_setDataDirPath(generator.get(), nullptr)));
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER), statusHex(rgen_setDataDirPath(nullptr, nullptr)));
}

TEST(NullArguments, GenerateReportTouchesNothing) {
    const TempFolder folder;
    const Generator generator(folder.path());
    InputParams input;
    input.variants().addInt64("n", 1);
    RgenCVariant result;
    std::memset(&result, 0xA5, sizeof result);
    const RgenCVariant before = result;
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
              statusHex(rgen_generateReport(nullptr, input.get(), &result)));
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
              statusHex(rgen_generateReport(generator.get(), nullptr, &result)));
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
              statusHex(rgen_generateReport(generator.get(), input.get(), nullptr)));
    EXPECT_EQ(0, std::memcmp(&before, &result, sizeof result));
    EXPECT_FALSE(rgen_test::exists(folder.dataDir()));
}

TEST(NullArguments, GetPersistentDataWithoutAHandle) {
    const RgenGuid guid = rgen_test::defaultGuid();
    RgenCAnsiStringPairSet set{nullptr, nullptr, 7};
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
              statusHex(rgen_getPersistentData(nullptr, &guid, &set)));
    EXPECT_EQ(7U, set.count);
}

TEST(NullArguments, SetPersistentDataWithoutASet) {
    const TempFolder folder;
    const Generator generator(folder.path());
    const RgenGuid guid = rgen_test::defaultGuid();
    EXPECT_EQ(
        statusHex(RGEN_E_BAD_PARAMETER),
        statusHex(rgen_setPersistentDataFromAnsiStringPairSet(generator.get(), &guid, nullptr)));
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
              statusHex(rgen_setPersistentDataFromCVariantSet(generator.get(), &guid, nullptr)));
    EXPECT_FALSE(rgen_test::exists(folder.dataDir()));
}

TEST(NullArguments, DumpRawInputDataToFile) {
    const TempFolder folder;
    const Generator generator;
    const std::string path = folder.file("dump.xml");
    InputParams input;
    input.variants().addInt64("n", 1);
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
              statusHex(rgen_dumpRawInputDataToFile(nullptr, input.get(), path.c_str())));
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
              statusHex(rgen_dumpRawInputDataToFile(generator.get(), nullptr, path.c_str())));
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
              statusHex(rgen_dumpRawInputDataToFile(generator.get(), input.get(), nullptr)));
    EXPECT_FALSE(rgen_test::exists(path));
}

TEST(NullArguments, DumpRawInputDataToFileWithoutItems) {
    const TempFolder folder;
    const Generator generator;
    const std::string path = folder.file("dump.xml");
    rgen_test::writeFile(path, "old");
    InputParams input;
    input.pairs().add("key", "value");
    for (const std::uint64_t count : {std::uint64_t{0}, std::uint64_t{3}}) {
        RgenCInputParams* record = input.get();
        record->variants.items = nullptr;
        record->variants.count = count;
        EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
                  statusHex(rgen_dumpRawInputDataToFile(generator.get(), record, path.c_str())));
    }
    EXPECT_EQ("old", rgen_test::readFile(path));
}

TEST(NullArguments, GetSimulatedRawDataFromFile) {
    const TempFolder folder;
    const Generator generator;
    const std::string path = folder.file("simulation.xml");
    rgen_test::writeFile(path,
                         "<data><properties><property name='a' type='int64' hint='Generic'>1"
                         "</property></properties></data>");
    RgenCVariantSet set{nullptr, 7};
    EXPECT_EQ(0, rgen_getSimulatedRawDataFromFile(nullptr, path.c_str(), &set));
    EXPECT_EQ(0, rgen_getSimulatedRawDataFromFile(generator.get(), nullptr, &set));
    EXPECT_EQ(0, rgen_getSimulatedRawDataFromFile(generator.get(), path.c_str(), nullptr));
    EXPECT_EQ(nullptr, set.items);
    EXPECT_EQ(7U, set.count);
}

TEST(NullArguments, CancelDoesNothing) {
    const RgenGuid guid = rgen_test::defaultGuid();
    rgen_cancel(nullptr, nullptr);
    rgen_cancel(nullptr, &guid);
}

// ---- Nulls inside the request ---------------------------------------------------------------

TEST(GenerateReportArguments, ANullOutputPathIsAnEmptyOne) {
    const MarkedReport report;
    InputParams input;
    input.variants().addInt64("n", 1);
    RgenCInputParams* record = input.get();
    EXPECT_EQ(nullptr, record->outputPath.data);
    EXPECT_EQ(nullptr, record->converterBaseArg.data);
    Result result;
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_generateReport(report.generator(), record, result.get())));
    EXPECT_EQ("hello", result.bytes());
}

TEST(GenerateReportArguments, ANullOutputFormatIsAnEmptyOne) {
    const MarkedReport report;
    InputParams input;
    input.variants().addInt64("n", 1);
    rgen_freeRgenAnsiString(&input.get()->outputFormat);
    Result result;
    EXPECT_EQ(statusHex(RGEN_E_TEMPLATE_NOT_FOUND),
              statusHex(rgen_generateReport(report.generator(), input.get(), result.get())));
}

TEST(GenerateReportArguments, NullArraysAreEmptySetsWhateverTheirCount) {
    const MarkedReport report;
    InputParams input;
    input.pairs().add("key", "value");
    RgenCInputParams* record = input.get();
    record->variants.items = nullptr;
    record->variants.count = 5;
    Result result;
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_generateReport(report.generator(), record, result.get())));
    record->pairs.keys = nullptr;
    record->pairs.values = nullptr;
    Result none;
    EXPECT_EQ(statusHex(RGEN_E_EMPTY_INPUT),
              statusHex(rgen_generateReport(report.generator(), record, none.get())));
    EXPECT_EQ(0U, none.record().type);
}

TEST(GenerateReportArguments, ModeZeroLeavesTheResultRecordAlone) {
    const MarkedReport report;
    const TempFolder folder;
    InputParams input;
    input.variants().addInt64("n", 1);
    input.output(RGEN_OUTPUT_FILE, folder.file("report.html"));
    RgenCVariant result;
    std::memset(&result, 0xA5, sizeof result);
    const RgenCVariant before = result;
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_generateReport(report.generator(), input.get(), &result)));
    EXPECT_EQ(0, std::memcmp(&before, &result, sizeof result));
    EXPECT_EQ("hello", rgen_test::readFile(folder.file("report.html")));
}

TEST(GenerateReportArguments, AFailureLeavesTheResultRecordAlone) {
    const TempFolder folder;
    const Generator generator(folder.path());
    InputParams input;
    input.variants().addInt64("n", 1);
    RgenCVariant result;
    std::memset(&result, 0xA5, sizeof result);
    const RgenCVariant before = result;
    EXPECT_EQ(statusHex(RGEN_E_TEMPLATE_NOT_FOUND),
              statusHex(rgen_generateReport(generator.get(), input.get(), &result)));
    EXPECT_EQ(0, std::memcmp(&before, &result, sizeof result));
}

// ---- Translate callback ---------------------------------------------------------------------

TEST(SetTranslateFunction, TheDefaultReturnsTheTextUnchanged) {
    const MarkedReport report;
    EXPECT_EQ("hello", report.text());
}

TEST(SetTranslateFunction, PassesTheContext) {
    const MarkedReport report;
    char context[] = "context";
    rgen_setTranslateFunction(report.generator(), withPrefix, context);
    EXPECT_EQ("context:hello", report.text());
}

TEST(SetTranslateFunction, ANullContextIsAccepted) {
    const MarkedReport report;
    char context[] = "context";
    rgen_setTranslateFunction(report.generator(), withPrefix, context);
    rgen_setTranslateFunction(report.generator(), withPrefix, nullptr);
    EXPECT_EQ("null:hello", report.text());
}

TEST(SetTranslateFunction, ANullCallbackKeepsCallbackAndContext) {
    const MarkedReport report;
    char context[] = "first";
    char other[] = "second";
    rgen_setTranslateFunction(report.generator(), withPrefix, context);
    rgen_setTranslateFunction(report.generator(), nullptr, other);
    EXPECT_EQ("first:hello", report.text());
}

TEST(SetTranslateFunction, ANullHandleDoesNothing) {
    const MarkedReport report;
    rgen_setTranslateFunction(nullptr, inBrackets, nullptr);
    EXPECT_EQ("hello", report.text());
}

TEST(SetTranslateFunction, AppliesToTheNextGenerationAndToThisHandleOnly) {
    const MarkedReport report;
    const MarkedReport other;
    rgen_setTranslateFunction(report.generator(), inBrackets, nullptr);
    EXPECT_EQ("[hello]", report.text());
    EXPECT_EQ("hello", other.text());
    char context[] = "x";
    rgen_setTranslateFunction(report.generator(), withPrefix, context);
    EXPECT_EQ("x:hello", report.text());
}

// ---- Cancel without a generation ------------------------------------------------------------

TEST(Cancel, WithoutGenerationsDoesNothing) {
    const MarkedReport report;
    const RgenGuid guid = rgen_test::defaultGuid();
    const RgenGuid other = rgen_test::guidFromText("00000000-0000-0000-0000-000000000001");
    rgen_cancel(report.generator(), nullptr);
    rgen_cancel(report.generator(), &guid);
    rgen_cancel(report.generator(), &other);
    EXPECT_EQ("hello", report.text());
}

}  // namespace

// The 26 functions by name, called through pointers, and the library's way in and out of a process.
//
// This program does not link the library, so the last handle unloads it.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "abi/library_loader.h"
#include "strata_repgenlib/rgen.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::LoadedLibrary;
using rgen_test::TempFolder;

const char* const exportedNames[] = {"rgen_newReportGenerator",
                                     "rgen_freeReportGenerator",
                                     "rgen_setDataDirPath",
                                     "rgen_setTranslateFunction",
                                     "rgen_cancel",
                                     "rgen_generateReport",
                                     "rgen_getPersistentData",
                                     "rgen_setPersistentDataFromAnsiStringPairSet",
                                     "rgen_setPersistentDataFromCVariantSet",
                                     "rgen_dumpRawInputDataToFile",
                                     "rgen_getSimulatedRawDataFromFile",
                                     "rgen_getStatusCodeDescription",
                                     "rgen_createRgenAnsiString",
                                     "rgen_createRgenByteArray",
                                     "rgen_createRgenCAnsiStringpairSet",
                                     "rgen_createRgenCVariantSet",
                                     "rgen_createRgenCVariantInt64",
                                     "rgen_createRgenCVariantHandle",
                                     "rgen_createRgenCVariantString",
                                     "rgen_createRgenCVariantByteArray",
                                     "rgen_freeRgenAnsiString",
                                     "rgen_freeRgenByteArray",
                                     "rgen_freeRgenCVariant",
                                     "rgen_freeRgenCVariantSet",
                                     "rgen_freeRgenCAnsiStringSet",
                                     "rgen_freeRgenCInputParams"};

static_assert(sizeof exportedNames / sizeof exportedNames[0] == 26, "the library has 26 functions");

// The functions of one loaded library that the cases call.
struct Functions {
    explicit Functions(const LoadedLibrary& library)
        : newGenerator(library.function<decltype(&rgen_newReportGenerator)>(exportedNames[0])),
          freeGenerator(library.function<decltype(&rgen_freeReportGenerator)>(exportedNames[1])),
          setDataDirPath(library.function<decltype(&rgen_setDataDirPath)>(exportedNames[2])),
          setTranslate(library.function<decltype(&rgen_setTranslateFunction)>(exportedNames[3])),
          generate(library.function<decltype(&rgen_generateReport)>(exportedNames[5])),
          describe(library.function<decltype(&rgen_getStatusCodeDescription)>(exportedNames[11])),
          createText(library.function<decltype(&rgen_createRgenAnsiString)>(exportedNames[12])),
          createSet(library.function<decltype(&rgen_createRgenCVariantSet)>(exportedNames[15])),
          createInt64(library.function<decltype(&rgen_createRgenCVariantInt64)>(exportedNames[16])),
          freeVariant(library.function<decltype(&rgen_freeRgenCVariant)>(exportedNames[22])),
          freeInput(library.function<decltype(&rgen_freeRgenCInputParams)>(exportedNames[25])) {}

    decltype(&rgen_newReportGenerator) newGenerator;
    decltype(&rgen_freeReportGenerator) freeGenerator;
    decltype(&rgen_setDataDirPath) setDataDirPath;
    decltype(&rgen_setTranslateFunction) setTranslate;
    decltype(&rgen_generateReport) generate;
    decltype(&rgen_getStatusCodeDescription) describe;
    decltype(&rgen_createRgenAnsiString) createText;
    decltype(&rgen_createRgenCVariantSet) createSet;
    decltype(&rgen_createRgenCVariantInt64) createInt64;
    decltype(&rgen_freeRgenCVariant) freeVariant;
    decltype(&rgen_freeRgenCInputParams) freeInput;
};

const char* RGEN_CALL inBrackets(const char* text, void* context) {
    auto* translated = static_cast<std::string*>(context);
    *translated = std::string("[") + text + "]";
    return translated->c_str();
}

// One report through function pointers: a number and a translated text.
std::string reportThrough(const Functions& functions, const TempFolder& folder) {
    rgen_test::writeFile(
        folder.dataFile("templates/html/test_stylesheet.xsl"),
        "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
        "<xsl:output method='text'/><xsl:template match='/'>"
        "QT_TRANSLATE_NOOP(\"QObject\", \"size\") <xsl:value-of "
        "select='/data/properties/property'/>"
        "</xsl:template></xsl:stylesheet>");
    std::string context;
    RgenReportGenerator* generator = functions.newGenerator();
    EXPECT_EQ(RGEN_OK, functions.setDataDirPath(generator, folder.path().c_str()));
    functions.setTranslate(generator, inBrackets, &context);

    RgenCInputParams input{};
    EXPECT_EQ(1, functions.createSet(&input.variants, 1));
    EXPECT_EQ(1, functions.createInt64("size", 255, RGEN_HINT_ADDRESS, &input.variants.items[0]));
    EXPECT_EQ(1, functions.createText("html", &input.outputFormat));
    input.templateGuid.data1 = 0xDEADBABEU;
    input.outputMode = RGEN_OUTPUT_BYTES;
    RgenCVariant result{};
    EXPECT_EQ(RGEN_OK, functions.generate(generator, &input, &result));
    std::string bytes;
    if (result.type == RGEN_TYPE_BYTE_ARRAY) {
        bytes.assign(result.value.byteArrayValue.data,
                     result.value.byteArrayValue.data + result.value.byteArrayValue.size);
    }
    functions.freeVariant(&result);
    functions.freeInput(&input);
    functions.freeGenerator(generator);
    return bytes;
}

// Two threads take turns: each waits for its number.
class Turns {
public:
    void waitFor(int turn) {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [&] { return turn_ >= turn; });
    }
    void next(int turn) {
        const std::lock_guard<std::mutex> lock(mutex_);
        turn_ = turn;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int turn_ = 0;
};

TEST(LoadedLibrary, HasEachFunctionUnderItsPlainName) {
    const LoadedLibrary library;
    ASSERT_TRUE(library.isLoaded());
    for (const char* name : exportedNames) {
        EXPECT_NE(nullptr, library.address(name)) << name;
    }
}

TEST(LoadedLibrary, HidesWhatItIsMadeOf) {
    const LoadedLibrary library;
    ASSERT_TRUE(library.isLoaded());
    for (const char* name : {"xmlReadFile", "xmlFree", "xsltApplyStylesheet", "xmlInitParser",
                             "rgen_createRgenCAnsiStringPairSet", "rgen_freeRgenCAnsiStringPairSet",
                             "_rgen_cancel", "rgen_generateReport@24"}) {
        EXPECT_EQ(nullptr, library.address(name)) << name;
    }
}

TEST(LoadedLibrary, WorksThroughFunctionPointers) {
    const LoadedLibrary library;
    ASSERT_TRUE(library.isLoaded());
    const TempFolder folder;
    EXPECT_EQ("[size] 0xff", reportThrough(Functions(library), folder));
}

TEST(LoadedLibrary, LeavesTheProcessWithItsLastHandle) {
    {
        const LoadedLibrary first;
        const LoadedLibrary second;
        ASSERT_TRUE(first.isLoaded());
        EXPECT_EQ(first.address("rgen_cancel"), second.address("rgen_cancel"));
        EXPECT_TRUE(rgen_test::libraryIsInMemory());
    }
    EXPECT_FALSE(rgen_test::libraryIsInMemory());
}

TEST(LoadedLibrary, MayBeLoadedAndUnloadedOften) {
    const TempFolder folder;
    for (int round = 0; round < 25; ++round) {
        const LoadedLibrary library;
        ASSERT_TRUE(library.isLoaded());
        ASSERT_EQ("[size] 0xff", reportThrough(Functions(library), folder));
    }
    EXPECT_FALSE(rgen_test::libraryIsInMemory());
}

TEST(LoadedLibrary, MayBeUnloadedWhileAThreadThatUsedItLives) {
    const TempFolder folder;
    Turns turns;
    std::string report;
    {
        const LoadedLibrary library;
        ASSERT_TRUE(library.isLoaded());
        const Functions functions(library);
        std::thread([&] { EXPECT_EQ("[size] 0xff", reportThrough(functions, folder)); }).join();
    }
    std::thread user([&] {
        turns.waitFor(1);
        const LoadedLibrary library;
        report = reportThrough(Functions(library), folder);
        turns.next(2);
        turns.waitFor(3);
    });
    {
        const LoadedLibrary library;
        ASSERT_TRUE(library.isLoaded());
        turns.next(1);
        turns.waitFor(2);
    }
    EXPECT_EQ("[size] 0xff", report);
    // A system may keep the code for the thread; what counts is that the thread ends well.
    turns.next(3);
    user.join();
}

}  // namespace

// The generator exports when memory is exhausted, and the object that they make.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "report_generator.h"
#include "store/xml_parser_context.h"
#include "strata_repgenlib/rgen.h"
#include "support/fault_injection.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

const rgen::ReportGenerator& objectBehind(RgenReportGenerator* handle) {
    return *reinterpret_cast<const rgen::ReportGenerator*>(handle);
}

TEST(NewReportGenerator, GivesNullWhenMemoryIsExhausted) {
    {
        const FailingCall failure(Call::NothrowNew);
        EXPECT_EQ(nullptr, rgen_newReportGenerator());
        EXPECT_TRUE(failure.reached());
    }
    RgenReportGenerator* handle = rgen_newReportGenerator();
    EXPECT_NE(nullptr, handle);
    rgen_freeReportGenerator(handle);
}

TEST(NewReportGenerator, GivesNullWhenTheXmlLibrariesCannotBeInitialised) {
    const auto context = rgen::sharedXmlParserContext();
    const long before = context.use_count();
    {
        const FailingCall failure(Call::ShareXmlContext);
        EXPECT_EQ(nullptr, rgen_newReportGenerator());
        EXPECT_TRUE(failure.reached());
    }
    EXPECT_EQ(before, context.use_count());
}

TEST(NewReportGenerator, StartsWithEmptyFieldsAndTheSharedContext) {
    RgenReportGenerator* handle = rgen_newReportGenerator();
    const rgen::ReportGenerator& generator = objectBehind(handle);
    EXPECT_EQ("", generator.dataDirPath);
    EXPECT_TRUE(generator.cancellationRegistry.empty());
    EXPECT_EQ(rgen::sharedXmlParserContext(), generator.parserContext);
    EXPECT_EQ(nullptr, generator.translateContext);
    const char* text = "text";
    EXPECT_EQ(text, generator.translateFunction(text, nullptr));
    rgen_freeReportGenerator(handle);
}

TEST(NewReportGenerator, EveryGeneratorHoldsOneReferenceToTheContext) {
    const auto context = rgen::sharedXmlParserContext();
    const long before = context.use_count();
    RgenReportGenerator* first = rgen_newReportGenerator();
    RgenReportGenerator* second = rgen_newReportGenerator();
    EXPECT_EQ(before + 2, context.use_count());
    rgen_freeReportGenerator(first);
    rgen_freeReportGenerator(second);
    EXPECT_EQ(before, context.use_count());
}

TEST(SetTranslateFunction, NullCallbackKeepsFunctionAndContext) {
    RgenReportGenerator* handle = rgen_newReportGenerator();
    const rgen::ReportGenerator& generator = objectBehind(handle);
    int context = 0;
    const RgenTranslateFunction translate = [](const char*, void*) { return "translated"; };
    rgen_setTranslateFunction(handle, translate, &context);
    rgen_setTranslateFunction(handle, nullptr, handle);
    EXPECT_EQ(translate, generator.translateFunction);
    EXPECT_EQ(&context, generator.translateContext);
    rgen_setTranslateFunction(handle, translate, nullptr);
    EXPECT_EQ(nullptr, generator.translateContext);
    rgen_freeReportGenerator(handle);
}

TEST(SimulatedRawData, ExhaustedMemoryGivesZeroAndAnEmptySet) {
    const TempFolder folder;
    writeFile(folder.file("in.xml"),
              "<data><properties><property name=\"a\" type=\"int64\" hint=\"Size\">1</property>"
              "</properties></data>");
    RgenReportGenerator* handle = rgen_newReportGenerator();
    RgenCVariantSet set = {};
    RgenCVariantSet wanted = {};
    {
        // libxml2 allocates with malloc alone, so the first calloc is the one of the set.
        const FailingCall failure(Call::Calloc);
        EXPECT_EQ(0, rgen_getSimulatedRawDataFromFile(handle, folder.file("in.xml").c_str(), &set));
        EXPECT_TRUE(failure.reached());
    }
    EXPECT_EQ(nullptr, set.items);
    EXPECT_EQ(0U, set.count);
    EXPECT_EQ(1, rgen_getSimulatedRawDataFromFile(handle, folder.file("in.xml").c_str(), &wanted));
    EXPECT_EQ(1U, wanted.count);
    rgen_freeRgenCVariantSet(&wanted);
    rgen_freeReportGenerator(handle);
}

}  // namespace
}  // namespace rgen_test

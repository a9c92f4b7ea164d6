// The generator exports when memory is exhausted, and the object that they make.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "api/record_conversions.h"
#include "report_generator.h"
#include "store/xml/parser_context.h"
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
        const FailingCall failure(Call::Malloc);
        EXPECT_EQ(nullptr, rgen_newReportGenerator());
        EXPECT_TRUE(failure.reached());
    }
    RgenReportGenerator* handle = rgen_newReportGenerator();
    EXPECT_NE(nullptr, handle);
    rgen_freeReportGenerator(handle);
}

TEST(NewReportGenerator, GivesNullWhenTheXmlLibrariesCannotBeInitialised) {
    const auto context = rgen::sharedXmlParserContext();
    const std::size_t before = context->references();
    {
        const FailingCall failure(Call::ShareXmlContext);
        EXPECT_EQ(nullptr, rgen_newReportGenerator());
        EXPECT_TRUE(failure.reached());
    }
    EXPECT_EQ(before, context->references());
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
    const std::size_t before = context->references();
    RgenReportGenerator* first = rgen_newReportGenerator();
    RgenReportGenerator* second = rgen_newReportGenerator();
    EXPECT_EQ(before + 2, context->references());
    rgen_freeReportGenerator(first);
    rgen_freeReportGenerator(second);
    EXPECT_EQ(before, context->references());
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

// The record of the host before the call, and after one that has nothing for it.
template <typename Record>
Record untouched() {
    Record record;
    std::memset(&record, 0x5A, sizeof record);
    return record;
}

template <typename Record>
bool isUntouched(const Record& record) {
    const auto expected = untouched<Record>();
    return std::memcmp(&expected, &record, sizeof record) == 0;
}

// libxml2 allocates with malloc alone, so the callocs are those of the sets.
TEST(SimulatedRawData, ExhaustedMemoryGivesZeroAndLeavesTheSet) {
    const TempFolder folder;
    writeFile(folder.file("in.xml"),
              "<data><properties><property name=\"a\" type=\"int64\" hint=\"Size\">1</property>"
              "</properties></data>");
    RgenReportGenerator* handle = rgen_newReportGenerator();
    auto set = untouched<RgenCVariantSet>();
    RgenCVariantSet wanted = {};
    {
        const FailingCall failure(Call::Calloc);
        EXPECT_EQ(0, rgen_getSimulatedRawDataFromFile(handle, folder.file("in.xml").c_str(), &set));
        EXPECT_TRUE(failure.reached());
    }
    EXPECT_TRUE(isUntouched(set));
    EXPECT_EQ(1, rgen_getSimulatedRawDataFromFile(handle, folder.file("in.xml").c_str(), &wanted));
    EXPECT_EQ(1U, wanted.count);
    rgen_freeRgenCVariantSet(&wanted);
    rgen_freeReportGenerator(handle);
}

TEST(FillPairSet, ExhaustedMemoryLeavesTheSet) {
    rgen::PropertyMap properties;
    properties["first"] = "1";
    properties["second"] = "2";
    for (const Call call : {Call::Calloc, Call::Malloc}) {
        for (int number = 1; number <= (call == Call::Calloc ? 2 : 4); ++number) {
            auto set = untouched<RgenCAnsiStringPairSet>();
            const FailingCall failure(call, number);
            EXPECT_FALSE(rgen::fillPairSet(properties, set));
            EXPECT_TRUE(failure.reached()) << number;
            EXPECT_TRUE(isUntouched(set)) << number;
        }
    }
}

TEST(FillVariantSet, ExhaustedMemoryLeavesTheSet) {
    rgen::VariantMap values;
    values.emplace("number", rgen::Variant(std::int64_t{7}, rgen::VariantHint::Size));
    values.emplace("text", rgen::Variant(std::string("text"), rgen::VariantHint::Generic));
    values.emplace("bytes", rgen::Variant(rgen::ByteVector{1, 2}, rgen::VariantHint::Dump));
    constexpr int namesAndContents = 5;
    for (int number = 1; number <= namesAndContents; ++number) {
        auto set = untouched<RgenCVariantSet>();
        const FailingCall failure(Call::Malloc, number);
        EXPECT_FALSE(rgen::fillVariantSet(values, set));
        EXPECT_TRUE(failure.reached()) << number;
        EXPECT_TRUE(isUntouched(set)) << number;
    }
}

// The handle is the host's to close: it arrives although its name does not.
TEST(FillResult, HandleArrivesWithoutItsName) {
    int file = 0;
    rgen::Variant result;
    result.value = static_cast<void*>(&file);
    result.hint = rgen::VariantHint::Generic;
    auto record = untouched<RgenCVariant>();
    const FailingCall failure(Call::Malloc);
    rgen::fillResult(result, &record);
    EXPECT_TRUE(failure.reached());
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_HANDLE}, record.type);
    EXPECT_EQ(&file, record.value.handleValue);
    EXPECT_EQ(nullptr, record.name.data);
}

}  // namespace
}  // namespace rgen_test

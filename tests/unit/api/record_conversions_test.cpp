// Boundary records into the library's own values and back.
//
// SPDX-License-Identifier: MIT
#include "api/record_conversions.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "support/fault_injection.h"
#include "variant/hinted_convertors.h"

namespace rgen_test {
namespace {

using rgen::ByteVector;
using rgen::Variant;
using rgen::VariantHint;
using rgen::VariantKind;

constexpr std::uint64_t greatestHint = std::numeric_limits<std::uint64_t>::max();

// Records whose buffers go back at the end of the scope.
class Records {
public:
    ~Records() {
        for (RgenCVariant& item : items_)
            rgen_freeRgenCVariant(&item);
    }

    RgenCVariant& add() {
        items_.emplace_back();
        return items_.back();
    }
    RgenCVariant& addInt64(const char* name, std::int64_t value, std::uint64_t hint = 1) {
        rgen_createRgenCVariantInt64(name, value, 0, &add());
        items_.back().hint = hint;
        return items_.back();
    }
    RgenCVariant& addString(const char* name, const char* text) {
        rgen_createRgenCVariantString(name, text, 0, &add());
        return items_.back();
    }
    RgenCVariant& addBytes(const char* name, const ByteVector& bytes) {
        rgen_createRgenCVariantByteArray(name, bytes.data(), bytes.size(), 0, &add());
        return items_.back();
    }
    rgen::VariantMap toMap() { return rgen::toVariantMap({items_.data(), items_.size()}); }

private:
    std::vector<RgenCVariant> items_;
};

// A text record that points at a literal and owns nothing.
RgenAnsiString textRecord(const char* text) {
    return {static_cast<std::uint32_t>(std::strlen(text)), const_cast<char*>(text)};
}

TEST(ToGuid, KeepsEveryField) {
    const rgen::Guid guid = rgen::toGuid({0x01020304, 0x0506, 0x0708, {1, 2, 3, 4, 5, 6, 7, 8}});
    EXPECT_EQ("01020304-0506-0708-0102-030405060708", rgen::formatGuid(guid));
}

TEST(ToVariantMap, EachTypeBecomesItsKind) {
    Records records;
    records.addInt64("number", -5);
    records.addString("text", "abc");
    records.addBytes("bytes", {0, 255, 0});
    rgen::VariantMap map = records.toMap();
    ASSERT_EQ(3U, map.size());
    EXPECT_EQ(VariantKind::Int64, map["number"].value.kind);
    EXPECT_EQ(-5, map["number"].value.as<std::int64_t>());
    EXPECT_EQ(VariantKind::String, map["text"].value.kind);
    EXPECT_EQ("abc", map["text"].value.as<std::string>());
    EXPECT_EQ(VariantKind::ByteArray, map["bytes"].value.kind);
    EXPECT_EQ((ByteVector{0, 255, 0}), map["bytes"].value.as<ByteVector>());
}

TEST(ToVariantMap, HintsTwoToSevenAreKept) {
    for (const std::uint64_t hint :
         {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{2}, std::uint64_t{3}, std::uint64_t{4},
          std::uint64_t{5}, std::uint64_t{6}, std::uint64_t{7}, std::uint64_t{8}, std::uint64_t{9},
          std::uint64_t{10}, greatestHint}) {
        Records records;
        records.addInt64("n", 1, hint);
        records.addString("s", "x").hint = hint;
        records.addBytes("b", {1}).hint = hint;
        rgen::VariantMap map = records.toMap();
        const std::uint64_t expected = hint >= 2 && hint <= 7 ? hint : 1;
        for (const char* name : {"n", "s", "b"}) {
            EXPECT_EQ(expected, static_cast<std::uint64_t>(map[name].hint)) << name << hint;
        }
    }
}

TEST(ToPropertyMap, NullArraysAreAnEmptySet) {
    RgenAnsiString texts[] = {textRecord("a")};
    EXPECT_TRUE(rgen::toPropertyMap({nullptr, texts, 1}).empty());
    EXPECT_TRUE(rgen::toPropertyMap({texts, nullptr, 1}).empty());
    EXPECT_TRUE(rgen::toPropertyMap({nullptr, nullptr, 1}).empty());
    EXPECT_TRUE(rgen::toPropertyMap({texts, texts, 0}).empty());
}

TEST(ToInputParams, CarriesEveryField) {
    Records records;
    RgenAnsiString key = textRecord("key");
    RgenAnsiString value = textRecord("value");
    RgenCInputParams input = {};
    RgenCVariant& number = records.addInt64("number", 3);
    input.variants = {&number, 1};
    input.pairs = {&key, &value, 1};
    input.templateGuid = {0xDEADBABE, 0, 0, {}};
    input.outputMode = greatestHint;
    input.skipExternalConversion = 1ULL << 40U;
    input.outputFormat = textRecord("pdf");
    input.outputPath = textRecord("out");
    input.converterBaseArg = textRecord("base");
    const rgen::InputParams params = rgen::toInputParams(input);
    ASSERT_EQ(1U, params.variants.size());
    EXPECT_EQ("number", params.variants[0].first);
    EXPECT_EQ((rgen::PropertyMap{{"key", "value"}}), params.pairs);
    EXPECT_EQ(rgen::formatGuid(rgen::defaultReportTypeGuid), rgen::formatGuid(params.templateGuid));
    EXPECT_EQ(greatestHint, params.outputMode);
    EXPECT_EQ(1ULL << 40U, params.skipExternalConversion);
    EXPECT_EQ("pdf", params.outputFormat);
    EXPECT_EQ("out", params.outputPath);
    EXPECT_EQ("base", params.converterBaseArg);
}

TEST(ToInputParams, ZeroFilledRecordIsAnEmptyRequest) {
    const rgen::InputParams params = rgen::toInputParams({});
    EXPECT_TRUE(params.variants.empty());
    EXPECT_TRUE(params.pairs.empty());
    EXPECT_EQ("", params.outputFormat + params.outputPath + params.converterBaseArg);
}

TEST(ToPropertyMap, ExhaustedMemoryRaises) {
    RgenAnsiString key = textRecord("key");
    RgenAnsiString value = textRecord("value");
    const RgenCAnsiStringPairSet set = {&key, &value, 1};
    // Outside of all pools the table and its entries come from realloc, for which an optimising
    // compiler may take malloc.
    for (const int number : {1, 2}) {
        const FailingCall failure(Call::Realloc, number);
        const FailingCall otherFailure(Call::Malloc, number);
        EXPECT_THROW(rgen::toPropertyMap(set), std::bad_alloc) << number;
        EXPECT_TRUE(failure.reached() || otherFailure.reached()) << number;
    }
}

TEST(ToPropertyMap, CountBeyondAllMemoryRaises) {
    RgenAnsiString text = textRecord("text");
    const std::uint64_t count = std::numeric_limits<std::uint64_t>::max() / 4;
    EXPECT_THROW(rgen::toPropertyMap({&text, &text, count}), std::bad_alloc);
}

}  // namespace
}  // namespace rgen_test

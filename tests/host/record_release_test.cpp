// The free exports for values, sets and requests.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"

namespace {

template <typename Record>
bool everyByteIsZero(const Record& record) {
    const Record zeros{};
    return std::memcmp(&record, &zeros, sizeof record) == 0;
}

void expectEmptyValue(const RgenCVariant& record) {
    EXPECT_EQ(nullptr, record.name.data);
    EXPECT_EQ(0U, record.name.length);
    EXPECT_EQ(0U, record.type);
    EXPECT_EQ(0U, record.hint);
    EXPECT_EQ(0, record.value.int64Value);
}

RgenCVariant numberRecord(const char* name) {
    RgenCVariant record{};
    EXPECT_EQ(1, rgen_createRgenCVariantInt64(name, -2, 5, &record));
    return record;
}

TEST(FreeRgenCVariant, EmptiesATextValue) {
    RgenCVariant record{};
    ASSERT_EQ(1, rgen_createRgenCVariantString("n", "text", 1, &record));
    rgen_freeRgenCVariant(&record);
    expectEmptyValue(record);
    EXPECT_EQ(nullptr, record.value.stringValue.data);
    rgen_freeRgenCVariant(&record);
    expectEmptyValue(record);
}

TEST(FreeRgenCVariant, EmptiesAByteArrayValue) {
    const std::uint8_t bytes[] = {1, 2, 3};
    RgenCVariant record{};
    ASSERT_EQ(1, rgen_createRgenCVariantByteArray("n", bytes, 3, 8, &record));
    rgen_freeRgenCVariant(&record);
    expectEmptyValue(record);
    EXPECT_EQ(nullptr, record.value.byteArrayValue.data);
}

TEST(FreeRgenCVariant, ClearsTheEightValueBytesOfEveryOtherType) {
    for (const std::uint64_t type :
         {std::uint64_t{RGEN_TYPE_INT64}, std::uint64_t{RGEN_TYPE_HANDLE},
          std::uint64_t{RGEN_TYPE_EMPTY}, std::uint64_t{5}, ~std::uint64_t{0}}) {
        RgenCVariant record = numberRecord("n");
        record.type = type;
        rgen_freeRgenCVariant(&record);
        expectEmptyValue(record);
    }
}

TEST(FreeRgenCVariant, DoesNotFollowAHandle) {
    std::uint64_t target = 7;
    RgenCVariant record{};
    ASSERT_EQ(1, rgen_createRgenCVariantHandle("n", &target, 1, &record));
    rgen_freeRgenCVariant(&record);
    expectEmptyValue(record);
    EXPECT_EQ(7U, target);
}

TEST(FreeRgenCVariant, TakesZeroRecordsAndNull) {
    RgenCVariant record{};
    rgen_freeRgenCVariant(&record);
    expectEmptyValue(record);
    rgen_freeRgenCVariant(nullptr);
}

TEST(FreeRgenCVariantSet, FreesEveryKindOfEntry) {
    const std::uint8_t bytes[] = {1};
    RgenCVariantSet set{};
    ASSERT_EQ(1, rgen_createRgenCVariantSet(&set, 5));
    ASSERT_EQ(1, rgen_createRgenCVariantInt64("a", 1, 1, &set.items[0]));
    ASSERT_EQ(1, rgen_createRgenCVariantString("b", "x", 1, &set.items[1]));
    ASSERT_EQ(1, rgen_createRgenCVariantByteArray("c", bytes, 1, 8, &set.items[2]));
    ASSERT_EQ(1, rgen_createRgenCVariantHandle("d", &set, 1, &set.items[3]));
    rgen_freeRgenCVariantSet(&set);
    EXPECT_EQ(nullptr, set.items);
    EXPECT_EQ(0U, set.count);
}

TEST(FreeRgenCVariantSet, KeepsTheCountWhenThereAreNoItems) {
    RgenCVariantSet set{nullptr, 7};
    rgen_freeRgenCVariantSet(&set);
    EXPECT_EQ(nullptr, set.items);
    EXPECT_EQ(7U, set.count);
    rgen_freeRgenCVariantSet(nullptr);
}

TEST(FreeRgenCAnsiStringSet, FreesKeysAndValues) {
    RgenCAnsiStringPairSet set{};
    ASSERT_EQ(1, rgen_createRgenCAnsiStringpairSet(&set, 2));
    ASSERT_EQ(1, rgen_createRgenAnsiString("key", &set.keys[0]));
    ASSERT_EQ(1, rgen_createRgenAnsiString("value", &set.values[0]));
    ASSERT_EQ(1, rgen_createRgenAnsiString("alone", &set.values[1]));
    rgen_freeRgenCAnsiStringSet(&set);
    EXPECT_TRUE(everyByteIsZero(set));
    rgen_freeRgenCAnsiStringSet(&set);
    rgen_freeRgenCAnsiStringSet(nullptr);
}

TEST(FreeRgenCAnsiStringSet, EachArrayMayBeMissing) {
    for (const bool withoutKeys : {true, false}) {
        RgenCAnsiStringPairSet set{};
        ASSERT_EQ(1, rgen_createRgenCAnsiStringpairSet(&set, 1));
        RgenCAnsiStringPairSet other{};
        (withoutKeys ? other.keys : other.values) = withoutKeys ? set.keys : set.values;
        (withoutKeys ? set.keys : set.values) = nullptr;
        other.count = 1;
        rgen_freeRgenCAnsiStringSet(&set);
        EXPECT_TRUE(everyByteIsZero(set));
        rgen_freeRgenCAnsiStringSet(&other);
        EXPECT_TRUE(everyByteIsZero(other));
    }
}

TEST(FreeRgenCAnsiStringSet, ClearsTheCountOfASetWithoutArrays) {
    RgenCAnsiStringPairSet set{nullptr, nullptr, 7};
    rgen_freeRgenCAnsiStringSet(&set);
    EXPECT_EQ(0U, set.count);
}

TEST(FreeRgenCInputParams, LeavesEveryByteZero) {
    RgenCInputParams input;
    std::memset(&input, 0xA5, sizeof input);
    ASSERT_EQ(1, rgen_createRgenCVariantSet(&input.variants, 1));
    ASSERT_EQ(1, rgen_createRgenCVariantString("n", "t", 1, &input.variants.items[0]));
    ASSERT_EQ(1, rgen_createRgenCAnsiStringpairSet(&input.pairs, 1));
    ASSERT_EQ(1, rgen_createRgenAnsiString("key", &input.pairs.keys[0]));
    ASSERT_EQ(1, rgen_createRgenAnsiString("value", &input.pairs.values[0]));
    ASSERT_EQ(1, rgen_createRgenAnsiString("html", &input.outputFormat));
    ASSERT_EQ(1, rgen_createRgenAnsiString("out.html", &input.outputPath));
    ASSERT_EQ(1, rgen_createRgenAnsiString("argument", &input.converterBaseArg));
    input.templateGuid = rgen_test::defaultGuid();
    input.outputMode = 2;
    input.skipExternalConversion = 1;

    rgen_freeRgenCInputParams(&input);
    EXPECT_TRUE(everyByteIsZero(input));
    rgen_freeRgenCInputParams(&input);
    EXPECT_TRUE(everyByteIsZero(input));
    rgen_freeRgenCInputParams(nullptr);
}

TEST(FreeRgenCInputParams, ClearsACountWithoutItems) {
    RgenCInputParams input{};
    input.variants.count = 9;
    rgen_freeRgenCInputParams(&input);
    EXPECT_TRUE(everyByteIsZero(input));
}

}  // namespace

// The fourteen exports that create and free records: what they store, refuse and leave in a record.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"

namespace {

using rgen_test::toBytes;
using rgen_test::toText;

constexpr std::uint64_t hugeHint = std::numeric_limits<std::uint64_t>::max();
// More bytes than any heap has; the product of the two counts and a record size overflows.
constexpr std::uint64_t hugeByteCount = std::uint64_t{1} << 63;
constexpr std::uint64_t overflowingCount = std::uint64_t{1} << 61;
constexpr std::uint64_t hugeCount = std::uint64_t{1} << 56;

template <typename Record>
Record filledRecord() {
    Record record;
    std::memset(&record, 0xA5, sizeof record);
    return record;
}

template <typename Record>
bool everyByteIs(const Record& record, unsigned char wanted) {
    unsigned char bytes[sizeof record];
    std::memcpy(bytes, &record, sizeof record);
    for (const unsigned char byte : bytes) {
        if (byte != wanted) {
            return false;
        }
    }
    return true;
}

// ---- Texts ----------------------------------------------------------------------------------

TEST(CreateRgenAnsiString, CopiesTextAndTerminator) {
    char source[] = "report";
    auto record = filledRecord<RgenAnsiString>();
    ASSERT_EQ(1, rgen_createRgenAnsiString(source, &record));
    source[0] = 'X';
    EXPECT_EQ(6U, record.length);
    EXPECT_STREQ("report", record.data);
    EXPECT_NE(source, record.data);
    rgen_freeRgenAnsiString(&record);
}

TEST(CreateRgenAnsiString, AnEmptyTextHasABufferOfItsOwn) {
    auto record = filledRecord<RgenAnsiString>();
    ASSERT_EQ(1, rgen_createRgenAnsiString("", &record));
    EXPECT_EQ(0U, record.length);
    ASSERT_NE(nullptr, record.data);
    EXPECT_EQ('\0', record.data[0]);
    rgen_freeRgenAnsiString(&record);
}

TEST(CreateRgenAnsiString, CountsBytesNotLetters) {
    RgenAnsiString record{};
    ASSERT_EQ(1, rgen_createRgenAnsiString("\xD0\x9E\xD1\x82", &record));
    EXPECT_EQ(4U, record.length);
    rgen_freeRgenAnsiString(&record);
}

TEST(CreateRgenAnsiString, LeavesWhatTheTargetHeld) {
    RgenAnsiString record{};
    ASSERT_EQ(1, rgen_createRgenAnsiString("first", &record));
    RgenAnsiString first = record;
    ASSERT_EQ(1, rgen_createRgenAnsiString("second", &record));
    EXPECT_STREQ("first", first.data);
    EXPECT_STREQ("second", record.data);
    rgen_freeRgenAnsiString(&first);
    rgen_freeRgenAnsiString(&record);
}

TEST(FreeRgenAnsiString, EmptiesTheRecord) {
    RgenAnsiString record{};
    ASSERT_EQ(1, rgen_createRgenAnsiString("text", &record));
    rgen_freeRgenAnsiString(&record);
    EXPECT_EQ(nullptr, record.data);
    EXPECT_EQ(0U, record.length);
    rgen_freeRgenAnsiString(&record);
    rgen_freeRgenAnsiString(nullptr);
}

TEST(FreeRgenAnsiString, ClearsTheLengthOfARecordWithoutBuffer) {
    RgenAnsiString record{7, nullptr};
    rgen_freeRgenAnsiString(&record);
    EXPECT_EQ(0U, record.length);
}

// ---- Byte arrays ----------------------------------------------------------------------------

TEST(CreateRgenByteArray, CopiesTheBytes) {
    std::uint8_t source[] = {0, 1, 0xAB, 0, 0xFF};
    auto record = filledRecord<RgenByteArray>();
    ASSERT_EQ(1, rgen_createRgenByteArray(source, sizeof source, &record));
    source[0] = 9;
    EXPECT_EQ(5U, record.size);
    EXPECT_EQ((std::vector<std::uint8_t>{0, 1, 0xAB, 0, 0xFF}), toBytes(record));
    rgen_freeRgenByteArray(&record);
}

TEST(CreateRgenByteArray, ZeroBytesSucceed) {
    const std::uint8_t source = 1;
    auto record = filledRecord<RgenByteArray>();
    EXPECT_EQ(1, rgen_createRgenByteArray(&source, 0, &record));
    EXPECT_EQ(0U, record.size);
    EXPECT_NE(nullptr, record.data);
    rgen_freeRgenByteArray(&record);

    EXPECT_EQ(1, rgen_createRgenByteArray(nullptr, 0, &record));
    EXPECT_EQ(0U, record.size);
    rgen_freeRgenByteArray(&record);
}

TEST(CreateRgenByteArray, FailsWhenMemoryIsExhausted) {
    const std::uint8_t source = 1;
    auto record = filledRecord<RgenByteArray>();
    EXPECT_EQ(0, rgen_createRgenByteArray(&source, hugeByteCount, &record));
    EXPECT_EQ(nullptr, record.data);
    EXPECT_EQ(0U, record.size);
}

TEST(FreeRgenByteArray, EmptiesTheRecord) {
    const std::uint8_t source[] = {1, 2};
    RgenByteArray record{};
    ASSERT_EQ(1, rgen_createRgenByteArray(source, sizeof source, &record));
    rgen_freeRgenByteArray(&record);
    EXPECT_EQ(nullptr, record.data);
    EXPECT_EQ(0U, record.size);
    rgen_freeRgenByteArray(&record);
    rgen_freeRgenByteArray(nullptr);
}

// ---- Sets -----------------------------------------------------------------------------------

TEST(CreateRgenCAnsiStringpairSet, EveryEntryIsZero) {
    auto set = filledRecord<RgenCAnsiStringPairSet>();
    ASSERT_EQ(1, rgen_createRgenCAnsiStringpairSet(&set, 3));
    EXPECT_EQ(3U, set.count);
    ASSERT_NE(nullptr, set.keys);
    ASSERT_NE(nullptr, set.values);
    EXPECT_NE(set.keys, set.values);
    for (std::size_t index = 0; index < 3; ++index) {
        EXPECT_TRUE(everyByteIs(set.keys[index], 0));
        EXPECT_TRUE(everyByteIs(set.values[index], 0));
    }
    rgen_freeRgenCAnsiStringSet(&set);
}

TEST(CreateRgenCAnsiStringpairSet, RefusesNullAndZero) {
    EXPECT_EQ(0, rgen_createRgenCAnsiStringpairSet(nullptr, 3));
    auto set = filledRecord<RgenCAnsiStringPairSet>();
    EXPECT_EQ(0, rgen_createRgenCAnsiStringpairSet(&set, 0));
    EXPECT_TRUE(everyByteIs(set, 0xA5));
}

TEST(CreateRgenCAnsiStringpairSet, FailsWhenMemoryIsExhausted) {
    for (const std::uint64_t count : {hugeCount, overflowingCount, hugeHint}) {
        auto set = filledRecord<RgenCAnsiStringPairSet>();
        EXPECT_EQ(0, rgen_createRgenCAnsiStringpairSet(&set, count)) << count;
        EXPECT_EQ(nullptr, set.keys);
        EXPECT_EQ(nullptr, set.values);
        EXPECT_EQ(0U, set.count);
    }
}

TEST(CreateRgenCVariantSet, EveryEntryIsZero) {
    auto set = filledRecord<RgenCVariantSet>();
    ASSERT_EQ(1, rgen_createRgenCVariantSet(&set, 4));
    EXPECT_EQ(4U, set.count);
    ASSERT_NE(nullptr, set.items);
    for (std::size_t index = 0; index < 4; ++index) {
        EXPECT_TRUE(everyByteIs(set.items[index], 0));
    }
    rgen_freeRgenCVariantSet(&set);
}

TEST(CreateRgenCVariantSet, RefusesNullAndZero) {
    EXPECT_EQ(0, rgen_createRgenCVariantSet(nullptr, 1));
    auto set = filledRecord<RgenCVariantSet>();
    EXPECT_EQ(0, rgen_createRgenCVariantSet(&set, 0));
    EXPECT_TRUE(everyByteIs(set, 0xA5));
}

TEST(CreateRgenCVariantSet, FailsWhenMemoryIsExhausted) {
    for (const std::uint64_t count : {hugeCount, overflowingCount, hugeHint}) {
        auto set = filledRecord<RgenCVariantSet>();
        EXPECT_EQ(0, rgen_createRgenCVariantSet(&set, count)) << count;
        EXPECT_EQ(nullptr, set.items);
        EXPECT_EQ(0U, set.count);
    }
}

// ---- Values ---------------------------------------------------------------------------------

TEST(CreateRgenCVariantInt64, StoresNameValueAndType) {
    for (const std::int64_t number :
         {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(),
          std::numeric_limits<std::int64_t>::max()}) {
        auto record = filledRecord<RgenCVariant>();
        ASSERT_EQ(1, rgen_createRgenCVariantInt64("size", number, RGEN_HINT_SIZE, &record));
        EXPECT_EQ("size", toText(record.name));
        EXPECT_EQ(number, record.value.int64Value);
        EXPECT_EQ(1U, record.type);
        EXPECT_EQ(5U, record.hint);
        rgen_freeRgenCVariant(&record);
    }
}

TEST(CreateRgenCVariantInt64, TheRestOfTheValueIsZero) {
    auto record = filledRecord<RgenCVariant>();
    ASSERT_EQ(1, rgen_createRgenCVariantInt64("n", 0, RGEN_HINT_SIZE, &record));
    EXPECT_TRUE(everyByteIs(record.value, 0));
    rgen_freeRgenCVariant(&record);
}

TEST(CreateRgenCVariantInt64, StoresTheSmallerOfHintAndNine) {
    struct Row {
        std::uint64_t given, stored;
    };
    for (const Row& row : {Row{0, 0}, Row{1, 1}, Row{2, 2}, Row{7, 7}, Row{8, 8}, Row{9, 9},
                           Row{10, 9}, Row{200, 9}, Row{hugeHint, 9}}) {
        RgenCVariant record{};
        ASSERT_EQ(1, rgen_createRgenCVariantInt64("n", 1, row.given, &record));
        EXPECT_EQ(row.stored, record.hint) << row.given;
        rgen_freeRgenCVariant(&record);
        void* handle = nullptr;
        ASSERT_EQ(1, rgen_createRgenCVariantHandle("n", handle, row.given, &record));
        EXPECT_EQ(row.stored, record.hint) << row.given;
        rgen_freeRgenCVariant(&record);
    }
}

TEST(CreateRgenCVariantHandle, StoresTheHandleUntouched) {
    std::uint64_t target = 42;
    auto record = filledRecord<RgenCVariant>();
    ASSERT_EQ(1, rgen_createRgenCVariantHandle("device", &target, RGEN_HINT_GENERIC, &record));
    EXPECT_EQ("device", toText(record.name));
    EXPECT_EQ(&target, record.value.handleValue);
    EXPECT_EQ(4U, record.type);
    EXPECT_EQ(1U, record.hint);
    rgen_freeRgenCVariant(&record);
    EXPECT_EQ(42U, target);
}

TEST(CreateRgenCVariantString, IgnoresTheHint) {
    for (const std::uint64_t hint : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{5},
                                     std::uint64_t{8}, std::uint64_t{9}, hugeHint}) {
        auto record = filledRecord<RgenCVariant>();
        ASSERT_EQ(1, rgen_createRgenCVariantString("owner", "Ada", hint, &record));
        EXPECT_EQ("owner", toText(record.name));
        EXPECT_EQ("Ada", toText(record.value.stringValue));
        EXPECT_EQ(2U, record.type);
        EXPECT_EQ(1U, record.hint) << hint;
        rgen_freeRgenCVariant(&record);
    }
}

TEST(CreateRgenCVariantByteArray, IgnoresTheHint) {
    const std::uint8_t bytes[] = {1, 0, 2};
    for (const std::uint64_t hint :
         {std::uint64_t{0}, std::uint64_t{2}, std::uint64_t{8}, hugeHint}) {
        auto record = filledRecord<RgenCVariant>();
        ASSERT_EQ(1, rgen_createRgenCVariantByteArray("mbr", bytes, 3, hint, &record));
        EXPECT_EQ("mbr", toText(record.name));
        EXPECT_EQ((std::vector<std::uint8_t>{1, 0, 2}), toBytes(record.value.byteArrayValue));
        EXPECT_EQ(3U, record.type);
        EXPECT_EQ(8U, record.hint) << hint;
        rgen_freeRgenCVariant(&record);
    }
}

TEST(CreateRgenCVariantByteArray, RefusesNullBytes) {
    RgenCVariant record{};
    EXPECT_EQ(0, rgen_createRgenCVariantByteArray("mbr", nullptr, 3, 8, &record));
    EXPECT_EQ(0, rgen_createRgenCVariantByteArray("mbr", nullptr, 0, 8, &record));
    rgen_freeRgenCVariant(&record);
}

TEST(CreateRgenCVariantByteArray, ZeroBytesAreAnEmptyArray) {
    const std::uint8_t byte = 1;
    RgenCVariant record{};
    ASSERT_EQ(1, rgen_createRgenCVariantByteArray("mbr", &byte, 0, 8, &record));
    EXPECT_EQ(3U, record.type);
    EXPECT_EQ(0U, record.value.byteArrayValue.size);
    rgen_freeRgenCVariant(&record);
}

TEST(CreateRgenCVariantByteArray, AnExhaustedHeapGivesZeroAndAnEmptyArray) {
    const std::uint8_t byte = 1;
    auto record = filledRecord<RgenCVariant>();
    EXPECT_EQ(0, rgen_createRgenCVariantByteArray("mbr", &byte, hugeByteCount, 8, &record));
    EXPECT_EQ("mbr", toText(record.name));
    EXPECT_EQ(3U, record.type);
    EXPECT_EQ(8U, record.hint);
    EXPECT_EQ(nullptr, record.value.byteArrayValue.data);
    EXPECT_EQ(0U, record.value.byteArrayValue.size);
    rgen_freeRgenCVariant(&record);
}

TEST(CreateRgenCVariant, ANullTargetGivesZero) {
    const std::uint8_t byte = 1;
    EXPECT_EQ(0, rgen_createRgenCVariantInt64("n", 1, 1, nullptr));
    EXPECT_EQ(0, rgen_createRgenCVariantHandle("n", nullptr, 1, nullptr));
    EXPECT_EQ(0, rgen_createRgenCVariantString("n", "t", 1, nullptr));
    EXPECT_EQ(0, rgen_createRgenCVariantByteArray("n", &byte, 1, 8, nullptr));
}

TEST(CreateRgenCVariant, AnEmptyNameHasABufferOfItsOwn) {
    RgenCVariant record{};
    ASSERT_EQ(1, rgen_createRgenCVariantInt64("", 1, 1, &record));
    EXPECT_EQ(0U, record.name.length);
    EXPECT_NE(nullptr, record.name.data);
    rgen_freeRgenCVariant(&record);
}

}  // namespace

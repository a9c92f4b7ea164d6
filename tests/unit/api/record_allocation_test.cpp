// The create exports when memory is exhausted, one allocation after the other.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>

#include "strata_repgenlib/rgen.h"
#include "support/fault_injection.h"

namespace rgen_test {
namespace {

// A record that is filled with garbage first, so that every field has to be written.
template <typename Record>
Record garbage() {
    Record record;
    std::memset(&record, 0x5A, sizeof record);
    return record;
}

std::int32_t resultWithFailure(Call call, int number, const std::function<std::int32_t()>& create) {
    const FailingCall failure(call, number);
    const std::int32_t result = create();
    EXPECT_TRUE(failure.reached());
    return result;
}

TEST(RecordAllocation, TextIsNullAfterAFailure) {
    auto text = garbage<RgenAnsiString>();
    EXPECT_EQ(0, resultWithFailure(Call::Malloc, 1,
                                   [&] { return rgen_createRgenAnsiString("text", &text); }));
    EXPECT_EQ(nullptr, text.data);
    EXPECT_EQ(0U, text.length);
    rgen_freeRgenAnsiString(&text);
}

TEST(RecordAllocation, ByteArrayIsNullAfterAFailure) {
    const std::uint8_t bytes[] = {1, 2, 3};
    for (const std::uint64_t size : {std::uint64_t{0}, std::uint64_t{3}}) {
        auto array = garbage<RgenByteArray>();
        EXPECT_EQ(0, resultWithFailure(Call::Malloc, 1, [&] {
                      return rgen_createRgenByteArray(bytes, size, &array);
                  }));
        EXPECT_EQ(nullptr, array.data);
        EXPECT_EQ(0U, array.size);
        rgen_freeRgenByteArray(&array);
    }
}

TEST(RecordAllocation, PairSetIsEmptyAfterEitherFailure) {
    for (const int number : {1, 2}) {
        auto set = garbage<RgenCAnsiStringPairSet>();
        EXPECT_EQ(0, resultWithFailure(Call::Calloc, number,
                                       [&] { return rgen_createRgenCAnsiStringpairSet(&set, 3); }));
        EXPECT_EQ(nullptr, set.keys) << number;
        EXPECT_EQ(nullptr, set.values) << number;
        EXPECT_EQ(0U, set.count) << number;
        rgen_freeRgenCAnsiStringSet(&set);
    }
}

TEST(RecordAllocation, VariantSetIsEmptyAfterAFailure) {
    auto set = garbage<RgenCVariantSet>();
    EXPECT_EQ(
        0, resultWithFailure(Call::Calloc, 1, [&] { return rgen_createRgenCVariantSet(&set, 3); }));
    EXPECT_EQ(nullptr, set.items);
    EXPECT_EQ(0U, set.count);
    rgen_freeRgenCVariantSet(&set);
}

TEST(RecordAllocation, IntegerWithoutItsNameStillSucceeds) {
    auto record = garbage<RgenCVariant>();
    EXPECT_EQ(1, resultWithFailure(Call::Malloc, 1, [&] {
                  return rgen_createRgenCVariantInt64("name", -7, RGEN_HINT_SIZE, &record);
              }));
    EXPECT_EQ(nullptr, record.name.data);
    EXPECT_EQ(0U, record.name.length);
    EXPECT_EQ(-7, record.value.int64Value);
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_INT64}, record.type);
    EXPECT_EQ(std::uint64_t{RGEN_HINT_SIZE}, record.hint);
    rgen_freeRgenCVariant(&record);
}

TEST(RecordAllocation, HandleWithoutItsNameStillSucceeds) {
    auto record = garbage<RgenCVariant>();
    int target = 0;
    EXPECT_EQ(1, resultWithFailure(Call::Malloc, 1, [&] {
                  return rgen_createRgenCVariantHandle("name", &target, 0, &record);
              }));
    EXPECT_EQ(nullptr, record.name.data);
    EXPECT_EQ(&target, record.value.handleValue);
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_HANDLE}, record.type);
    rgen_freeRgenCVariant(&record);
}

// Only a name that finds no memory is forgiven: a value without its text or bytes is none.
TEST(RecordAllocation, NamedTextFailsWithoutItsTextAlone) {
    for (const int number : {1, 2}) {
        auto record = garbage<RgenCVariant>();
        EXPECT_EQ(number == 1 ? 1 : 0, resultWithFailure(Call::Malloc, number, [&] {
                      return rgen_createRgenCVariantString("name", "text", 0, &record);
                  }));
        EXPECT_EQ(number == 1, record.name.data == nullptr) << number;
        EXPECT_EQ(number == 2, record.value.stringValue.data == nullptr) << number;
        EXPECT_EQ(number == 1 ? 4U : 0U, record.value.stringValue.length) << number;
        EXPECT_EQ(std::uint64_t{RGEN_TYPE_STRING}, record.type);
        EXPECT_EQ(std::uint64_t{RGEN_HINT_GENERIC}, record.hint);
        rgen_freeRgenCVariant(&record);
    }
}

TEST(RecordAllocation, NamedBytesFailWithoutTheBytesAlone) {
    const std::uint8_t bytes[] = {1, 2, 3};
    for (const int number : {1, 2}) {
        auto record = garbage<RgenCVariant>();
        EXPECT_EQ(number == 1 ? 1 : 0, resultWithFailure(Call::Malloc, number, [&] {
                      return rgen_createRgenCVariantByteArray("name", bytes, 3, 0, &record);
                  }));
        EXPECT_EQ(number == 1, record.name.data == nullptr) << number;
        EXPECT_EQ(number == 2, record.value.byteArrayValue.data == nullptr) << number;
        EXPECT_EQ(number == 1 ? 3U : 0U, record.value.byteArrayValue.size) << number;
        EXPECT_EQ(std::uint64_t{RGEN_TYPE_BYTE_ARRAY}, record.type);
        EXPECT_EQ(std::uint64_t{RGEN_HINT_DUMP}, record.hint);
        rgen_freeRgenCVariant(&record);
    }
}

TEST(RecordAllocation, FreedRecordIsClearedWhateverItsTypeSays) {
    for (const std::uint64_t type : {std::uint64_t{RGEN_TYPE_EMPTY}, std::uint64_t{RGEN_TYPE_INT64},
                                     std::uint64_t{RGEN_TYPE_HANDLE}, std::uint64_t{77}}) {
        RgenCVariant record = {};
        rgen_createRgenCVariantInt64("name", -1, RGEN_HINT_TIME, &record);
        record.type = type;
        rgen_freeRgenCVariant(&record);
        EXPECT_EQ(nullptr, record.name.data) << type;
        EXPECT_EQ(0, record.value.int64Value) << type;
        EXPECT_EQ(0U, record.type) << type;
        EXPECT_EQ(0U, record.hint) << type;
    }
}

}  // namespace
}  // namespace rgen_test

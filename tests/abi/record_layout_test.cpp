// Sizes and offsets of every record, and the numbers of every constant: the binary interface.
//
// The assertions are the compiler's; the cases check the same memory at run time.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "strata_repgenlib/rgen.h"

namespace {

static_assert(sizeof(void*) == 8, "the interface is for 64-bit systems");
static_assert(std::is_same<RgenStatus, std::int32_t>::value, "a status is a signed 32-bit number");

static_assert(sizeof(RgenGuid) == 16 && alignof(RgenGuid) == 4, "RgenGuid");
static_assert(offsetof(RgenGuid, data1) == 0, "RgenGuid");
static_assert(offsetof(RgenGuid, data2) == 4, "RgenGuid");
static_assert(offsetof(RgenGuid, data3) == 6, "RgenGuid");
static_assert(offsetof(RgenGuid, data4) == 8, "RgenGuid");

static_assert(sizeof(RgenAnsiString) == 16 && alignof(RgenAnsiString) == 8, "RgenAnsiString");
static_assert(offsetof(RgenAnsiString, length) == 0, "RgenAnsiString");
static_assert(offsetof(RgenAnsiString, data) == 8, "RgenAnsiString");
static_assert(std::is_same<decltype(RgenAnsiString::length), std::uint32_t>::value, "length");
static_assert(std::is_same<decltype(RgenAnsiString::data), char*>::value, "data");

static_assert(sizeof(RgenByteArray) == 16 && alignof(RgenByteArray) == 8, "RgenByteArray");
static_assert(offsetof(RgenByteArray, size) == 0, "RgenByteArray");
static_assert(offsetof(RgenByteArray, data) == 8, "RgenByteArray");
static_assert(std::is_same<decltype(RgenByteArray::size), std::uint32_t>::value, "size");
static_assert(std::is_same<decltype(RgenByteArray::data), std::uint8_t*>::value, "data");

static_assert(sizeof(RgenCVariantValue) == 16 && alignof(RgenCVariantValue) == 8, "value");
static_assert(offsetof(RgenCVariantValue, int64Value) == 0, "value");
static_assert(offsetof(RgenCVariantValue, stringValue) == 0, "value");
static_assert(offsetof(RgenCVariantValue, byteArrayValue) == 0, "value");
static_assert(offsetof(RgenCVariantValue, handleValue) == 0, "value");
static_assert(std::is_same<decltype(RgenCVariantValue::int64Value), std::int64_t>::value, "value");
static_assert(std::is_same<decltype(RgenCVariantValue::handleValue), void*>::value, "value");

static_assert(sizeof(RgenCVariant) == 48 && alignof(RgenCVariant) == 8, "RgenCVariant");
static_assert(offsetof(RgenCVariant, name) == 0, "RgenCVariant");
static_assert(offsetof(RgenCVariant, value) == 16, "RgenCVariant");
static_assert(offsetof(RgenCVariant, type) == 32, "RgenCVariant");
static_assert(offsetof(RgenCVariant, hint) == 40, "RgenCVariant");
static_assert(std::is_same<decltype(RgenCVariant::type), std::uint64_t>::value, "type");
static_assert(std::is_same<decltype(RgenCVariant::hint), std::uint64_t>::value, "hint");

static_assert(sizeof(RgenCVariantSet) == 16 && alignof(RgenCVariantSet) == 8, "RgenCVariantSet");
static_assert(offsetof(RgenCVariantSet, items) == 0, "RgenCVariantSet");
static_assert(offsetof(RgenCVariantSet, count) == 8, "RgenCVariantSet");
static_assert(std::is_same<decltype(RgenCVariantSet::count), std::uint64_t>::value, "count");

static_assert(sizeof(RgenCAnsiStringPairSet) == 24 && alignof(RgenCAnsiStringPairSet) == 8, "");
static_assert(offsetof(RgenCAnsiStringPairSet, keys) == 0, "RgenCAnsiStringPairSet");
static_assert(offsetof(RgenCAnsiStringPairSet, values) == 8, "RgenCAnsiStringPairSet");
static_assert(offsetof(RgenCAnsiStringPairSet, count) == 16, "RgenCAnsiStringPairSet");
static_assert(std::is_same<decltype(RgenCAnsiStringPairSet::count), std::uint64_t>::value, "count");

static_assert(sizeof(RgenCInputParams) == 120 && alignof(RgenCInputParams) == 8, "input");
static_assert(offsetof(RgenCInputParams, variants) == 0, "RgenCInputParams");
static_assert(offsetof(RgenCInputParams, pairs) == 16, "RgenCInputParams");
static_assert(offsetof(RgenCInputParams, templateGuid) == 40, "RgenCInputParams");
static_assert(offsetof(RgenCInputParams, outputMode) == 56, "RgenCInputParams");
static_assert(offsetof(RgenCInputParams, skipExternalConversion) == 64, "RgenCInputParams");
static_assert(offsetof(RgenCInputParams, outputFormat) == 72, "RgenCInputParams");
static_assert(offsetof(RgenCInputParams, outputPath) == 88, "RgenCInputParams");
static_assert(offsetof(RgenCInputParams, converterBaseArg) == 104, "RgenCInputParams");
static_assert(std::is_same<decltype(RgenCInputParams::outputMode), std::uint64_t>::value, "mode");
static_assert(
    std::is_same<decltype(RgenCInputParams::skipExternalConversion), std::uint64_t>::value, "skip");

static_assert(std::is_standard_layout<RgenCInputParams>::value, "C layout");
static_assert(std::is_trivial<RgenCInputParams>::value, "C layout");
static_assert(std::is_trivial<RgenCVariant>::value, "C layout");

static_assert(RGEN_TYPE_EMPTY == 0 && RGEN_TYPE_INT64 == 1 && RGEN_TYPE_STRING == 2 &&
                  RGEN_TYPE_BYTE_ARRAY == 3 && RGEN_TYPE_HANDLE == 4,
              "types");
static_assert(RGEN_HINT_UNINITIALIZED == 0 && RGEN_HINT_GENERIC == 1 && RGEN_HINT_TIME == 2 &&
                  RGEN_HINT_DATE == 3 && RGEN_HINT_DATE_TIME == 4 && RGEN_HINT_SIZE == 5 &&
                  RGEN_HINT_ADDRESS == 6 && RGEN_HINT_SPEED == 7 && RGEN_HINT_DUMP == 8,
              "hints");
static_assert(RGEN_OUTPUT_FILE == 0 && RGEN_OUTPUT_DELETE_ON_CLOSE == 1 && RGEN_OUTPUT_BYTES == 2,
              "output modes");

template <typename Record>
std::uint64_t numberAt(const Record& record, std::size_t offset) {
    std::uint64_t number = 0;
    std::memcpy(&number, reinterpret_cast<const char*>(&record) + offset, sizeof number);
    return number;
}

TEST(RecordLayout, AnIntegerFillsTheFirstEightBytesOfTheValue) {
    RgenCVariant record{};
    record.value.int64Value = 0x0102030405060708;
    record.type = 0x11;
    record.hint = 0x22;
    EXPECT_EQ(0x0102030405060708U, numberAt(record, 16));
    EXPECT_EQ(0U, numberAt(record, 24));
    EXPECT_EQ(0x11U, numberAt(record, 32));
    EXPECT_EQ(0x22U, numberAt(record, 40));
}

TEST(RecordLayout, AGuidIsLittleEndianInItsFirstThreeFields) {
    const unsigned char bytes[16] = {0xBE, 0xBA, 0xAD, 0xDE, 0x02, 0x01, 0x04, 0x03,
                                     1,    2,    3,    4,    5,    6,    7,    8};
    RgenGuid guid;
    std::memcpy(&guid, bytes, sizeof guid);
    EXPECT_EQ(0xDEADBABEU, guid.data1);
    EXPECT_EQ(0x0102U, guid.data2);
    EXPECT_EQ(0x0304U, guid.data3);
    EXPECT_EQ(1U, guid.data4[0]);
    EXPECT_EQ(8U, guid.data4[7]);
}

}  // namespace

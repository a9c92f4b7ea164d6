// Sizes and offsets of the records of the host library: its binary interface. The assertions are
// the compiler's. Records with a size may grow at their ends; then their sizes here change.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "strata_repgenlib/rgen_host.h"

namespace {

static_assert(sizeof(RgenhError) == 6184 && alignof(RgenhError) == 8, "RgenhError");
static_assert(RGENH_ERROR_SIZE == 6184, "the first size is accepted for ever");
static_assert(offsetof(RgenhError, size) == 0, "RgenhError");
static_assert(offsetof(RgenhError, kind) == 8, "RgenhError");
static_assert(offsetof(RgenhError, status) == 12, "RgenhError");
static_assert(offsetof(RgenhError, systemError) == 16, "RgenhError");
static_assert(offsetof(RgenhError, argument) == 24, "RgenhError");
static_assert(offsetof(RgenhError, entryIsPair) == 28, "RgenhError");
static_assert(offsetof(RgenhError, entry) == 32, "RgenhError");
static_assert(offsetof(RgenhError, path) == 40, "RgenhError");
static_assert(offsetof(RgenhError, message) == 4136, "RgenhError");
static_assert(std::is_same<decltype(RgenhError::size), std::uint64_t>::value, "size");
static_assert(std::is_same<decltype(RgenhError::kind), std::int32_t>::value, "kind");
static_assert(std::is_same<decltype(RgenhError::systemError), std::int64_t>::value, "system error");
static_assert(std::is_same<decltype(RgenhError::entry), std::uint64_t>::value, "entry");

static_assert(sizeof(RgenhValue) == 56 && alignof(RgenhValue) == 8, "RgenhValue, for ever");
static_assert(offsetof(RgenhValue, name) == 0, "RgenhValue");
static_assert(offsetof(RgenhValue, nameSize) == 8, "RgenhValue");
static_assert(offsetof(RgenhValue, type) == 16, "RgenhValue");
static_assert(offsetof(RgenhValue, hint) == 24, "RgenhValue");
static_assert(offsetof(RgenhValue, number) == 32, "RgenhValue");
static_assert(offsetof(RgenhValue, data) == 40, "RgenhValue");
static_assert(offsetof(RgenhValue, size) == 48, "RgenhValue");
static_assert(std::is_same<decltype(RgenhValue::number), std::int64_t>::value, "number");
static_assert(std::is_same<decltype(RgenhValue::data), const void*>::value, "data");

static_assert(sizeof(RgenhRequestParts) == 104 && alignof(RgenhRequestParts) == 8, "parts");
static_assert(offsetof(RgenhRequestParts, size) == 0, "RgenhRequestParts");
static_assert(offsetof(RgenhRequestParts, reportType) == 8, "RgenhRequestParts");
static_assert(offsetof(RgenhRequestParts, templateGuid) == 16, "RgenhRequestParts");
static_assert(offsetof(RgenhRequestParts, format) == 32, "RgenhRequestParts");
static_assert(offsetof(RgenhRequestParts, outputPath) == 40, "RgenhRequestParts");
static_assert(offsetof(RgenhRequestParts, converterBase) == 48, "RgenhRequestParts");
static_assert(offsetof(RgenhRequestParts, outputMode) == 56, "RgenhRequestParts");
static_assert(offsetof(RgenhRequestParts, skipExternalConversion) == 64, "RgenhRequestParts");
static_assert(offsetof(RgenhRequestParts, values) == 72, "RgenhRequestParts");
static_assert(offsetof(RgenhRequestParts, valueCount) == 80, "RgenhRequestParts");
static_assert(offsetof(RgenhRequestParts, pairs) == 88, "RgenhRequestParts");
static_assert(offsetof(RgenhRequestParts, pairCount) == 96, "RgenhRequestParts");

static_assert(sizeof(RgenhVersions) == 8264 && alignof(RgenhVersions) == 8, "RgenhVersions");
static_assert(offsetof(RgenhVersions, size) == 0, "RgenhVersions");
static_assert(offsetof(RgenhVersions, library) == 8, "RgenhVersions");
static_assert(offsetof(RgenhVersions, host) == 40, "RgenhVersions");
static_assert(offsetof(RgenhVersions, libraryPath) == 72, "RgenhVersions");
static_assert(offsetof(RgenhVersions, hostPath) == 4168, "RgenhVersions");

static_assert(std::is_standard_layout<RgenhError>::value, "C layout");
static_assert(std::is_trivial<RgenhRequestParts>::value, "C layout");
static_assert(std::is_trivial<RgenhVersions>::value, "C layout");

static_assert(RGENH_ERROR_NONE == 0 && RGENH_ERROR_STATUS == 1 && RGENH_ERROR_MEMORY == 2 &&
                  RGENH_ERROR_ENCODING == 3 && RGENH_ERROR_FILE_SYSTEM == 4 &&
                  RGENH_ERROR_REENTERED == 5 && RGENH_ERROR_CONVERSION == 6 &&
                  RGENH_ERROR_ARGUMENT == 7 && RGENH_ERROR_CALLBACK == 8 &&
                  RGENH_ERROR_UNKNOWN == 9,
              "kinds");
static_assert(RGENH_PLAIN == 0 && RGENH_MARKUP == 1 && RGENH_TYPE_MARKUP == 5, "forms of texts");
static_assert(RGENH_FOR_REPORT == 0 && RGENH_FOR_PERSISTENT_DATA == 1, "uses of texts");
static_assert(RGENH_NULL_TERMINATED == UINT64_MAX && RGENH_NO_ENTRY == UINT64_MAX, "no number");

TEST(HostRecordLayout, ThePlainFunctionsOfTheHeaderFillAValue) {
    const RgenhValue text = rgenh_textValue("Device", "Disk");
    EXPECT_STREQ("Device", text.name);
    EXPECT_STREQ("Disk", static_cast<const char*>(text.data));
    EXPECT_EQ(RGENH_NULL_TERMINATED, text.nameSize);
    EXPECT_EQ(RGENH_NULL_TERMINATED, text.size);
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_STRING}, text.type);
    const RgenhValue number = rgenh_integerValue("Capacity", -7, RGEN_HINT_SIZE);
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_INT64}, number.type);
    EXPECT_EQ(std::uint64_t{RGEN_HINT_SIZE}, number.hint);
    EXPECT_EQ(-7, number.number);
    const RgenhValue bytes = rgenh_bytesValue("Serial", "\0\1", 2);
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_BYTE_ARRAY}, bytes.type);
    EXPECT_EQ(2U, bytes.size);
}

}  // namespace

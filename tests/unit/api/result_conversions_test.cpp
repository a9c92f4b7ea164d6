// The library's values on their way into boundary records.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "api/record_conversions.h"
#include "support/fault_injection.h"
#include "variant/hinted_convertors.h"

namespace rgen_test {
namespace {

using rgen::ByteVector;
using rgen::Variant;
using rgen::VariantHint;

// A record for one scope that starts filled with garbage, so that untouched means untouched.
class ResultRecord {
public:
    ResultRecord() {
        std::memset(&record, 0x5A, sizeof record);
        std::memcpy(&before_, &record, sizeof record);
    }
    bool isUntouched() const { return std::memcmp(&record, &before_, sizeof record) == 0; }

    RgenCVariant record;

private:
    RgenCVariant before_;
};

Variant handleVariant(void* handle, VariantHint hint) {
    Variant variant;
    variant.value = handle;
    variant.hint = hint;
    variant.convertor = &hvariant_private::convertorFor<void*>;
    return variant;
}

const RgenCVariant* entryNamed(const RgenCVariantSet& set, const std::string& name) {
    for (std::uint64_t i = 0; i < set.count; ++i) {
        if (set.items[i].name.data != nullptr && name == set.items[i].name.data) {
            return &set.items[i];
        }
    }
    return nullptr;
}

std::uint64_t zeroEntries(const RgenCVariantSet& set) {
    const std::string zero(sizeof(RgenCVariant), '\0');
    std::uint64_t count = 0;
    for (std::uint64_t i = 0; i < set.count; ++i) {
        if (std::memcmp(zero.data(), &set.items[i], zero.size()) == 0) ++count;
    }
    return count;
}

TEST(FillResult, TextComesBackWithNameAndGenericHint) {
    ResultRecord result;
    rgen::fillResult(Variant(std::string("abc"), VariantHint::Date), &result.record);
    EXPECT_STREQ("Return stub name", result.record.name.data);
    EXPECT_EQ(16U, result.record.name.length);
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_STRING}, result.record.type);
    EXPECT_EQ(std::uint64_t{RGEN_HINT_GENERIC}, result.record.hint);
    EXPECT_STREQ("abc", result.record.value.stringValue.data);
    EXPECT_EQ(3U, result.record.value.stringValue.length);
    rgen_freeRgenCVariant(&result.record);
}

TEST(FillResult, TextEndsAtItsFirstZeroByte) {
    ResultRecord result;
    rgen::fillResult(Variant(std::string("ab\0cd", 5), VariantHint::Generic), &result.record);
    EXPECT_EQ(2U, result.record.value.stringValue.length);
    EXPECT_STREQ("ab", result.record.value.stringValue.data);
    rgen_freeRgenCVariant(&result.record);
}

TEST(FillResult, NumberCarriesItsHintFromTimeToSpeed) {
    for (std::uint64_t hint = 0; hint <= 8; ++hint) {
        ResultRecord result;
        const Variant number(std::int64_t{-9}, static_cast<VariantHint>(hint));
        rgen::fillResult(number, &result.record);
        EXPECT_STREQ("Return stub name", result.record.name.data);
        EXPECT_EQ(std::uint64_t{RGEN_TYPE_INT64}, result.record.type);
        EXPECT_EQ(-9, result.record.value.int64Value);
        EXPECT_EQ(hint >= 2 && hint <= 7 ? hint : 1, result.record.hint) << hint;
        rgen_freeRgenCVariant(&result.record);
    }
}

TEST(FillResult, HandleCarriesItsHintFromTimeToSpeed) {
    int target = 0;
    for (std::uint64_t hint = 0; hint <= 9; ++hint) {
        ResultRecord result;
        rgen::fillResult(handleVariant(&target, static_cast<VariantHint>(hint)), &result.record);
        EXPECT_STREQ("Return stub name", result.record.name.data);
        EXPECT_EQ(std::uint64_t{RGEN_TYPE_HANDLE}, result.record.type);
        EXPECT_EQ(&target, result.record.value.handleValue);
        EXPECT_EQ(hint >= 2 && hint <= 7 ? hint : 1, result.record.hint) << hint;
        rgen_freeRgenCVariant(&result.record);
    }
}

TEST(FillResult, BytesComeBackWithTheDumpHint) {
    ResultRecord result;
    rgen::fillResult(Variant(ByteVector{1, 0, 2}, VariantHint::Time), &result.record);
    EXPECT_STREQ("Return stub name", result.record.name.data);
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_BYTE_ARRAY}, result.record.type);
    EXPECT_EQ(std::uint64_t{RGEN_HINT_DUMP}, result.record.hint);
    ASSERT_EQ(3U, result.record.value.byteArrayValue.size);
    EXPECT_EQ(0, std::memcmp("\1\0\2", result.record.value.byteArrayValue.data, 3));
    rgen_freeRgenCVariant(&result.record);
}

TEST(FillResult, EmptyBytesLeaveTheRecordUntouched) {
    ResultRecord result;
    rgen::fillResult(Variant(ByteVector(), VariantHint::Dump), &result.record);
    EXPECT_TRUE(result.isUntouched());
}

TEST(FillResult, ValueThatIsMissingLeavesTheRecordUntouched) {
    ResultRecord result;
    rgen::fillResult(Variant(), &result.record);
    EXPECT_TRUE(result.isUntouched());
}

TEST(FillResult, NullRecordIsIgnored) {
    rgen::fillResult(Variant(std::string("abc"), VariantHint::Generic), nullptr);
    rgen::fillResult(handleVariant(nullptr, VariantHint::Generic), nullptr);
}

TEST(FillVariantSet, EveryElementHasAnEntry) {
    int target = 0;
    rgen::VariantMap values;
    values["number"] = Variant(std::int64_t{7}, VariantHint::Dump);
    values["time"] = Variant(std::int64_t{8}, VariantHint::Time);
    values["text"] = Variant(std::string("x"), VariantHint::Size);
    values["bytes"] = Variant(ByteVector{9}, VariantHint::Size);
    values["no bytes"] = Variant(ByteVector(), VariantHint::Dump);
    values["handle"] = handleVariant(&target, VariantHint::Generic);
    values["empty"] = Variant();
    RgenCVariantSet set = {};
    ASSERT_TRUE(rgen::fillVariantSet(values, set));
    EXPECT_EQ(7U, set.count);
    EXPECT_EQ(3U, zeroEntries(set));
    const struct {
        const char* name;
        std::uint64_t type;
        std::uint64_t hint;
    } rows[] = {{"number", RGEN_TYPE_INT64, RGEN_HINT_GENERIC},
                {"time", RGEN_TYPE_INT64, RGEN_HINT_TIME},
                {"text", RGEN_TYPE_STRING, RGEN_HINT_GENERIC},
                {"bytes", RGEN_TYPE_BYTE_ARRAY, RGEN_HINT_DUMP}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const RgenCVariant* entry = entryNamed(set, row.name);
        ASSERT_NE(nullptr, entry);
        EXPECT_EQ(row.type, entry->type);
        EXPECT_EQ(row.hint, entry->hint);
    }
    rgen_freeRgenCVariantSet(&set);
}

TEST(FillVariantSet, EntriesFollowTheOrderOfTheMap) {
    rgen::VariantMap values;
    for (const char* name : {"one", "two", "three", "four", "five"}) {
        values[name] = Variant(std::int64_t{1}, VariantHint::Generic);
    }
    RgenCVariantSet set = {};
    ASSERT_TRUE(rgen::fillVariantSet(values, set));
    std::size_t i = 0;
    for (const auto& [name, value] : values)
        EXPECT_EQ(name, set.items[i++].name.data);
    rgen_freeRgenCVariantSet(&set);
}

TEST(FillVariantSet, EmptyMapLeavesTheSetUntouched) {
    RgenCVariant item = {};
    RgenCVariantSet set = {&item, 77};
    EXPECT_FALSE(rgen::fillVariantSet({}, set));
    EXPECT_EQ(&item, set.items);
    EXPECT_EQ(77U, set.count);
}

TEST(FillPairSet, EveryElementHasAPairInTheOrderOfTheMap) {
    const rgen::PropertyMap properties = {{"a", "1"}, {"", "no name"}, {"b", ""}};
    RgenCAnsiStringPairSet set = {};
    ASSERT_TRUE(rgen::fillPairSet(properties, set));
    ASSERT_EQ(3U, set.count);
    std::size_t i = 0;
    for (const auto& [name, text] : properties) {
        EXPECT_EQ(name, set.keys[i].data);
        EXPECT_EQ(name.size(), set.keys[i].length);
        EXPECT_EQ(text, set.values[i].data);
        EXPECT_EQ(text.size(), set.values[i].length);
        ++i;
    }
    rgen_freeRgenCAnsiStringSet(&set);
}

TEST(FillPairSet, EmptyMapLeavesTheSetUntouched) {
    RgenAnsiString text = {};
    RgenCAnsiStringPairSet set = {&text, &text, 77};
    EXPECT_FALSE(rgen::fillPairSet({}, set));
    EXPECT_EQ(&text, set.keys);
    EXPECT_EQ(&text, set.values);
    EXPECT_EQ(77U, set.count);
}

}  // namespace
}  // namespace rgen_test

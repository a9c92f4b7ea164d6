// The plain parts of rgen.hpp: GUIDs, values, named things, paths, status names, owners.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstring>
#include <deque>
#include <limits>
#include <memory>
#include <tuple>
#include <unordered_map>

#include "strata_repgenlib/rgen.hpp"
#include "support/every_status.h"
#include "support/host_records.h"

namespace rgen_test {
namespace {

namespace repgen = strata::repgen;
using repgen::Hint;
using repgen::Value;
using repgen::ValueType;

constexpr const char* guidText = "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9";
constexpr repgen::Guid constantGuid("0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9");
static_assert(constantGuid.record().data1 == 0x0a1b2c3d && constantGuid.record().data4[7] == 0xf9);
static_assert(!repgen::Guid::parse("0a1b2c3d").has_value());

static_assert(!std::is_constructible_v<Value, bool> && !std::is_constructible_v<Value, char>);
static_assert(!std::is_constructible_v<Value, void*> && !std::is_constructible_v<Value, double>);
static_assert(!std::is_constructible_v<Value, std::nullptr_t>);
static_assert(!std::is_constructible_v<repgen::Text, std::nullptr_t>);
static_assert(!std::is_constructible_v<repgen::Path, std::nullptr_t>);
static_assert(!std::is_copy_constructible_v<repgen::Owned<RgenCVariant>>);
static_assert(!std::is_copy_constructible_v<repgen::Generator>);
static_assert(std::is_nothrow_move_constructible_v<repgen::Generator>);
static_assert(std::is_nothrow_move_assignable_v<repgen::OpenFile>);

TEST(WrapperGuid, ReadsBothLetterCasesAndBraces) {
    for (const std::string text : {guidText, "0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9",
                                   "{0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9}"}) {
        EXPECT_EQ(guidText, repgen::Guid(text).text()) << text;
    }
    const RgenGuid expected = guidFromText(guidText);
    EXPECT_EQ(0, std::memcmp(&expected, &constantGuid.record(), sizeof expected));
    EXPECT_EQ("00000000-0000-0000-0000-000000000000", repgen::Guid().text());
}

TEST(WrapperGuid, OtherTextsAreRefused) {
    for (const char* text :
         {"", "{}", "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f", "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9 ",
          "0a1b2c3d4e5f-6071-8293-a4b5c6d7e8f90-", "0a1b2c3g-4e5f-6071-8293-a4b5c6d7e8f9",
          "{0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9", "(0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9)"}) {
        EXPECT_FALSE(repgen::Guid::parse(text)) << text;
        EXPECT_THROW(repgen::Guid{text}, repgen::ArgumentError) << text;
    }
}

TEST(WrapperGuid, AreInTheOrderOfTheirTexts) {
    const repgen::Guid first("0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9");
    const repgen::Guid second("0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8fa");
    const repgen::Guid third("f0000000-0000-0000-0000-000000000000");
    EXPECT_TRUE(first < second && second < third && !(third < first) && !(first < first));
    EXPECT_TRUE(first == constantGuid && first != second);
}

TEST(WrapperValue, TypeAndHintFollowWhatItIsMadeOf) {
    const std::string text = "text";
    const auto moment = std::chrono::system_clock::from_time_t(7) + std::chrono::milliseconds(999);
    int thing = 0;
    EXPECT_EQ("", Value().text());
    EXPECT_EQ("text", Value(text).text());
    EXPECT_EQ("te", Value(std::string_view(text).substr(0, 2)).text());
    EXPECT_EQ(ValueType::Text, Value("text").type());
    EXPECT_EQ(-5, Value(-5).integer());
    EXPECT_EQ(Hint::Generic, Value(-5).hint());
    EXPECT_EQ(250, Value(static_cast<std::uint8_t>(250)).integer());
    EXPECT_EQ(Hint::Size, Value(5U, Hint::Size).hint());
    EXPECT_EQ(7, Value(moment).integer());
    EXPECT_EQ(Hint::DateTime, Value(moment).hint());
    EXPECT_EQ(Hint::Date, Value(moment, Hint::Date).hint());
    EXPECT_EQ(Hint::Dump, Value(repgen::Bytes{1}).hint());
    EXPECT_EQ(ValueType::Handle, Value::handle(&thing).type());
    EXPECT_EQ(&thing, Value::handle(&thing).handle());
    EXPECT_THROW(Value("text").integer(), std::bad_variant_access);
}

TEST(WrapperValue, TimesThatAReportCannotShowAreRefused) {
    const auto first = std::chrono::system_clock::from_time_t(0);
    using Seconds = std::chrono::time_point<std::chrono::system_clock, std::chrono::seconds>;
    const Seconds last(std::chrono::seconds(32535215999));
    EXPECT_EQ(0, Value(first).integer());
    EXPECT_EQ(32535215999, Value(last).integer());
    EXPECT_THROW(Value(first - std::chrono::milliseconds(1)), repgen::ArgumentError);
    EXPECT_THROW(Value(last + std::chrono::seconds(1)), repgen::ArgumentError);
}

TEST(WrapperValue, BytesComeFromAnythingContiguous) {
    const std::uint8_t plain[] = {1, 2};
    const repgen::Bytes expected = {1, 2};
    EXPECT_EQ(expected, Value(plain).bytes());
    EXPECT_EQ(expected, Value(std::array<std::byte, 2>{std::byte{1}, std::byte{2}}).bytes());
    EXPECT_EQ(expected, Value(std::vector<unsigned char>{1, 2}).bytes());
    EXPECT_EQ(repgen::Bytes(), Value(repgen::Bytes()).bytes());
}

TEST(WrapperValue, NumbersBeyond63BitsAreAddressesOnly) {
    constexpr std::uint64_t greatest = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(-1, Value(greatest, Hint::Address).integer());
    EXPECT_THROW(Value{greatest}, repgen::ArgumentError);
    EXPECT_EQ(std::numeric_limits<std::int64_t>::max(), Value(greatest / 2).integer());
}

TEST(WrapperNamed, TakesAnyRangeOfPairs) {
    repgen::Values values(std::unordered_map<std::string, int>{{"a", 1}});
    values.add(std::deque<std::tuple<const char*, std::string>>{{"b", "text"}});
    values.add({{"c", {5, Hint::Size}}, {"d", repgen::Bytes{1}}}).add("e", 2);
    values["f"] = 3;
    ASSERT_EQ(6U, values.size());
    EXPECT_EQ(1, values.at("a").integer());
    EXPECT_EQ("text", values.at("b").text());
    EXPECT_EQ(Hint::Size, values.at("c").hint());
    EXPECT_TRUE(values.contains("f") && !values.contains("g"));
    EXPECT_THROW(values.at("g"), std::out_of_range);
}

// A third part, a hint perhaps, would be lost.
using TupleOfThree = std::tuple<std::string, long, Hint>;
static_assert(std::is_constructible_v<repgen::Values, std::vector<std::pair<std::string, long>>>);
static_assert(!std::is_constructible_v<repgen::Values, std::vector<TupleOfThree>>);

// A range that can be walked through only when it is not constant, as a filtering view.
struct ChangingRange {
    auto begin() { return entries.begin(); }
    auto end() { return entries.end(); }
    std::vector<std::pair<std::string, int>> entries = {{"a", 1}};
};

TEST(WrapperNamed, TakesARangeThatIsNotConstant) {
    ChangingRange range;
    repgen::Values values(range);
    values.add(ChangingRange{{{"b", 2}}});
    EXPECT_EQ(2U, values.size());
    EXPECT_EQ(2U, repgen::Values(values).size());
}

TEST(WrapperNamed, OfTwoOfOneNameTheLaterCounts) {
    const repgen::Texts texts = {{"a", "first"}, {"b", "other"}, {"a", "second"}};
    EXPECT_EQ(2U, texts.size());
    EXPECT_EQ("second", texts.at("a").content());
}

TEST(WrapperPath, TextsAreUtf8AndPathsNative) {
    const std::string utf8 = "\xD0\xBE/\xC3\xA4.html";
    const repgen::Path path(utf8);
    EXPECT_EQ(utf8, path.utf8());
    EXPECT_EQ(utf8, repgen::Path(path.native()).utf8());
    EXPECT_THROW(repgen::Path(std::string("a\0b", 3)), repgen::ArgumentError);
}

TEST(WrapperText, ANullPointerIsRefused) {
    const char* const nothing = nullptr;
    EXPECT_THROW(Value{nothing}, repgen::ArgumentError);
    EXPECT_THROW(repgen::Path{nothing}, repgen::ArgumentError);
}

TEST(WrapperStatus, NamesAreThoseOfTheHeader) {
    for (const RgenDescribedStatus& row : everyStatus)
        EXPECT_EQ(row.name, repgen::statusName(row.status));
    EXPECT_EQ("", repgen::statusName(1));
    EXPECT_EQ("", repgen::statusName(-1));
}

TEST(WrapperOwned, FreesWhatItHoldsOnce) {
    repgen::Owned<RgenAnsiString> text;
    ASSERT_EQ(1, rgen_createRgenAnsiString("text", text.get()));
    repgen::Owned<RgenAnsiString> moved(std::move(text));
    EXPECT_EQ(nullptr, text->data);
    EXPECT_STREQ("text", moved->data);
    repgen::Owned<RgenAnsiString> other;
    ASSERT_EQ(1, rgen_createRgenAnsiString("other", other.get()));
    other = std::move(moved);
    EXPECT_STREQ("text", other->data);
    EXPECT_EQ(nullptr, moved->data);
    repgen::Owned<RgenByteArray> bytes;
    ASSERT_EQ(1, rgen_createRgenByteArray(repgen::Bytes{1}.data(), 1, bytes.get()));
    EXPECT_EQ(1U, (*bytes).size);
}

}  // namespace
}  // namespace rgen_test

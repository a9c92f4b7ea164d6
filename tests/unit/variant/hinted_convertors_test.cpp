// The text of every kind under every hint, the checks before it, and what locales may change.
//
// SPDX-License-Identifier: MIT
#include "variant/hinted_convertors.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "support/global_locale.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

using hvariant_private::convertorFor;
using hvariant_private::IHintedVariantValueConvertor;
using rgen::ByteVector;
using rgen::Variant;
using rgen::VariantHint;

constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
constexpr const char* uninitialized = "UNINITIALIZED_VARIANT_VALUE";
constexpr const char* unknownHint = "INT64 STUB - UNKNOWN HINT!";
constexpr const char* badTime = "ERROR: BAD TIME_T INPUT";

std::string numberText(std::int64_t number, VariantHint hint) {
    return rgen::variantText(Variant(number, hint));
}

Variant handleVariant(std::uintptr_t number) {
    Variant variant;
    variant.value = reinterpret_cast<void*>(number);
    variant.hint = VariantHint::Generic;
    variant.convertor = &convertorFor<void*>;
    return variant;
}

std::string converted(const IHintedVariantValueConvertor& convertor, const Variant* variant,
                      VariantHint hint) {
    std::string text = "previous";
    convertor.convert(text, variant, hint);
    return text;
}

const std::vector<const IHintedVariantValueConvertor*>& convertors() {
    static const std::vector<const IHintedVariantValueConvertor*> all = {
        &convertorFor<std::string>, &convertorFor<std::int64_t>, &convertorFor<ByteVector>,
        &convertorFor<void*>};
    return all;
}

class GroupingPunctuation : public std::numpunct<char> {
    std::string do_grouping() const override { return "\3"; }
    char do_thousands_sep() const override { return '.'; }
};

// What the standard time facet of a locale makes of a time.
std::string standardText(const std::locale& locale, const std::tm& time,
                         const std::string& pattern) {
    std::ostringstream stream;
    stream.imbue(locale);
    std::use_facet<std::time_put<char>>(locale).put(std::ostreambuf_iterator<char>(stream), stream,
                                                    ' ', &time, pattern.data(),
                                                    pattern.data() + pattern.size());
    return stream.str();
}

// The locales of these names that the system has.
std::vector<std::locale> systemLocales() {
    std::vector<std::locale> locales = {std::locale::classic()};
    for (const char* name : {"", "C.UTF-8", "de_DE.UTF-8", "fa_IR.UTF-8", "ja_JP.UTF-8"}) {
        try {
            locales.emplace_back(name);
        } catch (const std::runtime_error&) {
            continue;
        }
    }
    return locales;
}

TEST(ConvertorGuard, AbsentVariantGivesTheFixedText) {
    for (const auto* convertor : convertors()) {
        EXPECT_EQ(uninitialized, converted(*convertor, nullptr, VariantHint::Generic));
    }
}

TEST(ConvertorGuard, VariantWithoutAValueGivesTheFixedText) {
    Variant empty;
    empty.hint = VariantHint::Generic;
    for (const auto* convertor : convertors()) {
        EXPECT_EQ(uninitialized, converted(*convertor, &empty, VariantHint::Generic));
    }
}

TEST(ConvertorGuard, HintZeroOfTheVariantGivesTheFixedText) {
    const Variant text(std::string("x"), VariantHint::Uninitialized);
    const Variant number(std::int64_t{1}, VariantHint::Uninitialized);
    const Variant bytes(ByteVector{1}, VariantHint::Uninitialized);
    Variant handle = handleVariant(1);
    handle.hint = VariantHint::Uninitialized;
    const Variant* variants[] = {&text, &number, &bytes, &handle};
    for (std::size_t i = 0; i < convertors().size(); ++i) {
        EXPECT_EQ(uninitialized, converted(*convertors()[i], variants[i], VariantHint::Generic));
        EXPECT_EQ(uninitialized, rgen::variantText(*variants[i]));
    }
}

TEST(ConvertorGuard, AnotherKindThanTheConvertorsGivesTheFixedText) {
    const Variant text(std::string("x"), VariantHint::Generic);
    const Variant number(std::int64_t{1}, VariantHint::Generic);
    const Variant bytes(ByteVector{1}, VariantHint::Generic);
    const Variant handle = handleVariant(1);
    const Variant* variants[] = {&text, &number, &bytes, &handle};
    for (std::size_t c = 0; c < convertors().size(); ++c) {
        for (std::size_t v = 0; v < convertors().size(); ++v) {
            const std::string result = converted(*convertors()[c], variants[v], VariantHint::Speed);
            EXPECT_EQ(c != v, result == uninitialized) << c << ' ' << v << ' ' << result;
        }
    }
}

TEST(VariantText, EmptyVariantGivesTheFixedText) {
    EXPECT_EQ(uninitialized, rgen::variantText(Variant()));
}

TEST(VariantText, ValueThatIsGivenUpHasTheSameText) {
    Variant withoutHint(std::string("x"), VariantHint::Generic);
    withoutHint.hint = VariantHint::Uninitialized;
    Variant ofAnotherKind(std::string("x"), VariantHint::Generic);
    ofAnotherKind.convertor = &convertorFor<std::int64_t>;
    for (const Variant& variant :
         {Variant(), withoutHint, ofAnotherKind, Variant(std::string("text"), VariantHint::Dump),
          Variant(std::string(100, 'x'), VariantHint::Generic), handleVariant(7),
          Variant(std::int64_t{12}, VariantHint::Address),
          Variant(ByteVector{1, 255}, VariantHint::Dump)}) {
        EXPECT_EQ(rgen::variantText(variant), rgen::variantText(Variant(variant)));
    }
}

TEST(VariantText, MissingConvertorGivesTheFixedText) {
    Variant variant(std::string("x"), VariantHint::Generic);
    variant.convertor = nullptr;
    EXPECT_EQ(uninitialized, rgen::variantText(variant));
    variant.convertor = &convertorFor<std::int64_t>;
    EXPECT_EQ(uninitialized, rgen::variantText(variant));
}

TEST(VariantText, TextIsTheSameUnderEveryHint) {
    for (const std::string& text : {std::string("abc"), std::string(), std::string(" a "),
                                    std::string("a\0b", 3), std::string("\xFF\xD0&<")}) {
        for (std::uint64_t hint = 1; hint <= 8; ++hint) {
            EXPECT_EQ(text, rgen::variantText(Variant(text, static_cast<VariantHint>(hint))));
        }
    }
}

TEST(VariantText, BytesAreUpperCaseWithABlankBehindEach) {
    const struct {
        ByteVector bytes;
        const char* text;
    } rows[] = {
        {{}, ""}, {{0}, "00 "}, {{0x01, 0xAB}, "01 AB "}, {{0xFF, 0x0F, 0xF0}, "FF 0F F0 "}};
    for (const auto& row : rows) {
        for (std::uint64_t hint = 1; hint <= 8; ++hint) {
            EXPECT_EQ(row.text,
                      rgen::variantText(Variant(row.bytes, static_cast<VariantHint>(hint))));
        }
    }
}

TEST(VariantText, EveryByteHasItsTwoDigits) {
    for (int byte = 0; byte < 256; ++byte) {
        char expected[4];
        std::snprintf(expected, sizeof expected, "%02X ", static_cast<unsigned>(byte));
        EXPECT_EQ(expected, rgen::variantText(Variant(ByteVector{static_cast<std::uint8_t>(byte)},
                                                      VariantHint::Dump)));
    }
}

TEST(VariantText, HandleIsAnUnsignedNumberUnderEveryHint) {
    const struct {
        std::uintptr_t number;
        const char* text;
    } rows[] = {{0, "0"},
                {7, "7"},
                {0x8000000000000000, "9223372036854775808"},
                {0xFFFFFFFFFFFFFFFF, "18446744073709551615"}};
    for (const auto& row : rows) {
        Variant handle = handleVariant(row.number);
        for (std::uint64_t hint = 1; hint <= 9; ++hint) {
            handle.hint = static_cast<VariantHint>(hint);
            EXPECT_EQ(row.text, rgen::variantText(handle)) << hint;
        }
    }
}

TEST(NumberText, DecimalUnderGenericSizeAndSpeed) {
    const struct {
        std::int64_t number;
        const char* text;
    } rows[] = {{0, "0"},
                {255, "255"},
                {-1, "-1"},
                {1234567890, "1234567890"},
                {greatest, "9223372036854775807"},
                {smallest, "-9223372036854775808"}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, numberText(row.number, VariantHint::Generic));
        EXPECT_EQ(row.text, numberText(row.number, VariantHint::Size));
        EXPECT_EQ(row.text, numberText(row.number, VariantHint::Speed));
    }
}

TEST(NumberText, AddressIsThePatternOfTheNumber) {
    const struct {
        std::int64_t number;
        const char* text;
    } rows[] = {{0, "0x0"},
                {255, "0xff"},
                {0x1234ABCD, "0x1234abcd"},
                {-1, "0xffffffffffffffff"},
                {greatest, "0x7fffffffffffffff"},
                {smallest, "0x8000000000000000"}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, numberText(row.number, VariantHint::Address));
    }
}

TEST(NumberText, DumpAndUnknownHintsGiveTheStubText) {
    EXPECT_EQ(unknownHint, numberText(255, VariantHint::Dump));
    const Variant number(std::int64_t{1}, VariantHint::Generic);
    for (const std::uint64_t hint : {std::uint64_t{0}, std::uint64_t{8}, std::uint64_t{9},
                                     std::numeric_limits<std::uint64_t>::max()}) {
        EXPECT_EQ(unknownHint,
                  converted(convertorFor<std::int64_t>, &number, static_cast<VariantHint>(hint)))
            << hint;
    }
}

TEST(NumberText, HintArgumentDecidesAndNotTheVariants) {
    const Variant number(std::int64_t{255}, VariantHint::Dump);
    EXPECT_EQ("0xff", converted(convertorFor<std::int64_t>, &number, VariantHint::Address));
}

TEST(NumberText, GroupingOfTheGlobalLocaleChangesNothing) {
    const GlobalLocale grouping(new GroupingPunctuation);
    const TimeZone zone("UTC0");
    EXPECT_EQ("1234567890", numberText(1234567890, VariantHint::Size));
    EXPECT_EQ("0x499602d2", numberText(1234567890, VariantHint::Address));
    EXPECT_EQ("1234567890", rgen::variantText(handleVariant(1234567890)));
    EXPECT_EQ("FF FF ", rgen::variantText(Variant(ByteVector{255, 255}, VariantHint::Dump)));
    EXPECT_EQ("13.02.2009 23:31:30", numberText(1234567890, VariantHint::DateTime));
}

TEST(TimeText, CoordinatedUniversalTime) {
    const TimeZone zone("UTC0");
    const struct {
        std::int64_t number;
        const char* time;
        const char* date;
    } rows[] = {{0, "00:00:00", " 1.01.1970"},          {86399, "23:59:59", " 1.01.1970"},
                {86400, "00:00:00", " 2.01.1970"},      {777600, "00:00:00", "10.01.1970"},
                {951782399, "23:59:59", "28.02.2000"},  {951782400, "00:00:00", "29.02.2000"},
                {2147483648, "03:14:08", "19.01.2038"}, {32535215999, "23:59:59", "31.12.3000"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.number);
        EXPECT_EQ(row.time, numberText(row.number, VariantHint::Time));
        EXPECT_EQ(row.date, numberText(row.number, VariantHint::Date));
        EXPECT_EQ(std::string(row.date) + " " + row.time,
                  numberText(row.number, VariantHint::DateTime));
    }
}

TEST(TimeText, DaylightSavingFollowsTheZone) {
    const TimeZone zone("EST5EDT");
    EXPECT_EQ("19:00:00", numberText(0, VariantHint::Time));
    EXPECT_EQ("31.12.1969", numberText(0, VariantHint::Date));
    EXPECT_EQ(" 1.01.2021 07:00:00", numberText(1609502400, VariantHint::DateTime));
    EXPECT_EQ(" 1.07.2021 08:00:00", numberText(1625140800, VariantHint::DateTime));
}

TEST(TimeText, ZoneIsTheOneInForceAtTheCall) {
    {
        const TimeZone zone("AAA-3");
        EXPECT_EQ("03:00:00", numberText(0, VariantHint::Time));
    }
    const TimeZone zone("UTC0");
    EXPECT_EQ("00:00:00", numberText(0, VariantHint::Time));
}

TEST(TimeText, NumbersOutOfRangeGiveTheErrorText) {
    for (const std::int64_t number : {std::int64_t{-1}, smallest, std::int64_t{32535216000},
                                      std::int64_t{253402300800}, greatest}) {
        for (const VariantHint hint :
             {VariantHint::Time, VariantHint::Date, VariantHint::DateTime}) {
            EXPECT_EQ(badTime, numberText(number, hint)) << number;
        }
    }
}

TEST(TimeText, IsThatOfTheStandardTimeFacetInEveryLocale) {
    const TimeZone zone("EST5EDT");
    constexpr std::int64_t step = 7919 * 1013;
    for (const std::locale& locale : systemLocales()) {
        const GlobalLocale global(locale);
        for (std::int64_t number = 0; number <= 32535215999; number += step) {
            std::tm time = {};
            ASSERT_TRUE(rgen::platform::localTime(number, time));
            const std::string day = (time.tm_mday < 10 ? " " : "") + std::to_string(time.tm_mday);
            ASSERT_EQ(standardText(locale, time, "%H:%M:%S"),
                      numberText(number, VariantHint::Time));
            ASSERT_EQ(day + standardText(locale, time, ".%m.%Y"),
                      numberText(number, VariantHint::Date));
            ASSERT_EQ(day + standardText(locale, time, ".%m.%Y %H:%M:%S"),
                      numberText(number, VariantHint::DateTime));
        }
    }
}

TEST(ValueTexts, AreThoseOfEveryValueForItself) {
    const TimeZone zone("AAA-3");
    rgen::ValueTexts texts;
    const Variant date(std::int64_t{0}, VariantHint::DateTime);
    const Variant empty;
    EXPECT_EQ("7", texts.of(Variant(std::int64_t{7}, VariantHint::Generic)));
    EXPECT_EQ(" 1.01.1970 03:00:00", texts.of(date));
    EXPECT_EQ("03:00:00", texts.of(Variant(std::int64_t{0}, VariantHint::Time)));
    EXPECT_EQ("a text", texts.of(Variant(std::string("a text"), VariantHint::Date)));
    EXPECT_EQ(uninitialized, texts.of(empty));
}

}  // namespace
}  // namespace rgen_test

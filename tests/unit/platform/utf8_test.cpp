// The UTF-8 check: every scalar value, and the limits of each row of the table of well-formed byte
// sequences.
//
// SPDX-License-Identifier: MIT
#include "platform/utf8.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace rgen_test {
namespace {

bool isAccepted(const std::string& text) {
    try {
        rgen::platform::requireUtf8(text);
        return true;
    } catch (const std::range_error& error) {
        EXPECT_STREQ("bad conversion", error.what());
        return false;
    }
}

std::string encoded(std::uint32_t code) {
    const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
    const auto tail = [&byte](std::uint32_t value) { return byte(0x80U | (value & 0x3FU)); };
    if (code < 0x80) return {byte(code)};
    if (code < 0x800) return {byte(0xC0U | code >> 6U), tail(code)};
    if (code < 0x10000) return {byte(0xE0U | code >> 12U), tail(code >> 6U), tail(code)};
    return {byte(0xF0U | code >> 18U), tail(code >> 12U), tail(code >> 6U), tail(code)};
}

TEST(RequireUtf8, EveryScalarValueIsAcceptedAndNoSurrogate) {
    for (std::uint32_t code = 0; code <= 0x10FFFF; ++code) {
        const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
        // Surrogates throw, which is slow: tests two of each 256.
        if (surrogate && code % 0x100 != 0 && code % 0x100 != 0xFF) continue;
        ASSERT_EQ(!surrogate, isAccepted(encoded(code))) << std::hex << code;
    }
}

TEST(RequireUtf8, NumbersAboveTheLastOneAreRefused) {
    for (const std::uint32_t code : {0x110000U, 0x13FFFFU, 0x140000U, 0x1FFFFFU}) {
        EXPECT_FALSE(isAccepted(encoded(code))) << std::hex << code;
    }
}

TEST(RequireUtf8, LimitsOfEveryRow) {
    const struct {
        const char* text;
        bool accepted;
    } rows[] = {
        {"\x7F", true},
        {"\x80", false},
        {"\xBF", false},
        {"\xC0\x80", false},
        {"\xC1\xBF", false},
        {"\xC2\x7F", false},
        {"\xC2\x80", true},
        {"\xC2\xBF", true},
        {"\xC2\xC0", false},
        {"\xDF\xBF", true},
        {"\xDF\xC0", false},
        {"\xE0\x9F\xBF", false},
        {"\xE0\xA0\x80", true},
        {"\xE0\xBF\xBF", true},
        {"\xE0\xC0\x80", false},
        {"\xE0\xA0\x7F", false},
        {"\xE0\xA0\xC0", false},
        {"\xE1\x7F\x80", false},
        {"\xE1\x80\x80", true},
        {"\xEC\xBF\xBF", true},
        {"\xEC\xC0\x80", false},
        {"\xED\x7F\x80", false},
        {"\xED\x80\x80", true},
        {"\xED\x9F\xBF", true},
        {"\xED\xA0\x80", false},
        {"\xED\xBF\xBF", false},
        {"\xEE\x80\x80", true},
        {"\xEF\xBF\xBF", true},
        {"\xEF\xBF\xC0", false},
        {"\xF0\x8F\xBF\xBF", false},
        {"\xF0\x90\x80\x80", true},
        {"\xF0\xBF\xBF\xBF", true},
        {"\xF0\xC0\x80\x80", false},
        {"\xF0\x90\x7F\x80", false},
        {"\xF0\x90\x80\xC0", false},
        {"\xF1\x80\x80\x80", true},
        {"\xF3\xBF\xBF\xBF", true},
        {"\xF4\x7F\x80\x80", false},
        {"\xF4\x80\x80\x80", true},
        {"\xF4\x8F\xBF\xBF", true},
        {"\xF4\x90\x80\x80", false},
        {"\xF5\x80\x80\x80", false},
        {"\xFE", false},
        {"\xFF", false},
    };
    for (const auto& row : rows) {
        const std::string text = row.text;
        EXPECT_EQ(row.accepted, isAccepted(text)) << testing::PrintToString(text);
        EXPECT_EQ(row.accepted, isAccepted("a" + text + "b")) << testing::PrintToString(text);
        EXPECT_EQ(row.accepted, isAccepted(text + text)) << testing::PrintToString(text);
    }
}

TEST(RequireUtf8, IncompleteSequencesAreRefused) {
    for (const std::string text :
         {"\xC3", "\xE2\x82", "\xE2", "\xF0\x9F\x98", "\xF0\x9F", "\xF0"}) {
        EXPECT_FALSE(isAccepted(text)) << testing::PrintToString(text);
        EXPECT_FALSE(isAccepted(text + "a")) << testing::PrintToString(text);
        EXPECT_FALSE(isAccepted("a" + text)) << testing::PrintToString(text);
    }
}

TEST(RequireUtf8, EmptyTextZeroBytesAndLongTextsAreAccepted) {
    EXPECT_TRUE(isAccepted(""));
    EXPECT_TRUE(isAccepted(std::string("a\0b", 3)));
    std::string text;
    while (text.size() < 1000000)
        text += "\xF0\x9F\x98\x80\xD0\xBE";
    EXPECT_TRUE(isAccepted(text));
    EXPECT_FALSE(isAccepted(text + "\xD0"));
}

}  // namespace
}  // namespace rgen_test

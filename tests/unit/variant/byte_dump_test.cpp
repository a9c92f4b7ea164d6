// The byte dump scanner and parser: tables, and a comparison with regular expressions that say the
// same.
//
// SPDX-License-Identifier: MIT
#include "variant/byte_dump.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/console_capture.h"
#include "support/expression_oracles.h"
#include "unit/random_text.h"

namespace rgen_test {
namespace {

using rgen::ByteVector;

const char* const invalidLine = "input byte dump string is invalid\n";

const std::vector<std::string>& pieces() {
    static const std::vector<std::string> all = {"0x", "0", "x", "X", "A",  "f",
                                                 "9",  "g", ",", " ", "\t", "0x0A"};
    return all;
}

void expectSameAsExpression(const std::string& text) {
    const bool valid = isByteDumpByExpression(text);
    ASSERT_EQ(valid, rgen::isValidByteDump(text)) << testing::PrintToString(text);
    if (!valid) return;
    ByteVector bytes;
    ASSERT_TRUE(rgen::parseByteDump(text, bytes)) << testing::PrintToString(text);
    ASSERT_EQ(bytesByExpression(text), bytes) << testing::PrintToString(text);
}

TEST(IsValidByteDump, ValidTexts) {
    for (const std::string text :
         {"0x00", "0xff", "0xFF", "0xaB", "0x01,0x02", "0x01, 0xAB,0xff", " 0x01 , 0xFF ",
          "\t0x01\n,\r\v\f0x02 \t", "0x01   ,0x02", "0x01,\n\n0x02"}) {
        EXPECT_TRUE(rgen::isValidByteDump(text)) << text;
    }
}

TEST(IsValidByteDump, InvalidTexts) {
    for (const std::string text : {"",
                                   " ",
                                   "\n\t",
                                   ",",
                                   "0",
                                   "0x",
                                   "0x1",
                                   "0X01",
                                   "x01",
                                   "01",
                                   "0x0g",
                                   "0xg0",
                                   "0x001",
                                   "0x01,",
                                   "0x01, ",
                                   ",0x01",
                                   "0x01,,0x02",
                                   "0x01 0x02",
                                   "0x010x02",
                                   "0x01;0x02",
                                   "0x 01",
                                   "0 x01",
                                   "0x01,0x1",
                                   "0x01,0X02",
                                   "-0x01",
                                   "0x01\xA0",
                                   "\xC2\xA0"
                                   "0x01"}) {
        EXPECT_FALSE(rgen::isValidByteDump(text)) << text;
    }
    EXPECT_FALSE(rgen::isValidByteDump(std::string("0x01\0", 5)));
    EXPECT_FALSE(rgen::isValidByteDump(std::string("0x0\0", 4)));
}

TEST(IsValidByteDump, AgreesWithTheExpressionOnShortTexts) {
    visitSequences(pieces(), 4, expectSameAsExpression);
}

TEST(IsValidByteDump, AgreesWithTheExpressionOnLongerTexts) {
    visitRandomTexts(pieces(), 12, 20000, expectSameAsExpression);
    visitRandomTexts({"0x0A", "0xff", ",", ",", " "}, 9, 20000, expectSameAsExpression);
}

TEST(IsValidByteDump, LongTextNeedsNoStack) {
    std::string text = "0x00";
    while (text.size() < 1000000)
        text += " , 0x7f";
    EXPECT_TRUE(rgen::isValidByteDump(text));
    EXPECT_FALSE(rgen::isValidByteDump(text + ","));
    EXPECT_FALSE(rgen::isValidByteDump(std::string(1000000, ' ')));
    ByteVector bytes;
    EXPECT_TRUE(rgen::parseByteDump(text, bytes));
    EXPECT_EQ((text.size() - 4) / 7 + 1, bytes.size());
}

TEST(ParseByteDump, AppendsTheBytesInOrder) {
    ByteVector bytes = {9};
    EXPECT_TRUE(rgen::parseByteDump("0x01, 0xAB,0xff , 0x00", bytes));
    EXPECT_EQ((ByteVector{9, 0x01, 0xAB, 0xFF, 0x00}), bytes);
}

TEST(ParseByteDump, EveryByteInBothLetterCases) {
    constexpr const char* lower = "0123456789abcdef";
    constexpr const char* upper = "0123456789ABCDEF";
    for (std::size_t byte = 0; byte < 256; ++byte) {
        for (const char* digits : {lower, upper}) {
            ByteVector bytes;
            const std::string token = {'0', 'x', digits[byte / 16], digits[byte % 16]};
            EXPECT_TRUE(rgen::parseByteDump(token, bytes));
            EXPECT_EQ(ByteVector{static_cast<std::uint8_t>(byte)}, bytes) << token;
        }
    }
}

TEST(ParseByteDump, InvalidTextWritesTheLineOnceAndLeavesTheBytes) {
    for (const std::string text : {"", "0x1", "0x01,", "0X01", "0x01,0x02,zz"}) {
        bool parsed = true;
        ByteVector bytes = {9};
        const ConsoleText console =
            captureConsole([&] { parsed = rgen::parseByteDump(text, bytes); });
        EXPECT_FALSE(parsed) << text;
        EXPECT_EQ(invalidLine, console.out) << text;
        EXPECT_EQ("", console.err) << text;
        EXPECT_EQ(ByteVector{9}, bytes) << text;
    }
}

TEST(ParseByteDump, ValidTextWritesNothing) {
    const ConsoleText console = captureConsole([] {
        ByteVector bytes;
        rgen::parseByteDump("0x01,0x02", bytes);
    });
    EXPECT_EQ("", console.out + console.err);
}

TEST(IsValidByteDump, WritesNothing) {
    const ConsoleText console = captureConsole([] { rgen::isValidByteDump("0x1"); });
    EXPECT_EQ("", console.out + console.err);
}

}  // namespace
}  // namespace rgen_test

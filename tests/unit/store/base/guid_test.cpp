// GUID text: the writer, and the matcher compared with a regular expression of the same grammar.
//
// SPDX-License-Identifier: MIT
#include "store/base/guid.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "support/expression_oracles.h"
#include "unit/random_text.h"

namespace rgen_test {
namespace {

const std::string validText = "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9";

void expectSameAsExpression(const std::string& text) {
    ASSERT_EQ(isGuidTextByExpression(text), rgen::isGuidText(text)) << testing::PrintToString(text);
}

TEST(FormatGuid, WritesThirtySixLowerCaseCharacters) {
    const struct {
        rgen::Guid guid;
        const char* text;
    } rows[] = {
        {{0, 0, 0, {}}, "00000000-0000-0000-0000-000000000000"},
        {{0x0A1B2C3D, 0x4E5F, 0x6071, {0x82, 0x93, 0xA4, 0xB5, 0xC6, 0xD7, 0xE8, 0xF9}},
         "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9"},
        {{0xFFFFFFFF, 0xFFFF, 0xFFFF, {255, 255, 255, 255, 255, 255, 255, 255}},
         "ffffffff-ffff-ffff-ffff-ffffffffffff"},
        {{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}, "00000001-0002-0003-0405-060708090a0b"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, rgen::formatGuid(row.guid));
        EXPECT_TRUE(rgen::isGuidText(rgen::formatGuid(row.guid)));
    }
}

TEST(FormatGuid, DefaultReportTypeHasItsText) {
    EXPECT_EQ("deadbabe-0000-0000-0000-000000000000",
              rgen::formatGuid(rgen::defaultReportTypeGuid));
}

TEST(IsGuidText, OtherFormsAreRefused) {
    for (const std::string text :
         {"", "0A1B2C3D-4e5f-6071-8293-a4b5c6d7e8f9", "{0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9}",
          "0a1b2c3d4e5f60718293a4b5c6d7e8f9", "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f",
          "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9a", " 0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9",
          "0a1b2c3d-4e5f-6071-8293a-4b5c6d7e8f9", "0a1b2c3g-4e5f-6071-8293-a4b5c6d7e8f9"}) {
        EXPECT_FALSE(rgen::isGuidText(text)) << text;
    }
    EXPECT_FALSE(rgen::isGuidText(validText + std::string(1, '\0')));
}

TEST(IsGuidText, EveryCharacterAtEveryPlaceAgreesWithTheExpression) {
    for (std::size_t place = 0; place < validText.size(); ++place) {
        for (int code = 0; code < 256; ++code) {
            std::string text = validText;
            text[place] = static_cast<char>(code);
            expectSameAsExpression(text);
        }
    }
}

TEST(IsGuidText, LostAndDoubledCharactersAgreeWithTheExpression) {
    for (std::size_t place = 0; place <= validText.size(); ++place) {
        for (const char* inserted : {"0", "a", "-", "G", " ", "\n"}) {
            std::string text = validText;
            expectSameAsExpression(text.insert(place, inserted));
        }
        expectSameAsExpression(validText.substr(0, place));
        expectSameAsExpression(validText.substr(place));
        std::string shorter = validText;
        expectSameAsExpression(shorter.erase(place, 1));
    }
}

TEST(IsGuidText, GroupsInAnyOrderAgreeWithTheExpression) {
    const std::vector<std::string> pieces = {"0a1b2c3d", "4e5f", "a4b5c6d7e8f9", "-", "0", "F"};
    visitSequences(pieces, 5, expectSameAsExpression);
    visitRandomTexts({"0a1b2c3d-", "4e5f-", "4e5f-", "6071-", "a4b5c6d7e8f9", "-"}, 7, 20000,
                     expectSameAsExpression);
}

TEST(IsGuidText, LongTextIsRefused) {
    EXPECT_FALSE(rgen::isGuidText(std::string(1000000, 'a')));
}

}  // namespace
}  // namespace rgen_test

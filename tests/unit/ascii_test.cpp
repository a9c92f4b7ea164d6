// The character rules, for every one of the 256 characters.
//
// SPDX-License-Identifier: MIT
#include "ascii.h"

#include <gtest/gtest.h>

#include <string>

namespace rgen_test {
namespace {

// Every character in order, from 0 to 255.
std::string everyCharacter() {
    std::string characters;
    for (int code = 0; code < 256; ++code) {
        characters.push_back(static_cast<char>(code));
    }
    return characters;
}

TEST(Ascii, WhiteSpaceIsSixCharacters) {
    std::string found;
    for (const char character : everyCharacter()) {
        if (rgen::isWhiteSpace(character)) found.push_back(character);
    }
    EXPECT_EQ("\t\n\v\f\r ", found);
}

TEST(Ascii, HexDigitsAreTwentyTwoCharacters) {
    std::string found;
    for (const char character : everyCharacter()) {
        if (rgen::isHexDigit(character)) found.push_back(character);
    }
    EXPECT_EQ("0123456789ABCDEFabcdef", found);
}

TEST(Ascii, LowerCaseChangesTheTwentySixCapitalsOnly) {
    std::string changed;
    std::string lower;
    for (const char character : everyCharacter()) {
        if (rgen::toLowerAscii(character) == character) continue;
        changed.push_back(character);
        lower.push_back(rgen::toLowerAscii(character));
    }
    EXPECT_EQ("ABCDEFGHIJKLMNOPQRSTUVWXYZ", changed);
    EXPECT_EQ("abcdefghijklmnopqrstuvwxyz", lower);
}

}  // namespace
}  // namespace rgen_test

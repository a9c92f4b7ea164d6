// Letters, letter case and white space by the rules of ASCII, as HTML and URLs use them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace vellum {

/// The white space of HTML.
constexpr std::string_view whiteSpace = " \t\n\r\f";

constexpr bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

constexpr bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

constexpr char lowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

std::string lowerCase(std::string_view text);

/// The text without white space at its start and end.
std::string trimmed(const std::string& text);

}  // namespace vellum

// Character rules that do not depend on the host's locale: the six ASCII white-space characters and
// the 26 ASCII letters.
//
// SPDX-License-Identifier: MIT
#pragma once

namespace rgen {

/// Space, tab, line feed, vertical tab, form feed, carriage return.
constexpr bool isWhiteSpace(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

constexpr char toLowerAscii(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

/// Accepts upper and lower case.
constexpr bool isHexDigit(char character) {
    const char lower = toLowerAscii(character);
    return (lower >= '0' && lower <= '9') || (lower >= 'a' && lower <= 'f');
}

}  // namespace rgen

// Overlong forms, surrogates and code points above 0x10FFFF are not UTF-8; each byte of them counts
// as a character of its own.
//
// SPDX-License-Identifier: MIT
#include "text/character_check.h"

#include <cstdio>

namespace rgenh {
namespace {

constexpr LeadingCharacter malformedByte = {1, std::nullopt};

std::uint32_t byteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

/// 0 for a byte that does not begin a character.
std::size_t lengthFrom(std::uint32_t lead) {
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return 0;
    if (lead < 0xE0) return 2;
    return lead < 0xF0 ? 3 : 4;
}

bool isSurrogate(std::uint32_t codePoint) {
    return codePoint >= 0xD800 && codePoint <= 0xDFFF;
}

std::string nameOf(const LeadingCharacter& character, std::uint32_t byte) {
    char name[24] = {};
    if (character.codePoint) {
        std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(*character.codePoint));
    } else {
        std::snprintf(name, sizeof name, "the byte 0x%02X", static_cast<unsigned>(byte));
    }
    return name;
}

}  // namespace

bool isXmlCharacter(std::uint32_t character) {
    if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
    return character <= 0x10FFFF && !isSurrogate(character) && character != 0xFFFE &&
           character != 0xFFFF;
}

LeadingCharacter leadingCharacter(std::string_view text) {
    constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const std::uint32_t lead = byteAt(text, 0);
    const std::size_t length = lengthFrom(lead);
    if (length == 1) return {1, lead};
    if (length == 0 || text.size() < length) return malformedByte;
    std::uint32_t codePoint = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const std::uint32_t byte = byteAt(text, i);
        if ((byte & 0xC0U) != 0x80U) return malformedByte;
        codePoint = codePoint << 6U | (byte & 0x3FU);
    }
    const bool isValid =
        codePoint >= smallest[length] && codePoint <= 0x10FFFF && !isSurrogate(codePoint);
    return isValid ? LeadingCharacter{length, codePoint} : malformedByte;
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const LeadingCharacter next = leadingCharacter(text);
        if (!next.codePoint) return false;
        text.remove_prefix(next.length);
    }
    return true;
}

std::optional<InvalidCharacter> findInvalidCharacter(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const LeadingCharacter next = leadingCharacter(text.substr(at));
        if (!next.codePoint || !isXmlCharacter(*next.codePoint)) {
            return InvalidCharacter{at, nameOf(next, byteAt(text, at))};
        }
        at += next.length;
    }
    return std::nullopt;
}

std::string withInvalidReplaced(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const LeadingCharacter next = leadingCharacter(text);
        const bool isHeld = next.codePoint && isXmlCharacter(*next.codePoint);
        result += isHeld ? text.substr(0, next.length) : "\xEF\xBF\xBD";
        text.remove_prefix(next.length);
    }
    return result;
}

std::string utf8Of(std::uint32_t codePoint) {
    const auto byte = [codePoint](unsigned shift, unsigned mark) {
        return static_cast<char>(mark | ((codePoint >> shift) & 0x3FU));
    };
    if (codePoint < 0x80) return {static_cast<char>(codePoint)};
    if (codePoint < 0x800) return {static_cast<char>(0xC0U | (codePoint >> 6U)), byte(0, 0x80)};
    if (codePoint < 0x10000) {
        return {static_cast<char>(0xE0U | (codePoint >> 12U)), byte(6, 0x80), byte(0, 0x80)};
    }
    return {static_cast<char>(0xF0U | (codePoint >> 18U)), byte(12, 0x80), byte(6, 0x80),
            byte(0, 0x80)};
}

}  // namespace rgenh

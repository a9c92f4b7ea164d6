// References in XML content: the named ones, and numbers in decimal and hexadecimal.
//
// SPDX-License-Identifier: MIT
#include "xml_content.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace cli {
namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

std::string utf8(std::uint32_t character) {
    const auto byte = [character](unsigned shift, unsigned mark) {
        return static_cast<char>(mark | ((character >> shift) & 0x3FU));
    };
    if (character < 0x80) return {static_cast<char>(character)};
    if (character < 0x800) return {static_cast<char>(0xC0U | (character >> 6U)), byte(0, 0x80)};
    if (character < 0x10000) {
        return {static_cast<char>(0xE0U | (character >> 12U)), byte(6, 0x80), byte(0, 0x80)};
    }
    return {static_cast<char>(0xF0U | (character >> 18U)), byte(12, 0x80), byte(6, 0x80),
            byte(0, 0x80)};
}

/// The character of "#65" or "#x41"; zero and surrogates are none.
std::optional<std::string> numericReference(std::string_view name) {
    const bool isHex = name.size() > 1 && name[1] == 'x';
    const std::string digits(name.substr(isHex ? 2 : 1));
    const char* const allowed = isHex ? "0123456789abcdefABCDEF" : "0123456789";
    if (digits.empty() || digits.size() > 8 ||
        digits.find_first_not_of(allowed) != std::string::npos) {
        return std::nullopt;
    }
    const auto number = static_cast<std::uint32_t>(std::stoul(digits, nullptr, isHex ? 16 : 10));
    if (number == 0 || number > 0x10FFFF || (number >= 0xD800 && number <= 0xDFFF)) {
        return std::nullopt;
    }
    return utf8(number);
}

std::optional<std::string> referencedText(std::string_view name) {
    if (name == "amp") return "&";
    if (name == "lt") return "<";
    if (name == "gt") return ">";
    if (name == "quot") return "\"";
    if (name == "apos") return "'";
    if (!name.empty() && name[0] == '#') return numericReference(name);
    return std::nullopt;
}

/// The name between "&" at `ampersand` and the next ";", empty when that is no reference.
std::string_view referenceName(std::string_view content, std::size_t ampersand) {
    const std::size_t end = content.find_first_of("; \t\r\n&<", ampersand + 1);
    if (end == std::string_view::npos || content[end] != ';') return {};
    return content.substr(ampersand + 1, end - ampersand - 1);
}

}  // namespace

std::string escapedAmpersands(const std::string& text) {
    std::string content;
    content.reserve(text.size());
    for (const char letter : text) {
        if (letter == '&') {
            content += "&amp;";
        } else {
            content += letter;
        }
    }
    return content;
}

std::string withoutReferences(const std::string& content) {
    std::string text;
    for (std::size_t i = 0; i < content.size();) {
        const std::string_view name =
            content[i] == '&' ? referenceName(content, i) : std::string_view();
        const std::optional<std::string> meant = referencedText(name);
        text += meant ? *meant : std::string(1, content[i]);
        i += meant ? name.size() + 2 : 1;
    }
    return text;
}

bool hasPlainAmpersand(const std::string& content) {
    for (std::size_t i = content.find('&'); i != std::string::npos; i = content.find('&', i + 1)) {
        if (!referencedText(referenceName(content, i))) return true;
    }
    return false;
}

std::string withoutNoncharacters(std::string text) {
    constexpr std::string_view start = "\xEF\xBF";
    for (std::size_t i = text.find(start); i != std::string::npos; i = text.find(start, i + 1)) {
        const char last = i + 2 < text.size() ? text[i + 2] : '\0';
        if (last == '\xBE' || last == '\xBF') text[i + 2] = '\xBD';
    }
    return text;
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

}  // namespace cli

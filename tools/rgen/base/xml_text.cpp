// References in XML content: named, decimal and hexadecimal ones.
//
// SPDX-License-Identifier: MIT
#include "base/xml_text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "text/utf8.h"

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

bool isXmlCharacter(std::uint32_t character) {
    if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    return !isSurrogate && character <= 0x10FFFF && character != 0xFFFE && character != 0xFFFF;
}

/// The length of the valid XML character at the start of `text`, 0 when there is none.
std::size_t fitLength(std::string_view text) {
    const std::size_t length = tools::sequenceLength(text);
    return length != 0 && isXmlCharacter(tools::codePoint(text.substr(0, length))) ? length : 0;
}

/// The character of "#65" or "#x41"; nothing for one that XML does not allow.
std::optional<std::string> numericReference(std::string_view name) {
    const bool isHex = name.size() > 1 && name[1] == 'x';
    std::string digits(name.substr(isHex ? 2 : 1));
    const char* const allowed = isHex ? "0123456789abcdefABCDEF" : "0123456789";
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.empty() || digits.size() > 8 ||
        digits.find_first_not_of(allowed) != std::string::npos) {
        return std::nullopt;
    }
    const auto number = static_cast<std::uint32_t>(std::stoul(digits, nullptr, isHex ? 16 : 10));
    if (!isXmlCharacter(number)) return std::nullopt;
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

/// The name between "&" at `ampersand` and the next ";", empty when it is not a reference.
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

std::string escapedPlainAmpersands(const std::string& text) {
    std::string content;
    content.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        content += text[i];
        if (text[i] == '&' && !referencedText(referenceName(text, i))) content += "amp;";
    }
    return content;
}

std::string unescaped(const std::string& content) {
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

std::optional<InvalidCharacter> findInvalidCharacter(const std::string& text) {
    const std::string_view whole = text;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = fitLength(whole.substr(i));
        if (length == 0) {
            const std::size_t bytes = tools::sequenceLength(whole.substr(i));
            char name[24] = {};
            if (bytes == 0) {
                std::snprintf(name, sizeof name, "the byte 0x%02X",
                              static_cast<unsigned>(static_cast<unsigned char>(text[i])));
            } else {
                std::snprintf(name, sizeof name, "U+%04X",
                              static_cast<unsigned>(tools::codePoint(whole.substr(i, bytes))));
            }
            return InvalidCharacter{i, name};
        }
        i += length;
    }
    return std::nullopt;
}

std::string withInvalidCharactersReplaced(const std::string& text) {
    constexpr const char* replacement = "\xEF\xBF\xBD";
    const std::string_view whole = text;
    std::string fit;
    fit.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = fitLength(whole.substr(i));
        fit += length == 0 ? std::string_view(replacement) : whole.substr(i, length);
        i +=
            length != 0 ? length : std::max<std::size_t>(1, tools::sequenceLength(whole.substr(i)));
    }
    return fit;
}

/// libxml2 takes everything before the next ";" as the name, including blanks and further "&".
std::optional<std::string> findUnknownReference(const std::string& content) {
    for (std::size_t i = content.find('&'); i != std::string::npos; i = content.find('&', i + 1)) {
        const std::size_t end = content.find(';', i + 1);
        if (end == std::string::npos) return std::nullopt;
        const std::string name = content.substr(i + 1, end - i - 1);
        if (!referencedText(name)) return "&" + name + ";";
    }
    return std::nullopt;
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

}  // namespace cli

// XML defines five named references and numbers. All others are unknown to the library's documents.
//
// SPDX-License-Identifier: MIT
#include "text/references.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "text/character_check.h"

namespace rgenh {
namespace {

struct NamedReference {
    std::string_view name;
    std::string_view character;
};

constexpr NamedReference namedReferences[] = {
    {"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}};

/// The value of a digit of that base, or the base if the character is not such a digit.
std::uint32_t digitOf(char letter, std::uint32_t base) {
    std::uint32_t digit = base;
    if (letter >= '0' && letter <= '9') digit = static_cast<std::uint32_t>(letter - '0');
    if (letter >= 'a' && letter <= 'f') digit = static_cast<std::uint32_t>(letter - 'a') + 10;
    if (letter >= 'A' && letter <= 'F') digit = static_cast<std::uint32_t>(letter - 'A') + 10;
    return std::min(digit, base);
}

/// The number of "#65" or "#x41", at most 0x110000; nothing if what follows "#" is not a number.
std::optional<std::uint32_t> numberOf(std::string_view name) {
    const bool isHex = name[1] == 'x';
    const std::uint32_t base = isHex ? 16 : 10;
    const std::string_view digits = name.substr(isHex ? 2 : 1);
    if (digits.empty()) return std::nullopt;
    std::uint32_t number = 0;
    for (const char letter : digits) {
        const std::uint32_t digit = digitOf(letter, base);
        if (digit == base) return std::nullopt;
        number = std::min<std::uint32_t>(number * base + digit, 0x110000);
    }
    return number;
}

bool isNumeric(std::string_view name) {
    return name[0] == '#';
}

std::string numericReference(std::string_view name) {
    const std::uint32_t number = numberOf(name).value_or(0);
    const bool isSurrogate = number >= 0xD800 && number <= 0xDFFF;
    if (number == 0 || number > 0x10FFFF || isSurrogate) return {};
    return utf8Of(number);
}

/// The character of a reference without "&" and ";"; empty if there is none.
std::string characterOf(std::string_view name) {
    if (isNumeric(name)) return numericReference(name);
    for (const NamedReference& known : namedReferences) {
        if (known.name == name) return std::string(known.character);
    }
    return {};
}

std::string_view nameIn(std::string_view reference) {
    return reference.substr(1, reference.size() - 2);
}

/// The reference at the start of a text, such as "&amp;", or "&" alone if there is none. Its name
/// is not empty, nor is that of "&#65;" without the "#".
std::string_view referenceAt(std::string_view text) {
    const std::size_t nameStart = text.size() > 1 && text[1] == '#' ? 2 : 1;
    const std::size_t end = text.find_first_of("&;#< \t\r\n", nameStart);
    if (end == std::string_view::npos || text[end] != ';' || end == nameStart) {
        return text.substr(0, 1);
    }
    const std::string_view reference = text.substr(0, end + 1);
    const std::string_view name = nameIn(reference);
    if (isNumeric(name) && !numberOf(name)) return text.substr(0, 1);
    return reference;
}

}  // namespace

std::string withoutReferences(std::string_view content) {
    return mapAmpersands(content, [](std::string_view reference, std::size_t /*at*/) {
        std::string meant;
        if (reference.size() > 1) meant = characterOf(nameIn(reference));
        if (meant.empty()) meant = reference;
        return meant;
    });
}

std::string heldReference(std::string_view reference) {
    if (reference.size() == 1) return {};
    const std::string_view name = nameIn(reference);
    if (isNumeric(name) && !isXmlCharacter(*numberOf(name))) return "&#xFFFD;";
    const std::string character = characterOf(name);
    if (character.empty()) return {};
    return std::string(reference);
}

std::string mapAmpersands(std::string_view text,
                          const std::function<std::string(std::string_view, std::size_t)>& meant) {
    std::string result;
    result.reserve(text.size());
    std::size_t at = 0;
    for (std::size_t start = text.find('&'); start != std::string_view::npos;
         start = text.find('&', at)) {
        result += text.substr(at, start - at);
        const std::string_view reference = referenceAt(text.substr(start));
        result += meant(reference, start);
        at = start + reference.size();
    }
    return result.append(text.substr(at));
}

}  // namespace rgenh

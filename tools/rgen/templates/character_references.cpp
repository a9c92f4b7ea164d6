// SPDX-License-Identifier: MIT
#include "templates/character_references.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <utility>

namespace cli {
namespace {

using NamedText = std::pair<std::string_view, std::string_view>;

constexpr std::array<NamedText, 5> predefined{
    {{"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}}};

/// Names that authors know from HTML. XML does not have them.
constexpr std::array<std::pair<std::string_view, unsigned>, 46> htmlNames{
    {{"nbsp", 160},   {"iexcl", 161},   {"cent", 162},   {"pound", 163},   {"yen", 165},
     {"sect", 167},   {"copy", 169},    {"laquo", 171},  {"shy", 173},     {"reg", 174},
     {"deg", 176},    {"plusmn", 177},  {"sup2", 178},   {"sup3", 179},    {"micro", 181},
     {"para", 182},   {"middot", 183},  {"raquo", 187},  {"frac12", 189},  {"Auml", 196},
     {"Ouml", 214},   {"times", 215},   {"Uuml", 220},   {"szlig", 223},   {"agrave", 224},
     {"auml", 228},   {"eacute", 233},  {"ouml", 246},   {"divide", 247},  {"uuml", 252},
     {"Omega", 937},  {"ensp", 8194},   {"emsp", 8195},  {"thinsp", 8201}, {"ndash", 8211},
     {"mdash", 8212}, {"lsquo", 8216},  {"rsquo", 8217}, {"ldquo", 8220},  {"rdquo", 8221},
     {"bull", 8226},  {"hellip", 8230}, {"euro", 8364},  {"trade", 8482},  {"rarr", 8594},
     {"check", 10003}}};

bool isNameCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_' ||
           character == '-' || character == '.' || character == ':';
}

/// The bytes from "&" to ";"; 0 when there is no reference.
std::size_t referenceLength(std::string_view text) {
    std::size_t end = 1;
    if (end < text.size() && text[end] == '#') ++end;
    const std::size_t nameBegin = end;
    while (end < text.size() && isNameCharacter(text[end]))
        ++end;
    return end > nameBegin && end < text.size() && text[end] == ';' ? end + 1 : 0;
}

/// The code point of "#160" or "#xA0"; 0 when it is none.
std::uint32_t numberOf(std::string_view name) {
    const bool isHex = name.size() > 1 && (name[1] == 'x');
    std::uint32_t value = 0;
    const std::size_t begin = isHex ? 2 : 1;
    for (std::size_t i = begin; i < name.size(); ++i) {
        const auto digit = static_cast<unsigned char>(name[i]);
        if (isHex ? std::isxdigit(digit) == 0 : std::isdigit(digit) == 0) return 0;
        const std::uint32_t worth = std::isdigit(digit) != 0
                                        ? digit - std::uint32_t{'0'}
                                        : (digit | 0x20U) - std::uint32_t{'a'} + 10;
        value = value * (isHex ? 16 : 10) + worth;
        if (value > 0x10FFFF) return 0;
    }
    return value;
}

/// Whether XML allows the character.
bool isXmlCharacter(std::uint32_t point) {
    if (point < 0x20) return point == 0x9 || point == 0xA || point == 0xD;
    return point < 0xD800 || (point > 0xDFFF && point != 0xFFFE && point != 0xFFFF);
}

std::string utf8(std::uint32_t point) {
    const auto tail = [point](unsigned shift) {
        return static_cast<char>(0x80U | ((point >> shift) & 0x3FU));
    };
    if (point < 0x80) return {static_cast<char>(point)};
    if (point < 0x800) return {static_cast<char>(0xC0U | (point >> 6U)), tail(0)};
    if (point < 0x10000) return {static_cast<char>(0xE0U | (point >> 12U)), tail(6), tail(0)};
    return {static_cast<char>(0xF0U | (point >> 18U)), tail(12), tail(6), tail(0)};
}

ReferenceMistake unknownEntity(std::string_view name, std::size_t length) {
    ReferenceMistake mistake{length, "unknown-entity",
                             "unknown entity \"" + std::string(name) + "\"",
                             "write the character itself, or its number such as \"&#160;\""};
    for (const auto& [known, point] : htmlNames) {
        if (known == name) mistake.advice = "write \"&#" + std::to_string(point) + ";\"";
    }
    return mistake;
}

}  // namespace

ReferenceMistake mistakeInReference(std::string_view text,
                                    const std::set<std::string, std::less<>>& declared) {
    const std::size_t length = referenceLength(text);
    if (length == 0) return {1, "plain-ampersand", "\"&\" begins a reference", "write \"&amp;\""};
    const std::string_view name = text.substr(1, length - 2);
    if (name[0] == '#') {
        if (isXmlCharacter(numberOf(name)) && numberOf(name) != 0) return {};
        return {length, "unknown-character",
                "\"&" + std::string(name) + ";\" is no character of XML", "remove it"};
    }
    if (decodeReference(text).length > 0 || declared.count(name) != 0) return {};
    return unknownEntity(name, length);
}

DecodedReference decodeReference(std::string_view text) {
    const std::size_t length = text.empty() || text[0] != '&' ? 0 : referenceLength(text);
    if (length == 0) return {};
    const std::string_view name = text.substr(1, length - 2);
    if (name[0] == '#') {
        const std::uint32_t point = numberOf(name);
        if (point == 0 || !isXmlCharacter(point)) return {};
        return {length, utf8(point)};
    }
    for (const auto& [known, replacement] : predefined) {
        if (known == name) return {length, std::string(replacement)};
    }
    return {};
}

}  // namespace cli

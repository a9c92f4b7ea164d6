// Strict: no overlong forms, no surrogates, nothing beyond U+10FFFF.
//
// SPDX-License-Identifier: MIT
#include "text/utf8.h"

#include <algorithm>

namespace tools {
namespace {

unsigned byteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

}  // namespace

std::size_t sequenceLength(std::string_view text) {
    if (text.empty()) return 0;
    const unsigned first = byteAt(text, 0);
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || length > text.size()) return 0;
    const unsigned lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (byteAt(text, 1) < lowest || byteAt(text, 1) > highest) return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if (byteAt(text, i) < 0x80 || byteAt(text, i) > 0xBF) return 0;
    }
    return length;
}

std::uint32_t codePoint(std::string_view sequence) {
    if (sequence.size() == 1) return byteAt(sequence, 0);
    std::uint32_t code = byteAt(sequence, 0) & (0x7FU >> sequence.size());
    for (std::size_t i = 1; i < sequence.size(); ++i)
        code = (code << 6U) | (byteAt(sequence, i) & 0x3FU);
    return code;
}

std::string utf8Prefix(const std::string& text, std::size_t longest) {
    std::size_t end = std::min(text.size(), longest);
    while (end < text.size() && end > 0 && (byteAt(text, end) & 0xC0U) == 0x80U)
        --end;
    return text.substr(0, end);
}

}  // namespace tools

// Goes through a text sequence by sequence.
//
// SPDX-License-Identifier: MIT
#include "process/plain_text.h"

#include <cstdio>

namespace tools {
namespace {

unsigned byteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

/// Characters that are not shown themselves but change what is.
bool steers(std::uint32_t code) {
    const bool isControl = code < 0x20 || (code >= 0x7F && code <= 0x9F);
    const bool isLineEnd = code == 0x2028 || code == 0x2029;
    const bool isDirection = code == 0x061C || code == 0x200E || code == 0x200F ||
                             (code >= 0x202A && code <= 0x202E) ||
                             (code >= 0x2066 && code <= 0x2069);
    return isControl || isLineEnd || isDirection;
}

std::string escaped(std::uint32_t code) {
    switch (code) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default: {
            char text[12] = {};
            std::snprintf(text, sizeof text, code < 0x80 ? "\\x%02x" : "\\u%04x",
                          static_cast<unsigned>(code));
            return text;
        }
    }
}

std::string escapedByte(unsigned byte) {
    char text[8] = {};
    std::snprintf(text, sizeof text, "\\x%02x", byte);
    return text;
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

std::string printable(std::string_view text, std::string_view kept) {
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = sequenceLength(text.substr(i));
        const std::string_view sequence = text.substr(i, length == 0 ? 1 : length);
        i += sequence.size();
        if (length == 0) {
            shown += escapedByte(byteAt(sequence, 0));
        } else if (length == 1 && kept.find(sequence[0]) != std::string_view::npos) {
            shown += sequence;
        } else {
            const std::uint32_t code = codePoint(sequence);
            shown += steers(code) ? escaped(code) : std::string(sequence);
        }
    }
    return shown;
}

}  // namespace tools

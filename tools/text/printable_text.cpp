// SPDX-License-Identifier: MIT
#include "text/printable_text.h"

#include <cstdint>
#include <cstdio>

#include "text/utf8.h"

namespace tools {
namespace {

/// Characters that are invisible but change how other text is displayed.
bool isFormattingCharacter(std::uint32_t code) {
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

std::string printable(std::string_view text, std::string_view kept) {
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = sequenceLength(text.substr(i));
        const std::string_view sequence = text.substr(i, length == 0 ? 1 : length);
        i += sequence.size();
        if (length == 0) {
            shown += escapedByte(static_cast<unsigned char>(sequence[0]));
        } else if (length == 1 && kept.find(sequence[0]) != std::string_view::npos) {
            shown += sequence;
        } else {
            const std::uint32_t code = codePoint(sequence);
            shown += isFormattingCharacter(code) ? escaped(code) : std::string(sequence);
        }
    }
    return shown;
}

}  // namespace tools

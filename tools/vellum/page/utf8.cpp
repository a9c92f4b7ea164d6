// Checks and repairs UTF-8, converts UTF-16.
//
// SPDX-License-Identifier: MIT
#include "page/utf8.h"

#include <cstdint>
#include <string_view>

#include "text/utf8.h"

namespace vellum {
namespace {

constexpr std::uint32_t replacement = 0xFFFD;
constexpr std::string_view replacementBytes = "\xEF\xBF\xBD";

unsigned byteAt(const std::string& text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
}

void appendUtf8(std::uint32_t character, std::string& text) {
    const auto tail = [character](unsigned shift) {
        return static_cast<char>(0x80U | ((character >> shift) & 0x3FU));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += {static_cast<char>(0xC0U | (character >> 6U)), tail(0)};
    } else if (character < 0x10000) {
        text += {static_cast<char>(0xE0U | (character >> 12U)), tail(6), tail(0)};
    } else {
        text += {static_cast<char>(0xF0U | (character >> 18U)), tail(12), tail(6), tail(0)};
    }
}

}  // namespace

bool isUtf8(const std::string& text, Checkpoint& checkpoint) {
    const std::string_view view = text;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = tools::sequenceLength(view.substr(at));
        if (length == 0) return false;
        checkpoint.processed(length);
        at += length;
    }
    return true;
}

std::string cleanUtf8(const std::string& text, Checkpoint& checkpoint) {
    std::string clean;
    clean.reserve(text.size());
    const std::string_view view = text;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = text[at] == '\0' ? 0 : tools::sequenceLength(view.substr(at));
        if (length == 0) {
            clean += replacementBytes;
        } else {
            clean.append(text, at, length);
        }
        const std::size_t step = length == 0 ? 1 : length;
        checkpoint.processed(step);
        at += step;
    }
    return clean;
}

std::string utf8OfUtf16(const std::string& bytes, std::size_t start, bool isBigEndian,
                        Checkpoint& checkpoint) {
    const auto unit = [&bytes, isBigEndian](std::size_t at) -> std::uint32_t {
        const std::uint32_t first = byteAt(bytes, at);
        const std::uint32_t second = byteAt(bytes, at + 1);
        return isBigEndian ? first << 8U | second : second << 8U | first;
    };
    std::string text;
    for (std::size_t at = start; at + 1 < bytes.size(); at += 2) {
        std::uint32_t character = unit(at);
        const bool isHigh = character >= 0xD800 && character < 0xDC00;
        const std::uint32_t next = isHigh && at + 3 < bytes.size() ? unit(at + 2) : 0;
        if (next >= 0xDC00 && next < 0xE000) {
            character = 0x10000 + ((character - 0xD800) << 10U) + (next - 0xDC00);
            at += 2;
        } else if (character == 0 || (character >= 0xD800 && character < 0xE000)) {
            character = replacement;
        }
        appendUtf8(character, text);
        checkpoint.processed(2);
    }
    if ((bytes.size() - start) % 2 != 0) appendUtf8(replacement, text);
    return text;
}

}  // namespace vellum

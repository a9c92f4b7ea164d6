// Strict UTF-8 check. The standard library's converters accept some malformed texts (a truncated
// last sequence, surrogates), so the library would open a different file than the host named.
//
// SPDX-License-Identifier: MIT
#include "platform/utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace rgen::platform {
namespace {

constexpr std::size_t malformed = 0;

struct SequenceRule {
    unsigned char firstLead;
    unsigned char lastLead;
    unsigned char lowestSecond;
    unsigned char highestSecond;
    std::size_t length;
};

// The well-formed byte sequences of the Unicode standard, table 3-7.
constexpr SequenceRule sequenceRules[] = {
    {0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

bool follows(const SequenceRule& rule, std::string_view rest) {
    if (rest.size() < rule.length) return false;
    if (rule.length == 1) return true;
    const auto second = static_cast<unsigned char>(rest[1]);
    return second >= rule.lowestSecond && second <= rule.highestSecond &&
           std::all_of(rest.begin() + 2, rest.begin() + static_cast<std::ptrdiff_t>(rule.length),
                       isContinuation);
}

/// Most paths are pure ASCII: checks eight bytes at a time.
std::string_view withoutAsciiStart(std::string_view text) {
    constexpr std::uint64_t highBits = 0x8080808080808080;
    std::uint64_t word = 0;
    while (text.size() >= sizeof word) {
        std::memcpy(&word, text.data(), sizeof word);
        if ((word & highBits) != 0) break;
        text.remove_prefix(sizeof word);
    }
    return text;
}

std::size_t sequenceLength(std::string_view rest) {
    const auto lead = static_cast<unsigned char>(rest.front());
    for (const SequenceRule& rule : sequenceRules) {
        if (lead >= rule.firstLead && lead <= rule.lastLead) {
            return follows(rule, rest) ? rule.length : malformed;
        }
    }
    return malformed;
}

}  // namespace

void requireUtf8(const std::string& text) {
    std::string_view rest = withoutAsciiStart(text);
    while (!rest.empty()) {
        const std::size_t length = sequenceLength(rest);
        if (length == malformed) throw std::range_error("bad conversion");
        rest.remove_prefix(length);
    }
}

}  // namespace rgen::platform

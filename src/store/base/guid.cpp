// GUID text: the writer and the matcher. Both are written by hand: compiling a regular expression
// takes longer than a small report.
//
// SPDX-License-Identifier: MIT
#include "store/base/guid.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ascii.h"

namespace rgen {
namespace {

constexpr std::string_view shape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

void appendHex(std::string& text, std::uint32_t number, unsigned digits) {
    while (digits > 0) {
        --digits;
        text += "0123456789abcdef"[(number >> (4 * digits)) & 0xFU];
    }
}

}  // namespace

std::string formatGuid(const Guid& guid) {
    std::string text;
    text.reserve(shape.size());
    appendHex(text, guid.data1, 8);
    text += '-';
    appendHex(text, guid.data2, 4);
    text += '-';
    appendHex(text, guid.data3, 4);
    for (std::size_t i = 0; i < guid.data4.size(); ++i) {
        if (i == 0 || i == 2) text += '-';
        appendHex(text, guid.data4[i], 2);
    }
    return text;
}

bool isGuidText(const std::string& text) {
    if (text.size() != shape.size()) return false;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        const bool fits = shape[i] == '-' ? text[i] == '-'
                                          : isHexDigit(text[i]) && toLowerAscii(text[i]) == text[i];
        if (!fits) return false;
    }
    return true;
}

}  // namespace rgen

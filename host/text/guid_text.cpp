// A GUID is read digit by digit, in the order of its text.
//
// SPDX-License-Identifier: MIT
#include "text/guid_text.h"

#include <cstdint>
#include <cstdio>

namespace rgenh {
namespace {

constexpr std::string_view shape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

/// The value of a hexadecimal digit, -1 for another character.
int hexDigit(char letter) {
    if (letter >= '0' && letter <= '9') return letter - '0';
    if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
    if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
    return -1;
}

bool fitsShape(std::string_view text) {
    if (text.size() != shape.size()) return false;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        if (shape[i] == '-' ? text[i] != '-' : hexDigit(text[i]) < 0) return false;
    }
    return true;
}

/// The next `digits` digits as a number; hyphens are skipped.
std::uint32_t takeNumber(std::string_view& text, int digits) {
    std::uint32_t number = 0;
    while (digits > 0) {
        if (text[0] != '-') {
            number = number * 16 + static_cast<std::uint32_t>(hexDigit(text[0]));
            --digits;
        }
        text.remove_prefix(1);
    }
    return number;
}

}  // namespace

std::optional<RgenGuid> parseGuid(std::string_view text) {
    const bool isInBraces =
        text.size() == shape.size() + 2 && text.front() == '{' && text.back() == '}';
    if (isInBraces) text = text.substr(1, shape.size());
    if (!fitsShape(text)) return std::nullopt;
    RgenGuid guid = {};
    guid.data1 = takeNumber(text, 8);
    guid.data2 = static_cast<std::uint16_t>(takeNumber(text, 4));
    guid.data3 = static_cast<std::uint16_t>(takeNumber(text, 4));
    for (std::uint8_t& byte : guid.data4)
        byte = static_cast<std::uint8_t>(takeNumber(text, 2));
    return guid;
}

GuidText::GuidText(const RgenGuid& guid) noexcept {
    const std::uint8_t* const last = guid.data4;
    std::snprintf(text_, sizeof text_, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                  static_cast<unsigned>(guid.data1), guid.data2, guid.data3, last[0], last[1],
                  last[2], last[3], last[4], last[5], last[6], last[7]);
}

}  // namespace rgenh

// SPDX-License-Identifier: MIT
#include "base/time_zone.h"

#include <optional>

namespace cli {
namespace {

/// The number in two digits; nothing for another text.
std::optional<int> twoDigits(const std::string& text) {
    const bool isNumber =
        text.size() == 2 && text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? std::optional<int>(std::stoi(text)) : std::nullopt;
}

/// Minutes east of UTC in "+01:00" or "-0530"; nothing for another text.
std::optional<int> offsetIn(std::string text) {
    if (text.size() == 6 && text[3] == ':') text.erase(3, 1);
    if (text.size() != 5 || (text[0] != '+' && text[0] != '-')) return std::nullopt;
    const std::optional<int> hours = twoDigits(text.substr(1, 2));
    const std::optional<int> minutes = twoDigits(text.substr(3, 2));
    if (!hours || !minutes || *hours > 14 || *minutes > 59) return std::nullopt;
    const int east = *hours * 60 + *minutes;
    return text[0] == '-' ? -east : east;
}

}  // namespace

void useTimeZone(const std::string& zone) {
    const std::optional<int> offset = zone == "UTC" ? 0 : offsetIn(zone);
    if (offset) {
        setFixedTimeZone(*offset);
    } else {
        setNamedTimeZone(zone);
    }
}

}  // namespace cli

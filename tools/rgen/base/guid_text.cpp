// The shape of a GUID is checked letter by letter; its parts are then plain hexadecimal numbers.
//
// SPDX-License-Identifier: MIT
#include "base/guid_text.h"

#include <cstdlib>
#include <iterator>

namespace cli {

std::string guidTextOf(std::string text) {
    if (text.size() == 38 && text.front() == '{' && text.back() == '}') text = text.substr(1, 36);
    constexpr const char* shape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    if (text.size() != 36) return {};
    for (std::size_t i = 0; i < text.size(); ++i) {
        char& letter = text[i];
        if (letter >= 'A' && letter <= 'F') letter = static_cast<char>(letter - 'A' + 'a');
        const bool isHex = (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'f');
        if (shape[i] == '-' ? letter != '-' : !isHex) return {};
    }
    return text;
}

RgenGuid guidOf(const std::string& text) {
    const auto part = [&text](std::size_t at, std::size_t digits) {
        return std::strtoul(text.substr(at, digits).c_str(), nullptr, 16);
    };
    RgenGuid guid = {};
    guid.data1 = static_cast<std::uint32_t>(part(0, 8));
    guid.data2 = static_cast<std::uint16_t>(part(9, 4));
    guid.data3 = static_cast<std::uint16_t>(part(14, 4));
    constexpr std::size_t places[] = {19, 21, 24, 26, 28, 30, 32, 34};
    for (std::size_t i = 0; i < std::size(places); ++i)
        guid.data4[i] = static_cast<std::uint8_t>(part(places[i], 2));
    return guid;
}

}  // namespace cli

// SPDX-License-Identifier: MIT
#include "base/ascii.h"

namespace vellum {

std::string lowerCase(std::string_view text) {
    std::string result(text);
    for (char& character : result)
        character = lowerCase(character);
    return result;
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

}  // namespace vellum

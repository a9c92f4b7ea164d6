// The regular expressions with which the hand-written matchers are compared.
//
// SPDX-License-Identifier: MIT
#include "support/expression_oracles.h"

#include <cstddef>
#include <cstdlib>

#include "support/regular_expression.h"

namespace rgen_test {

const char* RGEN_CALL markMessage(const char* text, void* /*context*/) {
    static std::string translation;
    translation = "<" + std::string(text) + ">";
    return translation.c_str();
}

const char* RGEN_CALL giveMarker(const char* /*text*/, void* /*context*/) {
    return "QT_TRANSLATE_NOOP(\"QObject\", \"again\")";
}

std::string translatedByExpression(std::string text, RgenTranslateFunction translate) {
    static const RegularExpression marker(
        "QT_TRANSLATE_NOOP\\s*\\(\\s*\"QObject\"\\s*, \"([^\"]*)\\s*\"\\)");
    std::size_t position = 0;
    RegularExpression::Match match = {};
    while (marker.search(text, position, match)) {
        const std::string& whole = match.whole;
        const std::size_t third = whole.find('"', whole.find('"', whole.find('"') + 1) + 1);
        const std::string message = whole.substr(third + 1, whole.find('"', third + 1) - third - 1);
        const std::string replacement = translate(message.c_str(), nullptr);
        text.replace(match.position, whole.size(), replacement);
        position = match.position + replacement.size();
    }
    return text;
}

bool isByteDumpByExpression(const std::string& text) {
    static const RegularExpression dump("\\s*0x[0-9A-Fa-f]{2}(\\s*,\\s*0x[0-9A-Fa-f]{2})*\\s*");
    return dump.matches(text);
}

std::vector<std::uint8_t> bytesByExpression(const std::string& text) {
    static const RegularExpression token("0x([0-9A-Fa-f]{2})");
    std::vector<std::uint8_t> bytes;
    RegularExpression::Match match = {};
    for (std::size_t from = 0; token.search(text, from, match); from = match.position + 4) {
        bytes.push_back(static_cast<std::uint8_t>(std::strtoul(match.group.c_str(), nullptr, 16)));
    }
    return bytes;
}

bool isGuidTextByExpression(const std::string& text) {
    static const RegularExpression guid("([0-9]|[a-f]){8}(-([0-9]|[a-f]){4}){3}-([0-9]|[a-f]){12}");
    return guid.matches(text);
}

bool endsInSeparatorByExpression(const std::string& path, char separator) {
    static const RegularExpression separatorAtEnd(separator == '/' ? ".*/" : ".*(/|\\\\)");
    return separatorAtEnd.matches(path);
}

}  // namespace rgen_test

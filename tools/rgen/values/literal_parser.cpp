// Strict parsers: the whole text must match.
//
// SPDX-License-Identifier: MIT
#include "values/literal_parser.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include "base/command_error.h"
#include "base/console.h"
#include "base/text_functions.h"
#include "strata_repgenlib/rgen.hpp"
#include "values/literal_advice.h"

namespace cli {
namespace {

/// The last second that the library can show.
constexpr std::int64_t latestTime = 32535215999;

std::string inQuotes(const std::string& text) {
    return "\"" + shortened(text) + "\"";
}

/// Tells whether there are only digits, at least one, after an optional sign and `prefix`.
bool isNumber(const std::string& text, std::string_view prefix, const char* digits) {
    const std::size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    const std::size_t start = sign + prefix.size();
    return text.size() > start && text.compare(sign, prefix.size(), prefix) == 0 &&
           text.find_first_not_of(digits, start) == std::string::npos;
}

bool isDecimal(const std::string& text) {
    return isNumber(text, "", "0123456789");
}

bool isHexadecimal(const std::string& text) {
    constexpr const char* digits = "0123456789abcdefABCDEF";
    return isNumber(text, "0x", digits) || isNumber(text, "0X", digits);
}

CommandError notShown(const std::string& text) {
    return usageError(inQuotes(text) + " cannot be shown as a time",
                      "the library shows times from 1970 to 3000");
}

CommandError noTime(const std::string& time, const std::string& text) {
    const std::string missing = missingDay(time);
    if (!missing.empty()) return usageError(inQuotes(text) + ": " + missing, "correct the date");
    return usageError(inQuotes(text) + " is not a time",
                      isFraction(time) ? "write whole seconds, or 2026-03-09T08:14:07Z"
                                       : "write seconds since 1970, 2026-03-09T08:14:07Z or now");
}

std::int64_t readCalendarTime(const std::string& time, const std::string& text) {
    std::int64_t seconds = 0;
    try {
        strata::repgen::call(rgenh_parseTime, time.data(), std::uint64_t{time.size()}, &seconds);
    } catch (const strata::repgen::ArgumentError& error) {
        const std::string_view reason = error.what();
        if (reason.find("cannot be shown") != std::string_view::npos) throw notShown(text);
        throw noTime(time, text);
    }
    return seconds;
}

/// The value of a hexadecimal digit, -1 for another character.
int hexDigit(char letter) {
    if (letter >= '0' && letter <= '9') return letter - '0';
    if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
    if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
    return -1;
}

CommandError noByteDump(const std::string& text) {
    return usageError(inQuotes(text) + " is no byte dump", "write 01 AB FF, 01:AB:FF or 01ABFF");
}

}  // namespace

std::int64_t parseInteger(const std::string& text, bool takesUnsigned) {
    const std::string digits = trimmed(text);
    const bool isHex = isHexadecimal(digits);
    if (!isHex && !isDecimal(digits)) {
        throw usageError(inQuotes(text) + " is not a whole number", adviceOnSize(text));
    }
    errno = 0;
    const std::int64_t number = std::strtoll(digits.c_str(), nullptr, isHex ? 16 : 10);
    if (errno != ERANGE) return number;
    errno = 0;
    if (takesUnsigned && digits[0] != '-') {
        const std::uint64_t bits = std::strtoull(digits.c_str(), nullptr, isHex ? 16 : 10);
        if (errno != ERANGE) return static_cast<std::int64_t>(bits);
    }
    throw usageError(inQuotes(text) + " does not fit into 64 bits");
}

std::int64_t parseTime(const std::string& text) {
    const std::string time = trimmed(text);
    if (time == "now") return std::time(nullptr);
    if (!isDecimal(time)) return readCalendarTime(time, text);
    const std::int64_t seconds = parseInteger(time, false);
    if (seconds < 0 || seconds > latestTime) throw notShown(text);
    return seconds;
}

std::vector<std::uint8_t> parseBytes(const std::string& text) {
    std::vector<std::uint8_t> bytes;
    const std::string separators = " \t\r\n,:";
    for (std::size_t i = text.find_first_not_of(separators); i < text.size();
         i = text.find_first_not_of(separators, i)) {
        const bool isPrefix = text[i] == '0' && i + 1 < text.size() && (text[i + 1] | 0x20) == 'x';
        if (isPrefix) i += 2;
        const int high = i < text.size() ? hexDigit(text[i]) : -1;
        const int low = i + 1 < text.size() ? hexDigit(text[i + 1]) : -1;
        if (high < 0 || low < 0) throw noByteDump(text);
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
        i += 2;
    }
    return bytes;
}

}  // namespace cli

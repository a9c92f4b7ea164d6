// Strict parsers: the whole text must match.
//
// SPDX-License-Identifier: MIT
#include "values/literal_parser.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string_view>

#include "base/command_error.h"
#include "base/console.h"
#include "base/xml_text.h"

namespace cli {
namespace {

constexpr std::int64_t secondsOfDay = 86400;
/// The last second that the library can show.
constexpr std::int64_t latestTime = 32535215999;

std::string quoted(const std::string& text) {
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

CommandError notATime(const std::string& text) {
    return usageError(quoted(text) + " is not a time",
                      "write seconds since 1970, 2026-03-09T08:14:07Z or now");
}

/// Days since 1970 of a date in the Gregorian calendar.
std::int64_t daysFromDate(int year, int month, int day) {
    const int shifted = month <= 2 ? year - 1 : year;
    const std::int64_t era = shifted / 400;
    const std::int64_t yearOfEra = shifted - era * 400;
    const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

bool isDate(int year, int month, int day) {
    if (month < 1 || month > 12 || day < 1) return false;
    const int next = month == 12 ? 1 : month + 1;
    const std::int64_t length =
        daysFromDate(month == 12 ? year + 1 : year, next, 1) - daysFromDate(year, month, 1);
    return day <= length;
}

struct DateTime {
    int year, month, day, hour, minute, second;
};

/// -1 for times that the system cannot convert.
std::int64_t localSeconds(const DateTime& time) {
    std::tm brokenDown = {};
    brokenDown.tm_year = time.year - 1900;
    brokenDown.tm_mon = time.month - 1;
    brokenDown.tm_mday = time.day;
    brokenDown.tm_hour = time.hour;
    brokenDown.tm_min = time.minute;
    brokenDown.tm_sec = time.second;
    brokenDown.tm_isdst = -1;
    const std::time_t seconds = std::mktime(&brokenDown);
    return seconds;
}

/// Parses a text from left to right; after the first mismatch every further step fails.
class TimeScanner {
public:
    explicit TimeScanner(const std::string& text) : text_(text) {}

    /// The number in the next digits, exactly that many.
    int number(std::size_t digits) {
        const std::string part = text_.substr(std::min(at_, text_.size()), digits);
        fits_ =
            fits_ && part.size() == digits && isDecimal(part) && part[0] != '-' && part[0] != '+';
        at_ += digits;
        return fits_ ? std::stoi(part) : 0;
    }

    void require(char letter) { fits_ = accept(letter) && fits_; }

    bool accept(char letter) {
        const bool isThere = at_ < text_.size() && text_[at_] == letter;
        if (isThere) ++at_;
        return isThere;
    }

    bool isAtEnd() const { return at_ >= text_.size(); }
    bool fits() const { return fits_; }

private:
    const std::string& text_;
    std::size_t at_ = 0;
    bool fits_ = true;
};

/// "T08:14" or "T08:14:07", or a blank instead of the "T".
void scanTimeOfDay(TimeScanner& scanner, DateTime& time) {
    if (!scanner.accept('T') && !scanner.accept(' ')) return;
    time.hour = scanner.number(2);
    scanner.require(':');
    time.minute = scanner.number(2);
    if (scanner.accept(':')) time.second = scanner.number(2);
}

/// "Z", "+01:00" or "-0530" as seconds east of UTC; nothing for local time.
std::optional<std::int64_t> scanOffset(TimeScanner& scanner) {
    if (scanner.accept('Z') || scanner.accept('z')) return 0;
    const bool isWest = scanner.accept('-');
    if (!isWest && !scanner.accept('+')) return std::nullopt;
    const std::int64_t hours = scanner.number(2);
    scanner.accept(':');
    const std::int64_t seconds = (hours * 60 + scanner.number(2)) * 60;
    return isWest ? -seconds : seconds;
}

std::int64_t readCalendarTime(const std::string& text) {
    TimeScanner scanner(text);
    DateTime time = {};
    time.year = scanner.number(4);
    scanner.require('-');
    time.month = scanner.number(2);
    scanner.require('-');
    time.day = scanner.number(2);
    scanTimeOfDay(scanner, time);
    const std::optional<std::int64_t> offset = scanOffset(scanner);
    if (!scanner.fits() || !scanner.isAtEnd() || !isDate(time.year, time.month, time.day) ||
        time.hour > 23 || time.minute > 59 || time.second > 59) {
        throw notATime(text);
    }
    if (!offset) return localSeconds(time);
    const std::int64_t minutes = std::int64_t{time.hour} * 60 + time.minute;
    return daysFromDate(time.year, time.month, time.day) * secondsOfDay + minutes * 60 +
           time.second - *offset;
}

/// The value of a hexadecimal digit, -1 for another character.
int hexDigit(char letter) {
    if (letter >= '0' && letter <= '9') return letter - '0';
    if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
    if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
    return -1;
}

CommandError noByteDump(const std::string& text) {
    return usageError(quoted(text) + " is no byte dump", "write 01 AB FF or 01ABFF");
}

}  // namespace

std::int64_t parseInteger(const std::string& text, bool takesUnsigned) {
    const std::string digits = trimmed(text);
    const bool isHex = isHexadecimal(digits);
    if (!isHex && !isDecimal(digits)) {
        throw usageError(quoted(text) + " is not a whole number");
    }
    errno = 0;
    const std::int64_t number = std::strtoll(digits.c_str(), nullptr, isHex ? 16 : 10);
    if (errno != ERANGE) return number;
    errno = 0;
    if (takesUnsigned && digits[0] != '-') {
        const std::uint64_t bits = std::strtoull(digits.c_str(), nullptr, isHex ? 16 : 10);
        if (errno != ERANGE) return static_cast<std::int64_t>(bits);
    }
    throw usageError(quoted(text) + " does not fit into 64 bits");
}

std::int64_t parseTime(const std::string& text) {
    const std::string time = trimmed(text);
    if (time == "now") return std::time(nullptr);
    const std::int64_t seconds =
        isDecimal(time) ? parseInteger(time, false) : readCalendarTime(time);
    if (seconds >= 0 && seconds <= latestTime) return seconds;
    throw usageError(quoted(text) + " cannot be shown as a time",
                     "the library shows times from 1970 to 3000");
}

std::vector<std::uint8_t> parseBytes(const std::string& text) {
    std::vector<std::uint8_t> bytes;
    const std::string separators = " \t\r\n,";
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

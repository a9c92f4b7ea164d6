// A scanner from left to right. Dates are converted by arithmetic; only local times ask the system.
//
// SPDX-License-Identifier: MIT
#include "text/calendar_time.h"

#include <ctime>
#include <optional>
#include <string>

#include "error/failures.h"

namespace rgenh {
namespace {

constexpr std::int64_t secondsOfDay = 86400;
/// The last second that the library can show.
constexpr std::int64_t latestTime = 32535215999;

[[noreturn]] void refuse(std::string_view text, const char* reason) {
    constexpr std::size_t longestShown = 60;
    throw ArgumentError("\"" + std::string(text.substr(0, longestShown)) + "\" " + reason);
}

struct DateTime {
    int year, month, day, hour, minute, second;
};

constexpr int latestHour = 23;
constexpr int latestMinute = 59;

/// Days since 1970 of a date in the Gregorian calendar.
std::int64_t daysFromDate(int year, int month, int day) {
    const int shifted = month <= 2 ? year - 1 : year;
    const std::int64_t era = shifted / 400;
    const std::int64_t yearOfEra = shifted - era * 400;
    const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

int daysOfMonth(int year, int month) {
    const bool isLast = month == 12;
    const std::int64_t next = daysFromDate(isLast ? year + 1 : year, isLast ? 1 : month + 1, 1);
    return static_cast<int>(next - daysFromDate(year, month, 1));
}

bool isOnCalendar(const DateTime& time) {
    return time.month >= 1 && time.month <= 12 && time.day >= 1 &&
           time.day <= daysOfMonth(time.year, time.month) && time.hour <= latestHour &&
           time.minute <= latestMinute && time.second <= 59;
}

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
    return std::mktime(&brokenDown);
}

std::int64_t utcSeconds(const DateTime& time) {
    const std::int64_t minutes = std::int64_t{time.hour} * 60 + time.minute;
    return daysFromDate(time.year, time.month, time.day) * secondsOfDay + minutes * 60 +
           time.second;
}

/// After the first mismatch every further step fails.
class Scanner {
public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    bool accept(char letter) {
        const bool isThere = !rest_.empty() && rest_[0] == letter;
        if (isThere) rest_.remove_prefix(1);
        return isThere;
    }

    void require(char letter) { fits_ = accept(letter) && fits_; }
    void requireAtMost(int number, int greatest) { fits_ = number <= greatest && fits_; }

    bool startsWithDigit() const { return !rest_.empty() && isDigit(rest_[0]); }

    /// The number in exactly that many digits.
    int number(int digits) {
        int value = 0;
        for (int i = 0; i < digits; ++i) {
            if (!startsWithDigit()) {
                fits_ = false;
                return 0;
            }
            value = value * 10 + (rest_[0] - '0');
            rest_.remove_prefix(1);
        }
        return value;
    }

    /// At least one digit.
    void skipDigits() {
        fits_ = fits_ && startsWithDigit();
        while (startsWithDigit())
            rest_.remove_prefix(1);
    }

    bool isWhole() const { return fits_ && rest_.empty(); }

private:
    static bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

    std::string_view rest_;
    bool fits_ = true;
};

DateTime scanDate(Scanner& scanner) {
    DateTime time = {};
    time.year = scanner.number(4);
    scanner.require('-');
    time.month = scanner.number(2);
    scanner.require('-');
    time.day = scanner.number(2);
    return time;
}

void scanTimeOfDay(Scanner& scanner, DateTime& time) {
    if (!scanner.accept('T') && !scanner.accept('t') && !scanner.accept(' ')) return;
    time.hour = scanner.number(2);
    scanner.require(':');
    time.minute = scanner.number(2);
    if (!scanner.accept(':')) return;
    time.second = scanner.number(2);
    if (scanner.accept('.') || scanner.accept(',')) scanner.skipDigits();
}

/// Seconds east of UTC; nothing for a local time.
std::optional<std::int64_t> scanOffset(Scanner& scanner) {
    if (scanner.accept('Z') || scanner.accept('z')) return 0;
    const bool isWest = scanner.accept('-');
    if (!isWest && !scanner.accept('+')) return std::nullopt;
    const int hours = scanner.number(2);
    const bool hasMinutes = scanner.accept(':') || scanner.startsWithDigit();
    const int minutes = hasMinutes ? scanner.number(2) : 0;
    scanner.requireAtMost(hours, latestHour);
    scanner.requireAtMost(minutes, latestMinute);
    const std::int64_t seconds = (std::int64_t{hours} * 60 + minutes) * 60;
    return isWest ? -seconds : seconds;
}

}  // namespace

std::int64_t parseTime(std::string_view text) {
    Scanner scanner(text);
    DateTime time = scanDate(scanner);
    scanTimeOfDay(scanner, time);
    const std::optional<std::int64_t> offset = scanOffset(scanner);
    if (!scanner.isWhole() || !isOnCalendar(time)) {
        refuse(text, "is not a time such as 2026-03-09T08:14:07Z");
    }
    const std::int64_t seconds = offset ? utcSeconds(time) - *offset : localSeconds(time);
    if (seconds < 0 || seconds > latestTime) {
        refuse(text, "cannot be shown in a report, which shows times from 1970 to 3000");
    }
    return seconds;
}

}  // namespace rgenh

// SPDX-License-Identifier: MIT
#include "values/literal_advice.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "base/text_functions.h"

namespace cli {
namespace {

struct Unit {
    const char* name;
    std::uint64_t base;
    int power;
};

constexpr Unit units[] = {
    {"b", 1, 0},      {"byte", 1, 0},   {"bytes", 1, 0},  {"kb", 1000, 1},  {"mb", 1000, 2},
    {"gb", 1000, 3},  {"tb", 1000, 4},  {"pb", 1000, 5},  {"kib", 1024, 1}, {"mib", 1024, 2},
    {"gib", 1024, 3}, {"tib", 1024, 4}, {"pib", 1024, 5},
};

constexpr const char* digits = "0123456789";

/// Zero for an unknown unit.
std::uint64_t factorOf(const std::string& unit) {
    for (const Unit& known : units) {
        if (unit != known.name) continue;
        std::uint64_t factor = 1;
        for (int i = 0; i < known.power; ++i)
            factor *= known.base;
        return factor;
    }
    return 0;
}

bool isShortNumber(const std::string& text) {
    constexpr std::size_t longest = 9;
    return !text.empty() && text.size() <= longest &&
           text.find_first_not_of(digits) == std::string::npos;
}

/// `number`, which may have a fraction, times `factor`; zero when the result is not whole or large.
std::uint64_t product(const std::string& number, std::uint64_t factor) {
    const std::size_t point = number.find('.');
    const std::string whole = number.substr(0, point);
    const std::string fraction = point == std::string::npos ? "0" : number.substr(point + 1);
    if (!isShortNumber(whole) || !isShortNumber(fraction)) return 0;
    std::uint64_t divisor = 1;
    for (std::size_t i = 0; i < fraction.size(); ++i)
        divisor *= 10;
    const std::uint64_t scaled = std::stoull(whole) * divisor + std::stoull(fraction);
    if (scaled > std::numeric_limits<std::uint64_t>::max() / 2 / factor) return 0;
    return scaled * factor % divisor == 0 ? scaled * factor / divisor : 0;
}

constexpr const char* months[] = {"January",   "February", "March",    "April",
                                  "May",       "June",     "July",     "August",
                                  "September", "October",  "November", "December"};

int daysOf(int month, int year) {
    constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeapYear = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && isLeapYear ? 29 : days[month - 1];
}

/// "2026-02-30" with any digits.
bool beginsWithDate(const std::string& text) {
    const std::string pattern = "dddd-dd-dd";
    if (text.size() < pattern.size()) return false;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (pattern[i] == 'd' ? !isDigit : text[i] != '-') return false;
    }
    return true;
}

}  // namespace

std::string adviceOnSize(const std::string& text) {
    const std::string size = trimmed(text);
    const std::size_t end = std::min(size.find_first_not_of("0123456789."), size.size());
    const std::uint64_t factor = factorOf(lowerCase(trimmed(size.substr(end))));
    const std::uint64_t bytes = factor == 0 ? 0 : product(size.substr(0, end), factor);
    return bytes == 0 ? std::string() : "write bytes: " + std::to_string(bytes);
}

std::string missingDay(const std::string& text) {
    if (!beginsWithDate(text)) return {};
    const int year = std::stoi(text.substr(0, 4));
    const int month = std::stoi(text.substr(5, 2));
    const int day = std::stoi(text.substr(8, 2));
    if (month < 1 || month > 12) return "there is no month " + text.substr(5, 2);
    if (day >= 1 && day <= daysOf(month, year)) return {};
    return "there is no " + std::to_string(day) + " " + months[month - 1] + " " + text.substr(0, 4);
}

bool isFraction(const std::string& text) {
    const std::size_t point = text.find('.');
    return point != std::string::npos && point > 0 && point + 1 < text.size() &&
           text.find_first_not_of(digits, point + 1) == std::string::npos &&
           text.find_first_not_of(digits, text[0] == '-' ? 1 : 0) == point;
}

}  // namespace cli

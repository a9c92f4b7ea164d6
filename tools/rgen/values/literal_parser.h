// Parses numbers, times and bytes as users write them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace cli {

/// "-12", "0x1F". With `takesUnsigned` also numbers up to 2^64 - 1, returned as the negative number
/// with the same bits. Throws a CommandError.
std::int64_t parseInteger(const std::string& text, bool takesUnsigned);

/// Seconds since 1970: a whole number, a time that rgenh_parseTime reads, or "now". Throws a
/// CommandError.
std::int64_t parseTime(const std::string& text);

/// "01 AB FF", "01:AB:FF", "01ABFF" or "0x01, 0xAB, 0xFF". Throws a CommandError.
std::vector<std::uint8_t> parseBytes(const std::string& text);

}  // namespace cli

// Numbers, times and bytes as people write them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace cli {

/// "-12", "0x1F". With `takesUnsigned` numbers up to 2^64 - 1 are taken, too, and give the negative
/// number of the same bits. Raises a CommandError.
std::int64_t readInteger(const std::string& text, bool takesUnsigned);

/// Seconds since 1970: a whole number, "2026-03-09T08:14:07" with "Z", an offset or in local time,
/// "2026-03-09", or "now". Raises a CommandError.
std::int64_t readTime(const std::string& text);

/// "01 AB FF", "01ABFF" or "0x01, 0xAB, 0xFF". Raises a CommandError.
std::vector<std::uint8_t> readBytes(const std::string& text);

}  // namespace cli

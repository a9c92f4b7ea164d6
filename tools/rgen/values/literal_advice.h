// What to write instead of a number or time that cannot be read.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// "write bytes: 500000000000" for "500 GB"; empty for a text that is no size with a unit, or that
/// is not a whole number of bytes.
std::string adviceOnSize(const std::string& text);

/// "there is no 30 February 2026" for a text that begins with such a date; empty for others.
std::string missingDay(const std::string& text);

/// Tells whether the text is a number with a fraction, "1769000000.5".
bool isFraction(const std::string& text);

}  // namespace cli

// The text form of byte arrays in simulated input: "0x01, 0xAB".
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "variant/variant.h"

namespace rgen {

/// True for one or more tokens of "0x" and two hexadecimal digits, separated by commas, with white
/// space anywhere around tokens and commas.
bool isValidByteDump(const std::string& text);

/// Appends the bytes of a valid dump to `bytes`. For an invalid one it writes one line to standard
/// output, the library's only output to a console, and returns false.
bool parseByteDump(const std::string& text, ByteVector& bytes);

}  // namespace rgen

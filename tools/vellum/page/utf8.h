// UTF-8, as far as a page needs it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "page/checkpoint.h"

namespace vellum {

constexpr const char* byteOrderMark = "\xEF\xBB\xBF";

/// Tells whether the bytes are valid UTF-8.
bool isUtf8(const std::string& text, Checkpoint& checkpoint);

/// The text with U+FFFD in the place of each byte that is no part of valid UTF-8, and of each zero
/// byte: parsers drop zero bytes in some places and keep them in others.
std::string cleanUtf8(const std::string& text, Checkpoint& checkpoint);

/// The bytes from `start` on, read as UTF-16, in UTF-8. What is no character becomes U+FFFD.
std::string utf8OfUtf16(const std::string& bytes, std::size_t start, bool isBigEndian,
                        Checkpoint& checkpoint);

}  // namespace vellum

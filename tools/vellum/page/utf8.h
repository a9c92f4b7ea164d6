// Validating UTF-8 and converting UTF-16.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "page/checkpoint.h"

namespace vellum {

constexpr const char* byteOrderMark = "\xEF\xBB\xBF";

/// Returns whether the bytes are valid UTF-8.
bool isUtf8(const std::string& text, Checkpoint& checkpoint);

/// The text with each invalid byte and each null byte replaced by U+FFFD. Parsers drop null bytes
/// in some contexts and keep them in others.
std::string cleanUtf8(const std::string& text, Checkpoint& checkpoint);

/// Converts the bytes from `start` on from UTF-16. Invalid units become U+FFFD.
std::string utf8OfUtf16(const std::string& bytes, std::size_t start, bool isBigEndian,
                        Checkpoint& checkpoint);

}  // namespace vellum

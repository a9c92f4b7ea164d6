// Texts of a host: bytes with a size, or null-terminated.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

namespace rgenh {

/// The greatest size that a record of rgen.h can have.
constexpr std::uint64_t longestSize = 0xFFFFFFFF;

/// The text. Throws an ArgumentError for null (unless the size is 0), for a size that no record can
/// have, and for a zero byte in the text, at which the library would cut it. `what` names the text
/// in the message; `argument` is its position, or 0.
std::string_view hostText(const void* data, std::uint64_t size, const char* what, int argument = 0);

}  // namespace rgenh

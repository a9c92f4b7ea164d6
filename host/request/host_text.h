// Texts of a host: bytes with a size, or null-terminated.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

namespace rgenh {

/// The text. Throws an ArgumentError for null (unless the size is 0) and for a zero byte in it, at
/// which the library would cut the text. `what` names it in the message; `argument` is its
/// position, or 0.
std::string_view hostText(const void* data, std::uint64_t size, const char* what, int argument = 0);

}  // namespace rgenh

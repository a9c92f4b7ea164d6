// Times in the format of ISO 8601.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

namespace rgenh {

/// Seconds since 1970 UTC; see rgenh_parseTime. Throws an ArgumentError for texts that are not a
/// time, and for times that reports cannot show.
std::int64_t parseTime(std::string_view text);

}  // namespace rgenh

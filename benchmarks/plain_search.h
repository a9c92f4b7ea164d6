// Plain searches for a text in a text, the yardstick of the translation pass.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace benchmarks {

struct PlainSearch {
    const char* name;
    /// The place of `wanted` in `text`, or npos.
    std::size_t (*find)(std::string_view text, std::string_view wanted);
};

/// The searches that this system has.
std::vector<PlainSearch> plainSearches();

}  // namespace benchmarks

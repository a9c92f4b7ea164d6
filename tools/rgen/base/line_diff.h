// The differences of two texts for a reader: the lines that differ, with a few lines around them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace cli {

struct LineDiff {
    /// Lines with "- " (only in the expected text), "+ " (only in the actual one), "^" below a pair
    /// at the first difference, "  " around them, and "@@ line N" above each place. Long lines are
    /// shortened around the difference.
    std::string text;
    /// Lines that are only in one of the texts, a changed one counted once.
    std::size_t changedLines = 0;
};

/// The text has at most about `mostLines` lines and then says how many changed lines are left out.
LineDiff lineDiff(const std::string& expected, const std::string& actual,
                  std::size_t mostLines = 60);

}  // namespace cli

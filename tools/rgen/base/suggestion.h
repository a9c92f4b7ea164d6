// "did you mean": the known word that is nearest to a misspelt one.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// Number of letters to insert, remove, replace or swap with their neighbour to get from one word
/// to the other; letter case does not count.
std::size_t editDistance(std::string_view one, std::string_view other);

/// The nearest of the known words, or the empty text when none is near enough to be meant.
std::string nearestWord(std::string_view word, const std::vector<std::string>& known);

/// `did you mean "..."?` for the nearest known word, otherwise `fallback`.
std::string didYouMean(std::string_view word, const std::vector<std::string>& known,
                       const std::string& fallback);

}  // namespace cli
